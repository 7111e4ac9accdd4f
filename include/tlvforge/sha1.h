/*
 * SHA-1 (FIPS 180), for key identifiers (RFC 5280, 4.2.1.2).
 */
#ifndef TLVFORGE_SHA1_H
#define TLVFORGE_SHA1_H

#include "tlvforge/status.h"

TLVFORGE_BEGIN

/**
 * sha1 hashes a whole message.
 * @param data required also when length is 0. From 2^31 bytes on the result isn't the message's SHA-1.
 * @param digest receives 20 bytes.
 */
TLVFORGE_STATUS sha1(const uint8_t* data, uint32_t length, uint8_t* digest);

TLVFORGE_END

#endif
