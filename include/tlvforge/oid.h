/*
 * Object identifiers (X.660). At the interface they have the length-prefixed form: one byte n, then n bytes of DER
 * content, so that 1.2.643.2.2.31.1 is 07 2A 85 03 02 02 1F 01.
 */
#ifndef TLVFORGE_OID_H
#define TLVFORGE_OID_H

#include "tlvforge/asn1.h"

TLVFORGE_BEGIN

/**
 * DecodeAsn1Oid copies an OBJECT IDENTIFIER element in the length-prefixed form; EncodeAsn1Oid is the reverse.
 * Decoding: StatusBadArgument also for length 0, StatusBadEncoding another tag or a cut element, StatusBadIndefinite
 * indefinite form. Above 255 content bytes the prefix is only the low byte of the length, and the result is still all
 * of them and one.
 */
TLVFORGE_STATUS DecodeAsn1Oid(const uint8_t* data, uint32_t length, uint8_t* buffer, uint32_t* bufferLength);
TLVFORGE_STATUS EncodeAsn1Oid(const uint8_t* oid, uint8_t* buffer, uint32_t* bufferLength);

/**
 * ConvertOidToString writes dotted text; the length counts the terminating zero. The first two arcs are first / 40 and
 * first % 40 of the first number, also where the standard reads a first arc of 2: 2.100 shows as "4.20". An empty OID
 * shows as "0.0". StatusBadArgument for an OID that is cut off inside a number.
 */
TLVFORGE_STATUS ConvertOidToString(const uint8_t* oid, char* text, uint32_t* length);

/**
 * ConvertStringToOid reads dotted text of up to 28 arcs. One arc alone has 0 as its second. Digits after which other
 * characters follow count up to there. StatusBadArgument for an arc that reads as 0 and isn't "0", and above 28 arcs.
 * The empty text reads as the empty OID, one byte 00.
 */
TLVFORGE_STATUS ConvertStringToOid(const char* text, uint8_t* oid, uint32_t* length);

/**
 * IsOidEquals compares two OIDs. Note the sense.
 * @param left, right the OIDs, length-prefixed; may be null.
 * @return 1 for equal ones, otherwise 0, also for null; no Status.
 */
TLVFORGE_API uint32_t IsOidEquals(const uint8_t* left, const uint8_t* right);

/**
 * IsOidAndAsn1ObjectIdentifierEquals compares a length-prefixed OID with a record.
 * @return as IsOidEquals.
 */
TLVFORGE_API uint32_t IsOidAndAsn1ObjectIdentifierEquals(const uint8_t* oid, const Asn1Value* value);

TLVFORGE_END

#endif
