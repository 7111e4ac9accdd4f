#include "support.h"

using namespace support;

namespace {

// A letter stands for an attribute: it is the last arc of the OID and the content of the one value.
Bytes OidOf(char letter) { return {3, 0x55, 4, static_cast<uint8_t>(letter)}; }
Bytes ValueOf(char letter) { return Tlv(22, {static_cast<uint8_t>(letter)}); }
Bytes AttributeTlv(char letter, const Bytes& values) { return Tlv(0x30, Bytes{6} + OidOf(letter) + Tlv(0x31, values)); }
Bytes SetTlv(std::string_view letters) {
    Bytes content;
    for (const char letter : letters) content = content + AttributeTlv(letter, ValueOf(letter));
    return Tlv(0x31, content);
}

TEST(AttributeSet, KeepsItsOrderAndIsWrittenSortedUnlessToldOtherwise) {
    const Bytes in = SetTlv("caab"), a = OidOf('a');
    const auto owner = Decoded<FreeRsaAttributes>(DecodeRsaAttributes, in);
    RsaAttributes set = owner.get();
    uint32_t i = 99, n = 0;
    const auto add = [&](char letter) {
        return AddRsaAttributesAttributeWithValue(set, OidOf(letter).data(), &i, ValueOf(letter).data(), 3);
    };
    EXPECT_EQ(Fetch(EncodeRsaAttributes, set), SetTlv("aabc"));
    const auto append = [&] { return AppendRsaAttributes(set, set); };
    Check({{SetRsaAttributesSorted(set, 0), 0}, {append(), 0}, {append(), 0}});
    EXPECT_EQ(Fetch(EncodeRsaAttributes, set), SetTlv("caabcaabcaabcaab"));
    const auto find = [&] { return FindRsaAttributesAttribute(set, a.data(), &i); };
    Check({{find(), 0}, {i, 1}, {RemoveRsaAttributesAttribute2(set, a.data()), 0}, {find(), 322}});
    EXPECT_EQ(Fetch(EncodeRsaAttributes, set), SetTlv("cbcbcbcb"));
    Check({{add('a'), 0}, {i, 8}, {GetRsaAttributesAttributesCount(set, &n), 0}, {n, 9}});
    EXPECT_EQ(Fetch(GetRsaAttributesAttributeOid, set, 8), a);
    Check({{ClearRsaAttributes(set), 0}, {add('b'), 0}, {add('a'), 0}});
    EXPECT_EQ(Fetch(EncodeRsaAttributes, set), SetTlv("ba"));
    Check({{RemoveRsaAttributes(set), 0}, {add('b'), 0}, {add('a'), 0}});
    EXPECT_EQ(Fetch(EncodeRsaAttributes, set), SetTlv("ab")) << "the flag goes with the list";
    Check({{DecodeRsaAttributes(in.data(), Size(in) - 1, &set), 302}, {set == owner.get(), 1}});
}

TEST(AttributeSet, AnswersAnEmptyCellAndBadIndices) {
    const auto owner = Make<FreeRsaAttributes>(CreateRsaAttributes);
    const Bytes a = OidOf('a');
    uint32_t n = 0;
    const auto all = [&](RsaAttributes set, uint32_t i) {
        // clang-format off
        return Numbers{
            GetRsaAttributesAttributesCount(set, &n), GetRsaAttributesAttributeOid(set, i, nullptr, &n),
            GetRsaAttributesAttributeValuesCount(set, i, &n), GetRsaAttributesAttributeValue(set, i, 0, nullptr, &n),
            GetRsaAttributesAttributeValue(set, 0, i, nullptr, &n), AddRsaAttributesAttributeValue(set, i, a.data(), 0),
            FindRsaAttributesAttribute(set, a.data(), &n), EncodeRsaAttributes(set, nullptr, &n),
            SetRsaAttributesSorted(set, 0), AppendRsaAttributes(set, set),
            RemoveRsaAttributesAttribute2(set, a.data()), ClearRsaAttributes(set)};
        // clang-format on
    };
    EXPECT_EQ(AddRsaAttributesAttribute(owner.get(), a.data(), &n), 0u);
    EXPECT_EQ(all(owner.get(), ~0u), (Numbers{0, 32, 32, 32, 32, 32, 0, 0, 0, 0, 0, 0}));
    Check({{RemoveRsaAttributes(owner.get()), 0}, {AppendRsaAttributes(owner.get(), nullptr), 0}});
    EXPECT_EQ(all(owner.get(), 0), (Numbers{0, 32, 311, 311, 311, 311, 311, 32, 0, 311, 311, 0}));
    EXPECT_EQ(all(nullptr, 0), Numbers(12, 32));
}

TEST(Attribute, KeepsItsValuesInOrderAndWritesThemSorted) {
    const Bytes a = OidOf('a'), b = ValueOf('b'), c = ValueOf('c');
    const auto one = Make<FreeRsaAttribute>([&](auto out) { return CreateRsaAttribute(out, a.data(), c.data(), 3); });
    Check({{AddRsaAttributeValue(one.get(), b.data(), 3), 0}, {AddRsaAttributeValue(one.get(), b.data(), 0), 0}});
    const auto value = [&](uint32_t i) { return Fetch(GetRsaAttributeValue, one.get(), i); };
    EXPECT_EQ(value(0) + value(1) + value(2), c + b) << "the last one has no bytes";
    EXPECT_EQ(Fetch(EncodeRsaAttribute, one.get()), AttributeTlv('a', b + c));
}

}  // namespace
