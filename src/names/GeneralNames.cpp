#include "tlvforge/names.h"

#include "engine/access.h"
#include "names/names.schema.h"

using namespace tlvforge;

namespace {

// The value record of an alternative, from the caller's form of it: two blocks, which a caller may end by itself. Null
// when out of memory.
void* AllocAlternative(const Asn1Item& alternative, const uint8_t* value, uint32_t length) {
    switch (alternative.kind) {
        case Asn1KindAny: return NewValueInTwoBlocks<Asn1Any>(length != 0 ? value[0] : 0, value, length);
        case Asn1KindObjectIdentifier: return NewValueInTwoBlocks<Asn1Value>(alternative.kind, value + 1, value[0]);
        default: return NewValueInTwoBlocks<Asn1Value>(alternative.kind, value, length);
    }
}

Status MakeGeneralName(uint32_t alternative, const uint8_t* value, uint32_t length, Tree<X509GeneralName>* name) {
    if (alternative >= itemOf<X509GeneralName>.childCount) return Fail(StatusBadAlternative);
    if (const Status status = name->Create()) return status;
    (*name)->selected = alternative;
    (*name)->value = AllocAlternative(*itemOf<X509GeneralName>.children[alternative], value, length);
    return (*name)->value != nullptr ? StatusOk : Fail(StatusOutOfMemory);
}

Status ReadGeneralName(const X509GeneralName* name, uint32_t* alternative, uint8_t* value, uint32_t* length) {
    if (name == nullptr || name->value == nullptr) return Fail(StatusAbsent);
    *alternative = name->selected;
    if (name->selected >= itemOf<X509GeneralName>.childCount) return Fail(StatusBadAlternative);
    if (name->selected == X509GeneralNameRegisteredID) {
        return GetAsn1Oid(static_cast<const Asn1Value*>(name->value), value, length);
    }
    return GetAsn1Value(name->value, value, length);
}

}  // namespace

Status CreateX509GeneralName(X509GeneralName** out) { return CreateTree(out); }

Status CreateX509GeneralNameCopy(const X509GeneralName* source, X509GeneralName** out) { return CopyTree(source, out); }

Status FreeX509GeneralName(X509GeneralName* name) { return FreeTree(name); }

Status AllocX509GeneralNameValue(X509GeneralName** out, uint32_t alternative, const uint8_t* value, uint32_t length) {
    if (AnyNull(out, value)) return Fail(StatusBadArgument);
    *out = nullptr;
    Tree<X509GeneralName> name;
    if (const Status status = MakeGeneralName(alternative, value, length, &name)) return status;
    *out = name.Take();
    return StatusOk;
}

Status GetX509GeneralNameValue(const X509GeneralName* name, uint32_t* alternative, uint8_t* value, uint32_t* length) {
    if (AnyNull(name, alternative, length)) return Fail(StatusBadArgument);
    return ReadGeneralName(name, alternative, value, length);
}

Status CreateX509GeneralNames(X509GeneralNames** out) { return CreateTree(out); }

Status CopyX509GeneralNames(const X509GeneralNames* source, X509GeneralNames** out) { return CopyTree(source, out); }

Status DecodeX509GeneralNames(const uint8_t* data, uint32_t length, X509GeneralNames** out) {
    return DecodeTree(data, length, out);
}

Status EncodeX509GeneralNames(const X509GeneralNames* names, uint8_t* buffer, uint32_t* length) {
    return EncodeTree(names, buffer, length);
}

Status FreeX509GeneralNames(X509GeneralNames* names) { return FreeTree(names); }

Status AddX509GeneralName(X509GeneralNames* names, uint32_t alternative, const uint8_t* value, uint32_t length) {
    if (AnyNull(names, value)) return Fail(StatusBadArgument);
    Tree<X509GeneralName> name;
    if (const Status status = MakeGeneralName(alternative, value, length, &name)) return status;
    return name.MoveTo(names);
}

Status GetX509GeneralNameCount(const X509GeneralNames* names, uint32_t* count) { return GetListCount(names, count); }

Status GetX509GeneralName(const X509GeneralNames* names, uint32_t index, uint32_t* alternative, uint8_t* value,
                          uint32_t* length) {
    if (AnyNull(alternative, length) || !HasIndex(names, index)) return Fail(StatusBadArgument);
    return ReadGeneralName(MemberAt(names, index).node, alternative, value, length);
}

Status GetX509NameFromGeneralNames(const X509GeneralNames* names, X509Name** out) {
    if (AnyNull(names, out)) return Fail(StatusBadArgument);
    *out = nullptr;
    for (uint32_t i = 0; names->items != nullptr && i < names->count; ++i) {
        const X509GeneralName* name = names->At(i);
        if (name == nullptr || name->value == nullptr || name->selected != X509GeneralNameDirectoryName) continue;
        const auto* element = static_cast<const Asn1Any*>(name->value);
        if (DecodeX509Name(element->data, element->length, out) == StatusOk) return StatusOk;
    }
    return Fail(StatusNotFound);
}
