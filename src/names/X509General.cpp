#include "tlvforge/names.h"

#include "engine/access.h"
#include "names/names.schema.h"

using namespace tlvforge;

namespace {

Status AddValue(ListOf<Asn1Value>* list, uint8_t kind, const uint8_t* bytes, uint32_t length,
                Place place = Place::Here()) {
    if (AnyNull(list, bytes)) return Fail(StatusBadArgument, place);
    Tree<schema::OctetString> value(AllocAsn1Value(kind, bytes, length));
    return value ? value.MoveTo(list) : Fail(StatusOutOfMemory, place);
}

}  // namespace

Status CreatePKIFreeText(PKIFreeText** out) { return CreateTree(out); }

Status CreatePKIFreeTextCopy(const PKIFreeText* source, PKIFreeText** out) { return CopyTree(source, out); }

Status DecodePKIFreeText(const uint8_t* data, uint32_t length, PKIFreeText** out) {
    return DecodeTree(data, length, out);
}

Status EncodePKIFreeText(const PKIFreeText* texts, uint8_t* buffer, uint32_t* length) {
    return EncodeTree(texts, buffer, length);
}

Status FreePKIFreeText(PKIFreeText* texts) { return FreeTree(texts); }

Status AddPKIFreeTextString(PKIFreeText* texts, const uint8_t* text, uint32_t length) {
    return AddValue(texts, Asn1KindUTF8String, text, length);
}

Status GetPKIFreeTextString(const PKIFreeText* texts, uint32_t index, uint8_t* text, uint32_t* length) {
    if (length == nullptr || !HasIndex(texts, index)) return Fail(StatusBadArgument);
    return GetBytes(MemberAt(texts, index), text, length);
}

Status GetPKIFreeTextStringCount(const PKIFreeText* texts, uint32_t* count) { return GetListCount(texts, count); }

Status CreateOctetStrings(OctetStrings** out) { return CreateTree(out); }

Status FreeOctetStrings(OctetStrings* strings) {
    if (strings == nullptr) return Fail(StatusBadArgument);
    return FreeTree(strings);
}

Status AddOctetStringsValue(OctetStrings* strings, const uint8_t* bytes, uint32_t length) {
    return AddValue(strings, Asn1KindOctetString, bytes, length);
}

Status GetOctetStringsCount(const OctetStrings* strings, uint32_t* count) { return GetListCount(strings, count); }

Status GetOctetStringsValue(const OctetStrings* strings, uint32_t index, uint8_t* bytes, uint32_t* length) {
    if (length == nullptr || !HasIndex(strings, index)) return Fail(StatusBadArgument);
    const Part<Asn1Value> value = MemberAt(strings, index);
    if (!value || HasLostBytes(value.node)) return value.Absent();
    // The size that the caller offers is not looked at: see docs/oddities.md.
    *length = value->length;
    if (bytes != nullptr && value->length != 0) memcpy(bytes, value->data, value->length);
    return StatusOk;
}
