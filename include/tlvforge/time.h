/*
 * Calendar records, which stand for the times of documents at the interface, and the codecs of ASN.1 time values.
 *
 * All times are UTC unless a function says local. The argument order is day, month, year everywhere, and not the order
 * of the fields. The null time is the record with all fields 0: it stands for a time that hasn't been set.
 */
#ifndef TLVFORGE_TIME_H
#define TLVFORGE_TIME_H

#include "tlvforge/status.h"

TLVFORGE_BEGIN

/* LibraryTime has a resolution of one second; a leap second isn't representable. */
typedef struct LibraryTime {
    uint32_t year;   /* 1900 to 2100 */
    uint32_t month;  /* 1 to 12 */
    uint32_t day;    /* 1 to 31 */
    uint32_t hour;   /* 0 to 23 */
    uint32_t minute; /* 0 to 59 */
    uint32_t second; /* 0 to 59 */
} LibraryTime;

/* LibraryPreciseTime adds the fraction that time-stamps have. */
typedef struct LibraryPreciseTime {
    uint32_t year;        /* 1900 to 2100 */
    uint32_t month;       /* 1 to 12 */
    uint32_t day;         /* 1 to 31 */
    uint32_t hour;        /* 0 to 23 */
    uint32_t minute;      /* 0 to 59 */
    uint32_t second;      /* 0 to 59 */
    uint32_t millisecond; /* 0 to 999 */
    uint32_t microsecond; /* 0 to 999, below the millisecond, not a total */
} LibraryPreciseTime;

/* Accuracy is the tolerance of a time-stamp (RFC 3161, 2.4.2). Its fields have no limits here. */
typedef struct Accuracy {
    uint32_t seconds;      /* whole seconds */
    uint32_t milliseconds; /* on top of the seconds, 1 to 999 in the standard */
    uint32_t microseconds; /* on top of the milliseconds, 1 to 999 in the standard */
} Accuracy;

/* --- Records --- */

/** CreateLibraryTime and its like make a zeroed record, owned by the caller (the Free function of the same type). */
TLVFORGE_STATUS CreateLibraryTime(LibraryTime** out);
TLVFORGE_STATUS CreateLibraryPreciseTime(LibraryPreciseTime** out);
TLVFORGE_STATUS CreateAccuracy(Accuracy** out);

/** FreeLibraryTime and its like release a record. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeLibraryTime(LibraryTime* time);
TLVFORGE_API Status FreeLibraryPreciseTime(LibraryPreciseTime* time);
TLVFORGE_API Status FreeAccuracy(Accuracy* accuracy);

/** CopyLibraryTime and its like copy all fields, without a check of their ranges. */
TLVFORGE_STATUS CopyLibraryTime(LibraryTime* destination, const LibraryTime* source);
TLVFORGE_STATUS CopyLibraryPreciseTime(LibraryPreciseTime* destination, const LibraryPreciseTime* source);
TLVFORGE_STATUS CopyAccuracy(Accuracy* destination, const Accuracy* source);

/**
 * SetLibraryTime and SetLibraryPreciseTime check and store one field after the other: month, day, year, hour, minute,
 * second, millisecond, microsecond. The first one out of its range is StatusBadTime and ends there: the fields before
 * it are stored already. 29 February passes in every year. The null time is refused.
 */
TLVFORGE_STATUS SetLibraryTime(LibraryTime* time, uint32_t day, int32_t month, int32_t year, uint32_t hour,
                               uint32_t minute, uint32_t second);
TLVFORGE_STATUS SetLibraryPreciseTime(LibraryPreciseTime* time, uint32_t day, int32_t month, int32_t year,
                                      uint32_t hour, uint32_t minute, uint32_t second, uint32_t millisecond,
                                      uint32_t microsecond);

/** SetAccuracy stores the three fields as they are. */
TLVFORGE_STATUS SetAccuracy(Accuracy* accuracy, uint32_t seconds, uint32_t milliseconds, uint32_t microseconds);

/**
 * SetLibraryTimeToNull and SetLibraryPreciseTimeToNull refuse every record with StatusBadTime and leave it as it was,
 * since the month of the null time is out of range. Only a new record is a null time.
 */
TLVFORGE_STATUS SetLibraryTimeToNull(const LibraryTime* time);
TLVFORGE_STATUS SetLibraryPreciseTimeToNull(const LibraryPreciseTime* time);

/** SetAccuracyToNull sets all fields to 0. */
TLVFORGE_STATUS SetAccuracyToNull(Accuracy* accuracy);

/**
 * GetLibraryTime and its like store the fields of a record; all outputs are required. For a null record they store
 * zeros: StatusBadArgument; for a null output nothing: StatusBadArgument. For the null time they store zeros: StatusOk.
 */
TLVFORGE_STATUS GetLibraryTime(const LibraryTime* time, uint32_t* day, uint32_t* month, uint32_t* year, uint32_t* hour,
                               uint32_t* minute, uint32_t* second);
TLVFORGE_STATUS GetLibraryPreciseTime(const LibraryPreciseTime* time, uint32_t* day, uint32_t* month, uint32_t* year,
                                      uint32_t* hour, uint32_t* minute, uint32_t* second, uint32_t* millisecond,
                                      uint32_t* microsecond);
TLVFORGE_STATUS GetAccuracy(const Accuracy* accuracy, uint32_t* seconds, uint32_t* milliseconds,
                            uint32_t* microseconds);

/**
 * GetLibraryLocalTime and GetLibraryLocalPreciseTime store the fields in the process's time zone. The fraction is 0
 * always. A time before 1970, which the null time is too, or one that the platform can't convert is stored as zeros,
 * with StatusBadArgument.
 */
TLVFORGE_STATUS GetLibraryLocalTime(const LibraryTime* time, uint32_t* day, uint32_t* month, uint32_t* year,
                                    uint32_t* hour, uint32_t* minute, uint32_t* second);
TLVFORGE_STATUS GetLibraryLocalPreciseTime(const LibraryPreciseTime* time, uint32_t* day, uint32_t* month,
                                           uint32_t* year, uint32_t* hour, uint32_t* minute, uint32_t* second,
                                           uint32_t* millisecond, uint32_t* microsecond);

/* --- Clock, calendar and comparison --- */

/** GetCurrentLibTime and GetCurrentLibPreciseTime read the clock, in whole seconds. StatusBadArgument if that fails. */
TLVFORGE_STATUS GetCurrentLibTime(LibraryTime* time);
TLVFORGE_STATUS GetCurrentLibPreciseTime(LibraryPreciseTime* time);

/**
 * IsLibraryTimeNull and its like recognise a record that hasn't been set.
 * @return 1 for a null pointer or a record of zeros, otherwise 0; no Status.
 */
TLVFORGE_API uint32_t IsLibraryTimeNull(const LibraryTime* time);
TLVFORGE_API uint32_t IsLibraryPreciseTimeNull(const LibraryPreciseTime* time);
TLVFORGE_API uint32_t IsAccuracyNull(const Accuracy* accuracy);

/**
 * AddDaysToLibTime and AddDaysToLibPreciseTime move a date forward; the time of day stays. The length of February is
 * remembered by the process, for both functions: a date in a leap year makes it 29 days, and it stays so for dates in a
 * common year until a sum passes the end of a year. days is added in 32 bits, so that all bits set means one day less.
 * The result may be beyond 2100. StatusBadTime for a month above 12; the record is unchanged then.
 */
TLVFORGE_STATUS AddDaysToLibTime(LibraryTime* time, uint32_t days);
TLVFORGE_STATUS AddDaysToLibPreciseTime(LibraryPreciseTime* time, uint32_t days);

/**
 * CompareTime compares two times. A null pointer counts as the null time, which is earlier than all others.
 * @return -1, 0 or 1: left is earlier than, equal to or later than right; no Status.
 */
TLVFORGE_API int32_t CompareTime(const LibraryTime* left, const LibraryTime* right);

/**
 * TestTimeValidity checks that a time is within a period.
 * @return 0 when now is between the two times, both included, otherwise 1; no Status.
 */
TLVFORGE_API uint32_t TestTimeValidity(const LibraryTime* notBefore, const LibraryTime* now,
                                       const LibraryTime* notAfter);

/* --- ASN.1 times --- */

/**
 * DecodeTime reads an element of the type Time (RFC 5280, 4.1.2.5); EncodeTime writes one, as UTCTime below the year
 * 2050 and GeneralizedTime from then on. Two-digit years from 50 on are 19xx.
 * Decoding: StatusBadValue for a text that is too short, StatusBadTime. Only the digits are read; what follows them
 * isn't examined.
 * Encoding: StatusAbsent for a null or invalid time; ranges are not checked again.
 */
TLVFORGE_STATUS DecodeTime(const uint8_t* data, uint32_t length, LibraryTime* time);
TLVFORGE_STATUS EncodeTime(const LibraryTime* time, uint8_t* buffer, uint32_t* length);

/**
 * DecodeAsn1GeneralizedTime and EncodeAsn1GeneralizedTime do the same for the type GeneralizedTime alone.
 * Encoding: StatusOutOfMemory for the null time, and for one that has no text of the form YYYYMMDDhhmmssZ.
 */
TLVFORGE_STATUS DecodeAsn1GeneralizedTime(const uint8_t* data, uint32_t length, LibraryTime* time);
TLVFORGE_STATUS EncodeAsn1GeneralizedTime(const LibraryTime* time, uint8_t* buffer, uint32_t* length);

TLVFORGE_END

#endif
