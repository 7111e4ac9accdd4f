/*
 * Conversions between bytes: key and signature blocks of the Zelcrypt format family, code page 1251, and a comparison.
 */
#ifndef TLVFORGE_CONVERT_H
#define TLVFORGE_CONVERT_H

#include "tlvforge/status.h"

TLVFORGE_BEGIN

/**
 * ConvertZelcryptPublicKeyToX509 takes the raw key out of a Zelcrypt public key block. No byte order is changed. The
 * marker at offset 254 decides: "1" to "3" select the 128 bytes at offset 0; "A" to "D", "X", "Y", "a" to "c", "x", "y"
 * the 32 at offset 0 and the 32 at 64. StatusBadKeyForm for any other marker.
 * @param key the block, 256 bytes, else StatusBadArgument.
 */
TLVFORGE_STATUS ConvertZelcryptPublicKeyToX509(const uint8_t* key, uint32_t keyLength, uint8_t* buffer,
                                               uint32_t* length);

/**
 * ConvertX509PublicKeyToZelcrypt puts a raw key of 64 or 128 bytes, else StatusBadArgument, into a new block of 256
 * bytes, which has the text "v5" at offset 252. The marker at offset 254 stays 0, so ConvertZelcryptPublicKeyToX509
 * refuses the block: the two are not inverses, and a caller that wants one back sets the marker.
 */
TLVFORGE_STATUS ConvertX509PublicKeyToZelcrypt(const uint8_t* key, uint32_t keyLength, uint8_t* buffer,
                                               uint32_t* length);

/**
 * ConvertZelcryptSignatureToX509 copies the bytes of a signature of 64 or 128 bytes, else StatusBadArgument, in
 * reversed order; ConvertX509SignatureToZelcrypt is the same. `buffer` must not overlap `signature`.
 */
TLVFORGE_STATUS ConvertZelcryptSignatureToX509(const uint8_t* signature, uint32_t length, uint8_t* buffer,
                                               uint32_t* bufferLength);
TLVFORGE_STATUS ConvertX509SignatureToZelcrypt(const uint8_t* signature, uint32_t length, uint8_t* buffer,
                                               uint32_t* bufferLength);

/**
 * ConvertAnsiToUTF8 turns zero-terminated text of code page 1251 into UTF-8. Cyrillic letters and the signs of Russian
 * business text are exact; other bytes above 0x7F become the character of that number plus 0x350.
 * @param buffer required, there is no size query. It needs 10 free bytes before each character, however many that
 *     takes. An empty text always fits; its zero is written where there is room.
 * @param length in, size of the buffer, below 2^31; out, bytes of the result, with a terminating zero after them that
 *     isn't counted. With StatusBufferTooSmall a suggested size: 20 and twice the source length; bytes may have been
 *     written by then. Signs of three bytes can make a second suggestion necessary: enlarge it further.
 */
TLVFORGE_STATUS ConvertAnsiToUTF8(const char* text, char* buffer, uint32_t* length);

/**
 * IsArrayEquals returns StatusOk for equal arrays and StatusNotEqual for different ones. Note the sense: a true
 * condition is 0. Two nulls are equal whatever the lengths say, one null differs from everything; equal lengths of 0 or
 * below compare no bytes and are equal. A difference counts as a failure in the failure record.
 * @param left, right the arrays; may be null.
 */
TLVFORGE_STATUS IsArrayEquals(const uint8_t* left, int32_t leftLength, const uint8_t* right, int32_t rightLength);

TLVFORGE_END

#endif
