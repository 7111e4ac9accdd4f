// ASN.1 time values from and to the calendar records of the interface.
#pragma once

#include "engine/failure.h"
#include "tlvforge/asn1.h"
#include "tlvforge/time.h"

namespace tlvforge {

// Value of a CHOICE Time: 302 without a value or text, 307 for a text that is too short or another alternative, 313.
Status Asn1TimeToLibraryTime(const Asn1Choice* choice, LibraryTime* time);
// A bare UTCTime of at least 15 bytes, two more than it has with seconds and "Z": see GetCrlValidatedIdInformation in
// docs/oddities.md.
Status UtcTimeToLibraryTime(const Asn1Value* value, LibraryTime* time);
Status GeneralizedTimeToLibraryTime(const Asn1Value* value, LibraryTime* time);
// With a fraction of up to six digits.
Status GeneralizedTimeToPreciseTime(const Asn1Value* value, LibraryPreciseTime* time);

// Writers return null for a null pointer, the null time, a year of more than four digits, and when out of memory.
Asn1Value* LibraryTimeToGeneralizedTime(const LibraryTime* time);
Asn1Value* LibraryTimeToUtcTime(const LibraryTime* time);
Asn1Value* PreciseTimeToGeneralizedTime(const LibraryPreciseTime* time);
// Replaces the value of a CHOICE Time: UTCTime below the year 2050, GeneralizedTime from then on. 313, 1.
Status LibraryTimeToAsn1Time(const LibraryTime* time, Asn1Choice* choice);

}  // namespace tlvforge
