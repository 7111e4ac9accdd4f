/*
 * The engine: schema items, the records that trees are made of, and the generic operations on both.
 *
 * Every ASN.1 type of every document is one constant Asn1Item, and a document in memory is a tree of the records below.
 * Most programs need only the document headers; this one serves programs that bring schemas of their own (X.680, X.690)
 * or take a tree apart.
 */
#ifndef TLVFORGE_ASN1_H
#define TLVFORGE_ASN1_H

#include "tlvforge/status.h"

TLVFORGE_BEGIN

/* Class bits of an identifier octet, as they are in it. */
enum { Asn1ClassUniversal = 0x00, Asn1ClassApplication = 0x40, Asn1ClassContext = 0x80, Asn1ClassPrivate = 0xC0 };

/* Constructed bit of an identifier octet. */
enum { Asn1Constructed = 0x20 };

/* Kinds of an item: universal tag numbers, and four that have none. */
enum {
    Asn1KindBoolean = 1,
    Asn1KindInteger = 2,
    Asn1KindBitString = 3,
    Asn1KindOctetString = 4,
    Asn1KindNull = 5,
    Asn1KindObjectIdentifier = 6,
    Asn1KindEnumerated = 10,
    Asn1KindUTF8String = 12,
    Asn1KindSequence = 16,
    Asn1KindSet = 17,
    Asn1KindNumericString = 18,
    Asn1KindPrintableString = 19,
    Asn1KindTeletexString = 20,
    Asn1KindVideotexString = 21,
    Asn1KindIA5String = 22,
    Asn1KindUTCTime = 23,
    Asn1KindGeneralizedTime = 24,
    Asn1KindGraphicString = 25,
    Asn1KindVisibleString = 26,
    Asn1KindGeneralString = 27,
    Asn1KindUniversalString = 28,
    Asn1KindBMPString = 30,
    Asn1KindChoice = 128,
    Asn1KindAny = 129,
    Asn1KindSequenceOf = 144,
    Asn1KindSetOf = 145
};

/* Bits of Asn1Item.itemFlags. */
enum { Asn1FlagExplicit = 1, Asn1FlagOptional = 2 };

/*
 * Asn1Item is the constant description of one ASN.1 type. Items point at each other to form a schema, which must not
 * lead back to itself: the engine recurses once per level of the schema.
 */
typedef struct Asn1Item Asn1Item;
struct Asn1Item {
    uint8_t tagClass;       /* class bits of the tag, universal unless tagged */
    uint8_t constructedBit; /* Asn1Constructed if the value is encoded constructed, and for every CHOICE and list */
    uint8_t itemFlags;      /* Asn1FlagExplicit, Asn1FlagOptional */
    uint8_t kind;           /* Asn1Kind... */
    int32_t tagNumber;      /* context tag number, or -1 for the universal one, kind & 127 */
    uint32_t valueSize;     /* SEQUENCE: bytes of its block, one pointer per child; elsewhere only informative */
    const Asn1Item* const* children; /* SEQUENCE: fields; CHOICE: alternatives; list: the one element item */
    uint32_t childCount;             /* number of children */
    const void* defaultValue;        /* constant node that stands in for an absent optional item, or null */
};

/* Asn1Value is the node of every primitive type but BIT STRING. An OBJECT IDENTIFIER has type 6. */
typedef struct Asn1Value {
    uint32_t type;   /* universal tag number; 0 in an empty record */
    uint32_t length; /* bytes in data */
    uint8_t* data;   /* content octets, or null; INTEGERs are big-endian two's complement; owned */
} Asn1Value;

/* Asn1Any holds one whole element, identifier and length octets included. */
typedef struct Asn1Any {
    uint32_t type;   /* tag number of the element */
    uint32_t length; /* size of the element */
    uint8_t* data;   /* the element */
} Asn1Any;

/* Asn1BitString is the node of a BIT STRING. */
typedef struct Asn1BitString {
    uint8_t unusedBits; /* 0 to 7, unused low bits of the last byte, which are 0 */
    uint32_t length;    /* bytes in data, without the unused-bits octet */
    uint8_t* data;      /* content octets after the unused-bits octet, or null */
} Asn1BitString;

/* Asn1Choice is the node of a CHOICE. */
typedef struct Asn1Choice {
    uint32_t selected; /* index into the children of the CHOICE item; has meaning while value isn't null */
    void* value;       /* node of the selected alternative, or null */
} Asn1Choice;

/* Asn1List is the node of SEQUENCE OF and SET OF. */
typedef struct Asn1List {
    uint32_t count;                                         /* number of elements */
    void** items;                                           /* elements, owned; null until the first one */
    uint32_t capacity;                                      /* slots in items: 0, 10, then c + 200 + c / 2 */
    int (*comparator)(const void* left, const void* right); /* null */
    uint32_t sorted; /* not 0: a SET OF is put in DER order when it is encoded; 1 in a new list */
} Asn1List;

/* --- Trees --- */

/**
 * CreateAsn1Object builds an empty tree for an item. Optional parts stay absent, or get a copy of their default.
 * StatusBadArgument, StatusUnsupportedKind, StatusOutOfMemory; *out is null after a failure other than
 * StatusBadArgument.
 * @param out receives the root, owned by the caller (FreeAsn1Object with the same item).
 * @param fill not 0: required primitive fields get empty records; 0: they stay null. With fill 0 and a primitive item
 *     nothing is stored in *out: StatusOk.
 */
TLVFORGE_STATUS CreateAsn1Object(const Asn1Item* item, void** out, uint32_t fill);

/**
 * CreateOptionalAsn1Sequence builds the tree of an optional SEQUENCE or SET, which CreateAsn1Object leaves absent. A
 * default is not used. StatusBadArgument also for an item that isn't an optional SEQUENCE or SET.
 * @param fill as CreateAsn1Object.
 */
TLVFORGE_STATUS CreateOptionalAsn1Sequence(const Asn1Item* item, void** out, uint32_t fill);

/**
 * FreeAsn1Object frees a tree. item must be the one the tree was built with. Either may be null; always StatusOk. An
 * item of kind CHOICE or a list without its constructedBit frees nothing.
 * @param node the root.
 */
TLVFORGE_API Status FreeAsn1Object(const Asn1Item* item, void* node);

/**
 * CompareAsn1Objects compares two trees. The order of elements counts, for SET OF too. StatusUnsupportedKind when two
 * present nodes of kind NULL, ENUMERATED, CHOICE or ANY meet.
 * @param left, right the roots; may be null.
 * @param equal receives 1 for equal trees, otherwise 0.
 */
TLVFORGE_STATUS CompareAsn1Objects(const Asn1Item* item, const void* left, const void* right, uint32_t* equal);

/**
 * GetAsn1ChoiceUnderlyingType goes from a choice to what it holds. StatusBadAlternative, with both cells unchanged,
 * when the selector is outside the item's alternatives.
 * @param value on entry the Asn1Choice, afterwards the node of its alternative (null when it holds none).
 * @param item on entry the CHOICE item, afterwards the item of the alternative.
 */
TLVFORGE_STATUS GetAsn1ChoiceUnderlyingType(void** value, const Asn1Item** item);

/**
 * GetAsn1ObjectInfo reads the identifier and length octets at the start of BER bytes. StatusBadArgument,
 * StatusBadEncoding truncated, StatusLengthTooLong more than four length octets. Non-minimal lengths are accepted.
 * @param contentLength all that remains of the bytes in the indefinite form.
 * @param indefinite 1 or 0; with null the content is checked to lie within the bytes (StatusBadEncoding), otherwise it
 *     isn't.
 */
TLVFORGE_STATUS GetAsn1ObjectInfo(const uint8_t* data, uint32_t length, uint8_t* tagClass, uint8_t* constructedBit,
                                  uint32_t* tagNumber, uint32_t* contentLength, uint32_t* indefinite,
                                  uint32_t* headerLength);

/**
 * Asn1DecodeItem decodes one BER element at the start of the bytes; what follows it is left alone. StatusBadArgument,
 * StatusBadEncoding, StatusLengthTooLong, StatusBadItem, StatusBadValue, StatusBadIndefinite, StatusBadSegment,
 * StatusUnsupportedKind, StatusOutOfMemory.
 * @param out receives the root, owned by the caller; null for an absent optional item and after a failure.
 * @param consumed receives the bytes used, 0 for an absent item; untouched after a failure.
 */
TLVFORGE_STATUS Asn1DecodeItem(const uint8_t* data, uint32_t length, const Asn1Item* item, void** out,
                               uint32_t* consumed);

/**
 * Asn1Encode writes a tree as DER into a new block. StatusBadArgument, StatusAbsent a required part is missing,
 * StatusUnsupportedKind, StatusBadItem, StatusBadAlternative, StatusLengthTooLong more than 4 GB, StatusOutOfMemory.
 * @param out receives the block, to be released with the C library's free; null to ask for the length alone.
 * @param length receives the length.
 * @param node the root, built with the item.
 */
TLVFORGE_STATUS Asn1Encode(const void* node, const Asn1Item* item, uint8_t** out, uint32_t* length);

/**
 * GetAsn1EncodedValue writes a tree as DER into the caller's buffer, without a block of its own. As Asn1Encode, and
 * StatusBufferTooSmall.
 * @param node the root, built with the item.
 */
TLVFORGE_STATUS GetAsn1EncodedValue(const void* node, const Asn1Item* item, uint8_t* buffer, uint32_t* length);

/* --- Values --- */

/**
 * GetAsn1Value and GetAsn1AnyValue, one function, copy the bytes of a value or a captured element. StatusBadArgument,
 * StatusBufferTooSmall, StatusAbsent for a record whose bytes were lost to a failed allocation.
 * @param value an Asn1Value or Asn1Any. A value of length 0 has length 0, with StatusOk.
 */
TLVFORGE_STATUS GetAsn1Value(const void* value, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS GetAsn1AnyValue(const void* value, uint8_t* buffer, uint32_t* length);

/**
 * GetAsn1ValueAndType is GetAsn1Value with the type, stored only when bytes were copied. StatusAbsent also for no
 * bytes.
 */
TLVFORGE_STATUS GetAsn1ValueAndType(const void* value, uint32_t* type, uint8_t* buffer, uint32_t* length);

/**
 * GetAsn1ValueLength measures a value.
 * @return the bytes in it, 0 for null; no Status.
 */
TLVFORGE_API uint32_t GetAsn1ValueLength(const void* value);

/**
 * AllocAsn1Boolean makes a BOOLEAN record.
 * @return the record, null when out of memory. *owns*: in a tree it is freed with the tree; alone by FreeAsn1Object
 *     with an item of its kind, or by the C library's free, first its data and then the record.
 */
TLVFORGE_API Asn1Value* AllocAsn1Boolean(uint32_t flag);

/** GetAsn1Boolean stores 1 for the byte 0xFF and 0 for 0; StatusBadValue for any other content. */
TLVFORGE_STATUS GetAsn1Boolean(const Asn1Value* value, uint32_t* flag);

/**
 * CheckAsn1Boolean: StatusOk for a DER BOOLEAN, CheckAsn1Integer: StatusOk for an INTEGER in minimal form; otherwise
 * StatusBadValue.
 */
TLVFORGE_STATUS CheckAsn1Boolean(const Asn1Value* value);
TLVFORGE_STATUS CheckAsn1Integer(const Asn1Value* value);

/**
 * AllocAsn1Integer makes an INTEGER record in minimal form.
 * @return the record, *owned* as that of AllocAsn1Boolean; null when out of memory.
 */
TLVFORGE_API Asn1Value* AllocAsn1Integer(int32_t value);

/**
 * AllocAsn1Integer_s makes an INTEGER record of big-endian content bytes, taken unchanged.
 * @return the record, *owned* as that of AllocAsn1Boolean; null when out of memory, or for null data with a length
 *     above 0.
 */
TLVFORGE_API Asn1Value* AllocAsn1Integer_s(const uint8_t* data, uint32_t length);

/**
 * SetAsn1Integer stores a number of any size in minimal form. StatusBadArgument for length 0.
 * @param data two's complement, least significant byte first, unlike the stored form.
 */
TLVFORGE_STATUS SetAsn1Integer(Asn1Value* value, const uint8_t* data, uint32_t length);
TLVFORGE_STATUS SetAsn1Int32(Asn1Value* value, int32_t number);

/**
 * GetAsn1Integer copies an INTEGER's bytes, least significant first, without sign extension. StatusAbsent without
 * bytes.
 */
TLVFORGE_STATUS GetAsn1Integer(const Asn1Value* value, uint8_t* buffer, uint32_t* length);

/** GetAsn1Int32 reads an INTEGER of up to four bytes, sign-extended. StatusBufferTooSmall for a longer one. */
TLVFORGE_STATUS GetAsn1Int32(const Asn1Value* value, int32_t* number);

/* --- Encodings of simple values --- */

/**
 * DecodeAsn1Int32 and EncodeAsn1Int32: a 32-bit number from and to an INTEGER element. The Enumerated names are the
 * same functions and read and write the tag of INTEGER, as intended (docs/oddities.md). Decoding: StatusBadArgument for
 * length 0, StatusBufferTooSmall above four bytes.
 */
TLVFORGE_STATUS DecodeAsn1Int32(const uint8_t* data, uint32_t length, int32_t* number);
TLVFORGE_STATUS EncodeAsn1Int32(int32_t number, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS DecodeAsn1Enumerated(const uint8_t* data, uint32_t length, int32_t* number);
TLVFORGE_STATUS EncodeAsn1Enumerated(int32_t number, uint8_t* buffer, uint32_t* length);

/**
 * DecodeAsn1PrimitiveValue copies the content bytes of an element of a primitive kind (Asn1Kind...), and
 * EncodeAsn1PrimitiveValue wraps content bytes in one. Content is not checked against the kind's alphabet. BIT STRINGs
 * are whole bytes. The string functions are these two with their kind.
 */
TLVFORGE_STATUS DecodeAsn1PrimitiveValue(uint8_t kind, const uint8_t* data, uint32_t length, uint8_t* buffer,
                                         uint32_t* bufferLength);
TLVFORGE_STATUS EncodeAsn1PrimitiveValue(uint8_t kind, const uint8_t* data, uint32_t length, uint8_t* buffer,
                                         uint32_t* bufferLength);
TLVFORGE_STATUS DecodeAsn1UTF8String(const uint8_t* data, uint32_t length, uint8_t* text, uint32_t* textLength);
TLVFORGE_STATUS EncodeAsn1UTF8String(const uint8_t* text, uint32_t textLength, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS DecodeAsn1IA5String(const uint8_t* data, uint32_t length, uint8_t* text, uint32_t* textLength);
TLVFORGE_STATUS EncodeAsn1IA5String(const uint8_t* text, uint32_t textLength, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS DecodeAsn1NumericString(const uint8_t* data, uint32_t length, uint8_t* text, uint32_t* textLength);
TLVFORGE_STATUS EncodeAsn1NumericString(const uint8_t* text, uint32_t textLength, uint8_t* buffer, uint32_t* length);

/* --- Captured elements, BIT STRINGs and lists --- */

/**
 * GetAsn1AnyInfo reads the header of a captured element. The content begins headerLength bytes into the record; in the
 * indefinite form contentLength includes the two end-of-contents octets. Statuses as GetAsn1ObjectInfo, and
 * StatusBadIndefinite.
 */
TLVFORGE_STATUS GetAsn1AnyInfo(const Asn1Any* any, uint8_t* tagClass, uint8_t* constructedBit, uint32_t* tagNumber,
                               uint32_t* contentLength, uint32_t* headerLength);

/**
 * GetAsn1BitString copies the bytes of a BIT STRING. StatusAbsent for an empty one.
 * @param unusedBits may be null.
 */
TLVFORGE_STATUS GetAsn1BitString(const Asn1BitString* bitString, uint8_t* unusedBits, uint8_t* buffer,
                                 uint32_t* length);

/** GetAsn1ListItem lends an element, which stays the list's. StatusBadArgument for an index out of range. */
TLVFORGE_STATUS GetAsn1ListItem(const Asn1List* list, int32_t index, void** element);

/**
 * GetAsn1ListLength counts the elements.
 * @return their number, 0 for null; no Status.
 */
TLVFORGE_API uint32_t GetAsn1ListLength(const Asn1List* list);

/**
 * SetAsn1ListSorted sets whether a SET OF is written in DER order (not 0, the state of a new list) or in list order, as
 * signed attributes need that must be hashed as received. Null is ignored.
 * @param sorted not 0 for DER order.
 */
TLVFORGE_API void SetAsn1ListSorted(Asn1List* list, uint32_t sorted);

TLVFORGE_END

#endif
