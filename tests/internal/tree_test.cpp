// Trees as a whole, and the operations on single nodes that the documents share.

#include "engine/items.h"
#include "engine/nodes.h"
#include "support.h"

using namespace tlvforge;
using support::Bytes;
using support::Hex;

namespace {

constexpr Asn1Item ThreeIntegers = schema::Sequence<schema::Integer, schema::Integer, schema::Integer>;
constexpr Asn1Item OptionalSequence = schema::Optional<ThreeIntegers>;
constexpr Asn1Item Mixed =
    schema::Sequence<schema::Default<schema::Boolean, schema::kFalse>, schema::ObjectIdentifier, schema::BitString,
                     schema::Optional<schema::Null>, schema::Optional<schema::SequenceOf<schema::Integer>>,
                     schema::Optional<schema::Time>>;

Tree<void*> Decoded(const Asn1Item& item, const char* hex) {
    const Bytes bytes = Hex(hex);
    Tree<void*> tree(item);
    EXPECT_EQ(tree.Decode(bytes.data(), static_cast<uint32_t>(bytes.size())), 0u) << hex;
    return Tree<void*>(item, tree.Take());
}

TEST(Tree, CreatesWhatFillAsksFor) {
    for (const uint32_t fill : {0u, 1u}) {
        Tree<void*> tree(Mixed);
        ASSERT_EQ(tree.Create(fill), 0u);
        const auto* flag = static_cast<Asn1Value*>(tree.Get()[0]);
        ASSERT_NE(flag, nullptr) << "a default is copied with either";
        EXPECT_NE(flag, static_cast<const void*>(&schema::kFalse));
        EXPECT_EQ(tree.Get()[1] != nullptr, fill == 1);
        EXPECT_TRUE(fill == 0 || static_cast<Asn1Value*>(tree.Get()[1])->type == 6);
        EXPECT_EQ(tree.Get()[2] != nullptr, fill == 1);
        EXPECT_EQ(tree.Get()[4], nullptr);
    }
    void* untouched = &untouched;
    EXPECT_EQ(CreateAsn1Object(&schema::Integer, &untouched, 0), 0u);
    EXPECT_EQ(untouched, &untouched);
    EXPECT_EQ(CreateAsn1Object(&OptionalSequence, &untouched, 1), 0u);
    EXPECT_EQ(untouched, nullptr);
    EXPECT_EQ(CreateOptionalAsn1Sequence(&ThreeIntegers, &untouched, 1), 32u);
    EXPECT_EQ(CreateOptionalAsn1Sequence(&OptionalSequence, &untouched, 1), 0u);
    EXPECT_NE(untouched, nullptr);
    EXPECT_EQ(FreeAsn1Object(&OptionalSequence, untouched), 0u);
    EXPECT_EQ(FreeAsn1Object(nullptr, nullptr), 0u);
}

TEST(Tree, CopiesAndCompares) {
    const struct {
        const char *left, *right;
        Status copy, compare;
        uint32_t equal;
    } cases[] = {{"300A 06022A03 03020780 3000", "300A 06022A03 03020780 3000", 0, 0, 1},
                 {"300D 06022A03 03020780 3003020105", "300D 06022A03 03020780 3003020106", 0, 0, 0},
                 {"3008 06022A03 03020780", "3008 06022A03 03020680", 0, 0, 0},
                 {"3008 06022A03 03020780", "3009 06032A0304 03020780", 0, 0, 0},
                 {"300A 06022A03 03020780 0500", "300A 06022A03 03020780 0500", 300, 300, 9},
                 {"300B 06022A03 03020780 170130", "300B 06022A03 03020780 170130", 0, 300, 9}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.left);
        const Tree<void*> left = Decoded(Mixed, c.left), right = Decoded(Mixed, c.right);
        Tree<void*> copy(Mixed);
        EXPECT_EQ(copy.CopyOf(left.Get()), c.copy);
        EXPECT_EQ(static_cast<bool>(copy), c.copy == 0);
        uint32_t equal = 9;
        EXPECT_EQ(CompareAsn1Objects(&Mixed, left.Get(), right.Get(), &equal), c.compare);
        EXPECT_TRUE(c.compare != 0 || equal == c.equal);
        if (c.copy != 0) continue;
        EXPECT_EQ(support::Fetch([&](uint8_t* out, uint32_t* n) { return copy.Encode(out, n); }), Hex(c.left));
    }
    uint32_t equal = 0;
    EXPECT_EQ(CompareAsn1Objects(&Mixed, nullptr, nullptr, &equal), 0u);
    EXPECT_EQ(equal, 1u);
}

TEST(Tree, ListsGrowAndShrink) {
    Tree<Asn1List> list(schema::SequenceOf<schema::Integer>, AllocAsn1List());
    std::vector<uint32_t> capacities;
    for (int32_t i = 0; i < 300; ++i) {
        ASSERT_EQ(AddAsn1ListItem(list.Get(), schema::Integer, AllocAsn1Integer(i)), 0u);
        if (capacities.empty() || capacities.back() != list->capacity) capacities.push_back(list->capacity);
    }
    EXPECT_EQ(capacities, (std::vector<uint32_t>{10, 215, 522}));
    ASSERT_EQ(RemoveAsn1ListItem(list.Get(), 7, schema::Integer), 0u);
    EXPECT_EQ(RemoveAsn1ListItem(list.Get(), 299, schema::Integer), 32u);
    EXPECT_EQ(RemoveAsn1ListItem(list.Get(), UINT32_MAX, schema::Integer), 32u);
    void* element = nullptr;
    int32_t number = 0;
    ASSERT_EQ(GetAsn1ListItem(list.Get(), 7, &element), 0u);
    ASSERT_EQ(GetAsn1Int32(static_cast<Asn1Value*>(element), &number), 0u);
    EXPECT_EQ(number, 8);
    EXPECT_EQ(GetAsn1ListItem(list.Get(), -1, &element), 32u);
    EXPECT_EQ(GetAsn1ListLength(list.Get()), 299u);
    // A decoded list, whose first table lies in the list's own block, grows as well.
    Tree<Asn1List> decoded(schema::SequenceOf<schema::Integer>);
    const Bytes two = Hex("3006 020101 020102");
    ASSERT_EQ(decoded.Decode(two.data(), static_cast<uint32_t>(two.size())), 0u);
    for (int32_t i = 0; i < 20; ++i) {
        ASSERT_EQ(AddAsn1ListItem(decoded.Get(), schema::Integer, AllocAsn1Integer(i)), 0u);
    }
    EXPECT_EQ(decoded->count, 22u);
}

TEST(Values, NumbersInBothOrders) {
    const struct {
        const char *littleEndian, *stored;
        int32_t number;
    } cases[] = {{"8000", "0080", 128},
                 {"FFFF", "FF", -1},
                 {"00000000", "00", 0},
                 {"7F", "7F", 127},
                 {"80", "80", -128},
                 {"00FF", "FF00", -256},
                 {"FFFFFF7F", "7FFFFFFF", INT32_MAX},
                 {"0000000001", "0100000000", -2}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.littleEndian);
        const support::Owned<Asn1Value, ReleaseRecord<Asn1Value>> value(AllocAsn1Integer(77));
        const Bytes bytes = Hex(c.littleEndian);
        ASSERT_EQ(SetAsn1Integer(value.get(), bytes.data(), static_cast<uint32_t>(bytes.size())), 0u);
        EXPECT_EQ(Bytes(value->data, value->data + value->length), Hex(c.stored));
        int32_t number = -2;
        EXPECT_EQ(GetAsn1Int32(value.get(), &number), bytes.size() > 4 ? 49u : 0u);
        EXPECT_EQ(number, c.number);
        if (bytes.size() > 4) continue;
        const Bytes element =
            support::Fetch([&](uint8_t* out, uint32_t* n) { return EncodeAsn1Enumerated(c.number, out, n); });
        EXPECT_EQ(element, support::Tlv(2, Hex(c.stored))) << "the tag of INTEGER, by intention";
        EXPECT_EQ(DecodeAsn1Int32(element.data(), static_cast<uint32_t>(element.size()), &number), 0u);
        EXPECT_EQ(number, c.number);
    }
    int32_t number = 0;
    EXPECT_EQ(DecodeAsn1Enumerated(Hex("0A0101").data(), 3, &number), 302u);
    EXPECT_EQ(DecodeAsn1Enumerated(Hex("020101").data(), 0, &number), 32u);
}

TEST(Values, EmptyAndLostBytes) {
    Asn1Value empty = {4, 0, nullptr}, lost = {1, 1, nullptr};
    uint32_t length = 5, type = 0, flag = 0;
    EXPECT_EQ(GetAsn1Value(&empty, nullptr, &length), 0u);
    EXPECT_EQ(length, 0u);
    EXPECT_EQ(GetAsn1ValueAndType(&empty, &type, nullptr, &length), 311u);
    EXPECT_EQ(GetAsn1Value(&lost, nullptr, &length), 311u);
    EXPECT_EQ(GetAsn1Boolean(&lost, &flag), 311u);
    EXPECT_EQ(CheckAsn1Boolean(&lost), 307u);
    EXPECT_EQ(GetAsn1ValueLength(nullptr), 0u);
}

TEST(Values, PrimitiveCodecsOfEveryKind) {
    const Bytes content = Hex("0101");
    for (int kind = 0; kind < 256; ++kind) {
        SCOPED_TRACE(kind);
        uint8_t element[16], back[16];
        uint32_t length = sizeof(element), backLength = sizeof(back);
        const Status status = EncodeAsn1PrimitiveValue(uint8_t(kind), content.data(), 2, element, &length);
        const bool fits = IsValueKind(uint8_t(kind)) || kind == 3 || kind == 129;
        EXPECT_EQ(status, kind == 128 ? 306u : fits ? 0u : 300u);
        if (status != 0) continue;
        const Status decoded = DecodeAsn1PrimitiveValue(uint8_t(kind), element, length, back, &backLength);
        EXPECT_EQ(decoded, kind == 1 ? 307u : kind == 129 ? 302u : 0u);
        EXPECT_TRUE(decoded != 0 || Bytes(back, back + backLength) == content);
    }
}

TEST(Oids, TextAndBack) {
    struct Case {
        const char* text;
        const char* oid;
        const char* shown;
    };
    const Case cases[] = {
        {"1.2.643.2.2.31.1", "072A85030202 1F01", "1.2.643.2.2.31.1"},
        {"2", "0150", "2.0"},
        {"", "00", "0.0"},
        {"0.0", "0100", "0.0"},
        {"2.100", "028134", "4.20"},
        {"1.2.3x", "022A03", "1.2.3"},
        {"1.2.4294967295", "062A8FFFFFFF7F", "1.2.4294967295"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(support::OidOf(c.text), Hex(c.oid));
        char shown[64];
        uint32_t length = sizeof(shown);
        EXPECT_EQ(ConvertOidToString(Hex(c.oid).data(), shown, &length), 0u);
        EXPECT_STREQ(shown, c.shown);
        EXPECT_EQ(length, strlen(c.shown) + 1);
    }
    uint32_t length = 0;
    std::string arcs29 = "1";
    while (arcs29.size() < 57) arcs29 += ".1";
    for (const char* bad : {"1.abc", "1.00", "1..2", "1.2.", ".", arcs29.c_str()}) {
        EXPECT_EQ(ConvertStringToOid(bad, nullptr, &length), 32u) << bad;
    }
    for (const char* cut : {"022A85", "01B4"}) {
        EXPECT_EQ(ConvertOidToString(Hex(cut).data(), nullptr, &length), 32u) << cut;
    }
    Bytes longest(256, 0x7F);
    longest[0] = 255;
    EXPECT_EQ(ConvertOidToString(longest.data(), nullptr, &length), 0u);
}

TEST(Oids, ElementsAndComparison) {
    const Bytes oid = Hex("032A8503"), element = Hex("06032A8503");
    EXPECT_EQ(support::Fetch([&](uint8_t* out, uint32_t* n) { return EncodeAsn1Oid(oid.data(), out, n); }), element);
    EXPECT_EQ(support::Fetch([&](uint8_t* out, uint32_t* n) { return DecodeAsn1Oid(element.data(), 5, out, n); }), oid);
    uint32_t length = 0;
    EXPECT_EQ(DecodeAsn1Oid(Hex("0680").data(), 2, nullptr, &length), 335u);
    EXPECT_EQ(DecodeAsn1Oid(Hex("04012A").data(), 3, nullptr, &length), 302u);
    EXPECT_EQ(DecodeAsn1Oid(element.data(), 4, nullptr, &length), 302u);
    EXPECT_EQ(IsOidEquals(oid.data(), Hex("032A8503").data()), 1u);
    EXPECT_EQ(IsOidEquals(Hex("012A").data(), Hex("022A03").data()), 0u);
    EXPECT_EQ(IsOidEquals(nullptr, nullptr), 0u);
    Bytes content = Hex("2A8503");
    const Asn1Value record = {6, 3, content.data()}, none = {6, 0, nullptr};
    EXPECT_EQ(IsOidAndAsn1ObjectIdentifierEquals(oid.data(), &record), 1u);
    EXPECT_EQ(IsOidAndAsn1ObjectIdentifierEquals(oid.data(), &none), 0u);
    EXPECT_EQ(IsOidAndAsn1ObjectIdentifierEquals(Hex("00").data(), &none), 1u);
}

}  // namespace
