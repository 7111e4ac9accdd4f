// Every allocation fails once, for lists that grow: of revoked certificates, and of attributes out of order.

#include "faults.h"

using namespace support;
using namespace faults;

namespace {

const LibraryTime kTime = {2024, 2, 29, 12, 0, 0}, kLater = {2060, 1, 1, 0, 0, 0};
const Bytes kNull = {5, 0}, kKey(65, 4), kCommonName = OidOf("2.5.4.3"), kUsage = OidOf("2.5.29.15");
const Bytes kAlgorithm = OidOf("1.2.840.10045.4.3.2");

Status FillName(X509Name* name) {
    Status status = StatusOk;
    for (int32_t i = 0; i < 12; ++i)
        status = FirstFailure({status, AddX509NameEntry(name, kKey.data(), 7, 12, kCommonName.data(), i % 3 == 0)});
    return status;
}

// Three entries carry an issuer, with or without a name of another type.
template <bool directoryAlone>
Status FillCrl(X509Crl* crl) {
    const Bytes reason = OidOf("2.5.29.21"), issuer = OidOf("2.5.29.29");
    const Bytes names = Tlv(0x30, (directoryAlone ? Bytes() : Tlv(0x82, kNull)) + Tlv(0xA4, NameTlv("a")));
    X509Name* name = nullptr;
    X509Extensions handle = nullptr;
    uint32_t index = 0;
    Status status = FirstFailure({SetX509CrlVersion(crl, 1), GetX509CrlIssuer(crl, &name), FillName(name),
                                  SetX509CrlThisUpdate(crl, &kTime), SetX509CrlNextUpdate(crl, &kLater),
                                  SetX509CrlSignatureAlgorithmOidAndParameters(crl, kAlgorithm.data(), kNull.data(), 2),
                                  SetX509CrlAuthorityKeyIdentifier2(crl, kKey.data(), 20, name, kKey.data(), 3)});
    for (uint8_t i = 1; i <= 15 && status == StatusOk; ++i) {
        status = FirstFailure(
            {AddX509CrlRevokedCertificate(crl, &i, 1, &kTime, &index),
             GetX509CrlRevokedCertificateExtensions(crl, index, &handle),
             AddX509ExtensionsExtension(handle, reason.data(), 0, kNull.data(), 2),
             i % 5 != 0 ? 0 : AddX509ExtensionsExtension(handle, issuer.data(), 1, names.data(), Size(names))});
    }
    return status;
}

TEST(Faults, RevocationLists) {
    const auto plain = Make<FreeX509Crl>(CreateX509Crl), mixed = Make<FreeX509Crl>(CreateX509Crl);
    ASSERT_EQ(FillCrl<true>(plain.get()) + FillCrl<false>(mixed.get()), StatusOk);
    const auto find = [name = NameOf("a")](X509Crl* crl) {
        uint32_t index = 0;
        const Status status = FindX509CrlFind(crl, name.get(), Bytes{15}.data(), 1, &index);
        EXPECT_EQ(index, status == StatusOk ? 14u : 0u);
        return status;
    };
    const uint64_t before = instruments.allocations;
    const Bytes encoded = Fetch(EncodeX509Crl, plain.get());
    EXPECT_EQ(instruments.allocations, before) << "encoding needs no memory";
    ASSERT_EQ(find(plain.get()), StatusOk);
    EXPECT_EQ(instruments.allocations, before + 1) << "a lookup needs memory for the name alone";
    FailEveryAllocation({
        {"build", [] { return MakeFillAndFree<FreeX509Crl>(CreateX509Crl, FillCrl<true>); }},
        {"decode", [&] { return MakeAndFree<FreeX509Crl>(DecodeX509Crl, encoded.data(), Size(encoded)); }},
        {"copy", [&] { return MakeAndFree<FreeX509Crl>(CreateX509CrlCopy, plain.get()); }},
        {"lookup", [&] { return find(plain.get()); }},
        {"lookup among names of other types", [&] { return find(mixed.get()); }},
    });
}

TEST(Faults, Requests) {
    const auto extensions = Decoded<FreeX509Extensions>(DecodeX509Extensions, Tlv(0x30, ExtensionTlv("1.2", kKey)));
    // Twenty values, and as many attributes, in the reverse of DER order.
    const auto fill = [&](PKCS10CertReq* request) {
        RsaAttributes attributes = nullptr;
        X509Name* name = nullptr;
        uint8_t toBeSigned[2000];
        uint32_t index = 0, length = sizeof toBeSigned;
        Status status = FirstFailure(
            {GetPKCS10CertReqSubject(request, &name), FillName(name), SetPKCS10CertReqVersion(request, 0),
             SetPKCS10CertReqSubject(request, name),
             SetPKCS10CertReqGostR34102001PublicKeyAlgorithmIdAndParameters(request, AlgorithmGostR34102012Key256,
                                                                            ParametersFormGost, 1, 1, 1),
             SetPKCS10CertReqGostR34102012PublicKey(request, kKey.data(), 64),
             SetPKCS10CertReqSignatureAlgorithmOidAndParameters(request, kAlgorithm.data(), nullptr, 0),
             SetPKCS10CertReqSignature(request, kKey.data(), 64), GetPKCS10CertReqAttributes(request, &attributes)});
        for (uint8_t i = 20; i > 0 && status == StatusOk; --i) {
            const uint8_t oid[] = {2, 0x2A, i}, value[] = {2, 1, i};
            status = FirstFailure({AddRsaAttributesAttributeWithValue(attributes, oid, &index, value, 3),
                                   AddRsaAttributesAttributeValue(attributes, 0, value, 3)});
        }
        return FirstFailure({status, SetPKCS10CertReqAttributes(request, attributes),
                             SetPKCS10CertReqExtensions(request, extensions.get()),
                             AppendRsaAttributes(attributes, attributes),
                             GetPKCS10CertReqToBeSignedPart(request, toBeSigned, &length)});
    };
    const auto whole = Make<FreePKCS10CertReq>(CreatePKCS10CertReq);
    ASSERT_EQ(fill(whole.get()), StatusOk);
    const Bytes encoded = Fetch(EncodePKCS10CertReq, whole.get());
    FailEveryAllocation({
        {"build", [&] { return MakeFillAndFree<FreePKCS10CertReq>(CreatePKCS10CertReq, fill); }},
        {"decode", [&] { return MakeAndFree<FreePKCS10CertReq>(DecodePKCS10CertReq, encoded.data(), Size(encoded)); }},
        {"copy", [&] { return MakeAndFree<FreePKCS10CertReq>(CreatePKCS10CertReqCopy, whole.get()); }},
        {"extensions", [&] { return MakeAndFree<FreeX509Extensions>(GetPKCS10CertReqExtensions, whole.get()); }},
    });
}

}  // namespace
