#include "tlvforge/attributes.h"

#include "engine/list_cells.h"
#include "x509/attribute.schema.h"

using namespace tlvforge;

namespace {

// An attribute without values.
Status MakeAttribute(const uint8_t* oid, Tree<RsaAttribute>* attribute) {
    if (const Status status = attribute->Create()) return status;
    return ReplaceOidField(&attribute->Get()->type, oid);
}

}  // namespace

Status CreateRsaAttributes(RsaAttributes* out) {
    if (out == nullptr) return Fail(StatusBadArgument);
    return CreateCell(out);
}

Status FreeRsaAttributes(RsaAttributes attributes) { return FreeCell(attributes); }

Status DecodeRsaAttributes(const uint8_t* data, uint32_t length, RsaAttributes* out) {
    if (AnyNull(data, out)) return Fail(StatusBadArgument);
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
    if (AnyNull(attributes, length) || !HasIndex(attributes->list, index)) return Fail(StatusBadArgument);
    RsaAttribute* attribute = nullptr;
    if (const Status status = Borrow(MemberAt(attributes->list, index), &attribute)) return status;
    return GetRsaAttributeOid(attribute, oid, length);
}

Status GetRsaAttributesAttributeValuesCount(RsaAttributes attributes, uint32_t index, uint32_t* count) {
    if (AnyNull(attributes, count)) return Fail(StatusBadArgument);
    const auto list = At<&RsaAttributesCell::list>(attributes);
    RsaAttribute* attribute = nullptr;
    if (const Status status = GetMember(list, index, &attribute)) return status;
    return GetRsaAttributeValuesCount(attribute, count);
}

Status GetRsaAttributesAttributeValue(RsaAttributes attributes, uint32_t index, uint32_t valueIndex, uint8_t* buffer,
                                      uint32_t* length) {
    if (AnyNull(attributes, length)) return Fail(StatusBadArgument);
    const auto list = At<&RsaAttributesCell::list>(attributes);
    RsaAttribute* attribute = nullptr;
    if (const Status status = GetMember(list, index, &attribute)) return status;
    return GetRsaAttributeValue(attribute, valueIndex, buffer, length);
}

Status FindRsaAttributesAttribute(RsaAttributes attributes, const uint8_t* oid, uint32_t* index) {
    if (AnyNull(attributes, oid, index)) return Fail(StatusBadArgument);
    if (attributes->list == nullptr) return Fail(StatusAbsent);
    return FindByOid(attributes->list, &RsaAttribute::type, oid, index);
}

Status AddRsaAttributesAttribute(RsaAttributes attributes, const uint8_t* oid, uint32_t* index) {
    if (AnyNull(attributes, oid, index)) return Fail(StatusBadArgument);
    Tree<RsaAttribute> attribute;
    if (const Status status = Ensure(&attributes->list)) return status;
    if (const Status status = MakeAttribute(oid, &attribute)) return status;
    if (const Status status = attribute.MoveTo(attributes->list)) return status;
    *index = attributes->list->count - 1;
    return StatusOk;
}

Status AddRsaAttributesAttributeValue(RsaAttributes attributes, uint32_t index, const uint8_t* value, uint32_t length) {
    if (AnyNull(attributes, value)) return Fail(StatusBadArgument);
    const auto list = At<&RsaAttributesCell::list>(attributes);
    RsaAttribute* attribute = nullptr;
    if (const Status status = GetMember(list, index, &attribute)) return status;
    return AddRsaAttributeValue(attribute, value, length);
}

Status AddRsaAttributesAttributeWithValue(RsaAttributes attributes, const uint8_t* oid, uint32_t* index,
                                          const uint8_t* value, uint32_t length) {
    if (AnyNull(attributes, oid, index, value)) return Fail(StatusBadArgument);
    if (const Status status = AddRsaAttributesAttribute(attributes, oid, index)) return status;
    return AddRsaAttributesAttributeValue(attributes, *index, value, length);
}

Status AppendRsaAttributes(RsaAttributes attributes, RsaAttributes source) {
    if (attributes == nullptr) return Fail(StatusBadArgument);
    if (source == nullptr) return StatusOk;
    if (source->list == nullptr) return Fail(StatusAbsent);
    // Counted first, and read again for each member: the source may be the very list that grows.
    const uint32_t count = source->list->count;
    if (count != 0 && attributes->list == nullptr) return Fail(StatusAbsent);
    for (uint32_t i = 0; i < count; ++i) {
        Tree<RsaAttribute> copy;
        if (const Status status = copy.CopyOf(source->list->At(i))) return status;
        if (const Status status = copy.MoveTo(attributes->list)) return status;
    }
    return StatusOk;
}

Status RemoveRsaAttributesAttribute2(RsaAttributes attributes, const uint8_t* oid) {
    if (AnyNull(attributes, oid)) return Fail(StatusBadArgument);
    if (attributes->list == nullptr) return Fail(StatusAbsent);
    for (uint32_t i = attributes->list->count; i-- > 0;) {
        if (!HasOid(attributes->list, i, &RsaAttribute::type, oid)) continue;
        if (const Status status = RemoveMember(attributes->list, i)) return status;
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
    return GetOid(At<&RsaAttribute::type>(attribute), oid, length);
}

Status GetRsaAttributeValuesCount(const RsaAttribute* attribute, uint32_t* count) {
    if (AnyNull(attribute, count)) return Fail(StatusBadArgument);
    return GetCount(At<&RsaAttribute::values>(attribute), count);
}

Status GetRsaAttributeValue(const RsaAttribute* attribute, uint32_t index, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(attribute, length)) return Fail(StatusBadArgument);
    const auto values = At<&RsaAttribute::values>(attribute);
    Asn1Any* value = nullptr;
    if (const Status status = GetMember(values, index, &value)) return status;
    return GetAsn1AnyValue(value, buffer, length);
}

Status AddRsaAttributeValue(RsaAttribute* attribute, const uint8_t* value, uint32_t length) {
    if (AnyNull(attribute, value)) return Fail(StatusBadArgument);
    if (attribute->values == nullptr) attribute->values = AllocList<ListOf<Asn1Any>>();
    if (attribute->values == nullptr) return Fail(StatusOutOfMemory);
    // The type is that of the low tag form, also where the value has another form or no bytes at all.
    Tree<schema::Any> any(AllocAsn1Any(length == 0 ? 0 : value[0] & 31u, value, length));
    return any ? any.MoveTo(attribute->values) : Fail(StatusOutOfMemory);
}
