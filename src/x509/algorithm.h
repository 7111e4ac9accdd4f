// AlgorithmIdentifier and SubjectPublicKeyInfo (RFC 5280, 4.1.1.2 and 4.1.2.7) with the helpers that every document
// uses on such a field, and the GOST parameters (RFC 4491, RFC 9215).
#pragma once

#include "engine/items.h"
#include "engine/nodes.h"
#include "tlvforge/algorithms.h"

struct AlgorithmIdentifier {
    Asn1Value* algorithm;
    Asn1Any* parameters;
};

struct SubjectPublicKeyInfo {
    AlgorithmIdentifier* algorithm;
    Asn1BitString* subjectPublicKey;
};

namespace tlvforge {

struct GostParameters {
    Asn1Value* publicKeyParamSet;
    Asn1Value* digestParamSet;
    Asn1Value* encryptionParamSet;
};

namespace schema {
// clang-format off

inline constexpr Asn1Item AlgorithmIdentifier = Sequence<
    ObjectIdentifier, // algorithm
    Optional<Any>>;   // parameters

inline constexpr Asn1Item SubjectPublicKeyInfo = Sequence<
    AlgorithmIdentifier, // algorithm
    BitString>;          // subjectPublicKey

// 1.2.643.2.2.31.1 and 1.2.643.7.1.2.5.1.1
inline constexpr const Asn1Value& kGost2001EncryptionSet =
    ConstantValue<Asn1KindObjectIdentifier, 0x2A, 0x85, 0x03, 0x02, 0x02, 0x1F, 0x01>;
inline constexpr const Asn1Value& kGost2012EncryptionSet =
    ConstantValue<Asn1KindObjectIdentifier, 0x2A, 0x85, 0x03, 0x07, 0x01, 0x02, 0x05, 0x01, 0x01>;

inline constexpr Asn1Item GostR34102001Parameters = Sequence<
    ObjectIdentifier,                                   // publicKeyParamSet
    ObjectIdentifier,                                   // digestParamSet
    Default<ObjectIdentifier, kGost2001EncryptionSet>>; // encryptionParamSet

inline constexpr Asn1Item GostR34102012Parameters = Sequence<
    ObjectIdentifier,                                   // publicKeyParamSet
    ObjectIdentifier,                                   // digestParamSet
    Default<ObjectIdentifier, kGost2012EncryptionSet>>; // encryptionParamSet

// clang-format on
}  // namespace schema

static_assert(sizeof(::AlgorithmIdentifier) == schema::AlgorithmIdentifier.valueSize);
static_assert(sizeof(::SubjectPublicKeyInfo) == schema::SubjectPublicKeyInfo.valueSize);
static_assert(sizeof(GostParameters) == schema::GostR34102001Parameters.valueSize);
static_assert(sizeof(GostParameters) == schema::GostR34102012Parameters.valueSize);

// A null length gives 0 when the buffer is null too, so that a caller can skip the output, otherwise 32.
Status GetAlgorithmIdentifierOid(const AlgorithmIdentifier* record, uint8_t* oid, uint32_t* length);
// Absent parameters give a length of 0.
Status GetAlgorithmIdentifierParameters(const AlgorithmIdentifier* record, uint8_t* parameters, uint32_t* length);
// Both outputs, whatever happens to the first: 49 if either status is 49 or above, else the first that isn't 0.
Status GetAlgorithmIdentifierOidAndParameters(const AlgorithmIdentifier* record, uint8_t* oid, uint32_t* oidLength,
                                              uint8_t* parameters, uint32_t* parametersLength);
Status SetAlgorithmIdentifierOid(AlgorithmIdentifier* record, const uint8_t* oid);
// An unknown id gives 309 and leaves the OID absent.
Status SetAlgorithmIdentifierById(AlgorithmIdentifier* record, uint32_t id);
// Null or length 0 leaves no parameters; otherwise a whole element is copied.
Status SetAlgorithmIdentifierParameters(AlgorithmIdentifier* record, const uint8_t* parameters, uint32_t length);
Status SetAlgorithmIdentifierOidAndParameters(AlgorithmIdentifier* record, const uint8_t* oid,
                                              const uint8_t* parameters, uint32_t length);
Status SetAlgorithmIdentifierIdAndParameters(AlgorithmIdentifier* record, uint32_t id, const uint8_t* parameters,
                                             uint32_t length);

}  // namespace tlvforge
