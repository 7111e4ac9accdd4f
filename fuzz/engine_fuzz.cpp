// The engine over items that use every block of engine/items.h: the first byte chooses one, the others are decoded.
#include "schema.h"

using namespace tlvforge;
using namespace tlvforge::schema;
using namespace test_schema;
using namespace walk;

namespace {

constexpr Asn1Item kApplication = Tagged(itemOf<OctetString>, Asn1ClassApplication, 3, 0);
constexpr Asn1Item kPrivate = Tagged(itemOf<Integer>, Asn1ClassPrivate, 1000000, Asn1FlagExplicit);
constexpr Asn1Item kUniversal = Tagged(itemOf<UTF8String>, Asn1ClassUniversal, 2, Asn1FlagExplicit);
struct Leaf : Choice<Boolean, Integer, BitString, OctetString, Null, ObjectIdentifier, Enumerated, UTF8String,
                     Primitive<18>, Primitive<19>, Primitive<20>, Primitive<21>, IA5String, UTCTime, GeneralizedTime,
                     Primitive<25>, Primitive<26>, Primitive<27>, Primitive<28>, Primitive<30>, Explicit<1, Any>,
                     Element<kApplication>, Element<kPrivate>, Implicit<0, OctetString>> {};
struct TaggedFields
    : Sequence<Optional<Implicit<0, Integer>>, Optional<Explicit<1, Leaf>>, Default<Explicit<2, Integer>, kZero>,
               Default<Implicit<3, Boolean>, kFalse>, Optional<Implicit<4, SetOf<Any>>>,
               Optional<Implicit<31, BitString>>, Optional<Explicit<300, OctetString>>, Optional<Element<kPrivate>>,
               Optional<Element<kUniversal>>, Optional<Explicit<5, SequenceOf<Leaf>>>> {};
struct Sets : SetOf<SequenceOf<SetOf<Leaf>>> {};
struct Deep : Sequence<TaggedFields, Optional<Sequence<Integer, Sets, Optional<Any>>>, SequenceOf<TaggedFields>> {};
struct Comparable : Sequence<Boolean, Integer, Optional<BitString>, SequenceOf<OctetString>> {};
// A SET with fields can be read and not written.
constexpr Asn1Item kSet = {0, Asn1Constructed, 0, Asn1KindSet, -1, 0, itemOf<Comparable>.children, 4, nullptr};
constexpr const Asn1Item* kItems[] = {&itemOf<Leaf>,       &itemOf<TaggedFields>, &itemOf<Sets>, &itemOf<Deep>,
                                      &itemOf<Comparable>, &itemOf<Any>,          &kSet};

bool Read(AnyTree& tree, const Bytes& in) {
    uint32_t consumed = 0;
    const bool read = Ok(tree.Decode(in.data(), in.size(), &consumed));
    Require(consumed <= in.size() && (read || tree.root == nullptr));
    return read;
}

// Both ways to write, which have to agree.
MaybeBytes Write(const AnyTree& tree) {
    auto written = Get(GetAsn1EncodedValue, tree.root, &tree.item);
    uint8_t* block = nullptr;
    uint32_t length = 0;
    Require(Ok(Asn1Encode(tree.root, &tree.item, &block, &length)) == written.has_value());
    if (written) Require(Bytes(block, length) == (*written)[0]);
    Release(block);
    return written;
}

// A number in its shortest form is the same when it is set to what it is.
void WalkInteger(const Asn1Value* value) {
    int32_t number = 0;
    if (!Ok(CheckAsn1Integer(value))) return;
    const AnyTree again(itemOf<Integer>, AllocAsn1Integer_s(kAnyBytes, sizeof kAnyBytes));
    auto* const copy = static_cast<Asn1Value*>(again.root);
    const auto [bytes] = Sure(Get(GetAsn1Integer, value));
    Require(Ok(SetAsn1Integer(copy, bytes.data(), bytes.size())) &&
            Get(GetAsn1Value, copy) == Get(GetAsn1Value, value));
    if (Ok(GetAsn1Int32(value, &number)))
        Require(Ok(SetAsn1Int32(copy, number)) && Get(GetAsn1Value, copy) == Get(GetAsn1Value, value));
}

// All values of a tree.
void WalkNode(const Asn1Item* item, void* node) {
    uint8_t octets[2] = {};
    uint32_t numbers[3] = {};
    if (node == nullptr) return;
    if (item->kind == Asn1KindChoice) {
        Require(Ok(GetAsn1ChoiceUnderlyingType(&node, &item)));
        WalkNode(item, node);
    } else if (item->kind == Asn1KindSequence || item->kind == Asn1KindSet) {
        for (uint32_t i = 0; i < item->childCount; ++i) WalkNode(item->children[i], static_cast<void**>(node)[i]);
    } else if (IsList(*item)) {
        const auto* const list = static_cast<const Asn1List*>(node);
        for (uint32_t i = 0; i < GetAsn1ListLength(list); ++i)
            WalkNode(item->children[0], Lent(GetAsn1ListItem, list, static_cast<int32_t>(i)));
    } else if (item->kind == Asn1KindAny) {
        const auto* const any = static_cast<const Asn1Any*>(node);
        const uint32_t size = Sure(Get(GetAsn1AnyValue, node))[0].size();
        if (Ok(GetAsn1AnyInfo(any, octets, octets + 1, numbers, numbers + 1, numbers + 2)))
            Require(uint64_t{numbers[1]} + numbers[2] == size);
    } else if (item->kind == Asn1KindBitString) {
        (void)Get(GetAsn1BitString, static_cast<const Asn1BitString*>(node), octets);
        Require(octets[0] < 8);
    } else {
        const auto* const value = static_cast<const Asn1Value*>(node);
        const auto typed = Get(GetAsn1ValueAndType, value, numbers);
        Require(!typed || typed == Get(GetAsn1Value, value));
        if (item->kind == Asn1KindBoolean) Require(Ok(GetAsn1Boolean(value, numbers)) == Ok(CheckAsn1Boolean(value)));
        if (item->kind == Asn1KindInteger) WalkInteger(value);
    }
}

void WalkItem(const Asn1Item& item, const Bytes& in) {
    AnyTree first(item), second(item), copy(item);
    if (!Read(first, in)) return;
    WalkNode(&item, first.root);
    const MaybeBytes once = Write(first);
    Require(once.has_value() == (item.kind != Asn1KindSet));
    if (!once) return;
    Require(Read(second, (*once)[0]) && Write(second) == once);
    uint32_t equal = 0;
    if (Ok(CopyAsn1Object(&item, second.root, &copy.root))) Require(Write(copy) == once);
    if (Ok(CompareAsn1Objects(&item, second.root, copy.root, &equal))) Require((equal == 1) == (copy.root != nullptr));
}

void WalkHeader(const Bytes& in) {
    uint8_t tagClass = 0, constructed = 0;
    uint32_t tag = 0, content = 0, header = 0, indefinite = 0;
    (void)GetAsn1ObjectInfo(in.data(), in.size(), &tagClass, &constructed, &tag, &content, &indefinite, &header);
    if (Ok(GetAsn1ObjectInfo(in.data(), in.size(), &tagClass, &constructed, &tag, &content, nullptr, &header)))
        Require(uint64_t{header} + content <= in.size());
}

void WalkContent(uint8_t kind, const Bytes& in) {
    const auto rewritePrimitive = [kind](const Bytes& bytes) -> MaybeBytes {
        const auto content = Get(DecodeAsn1PrimitiveValue, kind, bytes.data(), bytes.size());
        if (!content) return std::nullopt;
        return Sure(Get(EncodeAsn1PrimitiveValue, kind, (*content)[0].data(), (*content)[0].size()));
    };
    const auto rewriteOid = [](const Bytes& oid) -> MaybeBytes {
        const auto text = Get(ConvertOidToString, oid.data());
        return text ? Get(ConvertStringToOid, reinterpret_cast<const char*>((*text)[0].data())) : std::nullopt;
    };
    WalkTwice(in, rewritePrimitive, true);
    for (const auto& oid : {Get(DecodeAsn1Oid, in.data(), in.size()),
                            Get(ConvertStringToOid, std::string(in.data(), in.end()).c_str())}) {
        if (oid) WalkTwice((*oid)[0], rewriteOid, true);
    }
}

}  // namespace

void walk::WalkInput(const Bytes& input) {
    if (input.size() == 0) return;
    const uint64_t blocks = instruments.liveBlocks;
    const uint8_t first = input.data()[0];
    const Bytes in(input.data() + 1, input.size() - 1);
    WalkItem(*kItems[first % std::size(kItems)], in);
    WalkHeader(in);
    WalkContent(in.size() != 0 ? in.data()[0] & 0x1F : first, in);
    Require(instruments.liveBlocks == blocks);
}
