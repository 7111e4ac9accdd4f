/*
 * Names of X.509: distinguished names, general names, and two small lists of values.
 *
 * A distinguished name (X.501, RFC 5280 4.1.2.4) is a list of relative distinguished names (RDNs) in the order of the
 * encoding, each a set of entries: an attribute type and a value. Entries are addressed by two indices, that of the RDN
 * in the name and that of the entry in the RDN. Values are bytes under a tag that the caller chooses; no function of
 * this header converts text or checks its characters.
 */
#ifndef TLVFORGE_NAMES_H
#define TLVFORGE_NAMES_H

#include "tlvforge/asn1.h"

TLVFORGE_BEGIN

typedef struct X509Name X509Name;                 /* Name (RFC 5280, 4.1.2.4) */
typedef struct X509GeneralName X509GeneralName;   /* GeneralName (RFC 5280, 4.2.1.6) */
typedef struct X509GeneralNames X509GeneralNames; /* GeneralNames (RFC 5280, 4.2.1.6), a list */
typedef struct PKIFreeText PKIFreeText;           /* PKIFreeText (RFC 4210, 5.1.1), a list of UTF-8 texts */
typedef struct OctetStrings OctetStrings;         /* SEQUENCE OF OCTET STRING */

/*
 * Alternatives of a general name (RFC 5280, 4.2.1.6), which are their context tag numbers. A value is a whole element
 * for otherName, x400Address, directoryName and ediPartyName; the characters for the three IA5Strings; 4 or 16 bytes in
 * network order for an iPAddress; a length-prefixed OID for a registeredID.
 */
enum {
    X509GeneralNameOtherName = 0,
    X509GeneralNameRfc822Name = 1,
    X509GeneralNameDNSName = 2,
    X509GeneralNameX400Address = 3,
    X509GeneralNameDirectoryName = 4,
    X509GeneralNameEdiPartyName = 5,
    X509GeneralNameUniformResourceIdentifier = 6,
    X509GeneralNameIPAddress = 7,
    X509GeneralNameRegisteredID = 8
};

/* --- Distinguished names --- */

/** CreateX509Name makes a name without RDNs. */
TLVFORGE_STATUS CreateX509Name(X509Name** out);

/** CopyX509Name makes a deep copy. */
TLVFORGE_STATUS CopyX509Name(const X509Name* source, X509Name** out);

/**
 * DecodeX509Name decodes the one BER element Name at the start of the bytes; what follows it is ignored. Statuses as
 * Asn1DecodeItem.
 * @param out *owns* (FreeX509Name); null after a failure other than StatusBadArgument.
 */
TLVFORGE_STATUS DecodeX509Name(const uint8_t* data, uint32_t length, X509Name** out);

/**
 * EncodeX509Name writes the name as DER; the entries of one RDN are put in DER order. Statuses as GetAsn1EncodedValue.
 */
TLVFORGE_STATUS EncodeX509Name(const X509Name* name, uint8_t* buffer, uint32_t* length);

/** FreeX509Name frees the name with all that it holds. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeX509Name(X509Name* name);

/** ClearX509Name frees every RDN; the name stays usable. */
TLVFORGE_STATUS ClearX509Name(X509Name* name);

/** GetX509NameRdnCount stores the number of RDNs. */
TLVFORGE_STATUS GetX509NameRdnCount(const X509Name* name, uint32_t* count);

/** GetX509NameEntryCount stores the number of entries of one RDN. StatusBadArgument for an index out of range. */
TLVFORGE_STATUS GetX509NameEntryCount(const X509Name* name, uint32_t rdnIndex, uint32_t* count);

/**
 * GetX509NameEntryExt reads an entry: the content bytes of its value, identifier octet parts and attribute type.
 * StatusBadArgument also for an index out of range, StatusAbsent for an entry without value or type.
 * @param value, oid both null is the size query, with StatusOk. One null and the other not is StatusBufferTooSmall: an
 *     oid that is large enough has been filled then, a value never has. Both lengths are stored in each of these cases.
 * @param tagClass class bits as in the identifier octet (0x00, 0x40, 0x80, 0xC0).
 * @param constructed 0x20 or 0. Both are stored by a size query too.
 * @param tag low byte of the tag number; stored only when the value was copied.
 */
TLVFORGE_STATUS GetX509NameEntryExt(const X509Name* name, uint32_t rdnIndex, uint32_t entryIndex, uint8_t* value,
                                    uint32_t* valueLength, uint8_t* tagClass, uint8_t* constructed, uint8_t* tag,
                                    uint8_t* oid, uint32_t* oidLength);

/** GetX509NameEntry is GetX509NameEntryExt without class and constructed bit. */
TLVFORGE_STATUS GetX509NameEntry(const X509Name* name, uint32_t rdnIndex, uint32_t entryIndex, uint8_t* value,
                                 uint32_t* valueLength, uint8_t* tag, uint8_t* oid, uint32_t* oidLength);

/**
 * AddX509NameEntryExt adds an entry at the end of the name.
 * @param value content bytes, copied unchanged; not null even with valueLength 0.
 * @param tagClass class bits as in the identifier octet.
 * @param constructed 0x20 or 0.
 * @param oid attribute type, length-prefixed.
 * @param newRdn not 0: the entry begins an RDN of its own; 0: it joins the last RDN, StatusBadArgument when the name
 *     has none. After StatusOutOfMemory the name may end in an RDN without entries and is best freed.
 */
TLVFORGE_STATUS AddX509NameEntryExt(X509Name* name, const uint8_t* value, uint32_t valueLength, uint8_t tagClass,
                                    uint8_t constructed, uint8_t tag, const uint8_t* oid, int32_t newRdn);

/**
 * AddX509NameEntry is AddX509NameEntryExt for a universal primitive value.
 * @param newRdn as AddX509NameEntryExt.
 * @param tag a universal tag number, such as that of DetermineSuitableStringType.
 */
TLVFORGE_STATUS AddX509NameEntry(X509Name* name, const uint8_t* value, uint32_t valueLength, uint8_t tag,
                                 const uint8_t* oid, int32_t newRdn);

/**
 * DeleteX509NameEntry removes an entry, and its RDN with the last one in it; later ones move down. StatusBadArgument
 * for an index out of range. entryIndex has to be in the range of the name's last RDN as well: an entry far back in a
 * long RDN can't be removed while the name ends in a shorter one.
 */
TLVFORGE_STATUS DeleteX509NameEntry(X509Name* name, uint32_t rdnIndex, uint32_t entryIndex);

/**
 * CompareX509Names: StatusOk for equal, StatusNotEqual for different. Values are compared byte by byte and in order,
 * without the first byte of their identifiers: attribute types and string types don't count, case and blanks do.
 * StatusAbsent when either name never had an RDN, also when both never had; two cleared names are equal.
 */
TLVFORGE_STATUS CompareX509Names(const X509Name* first, const X509Name* second);

/**
 * DetermineSuitableStringType stores the narrowest string type for a text, as universal tag number: NumericString (also
 * for length 0), PrintableString, IA5String or UTF8String. Bytes below 0x20 and above 0x7F lead to UTF8String; whether
 * the text is UTF-8 isn't checked.
 */
TLVFORGE_STATUS DetermineSuitableStringType(const uint8_t* text, uint32_t length, uint32_t* stringType);

/**
 * FindNameAttributeTypeIdByOid stores the number, 1 to 32, that the library has for a name attribute type.
 * StatusUnknownOid for an OID without a number.
 */
TLVFORGE_STATUS FindNameAttributeTypeIdByOid(const uint8_t* oid, uint32_t* id);

/**
 * GetNameAttributeTypeOid copies the length-prefixed OID of a name attribute type. StatusUnknownId above 32 and for 0.
 */
TLVFORGE_STATUS GetNameAttributeTypeOid(uint32_t id, uint8_t* oid, uint32_t* oidLength);

/* --- General names --- */

/** CreateX509GeneralName makes a general name without a value, which can't be copied. */
TLVFORGE_STATUS CreateX509GeneralName(X509GeneralName** out);

/**
 * CreateX509GeneralNameCopy makes a deep copy. StatusBadArgument also for a general name without a value.
 * @param out *owns* (FreeX509GeneralName); null after a failure.
 */
TLVFORGE_STATUS CreateX509GeneralNameCopy(const X509GeneralName* source, X509GeneralName** out);

/** FreeX509GeneralName frees a general name. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeX509GeneralName(X509GeneralName* name);

/**
 * AllocX509GeneralNameValue makes a general name of bytes, which are copied and not checked. StatusBadAlternative for
 * an alternative above 8.
 * @param out *owns* (FreeX509GeneralName, or the C library's free for each block); null after a failure other than
 *     StatusBadArgument.
 * @param value in the form of its alternative.
 * @param length ignored for a registeredID, whose first byte is its length.
 */
TLVFORGE_STATUS AllocX509GeneralNameValue(X509GeneralName** out, uint32_t alternative, const uint8_t* value,
                                          uint32_t length);

/**
 * GetX509GeneralNameValue reads a general name. StatusAbsent for a name without a value, StatusBadAlternative.
 * @param alternative stored also when the buffer is too small.
 * @param value in the form of its alternative. The first byte of an otherName, x400Address or ediPartyName is the
 *     context tag's after a decode, and the caller's before.
 */
TLVFORGE_STATUS GetX509GeneralNameValue(const X509GeneralName* name, uint32_t* alternative, uint8_t* value,
                                        uint32_t* length);

/** CreateX509GeneralNames makes an empty list. */
TLVFORGE_STATUS CreateX509GeneralNames(X509GeneralNames** out);

/** CopyX509GeneralNames makes a deep copy. */
TLVFORGE_STATUS CopyX509GeneralNames(const X509GeneralNames* source, X509GeneralNames** out);

/**
 * DecodeX509GeneralNames decodes the one BER element GeneralNames at the start of the bytes. A constructed x400Address
 * isn't accepted. Statuses as Asn1DecodeItem.
 * @param out *owns* (FreeX509GeneralNames); null after a failure other than StatusBadArgument.
 */
TLVFORGE_STATUS DecodeX509GeneralNames(const uint8_t* data, uint32_t length, X509GeneralNames** out);

/** EncodeX509GeneralNames writes the list as DER. Statuses as GetAsn1EncodedValue. */
TLVFORGE_STATUS EncodeX509GeneralNames(const X509GeneralNames* names, uint8_t* buffer, uint32_t* length);

/** FreeX509GeneralNames frees the list with its members. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeX509GeneralNames(X509GeneralNames* names);

/** AddX509GeneralName appends what AllocX509GeneralNameValue would make; nothing is added after a failure. */
TLVFORGE_STATUS AddX509GeneralName(X509GeneralNames* names, uint32_t alternative, const uint8_t* value,
                                   uint32_t length);

/** GetX509GeneralNameCount stores the number of members. */
TLVFORGE_STATUS GetX509GeneralNameCount(const X509GeneralNames* names, uint32_t* count);

/** GetX509GeneralName is GetX509GeneralNameValue on a member. StatusBadArgument for an index out of range. */
TLVFORGE_STATUS GetX509GeneralName(const X509GeneralNames* names, uint32_t index, uint32_t* alternative, uint8_t* value,
                                   uint32_t* length);

/**
 * GetX509NameFromGeneralNames decodes the first directoryName of the list that decodes as a name. StatusNotFound when
 * there is none.
 * @param out *owns* (FreeX509Name); null after a failure other than StatusBadArgument.
 */
TLVFORGE_STATUS GetX509NameFromGeneralNames(const X509GeneralNames* names, X509Name** out);

/* --- Texts --- */

/** CreatePKIFreeText makes an empty list of texts (RFC 4210, 5.1.1). */
TLVFORGE_STATUS CreatePKIFreeText(PKIFreeText** out);

/** CreatePKIFreeTextCopy makes a deep copy. */
TLVFORGE_STATUS CreatePKIFreeTextCopy(const PKIFreeText* source, PKIFreeText** out);

/**
 * DecodePKIFreeText decodes the one BER element PKIFreeText at the start of the bytes. Statuses as Asn1DecodeItem.
 * @param out *owns* (FreePKIFreeText); null after a failure other than StatusBadArgument.
 */
TLVFORGE_STATUS DecodePKIFreeText(const uint8_t* data, uint32_t length, PKIFreeText** out);

/** EncodePKIFreeText writes the list as DER. Statuses as GetAsn1EncodedValue. */
TLVFORGE_STATUS EncodePKIFreeText(const PKIFreeText* texts, uint8_t* buffer, uint32_t* length);

/** FreePKIFreeText frees the list with its members. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreePKIFreeText(PKIFreeText* texts);

/**
 * AddPKIFreeTextString appends a text.
 * @param text UTF-8, copied and not checked; not null even with length 0.
 */
TLVFORGE_STATUS AddPKIFreeTextString(PKIFreeText* texts, const uint8_t* text, uint32_t length);

/**
 * GetPKIFreeTextString copies a text, without a terminating zero. StatusBadArgument for an index out of range,
 * StatusAbsent.
 */
TLVFORGE_STATUS GetPKIFreeTextString(const PKIFreeText* texts, uint32_t index, uint8_t* text, uint32_t* length);

/** GetPKIFreeTextStringCount stores the number of texts. */
TLVFORGE_STATUS GetPKIFreeTextStringCount(const PKIFreeText* texts, uint32_t* count);

/* --- Byte strings --- */

/** CreateOctetStrings makes an empty list of byte strings. */
TLVFORGE_STATUS CreateOctetStrings(OctetStrings** out);

/**
 * FreeOctetStrings frees the list with its members. StatusBadArgument for null, unlike the other functions that free.
 */
TLVFORGE_API Status FreeOctetStrings(OctetStrings* strings);

/** AddOctetStringsValue appends a copy of the bytes; not null even with length 0. */
TLVFORGE_STATUS AddOctetStringsValue(OctetStrings* strings, const uint8_t* bytes, uint32_t length);

/** GetOctetStringsCount stores the number of byte strings. */
TLVFORGE_STATUS GetOctetStringsCount(const OctetStrings* strings, uint32_t* count);

/**
 * GetOctetStringsValue copies a byte string **without regard to the size offered**: ask for the size first, with null
 * bytes, and offer a buffer of that size. StatusBadArgument for an index out of range.
 * @param length out only; the length of the byte string. Never StatusBufferTooSmall.
 */
TLVFORGE_STATUS GetOctetStringsValue(const OctetStrings* strings, uint32_t index, uint8_t* bytes, uint32_t* length);

TLVFORGE_END

#endif
