#include "tlvforge/attributes.h"

#include "engine/nodes.h"
#include "engine/oids.h"
#include "x509/attribute.schema.h"
#include "x509/list_cells.h"

using namespace tlvforge;

namespace {

// A member, for the functions that answer an empty cell with 311.
Status GetAttribute(RsaAttributes attributes, uint32_t index, RsaAttribute** attribute, Place place = Place::Here()) {
    if (attributes->list == nullptr) return Fail(StatusAbsent, place);
    return GetListMember(attributes->list, index, attribute, place);
}

// An attribute without values.
Status MakeAttribute(const uint8_t* oid, Tree<RsaAttribute>* attribute) {
    const Status status = attribute->Create();
    return status == StatusOk ? ReplaceOidField(&attribute->Get()->type, oid) : status;
}

}  // namespace

Status CreateRsaAttributes(RsaAttributes* out) { return CreateCell(out); }

Status FreeRsaAttributes(RsaAttributes attributes) { return FreeCell(attributes); }

Status DecodeRsaAttributes(const uint8_t* data, uint32_t length, RsaAttributes* out) {
    return DecodeCell(data, length, out);
}

Status EncodeRsaAttributes(RsaAttributes attributes, uint8_t* buffer, uint32_t* length) {
    return EncodeCell(attributes, buffer, length);
}

Status ClearRsaAttributes(RsaAttributes attributes) { return ClearCell(attributes); }

Status RemoveRsaAttributes(RsaAttributes attributes) { return EmptyCell(attributes); }

Status SetRsaAttributesSorted(RsaAttributes attributes, uint32_t sorted) { return SetCellSorted(attributes, sorted); }

Status GetRsaAttributesAttributesCount(RsaAttributes attributes, uint32_t* count) {
    return GetCellCount(attributes, count);
}

Status GetRsaAttributesAttributeOid(RsaAttributes attributes, uint32_t index, uint8_t* oid, uint32_t* length) {
    if (AnyNull(attributes, length)) return Fail(StatusBadArgument);
    RsaAttribute* attribute = nullptr;
    const Status status = GetListMember(attributes->list, index, &attribute);
    return status == StatusOk ? GetRsaAttributeOid(attribute, oid, length) : status;
}

Status GetRsaAttributesAttributeValuesCount(RsaAttributes attributes, uint32_t index, uint32_t* count) {
    if (AnyNull(attributes, count)) return Fail(StatusBadArgument);
    RsaAttribute* attribute = nullptr;
    const Status status = GetAttribute(attributes, index, &attribute);
    return status == StatusOk ? GetRsaAttributeValuesCount(attribute, count) : status;
}

Status GetRsaAttributesAttributeValue(RsaAttributes attributes, uint32_t index, uint32_t valueIndex, uint8_t* buffer,
                                      uint32_t* length) {
    if (AnyNull(attributes, length)) return Fail(StatusBadArgument);
    RsaAttribute* attribute = nullptr;
    const Status status = GetAttribute(attributes, index, &attribute);
    return status == StatusOk ? GetRsaAttributeValue(attribute, valueIndex, buffer, length) : status;
}

Status FindRsaAttributesAttribute(RsaAttributes attributes, const uint8_t* oid, uint32_t* index) {
    if (AnyNull(attributes, oid, index)) return Fail(StatusBadArgument);
    if (attributes->list == nullptr) return Fail(StatusAbsent);
    return FindByOid(attributes->list, &RsaAttribute::type, oid, index);
}

Status AddRsaAttributesAttribute(RsaAttributes attributes, const uint8_t* oid, uint32_t* index) {
    if (AnyNull(attributes, oid, index)) return Fail(StatusBadArgument);
    Tree<RsaAttribute> attribute;
    Status status = NeedList(&attributes->list);
    if (status == StatusOk) status = MakeAttribute(oid, &attribute);
    if (status == StatusOk) status = attribute.MoveTo(attributes->list);
    if (status == StatusOk) *index = attributes->list->count - 1;
    return status;
}

Status AddRsaAttributesAttributeValue(RsaAttributes attributes, uint32_t index, const uint8_t* value, uint32_t length) {
    if (AnyNull(attributes, value)) return Fail(StatusBadArgument);
    RsaAttribute* attribute = nullptr;
    const Status status = GetAttribute(attributes, index, &attribute);
    return status == StatusOk ? AddRsaAttributeValue(attribute, value, length) : status;
}

Status AddRsaAttributesAttributeWithValue(RsaAttributes attributes, const uint8_t* oid, uint32_t* index,
                                          const uint8_t* value, uint32_t length) {
    if (AnyNull(attributes, oid, index, value)) return Fail(StatusBadArgument);
    const Status status = AddRsaAttributesAttribute(attributes, oid, index);
    return status == StatusOk ? AddRsaAttributesAttributeValue(attributes, *index, value, length) : status;
}

Status AppendRsaAttributes(RsaAttributes attributes, RsaAttributes source) {
    if (attributes == nullptr) return Fail(StatusBadArgument);
    if (source == nullptr) return StatusOk;
    if (AnyNull(attributes->list, source->list)) return Fail(StatusAbsent);
    // Counted first, and read anew for each member: the source may be the very list that grows.
    const uint32_t count = source->list->count;
    for (uint32_t i = 0; i < count; ++i) {
        Tree<RsaAttribute> copy;
        Status status = copy.CopyOf(static_cast<const RsaAttribute*>(source->list->items[i]));
        if (status == StatusOk) status = copy.MoveTo(attributes->list);
        if (status != StatusOk) return status;
    }
    return StatusOk;
}

Status RemoveRsaAttributesAttribute2(RsaAttributes attributes, const uint8_t* oid) {
    if (AnyNull(attributes, oid)) return Fail(StatusBadArgument);
    if (attributes->list == nullptr) return Fail(StatusAbsent);
    for (uint32_t i = attributes->list->count; i-- > 0;) {
        if (!HasOid(attributes->list, i, &RsaAttribute::type, oid)) continue;
        const Status status = RemoveMember(attributes->list, i);
        if (status != StatusOk) return status;
    }
    return StatusOk;
}

Status CreateRsaAttribute(RsaAttribute** out, const uint8_t* oid, const uint8_t* value, uint32_t length) {
    if (AnyNull(out, oid, value)) return Fail(StatusBadArgument);
    Tree<RsaAttribute> attribute;
    Status status = MakeAttribute(oid, &attribute);
    if (status == StatusOk) status = AddRsaAttributeValue(attribute.Get(), value, length);
    *out = status == StatusOk ? attribute.Take() : nullptr;
    return status;
}

Status FreeRsaAttribute(RsaAttribute* attribute) { return FreeTree(attribute); }

Status DecodeRsaAttribute(const uint8_t* data, uint32_t length, RsaAttribute** out) {
    return DecodeTree(data, length, out);
}

Status EncodeRsaAttribute(const RsaAttribute* attribute, uint8_t* buffer, uint32_t* length) {
    return EncodeTree(attribute, buffer, length);
}

Status GetRsaAttributeOid(const RsaAttribute* attribute, uint8_t* oid, uint32_t* length) {
    if (AnyNull(attribute, length)) return Fail(StatusBadArgument);
    if (attribute->type == nullptr) return Fail(StatusAbsent);
    return GetAsn1Oid(attribute->type, oid, length);
}

Status GetRsaAttributeValuesCount(const RsaAttribute* attribute, uint32_t* count) {
    if (AnyNull(attribute, count)) return Fail(StatusBadArgument);
    if (attribute->values == nullptr) return Fail(StatusAbsent);
    return GetListCount(attribute->values, count);
}

Status GetRsaAttributeValue(const RsaAttribute* attribute, uint32_t index, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(attribute, length)) return Fail(StatusBadArgument);
    if (attribute->values == nullptr) return Fail(StatusAbsent);
    Asn1Any* value = nullptr;
    const Status status = GetListMember(attribute->values, index, &value);
    return status == StatusOk ? GetAsn1AnyValue(value, buffer, length) : status;
}

Status AddRsaAttributeValue(RsaAttribute* attribute, const uint8_t* value, uint32_t length) {
    if (AnyNull(attribute, value)) return Fail(StatusBadArgument);
    const Status status = NeedList(&attribute->values);
    if (status != StatusOk) return status;
    // The type is that of the low tag form, also where the value has another form or no bytes at all.
    Tree<schema::Any> any(AllocAsn1Any(length == 0 ? 0 : value[0] & 31u, value, length));
    return any ? any.MoveTo(attribute->values) : Fail(StatusOutOfMemory);
}
