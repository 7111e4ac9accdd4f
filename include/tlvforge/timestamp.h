/*
 * Time-stamps (RFC 3161): the request, the response, and the TSTInfo that a token carries.
 *
 * These have no objects: each has one function that reads it into separate arguments and one that writes it from them.
 * Nothing is signed or verified here. A token is a ContentInfo with SignedData; its encapsulated content, of the type
 * 1.2.840.113549.1.9.16.1.4, is the DER of a TSTInfo, which the caller takes out with the functions of cms.h.
 *
 * Forms that all functions share: an OID is length-prefixed; parameters is a whole element, or null for none; hash,
 * nonce and serial are content bytes, the last two of an INTEGER, big-endian, and are written as they are. Numbers of
 * 32 bits are written as signed ones, so that 0x80000000 and above become negative INTEGERs.
 *
 * Readers of many outputs go through them in the order of the arguments. One call reports all lengths:
 * StatusBufferTooSmall, of a buffer that is too small and of an INTEGER above four bytes where a number of 32 bits is
 * read, is the result only at the end, after all other outputs have been filled **and the objects handed over: those
 * have to be freed before the call is repeated**. Any other failure ends the call at once, and what was stored before
 * it stays. Out-pointers of objects are null unless an object was handed over, except after StatusBadArgument, which
 * leaves them alone.
 */
#ifndef TLVFORGE_TIMESTAMP_H
#define TLVFORGE_TIMESTAMP_H

#include "tlvforge/cms.h"
#include "tlvforge/extensions.h"
#include "tlvforge/names.h"
#include "tlvforge/status.h"
#include "tlvforge/time.h"

TLVFORGE_BEGIN

/* --- TimeStampReq (RFC 3161, 2.4.1) --- */

/**
 * EncodeTimeStampReq writes a request as DER. StatusBadArgument also for extensions with an empty cell. When memory
 * runs out just for the hash, the status is StatusOk, and *length stays as it was.
 * @param policyOid, nonce, extensions null for none; policyOidLength isn't used.
 */
TLVFORGE_STATUS EncodeTimeStampReq(uint32_t version, const uint8_t* hashOid, const uint8_t* parameters,
                                   uint32_t parametersLength, const uint8_t* hash, uint32_t hashLength,
                                   const uint8_t* policyOid, uint32_t policyOidLength, const uint8_t* nonce,
                                   uint32_t nonceLength, uint32_t certReq, X509Extensions extensions, uint8_t* buffer,
                                   uint32_t* length);

/**
 * DecodeTimeStampReq reads the request at the start of the bytes; what follows it is ignored. parameters and its length
 * may both be null. A policy, nonce or parameters that is absent has length 0. StatusBadArgument also for length 0.
 * @param certReq 1 or 0.
 * @param extensions *owns* (FreeX509Extensions), also with StatusBufferTooSmall; null when absent.
 */
TLVFORGE_STATUS DecodeTimeStampReq(const uint8_t* bytes, uint32_t length, int32_t* version, uint8_t* hashOid,
                                   uint32_t* hashOidLength, uint8_t* parameters, uint32_t* parametersLength,
                                   uint8_t* hash, uint32_t* hashLength, uint8_t* policyOid, uint32_t* policyOidLength,
                                   uint8_t* nonce, uint32_t* nonceLength, uint32_t* certReq,
                                   X509Extensions* extensions);

/* --- TimeStampResp (RFC 3161, 2.4.2) --- */

/**
 * EncodeTimeStampResp writes a response as DER.
 * @param status PKIStatus, 0 granted.
 * @param statusString, token null for none; the caller keeps both.
 * @param failInfo PKIFailureInfo as a flag word, 0 for none: badAlg is 0x80, systemFailure (bit 25) 0x40000000.
 */
TLVFORGE_STATUS EncodeTimeStampResp(uint32_t status, const PKIFreeText* statusString, uint32_t failInfo,
                                    const CmsContentInfo* token, uint8_t* buffer, uint32_t* length);

/**
 * DecodeTimeStampResp reads the response at the start of the bytes. One that grants nothing is read with StatusOk too.
 * StatusBadArgument also for length 0. StatusBufferTooSmall for a status of more than four bytes: nothing is handed
 * over then.
 * @param failInfo flag word of the first four bytes; 0 when absent.
 * @param statusString *owns* (FreePKIFreeText); null when absent, and after a failure other than StatusBadArgument.
 * @param token *owns* (FreeCmsContentInfo); null when absent, and after a failure other than StatusBadArgument.
 */
TLVFORGE_STATUS DecodeTimeStampResp(const uint8_t* bytes, uint32_t length, int32_t* status, PKIFreeText** statusString,
                                    uint32_t* failInfo, CmsContentInfo** token);

/* --- TSTInfo (RFC 3161, 2.4.2) --- */

/**
 * EncodeTSTInfo writes the content of a token as DER. StatusOutOfMemory also for a null policyOid, and for a genTime
 * that hasn't been set or whose fields have more digits than YYYYMMDDhhmmss.ffffff has for them; StatusBadArgument for
 * a tsa without a value and extensions with an empty cell. When memory runs out just for the hash, the status is
 * StatusOk, and *length stays as it was.
 * @param genTime with its fraction, without trailing zeros.
 * @param accuracy null or all zeros for none; a part that is 0 is left out, and no part is checked against 1 to 999.
 * @param nonce, tsa null for none.
 * @param extensions null for none.
 */
TLVFORGE_STATUS EncodeTSTInfo(uint32_t version, const uint8_t* policyOid, const uint8_t* hashOid,
                              const uint8_t* parameters, uint32_t parametersLength, const uint8_t* hash,
                              uint32_t hashLength, const uint8_t* serial, uint32_t serialLength,
                              const LibraryPreciseTime* genTime, const Accuracy* accuracy, uint32_t ordering,
                              const uint8_t* nonce, uint32_t nonceLength, const X509GeneralName* tsa,
                              X509Extensions extensions, uint8_t* buffer, uint32_t* length);

/**
 * DecodeTSTInfo reads the TSTInfo at the start of the bytes. Each output may be null and is skipped then, a buffer with
 * a null length as well; without any, the call checks that the bytes are well-formed. StatusBadArgument for length 0.
 * @param accuracy all 0 when absent. **One without seconds leaves that field of the caller's record as it was**, and
 *     sets an absent part of the other two to 0: clear the record before.
 * @param ordering 1 or 0. An absent nonce or parameters has length 0.
 * @param tsa, extensions *owns* (FreeX509GeneralName, FreeX509Extensions), also with StatusBufferTooSmall, tsa also
 *     with StatusOutOfMemory; null when absent.
 * @param genTime digits beyond microseconds are dropped. Unless it is null, the status is StatusBadValue for a time
 *     that doesn't end in Z, StatusBadTime for one that isn't a date of the years 1900 to 2100, StatusBadEncoding for
 *     an empty one.
 */
TLVFORGE_STATUS DecodeTSTInfo(const uint8_t* bytes, uint32_t length, int32_t* version, uint8_t* policyOid,
                              uint32_t* policyOidLength, uint8_t* hashOid, uint32_t* hashOidLength, uint8_t* parameters,
                              uint32_t* parametersLength, uint8_t* hash, uint32_t* hashLength, uint8_t* serial,
                              uint32_t* serialLength, LibraryPreciseTime* genTime, Accuracy* accuracy,
                              uint32_t* ordering, uint8_t* nonce, uint32_t* nonceLength, X509GeneralName** tsa,
                              X509Extensions* extensions);

TLVFORGE_END

#endif
