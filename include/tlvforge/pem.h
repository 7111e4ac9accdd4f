/*
 * Base64 (RFC 4648) and PEM armour (RFC 7468). Texts have a length and no terminating zero.
 */
#ifndef TLVFORGE_PEM_H
#define TLVFORGE_PEM_H

#include "tlvforge/status.h"

TLVFORGE_BEGIN

/**
 * EncodeToBase64 writes lines of 64 characters with CR LF between them and none after the last. The size of an empty
 * input is 134217726 and nothing is written for it; callers treat it themselves. StatusBadArgument also for an input
 * whose text would be 4 GB or longer.
 */
TLVFORGE_STATUS EncodeToBase64(const uint8_t* data, uint32_t length, char* text, uint32_t* textLength);

/**
 * DecodeFromBase64 is the fast reverse of EncodeToBase64, for exactly the text that it writes: it counts on the layout
 * and checks nothing. Any other text is read as wrong bytes with StatusOk, but never more than the size announced.
 * DecodePem reads text of unknown layout.
 */
TLVFORGE_STATUS DecodeFromBase64(const char* text, uint32_t length, uint8_t* data, uint32_t* dataLength);

/**
 * EncodePem writes a BEGIN line, the text of EncodeToBase64 and an END line, each ended by CR LF. StatusBadArgument as
 * for EncodeToBase64.
 * @param label zero-terminated, such as "CERTIFICATE". The size query of an empty input stores far more than is
 *     written.
 */
TLVFORGE_STATUS EncodePem(const uint8_t* data, uint32_t length, const char* label, char* text, uint32_t* textLength);

/**
 * DecodePem copies the content of the first armoured block in a text, or of a text that is bare Base64. It works
 * equally long for a size query. Any label is accepted, with a blank before BEGIN and END too, and the END line may be
 * missing. Line ends and blanks may be between groups of four characters. StatusBadPem for any other character, so also
 * for tabs and header lines, for a line end inside a group, a group cut off, data after the padding, white space before
 * bare Base64, and nothing to decode.
 */
TLVFORGE_STATUS DecodePem(const char* text, uint32_t length, uint8_t* data, uint32_t* dataLength);

TLVFORGE_END

#endif
