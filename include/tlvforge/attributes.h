/*
 * Attributes: an OID with a set of values, as requests (RFC 2986, 4.1) and CMS messages (RFC 5652, 5.3) carry them.
 *
 * A value is known here as the bytes of one whole element, which is neither parsed nor checked. No table of attribute
 * OIDs exists: the caller names each attribute.
 *
 * Two orders are kept apart. All indices follow the order in memory, which is that of the adds, or of the bytes that
 * were decoded, and never changes. On the wire a set is in DER order, unless SetRsaAttributesSorted says that it is
 * written in the order in memory. The values of one attribute are always written in DER order.
 */
#ifndef TLVFORGE_ATTRIBUTES_H
#define TLVFORGE_ATTRIBUTES_H

#include "tlvforge/status.h"

TLVFORGE_BEGIN

/* One attribute on its own: Attribute (RFC 2986, 4.1; RFC 5652, 5.3). */
typedef struct RsaAttribute RsaAttribute;

/*
 * RsaAttributes is a handle: the address of a cell that holds a set of attributes, or nothing. A handle from
 * CreateRsaAttributes or DecodeRsaAttributes is the caller's. A handle from a document's getter, such as
 * GetPKCS10CertReqAttributes, is the slot inside that document: it lives as long as the document and must not reach
 * FreeRsaAttributes. An empty cell is a document without the field; the first add makes the set.
 */
typedef struct RsaAttributesCell* RsaAttributes;

/* ---- The set ---- */

/** CreateRsaAttributes makes a cell of its own with an empty set, owned by the caller (FreeRsaAttributes). */
TLVFORGE_STATUS CreateRsaAttributes(RsaAttributes* out);

/**
 * FreeRsaAttributes frees the set and the cell; only for handles that the caller owns. Null is allowed; always
 * StatusOk.
 */
TLVFORGE_API Status FreeRsaAttributes(RsaAttributes attributes);

/**
 * DecodeRsaAttributes reads a SET OF Attribute into a cell of its own, owned by the caller. *out is stored on success
 * only. EncodeRsaAttributes is the reverse, with the tag of a SET also for the slot of a document; an empty cell is
 * StatusBadArgument. A set that was read in another order than that of DER is written in DER order.
 */
TLVFORGE_STATUS DecodeRsaAttributes(const uint8_t* data, uint32_t length, RsaAttributes* out);
TLVFORGE_STATUS EncodeRsaAttributes(RsaAttributes attributes, uint8_t* buffer, uint32_t* length);

/**
 * ClearRsaAttributes leaves an empty set, which a document encodes as an empty field; RemoveRsaAttributes leaves none,
 * so that an optional field goes from the document. StatusOk for an empty cell.
 */
TLVFORGE_STATUS ClearRsaAttributes(RsaAttributes attributes);
TLVFORGE_STATUS RemoveRsaAttributes(RsaAttributes attributes);

/**
 * SetRsaAttributesSorted sets whether the set is written in DER order (not 0, the state of every new, decoded or copied
 * set) or in the order in memory. The attributes of a decoded request alone start with 0. An empty cell: StatusOk and
 * remembers nothing.
 * @param sorted not 0 for DER order.
 */
TLVFORGE_STATUS SetRsaAttributesSorted(RsaAttributes attributes, uint32_t sorted);

/** GetRsaAttributesAttributesCount stores the number of attributes, 0 for an empty cell. */
TLVFORGE_STATUS GetRsaAttributesAttributesCount(RsaAttributes attributes, uint32_t* count);

/**
 * GetRsaAttributesAttributeOid copies the length-prefixed OID at an index. StatusBadArgument also for an empty cell.
 */
TLVFORGE_STATUS GetRsaAttributesAttributeOid(RsaAttributes attributes, uint32_t index, uint8_t* oid, uint32_t* length);

/**
 * GetRsaAttributesAttributeValuesCount stores the number of values of the attribute at an index, and
 * GetRsaAttributesAttributeValue one of them, the whole element. StatusBadArgument an index out of range, StatusAbsent
 * an empty cell.
 */
TLVFORGE_STATUS GetRsaAttributesAttributeValuesCount(RsaAttributes attributes, uint32_t index, uint32_t* count);
TLVFORGE_STATUS GetRsaAttributesAttributeValue(RsaAttributes attributes, uint32_t index, uint32_t valueIndex,
                                               uint8_t* buffer, uint32_t* length);

/**
 * FindRsaAttributesAttribute stores the index of the first attribute with a length-prefixed OID. StatusNotFound without
 * one, StatusAbsent for an empty cell.
 */
TLVFORGE_STATUS FindRsaAttributesAttribute(RsaAttributes attributes, const uint8_t* oid, uint32_t* index);

/**
 * AddRsaAttributesAttribute appends an attribute without values, which encodes with an empty set of them.
 * @param index its index. An OID that is there already isn't looked for.
 */
TLVFORGE_STATUS AddRsaAttributesAttribute(RsaAttributes attributes, const uint8_t* oid, uint32_t* index);

/**
 * AddRsaAttributesAttributeValue appends a value to the attribute at an index. StatusBadArgument an index out of range,
 * StatusAbsent an empty cell.
 * @param value a whole element, taken unchanged; with length 0 a value that encodes to nothing.
 */
TLVFORGE_STATUS AddRsaAttributesAttributeValue(RsaAttributes attributes, uint32_t index, const uint8_t* value,
                                               uint32_t length);

/**
 * AddRsaAttributesAttributeWithValue is the two above in turn. If the second fails (StatusOutOfMemory), the attribute
 * stays.
 */
TLVFORGE_STATUS AddRsaAttributesAttributeWithValue(RsaAttributes attributes, const uint8_t* oid, uint32_t* index,
                                                   const uint8_t* value, uint32_t length);

/**
 * AppendRsaAttributes appends copies of all attributes of another set, which may be the same one. StatusOk for a null
 * source and for one without attributes, whatever the target holds; otherwise StatusAbsent if either cell is empty.
 * After a failure the copies made so far stay.
 */
TLVFORGE_STATUS AppendRsaAttributes(RsaAttributes attributes, RsaAttributes source);

/**
 * RemoveRsaAttributesAttribute2 removes every attribute with a length-prefixed OID; StatusOk without any. StatusAbsent
 * for an empty cell.
 */
TLVFORGE_STATUS RemoveRsaAttributesAttribute2(RsaAttributes attributes, const uint8_t* oid);

/* ---- One attribute ---- */

/**
 * CreateRsaAttribute makes an attribute with one value, owned by the caller (FreeRsaAttribute).
 * @param value as AddRsaAttributesAttributeValue.
 */
TLVFORGE_STATUS CreateRsaAttribute(RsaAttribute** out, const uint8_t* oid, const uint8_t* value, uint32_t length);

/** FreeRsaAttribute frees an attribute. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeRsaAttribute(RsaAttribute* attribute);

/** DecodeRsaAttribute reads one Attribute element; the caller owns the result. EncodeRsaAttribute is the reverse. */
TLVFORGE_STATUS DecodeRsaAttribute(const uint8_t* data, uint32_t length, RsaAttribute** out);
TLVFORGE_STATUS EncodeRsaAttribute(const RsaAttribute* attribute, uint8_t* buffer, uint32_t* length);

/**
 * GetRsaAttributeOid, GetRsaAttributeValuesCount and GetRsaAttributeValue read an attribute as the functions of the set
 * do. StatusAbsent for a part that is missing, StatusBadArgument for an index out of range.
 */
TLVFORGE_STATUS GetRsaAttributeOid(const RsaAttribute* attribute, uint8_t* oid, uint32_t* length);
TLVFORGE_STATUS GetRsaAttributeValuesCount(const RsaAttribute* attribute, uint32_t* count);
TLVFORGE_STATUS GetRsaAttributeValue(const RsaAttribute* attribute, uint32_t index, uint8_t* buffer, uint32_t* length);

/**
 * AddRsaAttributeValue appends a value.
 * @param value as AddRsaAttributesAttributeValue.
 */
TLVFORGE_STATUS AddRsaAttributeValue(RsaAttribute* attribute, const uint8_t* value, uint32_t length);

TLVFORGE_END

#endif
