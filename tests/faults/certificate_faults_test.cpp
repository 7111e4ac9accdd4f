// Every allocation fails once, for certificates and their parts.

#include "faults.h"

using faults::MakeAndFree;
using support::Bytes;
using support::Size;
using support::Tlv;
using support::operator+;
using tlvforge::instruments;

namespace {

using CertificateOwner = support::Owned<Certificate, FreeCertificate>;

Status FillName(X509Name* name) {
    const Bytes text = support::Text("Example"), oid = support::OidOf("2.5.4.3");
    Status status = StatusOk;
    for (int32_t i = 0; i < 12 && status == StatusOk; ++i)
        status = AddX509NameEntry(name, text.data(), 7, 12, oid.data(), i % 3 == 0);
    return status;
}

Status Build(CertificateOwner* out) {
    const Bytes serial = support::Hex("0102"), algorithm = support::OidOf("1.2.840.10045.4.3.2");
    const Bytes key(65, 4), null = support::Hex("0500"), usage = support::OidOf("2.5.29.15");
    const LibraryTime time = {2024, 2, 29, 12, 0, 0}, later = {2060, 1, 1, 0, 0, 0};
    Certificate* raw = nullptr;
    X509Name* name = nullptr;
    X509Extensions extensions = nullptr;
    Status status = CreateCertificate(&raw);
    out->reset(raw);
    (void)(status != StatusOk || (status = SetCertificateVersion(raw, 2)) ||
           (status = SetCertificateSerialNumber(raw, serial.data(), 2)) ||
           (status = GetCertificateSubject(raw, &name)) || (status = FillName(name)) ||
           (status = SetCertificateIssuer(raw, name)) || (status = SetCertificateValidNotBefore(raw, &time)) ||
           (status = SetCertificateValidNotAfter(raw, &later)) ||
           (status = SetCertificatePublicKeyAlgorithmOidAndParameters(raw, algorithm.data(), null.data(), 2)) ||
           (status = SetCertificatePublicKey(raw, key.data(), 65)) ||
           (status = SetCertificateSignatureAlgorithmOidAndParameters(raw, algorithm.data(), nullptr, 0)) ||
           (status = SetCertificateIssuerUniqueId(raw, key.data(), 3, 4)) ||
           (status = GetCertificateExtensions(raw, &extensions)) ||
           (status = AddX509ExtensionsExtension(extensions, usage.data(), 1, null.data(), 2)) ||
           (status = SetCertificateSubjectKeyIdentifier(raw)) ||
           (status = SetCertificateAuthorityKeyIdentifier2(raw, key.data(), 20, name, serial.data(), 2)) ||
           (status = SetCertificateExtensionCrlDistributionPoints(raw, "http://crl.example/1.crl")) ||
           (status = SetCertificateZelcryptKeyIdentifier(raw, "key")) ||
           (status = SetCertificateSignature(raw, key.data(), 64)));
    return status;
}

// A set and a list of many elements, which make the encoder and the decoder allocate.
Bytes LargeName() {
    const Bytes type = support::OidTlv("2.5.4.3");
    Bytes set;
    for (uint8_t c = 'A' + 40; c-- > 'A';) set = set + Tlv(0x30, type + Tlv(0x0C, Bytes(3, c)));
    return Tlv(0x30, Tlv(0x31, set));
}

Status DecodeAndEncodeName(const Bytes& encoded) {
    X509Name *name = nullptr, *found = nullptr;
    X509GeneralNames* names = nullptr;
    Bytes out(encoded.size());
    uint32_t length = Size(out);
    Status status = StatusOk;
    (void)((status = DecodeX509Name(encoded.data(), length, &name)) ||
           (status = EncodeX509Name(name, out.data(), &length)) || (status = FillName(name)) ||
           (status = CreateX509GeneralNames(&names)) || (status = AddX509GeneralName(names, 4, out.data(), length)) ||
           (status = GetX509NameFromGeneralNames(names, &found)));
    return status + FreeX509Name(name) + FreeX509GeneralNames(names) + FreeX509Name(found);
}

Status GrowPolicies() {
    const Bytes oid = support::OidOf("1.2.3");
    ExtensionCertificatePolicies* policies = nullptr;
    uint32_t length = 0;
    Status status = CreateExtensionCertificatePolicies(&policies);
    for (int i = 0; i < 12 && status == StatusOk; ++i) {
        (void)((status = AddExtensionPolicyInformation(policies, oid.data(), nullptr)) ||
               (status = AddExtensionPolicyQualifier(policies, 0, oid.data(), nullptr, 0)));
    }
    if (status == StatusOk) status = EncodeExtensionCertificatePolicies(policies, nullptr, &length);
    return status + FreeExtensionCertificatePolicies(policies);
}

faults::Scenarios Scenarios(const Bytes& encoded, const Certificate* whole) {
    const auto build = [] {
        CertificateOwner built;
        return Build(&built);
    };
    const auto readIdentifier = [whole] {
        uint8_t keyId[64], serial[64];
        uint32_t keyIdLength = 64, serialLength = 64;
        X509Name* issuer = nullptr;
        const Status status =
            GetCertificateAuthorityKeyIdentifier2(whole, keyId, &keyIdLength, &issuer, serial, &serialLength);
        return status + FreeX509Name(issuer);
    };
    return {{"build", build},
            {"decode", [&] { return MakeAndFree<FreeCertificate>(DecodeCertificate, encoded.data(), Size(encoded)); }},
            {"copy", [whole] { return MakeAndFree<FreeCertificate>(CreateCertificateCopy, whole); }},
            {"authority key identifier", readIdentifier},
            {"name", [name = LargeName()] { return DecodeAndEncodeName(name); }},
            {"policies", GrowPolicies}};
}

TEST(Faults, EveryAllocationFailsOnceOrFromThenOn) {
    CertificateOwner whole;
    instruments = {};
    ASSERT_EQ(Build(&whole), StatusOk);
    const uint64_t built = instruments.allocations;
    const Bytes encoded = support::Fetch(EncodeCertificate, whole.get());
    EXPECT_EQ(instruments.allocations, built) << "encoding a certificate needs no memory";
    // A name that can't be decoded for want of memory is passed over as any broken one.
    faults::FailEveryAllocation(Scenarios(encoded, whole.get()), StatusNotFound);
}

}  // namespace
