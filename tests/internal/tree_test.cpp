// Trees as a whole, and the operations on single nodes that the documents share.

#include "engine/tmalloc.h"
#include "schema.h"
#include "support.h"

using namespace tlvforge;
using namespace support;
using namespace test_schema;

namespace {

constexpr Asn1Item UnknownKind = {0, 0, 0, 7, -1, 16, nullptr, 0, nullptr};
constexpr const Asn1Item& Integer = itemOf<schema::Integer>;
using Integers = schema::SequenceOf<schema::Integer>;
using IntegerSequence = Sequence<schema::Integer, schema::Integer, schema::Integer>;
constexpr const Asn1Item& ThreeIntegers = itemOf<IntegerSequence>;
constexpr const Asn1Item& OptionalSequence = itemOf<schema::Optional<IntegerSequence>>;
constexpr const Asn1Item& Mixed =
    itemOf<Sequence<schema::Default<schema::Boolean, schema::kFalse>, schema::ObjectIdentifier, schema::BitString,
                    schema::Optional<schema::Null>, schema::Optional<Integers>, schema::Optional<Time>>>;

AnyTree Decoded(const Asn1Item& item, const char* hex) {
    const Bytes bytes = Hex(hex);
    AnyTree tree(item);
    uint32_t consumed = 0;
    EXPECT_EQ(tree.Decode(bytes.data(), bytes.size(), &consumed), StatusOk) << hex;
    return tree;
}

TEST(Tree, CreatesWhatFillAsksFor) {
    for (const uint32_t fill : {0u, 1u}) {
        AnyTree tree(Mixed);
        ASSERT_EQ(CreateAsn1Object(&Mixed, &tree.root, fill), StatusOk);
        const auto* flag = static_cast<Asn1Value*>(tree.Get()[0]);
        ASSERT_NE(flag, nullptr) << "a default is copied with either";
        EXPECT_NE(flag, static_cast<const void*>(&schema::kFalse));
        const auto field = [&](uint32_t i) { return static_cast<Asn1Value*>(tree.Get()[i]); };
        CHECK({field(1) != nullptr, fill}, {field(2) != nullptr, fill}, {field(4) != nullptr, 0});
        EXPECT_TRUE(fill == 0 || field(1)->type == 6);
    }
    void* untouched = &untouched;
    const Asn1List tableless = {1, nullptr, 0, nullptr, 1};
    CHECK({CreateAsn1Object(&Integer, &untouched, 0)}, {untouched == &untouched, 1},
          {CreateAsn1Object(&UnknownKind, &untouched, 1), StatusUnsupportedKind},
          {CopyAsn1Object(&UnknownKind, &schema::kFalse, &untouched), StatusUnsupportedKind},
          {CopyAsn1Object(&itemOf<Integers>, &tableless, &untouched), StatusBadArgument},
          {CreateAsn1Object(&OptionalSequence, &untouched, 1)}, {untouched == nullptr, 1},
          {CreateOptionalAsn1Sequence(&ThreeIntegers, &untouched, 1), StatusBadArgument},
          {CreateOptionalAsn1Sequence(&OptionalSequence, &untouched, 1)}, {untouched != nullptr, 1},
          {FreeAsn1Object(&OptionalSequence, untouched)}, {FreeAsn1Object(nullptr, nullptr)});
}

TEST(Tree, CopiesAndCompares) {
    // clang-format off
    const struct { const char *left, *right; Status copy, compare; uint32_t equal; } cases[] = {
        {"300A 06022A03 03020780 3000",       "300A 06022A03 03020780 3000", 0, 0, 1},
        {"300D 06022A03 03020780 3003020105", "300D 06022A03 03020780 3003020106", 0, 0, 0},
        {"3008 06022A03 03020780", "3008 06022A03 03020680", 0, 0, 0},
        {"3008 06022A03 03020780", "3009 06032A0304 03020780", 0, 0, 0},
        {"300A 06022A03 03020780 0500",       "300A 06022A03 03020780 0500", 300, 300, 9},
        {"300B 06022A03 03020780 170130",     "300B 06022A03 03020780 170130", 0, 300, 9}};
    // clang-format on
    uint32_t equal = 0;
    for (const auto& [left, right, copied, compared, same] : cases) {
        SCOPED_TRACE(left);
        const AnyTree a = Decoded(Mixed, left), b = Decoded(Mixed, right);
        AnyTree copy(Mixed);
        CHECK({CopyAsn1Object(&Mixed, a.root, &copy.root), copied}, {copy.Get() != nullptr, copied == StatusOk});
        CHECK({CompareAsn1Objects(&Mixed, a.Get(), b.Get(), &equal), compared});
        EXPECT_TRUE(compared != 0 || equal == same);
        if (copied == 0) {
            EXPECT_EQ(Fetch(GetAsn1EncodedValue, copy.Get(), &Mixed), Hex(left));
        }
    }
    CHECK({CompareAsn1Objects(&Mixed, nullptr, nullptr, &equal)}, {equal, 1});
}

TEST(Tree, ListsGrowAndShrink) {
    Tree<Integers> list(AllocList<ListOf<Asn1Value>>());
    std::vector<uint32_t> capacities;
    for (int32_t i = 0; i < 300; ++i) {
        ASSERT_EQ(AddAsn1ListItem(list.Get(), Integer, AllocAsn1Integer(i)), StatusOk);
        if (capacities.empty() || capacities.back() != list->capacity) capacities.push_back(list->capacity);
    }
    EXPECT_EQ(capacities, (std::vector<uint32_t>{10, 215, 522}));
    void* element = nullptr;
    int32_t number = 0;
    CHECK({list->sorted, 1}, {RemoveAsn1ListItem(list.Get(), 7, Integer)}, {GetAsn1ListItem(list.Get(), 7, &element)},
          {GetAsn1Int32(static_cast<Asn1Value*>(element), &number)}, {number, 8}, {GetAsn1ListLength(list.Get()), 299});
    EXPECT_STATUS(StatusBadArgument, RemoveAsn1ListItem(list.Get(), 299, Integer),
                  RemoveAsn1ListItem(list.Get(), UINT32_MAX, Integer), GetAsn1ListItem(list.Get(), -1, &element));
    // A decoded list has the table that adds would have made, and goes on from there.
    Bytes elements;
    for (uint32_t count = 0; count < 600; ++count, elements = elements + Hex("020101")) {
        const Bytes form = count % 2 != 0 ? Hex("3080") + elements + Hex("0000") : Tlv(0x30, elements);
        const AnyTree decoded = Decoded(itemOf<Integers>, ToHex(form).c_str());
        const auto* of = reinterpret_cast<Asn1List*>(decoded.Get());
        ASSERT_EQ(of->sorted, 1);
        ASSERT_EQ(of->capacity, count == 0 ? 0u : count <= 10 ? 10u : count <= 215 ? 215u : count <= 522 ? 522u : 983u);
    }
    const AnyTree one = Decoded(itemOf<Integers>, "3003 020101");
    auto* small = reinterpret_cast<Asn1List*>(one.Get());
    const auto add = [&] { return AddAsn1ListItem(small, Integer, AllocAsn1Integer(1)); };
    for (const void* table = small->items; small->count < 10;) CHECK({add()}, {table == small->items, 1});
    const walk::Owned<ReleaseRecord<Asn1Value>> left(AllocAsn1Integer(1));
    instruments.failAt = instruments.allocations + 1;
    CHECK({AddAsn1ListItem(small, Integer, left.get()), StatusOutOfMemory}, {small->count, 0});
    for (instruments.failAt = 0; small->count < 10;) CHECK({add()});
    CHECK({add()}, {small->count, 11}, {small->capacity, 215});
}

TEST(Values, NumbersInBothOrders) {
    // clang-format off
    const struct { const char *littleEndian, *stored; int32_t number; } cases[] = {
        {"8000", "0080", 128}, {"FFFF", "FF", -1},     {"00000000", "00", 0},              {"7F", "7F", 127},
        {"80", "80", -128},    {"00FF", "FF00", -256}, {"FFFFFF7F", "7FFFFFFF", INT32_MAX},
        {"0000000001", "0100000000", -2}};
    // clang-format on
    for (const auto& [littleEndian, stored, expected] : cases) {
        SCOPED_TRACE(littleEndian);
        const walk::Owned<ReleaseRecord<Asn1Value>> value(AllocAsn1Integer(77));
        const Bytes bytes = Hex(littleEndian), element = Tlv(2, Hex(stored));
        const bool fits = bytes.size() <= 4;
        int32_t number = -2;
        uint32_t type = 0, length = 9;
        uint8_t again[9];
        CHECK({SetAsn1Integer(value.get(), bytes.data(), Size(bytes))},
              {GetAsn1Int32(value.get(), &number), fits ? StatusOk : StatusBufferTooSmall}, {number, expected});
        EXPECT_EQ(Bytes(value->data, value->data + value->length), Hex(stored));
        if (!fits) continue;
        CHECK({SetAsn1Int32(value.get(), number)}, {CheckAsn1Integer(value.get())},
              {GetAsn1ValueAndType(value.get(), &type, again, &length)}, {type, 2});
        EXPECT_EQ(Bytes(again, again + length), Hex(stored));
        EXPECT_EQ(Fetch(EncodeAsn1Enumerated, expected), element) << "the tag of INTEGER, by intention";
        CHECK({DecodeAsn1Int32(element.data(), Size(element), &number)}, {number, expected});
    }
    int32_t number = 0;
    CHECK({DecodeAsn1Enumerated(Hex("0A0101").data(), 3, &number), StatusBadEncoding},
          {DecodeAsn1Enumerated(Hex("020101").data(), 0, &number), StatusBadArgument});
}

TEST(Values, EmptyAndLostBytes) {
    Asn1Value empty = {4, 0, nullptr}, lost = {1, 1, nullptr};
    uint32_t length = 5, type = 0, flag = 0;
    CHECK({GetAsn1Value(&empty, nullptr, &length)}, {length, 0}, {GetAsn1Value(&lost, nullptr, &length), StatusAbsent},
          {GetAsn1ValueAndType(&empty, &type, nullptr, &length), StatusAbsent},
          {GetAsn1Boolean(&lost, &flag), StatusAbsent}, {CheckAsn1Boolean(&lost), StatusBadValue},
          {GetAsn1ValueLength(nullptr), 0});
}

// No function frees the records of these alone: programs end them with free, the bytes first.
TEST(Values, AllocatedOnesEndWithFree) {
    const LibraryTime time = {2030, 1, 2, 3, 4, 5};
    OcspRevokedInfo* info = nullptr;
    ASSERT_EQ(AllocCertStatusRevokedInfo(&time, 5, &info), StatusOk);
    std::vector<Asn1Value*> values = {AllocAsn1Boolean(1), AllocAsn1Integer(-5),
                                      AllocAsn1Integer_s(Hex("05").data(), 1)};
    for (uint32_t i : {0, 1}) values.push_back(reinterpret_cast<Asn1Value**>(info)[i]);
    free(info);
    for (uint32_t alternative = 0; alternative < 9; ++alternative) {
        X509GeneralName* name = nullptr;
        ASSERT_EQ(AllocX509GeneralNameValue(&name, alternative, Hex("022A03").data(), 3), StatusOk);
        values.push_back(static_cast<Asn1Value*>(reinterpret_cast<Asn1Choice*>(name)->value));
        free(name);
    }
    for (Asn1Value* value : values) {
        ASSERT_TRUE(value != nullptr && value->data != nullptr && value->length != 0);
        free(value->data);
        free(value);
    }
}

TEST(Values, PrimitiveCodecsOfEveryKind) {
    const Bytes content = Hex("0101");
    for (int kind = 0; kind < 256; ++kind) {
        SCOPED_TRACE(kind);
        uint8_t element[16], back[16];
        uint32_t length = sizeof(element), backLength = sizeof(back);
        const Status status = EncodeAsn1PrimitiveValue(uint8_t(kind), content.data(), 2, element, &length);
        const bool fits = IsValueKind(uint8_t(kind)) || kind == 3 || kind == 129;
        EXPECT_EQ(status, kind == 128 ? StatusBadAlternative : fits ? StatusOk : StatusUnsupportedKind);
        if (status != 0) continue;
        const Status decoded = DecodeAsn1PrimitiveValue(uint8_t(kind), element, length, back, &backLength);
        EXPECT_EQ(decoded, kind == 1 ? StatusBadValue : kind == 129 ? StatusBadEncoding : StatusOk);
        EXPECT_TRUE(decoded != 0 || Bytes(back, back + backLength) == content);
    }
}

TEST(Oids, TextAndBack) {
    // clang-format off
    const struct { const char *text, *oid, *shown; } cases[] = {
        {"1.2.643.2.2.31.1", "072A85030202 1F01", "1.2.643.2.2.31.1"},
        {"1.2.4294967295", "062A8FFFFFFF7F", "1.2.4294967295"}, {"1.2.3x", "022A03", "1.2.3"},
        {"2.100", "028134", "4.20"}, {"2", "0150", "2.0"}, {"0.0", "0100", "0.0"}, {"", "00", "0.0"}};
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(OidOf(c.text), Hex(c.oid));
        const auto show = [oid = Hex(c.oid)](uint8_t* out, uint32_t* length) {
            return ConvertOidToString(oid.data(), reinterpret_cast<char*>(out), length);
        };
        EXPECT_EQ(Fetch(show), Text(c.shown) + Bytes{0});
    }
    uint32_t length = 0;
    const char arcs29[] = "1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1";
    for (const char* bad : {"1.abc", "1.00", "1..2", "1.2.", ".", arcs29})
        EXPECT_EQ(ConvertStringToOid(bad, nullptr, &length), StatusBadArgument) << bad;
    for (const char* cut : {"022A85", "01B4"})
        EXPECT_EQ(ConvertOidToString(Hex(cut).data(), nullptr, &length), StatusBadArgument) << cut;
    Bytes longest(256, 0x7F);
    longest[0] = 255;
    EXPECT_STATUS(StatusOk, ConvertOidToString(longest.data(), nullptr, &length));
}

TEST(Oids, ElementsAndComparison) {
    const Bytes oid = Hex("032A8503"), element = Hex("06032A8503");
    EXPECT_EQ(Fetch(EncodeAsn1Oid, oid.data()), element);
    EXPECT_EQ(Fetch(DecodeAsn1Oid, element.data(), 5), oid);
    uint32_t length = 0;
    Bytes content = Hex("2A8503");
    const Asn1Value record = {6, 3, content.data()}, none = {6, 0, nullptr};
    CHECK({DecodeAsn1Oid(Hex("0680").data(), 2, nullptr, &length), StatusBadIndefinite},
          {DecodeAsn1Oid(Hex("04012A").data(), 3, nullptr, &length), StatusBadEncoding},
          {DecodeAsn1Oid(element.data(), 4, nullptr, &length), StatusBadEncoding},
          {IsOidEquals(oid.data(), Hex("032A8503").data()), 1},
          {IsOidEquals(Hex("012A").data(), Hex("022A03").data()), 0}, {IsOidEquals(nullptr, nullptr), 0},
          {IsOidAndAsn1ObjectIdentifierEquals(oid.data(), &record), 1},
          {IsOidAndAsn1ObjectIdentifierEquals(oid.data(), &none), 0},
          {IsOidAndAsn1ObjectIdentifierEquals(Hex("00").data(), &none), 1});
}

}  // namespace
