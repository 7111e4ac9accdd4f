// Object identifiers in the record form of a tree, and constant ones in the length-prefixed form.
#pragma once

#include "engine/output.h"
#include "tlvforge/asn1.h"

namespace tlvforge {

// A new record of the content of a length-prefixed OID. Null for null, and when out of memory.
Asn1Value* AllocAsn1OidFromOid(const uint8_t* oid);
// Replaces what a field holds by a new record. Status 1; the field is empty then.
Status ReplaceOidField(Asn1Value** field, const uint8_t* oid);
// Length-prefixed form by the output-buffer rule; an empty record is the one byte 00.
Status GetAsn1Oid(const Asn1Value* value, uint8_t* buffer, uint32_t* length);

// A length-prefixed OID, made at compile time from its arcs: Oid<2, 5, 29, 14>.
template <uint32_t First, uint32_t Second, uint32_t... Rest>
struct OidBytes {
    static constexpr uint32_t Groups(uint32_t number) {
        uint32_t groups = 1;
        while (number >>= 7) ++groups;
        return groups;
    }
    static constexpr uint32_t kContent = Groups(First * 40 + Second) + (0 + ... + Groups(Rest));
    static_assert(kContent <= 255);

    uint8_t bytes[kContent + 1] = {};

    constexpr OidBytes() {
        uint32_t at = 0;
        bytes[at++] = kContent;
        const uint32_t numbers[] = {First * 40 + Second, Rest...};
        for (const uint32_t number : numbers) {
            for (uint32_t group = Groups(number); group-- > 0;) {
                bytes[at++] = static_cast<uint8_t>(((number >> (7 * group)) & 0x7F) | (group != 0 ? 0x80 : 0));
            }
        }
    }
};

template <uint32_t... Arcs>
inline constexpr OidBytes<Arcs...> oidBytes{};

template <uint32_t... Arcs>
inline constexpr const uint8_t* Oid = oidBytes<Arcs...>.bytes;

// A row of the tables that number object identifiers; searched from the first row.
struct OidId {
    uint32_t id;
    const uint8_t* oid;
};

// Status 308 without a row for the OID.
Status FindIdOfOid(const OidId* rows, uint32_t count, const uint8_t* oid, uint32_t* id, Place place);
// Status 309 without a row for the id.
Status FindOidOfId(const OidId* rows, uint32_t count, uint32_t id, const uint8_t** oid, Place place);

template <uint32_t Count>
Status FindId(const OidId (&table)[Count], const uint8_t* oid, uint32_t* id, Place place = Place::Here()) {
    return FindIdOfOid(table, Count, oid, id, place);
}

template <uint32_t Count>
Status FindOid(const OidId (&table)[Count], uint32_t id, const uint8_t** oid, Place place = Place::Here()) {
    return FindOidOfId(table, Count, id, oid, place);
}

// A constant OID by the output-buffer rule, in the length-prefixed form.
inline Status CopyOutOid(const uint8_t* constant, uint8_t* oid, uint32_t* length, Place place = Place::Here()) {
    return CopyOut(constant, constant[0] + 1u, oid, length, place);
}

}  // namespace tlvforge
