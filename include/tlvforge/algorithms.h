/*
 * Algorithm identifiers (RFC 5280, 4.1.1.2): numbers for the algorithms and GOST parameter sets that the library knows,
 * the codecs of GOST public key parameters (RFC 4491, RFC 9215) and of public keys.
 *
 * No key is used here: keys are bytes that are wrapped and unwrapped, in the byte order of the wire and of any length.
 */
#ifndef TLVFORGE_ALGORITHMS_H
#define TLVFORGE_ALGORITHMS_H

#include "tlvforge/status.h"

TLVFORGE_BEGIN

/* AlgorithmIdentifier (RFC 5280, 4.1.1.2), a node of a document: an object identifier and optional parameters. */
typedef struct AlgorithmIdentifier AlgorithmIdentifier;

/* SubjectPublicKeyInfo (RFC 5280, 4.1), a node of a document: an algorithm and a key. */
typedef struct SubjectPublicKeyInfo SubjectPublicKeyInfo;

/* Numbers of algorithms. */
enum {
    AlgorithmRsaEncryption = 1,
    AlgorithmMd2WithRsa = 2,
    AlgorithmMd5WithRsa = 3,
    AlgorithmSha1WithRsa = 4,
    AlgorithmGostR341194WithGostR34102001 = 100, /* signature */
    AlgorithmGostR341194WithGostR341094 = 101,   /* signature */
    AlgorithmGostR34102001 = 102,                /* public key */
    AlgorithmGostR341094 = 103,                  /* public key */
    AlgorithmGost2814789 = 1000,                 /* encryption */
    AlgorithmGostR341194 = 2000,                 /* digest */
    AlgorithmGostR34102012Key256 = 3000,         /* public key */
    AlgorithmGostR34102012Key512 = 3001,         /* public key */
    AlgorithmGostR34102012Signature256 = 3002,
    AlgorithmGostR34102012Signature512 = 3003
};

/* Numbers of public key parameter sets. */
enum {
    PublicKeySet2001A = 1,
    PublicKeySet2001B = 2,
    PublicKeySet2001C = 3,
    PublicKeySet2001ExchangeA = 4,
    PublicKeySet2001ExchangeB = 5,
    PublicKeySet2001Test = 6,
    PublicKeySet256Test = 7,
    PublicKeySet512Test = 8,
    PublicKeySet256A = 9,
    PublicKeySet512A = 10,
    PublicKeySet512B = 11,
    PublicKeySet512C = 12
};

/* Numbers of digest parameter sets. */
enum { DigestSet94 = 1, DigestSet94Test = 2, DigestSet2012_256 = 3, DigestSet2012_512 = 4 };

/* Numbers of encryption parameter sets: 1 to 7 are 1.2.643.2.2.31.1 to 1.2.643.2.2.31.7. */
enum { EncryptionSet89 = 1, EncryptionSet89Test = 8, EncryptionSet2012 = 9 };

/* parametersForm: what the parameters of an algorithm identifier are. */
enum {
    ParametersFormNull = 0,    /* ASN.1 NULL, the bytes 05 00 */
    ParametersFormGost = 1,    /* the SEQUENCE of GOST parameter sets */
    ParametersFormAbsent = 255 /* nothing */
};

/* --- Numbers and object identifiers --- */

/** FindAlgIdByOid stores the number of an algorithm. StatusUnknownOid for an OID without one. */
TLVFORGE_STATUS FindAlgIdByOid(const uint8_t* oid, uint32_t* id);

/**
 * GetPublicKeyAlgorithmOid copies the OID of any numbered algorithm, not only of keys. StatusUnknownId for an unknown
 * number.
 */
TLVFORGE_STATUS GetPublicKeyAlgorithmOid(uint32_t id, uint8_t* oid, uint32_t* length);

/* --- Parameters of GOST algorithms (RFC 4491, RFC 9215) --- */

/**
 * DecodeAlgorithmGostR34102001Parameters reads GOST parameters, of keys of 2001 and 2012, as numbers of sets.
 * StatusBadEncoding for any other content, also for parameters without a digest set, which RFC 9215 allows;
 * StatusUnknownOid for a set without a number, with the sets before it stored.
 * @param bytes the whole element; null or length 0 for absent parameters.
 * @param parametersForm stored in all cases. The sets are stored for form 1 only, where they are required. A missing
 *     encryption set is always number 1.
 */
TLVFORGE_STATUS DecodeAlgorithmGostR34102001Parameters(const uint8_t* bytes, uint32_t length, uint8_t* parametersForm,
                                                       uint32_t* publicKeyParamSet, uint32_t* digestParamSet,
                                                       uint32_t* encryptionParamSet);

/**
 * EncodeAlgorithmGostR34102001Parameters writes GOST parameters from numbers of sets. parametersForm 0 and 255 ignore
 * the sets; 255 writes nothing, length 0. An encryption set of number 1 is the default and left out. StatusBadArgument
 * for another form, StatusUnknownId for a number without a set.
 */
TLVFORGE_STATUS EncodeAlgorithmGostR34102001Parameters(uint8_t parametersForm, uint32_t publicKeyParamSet,
                                                       uint32_t digestParamSet, uint32_t encryptionParamSet,
                                                       uint8_t* buffer, uint32_t* length);

/**
 * DecodeAlgorithmGostR3410ParameterOids reads GOST parameters as length-prefixed OIDs. The 2001 and 2012 functions are
 * this one with algorithmId 102 and 3000. All outputs are tried; the last failure is the result. StatusBadEncoding for
 * any other content, also for parameters without a digest set.
 * @param algorithmId 102, 3000 or 3001 (else StatusBadArgument); it decides the encryption OID that replaces a missing
 *     one: 1.2.643.2.2.31.1 for 102, otherwise 1.2.643.7.1.2.5.1.1.
 * @param bytes the whole element, or null. With parametersForm 0 and 255 the three lengths become 0.
 */
TLVFORGE_STATUS DecodeAlgorithmGostR3410ParameterOids(uint32_t algorithmId, const uint8_t* bytes, uint32_t length,
                                                      uint8_t* parametersForm, uint8_t* publicKeyOid,
                                                      uint32_t* publicKeyOidLength, uint8_t* digestOid,
                                                      uint32_t* digestOidLength, uint8_t* encryptionOid,
                                                      uint32_t* encryptionOidLength);
TLVFORGE_STATUS DecodeAlgorithmGostR34102001ParameterOids(const uint8_t* bytes, uint32_t length,
                                                          uint8_t* parametersForm, uint8_t* publicKeyOid,
                                                          uint32_t* publicKeyOidLength, uint8_t* digestOid,
                                                          uint32_t* digestOidLength, uint8_t* encryptionOid,
                                                          uint32_t* encryptionOidLength);
TLVFORGE_STATUS DecodeAlgorithmGostR34102012ParameterOids(const uint8_t* bytes, uint32_t length,
                                                          uint8_t* parametersForm, uint8_t* publicKeyOid,
                                                          uint32_t* publicKeyOidLength, uint8_t* digestOid,
                                                          uint32_t* digestOidLength, uint8_t* encryptionOid,
                                                          uint32_t* encryptionOidLength);

/**
 * EncodeAlgorithmGostR3410ParametersOid writes GOST parameters from length-prefixed OIDs. The 2001 and 2012 functions
 * are this one with algorithmId 102 and 3000. publicKeyOid and digestOid are required for form 1 only; encryptionOid
 * may be null, and is left out when it is the default of the algorithm. StatusBadArgument for an algorithmId other than
 * 102, 3000 and 3001, and for a form other than 0, 1 and 255.
 */
TLVFORGE_STATUS EncodeAlgorithmGostR3410ParametersOid(uint32_t algorithmId, uint8_t parametersForm,
                                                      const uint8_t* publicKeyOid, const uint8_t* digestOid,
                                                      const uint8_t* encryptionOid, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS EncodeAlgorithmGostR34102001ParametersOid(uint8_t parametersForm, const uint8_t* publicKeyOid,
                                                          const uint8_t* digestOid, const uint8_t* encryptionOid,
                                                          uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS EncodeAlgorithmGostR34102012ParametersOid(uint8_t parametersForm, const uint8_t* publicKeyOid,
                                                          const uint8_t* digestOid, const uint8_t* encryptionOid,
                                                          uint8_t* buffer, uint32_t* length);

/**
 * SetAlgorithmGostR34102001AndParameters sets an algorithm by its number, any one, and its parameters as
 * EncodeAlgorithmGostR34102001Parameters writes them; form 255 leaves none. StatusUnknownId for a set leaves the record
 * alone; StatusUnknownId for the algorithm leaves it without OID and with its old parameters.
 */
TLVFORGE_STATUS SetAlgorithmGostR34102001AndParameters(AlgorithmIdentifier* record, uint32_t algorithmId,
                                                       uint8_t parametersForm, uint32_t publicKeyParamSet,
                                                       uint32_t digestParamSet, uint32_t encryptionParamSet);

/* --- Public keys --- */

/**
 * EncodeGostR34102001PublicKey wraps a key of any length in the OCTET STRING that a BIT STRING of a certificate holds;
 * DecodePublicKeyGostR34102001 unwraps it. The 2012 functions are the same ones.
 */
TLVFORGE_STATUS EncodeGostR34102001PublicKey(const uint8_t* key, uint32_t keyLength, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS EncodeGostR34102012PublicKey(const uint8_t* key, uint32_t keyLength, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS DecodePublicKeyGostR34102001(const uint8_t* bytes, uint32_t length, uint8_t* key, uint32_t* keyLength);
TLVFORGE_STATUS DecodePublicKeyGostR34102012(const uint8_t* bytes, uint32_t length, uint8_t* key, uint32_t* keyLength);

/**
 * DecodeSubjectPublicKeyInfo reads a SubjectPublicKeyInfo element (RFC 5280, 4.1.2.7). StatusAbsent for an empty key.
 * @param key the bytes of the BIT STRING, without its unused-bits octet.
 * @param parameters the whole element, length 0 when absent. All outputs are tried; the status is that of the key, then
 *     of the parameters, then of the OID.
 */
TLVFORGE_STATUS DecodeSubjectPublicKeyInfo(const uint8_t* bytes, uint32_t length, uint8_t* oid, uint32_t* oidLength,
                                           uint8_t* key, uint32_t* keyLength, uint8_t* parameters,
                                           uint32_t* parametersLength);

/** GetSubjectPublicKeyInfoPublicKey copies the bytes of the key's BIT STRING. StatusAbsent for an empty one. */
TLVFORGE_STATUS GetSubjectPublicKeyInfoPublicKey(const SubjectPublicKeyInfo* info, uint8_t* key, uint32_t* length);

TLVFORGE_END

#endif
