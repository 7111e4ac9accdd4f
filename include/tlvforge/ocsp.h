/*
 * The Online Certificate Status Protocol (RFC 6960): read, change and build requests and responses. Nothing is hashed,
 * signed or verified here.
 *
 * A response has two levels that are not tied together: OcspResponse is the message, and carries an OcspBasicResponse
 * as bytes. A responder fills a basic response, signs GetOcspBasicResponseToBeSignedPart elsewhere, stores the
 * signature, and hands the result of EncodeOcspBasicResponse to SetOcspResponseBytes with the type 1.3.6.1.5.5.7.48.1.1
 * (id-pkix-ocsp-basic). A client takes the bytes from GetOcspResponseBytes and decodes them.
 */
#ifndef TLVFORGE_OCSP_H
#define TLVFORGE_OCSP_H

#include "tlvforge/certificate.h"
#include "tlvforge/extensions.h"
#include "tlvforge/names.h"
#include "tlvforge/status.h"
#include "tlvforge/time.h"

TLVFORGE_BEGIN

typedef struct OcspRequest OcspRequest;               /* OCSPRequest (RFC 6960, 4.1.1) */
typedef struct OcspResponse OcspResponse;             /* OCSPResponse (RFC 6960, 4.2.1) */
typedef struct OcspBasicResponse OcspBasicResponse;   /* BasicOCSPResponse (RFC 6960, 4.2.1) */
typedef struct OcspBasicResponses OcspBasicResponses; /* SEQUENCE OF OcspBasicResponse */
typedef struct OcspSingleResponse OcspSingleResponse; /* SingleResponse: the answer for one certificate */
typedef struct OcspRevokedInfo OcspRevokedInfo;       /* RevokedInfo: when and why a certificate was revoked */

/* --- Requests --- */

/**
 * CreateOcspRequest makes an unsigned request of version 1 without entries; it encodes as it is. The caller *owns* it
 * (FreeOcspRequest).
 */
TLVFORGE_STATUS CreateOcspRequest(OcspRequest** request);

/**
 * DecodeOcspRequest reads one BER request at the start of the bytes; what follows it is ignored. The caller *owns* it.
 */
TLVFORGE_STATUS DecodeOcspRequest(const uint8_t* bytes, uint32_t length, OcspRequest** request);

/**
 * EncodeOcspRequest writes the request as DER. There is no function for the part that a requestor signs: it is the
 * first element inside of the encoding of a request.
 */
TLVFORGE_STATUS EncodeOcspRequest(const OcspRequest* request, uint8_t* buffer, uint32_t* length);

/** FreeOcspRequest frees a request with all that it owns. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeOcspRequest(OcspRequest* request);

/**
 * GetOcspRequestVersion and SetOcspRequestVersion: the number on the wire, 0 for version 1, which isn't written.
 * Getting: StatusBufferTooSmall for a number of more than four bytes. Setting takes any number.
 */
TLVFORGE_STATUS GetOcspRequestVersion(const OcspRequest* request, int32_t* version);
TLVFORGE_STATUS SetOcspRequestVersion(OcspRequest* request, uint32_t version);

/**
 * GetOcspRequestExtensions *lends* the handle of the request's extensions, for the functions of extensions.h; a nonce
 * is one of them. It lives as long as the request and must never go to FreeX509Extensions.
 */
TLVFORGE_STATUS GetOcspRequestExtensions(const OcspRequest* request, X509Extensions* extensions);

/* --- Entries of a request, one for each certificate that is asked about, counted from 0 in the order of adding --- */

/**
 * AddOcspRequestCertRequest appends an entry. After a failure the request is as it was.
 * @param hashOid, parameters the algorithm of the two hashes.
 * @param nameHash, keyHash of the issuer's name and of its key, stored unchanged.
 * @param extensions of the entry, copied; may be null. A handle with an empty cell is StatusBadArgument.
 */
TLVFORGE_STATUS AddOcspRequestCertRequest(OcspRequest* request, const uint8_t* hashOid, const uint8_t* parameters,
                                          uint32_t parametersLength, const uint8_t* nameHash, uint32_t nameHashLength,
                                          const uint8_t* keyHash, uint32_t keyHashLength, const uint8_t* serial,
                                          uint32_t serialLength, X509Extensions extensions);

/** GetOcspRequestCertRequestsCount stores the number of entries. */
TLVFORGE_STATUS GetOcspRequestCertRequestsCount(const OcspRequest* request, uint32_t* count);

/**
 * GetOcspRequestCertRequest reads an entry, in the forms of AddOcspRequestCertRequest; a length of 0 for absent
 * parameters. All five lengths are required. StatusBadArgument also for a negative index.
 * @param extensions may be null; *lends* the handle of the entry's extensions, before anything is read. A short hashOid
 *     ends the call with StatusBufferTooSmall, no other length is stored then. Otherwise the outputs are tried in their
 *     order, and as soon as one has been too short, the first later one of nameHash, keyHash and serial that fits ends
 *     the call with StatusBufferTooSmall. Buffers that are all null are only measured, so one call is enough for all
 *     lengths.
 */
TLVFORGE_STATUS GetOcspRequestCertRequest(const OcspRequest* request, int32_t index, uint8_t* hashOid,
                                          uint32_t* hashOidLength, uint8_t* parameters, uint32_t* parametersLength,
                                          uint8_t* nameHash, uint32_t* nameHashLength, uint8_t* keyHash,
                                          uint32_t* keyHashLength, uint8_t* serial, uint32_t* serialLength,
                                          X509Extensions* extensions);

/** ClearOcspRequestCertRequests frees all entries. */
TLVFORGE_STATUS ClearOcspRequestCertRequests(OcspRequest* request);

/* --- Name of the requestor --- */

/** GetOcspRequestRequestorName *lends* the name; null, with StatusOk, without one. */
TLVFORGE_STATUS GetOcspRequestRequestorName(const OcspRequest* request, X509GeneralName** name);

/**
 * GetOcspRequestRequestorNameValue reads the name as GetX509GeneralNameValue does. StatusBadArgument also without a
 * name.
 * @param type the alternative of the general name.
 */
TLVFORGE_STATUS GetOcspRequestRequestorNameValue(const OcspRequest* request, uint32_t* type, uint8_t* buffer,
                                                 uint32_t* length);

/**
 * SetOcspRequestRequestorName stores a name made as by AllocX509GeneralNameValue. StatusBadAlternative for a type above
 * 8. There is no name after StatusBadAlternative and StatusOutOfMemory.
 */
TLVFORGE_STATUS SetOcspRequestRequestorName(OcspRequest* request, uint32_t type, const uint8_t* value, uint32_t length);

/** RemoveOcspRequestRequestorName takes the name away. StatusOk where it is absent already. */
TLVFORGE_STATUS RemoveOcspRequestRequestorName(OcspRequest* request);

/* --- Signature of a request: one block of algorithm, signature and certificates. The first of the functions that store
 *    one of them makes the block, with the other two empty; if it fails, the request stays unsigned --- */

/**
 * IsExistsOcspRequestSignature answers with its status: StatusOk for a request with the block, StatusAbsent for one
 * without.
 */
TLVFORGE_STATUS IsExistsOcspRequestSignature(const OcspRequest* request);

/**
 * GetOcspRequestSignature copies the content of the signature's BIT STRING; SetOcspRequestSignature stores it
 * unchanged.
 * Getting: StatusAbsent while there is none.
 */
TLVFORGE_STATUS GetOcspRequestSignature(const OcspRequest* request, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS SetOcspRequestSignature(OcspRequest* request, const uint8_t* bytes, uint32_t length);

/**
 * GetOcspRequestSignatureAlgorithmAndParameters reads the algorithm of the signature. One call is enough for both
 * lengths. StatusBufferTooSmall when either buffer is too small.
 * @param parameters may be null together with its length.
 */
TLVFORGE_STATUS GetOcspRequestSignatureAlgorithmAndParameters(const OcspRequest* request, uint8_t* oid,
                                                              uint32_t* oidLength, uint8_t* parameters,
                                                              uint32_t* parametersLength);

/** SetOcspRequestSignatureAlgorithmOidAndParameters sets the algorithm of the signature. */
TLVFORGE_STATUS SetOcspRequestSignatureAlgorithmOidAndParameters(OcspRequest* request, const uint8_t* oid,
                                                                 const uint8_t* parameters, uint32_t parametersLength);

/**
 * RemoveOcspRequestSignature takes the whole block away, with the certificates. StatusOk where it is absent already.
 */
TLVFORGE_STATUS RemoveOcspRequestSignature(OcspRequest* request);

/** AddOcspRequestCertificate appends a certificate to the signature's, which *adopts* it. */
TLVFORGE_STATUS AddOcspRequestCertificate(OcspRequest* request, Certificate* certificate);

/** GetOcspRequestCertificatesCount stores the number of certificates; 0, with StatusOk, without any. */
TLVFORGE_STATUS GetOcspRequestCertificatesCount(const OcspRequest* request, uint32_t* count);

/**
 * GetOcspRequestCertificate *lends* a certificate. StatusAbsent without certificates, but StatusBadArgument for a
 * negative index then too, and for one at or beyond the count.
 */
TLVFORGE_STATUS GetOcspRequestCertificate(const OcspRequest* request, int32_t index, Certificate** certificate);

/**
 * RemoveOcspRequestCertificates frees the certificates and leaves the rest of the signature. StatusOk where it is
 * absent already.
 */
TLVFORGE_STATUS RemoveOcspRequestCertificates(OcspRequest* request);

/* --- The response message --- */

/** CreateOcspResponse makes a response with an empty status and no bytes. The caller *owns* it (FreeOcspResponse). */
TLVFORGE_STATUS CreateOcspResponse(OcspResponse** response);

/** DecodeOcspResponse reads one BER response at the start of the bytes. The caller *owns* it. */
TLVFORGE_STATUS DecodeOcspResponse(const uint8_t* bytes, uint32_t length, OcspResponse** response);

/** EncodeOcspResponse writes the response as DER. StatusAbsent for a type of bytes without the bytes. */
TLVFORGE_STATUS EncodeOcspResponse(const OcspResponse* response, uint8_t* buffer, uint32_t* length);

/** FreeOcspResponse frees a response with all that it owns. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeOcspResponse(OcspResponse* response);

/**
 * GetOcspResponseStatus and SetOcspResponseStatus: the number of RFC 6960, 4.2.1, 0 for successful; any other number
 * passes too. Getting: StatusAbsent while none has been set, StatusBufferTooSmall for a number of more than four bytes.
 */
TLVFORGE_STATUS GetOcspResponseStatus(const OcspResponse* response, int32_t* status);
TLVFORGE_STATUS SetOcspResponseStatus(OcspResponse* response, uint32_t status);

/**
 * GetOcspResponseBytes reads what the response carries; without it both lengths are 0, with StatusOk. One call is
 * enough for both lengths. StatusBufferTooSmall when either buffer is too small. StatusAbsent for a type without bytes.
 * @param bytes for the basic type an encoded OcspBasicResponse.
 */
TLVFORGE_STATUS GetOcspResponseBytes(const OcspResponse* response, uint8_t* typeOid, uint32_t* typeOidLength,
                                     uint8_t* bytes, uint32_t* bytesLength);

/**
 * SetOcspResponseBytes stores bytes with their type. A null or empty typeOid removes both, and has to come with length
 * 0 (StatusBadArgument). A type with null bytes, or none, is stored alone: bytes that are there stay, but without any
 * the response can't be encoded (StatusAbsent).
 */
TLVFORGE_STATUS SetOcspResponseBytes(OcspResponse* response, const uint8_t* typeOid, const uint8_t* bytes,
                                     uint32_t length);

/* --- Basic responses --- */

/**
 * CreateOcspBasicResponse makes a response of version 1 with every required field in place and empty. The caller *owns*
 * it (FreeOcspBasicResponse). It does not encode before the responder has been set (StatusAbsent).
 */
TLVFORGE_STATUS CreateOcspBasicResponse(OcspBasicResponse** response);

/** DecodeOcspBasicResponse reads one BER basic response at the start of the bytes. The caller *owns* it. */
TLVFORGE_STATUS DecodeOcspBasicResponse(const uint8_t* bytes, uint32_t length, OcspBasicResponse** response);

/** EncodeOcspBasicResponse writes the response as DER. StatusAbsent while a required field has no value. */
TLVFORGE_STATUS EncodeOcspBasicResponse(const OcspBasicResponse* response, uint8_t* buffer, uint32_t* length);

/** FreeOcspBasicResponse frees a response with all that it owns. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeOcspBasicResponse(OcspBasicResponse* response);

/** GetOcspBasicResponseToBeSignedPart encodes tbsResponseData, the bytes that a responder signs. StatusAbsent. */
TLVFORGE_STATUS GetOcspBasicResponseToBeSignedPart(const OcspBasicResponse* response, uint8_t* buffer,
                                                   uint32_t* length);

/** GetOcspBasicResponseVersion and SetOcspBasicResponseVersion are as the functions for the version of a request. */
TLVFORGE_STATUS GetOcspBasicResponseVersion(const OcspBasicResponse* response, int32_t* version);
TLVFORGE_STATUS SetOcspBasicResponseVersion(OcspBasicResponse* response, uint32_t version);

/**
 * GetOcspBasicResponseResponderID reads who answers, in one of two forms. StatusAbsent while there is none.
 * @param type 0 for a name, 1 for the SHA-1 hash of a key; stored also when the buffer is too small.
 * @param buffer the whole element of the name (DecodeX509Name reads it), or the bytes of the hash.
 */
TLVFORGE_STATUS GetOcspBasicResponseResponderID(const OcspBasicResponse* response, uint32_t* type, uint8_t* buffer,
                                                uint32_t* length);

/**
 * SetOcspBasicResponseResponderID stores who answers, in the forms of the getter and without a look at the bytes.
 * StatusBadArgument, also for a type above 1, leaves the old value; after StatusOutOfMemory there is none.
 */
TLVFORGE_STATUS SetOcspBasicResponseResponderID(OcspBasicResponse* response, uint32_t type, const uint8_t* bytes,
                                                uint32_t length);

/**
 * GetOcspBasicResponseProducedAt reads the time of signing, in UTC. Only the first 14 digits count, a fraction or zone
 * after them is ignored. StatusBadEncoding for a time without text, as in a new response, StatusBadValue for one of
 * less than 15 characters, StatusBadTime for one outside the years 1900 to 2100, and StatusAbsent.
 */
TLVFORGE_STATUS GetOcspBasicResponseProducedAt(const OcspBasicResponse* response, LibraryTime* time);

/**
 * SetOcspBasicResponseProducedAt stores a time as GeneralizedTime of 15 characters. StatusOutOfMemory, not
 * StatusBadTime, for the null time and for one that has no such text; the field is absent then.
 */
TLVFORGE_STATUS SetOcspBasicResponseProducedAt(OcspBasicResponse* response, const LibraryTime* time);

/** GetOcspBasicResponseSingleResponsesCount stores the number of answers. StatusAbsent without a list. */
TLVFORGE_STATUS GetOcspBasicResponseSingleResponsesCount(const OcspBasicResponse* response, uint32_t* count);

/**
 * GetOcspBasicResponseSingleResponse *lends* an answer. StatusAbsent without a list, otherwise StatusBadArgument for a
 * negative index too.
 */
TLVFORGE_STATUS GetOcspBasicResponseSingleResponse(const OcspBasicResponse* response, int32_t index,
                                                   OcspSingleResponse** single);

/** AddOcspBasicResponseSingleResponse appends an answer, which the response *adopts*. */
TLVFORGE_STATUS AddOcspBasicResponseSingleResponse(OcspBasicResponse* response, OcspSingleResponse* single);

/** ClearOcspBasicResponseResponses frees all answers and leaves an empty list. */
TLVFORGE_STATUS ClearOcspBasicResponseResponses(OcspBasicResponse* response);

/** GetOcspBasicResponseExtensions *lends* the handle of the response's extensions, as GetOcspRequestExtensions. */
TLVFORGE_STATUS GetOcspBasicResponseExtensions(const OcspBasicResponse* response, X509Extensions* extensions);

/**
 * GetOcspBasicResponseSignature and the three functions after it are as those for the signature of a request. The
 * algorithm is outside of the signed part.
 */
TLVFORGE_STATUS GetOcspBasicResponseSignature(const OcspBasicResponse* response, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS SetOcspBasicResponseSignature(OcspBasicResponse* response, const uint8_t* bytes, uint32_t length);
TLVFORGE_STATUS GetOcspBasicResponseSignatureAlgorithmAndParameters(const OcspBasicResponse* response, uint8_t* oid,
                                                                    uint32_t* oidLength, uint8_t* parameters,
                                                                    uint32_t* parametersLength);
TLVFORGE_STATUS SetOcspBasicResponseSignatureAlgorithmOidAndParameters(OcspBasicResponse* response, const uint8_t* oid,
                                                                       const uint8_t* parameters,
                                                                       uint32_t parametersLength);

/** AddOcspBasicResponseCertificate appends a certificate, which the response *adopts*. */
TLVFORGE_STATUS AddOcspBasicResponseCertificate(OcspBasicResponse* response, Certificate* certificate);

/** GetOcspBasicResponseCertificatesCount stores the number of certificates; 0, with StatusOk, without any. */
TLVFORGE_STATUS GetOcspBasicResponseCertificatesCount(const OcspBasicResponse* response, uint32_t* count);

/**
 * GetOcspBasicResponseCertificate *lends* a certificate. StatusAbsent without certificates, otherwise StatusBadArgument
 * for a negative index too.
 */
TLVFORGE_STATUS GetOcspBasicResponseCertificate(const OcspBasicResponse* response, int32_t index,
                                                Certificate** certificate);

/** RemoveOcspBasicResponseCertificates takes the certificates away. StatusOk where it is absent already. */
TLVFORGE_STATUS RemoveOcspBasicResponseCertificates(OcspBasicResponse* response);

/* --- Answers for one certificate --- */

/**
 * CreateOcspSingleResponse makes an answer with every required field in place and empty. The caller *owns* it
 * (FreeOcspSingleResponse). It does not encode before the status of the certificate has been set (StatusAbsent).
 */
TLVFORGE_STATUS CreateOcspSingleResponse(OcspSingleResponse** single);

/** DecodeOcspSingleResponse, EncodeOcspSingleResponse and FreeOcspSingleResponse are as those of a basic response. */
TLVFORGE_STATUS DecodeOcspSingleResponse(const uint8_t* bytes, uint32_t length, OcspSingleResponse** single);
TLVFORGE_STATUS EncodeOcspSingleResponse(const OcspSingleResponse* single, uint8_t* buffer, uint32_t* length);
TLVFORGE_API Status FreeOcspSingleResponse(OcspSingleResponse* single);

/**
 * GetOcspSingleResponseCertID reads which certificate is meant, with the lengths and statuses of
 * GetOcspRequestCertRequest.
 */
TLVFORGE_STATUS GetOcspSingleResponseCertID(const OcspSingleResponse* single, uint8_t* hashOid, uint32_t* hashOidLength,
                                            uint8_t* parameters, uint32_t* parametersLength, uint8_t* nameHash,
                                            uint32_t* nameHashLength, uint8_t* keyHash, uint32_t* keyHashLength,
                                            uint8_t* serial, uint32_t* serialLength);

/** SetOcspSingleResponseCertID stores which certificate is meant, in the forms of AddOcspRequestCertRequest. */
TLVFORGE_STATUS SetOcspSingleResponseCertID(OcspSingleResponse* single, const uint8_t* hashOid,
                                            const uint8_t* parameters, uint32_t parametersLength,
                                            const uint8_t* nameHash, uint32_t nameHashLength, const uint8_t* keyHash,
                                            uint32_t keyHashLength, const uint8_t* serial, uint32_t serialLength);

/**
 * GetOcspSingleResponseCertStatus stores the status: 0 good, 1 revoked, 2 unknown. StatusAbsent while there is none.
 */
TLVFORGE_STATUS GetOcspSingleResponseCertStatus(const OcspSingleResponse* single, uint32_t* certStatus);

/**
 * GetOcspSingleResponseCertStatusRevokedInfo reads when and why a certificate was revoked. StatusBadArgument for one
 * that isn't.
 * @param time as GetOcspBasicResponseProducedAt.
 * @param reason as in CRLs (RFC 5280, 5.3.1), all bits set without one.
 */
TLVFORGE_STATUS GetOcspSingleResponseCertStatusRevokedInfo(const OcspSingleResponse* single, LibraryTime* time,
                                                           uint32_t* reason);

/**
 * SetOcspSingleResponseCertStatus stores a status with its record; the three functions after it do that more safely.
 * @param index 0 good, 1 revoked, 2 unknown. Any other is stored as well, and then the answer can't be encoded
 *     (StatusBadAlternative).
 * @param value an OcspRevokedInfo for 1, else an Asn1Value of type 5 without bytes, from CreateAsn1Object; *adopts* it.
 *     A record that doesn't go with the index can't be detected. After StatusOutOfMemory there is no status, and the
 *     record is the caller's.
 */
TLVFORGE_STATUS SetOcspSingleResponseCertStatus(OcspSingleResponse* single, uint32_t index, void* value);
TLVFORGE_STATUS SetOcspSingleResponseCertStatusGood(OcspSingleResponse* single);
TLVFORGE_STATUS SetOcspSingleResponseCertStatusUnknown(OcspSingleResponse* single);

/**
 * SetOcspSingleResponseCertStatusRevoked stores when and why a certificate was revoked. StatusOutOfMemory also for a
 * time as in SetOcspBasicResponseProducedAt.
 * @param reason as in CRLs; a negative one is left out.
 */
TLVFORGE_STATUS SetOcspSingleResponseCertStatusRevoked(OcspSingleResponse* single, const LibraryTime* time,
                                                       int32_t reason);

/**
 * AllocCertStatusRevokedInfo makes the record of a revocation, for SetOcspSingleResponseCertStatus alone: no other
 * function takes it or frees it. It is two pointers, to the Asn1Value of the time and to that of the reason, which is
 * null for a negative reason.
 * @param info *owns* until it is in a response; each block can be ended with the C library's free. Null after a
 *     failure.
 */
TLVFORGE_STATUS AllocCertStatusRevokedInfo(const LibraryTime* time, int32_t reason, OcspRevokedInfo** info);

/**
 * GetOcspSingleResponseThisUpdate and GetOcspSingleResponseNextUpdate read a time as GetOcspBasicResponseProducedAt
 * does.
 */
TLVFORGE_STATUS GetOcspSingleResponseThisUpdate(const OcspSingleResponse* single, LibraryTime* time);
TLVFORGE_STATUS GetOcspSingleResponseNextUpdate(const OcspSingleResponse* single, LibraryTime* time);

/**
 * SetOcspSingleResponseThisUpdate and SetOcspSingleResponseNextUpdate store a time as SetOcspBasicResponseProducedAt
 * does. For nextUpdate time may be null, which takes the field away.
 */
TLVFORGE_STATUS SetOcspSingleResponseThisUpdate(OcspSingleResponse* single, const LibraryTime* time);
TLVFORGE_STATUS SetOcspSingleResponseNextUpdate(OcspSingleResponse* single, const LibraryTime* time);

/** GetOcspSingleResponseExtensions *lends* the handle of the answer's extensions, as GetOcspRequestExtensions. */
TLVFORGE_STATUS GetOcspSingleResponseExtensions(OcspSingleResponse* single, X509Extensions* extensions);

/* --- Lists of basic responses, no message of the protocol: they go into revocation values (RFC 5126, 6.3.4) --- */

/** CreateOcspBasicResponses makes an empty list, *owned* by the caller (FreeOcspBasicResponses). */
TLVFORGE_STATUS CreateOcspBasicResponses(OcspBasicResponses** responses);

/**
 * CreateOcspBasicResponsesCopy makes a deep copy, *owned* by the caller. StatusUnsupportedKind for a list with an
 * answer good or unknown: only what has a value can be copied. StatusBadArgument also while a responder or a
 * certificate's status is missing.
 */
TLVFORGE_STATUS CreateOcspBasicResponsesCopy(const OcspBasicResponses* responses, OcspBasicResponses** copy);

/** DecodeOcspBasicResponses, EncodeOcspBasicResponses and FreeOcspBasicResponses are as those of a basic response. */
TLVFORGE_STATUS DecodeOcspBasicResponses(const uint8_t* bytes, uint32_t length, OcspBasicResponses** responses);
TLVFORGE_STATUS EncodeOcspBasicResponses(const OcspBasicResponses* responses, uint8_t* buffer, uint32_t* length);
TLVFORGE_API Status FreeOcspBasicResponses(OcspBasicResponses* responses);

/** AddResponseToOcspBasicResponses appends a basic response, which the list *adopts*. */
TLVFORGE_STATUS AddResponseToOcspBasicResponses(OcspBasicResponses* responses, OcspBasicResponse* response);

/** GetOcspBasicResponsesCount stores the number of basic responses in the list. */
TLVFORGE_STATUS GetOcspBasicResponsesCount(const OcspBasicResponses* responses, uint32_t* count);

/** GetOcspBasicResponsesResponse *lends* a member of the list. StatusAbsent for a null member. */
TLVFORGE_STATUS GetOcspBasicResponsesResponse(const OcspBasicResponses* responses, uint32_t index,
                                              OcspBasicResponse** response);

TLVFORGE_END

#endif
