// The decoder and the encoder against small schemas: bytes in, status, bytes out.

#include <pthread.h>

#include <functional>

#include "engine/codec.h"
#include "engine/items.h"
#include "engine/nodes.h"
#include "support.h"

using namespace tlvforge;
using namespace tlvforge::schema;
using support::Bytes;
using support::Hex;
using support::operator+;

namespace {

constexpr Asn1Item Optionals = Sequence<Optional<Integer>, Default<Boolean, kFalse>>;
constexpr Asn1Item OneInteger = Sequence<Integer>;
constexpr Asn1Item OneAny = Sequence<Any>;
constexpr Asn1Item Versioned = Sequence<Explicit<0, Default<Integer, kZero>>, Integer>;
constexpr Asn1Item OptionalWrapped = Sequence<Optional<Explicit<0, Integer>>, OctetString>;
constexpr Asn1Item OptionalOctets = Sequence<Optional<OctetString>>;
constexpr Asn1Item Integers = SetOf<Integer>;
constexpr Asn1Item Anys = SequenceOf<Any>;
constexpr Asn1Item Endless = SequenceOf<Optional<Integer>>;
constexpr Asn1Item ExplicitChoice = Explicit<0, Time>;
constexpr Asn1Item ImplicitChoice = Implicit<1, Choice<Integer, OctetString>>;
constexpr Asn1Item FixedSet = {0, 0x20, 0, 17, -1, 8, childTable<Integer>, 1, nullptr};
constexpr Asn1Item TwoElements = {0, 0x20, 0, 144, -1, 0, childTable<Integer, Integer>, 2, nullptr};
constexpr Asn1Item NoElement = {0, 0x20, 0, 144, -1, 0, nullptr, 1, nullptr};
constexpr Asn1Item NumberlessExplicit = {0x80, 0, 1, 2, -1, 16, nullptr, 0, nullptr};
constexpr Asn1Item UnknownKind = {0, 0, 0, 7, -1, 16, nullptr, 0, nullptr};
constexpr Asn1Item FarTooSmall = {0, 0x20, 0, 16, -1, 0, childTable<Integer, Integer>, 2, nullptr};
constexpr Asn1Item OptionalInteger = Optional<Integer>;

struct Node {
    const Asn1Item* item;
    void* root = nullptr;
    ~Node() { FreeAsn1Object(item, root); }
};

Status Decode(const Bytes& ber, Node* node, uint32_t* consumed) {
    const std::unique_ptr<uint8_t[]> exact(new uint8_t[ber.size()]);  // one byte read too far is seen
    std::copy(ber.begin(), ber.end(), exact.get());
    return Asn1DecodeItem(exact.get(), static_cast<uint32_t>(ber.size()), node->item, &node->root, consumed);
}

Bytes Encode(const Node& node) {
    return support::Fetch(
        [&](uint8_t* buffer, uint32_t* length) { return GetAsn1EncodedValue(node.root, node.item, buffer, length); });
}

struct Row {
    const char* name;
    const Asn1Item& item;
    const char* ber;
    Status status;
    uint32_t consumed = 0;
    const char* der = nullptr;  // of the tree; null for no tree, "=" for the input
};

const Row kRows[] = {
    {"empty sequence", Optionals, "3000", 0, 2, "="},
    {"empty indefinite sequence", Optionals, "30800000", 0, 4, "3000"},
    {"default on the wire", Optionals, "3003 010100", 0, 5, "3000"},
    {"unknown fields behind the last", OneInteger, "3007 020105 0400 0500", 0, 9, "3003 020105"},
    {"unknown fields, indefinite", OneInteger, "3080 020105 0400 0000", 335},
    {"unfinished indefinite sequence", OneInteger, "3080 020105 00", 335},
    {"schema size smaller than its fields", FarTooSmall, "3006 020101 020102", 0, 8, "="},
    {"nothing for a required item", Integer, "", 302},
    {"nothing for an optional item", OptionalInteger, "", 0, 0},
    {"another tag for an optional item", OptionalInteger, "0400", 0, 0},
    {"malformed header where an optional item may stand", Optionals, "3001 02", 302},
    {"length in one long octet", Integer, "028101 05", 0, 4, "020105"},
    {"length in four octets", Integer, "028400000001 05", 0, 7, "020105"},
    {"length in five octets", Integer, "02850000000001 05", 304},
    {"length octets cut off", Integer, "028200", 302},
    {"length past the end", Integer, "0284FFFFFFFF 05", 302},
    {"sequence past the end", OneInteger, "3084FFFFFFFD 020105", 302},
    {"lying header of another tag", OptionalOctets, "3006 0284FFFFFFFF", 0, 8, "3000"},
    {"integer 007F", Integer, "0202007F", 307},
    {"integer FF80", Integer, "0202FF80", 307},
    {"integer without content", Integer, "0200", 307},
    {"integer 0080", Integer, "02020080", 0, 4, "="},
    {"integer FF7F", Integer, "0202FF7F", 0, 4, "="},
    {"boolean 01", Boolean, "010101", 307},
    {"boolean of two bytes", Boolean, "0102FFFF", 307},
    {"boolean FF", Boolean, "0101FF", 0, 3, "="},
    {"null with content", Null, "050100", 0, 3, "="},
    {"long constructed octet string", OctetString, "2403 0401AA", 302},
    {"segments", OctetString, "2480 0402AABB 040100 0400 0000 FF", 0, 13, "0403AABB00"},
    {"segments of another class", OctetString, "2480 8401AA 0000", 0, 7, "0401AA"},
    {"segments that end with the bytes", OctetString, "2480 0401AA", 0, 5, "0401AA"},
    {"segment of another tag", OctetString, "2480 0301AA 0000", 336},
    {"segment past the end", OctetString, "2480 0405AA 0000", 302},
    {"one byte of end of contents", OctetString, "2480 0401AA 00", 302},
    {"primitive indefinite", OctetString, "0480 0000", 335},
    {"bit string without content", BitString, "0300", 302},
    {"bit string with 8 unused bits", BitString, "030208FF", 302},
    {"unused bits are cleared", BitString, "030207FF", 0, 4, "03020780"},
    {"empty bit string keeps its count", BitString, "030105", 0, 3, "="},
    {"constructed bit string", BitString, "2380 03020001 0000", 32},
    {"any, definite", OneAny, "3004 A0020500", 0, 6, "="},
    {"any past the end", OneAny, "3004 A0030500", 302},
    {"any, nested indefinite", OneAny, "300B A080 30800000 020105 0000", 0, 13, "="},
    {"any without end", OneAny, "3006 A080 020105 00", 302},
    {"any whose content fills the bytes", OneAny, "3005 A080 020105", 335},
    {"any takes the end of an indefinite sequence", OneAny, "3080 0000", 335},
    {"set of, out of order", Integers, "3106 020105 020103", 0, 8, "3106 020103 020105"},
    {"set of, shorter first, unsigned", SetOf<OctetString>, "310A 0402AABB 0401FF 0401AA", 0, 12,
     "310A 0401AA 0401FF 0402AABB"},
    {"list of one byte", Integers, "3101 02", 302},
    {"one byte behind the last element", Integers, "3104 020105 00", 302},
    {"indefinite list", Anys, "3080 020105 0500 0000", 0, 9, "3005 020105 0500"},
    {"indefinite list that ends with the bytes", Anys, "3080 020105", 0, 5, "3003 020105"},
    {"optional elements that are not there", Endless, "3002 0400", 302},
    {"wrapped", Versioned, "3008 A003020101 020102", 0, 10, "="},
    {"no wrapper", Versioned, "3003 020102", 0, 5, "="},
    {"wrapper of another class", Versioned, "3008 60030201 01 020102", 302},
    {"wrapper longer than its content", Versioned, "3008 A006 020101 020102", 0, 10, "3008 A003020101 020102"},
    {"indefinite wrapper", Versioned, "300A A080 020101 0000 020102", 0, 12, "3008 A003020101 020102"},
    {"unfinished indefinite wrapper", Versioned, "3008 A080 020101 020102", 335},
    {"wrapper around another tag", OptionalWrapped, "3004 A002 0400", 0, 6, "3002 0400"},
    {"wrapper around nothing", OptionalWrapped, "3002 A000", 302},
    {"choice", Time, "180130", 0, 3, "="},
    {"no such alternative", Time, "160130", 302},
    {"explicit choice", ExplicitChoice, "A003 180130", 0, 5, "="},
    {"implicit choice has no tag", ImplicitChoice, "020105", 0, 3, "="},
    {"general any under an implicit tag", Implicit<3, Any>, "30020100", 0, 4, "A3020100"},
    {"tag 31", Implicit<31, Integer>, "9F1F0105", 0, 4, "="},
    {"tag 128", Implicit<128, Integer>, "9F81000105", 0, 5, "="},
    {"low tag in the high form", Implicit<3, Integer>, "9F030105", 0, 4, "830105"},
    {"high tag cut off", Implicit<31, Integer>, "9F9F", 302},
    {"high tag that ends with the bytes", Implicit<5, Integer>, "9F05", 302},
    {"set by position", FixedSet, "3103 020105", 0, 5},
    {"unknown kind", UnknownKind, "070100", 300},
    {"list of two element items", TwoElements, "3003 020105", 305},
    {"list without an element item", NoElement, "3003 020105", 305},
    {"explicit without a number", NumberlessExplicit, "020105", 305},
};

TEST(Engine, DecodesAndEncodesAgain) {
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.name);
        const Bytes ber = Hex(row.ber);
        Node node{&row.item};
        uint32_t consumed = 77;
        const Status status = Decode(ber, &node, &consumed);
        EXPECT_EQ(status, row.status);
        EXPECT_EQ(consumed, row.status == 0 ? row.consumed : 77);
        EXPECT_TRUE(status == 0 || node.root == nullptr);
        if (row.der != nullptr && node.root != nullptr) {
            EXPECT_EQ(support::ToHex(Encode(node)), support::ToHex(row.der[0] == '=' ? ber : Hex(row.der)));
        }
        for (size_t cut = 0; cut < ber.size(); ++cut) {  // no prefix is read past its end, and none leaks
            Node part{&row.item};
            (void)Decode(Bytes(ber.begin(), ber.begin() + static_cast<long>(cut)), &part, &consumed);
        }
    }
}

TEST(Engine, ReadsHeaders) {
    const struct {
        const char* hex;
        Status status, checked;  // with `indefinite`, and without, which has the content checked
        uint32_t identifier, tag, content, indefinite, header;
    } cases[] = {
        {"BF8148 820102", 0, 302, 0xA0, 200, 0x102, 0, 6},
        {"3080 0102", 0, 0, 0x20, 16, 2, 1, 2},
        {"0402 0102", 0, 0, 0, 4, 2, 0, 2},
        {"30", 302, 302, 0, 0, 0, 0, 0},
        {"04FF", 304, 304, 0, 0, 0, 0, 0},
        {"048200", 302, 302, 0, 0, 0, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.hex);
        const Bytes bytes = Hex(c.hex);
        const uint32_t size = static_cast<uint32_t>(bytes.size());
        uint8_t tagClass = 0, form = 0;
        uint32_t tag = 0, content = 0, indefinite = 0, header = 0;
        EXPECT_EQ(GetAsn1ObjectInfo(bytes.data(), size, &tagClass, &form, &tag, &content, nullptr, &header), c.checked);
        EXPECT_EQ(GetAsn1ObjectInfo(bytes.data(), size, &tagClass, &form, &tag, &content, &indefinite, &header),
                  c.status);
        if (c.status != 0) continue;
        const uint32_t read[] = {uint32_t(tagClass | form), tag, content, indefinite, header};
        EXPECT_EQ(memcmp(read, &c.identifier, sizeof(read)), 0);
    }
}

TEST(Engine, RefusesWhatCannotBeEncoded) {
    uint8_t byte = 5;
    Asn1Value value = {2, 1, &byte}, lost = {2, 1, nullptr};
    const Asn1Choice outside = {2, &value}, empty = {0, nullptr};
    const Asn1List tableless = {1, nullptr, 0, nullptr, 1};
    Asn1Value *none[] = {nullptr}, *one[] = {&value};
    const struct {
        const char* name;
        const Asn1Item& item;
        const void* node;
        Status status;
    } cases[] = {
        {"bytes lost", Integer, &lost, 311},
        {"required field gone", OneInteger, none, 311},
        {"empty choice", Time, &empty, 311},
        {"selector out of range", Time, &outside, 306},
        {"list without table", Anys, &tableless, 311},
        {"fixed set", FixedSet, one, 300},
        {"two element items", TwoElements, &tableless, 305},
        {"no number", NumberlessExplicit, &value, 305},
        {"no node", Integer, nullptr, 32},
    };
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
    Node node{&Integers};
    uint32_t consumed = 0;
    ASSERT_EQ(Decode(support::Tlv(0x31, content), &node, &consumed), 0u);
    EXPECT_EQ(Encode(node), support::Tlv(0x31, sorted));
    void* first = nullptr;
    ASSERT_EQ(GetAsn1ListItem(static_cast<Asn1List*>(node.root), 0, &first), 0u);
    EXPECT_EQ(static_cast<Asn1Value*>(first)->data[0], 2) << "the tree keeps its own order";
    SetAsn1ListSorted(static_cast<Asn1List*>(node.root), 0);
    EXPECT_EQ(Encode(node), support::Tlv(0x31, content));
}

TEST(Engine, AgreesOnHeaderSizes) {
    for (const uint32_t tag : {0u, 30u, 31u, 127u, 128u, 0xFFFFFFFFu}) {
        for (const uint32_t content : {0u, 127u, 128u, 255u, 256u, 65535u, 65536u, 0xFFFFFFFFu}) {
            uint8_t header[kMaxHeader];
            EXPECT_EQ(WriteHeader(0, 0, tag, content, header) + uint64_t{content}, TlvSize(content, tag));
            uint8_t c, f;
            uint32_t t, l, indefinite, h;
            EXPECT_EQ(GetAsn1ObjectInfo(header, kMaxHeader, &c, &f, &t, &l, &indefinite, &h), 0u);
            EXPECT_TRUE(t == tag && l == content) << tag << ' ' << content;
        }
    }
}

template <int Depth>
constexpr Asn1Item Nested = Sequence<Integer, Nested<Depth - 1>>;
template <>
constexpr Asn1Item Nested<0> = Sequence<Integer>;

template <int Depth>
std::pair<uint64_t, uint64_t> VisitsAtDepth() {
    Bytes ber = Hex("3003020105");
    for (int i = 0; i < Depth; ++i) ber = support::Tlv(0x30, Hex("020105") + ber);
    Node node{&Nested<Depth>};
    uint32_t consumed = 0;
    instruments = {};
    EXPECT_EQ(Decode(ber, &node, &consumed), 0u);
    std::vector<uint8_t> out(ber.size());
    uint32_t length = consumed;
    EXPECT_EQ(GetAsn1EncodedValue(node.root, node.item, out.data(), &length), 0u);
    EXPECT_EQ(out, ber);
    return {instruments.decoderVisits, instruments.encoderVisits};
}

TEST(Engine, CostIsLinearInDepthAndSize) {
    EXPECT_EQ(VisitsAtDepth<8>(), std::make_pair(uint64_t{18}, uint64_t{36})) << "each pass visits a node once";
    EXPECT_EQ(VisitsAtDepth<64>(), std::make_pair(uint64_t{130}, uint64_t{260}));
    for (const uint32_t count : {1000u, 2000u}) {
        Bytes content;
        for (uint32_t i = count; i-- > 0;) content = content + Hex("3106 020105 020103");
        constexpr const Asn1Item& SetsOfSets = SetOf<Integers>;
        Node node{&SetsOfSets};
        uint32_t length = 0;
        instruments = {};
        ASSERT_EQ(Decode(support::Tlv(0x31, content), &node, &length), 0u);
        ASSERT_EQ(Encode(node).size(), length);
        EXPECT_EQ(instruments.decoderVisits, 3 * count + 1);
        // One size query, one short buffer: measured alone; one full encoding: measured and written.
        EXPECT_EQ(instruments.encoderVisits, 4 * (3 * count + 1));
    }
}

// Bounded stacks stand in for "no input can exhaust the stack".
void RunOnSmallStack(const std::function<void()>& work) {
#ifdef __SANITIZE_ADDRESS__
    constexpr size_t kStack = 256 * 1024;
#else
    constexpr size_t kStack = 64 * 1024;
#endif
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, kStack);
    pthread_t thread;
    const auto run = [](void* argument) -> void* {
        (*static_cast<const std::function<void()>*>(argument))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&work)), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

TEST(Engine, DeepInputNeedsNoStack) {
    Bytes open(64 << 20);
    for (size_t i = 0; i < open.size(); i += 2) open[i] = 0x30, open[i + 1] = 0x80;
    Bytes closed(open);
    std::fill(closed.begin() + static_cast<long>(closed.size() / 2), closed.end(), uint8_t{0});
    RunOnSmallStack([&] {
        uint32_t consumed = 0;
        Node any{&Any}, certificate{&OneInteger};
        EXPECT_EQ(Asn1DecodeItem(open.data(), uint32_t(open.size()), &Any, &any.root, &consumed), 335u);
        EXPECT_EQ(Asn1DecodeItem(open.data(), uint32_t(open.size()), &OneInteger, &certificate.root, &consumed), 302u);
        EXPECT_EQ(Asn1DecodeItem(closed.data(), uint32_t(closed.size()), &Any, &any.root, &consumed), 0u);
        EXPECT_EQ(consumed, closed.size());
    });
}

}  // namespace
