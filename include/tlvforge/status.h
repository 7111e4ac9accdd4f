/*
 * Status numbers, the failure record and the macros that every public header uses.
 *
 * What holds for all functions (buffers, ownership, object identifiers, times, threads, indices) is documented once in
 * docs/conventions.md, the parameters by their names among it; a function's comment has what is particular to it.
 */
#ifndef TLVFORGE_STATUS_H
#define TLVFORGE_STATUS_H

#include <stdint.h>

/* Where a function is visible: outside the library, on every system. */
#ifndef _WIN32
#define TLVFORGE_EXPORT __attribute__((visibility("default")))
#elif defined(tlvforge_64_EXPORTS)
#define TLVFORGE_EXPORT __declspec(dllexport)
#else
#define TLVFORGE_EXPORT
#endif

#ifdef __cplusplus
#define TLVFORGE_BEGIN extern "C" {
#define TLVFORGE_END }
/* A dropped Status is a warning in C++. */
#define TLVFORGE_STATUS [[nodiscard]] TLVFORGE_EXPORT Status
#else
#define TLVFORGE_BEGIN
#define TLVFORGE_END
#define TLVFORGE_STATUS TLVFORGE_EXPORT Status
#endif

/* For the functions whose result is no status, or a status that is always 0 and may be dropped. */
#define TLVFORGE_API TLVFORGE_EXPORT

TLVFORGE_BEGIN

/* Result of nearly every function: 0 for success, otherwise one of the numbers below. */
typedef uint32_t Status;

/* Typed constants in C++, enumerators in C. */
#ifdef __cplusplus
#define TLVFORGE_NUMBER(name, number) constexpr Status name = number;
#else
#define TLVFORGE_NUMBER(name, number) enum { name = number };
#endif

TLVFORGE_NUMBER(StatusOk, 0)                   /* success */
TLVFORGE_NUMBER(StatusOutOfMemory, 1)          /* an allocation failed */
TLVFORGE_NUMBER(StatusFileSeekFailed, 3)       /* a seek in a file failed */
TLVFORGE_NUMBER(StatusFileOpenFailed, 12)      /* a file can't be opened */
TLVFORGE_NUMBER(StatusBadArgument, 32)         /* null pointer, index out of range, arguments that don't go together */
TLVFORGE_NUMBER(StatusFileReadShort, 46)       /* fewer bytes than asked for came from a file */
TLVFORGE_NUMBER(StatusFileWriteShort, 47)      /* fewer bytes than asked for went to a file */
TLVFORGE_NUMBER(StatusBufferTooSmall, 49)      /* the output buffer is too small; the needed length has been stored */
TLVFORGE_NUMBER(StatusUnsupportedKind, 300)    /* a schema item has a kind that the routine doesn't handle */
TLVFORGE_NUMBER(StatusBadEncoding, 302)        /* malformed BER, or BER that doesn't match the schema */
TLVFORGE_NUMBER(StatusLengthTooLong, 304)      /* a length of more than 4 octets; too many sub-identifiers */
TLVFORGE_NUMBER(StatusBadItem, 305)            /* a schema item contradicts itself */
TLVFORGE_NUMBER(StatusBadAlternative, 306)     /* a CHOICE with an alternative that isn't defined */
TLVFORGE_NUMBER(StatusBadValue, 307)           /* well-formed BER whose content isn't allowed */
TLVFORGE_NUMBER(StatusUnknownOid, 308)         /* an object identifier isn't in the table that numbers it */
TLVFORGE_NUMBER(StatusUnknownId, 309)          /* a number isn't in the table of object identifiers */
TLVFORGE_NUMBER(StatusAbsent, 311)             /* a field that the operation needs isn't there */
TLVFORGE_NUMBER(StatusBadTime, 313)            /* a date or time component is outside its range */
TLVFORGE_NUMBER(StatusWrongContentType, 314)   /* a CMS content has another type than the operation works on */
TLVFORGE_NUMBER(StatusBadKeyForm, 317)         /* a key or its parameters have a form that can't be handled */
TLVFORGE_NUMBER(StatusBadPem, 319)             /* not the armour or content that DecodePem requires */
TLVFORGE_NUMBER(StatusNotEqual, 320)           /* two compared things differ */
TLVFORGE_NUMBER(StatusNotFound, 322)           /* a searched item isn't in its container */
TLVFORGE_NUMBER(StatusBadSignerData, 323)      /* a CMS signer gives no usable answer */
TLVFORGE_NUMBER(StatusBadIndefinite, 335)      /* indefinite length not allowed here, or its end is missing */
TLVFORGE_NUMBER(StatusBadSegment, 336)         /* a segment of a constructed OCTET STRING has another tag number */
TLVFORGE_NUMBER(StatusWorkBufferTooSmall, 338) /* a work buffer of fixed size was too small for a value */
TLVFORGE_NUMBER(StatusDuplicateItem, 344)      /* the item to be added to a unique list is already in it */

/**
 * GetLastFileErrorAsn returns where the latest failure of the process was detected. Success never clears the record: it
 * has meaning only directly after a call that failed. The record is one for all threads, without a lock.
 * @param line may be null; the source line, or all bits set while nothing has failed.
 * @return bare name of the source file, constant text; null while nothing has failed.
 */
TLVFORGE_API const char* GetLastFileErrorAsn(uint32_t* line);

TLVFORGE_END

#endif
