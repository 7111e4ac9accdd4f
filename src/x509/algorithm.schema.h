// AlgorithmIdentifier and SubjectPublicKeyInfo (RFC 5280, 4.1.1.2 and 4.1.2.7), and the parameters of GOST keys (RFC
// 4491, RFC 9215): the items, and the records that lie over them.
#pragma once

#include "engine/items.h"
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

// 1.2.643.2.2.31.1 and 1.2.643.7.1.2.5.1.1
inline constexpr const Asn1Value& kGost2001EncryptionSet =
    schema::ConstantValue<Asn1KindObjectIdentifier, 0x2A, 0x85, 0x03, 0x02, 0x02, 0x1F, 0x01>;
inline constexpr const Asn1Value& kGost2012EncryptionSet =
    schema::ConstantValue<Asn1KindObjectIdentifier, 0x2A, 0x85, 0x03, 0x07, 0x01, 0x02, 0x05, 0x01, 0x01>;

// The parameters of GOST keys, of the generation that has this default.
template <const Asn1Value& EncryptionSet>
struct GostParameters {
    Asn1Value* publicKeyParamSet;
    Asn1Value* digestParamSet;
    Asn1Value* encryptionParamSet;
};

namespace schema {
// clang-format off

template <> struct Schema<AlgorithmIdentifier> : Record<
    Field<&AlgorithmIdentifier::algorithm, ObjectIdentifier>,
    Field<&AlgorithmIdentifier::parameters, Optional<Any>>> {};

template <> struct Schema<SubjectPublicKeyInfo> : Record<
    Field<&SubjectPublicKeyInfo::algorithm, AlgorithmIdentifier>,
    Field<&SubjectPublicKeyInfo::subjectPublicKey, BitString>> {};

template <const Asn1Value& EncryptionSet>
struct Schema<GostParameters<EncryptionSet>> : Record<
    Field<&GostParameters<EncryptionSet>::publicKeyParamSet, ObjectIdentifier>,
    Field<&GostParameters<EncryptionSet>::digestParamSet, ObjectIdentifier>,
    Field<&GostParameters<EncryptionSet>::encryptionParamSet, Default<ObjectIdentifier, EncryptionSet>>> {};
// clang-format on
}  // namespace schema

using GostR34102001Parameters = GostParameters<kGost2001EncryptionSet>;
using GostR34102012Parameters = GostParameters<kGost2012EncryptionSet>;

}  // namespace tlvforge
