// The decoder and the encoder against small schemas: bytes in, status, bytes out.

#include <pthread.h>

#include "schema.h"
#include "support.h"

using namespace tlvforge;
using namespace tlvforge::schema;
using namespace test_schema;
using namespace support;

namespace {

constexpr const Asn1Item* kNoItem[] = {nullptr};
using OneInteger = Sequence<Integer>;
using Integers = SetOf<Integer>;
using Anys = SequenceOf<Any>;
using TwoIntegers = Sequence<Integer, Integer>;
constexpr Asn1Item FixedSet = {0, 0x20, 0, 17, -1, 8, childTable<OneInteger>.items, 1, nullptr};
constexpr Asn1Item TwoElements = {0, 0x20, 0, 144, -1, 0, childTable<TwoIntegers>.items, 2, nullptr};
constexpr Asn1Item NoElement = {0, 0x20, 0, 144, -1, 0, nullptr, 1, nullptr};
constexpr Asn1Item NoFields = {0, 0x20, 0, 16, -1, 8, nullptr, 1, nullptr},
                   NullField = {0, 0x20, 0, 16, -1, 8, kNoItem, 1, nullptr};
constexpr Asn1Item NoAlternatives = {0, 0, 0, 128, -1, 0, nullptr, 1, nullptr};
constexpr Asn1Item NumberlessExplicit = {0x80, 0, 1, 2, -1, 16, nullptr, 0, nullptr};
constexpr Asn1Item UnknownKind = {0, 0, 0, 7, -1, 16, nullptr, 0, nullptr};
constexpr const Asn1Value& kNull = ConstantValue<5, 0>;
constexpr Asn1Item ConstructedOctets = {0, 0x20, 0, 4, -1, 16, nullptr, 0, nullptr};
constexpr Asn1Item FarTooLarge = {0, 0x20, 0, 16, -1, 64, childTable<OneInteger>.items, 1, nullptr};
constexpr Asn1Item FarTooSmall = {0, 0x20, 0, 16, -1, 0, childTable<TwoIntegers>.items, 2, nullptr};

struct Node {
    const Asn1Item* item;
    void* root = nullptr;
    ~Node() { FreeAsn1Object(item, root); }
};

Status Decode(const Bytes& ber, Node* node, uint32_t* consumed) {
    const walk::Bytes exact(ber.data(), ber.size());  // one byte read too far is seen
    return Asn1DecodeItem(exact.data(), exact.size(), node->item, &node->root, consumed);
}

// Leaves other bytes than zeros where the next block of this size is likely to lie.
void Soil(uint32_t size) {
    void* block = malloc(size);
    memset(block, 0xFF, size);
    free(block);
}

Bytes Encode(const Node& node) { return Fetch(GetAsn1EncodedValue, node.root, node.item); }

struct Row {
    const char *name, *ber;
    std::string der;    // "=" for the input, "" without a tree, "?" if it can't be written, "!" and a status: not read
    uint32_t rest = 0;  // bytes that are not consumed
};

// Rows of one item after the other.
// clang-format off
const struct { const Asn1Item& item; std::vector<Row> rows; } kTable[] = {
    {itemOf<Sequence<Optional<Integer>, Default<Boolean, kFalse>>>, {
        {"empty", "3000", "="}, {"empty, indefinite", "30800000", "3000"}, {"default", "3003 010100", "3000"},
        {"malformed header where an optional item may stand", "3001 02", "!302"}}},
    {itemOf<OneInteger>, {
        {"unknown fields after the last", "3007 020105 0400 0500", "3003 020105"},
        {"unknown fields, indefinite", "3080 020105 0400 0000", "!335"}, {"unfinished", "3080 020105 00", "!335"},
        {"sequence past the end", "3084FFFFFFFD 020105", "!302"}}},
    {NullField, {{"field without item", "3003 020105", "!32"}}},
    {itemOf<Integer>, {
        {"length in one octet", "028101 05", "020105"}, {"length in four octets", "028400000001 05", "020105"},
        {"length in five", "02850000000001 05", "!304"}, {"length past the end", "0284FFFFFFFF 05", "!302"},
        {"length octets cut off", "028200", "!302"}, {"no content", "0200", "!307"}, {"nothing", "", "!302"},
        {"superfluous zeros", "0202007F", "!307"}, {"superfluous ones", "0202FF80", "!307"},
        {"needed zeros", "02020080", "="}, {"needed ones", "0202FF7F", "="}}},
    {itemOf<Optional<Integer>>, {{"nothing", "", ""}, {"another tag", "0400", "", 2}}},
    {itemOf<Boolean>, {{"neither", "010101", "!307"}, {"two bytes", "0102FFFF", "!307"}, {"true", "0101FF", "="}}},
    {itemOf<OctetString>, {
        {"segments", "2480 0402AABB 040100 0400 0000 FF", "0403AABB00", 1},
        {"long constructed form", "2403 0401AA", "!302"}, {"segment of another class", "2480 8401AA 0000", "0401AA"},
        {"segment of another tag", "2480 0301AA 0000", "!336"}, {"end of the bytes", "2480 0401AA", "0401AA"},
        {"segment past the end", "2480 0405AA 0000", "!302"}, {"half an end of contents", "2480 0401AA 00", "!302"},
        {"primitive indefinite", "0480 0000", "!335"}}},
    {ConstructedOctets, {
        {"segments of definite length", "2403 0401AA", "?"}, {"end of contents in them", "2402 0000", "!336"}}},
    {itemOf<BitString>, {
        {"no content", "0300", "!302"}, {"8 unused bits", "030208FF", "!302"},
        {"unused bits are cleared", "030207FF", "03020780"}, {"empty one keeps its count", "030105", "="},
        {"constructed", "2380 03020001 0000", "!32"}}},
    {itemOf<Sequence<Any>>, {
        {"definite", "3004 A0020500", "="}, {"nested", "300B A080 30800000 020105 0000", "="},
        {"past the end", "3004 A0030500", "!302"}, {"past the end, nested", "3006 A080 0205 0102", "!335"},
        {"without end", "3006 A080 020105 00", "!302"}, {"end of the bytes", "3005 A080 020105", "!335"},
        {"end of the sequence is taken", "3080 0000", "!335"}}},
    {itemOf<Integers>, {
        {"out of order", "3106 020105 020103", "3106 020103 020105"}, {"one byte", "3101 02", "!302"},
        {"one byte after the last", "3104 020105 00", "!302"}}},
    {itemOf<SetOf<OctetString>>, {{"shorter first, unsigned", "310A 0402AABB 0401FF 0401AA", "310A 0401AA 0401FF 0402AABB"}}},
    {itemOf<Anys>, {
        {"indefinite", "3080 020105 0500 0000", "3005 020105 0500"},
        {"end of the bytes", "3080 020105", "3003 020105"}}},
    {itemOf<Sequence<Explicit<0, Default<Integer, kZero>>, Integer>>, {
        {"wrapped", "3008 A003020101 020102", "="}, {"no wrapper", "3003 020102", "="},
        {"wrapper longer than its content", "3008 A006 020101 020102", "3008 A003020101 020102"},
        {"indefinite wrapper", "300A A080 020101 0000 020102", "3008 A003020101 020102"},
        {"unfinished", "3008 A080 020101 020102", "!335"}, {"another class", "3008 60030201 01 020102", "!302"}}},
    {itemOf<Sequence<Optional<Explicit<0, Integer>>, OctetString>>, {
        {"wrapped another tag", "3004 A002 0400", "3002 0400"}, {"empty wrapper", "3002 A000", "!302"}}},
    {itemOf<Time>, {{"choice", "180130", "="}, {"no such alternative", "160130", "!302"}}},
    {itemOf<Explicit<0, Time>>, {{"choice", "A003 180130", "="}}},
    {itemOf<Implicit<1, Choice<Integer, OctetString>>>, {{"has no tag", "020105", "="}}},
    {itemOf<Implicit<3, Any>>, {{"general any", "30020100", "A3020100"}}},
    {itemOf<Implicit<3, Integer>>, {{"low tag in the high form", "9F030105", "830105"}, {"ends the bytes", "9F03", "!302"}}},
    {itemOf<Implicit<31, Integer>>, {{"high tag", "9F1F0105", "="}, {"high tag cut off", "9F9F", "!302"}}},
    {itemOf<Implicit<128, Integer>>, {{"high tag in two octets", "9F81000105", "="}}},
    {itemOf<Sequence<Optional<OctetString>>>, {{"lying header of another tag", "3006 0284FFFFFFFF", "3000"}}},
    {itemOf<SequenceOf<Optional<Integer>>>, {{"elements that are not there", "3002 0400", "!302"}}},
    {itemOf<Null>, {{"null with content", "050100", "="}}},
    {itemOf<Default<Null, kNull>>, {{"default that can't be copied", "020105", "!300"}, {"nothing", "", "!300"}}},
    {FarTooLarge, {{"schema size larger than its fields", "3003 020105", "="}}},
    {FarTooSmall, {{"schema size smaller than its fields", "3006 020101 020102", "="}}},
    {FixedSet, {{"set by position", "3103 020105", "?"}}}, {UnknownKind, {{"unknown kind", "070100", "!300"}}},
    {TwoElements, {{"two element items", "3003 020105", "!305"}}},
    {NoElement, {{"no element item", "3003 020105", "!305"}}},
    {NumberlessExplicit, {{"explicit without a number", "020105", "!305"}}}};
// clang-format on

TEST(Engine, DecodesAndEncodesAgain) {
    for (const auto& [item, rows] : kTable) {
        for (const Row& row : rows) {
            SCOPED_TRACE(testing::Message() << "kind " << int{item.kind} << ", " << row.name << ": " << row.ber);
            const Bytes ber = Hex(row.ber);
            const bool fails = row.der[0] == '!';
            Node node{&item};
            uint32_t consumed = 77;
            Soil(item.valueSize);
            EXPECT_EQ(Decode(ber, &node, &consumed), fails ? std::stoul(row.der.substr(1)) : StatusOk);
            EXPECT_EQ(consumed, fails ? 77 : ber.size() - row.rest);
            EXPECT_EQ(node.root != nullptr, !fails && !row.der.empty());
            for (size_t cell = item.childCount; &item == &FarTooLarge && cell < item.valueSize / 8; ++cell) {
                EXPECT_EQ(static_cast<void**>(node.root)[cell], nullptr) << cell;
            }
            if (node.root != nullptr && row.der != "?") {
                EXPECT_EQ(ToHex(Encode(node)), ToHex(row.der == "=" ? ber : Hex(row.der)));
            }
            for (size_t cut = 0; cut < ber.size(); ++cut) {  // no prefix is read past its end, and none leaks
                Node part{&item};
                (void)Decode({ber.data(), ber.data() + cut}, &part, &consumed);
            }
        }
    }
}

TEST(Engine, ReadsHeaders) {
    // Statuses with `indefinite`, and without, which has the content checked.
    // clang-format off
    const std::tuple<const char*, Status, Status, Numbers> cases[] = {
        {"BF8148 820102", 0, 302, {0xA0, 200, 0x102, 0, 6}}, {"30", 302, 302, {}}, {"04FF", 304, 304, {}},
        {"3080 0102", 0, 0, {0x20, 16, 2, 1, 2}}, {"0402 0102", 0, 0, {0, 4, 2, 0, 2}}, {"048200", 302, 302, {}}};
    // clang-format on
    for (const auto& [hex, status, checked, expected] : cases) {
        const Bytes bytes = Hex(hex);
        uint8_t tagClass = 0, form = 0;
        uint32_t tag = 0, content = 0, indefinite = 0, header = 0;
        const auto read = [&](uint32_t* flag) {
            return GetAsn1ObjectInfo(bytes.data(), Size(bytes), &tagClass, &form, &tag, &content, flag, &header);
        };
        CHECK({read(nullptr), checked}, {read(&indefinite), status});
        if (status != 0) continue;
        EXPECT_EQ(expected, (Numbers{uint32_t(tagClass | form), tag, content, indefinite, header})) << hex;
    }
}

TEST(Engine, RefusesWhatCannotBeEncoded) {
    uint8_t byte = 5;
    Asn1Value value = {2, 1, &byte}, lost = {2, 1, nullptr};
    const Asn1Choice outside = {2, &value}, empty = {0, nullptr}, first = {0, &value};
    const Asn1List tableless = {1, nullptr, 0, nullptr, 1};
    Asn1Value *none[] = {nullptr}, *one[] = {&value};
    // clang-format off
    const struct { const char* name; const Asn1Item& item; const void* node; Status status; } cases[] = {
        {"bytes lost", itemOf<Integer>, &lost, 311},      {"required field gone", itemOf<OneInteger>, none, 311},
        {"empty choice", itemOf<Time>, &empty, 311},      {"selector out of range", itemOf<Time>, &outside, 306},
        {"list without table", itemOf<Anys>, &tableless, 311}, {"two element items", TwoElements, &tableless, 305},
        {"no fields", NoFields, one, 32}, {"field without item", NullField, one, 32},
        {"no alternatives", NoAlternatives, &first, 32}, {"fixed set", FixedSet, one, 300},
        {"no number", NumberlessExplicit, &value, 305}, {"no node", itemOf<Integer>, nullptr, 32}};
    // clang-format on
    for (const auto& c : cases) {
        uint32_t length = 0;
        uint8_t* out = nullptr;
        EXPECT_EQ(Asn1Encode(c.node, &c.item, &out, &length), c.status) << c.name;
        EXPECT_EQ(GetAsn1EncodedValue(c.node, &c.item, nullptr, &length), c.status) << c.name;
        EXPECT_EQ(out, nullptr);
    }
}

TEST(Engine, SortsLargeSetsAndKeepsUnsortedOnes) {
    Bytes content, sorted;
    for (int i = 300; i-- > 0;) content = content + Hex("0202") + Bytes{uint8_t(1 + i / 256), uint8_t(i)};
    for (int i = 0; i < 300; ++i) sorted = sorted + Hex("0202") + Bytes{uint8_t(1 + i / 256), uint8_t(i)};
    Node node{&itemOf<Integers>};
    uint32_t consumed = 0;
    ASSERT_EQ(Decode(Tlv(0x31, content), &node, &consumed), StatusOk);
    EXPECT_EQ(Encode(node), Tlv(0x31, sorted));
    SetAsn1ListSorted(static_cast<Asn1List*>(node.root), 0);
    EXPECT_EQ(Encode(node), Tlv(0x31, content)) << "the tree keeps its own order";
}

template <int Depth>
struct Nested : Sequence<Integer, Nested<Depth - 1>> {};
template <>
struct Nested<0> : Sequence<Integer> {};

// Encode measures for the size query and for the short buffer, and measures and writes for the full one.
TEST(Engine, CostIsLinearInDepthAndSize) {
    constexpr uint32_t kDepth = 64, kCount = 2000;
    Bytes nested = Hex("3003020105"), sets;
    for (uint32_t i = 0; i < kDepth; ++i) nested = Tlv(0x30, Hex("020105") + nested);
    for (uint32_t i = 0; i < kCount; ++i) sets = sets + Hex("3106 020105 020103");
    const std::tuple<const Asn1Item&, Bytes, uint64_t> cases[] = {
        {itemOf<Nested<kDepth>>, nested, 2 * kDepth + 2}, {itemOf<SetOf<Integers>>, Tlv(0x31, sets), 3 * kCount + 1}};
    for (const auto& [item, ber, nodes] : cases) {
        Node node{&item};
        uint32_t consumed = 0;
        instruments = {};
        ASSERT_EQ(Decode(ber, &node, &consumed), StatusOk);
        ASSERT_EQ(Encode(node).size(), ber.size());
        EXPECT_EQ(instruments.decoderVisits, nodes);
        EXPECT_LE(instruments.encoderVisits, 6 * nodes)
            << "each pass visits a node once, and those into the scratch area";
    }
}

// A small stack stands in for "no input can exhaust the stack".
TEST(Engine, DeepInputNeedsNoStack) {
    const auto decode = [](void*) -> void* {
        Bytes open(64 << 20);
        for (size_t i = 0; i < open.size(); i += 2) open[i] = 0x30, open[i + 1] = 0x80;
        Bytes closed(open);
        std::fill_n(closed.data() + closed.size() / 2, closed.size() / 2, uint8_t{0});
        uint32_t consumed = 0;
        Node any{&itemOf<Any>}, sequence{&itemOf<OneInteger>};
        EXPECT_STATUS(StatusBadIndefinite, Asn1DecodeItem(open.data(), Size(open), &itemOf<Any>, &any.root, &consumed));
        EXPECT_STATUS(StatusBadEncoding,
                      Asn1DecodeItem(open.data(), Size(open), &itemOf<OneInteger>, &sequence.root, &consumed));
        EXPECT_STATUS(StatusOk, Asn1DecodeItem(closed.data(), Size(closed), &itemOf<Any>, &any.root, &consumed));
        EXPECT_EQ(consumed, closed.size());
        return nullptr;
    };
    pthread_t thread;
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 256 * 1024);
    ASSERT_EQ(pthread_create(&thread, &attributes, decode, nullptr), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

}  // namespace
