// What certificates, CRLs and requests do alike with single fields. A slot or record that the document lacks is handed
// in as null and gives 311. Failures are recorded at the place of the caller.
#pragma once

#include "engine/nodes.h"
#include "names/names.schema.h"
#include "x509/algorithm.h"
#include "x509/extension.schema.h"

namespace tlvforge {

// Names behind a CHOICE of one alternative. LendName creates an empty name where there is none.
Status LendName(Name* slot, X509Name** name, Place place = Place::Here());
// The name may be the slot's own. A failed copy leaves the slot empty.
Status CopyNameInto(Name* slot, const X509Name* name, Place place = Place::Here());
Status MoveNameInto(Name* slot, X509Name* name, Place place = Place::Here());

Status GetTimeField(const Time* slot, LibraryTime* time, Place place = Place::Here());
Status SetTimeField(Time* slot, const LibraryTime* time, Place place = Place::Here());

// A BIT STRING of a document: its bytes alone. Replacing frees the old one in any case.
Status GetBitStringField(const Asn1BitString* field, uint8_t* buffer, uint32_t* length, Place place = Place::Here());
Status ReplaceBitString(Asn1BitString** field, const uint8_t* bytes, uint32_t length, uint8_t unusedBits,
                        Place place = Place::Here());

// The key of a SubjectPublicKeyInfo; as a GOST key, an OCTET STRING within the BIT STRING.
Status GetPublicKey(const SubjectPublicKeyInfo* info, uint8_t* key, uint32_t* length, Place place = Place::Here());
Status SetPublicKey(SubjectPublicKeyInfo* info, const uint8_t* key, uint32_t length, Place place = Place::Here());
// An absent key is recorded as 311 and answered with 302, the status of decoding no bytes. That is intended.
Status GetGostPublicKey(const SubjectPublicKeyInfo* info, uint8_t* key, uint32_t* length, Place place = Place::Here());
Status SetGostPublicKey(SubjectPublicKeyInfo* info, const uint8_t* key, uint32_t length, Place place = Place::Here());

inline AlgorithmIdentifier* AlgorithmOf(const SubjectPublicKeyInfo* info) {
    return info == nullptr ? nullptr : info->algorithm;
}

// The algorithm of a document, by the rule of its getters and setters.
Status GetAlgorithm(const AlgorithmIdentifier* field, uint8_t* oid, uint32_t* oidLength, uint8_t* parameters,
                    uint32_t* parametersLength, Place place = Place::Here());
Status SetAlgorithm(AlgorithmIdentifier* field, const uint8_t* oid, const uint8_t* parameters, uint32_t length,
                    Place place = Place::Here());
Status SetGostAlgorithm(AlgorithmIdentifier* field, uint32_t algorithmId, uint8_t parametersForm,
                        uint32_t publicKeyParamSet, uint32_t digestParamSet, uint32_t encryptionParamSet,
                        Place place = Place::Here());

// Writes a signature algorithm into the signed part and then beside the signature, so that the two agree. If the second
// write fails, the first stays.
template <class Set>
Status SetSignatureAlgorithms(AlgorithmIdentifier* inner, AlgorithmIdentifier* outer, Set set,
                              Place place = Place::Here()) {
    if (AnyNull(inner, outer)) return Fail(StatusAbsent, place);
    const Status status = set(inner);
    return status != StatusOk ? status : set(outer);
}

// Removes the extensions with an OID, by RemoveX509ExtensionsExtension2, and adds a non-critical one.
Status ReplaceExtension(X509Extensions extensions, const uint8_t* oid, const uint8_t* value, uint32_t length);

// Extension 2.5.29.35 from its parts, each of which may be null; a null keyId needs both others (32). Null extensions
// stand for a document without content, and are noticed (311) only after the value has been made.
Status SetAuthorityKeyIdentifier(X509Extensions extensions, const uint8_t* keyId, uint32_t keyIdLength,
                                 const X509Name* issuer, const uint8_t* serial, uint32_t serialLength,
                                 Place place = Place::Here());

// The parts of an authority key identifier that an issuer's certificate gives.
struct AuthorityIdentity {
    const uint8_t* keyId = nullptr;  // the bytes below, or null: any failure to read one means none
    uint32_t keyIdLength = 32;
    X509Name* issuer = nullptr;  // of the certificate's issuer, lent
    uint32_t serialLength = 64;
    uint8_t keyIdBytes[32];
    uint8_t serial[64];

    Status ReadFrom(Certificate* issuerCertificate, Place place = Place::Here());
};

}  // namespace tlvforge
