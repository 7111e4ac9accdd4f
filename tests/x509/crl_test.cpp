#include "support.h"

using namespace support;

namespace {

const Bytes kOne = Hex("01"), kSerial = Hex("0080"), kNull = Hex("0500");
const LibraryTime kUtc = {2049, 12, 31, 23, 59, 58}, kLater = {2050, 1, 2, 3, 4, 5}, kNoTime = {};

// A CRL of version 2 around its entries.
const Bytes kUtcTlv = Tlv(23, Text("491231235958Z")), kLaterTlv = Tlv(24, Text("20500102030405Z"));
const Bytes kAlgorithm = Tlv(0x30, OidTlv("1.2.840.113549.1.1.11") + kNull), kReason = ExtensionTlv("2.5.29.21", kNull);
Bytes Entry(const Bytes& serial, const Bytes& rest = {}) { return Tlv(0x30, Tlv(2, serial) + kUtcTlv + rest); }
Bytes CrlOf(const Bytes& entries, const Bytes& algorithm = kAlgorithm) {
    const Bytes fields = algorithm + NameTlv("Root") + kUtcTlv + kLaterTlv + entries + Tlv(0xA0, Tlv(0x30, kReason));
    return Tlv(0x30, Tlv(0x30, Hex("020101") + fields) + algorithm + Hex("03020001"));
}
const Bytes kEntries = Tlv(0x30, Entry(kOne) + Entry(kSerial, Tlv(0x30, kReason))), kWhole = CrlOf(kEntries);

Status AddReason(X509Extensions handle) { return AddExtension(handle, "2.5.29.21", kNull); }
uint32_t Find(X509Crl* crl, const std::string& issuer, const Bytes& serial) {
    uint32_t index = 9;
    const Status status = FindX509CrlFind(crl, NameOf(issuer).get(), serial.data(), Size(serial), &index);
    return status == StatusOk ? index : status;
}

struct CrlTest : testing::Test {
    const walk::Owned<FreeX509Crl> decoded = Decoded<FreeX509Crl>(DecodeX509Crl, kWhole);
    walk::Owned<FreeX509Crl> made = Make<FreeX509Crl>(CreateX509Crl);
    X509Crl *const c = decoded.get(), *const fresh = made.get(), *lent = nullptr;
    const walk::Owned<FreeX509Name> root = NameOf("Root");
    X509Extensions handle = nullptr;
    LibraryTime time = {};
    uint32_t n = 9;
};

TEST_F(CrlTest, BuiltFromNothingHasItsBytesAndReadsBack) {
    const Bytes oid = OidOf("1.2.840.113549.1.1.11");
    EXPECT_STATUS(StatusOk, SetX509CrlVersion(fresh, 1), SetX509CrlIssuer(fresh, root.get()),
                  SetX509CrlThisUpdate(fresh, &kUtc), SetX509CrlNextUpdate(fresh, &kUtc),
                  SetX509CrlNextUpdate(fresh, &kLater),
                  AddX509CrlRevokedCertificate(fresh, kOne.data(), 1, &kUtc, nullptr),
                  AddX509CrlRevokedCertificate(fresh, kSerial.data(), 2, &kUtc, &n),
                  GetX509CrlRevokedCertificateExtensions(fresh, n, &handle), AddReason(handle),
                  GetX509CrlExtensions(fresh, &handle), AddReason(handle), SetX509CrlSignature(fresh, kOne.data(), 0),
                  SetX509CrlSignature(fresh, kOne.data(), 1),
                  SetX509CrlSignatureAlgorithmOidAndParameters(fresh, oid.data(), kNull.data(), 2));
    EXPECT_EQ(ToHex(Fetch(EncodeX509Crl, fresh)), ToHex(kWhole));
}

TEST_F(CrlTest, RefusedEntriesLeaveNothingAndRemovedOnesDo) {
    const auto add = [&](X509Crl* crl, auto date) { return AddX509CrlRevokedCertificate(crl, &kOne[0], 0, date, &n); };
    EXPECT_STATUS(StatusBadArgument, add(c, nullptr), GetX509CrlRevokedCertificateRevokationDate(c, 2, &time),
                  SetX509CrlVersion(c, 2));
    EXPECT_STATUS(StatusBadTime, SetX509CrlThisUpdate(c, &kNoTime), SetX509CrlNextUpdate(c, nullptr), add(c, &kNoTime),
                  SetX509CrlNextUpdate(fresh, nullptr), add(fresh, &kNoTime));
    EXPECT_EQ(Fetch(EncodeX509Crl, Make<FreeX509Crl>(CreateX509CrlCopy, c).get()), kWhole) << "unchanged";
    CHECK({Find(fresh, "Root", kNull), StatusNotFound}, {SetX509CrlVersion(fresh, 0)},
          {SetX509CrlThisUpdate(fresh, &kUtc)});
    EXPECT_EQ(Fetch(GetX509CrlToBeSignedPart, fresh), Tlv(0x30, Hex("020100 30020600 3000") + kUtcTlv + Hex("3000")));
    EXPECT_STATUS(StatusOk, add(c, &kUtc), ClearX509CrlRevokedCertificates(c), RemoveX509CrlNextUpdate(fresh));
    EXPECT_EQ(Fetch(EncodeX509Crl, c), CrlOf(Hex("3000")));
    EXPECT_STATUS(StatusOk, RemoveX509CrlRevokedCertificates(c), ClearX509CrlRevokedCertificates(c));
    EXPECT_EQ(Fetch(EncodeX509Crl, c), CrlOf({}));
}

TEST_F(CrlTest, ListsAdoptLendAndEncode) {
    const auto list = Decoded<FreeX509Crls>(DecodeX509Crls, Tlv(0x30, kWhole));
    EXPECT_EQ(Fetch(EncodeX509Crls, Make<FreeX509Crls>(CreateX509CrlsCopy, list.get()).get()), Tlv(0x30, kWhole));
    CHECK({AddX509CrlToX509Crls(list.get(), made.release())}, {GetX509CrlsCrl(list.get(), 2, &lent), StatusBadArgument},
          {GetX509CrlsCrl(list.get(), 1, &lent)}, {lent == fresh, true});
    const auto entries = Make<FreeX509RevokedCertificates>(CreateX509RevokedCertificates);
    const auto add = AddX509RevokedCertificatesRevokedCertificate;
    EXPECT_STATUS(StatusOk, add(entries.get(), kOne.data(), 1, &kUtc, nullptr),
                  add(entries.get(), kSerial.data(), 2, &kUtc, &n),
                  GetX509RevokedCertificatesRevokedCertificateExtensions(entries.get(), n, &handle), AddReason(handle));
    EXPECT_EQ(Fetch(EncodeX509RevokedCertificates, entries.get()), kEntries);
}

TEST_F(CrlTest, LargeListsGrowAndAreCopied) {
    uint8_t serial[3] = {1};
    const auto add = [&](X509Crl* crl, int i) {
        serial[1] = uint8_t(i / 256), serial[2] = uint8_t(i);
        return AddX509CrlRevokedCertificate(crl, serial, sizeof(serial), &kUtc, &n);
    };
    for (int i = 0; i < 20000; ++i) ASSERT_EQ(add(c, i), StatusOk);
    const Bytes whole = Fetch(EncodeX509Crl, c);
    const auto again = Decoded<FreeX509Crl>(DecodeX509Crl, whole);
    ASSERT_EQ(add(again.get(), 20000), StatusOk);
    EXPECT_EQ(Find(again.get(), "Root", {serial, serial + 3}), 20002u);
    const auto copy = Make<FreeX509Crl>(CreateX509CrlCopy, again.get());
    EXPECT_EQ(Fetch(EncodeX509Crl, copy.get()), Fetch(EncodeX509Crl, again.get()));
    EXPECT_EQ(Fetch(EncodeX509Crl, copy.get()).size(), whole.size() + 22);
}

TEST_F(CrlTest, SignatureAlgorithmsAreSetTogether) {
    const Bytes oid = OidTlv("1.2.643.2.2.3");
    const auto set = SetX509CrlGostR34102001SignatureAlgorithmID;
    CHECK({set(c, 100, 1), StatusBadArgument},
          {SetX509CrlGostR34102001SignatureAlgorithmIDAndParameters(c, 100, 1, 99, 1, 1), StatusUnknownId});
    for (const auto& [form, parameters] : {std::pair(0xFF, Bytes()), {0x100, kNull}}) {
        EXPECT_STATUS(StatusOk, set(c, 100, form));
        EXPECT_EQ(Fetch(EncodeX509Crl, c), CrlOf(kEntries, Tlv(0x30, oid + parameters)));
    }
}

TEST_F(CrlTest, AuthorityKeyIdentifierNamesTheSignersCertificate) {
    const auto signer = Make<FreeCertificate>(CreateCertificate);
    const Bytes serial(64, 7), issuer = Tlv(0xA1, Tlv(0xA4, NameTlv("Root")));
    const auto set = [&](auto key, auto name) {
        return SetX509CrlAuthorityKeyIdentifier2(c, key, 1, name, nullptr, 0);
    };
    const auto expect = [&](const Bytes& value) {
        EXPECT_STATUS(StatusOk, GetX509CrlExtensions(c, &handle));
        EXPECT_EQ(Fetch(EncodeX509Extensions, handle), Tlv(48, kReason + ExtensionTlv("2.5.29.35", Tlv(48, value))));
    };
    CHECK({set(&kOne[0], nullptr), StatusBadArgument}, {set(nullptr, root.get()), StatusBadArgument},
          {set(&kOne[0], root.get())});
    expect(Hex("800101") + issuer);
    EXPECT_STATUS(StatusOk, SetCertificateIssuer(signer.get(), root.get()),
                  SetCertificateSerialNumber(signer.get(), &serial[0], 64),
                  SetX509CrlAuthorityKeyIdentifier(c, signer.get()));
    expect(issuer + Tlv(0x82, serial));
}

// An entry with a certificateIssuer extension after another one.
Bytes Entry(const Bytes& serial, const Bytes& names, const Bytes& after) {
    return Entry(serial, Tlv(0x30, kReason + ExtensionTlv("2.5.29.29", Tlv(0x30, names) + after)));
}
Bytes Dir(const std::string& text) { return Tlv(0xA4, NameTlv(text)); }

TEST_F(CrlTest, FindsEntriesUnderTheIssuerInForce) {
    const Bytes a = kOne, b = Hex("02"), d = Hex("03"), x = Dir("X"), y = Dir("Y"), dns = Hex("820161"), no,
                ea = Entry(a);
    const Bytes list = ea + Entry(b, x, no) + Entry(d), big(150, 1), tooBig(151, 1);
    const std::string lengthy(120, 'n'), longest(1471, 'n');  // with longest a value has 1500 bytes
    const Bytes tooLong = Entry(b, Dir(longest + 'n'), no), odd = Hex("A480") + NameTlv("X") + Hex("0000");
    const std::tuple<const char*, Bytes, std::string, Bytes, uint32_t> rows[] = {
        // clang-format off
        {"own issuer", list, "Root", a, 0}, {"own under another", list, "X", a, StatusNotFound},
        {"case", list, "root", a, StatusNotFound}, {"carried", list, "X", b, 1},
        {"carried under own", list, "Root", b, StatusNotFound}, {"carried on", list, "X", d, 2},
        {"carried on under own", list, "Root", d, StatusNotFound},
        {"first of equals", Entry(b) + ea + ea, "Root", a, 1},
        {"leading zero", ea, "Root", Hex("0001"), StatusNotFound},
        {"first of two names", Entry(a, x + y, no), "X", a, StatusNotFound},
        {"last of two names", Entry(a, x + y, no), "Y", a, 0}, {"no names", list + Entry(a, no, no), "X", a, 3},
        {"by turns", list + Entry(a, y, no) + Entry(a, x, no), "X", a, 4},
        {"other name in front", Entry(a, dns + x, no), "X", a, 0},
        {"other name spoils the one in front", Entry(a, x + dns, no), "X", a, StatusNotFound},
        {"other name spoils the carried one", list + Entry(a, dns, no), "X", a, StatusNotFound},
        {"other name leaves the own one", Entry(a, dns, no), "Root", a, 0},
        {"indefinite length", Entry(a, odd, no), "X", a, 0}, {"bytes after", Entry(a, x, kNull), "X", a, 0},
        {"short wrapper", Entry(a, Hex("A40B") + NameTlv("X"), no), "X", a, 0},
        {"wrapper around two", Entry(a, Hex("A41E") + NameTlv("X") + y, no), "Y", a, 0},
        {"long", Entry(a, Dir(lengthy), no), lengthy, a, 0}, {"longest", Entry(a, Dir(longest), no), longest, a, 0},
        {"too long", tooLong + ea, "Root", a, StatusBufferTooSmall}, {"too long, after", ea + tooLong, "Root", a, 0},
        {"not names", Entry(b, kNull, no) + ea, "Root", a, StatusBadEncoding},
        {"longest serial", Entry(big), "Root", big, 0},
        {"too long a serial", Entry(tooBig) + ea, "Root", a, StatusBufferTooSmall},
        // clang-format on
    };
    for (const auto& [what, entries, issuer, serial, outcome] : rows) {
        const auto crl = Decoded<FreeX509Crl>(DecodeX509Crl, CrlOf(Tlv(0x30, entries)));
        EXPECT_EQ(Find(crl.get(), issuer, serial), outcome) << what;
    }
    EXPECT_STATUS(StatusOk, SetX509CrlIssuer(fresh, NameOf(std::string(1480, 'n')).get()));
    EXPECT_EQ(Find(fresh, "Root", a), StatusBufferTooSmall) << "an issuer of 1501 bytes";
}

}  // namespace
