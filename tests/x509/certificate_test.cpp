#include "support.h"

using namespace support;

namespace {

using Cert = Owned<Certificate, FreeCertificate>;
using Name = Owned<X509Name, FreeX509Name>;

const Bytes kKey = Text("abc"), kSerial = Hex("0080"), kSignature = Hex("0102"), kOther = Hex("0500"), kNone;
const LibraryTime kNotBefore = {2049, 12, 31, 23, 59, 58}, kNotAfter = {2050, 1, 2, 3, 4, 5};
const char kSha256Rsa[] = "1.2.840.113549.1.1.11", kUsage[] = "2.5.29.15";
const char kSubjectKeyId[] = "2.5.29.14", kAuthorityKeyId[] = "2.5.29.35", kZelcryptKeyId[] = "1.2.643.3.123.3.1";

uint32_t Size(const Bytes& bytes) { return static_cast<uint32_t>(bytes.size()); }
Bytes OidTlv(const char* dotted) { return Bytes{6} + OidOf(dotted); }
Bytes ExtensionTlv(const char* oid, const Bytes& value) { return Tlv(0x30, OidTlv(oid) + Tlv(4, value)); }
Bytes NameTlv(const std::string& text) {
    return Tlv(0x30, Tlv(0x31, Tlv(0x30, OidTlv("2.5.4.3") + Tlv(12, Text(text)))));
}
Name NameOf(const std::string& text) {
    const Bytes in = NameTlv(text);
    return Make<X509Name, FreeX509Name>([&](auto out) { return DecodeX509Name(in.data(), Size(in), out); });
}

// The content of a tbsCertificate without its version, and a certificate around such a content.
const Bytes kAlgorithm = Tlv(0x30, OidTlv(kSha256Rsa) + Hex("0500"));
const Bytes kMiddle = kAlgorithm + NameTlv("Root") +
                      Tlv(0x30, Tlv(23, Text("491231235958Z")) + Tlv(24, Text("20500102030405Z"))) + NameTlv("Leaf") +
                      Tlv(0x30, Tlv(0x30, OidTlv("1.2.840.113549.1.1.1")) + Tlv(3, Hex("00") + kKey));
const Bytes kFields =
    Hex("02020080") + kMiddle + Hex("810204F0 820200FF") + Tlv(0xA3, Tlv(0x30, ExtensionTlv(kUsage, kOther)));
Bytes CertificateOf(const Bytes& fields) { return Tlv(0x30, Tlv(0x30, fields) + kAlgorithm + Hex("0303000102")); }
const Bytes kWhole = CertificateOf(kFields);

// Calls made one after the other, and values looked at between them, each with what it must give.
void Check(std::initializer_list<std::pair<Status, Status>> calls) {
    for (const auto& call : calls) EXPECT_EQ(call.first, call.second) << "call " << &call - calls.begin();
}
Bytes Get(Status (*get)(const Certificate*, uint8_t*, uint32_t*), const Certificate* certificate) {
    return Fetch([&](uint8_t* out, uint32_t* length) { return get(certificate, out, length); });
}
X509Extensions HandleOf(const Certificate* certificate) {
    X509Extensions handle = nullptr;
    EXPECT_EQ(GetCertificateExtensions(certificate, &handle), StatusOk);
    return handle;
}
Status Add(const Certificate* certificate, const char* oid, const Bytes& value) {
    return AddX509ExtensionsExtension(HandleOf(certificate), OidOf(oid).data(), 0, value.data(), Size(value));
}
Bytes Extensions(const Certificate* certificate) {
    return Fetch([&](auto out, auto n) { return EncodeX509Extensions(HandleOf(certificate), out, n); });
}

struct CertificateTest : testing::Test {
    const Cert decoded = Make<Certificate, FreeCertificate>(
        [](auto out) { return DecodeCertificate(kWhole.data(), Size(kWhole), out); });
    Cert made = Make<Certificate, FreeCertificate>(CreateCertificate);
    Certificate *const c = decoded.get(), *const fresh = made.get();
    X509Name* name = nullptr;
    uint32_t n = 0;
};
using CertificateKeyIdentifiers = CertificateTest;

TEST_F(CertificateTest, BuiltFromNothingHasItsBytesAndReadsBack) {
    const Bytes oid = OidOf(kSha256Rsa), uid = Hex("FF"), fields = Hex("A003020102") + kFields;
    Check({{SetCertificateVersion(fresh, 2), 0},
           {SetCertificateSerialNumber(fresh, kSerial.data(), 2), 0},
           {SetCertificateSignatureAlgorithmOidAndParameters(fresh, oid.data(), kOther.data(), 2), 0},
           {SetCertificateIssuer(fresh, NameOf("Root").get()), 0},
           {SetCertificateSubject_i(fresh, NameOf("Old").release(), 0), 0},
           {SetCertificateSubject_i(fresh, NameOf("Leaf").release(), 0), 0},
           {SetCertificateValidNotBefore(fresh, &kNotBefore), 0},
           {SetCertificateValidNotAfter(fresh, &kNotAfter), 0},
           {SetCertificatePublicKeyAlgorithmIdAndParameters(fresh, AlgorithmRsaEncryption, nullptr, 0), 0},
           {SetCertificatePublicKey(fresh, kKey.data(), 3), 0},
           {Add(fresh, kUsage, kOther), 0},
           {SetCertificateIssuerUniqueId(fresh, uid.data(), 1, 4), 0},
           {SetCertificateSubjectUniqueId(fresh, uid.data(), 1, 0), 0},
           {SetCertificateSignature(fresh, kSignature.data(), 2), 0}});
    EXPECT_EQ(ToHex(Get(EncodeCertificate, fresh)), ToHex(CertificateOf(fields)));
    EXPECT_EQ(Get(GetCertificateToBeSignedPart, fresh), Tlv(0x30, fields));
    EXPECT_EQ(Get(GetCertificatePublicKey, c) + Get(GetCertificateSignature, c), kKey + kSignature);
    LibraryTime time = {};
    uint8_t unused = 9, byte = 0;
    uint32_t length = 1;
    Check({{GetCertificateIssuer(c, &name), 0},
           {CompareX509Names(name, NameOf("Root").get()), 0},
           {GetCertificateSubject(c, &name), 0},
           {CompareX509Names(name, NameOf("Leaf").get()), 0},
           {GetCertificateValidNotBefore(c, &time), 0},
           {CompareTime(&time, &kNotBefore), 0},
           {GetCertificateValidNotAfter(c, &time), 0},
           {CompareTime(&time, &kNotAfter), 0},
           {GetCertificateIssuerUniqueId(c, &byte, &length, &unused), 0},
           {byte, 0xF0},
           {unused, 4},
           {GetCertificatePublicKeyAlgorithmOidAndParameters(c, &byte, &n, &byte, &length), 49},
           {n, 10},
           {length, 0},
           {GetCertificateSignatureAlgorithmOidAndParameters(c, nullptr, &n, &byte, &length), 49},
           {length, 2}});
}

TEST_F(CertificateTest, FreshOneAndBadArgumentsAreAnswered) {
    Certificate* copy = nullptr;
    LibraryTime none = {};
    X509Name* again = nullptr;
    Check({{GetCertificateToBeSignedPart(fresh, nullptr, &n), 311},
           {CreateCertificateCopy(fresh, &copy), 32},
           {GetCertificateSerialNumber(fresh, nullptr, &n), 0},
           {n, 0},
           {GetCertificatePublicKeyGostR3410(fresh, nullptr, &n), 302},
           {GetCertificateSignature(fresh, nullptr, &n), 311},
           {SetCertificateSubjectKeyIdentifier(fresh), 311},
           {GetCertificateValidNotAfter(fresh, &none), 302},
           {SetCertificateValidNotAfter(fresh, &none), 313},
           {SetCertificateValidNotBefore(fresh, nullptr), 313},
           {IsCertificateCorrespondToAuthKeyIdent(fresh, nullptr, 0, nullptr, kKey.data(), 1), 307},
           {SetCertificateVersion(c, 3), 32},
           {SetCertificateSerialNumber(c, kKey.data(), 0), 32},
           {GetCertificateIssuer(fresh, &name), 0},
           {GetCertificateIssuer(fresh, &again), 0},
           {name == again, 1},
           {GetCertificateSubject(fresh, &name), 0},
           {SetCertificateValidNotBefore(fresh, &kNotBefore), 0},
           {SetCertificateValidNotAfter(fresh, &kNotAfter), 0},
           {EncodeCertificate(fresh, nullptr, &n), 0}});
}

TEST_F(CertificateTest, SettersTakeThePartsThatTheCertificateLent) {
    int32_t version = 9;
    Check({{GetCertificateVersion(c, &version), 0},
           {version, 0},
           {GetCertificateIssuer(c, &name), 0},
           {SetCertificateIssuer_i(c, name, 0), 0},
           {SetCertificateIssuer(c, name), 0},
           {SetCertificateExtensions(c, HandleOf(c)), 0},
           {SetCertificateSerialNumber(c, ptr_GetCertificateSerialNumber(c, &n), 2), 0}});
    EXPECT_EQ(ToHex(Get(EncodeCertificate, c)), ToHex(kWhole));
    Check({{SetCertificateSerialNumber(c, ptr_GetCertificateSerialNumber(c, &n) + 1, 1), 0},
           {n, 2},
           {SetCertificateExtensions(c, HandleOf(fresh)), 0},
           {SetCertificateIssuerUniqueId(c, nullptr, 0, 0), 0},
           {SetCertificateSubjectUniqueId(c, kKey.data(), 3, 8), 0}});
    EXPECT_EQ(Get(GetCertificateSerialNumber, c), Hex("80"));
    EXPECT_EQ(ToHex(Get(EncodeCertificate, c)), ToHex(CertificateOf(Hex("020180") + kMiddle + Hex("820100"))));
}

TEST_F(CertificateTest, ListAdoptsAndLends) {
    const auto list = Make<Certificates, FreeCertificates>(CreateCertificates);
    Certificate* lent = nullptr;
    Check({{AddCertificateToCertificates(list.get(), made.release()), 0},
           {GetCertificatesCount(list.get(), &n), 0},
           {n, 1},
           {GetCertificatesCertificate(list.get(), 0, &lent), 0},
           {lent == fresh, 1},
           {GetCertificatesCertificate(list.get(), 1, &lent), 32}});
}

TEST_F(CertificateKeyIdentifiers, SubjectKeyIdentifierIsTheHashOfTheKey) {
    const Bytes longKey(513), digest = Hex("A9993E364706816ABA3E25717850C26C9CD0D89D");
    Check({{Add(fresh, kSubjectKeyId, kOther), 0},
           {Add(fresh, kUsage, kOther), 0},
           {SetCertificatePublicKey(fresh, kKey.data(), 3), 0},
           {SetCertificateSubjectKeyIdentifier(fresh), 0},
           {SetCertificatePublicKey(fresh, longKey.data(), 513), 0},
           {SetCertificateSubjectKeyIdentifier(fresh), 338},
           {Add(c, kSubjectKeyId, Tlv(4, Bytes(1021))), 0},
           {GetCertificateSubjectKeyIdentifier(c, nullptr, &n), 1}});
    EXPECT_EQ(Extensions(fresh), Tlv(0x30, ExtensionTlv(kUsage, kOther) + ExtensionTlv(kSubjectKeyId, Tlv(4, digest))));
    EXPECT_EQ(Get(GetCertificateSubjectKeyIdentifier, fresh), digest);
}

TEST_F(CertificateKeyIdentifiers, AuthorityKeyIdentifierNamesTheIssuersCertificate) {
    const auto expect = [&](const Bytes& keyId, const Bytes& serial, const std::string& text) {
        const Bytes value = Tlv(0x30, keyId + Tlv(0xA1, Tlv(0xA4, NameTlv(text))) + serial);
        EXPECT_EQ(ToHex(Extensions(fresh)), ToHex(Tlv(0x30, ExtensionTlv(kAuthorityKeyId, value))));
    };
    Check({{SetCertificateAuthorityKeyIdentifier(fresh, c), 0}});
    expect(kNone, Hex("82020080"), "Root");
    Check({{Add(c, kSubjectKeyId, Tlv(4, kKey)), 0},
           {SetCertificateAuthorityKeyIdentifier(fresh, c), 0},
           {SetCertificateSerialNumber(c, kWhole.data(), 65), 0},
           {SetCertificateAuthorityKeyIdentifier(fresh, c), 338}});
    expect(Tlv(0x80, kKey), Hex("82020080"), "Root");
    const std::string text(3000, 'x');
    Check({{SetCertificateAuthorityKeyIdentifier2(fresh, kKey.data(), 3, NameOf(text).get(), nullptr, 0), 0},
           {SetCertificateAuthorityKeyIdentifier2(fresh, nullptr, 0, NameOf("x").get(), nullptr, 0), 32}});
    expect(Tlv(0x80, kKey), kNone, text);
}

TEST_F(CertificateKeyIdentifiers, AuthorityKeyIdentifierIsReadWithItsDirectoryName) {
    const Bytes keyId = Tlv(0x80, kKey), uri = Tlv(0x86, Text("u")), directory = Tlv(0xA4, NameTlv("Root"));
    bool named = false;
    const auto read = [&](const Bytes& value, uint32_t room) {
        uint8_t bytes[9];
        uint32_t serialLength = 0;
        Check({{ClearX509Extensions(HandleOf(c)), 0}, {value.empty() ? 0 : Add(c, kAuthorityKeyId, value), 0}});
        name = reinterpret_cast<X509Name*>(bytes);  // stale
        const Status status = GetCertificateAuthorityKeyIdentifier2(c, bytes, &room, &name, bytes, &serialLength);
        named = Name(name) != nullptr;
        return status;
    };
    Check({{read(kNone, 9), 322},
           {named, 0},
           {read(Tlv(0x30, keyId), 9), 0},
           {named, 0},
           {read(Tlv(0x30, Tlv(0xA1, uri + directory)), 9), 0},
           {named, 1},
           {read(Tlv(0x30, keyId + Tlv(0xA1, directory)), 2), 49},
           {named, 1},
           {read(Tlv(0x30, Tlv(0xA1, uri)), 9), 322},
           {named, 0},
           {read(Tlv(0x30, Tlv(0x80, Bytes(1017))), 9), 338}});
}

TEST_F(CertificateKeyIdentifiers, ZelcryptTextIsStoredAsUtf8OrRemoved) {
    const std::string longest(65, '\xC0');
    Check({{Add(fresh, kZelcryptKeyId, kOther), 0},
           {SetCertificateZelcryptKeyIdentifier(fresh, longest.c_str()), 0},
           {SetCertificateZelcryptKeyIdentifier(fresh, "\xC0z"), 0}});
    EXPECT_EQ(Extensions(fresh), Tlv(0x30, ExtensionTlv(kZelcryptKeyId, Hex("0C03D0907A"))));
    Check({{SetCertificateZelcryptKeyIdentifier(fresh, (longest + '\xC0').c_str()), 338}});
    EXPECT_EQ(Extensions(fresh), Hex("3000"));
}

TEST_F(CertificateKeyIdentifiers, MatchIsDecidedByKeyIdentifierOrElseBySerialAndIssuer) {
    const Name root = NameOf("Root"), other = NameOf("root"), no;
    const Bytes wrong(3), zeros(32);
    const auto match = [&](const Bytes& keyId, const Name& issuer, const Bytes& serial) {
        return IsCertificateCorrespondToAuthKeyIdent(c, keyId.data(), Size(keyId), issuer.get(), serial.data(),
                                                     Size(serial));
    };
    Check({{match(zeros, root, kSerial), 320},
           {Add(c, kSubjectKeyId, Tlv(4, kKey)), 0},
           {match(kKey, other, wrong), 0},
           {match(wrong, root, kSerial), 320},
           {match(kNone, root, kSerial), 0},
           {match(kNone, other, kSerial), 320},
           {match(kNone, root, wrong), 320},
           {match(kNone, root, kNone), 320},
           {match(kNone, no, kSerial), 32},
           {match(kNone, no, kNone), 32},
           {ClearX509Extensions(HandleOf(c)), 0},
           {Add(c, kSubjectKeyId, Tlv(4, Bytes(33))), 0},
           {match(kKey, no, kNone), 338}});
}

TEST_F(CertificateTest, GostKeyWantsSetsThatFitItsAlgorithm) {
    const auto read = [&](uint32_t algorithm, uint8_t form, uint32_t keySet, uint32_t digestSet, uint32_t size) {
        const Bytes key(size, 0x5A);
        Bytes out(size);
        uint32_t sets[3] = {};
        Check({{SetCertificateGostR34102001PublicKeyAlgorithmIdAndParameters(c, algorithm, form, keySet, digestSet, 2),
                0},
               {SetCertificateGostR34102001PublicKey(c, key.data(), size), 0}});
        EXPECT_EQ(Get(GetCertificatePublicKeyGostR3410, c), key);
        const Status status =
            GetCertificateDecodedPublicKeyGostR34102012(c, out.data(), &size, &sets[0], &sets[1], &sets[2]);
        if (status == StatusOk) Check({{sets[0], keySet}, {sets[1], digestSet}, {sets[2], 2}, {out == key, 1}});
        return status;
    };
    Check({{read(102, 1, 1, 1, 64), 0},
           {read(102, 1, 6, 2, 64), 0},
           {read(102, 1, 7, 1, 64), 317},
           {read(102, 1, 1, 3, 64), 317},
           {read(3000, 1, 7, 3, 64), 0},
           {read(3000, 1, 9, 3, 64), 0},
           {read(3000, 1, 8, 3, 64), 317},
           {read(3000, 1, 10, 3, 64), 317},
           {read(3000, 1, 1, 1, 64), 317},
           {read(3001, 1, 8, 4, 128), 0},
           {read(3001, 1, 12, 4, 128), 0},
           {read(3001, 1, 9, 4, 128), 317},
           {read(3001, 1, 10, 3, 128), 317},
           {read(3001, 0, 0, 0, 128), 317},
           {read(3001, 255, 0, 0, 128), 317},
           {read(3002, 1, 9, 3, 64), 317},
           {read(3000, 1, 9, 3, 165), 0},
           {read(3000, 1, 9, 3, 166), 49}});
}

TEST_F(CertificateTest, GostSettersKeepTheirLimits) {
    const Bytes key(300);
    Check({{SetCertificateGostR34102001PublicKey(c, key.data(), 253), 0},
           {SetCertificateGostR34102001PublicKey(c, key.data(), 254), 338},
           {SetCertificatePublicKey(c, key.data(), 271), 0},
           {GetCertificatePublicKeyGostR3410(c, nullptr, &n), 338},
           {SetCertificatePublicKey(c, kKey.data(), 3), 0},
           {SetCertificateGostR34102001SignatureAlgorithmIDAndParameters(c, 3002, 1, 99, 1, 1), 309},
           {SetCertificateGostR34102001SignatureAlgorithmID(c, 3002, 1), 32}});
    EXPECT_EQ(ToHex(Get(EncodeCertificate, c)), ToHex(kWhole)) << "unchanged";
}

}  // namespace
