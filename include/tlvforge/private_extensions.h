/*
 * Values of extensions that no RFC defines: the sign tools of Russian qualified certificates, and a private set that
 * certification centres exchange with their clients in certificates and in OCSP requests and responses.
 *
 * As the codecs of extensions.h they work on the value alone, the content of extnValue. Which object identifiers the
 * private ones go with, and what their codes mean, is agreed between the caller and its peers. Texts are bytes of
 * UTF-8, with a length and without a terminating zero. Codes are ENUMERATEDs of 32 bits; one of more than four bytes is
 * StatusBufferTooSmall, which no buffer helps against, and one without content StatusAbsent.
 */
#ifndef TLVFORGE_PRIVATE_EXTENSIONS_H
#define TLVFORGE_PRIVATE_EXTENSIONS_H

#include "tlvforge/names.h"
#include "tlvforge/status.h"
#include "tlvforge/time.h"

TLVFORGE_BEGIN

/* Lists, each owned by the caller and freed with its own Free function. */
typedef struct ExtensionStoreCertificates ExtensionStoreCertificates;                 /* certificates with a type */
typedef struct ExtensionStorePrivateKeyContexts ExtensionStorePrivateKeyContexts;     /* key contexts with a type */
typedef struct ExtensionStoreOcspRequestDocuments ExtensionStoreOcspRequestDocuments; /* requests with a type */
typedef struct ExtensionOcspCheckFileExtResults ExtensionOcspCheckFileExtResults;     /* results of a file check */

/* ---- Simple values ---- */

/**
 * DecodeExtensionSubjectSignTool and EncodeExtensionSubjectSignTool: a UTF8String, 1.2.643.100.111 in qualified
 * certificates. The pairs after it are the same two functions.
 */
TLVFORGE_STATUS DecodeExtensionSubjectSignTool(const uint8_t* data, uint32_t length, uint8_t* text,
                                               uint32_t* textLength);
TLVFORGE_STATUS EncodeExtensionSubjectSignTool(const uint8_t* text, uint32_t textLength, uint8_t* buffer,
                                               uint32_t* length);
TLVFORGE_STATUS DecodeExtensionZelcryptKeyIdentifier(const uint8_t* data, uint32_t length, uint8_t* text,
                                                     uint32_t* textLength);
TLVFORGE_STATUS EncodeExtensionZelcryptKeyIdentifier(const uint8_t* text, uint32_t textLength, uint8_t* buffer,
                                                     uint32_t* length);
TLVFORGE_STATUS DecodeExtensionSnils(const uint8_t* data, uint32_t length, uint8_t* text, uint32_t* textLength);
TLVFORGE_STATUS EncodeExtensionSnils(const uint8_t* text, uint32_t textLength, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS DecodeExtensionOrganizationCode(const uint8_t* data, uint32_t length, uint8_t* text,
                                                uint32_t* textLength);
TLVFORGE_STATUS EncodeExtensionOrganizationCode(const uint8_t* text, uint32_t textLength, uint8_t* buffer,
                                                uint32_t* length);
TLVFORGE_STATUS DecodeExtensionClockNumber(const uint8_t* data, uint32_t length, uint8_t* text, uint32_t* textLength);
TLVFORGE_STATUS EncodeExtensionClockNumber(const uint8_t* text, uint32_t textLength, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS DecodeExtensionVpnKeyTlsSerialNumber(const uint8_t* data, uint32_t length, uint8_t* text,
                                                     uint32_t* textLength);
TLVFORGE_STATUS EncodeExtensionVpnKeyTlsSerialNumber(const uint8_t* text, uint32_t textLength, uint8_t* buffer,
                                                     uint32_t* length);
TLVFORGE_STATUS DecodeExtensionOcspRequestGuid(const uint8_t* data, uint32_t length, uint8_t* text,
                                               uint32_t* textLength);
TLVFORGE_STATUS EncodeExtensionOcspRequestGuid(const uint8_t* text, uint32_t textLength, uint8_t* buffer,
                                               uint32_t* length);
TLVFORGE_STATUS DecodeExtensionOcspRequestPerson(const uint8_t* data, uint32_t length, uint8_t* text,
                                                 uint32_t* textLength);
TLVFORGE_STATUS EncodeExtensionOcspRequestPerson(const uint8_t* text, uint32_t textLength, uint8_t* buffer,
                                                 uint32_t* length);
TLVFORGE_STATUS DecodeExtensionOcspRequestBsnProdCode(const uint8_t* data, uint32_t length, uint8_t* text,
                                                      uint32_t* textLength);
TLVFORGE_STATUS EncodeExtensionOcspRequestBsnProdCode(const uint8_t* text, uint32_t textLength, uint8_t* buffer,
                                                      uint32_t* length);

/** DecodeExtensionRelatedOsbKod and its encoder: a PrintableString, whose characters aren't checked. */
TLVFORGE_STATUS DecodeExtensionRelatedOsbKod(const uint8_t* data, uint32_t length, uint8_t* text, uint32_t* textLength);
TLVFORGE_STATUS EncodeExtensionRelatedOsbKod(const uint8_t* text, uint32_t textLength, uint8_t* buffer,
                                             uint32_t* length);

/** DecodeExtensionOwnerInformation: a Name; the caller *owns* it (FreeX509Name). Its encoder is the reverse. */
TLVFORGE_STATUS DecodeExtensionOwnerInformation(const uint8_t* data, uint32_t length, X509Name** out);
TLVFORGE_STATUS EncodeExtensionOwnerInformation(const X509Name* name, uint8_t* buffer, uint32_t* length);

/**
 * DecodeExtensionParentAS and its encoder: a length-prefixed OBJECT IDENTIFIER. Decoding: StatusBadArgument also for
 * length 0.
 */
TLVFORGE_STATUS DecodeExtensionParentAS(const uint8_t* data, uint32_t length, uint8_t* oid, uint32_t* oidLength);
TLVFORGE_STATUS EncodeExtensionParentAS(const uint8_t* oid, uint8_t* buffer, uint32_t* length);

/**
 * DecodeExtensionOcspCheckTime and its encoder: a GeneralizedTime. time is filled by the decoder.
 * Decoding: StatusBadValue a text below 15 characters, StatusBadTime a date out of range. Encoding: StatusOutOfMemory,
 * not StatusBadTime, for a time that can't be written, the null time among them.
 */
TLVFORGE_STATUS DecodeExtensionOcspCheckTime(const uint8_t* data, uint32_t length, LibraryTime* time);
TLVFORGE_STATUS EncodeExtensionOcspCheckTime(const LibraryTime* time, uint8_t* buffer, uint32_t* length);

/**
 * DecodeExtensionOcspRequestCertificates and its encoder: a code. Decoding: StatusBadArgument also for length 0. The
 * names for private key contexts are the same functions.
 */
TLVFORGE_STATUS DecodeExtensionOcspRequestCertificates(const uint8_t* data, uint32_t length, int32_t* value);
TLVFORGE_STATUS EncodeExtensionOcspRequestCertificates(uint32_t value, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS DecodeExtensionOcspRequestPrivateKeyContexts(const uint8_t* data, uint32_t length, int32_t* value);
TLVFORGE_STATUS EncodeExtensionOcspRequestPrivateKeyContexts(uint32_t value, uint8_t* buffer, uint32_t* length);

/**
 * DecodeExtensionOcspRequestDocuments and its encoder: an INTEGER, unlike its two neighbours. Decoding:
 * StatusBadArgument also for length 0, StatusBufferTooSmall above four bytes.
 */
TLVFORGE_STATUS DecodeExtensionOcspRequestDocuments(const uint8_t* data, uint32_t length, int32_t* value);
TLVFORGE_STATUS EncodeExtensionOcspRequestDocuments(uint32_t value, uint8_t* buffer, uint32_t* length);

/**
 * DecodeExtensionRequestBlockingDate: two optional times. One that is absent leaves the caller's record as it was, so
 * that a fresh record of CreateLibraryTime stays the null time. Statuses as DecodeExtensionOcspCheckTime.
 */
TLVFORGE_STATUS DecodeExtensionRequestBlockingDate(const uint8_t* data, uint32_t length, LibraryTime* from,
                                                   LibraryTime* to);

/**
 * EncodeExtensionRequestBlockingDate: a null pointer leaves its field out; a time that can't be written is
 * StatusOutOfMemory.
 */
TLVFORGE_STATUS EncodeExtensionRequestBlockingDate(const LibraryTime* from, const LibraryTime* to, uint8_t* buffer,
                                                   uint32_t* length);

/* ---- Several fields ---- */

/**
 * DecodeExtensionIssuerSignTool: four texts, 1.2.643.100.112 in qualified certificates. All four are attempted, and the
 * last failure is the result. signTool, cATool and cAToolCert may be null to ask for a size; signToolCert may not
 * (StatusBadArgument). A null signToolCertLength is StatusBadArgument as well, but only after the other three have been
 * delivered. StatusBadArgument also for length 0.
 */
TLVFORGE_STATUS DecodeExtensionIssuerSignTool(const uint8_t* data, uint32_t length, uint8_t* signTool,
                                              uint32_t* signToolLength, uint8_t* cATool, uint32_t* cAToolLength,
                                              uint8_t* signToolCert, uint32_t* signToolCertLength, uint8_t* cAToolCert,
                                              uint32_t* cAToolCertLength);

/** EncodeExtensionIssuerSignTool writes the four texts, each of which is required and may have the length 0. */
TLVFORGE_STATUS EncodeExtensionIssuerSignTool(const uint8_t* signTool, uint32_t signToolLength, const uint8_t* cATool,
                                              uint32_t cAToolLength, const uint8_t* signToolCert,
                                              uint32_t signToolCertLength, const uint8_t* cAToolCert,
                                              uint32_t cAToolCertLength, uint8_t* buffer, uint32_t* length);

/**
 * DecodeExtensionKeyStorage: a code with an optional text, whose length is 0 when it is absent. Without a code that can
 * be read the text isn't delivered. The names with ExtendedResult are the same functions.
 */
TLVFORGE_STATUS DecodeExtensionKeyStorage(const uint8_t* data, uint32_t length, int32_t* code, uint8_t* text,
                                          uint32_t* textLength);
TLVFORGE_STATUS DecodeExtensionExtendedResult(const uint8_t* data, uint32_t length, int32_t* code, uint8_t* text,
                                              uint32_t* textLength);

/** EncodeExtensionKeyStorage and its other name: text may be null, and is left out then and with textLength 0. */
TLVFORGE_STATUS EncodeExtensionKeyStorage(uint32_t code, const uint8_t* text, uint32_t textLength, uint8_t* buffer,
                                          uint32_t* length);
TLVFORGE_STATUS EncodeExtensionExtendedResult(uint32_t code, const uint8_t* text, uint32_t textLength, uint8_t* buffer,
                                              uint32_t* length);

/**
 * DecodeExtensionOcspCheckTime2: a code with an optional time, in a SEQUENCE whose first octet is B0. A failure to read
 * the code, StatusBadArgument for a null pointer among them, is the result only when there is no time. An absent time
 * leaves the record as it was. Statuses as DecodeExtensionOcspCheckTime.
 */
TLVFORGE_STATUS DecodeExtensionOcspCheckTime2(const uint8_t* data, uint32_t length, int32_t* code, LibraryTime* time);

/**
 * EncodeExtensionOcspCheckTime2: time may be null and is left out then; one that can't be written is StatusOutOfMemory.
 */
TLVFORGE_STATUS EncodeExtensionOcspCheckTime2(uint32_t code, const LibraryTime* time, uint8_t* buffer,
                                              uint32_t* length);

/**
 * DecodeExtensionOcspCheckKeyMeshRegistry: two texts and an optional code, in this order. StatusBadArgument also for
 * length 0.
 * @param hasCode 1 or 0; code is stored only with 1. The first failure ends the call, and the outputs after it aren't
 *     touched.
 */
TLVFORGE_STATUS DecodeExtensionOcspCheckKeyMeshRegistry(const uint8_t* data, uint32_t length, uint8_t* firstName,
                                                        uint32_t* firstNameLength, uint8_t* secondName,
                                                        uint32_t* secondNameLength, uint32_t* hasCode, int32_t* code);

/** EncodeExtensionOcspCheckKeyMeshRegistry: code is written when hasCode isn't 0. */
TLVFORGE_STATUS EncodeExtensionOcspCheckKeyMeshRegistry(const uint8_t* firstName, uint32_t firstNameLength,
                                                        const uint8_t* secondName, uint32_t secondNameLength,
                                                        int32_t hasCode, uint32_t code, uint8_t* buffer,
                                                        uint32_t* length);

/**
 * DecodeExtensionOcspCheckFile: the data of a file, two more strings of bytes, a code, two texts and a code, in this
 * order. All but fileData are optional: an absent one has the length 0, or the flag 0 and no code. A buffer that is too
 * small doesn't keep the outputs after it from being filled, so that one call is enough for all sizes; the result is
 * StatusBufferTooSmall then. Any other failure, that of a code among them, ends the call.
 * @param hasFileCode2, fileCode2 may be null.
 */
TLVFORGE_STATUS DecodeExtensionOcspCheckFile(const uint8_t* data, uint32_t length, uint8_t* fileData,
                                             uint32_t* fileDataLength, uint8_t* fileExtra1, uint32_t* fileExtra1Length,
                                             uint8_t* fileExtra2, uint32_t* fileExtra2Length, uint32_t* hasFileCode,
                                             uint32_t* fileCode, uint8_t* fileText1, uint32_t* fileText1Length,
                                             uint8_t* fileText2, uint32_t* fileText2Length, uint32_t* hasFileCode2,
                                             int32_t* fileCode2);

/**
 * EncodeExtensionOcspCheckFile: fileData is required. The other bytes and texts are written when their pointer isn't
 * null, also with the length 0, and the codes when their flag isn't 0. fileText1, fileText2 and fileCode2 have the tags
 * 03, 04 and 05.
 */
TLVFORGE_STATUS EncodeExtensionOcspCheckFile(const uint8_t* fileData, uint32_t fileDataLength,
                                             const uint8_t* fileExtra1, uint32_t fileExtra1Length,
                                             const uint8_t* fileExtra2, uint32_t fileExtra2Length, int32_t hasFileCode,
                                             uint32_t fileCode, const uint8_t* fileText1, uint32_t fileText1Length,
                                             const uint8_t* fileText2, uint32_t fileText2Length, int32_t hasFileCode2,
                                             uint32_t fileCode2, uint8_t* buffer, uint32_t* length);

/* ---- Stores: lists of documents ---- */

/**
 * Three kinds of list with the same members: a type, which is a code, and bytes that the library doesn't look into, a
 * whole certificate, private key context or request document. CreateExtensionStoreCertificates makes an empty list; the
 * caller *owns* it (FreeExtensionStoreCertificates).
 */
TLVFORGE_STATUS CreateExtensionStoreCertificates(ExtensionStoreCertificates** out);
/** DecodeExtensionStoreCertificates reads a list; the caller *owns* it. EncodeExtensionStoreCertificates writes one. */
TLVFORGE_STATUS DecodeExtensionStoreCertificates(const uint8_t* data, uint32_t length,
                                                 ExtensionStoreCertificates** out);
TLVFORGE_STATUS EncodeExtensionStoreCertificates(const ExtensionStoreCertificates* list, uint8_t* buffer,
                                                 uint32_t* length);
/** FreeExtensionStoreCertificates frees the list with its members. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeExtensionStoreCertificates(ExtensionStoreCertificates* list);
/** AddExtensionStoreCertificates appends a copy of the bytes. data may not be null, dataLength may be 0. */
TLVFORGE_STATUS AddExtensionStoreCertificates(ExtensionStoreCertificates* list, uint32_t type, const uint8_t* data,
                                              uint32_t dataLength);
/** GetExtensionStoreCertificates copies a member; the type also when the buffer for the bytes is too small. */
TLVFORGE_STATUS GetExtensionStoreCertificates(const ExtensionStoreCertificates* list, uint32_t index, int32_t* type,
                                              uint8_t* data, uint32_t* dataLength);
/** GetExtensionStoreCertificatesCount stores the number of members; RemoveExtensionStoreCertificates frees one. */
TLVFORGE_STATUS GetExtensionStoreCertificatesCount(const ExtensionStoreCertificates* list, uint32_t* count);
TLVFORGE_STATUS RemoveExtensionStoreCertificates(ExtensionStoreCertificates* list, uint32_t index);

/** CreateExtensionStorePrivateKeyContexts and its family: as CreateExtensionStoreCertificates and its family. */
TLVFORGE_STATUS CreateExtensionStorePrivateKeyContexts(ExtensionStorePrivateKeyContexts** out);
TLVFORGE_STATUS DecodeExtensionStorePrivateKeyContexts(const uint8_t* data, uint32_t length,
                                                       ExtensionStorePrivateKeyContexts** out);
TLVFORGE_STATUS EncodeExtensionStorePrivateKeyContexts(const ExtensionStorePrivateKeyContexts* list, uint8_t* buffer,
                                                       uint32_t* length);
TLVFORGE_API Status FreeExtensionStorePrivateKeyContexts(ExtensionStorePrivateKeyContexts* list);
TLVFORGE_STATUS AddExtensionStorePrivateKeyContexts(ExtensionStorePrivateKeyContexts* list, uint32_t type,
                                                    const uint8_t* data, uint32_t dataLength);
TLVFORGE_STATUS GetExtensionStorePrivateKeyContexts(const ExtensionStorePrivateKeyContexts* list, uint32_t index,
                                                    int32_t* type, uint8_t* data, uint32_t* dataLength);
TLVFORGE_STATUS GetExtensionStorePrivateKeyContextsCount(const ExtensionStorePrivateKeyContexts* list, uint32_t* count);
TLVFORGE_STATUS RemoveExtensionStorePrivateKeyContexts(ExtensionStorePrivateKeyContexts* list, uint32_t index);

/** CreateExtensionStoreOcspRequestDocuments and its family: as CreateExtensionStoreCertificates and its family. */
TLVFORGE_STATUS CreateExtensionStoreOcspRequestDocuments(ExtensionStoreOcspRequestDocuments** out);
TLVFORGE_STATUS DecodeExtensionStoreOcspRequestDocuments(const uint8_t* data, uint32_t length,
                                                         ExtensionStoreOcspRequestDocuments** out);
TLVFORGE_STATUS EncodeExtensionStoreOcspRequestDocuments(const ExtensionStoreOcspRequestDocuments* list,
                                                         uint8_t* buffer, uint32_t* length);
TLVFORGE_API Status FreeExtensionStoreOcspRequestDocuments(ExtensionStoreOcspRequestDocuments* list);
TLVFORGE_STATUS AddExtensionStoreOcspRequestDocuments(ExtensionStoreOcspRequestDocuments* list, uint32_t type,
                                                      const uint8_t* data, uint32_t dataLength);
TLVFORGE_STATUS GetExtensionStoreOcspRequestDocuments(const ExtensionStoreOcspRequestDocuments* list, uint32_t index,
                                                      int32_t* type, uint8_t* data, uint32_t* dataLength);
TLVFORGE_STATUS GetExtensionStoreOcspRequestDocumentsCount(const ExtensionStoreOcspRequestDocuments* list,
                                                           uint32_t* count);
TLVFORGE_STATUS RemoveExtensionStoreOcspRequestDocuments(ExtensionStoreOcspRequestDocuments* list, uint32_t index);

/* ---- Extended results of a file check ---- */

/** CreateExtensionOcspCheckFileExtResults makes an empty list, owned by the caller. */
TLVFORGE_STATUS CreateExtensionOcspCheckFileExtResults(ExtensionOcspCheckFileExtResults** out);
/** DecodeExtensionOcspCheckFileExtResults: the caller *owns* the list. */
TLVFORGE_STATUS DecodeExtensionOcspCheckFileExtResults(const uint8_t* data, uint32_t length,
                                                       ExtensionOcspCheckFileExtResults** out);
/** EncodeExtensionOcspCheckFileExtResults writes the list. StatusAbsent for a result without certificates. */
TLVFORGE_STATUS EncodeExtensionOcspCheckFileExtResults(const ExtensionOcspCheckFileExtResults* list, uint8_t* buffer,
                                                       uint32_t* length);
/** FreeExtensionOcspCheckFileExtResults frees the list with all that it adopted. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeExtensionOcspCheckFileExtResults(ExtensionOcspCheckFileExtResults* list);

/**
 * AddExtensionOcspCheckFileExtResults appends a result and *adopts* certificates and names, which stay the caller's
 * after a failure; only if the list can't grow (StatusOutOfMemory) they are freed, together with all members of the
 * list.
 * @param time null and the null time leave the field out; one that can't be written is StatusOutOfMemory. names may be
 *     null. certificates may be null, but then the list can't be encoded: pass an empty list for none.
 */
TLVFORGE_STATUS AddExtensionOcspCheckFileExtResults(ExtensionOcspCheckFileExtResults* list, uint32_t code,
                                                    const uint8_t* text, uint32_t textLength, uint32_t status,
                                                    const LibraryTime* time, ExtensionStoreCertificates* certificates,
                                                    X509GeneralNames* names);

/**
 * GetExtensionOcspCheckFileExtResults reads a result in the order of the outputs; the first failure ends the call.
 * @param time may be null; the null time when it is absent; StatusBadEncoding, StatusBadValue and StatusBadTime for a
 *     malformed one.
 * @param certificates, names *lends*, null where absent. names may be null.
 */
TLVFORGE_STATUS GetExtensionOcspCheckFileExtResults(const ExtensionOcspCheckFileExtResults* list, uint32_t index,
                                                    int32_t* code, uint8_t* text, uint32_t* textLength, int32_t* status,
                                                    LibraryTime* time, ExtensionStoreCertificates** certificates,
                                                    X509GeneralNames** names);

/** GetExtensionOcspCheckFileExtResultsCount stores the number of results; the Remove function frees one. */
TLVFORGE_STATUS GetExtensionOcspCheckFileExtResultsCount(const ExtensionOcspCheckFileExtResults* list, uint32_t* count);
TLVFORGE_STATUS RemoveExtensionOcspCheckFileExtResults(ExtensionOcspCheckFileExtResults* list, uint32_t index);

TLVFORGE_END

#endif
