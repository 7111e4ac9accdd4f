#include "support.h"

using namespace support;

namespace {

using Extensions = Owned<X509ExtensionsCell, FreeX509Extensions>;

// Letters stand for extensions: the letter is the last arc and the value, a capital is critical.
Bytes OidOf(char letter) { return {3, 0x55, 0x1D, static_cast<uint8_t>(letter)}; }

void Add(X509Extensions list, std::string_view letters) {
    for (const char letter : letters) {
        const auto value = static_cast<uint8_t>(letter);
        EXPECT_EQ(AddX509ExtensionsExtension(list, OidOf(letter).data(), letter < 'a' ? -1 : 0, &value, 1), StatusOk);
    }
}

Extensions ListOf(std::string_view letters) {
    Extensions list = Make<FreeX509Extensions>(CreateX509Extensions);
    Add(list.get(), letters);
    return list;
}

std::string LettersOf(X509Extensions list) {
    uint32_t count = 0;
    EXPECT_EQ(GetX509ExtensionsExtensionsCount(list, &count), StatusOk);
    std::string letters;
    for (uint32_t i = 0; i < count; ++i) {
        uint8_t oid[4], value = 0;
        uint32_t oidLength = 4, valueLength = 1, critical = 7;
        EXPECT_EQ(GetX509ExtensionsExtension(list, i, oid, &oidLength, &critical, &value, &valueLength), StatusOk);
        EXPECT_EQ(critical, value < 'a' ? 1u : 0u);
        letters += static_cast<char>(value);
    }
    return letters;
}

}  // namespace

TEST(Extension, GivesWhatFitsWhenABufferIsTooSmall) {
    const Bytes der = Hex("300E 0603551D0F 0101FF 0404 03020780");
    const auto extension = Decoded<FreeX509Extension>(DecodeX509Extension, der);
    X509Extension* out = extension.get();
    Bytes oid(4), value(4);
    uint32_t oidLength = 4, valueLength = 3, critical = 7;
    EXPECT_EQ(GetX509Extension(out, oid.data(), &oidLength, &critical, value.data(), &valueLength), 49u);
    EXPECT_EQ(oid + value, Hex("03551D0F 00000000"));
    EXPECT_EQ((Numbers{valueLength, critical}), (Numbers{4, 1}));
    EXPECT_EQ(GetX509Extension(out, nullptr, &oidLength, nullptr, value.data(), &valueLength), 32u);
    EXPECT_EQ(value, Hex("03020780")) << "a null flag is noticed after the buffers have been filled";
    EXPECT_EQ(CreateX509Extension(&out, oid.data(), 0, nullptr, 0), 32u);
    EXPECT_EQ(out, nullptr);
}

TEST(ExtensionList, KeepsItsOrderWhateverTheFlagSays) {
    const Bytes der = Hex("3021 3008 0603551D62 040162 300B 0603551D41 0101FF 040141 3008 0603551D62 040162");
    const Extensions list = ListOf("bAb");
    EXPECT_EQ(Fetch(EncodeX509Extensions, list.get()), der);
    EXPECT_EQ(SetX509ExtensionsSorted(list.get(), 0), StatusOk);
    EXPECT_EQ(Fetch(EncodeX509Extensions, list.get()), der);
    X509Extensions out = list.get();
    EXPECT_EQ(DecodeX509Extensions(der.data(), 34, &out), 302u);
    EXPECT_EQ(out, list.get()) << "stored on success only";
    EXPECT_EQ(LettersOf(Decoded<FreeX509Extensions>(DecodeX509Extensions, der).get()), "bAb");
}

TEST(ExtensionList, RemovesByOidWithoutLookingAtTheNextMember) {
    for (const auto& [before, after] :
         {std::pair("", ""), {"B", "B"}, {"A", ""}, {"AA", "A"}, {"AAA", "A"}, {"ABA", "B"}, {"AABAA", "ABA"}}) {
        const Extensions list = ListOf(before);
        EXPECT_EQ(RemoveX509ExtensionsExtension2(list.get(), OidOf('A').data()), StatusOk) << before;
        EXPECT_EQ(LettersOf(list.get()), after) << before;
    }
}

TEST(ExtensionList, TellsAnEmptyCellFromAnEmptyList) {
    const auto certificate = Make<FreeCertificate>(CreateCertificate);
    X509Extensions slot = nullptr;
    ASSERT_EQ(GetCertificateExtensions(certificate.get(), &slot), StatusOk);
    const Bytes a = OidOf('a');
    uint32_t number = 7;
    const auto get = [&] { return GetX509ExtensionsExtension(slot, 0, nullptr, &number, &number, nullptr, &number); };
    const auto find = [&] { return GetX509ExtensionsExtensionValue(slot, a.data(), nullptr, &number); };
    EXPECT_EQ(LettersOf(slot), "");
    // clang-format off
    Check({{find(), 322}, {get(), 311}, {RemoveX509ExtensionsExtension(slot, 0), 311},
           {RemoveX509ExtensionsExtension2(slot, a.data()), 0}, {SetX509ExtensionsSorted(slot, 0), 0},
           {ClearX509Extensions(slot), 0}, {EncodeX509Extensions(slot, nullptr, &number), 32}});
    Add(slot, "baa");
    Check({{FindX509Extension(slot, a.data(), &number), 0}, {number, 1}, {RemoveX509ExtensionsExtension(slot, 3), 32},
           {RemoveX509ExtensionsExtension(slot, ~0u), 32}, {RemoveX509ExtensionsExtension(slot, 0), 0}});
    // clang-format on
    EXPECT_EQ(LettersOf(slot), "aa");
    EXPECT_EQ(ClearX509Extensions(slot), StatusOk);
    EXPECT_EQ(Fetch(EncodeX509Extensions, slot), Hex("3000"));
    Check({{RemoveX509Extensions(slot), 0}, {get(), 311}});
}
