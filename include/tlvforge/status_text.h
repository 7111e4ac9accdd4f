/*
 * A sentence for each status, for messages to people. Nothing here is exported by the library: the text is compiled
 * into the program that includes this header.
 */
#ifndef TLVFORGE_STATUS_TEXT_H
#define TLVFORGE_STATUS_TEXT_H

#include "tlvforge/status.h"

/**
 * StatusText says what a status means, in English and without a full stop at the end.
 * @return constant text, never null; "unknown status" for a number that status.h doesn't list.
 */
#ifdef __cplusplus
inline const char* StatusText(Status status) noexcept {
#else
static inline const char* StatusText(Status status) {
#endif
    switch (status) {
        case StatusOk: return "success";
        case StatusOutOfMemory: return "out of memory";
        case StatusFileSeekFailed: return "the size of the file can't be found, or a position in it can't be reached";
        case StatusFileOpenFailed: return "the file can't be opened";
        case StatusBadArgument: return "an argument is null, out of range or doesn't go with the others";
        case StatusFileReadShort: return "fewer bytes could be read from the file than it should have";
        case StatusFileWriteShort: return "fewer bytes could be written to the file than it should get";
        case StatusBufferTooSmall: return "the buffer is too small for the result, or a value is larger than allowed";
        case StatusUnsupportedKind: return "a schema item has a kind that this operation doesn't handle";
        case StatusBadEncoding: return "the bytes aren't well-formed BER, or not the structure that was expected";
        case StatusLengthTooLong: return "a length has more than four octets, or an object identifier too many arcs";
        case StatusBadItem: return "a schema item contradicts itself";
        case StatusBadAlternative: return "a choice holds an alternative that isn't defined";
        case StatusBadValue: return "a value is well-formed, but its content isn't allowed";
        case StatusUnknownOid: return "the object identifier has no number in the library's table";
        case StatusUnknownId: return "the number has no object identifier in the library's table";
        case StatusAbsent: return "a field that is needed is absent";
        case StatusBadTime: return "a date or time is outside the range that can be represented";
        case StatusWrongContentType: return "the message has another content type than the operation works on";
        case StatusBadKeyForm: return "the key or its parameters have a form that can't be handled";
        case StatusBadPem: return "the text isn't PEM or Base64";
        case StatusNotEqual: return "the two things compared are different";
        case StatusNotFound: return "what was looked for isn't there";
        case StatusBadSignerData: return "the signer's data give no usable answer";
        case StatusBadIndefinite: return "an indefinite length isn't allowed here, or its end is missing";
        case StatusBadSegment: return "a segment of an octet string has another tag than it should have";
        case StatusWorkBufferTooSmall: return "a value is larger than the fixed room that the operation has for it";
        case StatusDuplicateItem: return "the item is already in the list";
        default: return "unknown status";
    }
}

#endif
