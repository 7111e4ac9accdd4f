// Every allocation fails once: the answer is the out-of-memory status, nothing leaks, everything can still be freed.

#include <functional>

#include "engine/tmalloc.h"
#include "support.h"

using support::Bytes;
using support::operator+;
using tlvforge::instruments;

namespace {

using CertificateOwner = support::Owned<Certificate, FreeCertificate>;

// The first failure of a chain of calls; later calls are not made.
class Chain {
public:
    Chain& operator()(const std::function<Status()>& call) {
        if (status_ == StatusOk) status_ = call();
        return *this;
    }
    Status Result() const { return status_; }

private:
    Status status_ = StatusOk;
};

Status FillName(X509Name* name) {
    const Bytes commonName = support::Text("Example"), oid = support::OidOf("2.5.4.3");
    Chain chain;
    for (int32_t newRdn : {1, 0, 1}) {
        chain([&] { return AddX509NameEntry(name, commonName.data(), 7, 12, oid.data(), newRdn); });
    }
    return chain.Result();
}

Status Build(CertificateOwner* out) {
    const Bytes serial = support::Hex("0102"), algorithm = support::OidOf("1.2.840.10045.4.3.2");
    const Bytes key(65, 4), null = support::Hex("0500"), usage = support::OidOf("2.5.29.15");
    Certificate* raw = nullptr;
    LibraryTime time = {2024, 2, 29, 12, 0, 0}, later = {2060, 1, 1, 0, 0, 0};
    X509Name* name = nullptr;
    X509Extensions extensions = nullptr;
    Chain chain;
    chain([&] { return CreateCertificate(&raw); });
    out->reset(raw);
    return chain([&] { return SetCertificateVersion(raw, 2); })([&] {
               return SetCertificateSerialNumber(raw, serial.data(), 2);
           })([&] { return GetCertificateSubject(raw, &name); })([&] { return FillName(name); })([&] {
               return SetCertificateIssuer(raw, name);
           })([&] { return SetCertificateValidNotBefore(raw, &time); })([&] {
               return SetCertificateValidNotAfter(raw, &later);
           })([&] { return SetCertificatePublicKeyAlgorithmOidAndParameters(raw, algorithm.data(), null.data(), 2); })(
               [&] { return SetCertificatePublicKey(raw, key.data(), 65); })([&] {
               return SetCertificateSignatureAlgorithmOidAndParameters(raw, algorithm.data(), nullptr, 0);
           })([&] { return SetCertificateIssuerUniqueId(raw, key.data(), 3, 4); })([&] {
               return GetCertificateExtensions(raw, &extensions);
           })([&] { return AddX509ExtensionsExtension(extensions, usage.data(), 1, null.data(), 2); })([&] {
               return SetCertificateSubjectKeyIdentifier(raw);
           })([&] { return SetCertificateAuthorityKeyIdentifier2(raw, key.data(), 20, name, serial.data(), 2); })([&] {
               return SetCertificateExtensionCrlDistributionPoints(raw, "http://crl.example/1.crl");
           })([&] { return SetCertificateZelcryptKeyIdentifier(raw, "key"); })(
               [&] { return SetCertificateSignature(raw, key.data(), 64); })
        .Result();
}

// Sets and a list of many elements, which make the encoder and the decoder allocate.
Bytes LargeNames() {
    Bytes set;
    for (int i = 40; i-- > 0;) {
        set = set + support::Tlv(0x30, support::Hex("0603550403") + support::Tlv(0x0C, Bytes(3, uint8_t('A' + i))));
    }
    return support::Tlv(0x30, support::Tlv(0x31, set));
}

struct Scenario {
    const char* name;
    std::function<Status()> run;
};

std::vector<Scenario> Scenarios(const Bytes& encoded, Certificate* whole, const Bytes& names) {
    return {
        {"build",
         [] {
             CertificateOwner built;
             return Build(&built);
         }},
        {"decode",
         [&encoded] {
             Certificate* decoded = nullptr;
             const Status status = DecodeCertificate(encoded.data(), uint32_t(encoded.size()), &decoded);
             EXPECT_EQ(status == StatusOk, decoded != nullptr);
             return status + FreeCertificate(decoded);
         }},
        {"copy",
         [whole] {
             Certificate* copy = nullptr;
             const Status status = CreateCertificateCopy(whole, &copy);
             EXPECT_EQ(status == StatusOk, copy != nullptr);
             return status + FreeCertificate(copy);
         }},
        {"names: decode, sort, add, read",
         [&names] {
             X509Name* name = nullptr;
             X509GeneralNames* list = nullptr;
             X509Name* found = nullptr;
             Bytes out(names.size());
             uint32_t length = uint32_t(out.size());
             const Bytes value = support::Text("x"), oid = support::OidOf("2.5.4.3");
             Chain chain;
             chain([&] { return DecodeX509Name(names.data(), length, &name); })(
                 [&] { return EncodeX509Name(name, out.data(), &length); });
             for (int i = 0; i < 12; ++i)
                 chain([&] { return AddX509NameEntry(name, value.data(), 1, 12, oid.data(), 1); });
             chain([&] { return CreateX509GeneralNames(&list); })([&] {
                 return AddX509GeneralName(list, 4, out.data(), length);
             })([&] { return GetX509NameFromGeneralNames(list, &found); });
             return chain.Result() + FreeX509Name(name) + FreeX509GeneralNames(list) + FreeX509Name(found);
         }},
        {"authority key identifier: read",
         [whole] {
             uint8_t keyId[64], serial[64];
             uint32_t keyIdLength = 64, serialLength = 64;
             X509Name* issuer = nullptr;
             const Status status =
                 GetCertificateAuthorityKeyIdentifier2(whole, keyId, &keyIdLength, &issuer, serial, &serialLength);
             return status + FreeX509Name(issuer);
         }},
    };
}

TEST(Faults, EveryAllocationFailsOnceOrFromThenOn) {
    CertificateOwner whole;
    instruments = {};
    ASSERT_EQ(Build(&whole), StatusOk);
    const Bytes encoded =
        support::Fetch([&](uint8_t* out, uint32_t* n) { return EncodeCertificate(whole.get(), out, n); });
    const uint64_t built = instruments.allocations;
    (void)support::Fetch([&](uint8_t* out, uint32_t* n) { return EncodeCertificate(whole.get(), out, n); });
    EXPECT_EQ(instruments.allocations, built) << "encoding a certificate needs no memory";
    const Bytes names = LargeNames();
    for (const Scenario& scenario : Scenarios(encoded, whole.get(), names)) {
        SCOPED_TRACE(scenario.name);
        const uint64_t before = instruments.liveBlocks;
        for (const bool ever : {false, true}) {
            uint64_t fail = 0;
            Status status = StatusOutOfMemory;
            for (bool reached = true; reached;) {
                instruments = {.allocations = 0,
                               .liveBlocks = before,
                               .failAt = ++fail,
                               .failEverAfter = ever,
                               .decoderVisits = 0,
                               .encoderVisits = 0};
                status = scenario.run();
                reached = instruments.allocations >= fail;
                // A name that can't be decoded for want of memory is passed over as any broken one.
                EXPECT_TRUE(!reached || status == StatusOutOfMemory || status == StatusNotFound)
                    << fail << ": " << status;
                EXPECT_EQ(instruments.liveBlocks, before) << "leak at allocation " << fail;
            }
            instruments.failAt = 0;
            EXPECT_EQ(status, StatusOk);
            EXPECT_GT(fail, 1u) << "no allocation was tried";
        }
    }
}

}  // namespace
