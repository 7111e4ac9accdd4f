/*
 * Certification requests, PKCS #10 (RFC 2986): read, change, build. Nothing is signed or verified here: a caller fills
 * the fields, takes the bytes of GetPKCS10CertReqToBeSignedPart, signs them elsewhere and stores the result with
 * SetPKCS10CertReqSignature.
 *
 * The extensions that a certificate is asked to have are in an attribute of the request.
 */
#ifndef TLVFORGE_REQUEST_H
#define TLVFORGE_REQUEST_H

#include "tlvforge/attributes.h"
#include "tlvforge/extensions.h"
#include "tlvforge/names.h"
#include "tlvforge/status.h"

TLVFORGE_BEGIN

typedef struct PKCS10CertReq PKCS10CertReq; /* CertificationRequest (RFC 2986, 4.2) */

/* --- The object --- */

/**
 * CreatePKCS10CertReq makes a request with every field in place and empty. The caller owns it. It does not encode
 * before the subject has been set or read (StatusAbsent).
 */
TLVFORGE_STATUS CreatePKCS10CertReq(PKCS10CertReq** request);

/**
 * CreatePKCS10CertReqCopy makes a deep copy, owned by the caller. The copy writes its attributes in DER order, also
 * where the source was decoded from another one. StatusBadArgument also while the subject has never been set or read.
 */
TLVFORGE_STATUS CreatePKCS10CertReqCopy(const PKCS10CertReq* request, PKCS10CertReq** copy);

/**
 * DecodePKCS10CertReq reads one BER request at the start of the bytes; what follows it is ignored. The caller owns it.
 * Its attributes keep the order of the bytes when they are encoded, so that the signed bytes stay what they were.
 * StatusBadEncoding also for a request without the field of the attributes, which has to be there even when it is
 * empty.
 */
TLVFORGE_STATUS DecodePKCS10CertReq(const uint8_t* bytes, uint32_t length, PKCS10CertReq** request);

/** EncodePKCS10CertReq writes the request as DER. StatusAbsent while a field has no value. */
TLVFORGE_STATUS EncodePKCS10CertReq(const PKCS10CertReq* request, uint8_t* buffer, uint32_t* length);

/** FreePKCS10CertReq frees a request with all that it owns. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreePKCS10CertReq(PKCS10CertReq* request);

/** GetPKCS10CertReqToBeSignedPart encodes certificationRequestInfo, the bytes that the holder of the key signs. */
TLVFORGE_STATUS GetPKCS10CertReqToBeSignedPart(const PKCS10CertReq* request, uint8_t* buffer, uint32_t* length);

/* --- Fields --- */

/**
 * GetPKCS10CertReqVersion and SetPKCS10CertReqVersion: the number on the wire, 0 for version 1, the only one defined.
 * Getting: StatusAbsent while there is none, StatusBufferTooSmall for a number of more than four bytes. Setting:
 * StatusBadArgument for a negative one; there is no upper limit.
 */
TLVFORGE_STATUS GetPKCS10CertReqVersion(const PKCS10CertReq* request, int32_t* version);
TLVFORGE_STATUS SetPKCS10CertReqVersion(PKCS10CertReq* request, int32_t version);

/**
 * GetPKCS10CertReqSubject lends the name inside the request: what is added to it is added to the request. A name that
 * was never set is created empty. SetPKCS10CertReqSubject stores a copy of a name, which may be the request's own;
 * after a failed copy the field is empty.
 */
TLVFORGE_STATUS GetPKCS10CertReqSubject(PKCS10CertReq* request, X509Name** name);
TLVFORGE_STATUS SetPKCS10CertReqSubject(PKCS10CertReq* request, const X509Name* name);

/**
 * GetPKCS10CertReqAttributes lends the handle of the request's attributes, for the functions of attributes.h. It lives
 * as long as the request and must never go to FreeRsaAttributes. StatusAbsent after RemoveRsaAttributes; an add through
 * a handle that was lent before makes the set again.
 */
TLVFORGE_STATUS GetPKCS10CertReqAttributes(const PKCS10CertReq* request, RsaAttributes* attributes);

/**
 * SetPKCS10CertReqAttributes replaces all attributes by a copy of the source's, which may be the request's own. From
 * then on they are written in DER order. StatusAbsent as GetPKCS10CertReqAttributes. After a failed copy, and for a
 * source without a set (StatusBadArgument), the request has no attributes and does not encode (StatusAbsent).
 */
TLVFORGE_STATUS SetPKCS10CertReqAttributes(PKCS10CertReq* request, RsaAttributes source);

/**
 * GetPKCS10CertReqExtensions decodes the requested extensions: the first value of attribute 1.2.840.113549.1.9.14
 * (extensionRequest, RFC 2985), or else of Microsoft's 1.3.6.1.4.1.311.2.1.14. The caller owns the copy
 * (FreeX509Extensions). StatusNotFound with neither attribute, StatusBadArgument for one without a value,
 * StatusBadEncoding.
 */
TLVFORGE_STATUS GetPKCS10CertReqExtensions(const PKCS10CertReq* request, X509Extensions* extensions);

/**
 * SetPKCS10CertReqExtensions replaces all attributes 1.2.840.113549.1.9.14 by one with a copy of the source's
 * extensions. Microsoft's attribute is left alone; the reader prefers the new one. StatusBufferTooSmall for extensions
 * that encode to more than 1024 bytes, as intended (docs/oddities.md), and StatusBadArgument for a null source
 * and for an empty cell; the request is unchanged then. StatusAbsent, before these, for a request without attributes.
 */
TLVFORGE_STATUS SetPKCS10CertReqExtensions(PKCS10CertReq* request, X509Extensions source);

/* --- Public key. Algorithm ids and parameter sets are those of algorithms.h --- */

/**
 * GetPKCS10CertReqPublicKey copies the content of the key's BIT STRING, and SetPKCS10CertReqPublicKey stores it
 * unchanged. Getting: StatusAbsent while there is none.
 */
TLVFORGE_STATUS GetPKCS10CertReqPublicKey(const PKCS10CertReq* request, uint8_t* key, uint32_t* length);
TLVFORGE_STATUS SetPKCS10CertReqPublicKey(PKCS10CertReq* request, const uint8_t* key, uint32_t length);

/**
 * GetPKCS10CertReqPublicKeyGostR3410 unwraps the OCTET STRING of a GOST key (RFC 4491, RFC 9215) without a look at its
 * algorithm. StatusBadEncoding for another key, and for a request without a key; StatusWorkBufferTooSmall for a wrapped
 * key of more than 270 bytes.
 */
TLVFORGE_STATUS GetPKCS10CertReqPublicKeyGostR3410(const PKCS10CertReq* request, uint8_t* key, uint32_t* length);

/**
 * SetPKCS10CertReqGostR34102001PublicKey wraps a GOST key as an OCTET STRING and stores it. The 2012 function is the
 * same one. StatusWorkBufferTooSmall for a key that is longer than 256 bytes when wrapped.
 * @param key in the byte order of the wire.
 */
TLVFORGE_STATUS SetPKCS10CertReqGostR34102001PublicKey(PKCS10CertReq* request, const uint8_t* key, uint32_t length);
TLVFORGE_STATUS SetPKCS10CertReqGostR34102012PublicKey(PKCS10CertReq* request, const uint8_t* key, uint32_t length);

/**
 * GetPKCS10CertReqPublicKeyAlgorithmOidAndParameters reads the algorithm of the key. One call is enough for both
 * lengths. StatusBufferTooSmall when either buffer is too small.
 * @param parameters may be null together with its length.
 */
TLVFORGE_STATUS GetPKCS10CertReqPublicKeyAlgorithmOidAndParameters(const PKCS10CertReq* request, uint8_t* oid,
                                                                   uint32_t* oidLength, uint8_t* parameters,
                                                                   uint32_t* parametersLength);

/** SetPKCS10CertReqPublicKeyAlgorithmOidAndParameters sets the algorithm of the key. */
TLVFORGE_STATUS SetPKCS10CertReqPublicKeyAlgorithmOidAndParameters(PKCS10CertReq* request, const uint8_t* oid,
                                                                   const uint8_t* parameters, uint32_t length);

/**
 * SetPKCS10CertReqGostR34102001PublicKeyAlgorithmIdAndParameters sets the algorithm of the key with GOST parameters.
 * StatusUnknownId for an unknown number, StatusBadArgument for another form.
 */
TLVFORGE_STATUS SetPKCS10CertReqGostR34102001PublicKeyAlgorithmIdAndParameters(
    PKCS10CertReq* request, uint32_t algorithmId, uint8_t parametersForm, uint32_t publicKeyParamSet,
    uint32_t digestParamSet, uint32_t encryptionParamSet);

/* --- Signature --- */

/**
 * GetPKCS10CertReqSignature copies the content of the signature's BIT STRING; SetPKCS10CertReqSignature stores it
 * unchanged. Getting: StatusAbsent while there is none.
 */
TLVFORGE_STATUS GetPKCS10CertReqSignature(const PKCS10CertReq* request, uint8_t* signature, uint32_t* length);
TLVFORGE_STATUS SetPKCS10CertReqSignature(PKCS10CertReq* request, const uint8_t* signature, uint32_t length);

/**
 * GetPKCS10CertReqSignatureAlgorithmOidAndParameters and the two setters after it are as the functions for the
 * algorithm of the key. A request names the algorithm of its signature once, outside of the signed part.
 */
TLVFORGE_STATUS GetPKCS10CertReqSignatureAlgorithmOidAndParameters(const PKCS10CertReq* request, uint8_t* oid,
                                                                   uint32_t* oidLength, uint8_t* parameters,
                                                                   uint32_t* parametersLength);
TLVFORGE_STATUS SetPKCS10CertReqSignatureAlgorithmOidAndParameters(PKCS10CertReq* request, const uint8_t* oid,
                                                                   const uint8_t* parameters, uint32_t length);
TLVFORGE_STATUS SetPKCS10CertReqGostR34102001SignatureAlgorithmIdAndParameters(
    PKCS10CertReq* request, uint32_t algorithmId, uint8_t parametersForm, uint32_t publicKeyParamSet,
    uint32_t digestParamSet, uint32_t encryptionParamSet);

/**
 * SetPKCS10CertReqGostR34102001SignatureAlgorithmID has no parameter sets and takes the parametersForm 0 or 255 only
 * (StatusBadArgument). Only the low byte of the form counts.
 */
TLVFORGE_STATUS SetPKCS10CertReqGostR34102001SignatureAlgorithmID(PKCS10CertReq* request, uint32_t algorithmId,
                                                                  uint32_t parametersForm);

TLVFORGE_END

#endif
