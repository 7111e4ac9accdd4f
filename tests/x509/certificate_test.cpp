#include "support.h"

using namespace support;

namespace {

using Name = walk::Owned<FreeX509Name>;

const Bytes kKey = Text("abc"), kSerial = Hex("0080"), kSignature = Hex("0102"), kOther = Hex("0500"), kNone;
const LibraryTime kNotBefore = {2049, 12, 31, 23, 59, 58}, kNotAfter = {2050, 1, 2, 3, 4, 5};
const char kSha256Rsa[] = "1.2.840.113549.1.1.11", kUsage[] = "2.5.29.15";
const char kSubjectKeyId[] = "2.5.29.14", kAuthorityKeyId[] = "2.5.29.35", kZelcryptKeyId[] = "1.2.643.3.123.3.1";

// The content of a tbsCertificate without its version, and a certificate around such a content.
const Bytes kAlgorithm = Tlv(0x30, OidTlv(kSha256Rsa) + Hex("0500"));
const Bytes kMiddle = kAlgorithm + NameTlv("Root") +
                      Tlv(0x30, Tlv(23, Text("491231235958Z")) + Tlv(24, Text("20500102030405Z"))) + NameTlv("Leaf") +
                      Tlv(0x30, Tlv(0x30, OidTlv("1.2.840.113549.1.1.1")) + Tlv(3, Hex("00") + kKey));
const Bytes kFields =
    Hex("02020080") + kMiddle + Hex("810204F0 820200FF") + Tlv(0xA3, Tlv(0x30, ExtensionTlv(kUsage, kOther)));
Bytes CertificateOf(const Bytes& fields) { return Tlv(0x30, Tlv(0x30, fields) + kAlgorithm + Hex("0303000102")); }
const Bytes kWhole = CertificateOf(kFields);

X509Extensions HandleOf(const Certificate* certificate) {
    X509Extensions handle = nullptr;
    EXPECT_STATUS(StatusOk, GetCertificateExtensions(certificate, &handle));
    return handle;
}
Status Add(const Certificate* certificate, const char* oid, const Bytes& value) {
    return AddExtension(HandleOf(certificate), oid, value);
}
Bytes Extensions(const Certificate* certificate) { return Fetch(EncodeX509Extensions, HandleOf(certificate)); }

struct CertificateTest : testing::Test {
    const walk::Owned<FreeCertificate> decoded = Decoded<FreeCertificate>(DecodeCertificate, kWhole);
    walk::Owned<FreeCertificate> made = Make<FreeCertificate>(CreateCertificate);
    Certificate *const c = decoded.get(), *const fresh = made.get();
    X509Name* name = nullptr;
    uint32_t n = 0;
};

TEST_F(CertificateTest, BuiltFromNothingHasItsBytesAndReadsBack) {
    const Bytes oid = OidOf(kSha256Rsa), uid = Hex("FF"), fields = Hex("A003020102") + kFields;
    EXPECT_STATUS(StatusOk, SetCertificateVersion(fresh, 2), SetCertificateSerialNumber(fresh, kSerial.data(), 2),
                  SetCertificateSignatureAlgorithmOidAndParameters(fresh, oid.data(), kOther.data(), 2),
                  SetCertificateIssuer(fresh, NameOf("Root").get()),
                  SetCertificateSubject_i(fresh, NameOf("Old").release(), 0),
                  SetCertificateSubject_i(fresh, NameOf("Leaf").release(), 0),
                  SetCertificateValidNotBefore(fresh, &kNotBefore), SetCertificateValidNotAfter(fresh, &kNotAfter),
                  SetCertificatePublicKeyAlgorithmOidAndParameters(fresh, oid.data(), kOther.data(), 2),
                  SetCertificatePublicKeyAlgorithmIdAndParameters(fresh, AlgorithmRsaEncryption, nullptr, 0),
                  SetCertificatePublicKey(fresh, kKey.data(), 3), SetCertificateIssuerUniqueId(fresh, uid.data(), 1, 4),
                  SetCertificateSubjectUniqueId(fresh, uid.data(), 1, 0), Add(fresh, kUsage, kOther),
                  SetCertificateSignature(fresh, kSignature.data(), 2));
    EXPECT_EQ(ToHex(Fetch(EncodeCertificate, fresh)), ToHex(CertificateOf(fields)));
    EXPECT_EQ(Fetch(EncodeCertificate, Make<FreeCertificate>(CreateCertificateCopy, c).get()), kWhole);
    uint8_t unused = 9, byte = 0, other = 0;
    uint32_t length = 1;
    EXPECT_STATUS(StatusOk, GetCertificateIssuerUniqueId(c, &byte, &length, &unused),
                  GetCertificateSubjectUniqueId(c, &other, &length, nullptr));
    EXPECT_EQ((Bytes{byte, unused, other}), (Bytes{0xF0, 4, 0xFF}));
}

TEST_F(CertificateTest, FreshOneNeedsItsTimesAndLendsItsNames) {
    X509Name* again = nullptr;
    CHECK({SetCertificateVersion(c, 3), StatusBadArgument}, {GetCertificateIssuer(fresh, &name)},
          {GetCertificateIssuer(fresh, &again)}, {name == again, true}, {SetCertificateSubject(fresh, name)},
          {SetCertificateValidNotBefore(fresh, &kNotBefore)}, {EncodeCertificate(fresh, nullptr, &n), StatusAbsent},
          {SetCertificateValidNotAfter(fresh, &kNotAfter)}, {EncodeCertificate(fresh, nullptr, &n)});
}

TEST_F(CertificateTest, NamesAreCopiedOrAdoptedAsTheFlagSays) {
    const Name own = NameOf("Own");
    X509Name* const given = NameOf("Given").release();
    CHECK({SetCertificateIssuer_i(fresh, given, 0)}, {GetCertificateIssuer(fresh, &name)}, {name == given, true},
          {SetCertificateSubject_i(fresh, own.get(), -1)}, {GetCertificateSubject(fresh, &name)},
          {name == own.get(), false}, {CompareX509Names(name, own.get())});
}

TEST_F(CertificateTest, SettersTakeThePartsThatTheCertificateLentAndRemove) {
    int32_t version = 9;
    EXPECT_STATUS(StatusOk, GetCertificateVersion(c, &version), GetCertificateIssuer(c, &name),
                  SetCertificateIssuer_i(c, name, 0),
                  SetCertificateSerialNumber(c, ptr_GetCertificateSerialNumber(c, &n) + 1, 1),
                  SetCertificateExtensions(c, HandleOf(fresh)), SetCertificateIssuerUniqueId(c, nullptr, 0, 0),
                  SetCertificateSubjectUniqueId(c, kKey.data(), 3, 8));
    EXPECT_EQ(std::pair(version, n), std::pair(0, 2u));
    EXPECT_EQ(ToHex(Fetch(EncodeCertificate, c)), ToHex(CertificateOf(Hex("020180") + kMiddle + Hex("820100"))));
}

TEST_F(CertificateTest, ListAdoptsAndLends) {
    const auto list = Decoded<FreeCertificates>(DecodeCertificates, Tlv(0x30, kWhole));
    Certificate* lent = nullptr;
    const auto copy = Make<FreeCertificates>(CreateCertificatesCopy, list.get());
    EXPECT_EQ(Fetch(EncodeCertificates, copy.get()), Tlv(0x30, kWhole));
    CHECK({AddCertificateToCertificates(list.get(), made.release())},
          {GetCertificatesCertificate(list.get(), 1, &lent)}, {lent == fresh, true},
          {GetCertificatesCertificate(list.get(), 2, &lent), StatusBadArgument});
}

TEST_F(CertificateTest, SubjectKeyIdentifierIsTheHashOfTheKey) {
    const Bytes longKey(513), digest = Hex("A9993E364706816ABA3E25717850C26C9CD0D89D");
    CHECK({Add(fresh, kSubjectKeyId, kOther)}, {Add(fresh, kUsage, kOther)},
          {SetCertificatePublicKey(fresh, kKey.data(), 3)}, {SetCertificateSubjectKeyIdentifier(fresh)},
          {SetCertificatePublicKey(fresh, longKey.data(), 513)},
          {SetCertificateSubjectKeyIdentifier(fresh), StatusWorkBufferTooSmall},
          {Add(c, kSubjectKeyId, Tlv(4, Bytes(1021)))},  // an extension value of 1025 bytes
          {GetCertificateSubjectKeyIdentifier(c, nullptr, &n), StatusOutOfMemory});
    EXPECT_EQ(Extensions(fresh), Tlv(0x30, ExtensionTlv(kUsage, kOther) + ExtensionTlv(kSubjectKeyId, Tlv(4, digest))));
    EXPECT_EQ(Fetch(GetCertificateSubjectKeyIdentifier, fresh), digest);
}

TEST_F(CertificateTest, AuthorityKeyIdentifierNamesTheIssuersCertificate) {
    const auto expect = [&](const Bytes& keyId, const Bytes& serial, const std::string& text) {
        const Bytes value = Tlv(0x30, keyId + Tlv(0xA1, Tlv(0xA4, NameTlv(text))) + serial);
        EXPECT_EQ(ToHex(Extensions(fresh)), ToHex(Tlv(0x30, ExtensionTlv(kAuthorityKeyId, value))));
    };
    EXPECT_STATUS(StatusOk, SetCertificateAuthorityKeyIdentifier(fresh, c), Add(c, kSubjectKeyId, Tlv(4, kKey)));
    expect(kNone, Hex("82020080"), "Root");
    EXPECT_STATUS(StatusOk, SetCertificateAuthorityKeyIdentifier(fresh, c),
                  SetCertificateSerialNumber(c, kWhole.data(), 65));
    EXPECT_STATUS(StatusWorkBufferTooSmall, SetCertificateAuthorityKeyIdentifier(fresh, c));
    EXPECT_STATUS(StatusBadArgument,
                  SetCertificateAuthorityKeyIdentifier2(fresh, nullptr, 0, NameOf("x").get(), nullptr, 0));
    expect(Tlv(0x80, kKey), Hex("82020080"), "Root");
    const Bytes most(32, 1);
    EXPECT_STATUS(StatusOk, SetCertificateSerialNumber(c, kSerial.data(), 2), ClearX509Extensions(HandleOf(c)),
                  Add(c, kSubjectKeyId, Tlv(4, most)), SetCertificateAuthorityKeyIdentifier(fresh, c));
    expect(Tlv(0x80, most), Hex("82020080"), "Root");
    EXPECT_STATUS(StatusOk, ClearX509Extensions(HandleOf(c)), Add(c, kSubjectKeyId, Tlv(4, Bytes(33))),
                  SetCertificateAuthorityKeyIdentifier(fresh, c));
    expect(kNone, Hex("82020080"), "Root");
    const std::string text(3000, 'x');
    EXPECT_STATUS(StatusOk,
                  SetCertificateAuthorityKeyIdentifier2(fresh, kKey.data(), 3, NameOf(text).get(), nullptr, 0));
    expect(Tlv(0x80, kKey), kNone, text);
}

TEST_F(CertificateTest, AuthorityKeyIdentifierIsReadWithItsDirectoryName) {
    const Bytes keyId = Tlv(0x80, kKey), uri = Tlv(0x86, Text("u")), directory = Tlv(0xA4, NameTlv("Root"));
    const auto read = [&](const Bytes& value, uint32_t room, bool named = false) {
        uint8_t bytes[9];
        uint32_t serialLength = 0;
        CHECK({ClearX509Extensions(HandleOf(c))}, {value.empty() ? 0 : Add(c, kAuthorityKeyId, value), 0});
        name = reinterpret_cast<X509Name*>(bytes);  // stale
        const Status status = GetCertificateAuthorityKeyIdentifier2(c, bytes, &room, &name, bytes, &serialLength);
        EXPECT_EQ(Name(name) != nullptr, named) << ToHex(value);
        return status;
    };
    EXPECT_STATUS(StatusNotFound, read(kNone, 9), read(Tlv(0x30, Tlv(0xA1, uri)), 9));
    EXPECT_STATUS(StatusOk, read(Tlv(0x30, keyId), 9), read(Tlv(0x30, Tlv(0xA1, uri + directory)), 9, true));
    EXPECT_STATUS(StatusBufferTooSmall, read(Tlv(0x30, keyId + Tlv(0xA1, directory)), 2, true));
    EXPECT_STATUS(StatusWorkBufferTooSmall, read(Tlv(0x30, Tlv(0x80, Bytes(1017))), 9));
}

TEST_F(CertificateTest, ZelcryptTextIsStoredAsUtf8OrRemoved) {
    const std::string longest = std::string(64, '\xC0') + "z";
    EXPECT_STATUS(StatusOk, Add(fresh, kZelcryptKeyId, kOther),
                  SetCertificateZelcryptKeyIdentifier(fresh, longest.c_str()),
                  SetCertificateZelcryptKeyIdentifier(fresh, "\xC0z"));
    EXPECT_EQ(Extensions(fresh), Tlv(0x30, ExtensionTlv(kZelcryptKeyId, Hex("0C03D0907A"))));
    EXPECT_STATUS(StatusWorkBufferTooSmall, SetCertificateZelcryptKeyIdentifier(fresh, (longest + "z").c_str()));
    EXPECT_EQ(Extensions(fresh), Hex("3000"));
}

TEST_F(CertificateTest, MatchIsDecidedByKeyIdentifierOrElseBySerialAndIssuer) {
    const Name root = NameOf("Root"), other = NameOf("root"), no;
    const Bytes wrong(3), zeros(32);
    const auto match = [&](const Bytes& keyId, const Name& issuer, const Bytes& serial) {
        return IsCertificateCorrespondToAuthKeyIdent(c, keyId.data(), Size(keyId), issuer.get(), serial.data(),
                                                     Size(serial));
    };
    EXPECT_STATUS(StatusNotEqual, match(zeros, root, kSerial), match(kNone, other, kSerial), match(kNone, root, wrong),
                  match(kNone, root, kNone));
    EXPECT_STATUS(StatusBadArgument, match(kNone, no, kSerial), match(kNone, no, kNone));
    EXPECT_STATUS(StatusOk, match(kNone, root, kSerial), Add(c, kSubjectKeyId, Tlv(4, kKey)),
                  match(kKey, other, wrong));
    EXPECT_STATUS(StatusNotEqual, match(wrong, root, kSerial));
    EXPECT_STATUS(StatusOk, ClearX509Extensions(HandleOf(c)), Add(c, kSubjectKeyId, Tlv(4, Bytes(33))));
    EXPECT_STATUS(StatusWorkBufferTooSmall, match(kKey, no, kNone));
}

TEST_F(CertificateTest, GostKeyWantsSetsThatFitItsAlgorithm) {
    // Status; algorithm, form, sets of the key and of the digest, size of the key.
    // clang-format off
    const uint32_t rows[][6] = {
        {StatusOk, 102, 1, 1, 1, 64}, {StatusOk, 102, 1, 6, 2, 64}, {StatusOk, 3000, 1, 7, 3, 64},
        {StatusOk, 3000, 1, 9, 3, 64}, {StatusOk, 3001, 1, 8, 4, 128}, {StatusOk, 3001, 1, 12, 4, 128},
        {StatusOk, 3001, 1, 10, 4, 128}, {StatusBadKeyForm, 3001, 1, 7, 4, 128}, {StatusBadKeyForm, 3000, 1, 9, 2, 64},
        {StatusOk, 3000, 1, 9, 3, 165}, {StatusBufferTooSmall, 3000, 1, 9, 3, 166},
        {StatusBadKeyForm, 102, 1, 7, 1, 64}, {StatusBadKeyForm, 102, 1, 1, 3, 64},
        {StatusBadKeyForm, 3000, 1, 8, 3, 64}, {StatusBadKeyForm, 3000, 1, 10, 3, 64},
        {StatusBadKeyForm, 3000, 1, 1, 1, 64}, {StatusBadKeyForm, 3001, 1, 9, 4, 128},
        {StatusBadKeyForm, 3001, 1, 10, 3, 128}, {StatusBadKeyForm, 3001, 0, 0, 0, 64},
        {StatusBadKeyForm, 3001, 255, 0, 0, 64}, {StatusBadKeyForm, 3002, 1, 9, 3, 64}};
    // clang-format on
    const auto setAlgorithm = SetCertificateGostR34102001PublicKeyAlgorithmIdAndParameters;
    const auto get = GetCertificateDecodedPublicKeyGostR34102012;
    for (const auto& [status, algorithm, form, keySet, digestSet, size] : rows) {
        const Bytes key(size, 0x5A);
        Bytes out(n = size);
        Numbers sets(3);
        EXPECT_STATUS(StatusOk, SetCertificateGostR34102001PublicKey(c, key.data(), size),
                      setAlgorithm(c, algorithm, uint8_t(form), keySet, digestSet, 2));
        EXPECT_EQ(Fetch(GetCertificatePublicKeyGostR3410, c), key);
        EXPECT_EQ(get(c, out.data(), &n, &sets[0], &sets[1], &sets[2]), status) << algorithm << ", " << keySet;
        EXPECT_EQ(out == key && sets == (Numbers{keySet, digestSet, 2}), status == 0);
    }
    const Bytes oid = OidOf("1.2.643.7.1.1.1.1"), longOid = Bytes{99} + Bytes(99), longerOid = Bytes{100} + Bytes(100);
    const auto with = [&](const Bytes& algorithm, uint32_t size) {
        const Bytes parameters = Tlv(0x30, Bytes(size - 2));
        Numbers sets(3);
        const auto set = SetCertificatePublicKeyAlgorithmOidAndParameters;
        EXPECT_STATUS(StatusOk, set(c, algorithm.data(), parameters.data(), size));
        return get(c, nullptr, &n, &sets[0], &sets[1], &sets[2]);
    };
    EXPECT_STATUS(StatusBadEncoding, with(oid, 100));
    EXPECT_STATUS(StatusUnknownOid, with(longOid, 9));
    EXPECT_STATUS(StatusBufferTooSmall, with(oid, 101), with(longerOid, 9));
}

TEST_F(CertificateTest, GostSettersKeepTheirLimits) {
    const Bytes key(300);
    EXPECT_STATUS(StatusWorkBufferTooSmall, SetCertificateGostR34102001PublicKey(c, key.data(), 254));
    EXPECT_STATUS(StatusOk, SetCertificateGostR34102001PublicKey(c, key.data(), 253),
                  SetCertificatePublicKey(c, key.data(), 271));
    EXPECT_STATUS(StatusWorkBufferTooSmall, GetCertificatePublicKeyGostR3410(c, nullptr, &n));
    EXPECT_STATUS(StatusUnknownId, SetCertificateGostR34102001SignatureAlgorithmIDAndParameters(c, 3002, 1, 99, 1, 1));
    EXPECT_STATUS(StatusBadArgument, SetCertificateGostR34102001SignatureAlgorithmID(c, 3002, 1));
    EXPECT_STATUS(StatusOk, SetCertificatePublicKey(c, kKey.data(), 3));
    EXPECT_EQ(ToHex(Fetch(EncodeCertificate, c)), ToHex(kWhole)) << "unchanged";
    EXPECT_STATUS(StatusOk, SetCertificateGostR34102001SignatureAlgorithmID(c, 3002, 0));
    const std::string whole = ToHex(Fetch(EncodeCertificate, c)), oid = ToHex(OidTlv("1.2.643.7.1.1.3.2") + kOther);
    EXPECT_NE(whole.find(oid), whole.rfind(oid)) << "inner and outer";
}

}  // namespace
