#include "support.h"

using namespace support;

namespace {

Bytes Cn(uint8_t tag, const Bytes& value, const char* oid = "2.5.4.3") {
    return Tlv(48, OidTlv(oid) + Tlv(tag, value));
}
Bytes Rdn(uint8_t tag, const Bytes& value) { return Tlv(49, Cn(tag, value)); }
Bytes Utf8(const char8_t* text) { return Rdn(12, Text(reinterpret_cast<const char*>(text))); }
Bytes X(uint32_t size) { return Rdn(12, Bytes(size, 'x')); }
auto NameOf(const Bytes& rdns) { return Decoded<FreeX509Name>(DecodeX509Name, Tlv(48, rdns)); }
const Bytes kBob = Utf8(u8"Bob"), kOther = Cn(12, Bytes(1024), "2.5.4.10"), kTwo = Hex("00410042"),
            kAA = Rdn(19, Hex("4141"));
const Bytes kSigns = Hex("04010451040404540407 0457040E045E040B0410 044F0450 21162022 00B0 263A 00FF0100 000041");

// The text of get(object), or its status as a number; checks the size query, 49 and the zero on the way.
template <class Function, class T>
Bytes TextOf(Function get, const T& object) {
    uint32_t needed = 7777, n = 7777;
    const Status status = get(object.get(), nullptr, &needed);
    if (status != 0) return Text(std::to_string(needed == 7777 ? status : 0));
    Bytes text(needed, 0xA5);
    CHECK({get(object.get(), text.data(), &(n = needed - 1)), StatusBufferTooSmall}, {n, needed}, {text[0], 0xA5});
    CHECK({get(object.get(), text.data(), &n)}, {n, needed - 1}, {text[n], 0});
    return Bytes(text.begin(), text.end() - 1);
}

TEST(Summary, CertificatesGiveSerialNumberAndCommonNames) {
    // clang-format off
    const std::tuple<Bytes, Bytes, Bytes> rows[] = {
        {{}, kBob, Text(", Bob")}, {Text("12 z"), {}, Text("12 z, ")}, {Hex("317B"), {}, {}}, {Hex("1F"), kBob, Text("Bob")},
        {Bytes(99, '1'), kBob, Bytes(99, '1') + Text(", Bob")}, {Bytes(101, '1'), kBob, Text("Bob")},
        {{1}, Utf8(u8"Ёлка ёж Яя"), Hex("A8EBEAE020B8E620DFFF")}, {{1}, Utf8(u8"a😀b€c"), Text("abc")},
        {{1}, Utf8(u8"Єé°"), Hex("B49960")}, {{1}, Rdn(12, Hex("D04190 90 D0D190 D0")), Hex("41C0C1")},
        {{1}, Rdn(30, kSigns), Hex("A8B8AABAAFBFA1A2BBC0FF3FB995B03FFF3F00")}, {{1}, Rdn(30, {1}), Text("49")},
        {{1}, Rdn(19, Text("abc")) + Rdn(20, {}) + Rdn(22, Hex("FF")), Text("????")},
        {{1}, Tlv(49, kOther + Cn(12, kTwo) + Cn(12, kAA)) + Tlv(49, kOther) + kBob, kTwo + Text("Bob")},
        {{1}, X(1022) + X(0), Bytes(1022, 'x')}, {{1}, X(1020) + kBob, Text("49")}, {{'1'}, X(1020), Text("49")},
        {{1}, X(1019) + kAA, Bytes(1019, 'x') + Text("??")}, {{1}, X(1020) + kAA, Text("49")},
        {{1}, X(1020) + Rdn(30, kTwo), Bytes(1020, 'x') + Text("AB")}, {{1}, X(1021) + Rdn(30, kTwo), Text("49")},
        {{1}, Tlv(49, Cn(12, Bytes(1025), "2.5.4.10")), Text("49")},
        {{1}, Tlv(49, Tlv(48, Tlv(6, Bytes(99)) + Tlv(12, kTwo))) + kBob, Text("Bob")},
        {{1}, Tlv(49, Tlv(48, Tlv(6, Bytes(100)) + Tlv(12, kTwo))) + kBob, Text("49")}};
    // clang-format on
    for (const auto& [serial, rdns, expected] : rows) {
        const auto owner = Make<FreeCertificate>(CreateCertificate);
        const Status set = SetCertificateSerialNumber(owner.get(), serial.data(), Size(serial));
        CHECK({set, serial.empty() ? 32 : 0}, {SetCertificateSubject(owner.get(), NameOf(rdns).get())});
        EXPECT_EQ(ToHex(TextOf(GetCertificateCN, owner)), ToHex(expected)) << ToHex(serial + rdns);
    }
}

TEST(Summary, CrlsGiveVersionLocalTimesAndIssuer) {
    SetZone("XYZ-5:30");
    const auto crl = Make<FreeX509Crl>(CreateX509Crl);
    const LibraryTime from = {2019, 12, 31, 20, 1, 2}, until = {2051, 6, 7, 8, 9, 10};
    const Bytes head = Hex("C2E5F0F1E8FF3D312C20C4E5E9F1F2E2E8F2E5EBE5ED20F120") + Text("01.01.2020 01:31:02");
    const Bytes gmt = Text(" GMT, ") + Hex("EFEE20") + Text("07.06.2051 13:39:10 GMT");
    const Bytes issuer = Text(", ") + Hex("CFEEF1F2E0E2F9E8EA3A20") + Text("Bob");
    CHECK({SetX509CrlVersion(crl.get(), 1)}, {SetX509CrlIssuer(crl.get(), NameOf(kBob).get())});
    EXPECT_EQ(TextOf(GetCrlCN, crl), Text("302"));
    EXPECT_STATUS(StatusOk, SetX509CrlThisUpdate(crl.get(), &from));
    EXPECT_EQ(ToHex(TextOf(GetCrlCN, crl)), ToHex(head + issuer));
    EXPECT_STATUS(StatusOk, SetX509CrlNextUpdate(crl.get(), &until));
    EXPECT_EQ(ToHex(TextOf(GetCrlCN, crl)), ToHex(head + gmt + issuer));
    SetZone(nullptr);
}

TEST(Summary, PrivateIdentifierHasTwoLimitsAndTheVersionNoSizeQuery) {
    const Bytes latin = Text("abc"), russian = Hex("D0AF6162");
    Bytes text(52, 0xA5);
    uint32_t n = 0;
    const auto get = [&](const Bytes& utf8, uint32_t offered, uint8_t* to) {
        const auto owner = Make<FreeCertificate>(CreateCertificate);
        X509Extensions handle = nullptr;
        CHECK({GetCertificateExtensions(owner.get(), &handle)});
        CHECK({AddExtension(handle, "1.2.643.3.123.3.1", Tlv(12, utf8))});
        return GetZelcryptIdentifierFromCertificate(owner.get(), to, &(n = offered));
    };
    CHECK({get(latin, 0, nullptr)}, {n, 3}, {get(latin, 2, &text[0]), StatusBufferTooSmall}, {n, 3}, {text[0], 0xA5});
    CHECK({get(latin, 3, &text[0]), StatusBufferTooSmall}, {n, 4}, {text[3], 0xA5}, {get(latin, 4, &text[0])}, {n, 3},
          {text[3], 0});
    CHECK({get(russian, 3, &text[0]), StatusBufferTooSmall}, {n, 4}, {get(russian, 4, &text[0])}, {n, 3},
          {text[0], 0xDF});
    CHECK({GetVersionInfo(nullptr, &n), StatusBadArgument}, {GetVersionInfo(&text[0], &(n = 51)), StatusBufferTooSmall},
          {n, 52}, {text[0], 0xDF});
    CHECK({GetVersionInfo(&text[0], &n)}, {n, 51});
    EXPECT_EQ(text, Text("TLVFORGE v1.0 (64bit) 05/02/2019 (R.3729) Kestrelon") + Bytes(1));
}

}  // namespace
