// Every allocation fails once, for revocation lists and requests.

#include "faults.h"

using faults::MakeAndFree;
using support::Bytes;
using support::OidOf;
using support::Size;
using support::Tlv;
using support::operator+;

namespace {

const LibraryTime kTime = {2024, 2, 29, 12, 0, 0}, kLater = {2060, 1, 1, 0, 0, 0};
const Bytes kNull = {5, 0}, kKey(64, 4), kCommonName = OidOf("2.5.4.3");

Bytes NameTlv() { return Tlv(0x30, Tlv(0x31, Tlv(0x30, support::OidTlv("2.5.4.3") + Tlv(0x0C, support::Text("a"))))); }

// Three entries carry an issuer, with or without a name of another type.
Status BuildCrl(bool directoryAlone, X509Crl** out) {
    const Bytes reason = OidOf("2.5.29.21"), issuer = OidOf("2.5.29.29"), algorithm = OidOf("1.2.840.10045.4.3.2");
    const Bytes names = Tlv(0x30, (directoryAlone ? Bytes() : Tlv(0x82, kNull)) + Tlv(0xA4, NameTlv()));
    X509Crl* crl = nullptr;
    X509Name* name = nullptr;
    X509Extensions handle = nullptr;
    uint32_t index = 0;
    Status status = CreateX509Crl(&crl);
    walk::Owned<FreeX509Crl> owner(crl);
    (void)(status || (status = SetX509CrlVersion(crl, 1)) || (status = GetX509CrlIssuer(crl, &name)) ||
           (status = AddX509NameEntry(name, kKey.data(), 9, 12, kCommonName.data(), 1)) ||
           (status = SetX509CrlThisUpdate(crl, &kTime)) || (status = SetX509CrlNextUpdate(crl, &kLater)) ||
           (status = SetX509CrlSignatureAlgorithmOidAndParameters(crl, algorithm.data(), kNull.data(), 2)) ||
           (status = SetX509CrlAuthorityKeyIdentifier2(crl, kKey.data(), 20, name, kKey.data(), 3)));
    for (uint8_t i = 1; i <= 15 && status == StatusOk; ++i) {
        (void)((status = AddX509CrlRevokedCertificate(crl, &i, 1, &kTime, &index)) ||
               (status = GetX509CrlRevokedCertificateExtensions(crl, index, &handle)) ||
               (status = AddX509ExtensionsExtension(handle, reason.data(), 0, kNull.data(), 2)) ||
               (i % 5 == 0 &&
                (status = AddX509ExtensionsExtension(handle, issuer.data(), 1, names.data(), Size(names)))));
    }
    if (status == StatusOk) *out = owner.release();
    return status;
}

TEST(Faults, RevocationLists) {
    const auto plain = support::Make<FreeX509Crl>(BuildCrl, true), mixed = support::Make<FreeX509Crl>(BuildCrl, false);
    const auto name = support::Decoded<FreeX509Name>(DecodeX509Name, NameTlv());
    const auto find = [&](X509Crl* crl) {
        uint32_t index = 0;
        const Status status = FindX509CrlFind(crl, name.get(), Bytes{15}.data(), 1, &index);
        EXPECT_EQ(index, status == StatusOk ? 14u : 0u);
        return status;
    };
    const uint64_t before = faults::instruments.allocations;
    const Bytes encoded = support::Fetch(EncodeX509Crl, plain.get());
    EXPECT_EQ(faults::instruments.allocations, before) << "encoding needs no memory";
    ASSERT_EQ(find(plain.get()), StatusOk);
    EXPECT_EQ(faults::instruments.allocations, before + 1) << "a lookup needs memory for the name alone";
    faults::FailEveryAllocation({
        {"build", [] { return MakeAndFree<FreeX509Crl>(BuildCrl, true); }},
        {"decode", [&] { return MakeAndFree<FreeX509Crl>(DecodeX509Crl, encoded.data(), Size(encoded)); }},
        {"copy", [&] { return MakeAndFree<FreeX509Crl>(CreateX509CrlCopy, plain.get()); }},
        {"lookup", [&] { return find(plain.get()); }},
        {"lookup among names of other types", [&] { return find(mixed.get()); }},
    });
}

// Twenty values, and as many attributes, in the reverse of DER order.
Status BuildRequest(PKCS10CertReq** out) {
    const Bytes algorithm = OidOf("1.2.643.7.1.1.3.2"), usage = OidOf("2.5.29.15"), subject = NameTlv();
    PKCS10CertReq* request = nullptr;
    RsaAttributes attributes = nullptr;
    X509Name* name = nullptr;
    X509Extensions extensions = nullptr;
    uint8_t toBeSigned[2000];
    uint32_t index = 0, length = sizeof toBeSigned;
    Status status = CreatePKCS10CertReq(&request);
    walk::Owned<FreePKCS10CertReq> owner(request);
    (void)(status || (status = DecodeX509Name(subject.data(), Size(subject), &name)) ||
           (status = SetPKCS10CertReqVersion(request, 0)) || (status = SetPKCS10CertReqSubject(request, name)) ||
           (status = SetPKCS10CertReqGostR34102001PublicKeyAlgorithmIdAndParameters(
                request, AlgorithmGostR34102012Key256, ParametersFormGost, 1, 1, 1)) ||
           (status = SetPKCS10CertReqGostR34102012PublicKey(request, kKey.data(), 64)) ||
           (status = SetPKCS10CertReqSignatureAlgorithmOidAndParameters(request, algorithm.data(), nullptr, 0)) ||
           (status = SetPKCS10CertReqSignature(request, kKey.data(), 64)) ||
           (status = CreateX509Extensions(&extensions)) ||
           (status = AddX509ExtensionsExtension(extensions, usage.data(), 1, kNull.data(), 2)) ||
           (status = GetPKCS10CertReqAttributes(request, &attributes)));
    for (uint8_t i = 20; i > 0 && status == StatusOk; --i) {
        const uint8_t oid[] = {2, 0x2A, i}, value[] = {2, 1, i};
        (void)((status = AddRsaAttributesAttributeWithValue(attributes, oid, &index, value, 3)) ||
               (status = AddRsaAttributesAttributeValue(attributes, 0, value, 3)));
    }
    (void)(status || (status = SetPKCS10CertReqAttributes(request, attributes)) ||
           (status = SetPKCS10CertReqExtensions(request, extensions)) ||
           (status = AppendRsaAttributes(attributes, attributes)) ||
           (status = GetPKCS10CertReqToBeSignedPart(request, toBeSigned, &length)));
    if (status == StatusOk) *out = owner.release();
    return status + FreeX509Name(name) + FreeX509Extensions(extensions);
}

TEST(Faults, Requests) {
    const auto whole = support::Make<FreePKCS10CertReq>(BuildRequest);
    const Bytes encoded = support::Fetch(EncodePKCS10CertReq, whole.get());
    faults::FailEveryAllocation({
        {"build", [] { return MakeAndFree<FreePKCS10CertReq>(BuildRequest); }},
        {"decode", [&] { return MakeAndFree<FreePKCS10CertReq>(DecodePKCS10CertReq, encoded.data(), Size(encoded)); }},
        {"copy", [&] { return MakeAndFree<FreePKCS10CertReq>(CreatePKCS10CertReqCopy, whole.get()); }},
        {"extensions", [&] { return MakeAndFree<FreeX509Extensions>(GetPKCS10CertReqExtensions, whole.get()); }},
    });
}

}  // namespace
