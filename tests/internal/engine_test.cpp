// The decoder and the encoder against small schemas: bytes in, status, bytes out.

#include <pthread.h>

#include <fstream>
#include <map>
#include <sstream>

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

// Leaves other bytes than zeros where the next block of this size is likely to lie.
void Soil(uint32_t size) {
    void* block = malloc(size);
    memset(block, 0xFF, size);
    free(block);
}

Bytes Encode(const AnyTree& tree) { return Fetch(GetAsn1EncodedValue, tree.root, &tree.item); }

// The items that engine.tsv has rows of.
#define SCHEMA(...) \
    { #__VA_ARGS__, &itemOf < __VA_ARGS__> }
#define RECORD(name) \
    { #name, &name }
// clang-format off
const std::map<std::string, const Asn1Item*> kItems = {
    SCHEMA(Sequence<Optional<Integer>, Default<Boolean, kFalse>>), SCHEMA(OneInteger), RECORD(NullField),
    SCHEMA(Integer), SCHEMA(Optional<Integer>), SCHEMA(Boolean), SCHEMA(OctetString), RECORD(ConstructedOctets),
    SCHEMA(BitString), SCHEMA(Sequence<Any>), SCHEMA(Integers), SCHEMA(SetOf<OctetString>), SCHEMA(Anys),
    SCHEMA(Sequence<Explicit<0, Default<Integer, kZero>>, Integer>),
    SCHEMA(Sequence<Optional<Explicit<0, Integer>>, OctetString>), SCHEMA(Time), SCHEMA(Explicit<0, Time>),
    SCHEMA(Implicit<1, Choice<Integer, OctetString>>), SCHEMA(Implicit<3, Any>), SCHEMA(Implicit<3, Integer>),
    SCHEMA(Implicit<31, Integer>), SCHEMA(Implicit<128, Integer>), SCHEMA(Sequence<Optional<OctetString>>),
    SCHEMA(SequenceOf<Optional<Integer>>), SCHEMA(Null), SCHEMA(Default<Null, kNull>), RECORD(FarTooLarge),
    RECORD(FarTooSmall), RECORD(FixedSet), RECORD(UnknownKind), RECORD(TwoElements), RECORD(NoElement),
    RECORD(NumberlessExplicit)};
// clang-format on

TEST(Engine, DecodesAndEncodesAgain) {
    std::ifstream in(TLVFORGE_SOURCE_DIR "/tests/internal/engine.tsv");
    for (std::string line; std::getline(in, line);) {
        if (line[0] == '#') continue;
        SCOPED_TRACE(line);
        std::istringstream columns(line);
        std::string name, title, from, to, rest;
        for (std::string* column : {&name, &title, &from, &to, &rest}) std::getline(columns, *column, '\t');
        const Asn1Item& item = *kItems.at(name);
        const Bytes ber = Hex(from);
        const bool fails = to[0] == '!';
        AnyTree node(item);
        uint32_t consumed = 77;
        Soil(item.valueSize);
        EXPECT_EQ(StatusName(node.Decode(ber.data(), ber.size(), &consumed)), fails ? to.substr(1) : "Ok");
        EXPECT_EQ(consumed, fails ? 77 : ber.size() - (rest.empty() ? 0 : std::stoul(rest)));
        EXPECT_EQ(node.root != nullptr, !fails && !to.empty());
        for (size_t cell = item.childCount; &item == &FarTooLarge && cell < item.valueSize / 8; ++cell)
            EXPECT_EQ(node.Get()[cell], nullptr) << cell;
        if (node.root != nullptr && to != "?") {
            EXPECT_EQ(ToHex(Encode(node)), ToHex(to == "=" ? ber : Hex(to)));
        }
        // No prefix is read past its end, and none leaks.
        for (size_t cut = 0; cut < ber.size(); ++cut) (void)AnyTree(item).Decode(ber.data(), cut, &consumed);
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
    Asn1Value value = {2, 1, &byte}, lost = {2, 1, nullptr}, huge = {2, UINT32_MAX, &byte};
    const Asn1Choice outside = {2, &value}, empty = {0, nullptr}, first = {0, &value};
    const Asn1List tableless = {1, nullptr, 0, nullptr, 1};
    Asn1Value *none[] = {nullptr}, *one[] = {&value}, *large[] = {&huge};
    // clang-format off
    const struct { const char* name; const Asn1Item& item; const void* node; Status status; } cases[] = {
        {"bytes lost", itemOf<Integer>, &lost, 311},      {"required field gone", itemOf<OneInteger>, none, 311},
        {"empty choice", itemOf<Time>, &empty, 311},      {"selector out of range", itemOf<Time>, &outside, 306},
        {"list without table", itemOf<Anys>, &tableless, 311}, {"two element items", TwoElements, &tableless, 305},
        {"no fields", NoFields, one, 32}, {"field without item", NullField, one, 32},
        {"no alternatives", NoAlternatives, &first, 32}, {"fixed set", FixedSet, one, 300},
        {"no number", NumberlessExplicit, &value, 305}, {"no node", itemOf<Integer>, nullptr, 32},
        {"long value", itemOf<Integer>, &huge, 304},      {"long content", itemOf<OneInteger>, large, 304},
        {"long wrapped", itemOf<Explicit<0, Integer>>, &huge, 304}};
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
    const Bytes set = Tlv(0x31, content);
    AnyTree node(itemOf<Integers>);
    uint32_t consumed = 0;
    ASSERT_EQ(node.Decode(set.data(), set.size(), &consumed), StatusOk);
    EXPECT_EQ(Encode(node), Tlv(0x31, sorted));
    SetAsn1ListSorted(static_cast<Asn1List*>(node.root), 0);
    EXPECT_EQ(Encode(node), set) << "the tree keeps its own order";
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
        AnyTree node(item);
        uint32_t consumed = 0;
        instruments = {};
        ASSERT_EQ(node.Decode(ber.data(), ber.size(), &consumed), StatusOk);
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
        AnyTree any(itemOf<Any>), sequence(itemOf<OneInteger>);
        EXPECT_STATUS(StatusBadIndefinite, any.Decode(open.data(), open.size(), &consumed));
        EXPECT_STATUS(StatusBadEncoding, sequence.Decode(open.data(), open.size(), &consumed));
        EXPECT_STATUS(StatusOk, any.Decode(closed.data(), closed.size(), &consumed));
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
