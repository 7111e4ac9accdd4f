// Structures that the library has no functions for, or reads in another form than the standards have, in the terms of
// its schemas.
#pragma once

#include "cms/cms.schema.h"
#include "names/names.schema.h"
#include "x509/algorithm.schema.h"
#include "x509/attribute.schema.h"
#include "x509/standard_extensions.schema.h"

namespace inspect {

using tlvforge::ListOf;

// --- Keys (RFC 8017, A.1; RFC 5915; RFC 5958; RFC 7292) and the parameters of algorithms (RFC 3279, RFC 4055) ---

struct RsaPublicKey {
    Asn1Value *modulus, *publicExponent;
};

struct RsaPrivateKey {
    Asn1Value *version, *modulus, *publicExponent, *privateExponent, *prime1, *prime2, *exponent1, *exponent2,
        *coefficient;
};

struct EcPrivateKey {
    Asn1Value *version, *privateKey;
    Asn1Any* parameters;
    Asn1BitString* publicKey;
};

struct PrivateKeyInfo {
    Asn1Value* version;
    AlgorithmIdentifier* privateKeyAlgorithm;
    Asn1Value* privateKey;
    RsaAttributeList* attributes;
    Asn1BitString* publicKey;
};

struct EncryptedPrivateKeyInfo {
    AlgorithmIdentifier* encryptionAlgorithm;
    Asn1Value* encryptedData;
};

struct Pfx {
    Asn1Value* version;
    CmsContentInfo* authSafe;
    Asn1Any* macData;
};

struct DsaParameters {
    Asn1Value *p, *q, *g;
};

struct DhParameters {
    Asn1Value *p, *g, *privateValueLength;
};

// A curve by its name, or all that makes it up.
struct EcParameters : Asn1Choice {};

struct PssParameters {
    AlgorithmIdentifier *hashAlgorithm, *maskGenAlgorithm;
    Asn1Value *saltLength, *trailerField;
};

struct OaepParameters {
    AlgorithmIdentifier *hashAlgorithm, *maskGenAlgorithm, *pSourceAlgorithm;
};

// --- Extensions (RFC 5280, 4.2.1 and 5.2.5) ---

struct PolicyMapping {
    Asn1Value *issuerDomainPolicy, *subjectDomainPolicy;
};
struct PolicyMappings : ListOf<PolicyMapping> {};

struct PolicyConstraints {
    Asn1Value *requireExplicitPolicy, *inhibitPolicyMapping;
};

struct GeneralSubtree {
    X509GeneralName* base;
    Asn1Value *minimum, *maximum;
};

struct NameConstraints {
    ListOf<GeneralSubtree>*permittedSubtrees, *excludedSubtrees;
};

struct PointName : Asn1Choice {};

struct DistributionPoint {
    PointName* distributionPoint;
    Asn1BitString* reasons;
    X509GeneralNames* cRLIssuer;
};
struct DistributionPoints : ListOf<DistributionPoint> {};

struct IssuingDistributionPoint {
    PointName* distributionPoint;
    Asn1Value *onlyContainsUserCerts, *onlyContainsCACerts;
    Asn1BitString* onlySomeReasons;
    Asn1Value *indirectCRL, *onlyContainsAttributeCerts;
};

}  // namespace inspect

namespace tlvforge::schema {
// clang-format off

template <> struct Schema<inspect::RsaPublicKey> : Record<
    Field<&inspect::RsaPublicKey::modulus, Integer>,
    Field<&inspect::RsaPublicKey::publicExponent, Integer>> {};

template <> struct Schema<inspect::RsaPrivateKey> : Record<
    Field<&inspect::RsaPrivateKey::version, Integer>,
    Field<&inspect::RsaPrivateKey::modulus, Integer>,
    Field<&inspect::RsaPrivateKey::publicExponent, Integer>,
    Field<&inspect::RsaPrivateKey::privateExponent, Integer>,
    Field<&inspect::RsaPrivateKey::prime1, Integer>,
    Field<&inspect::RsaPrivateKey::prime2, Integer>,
    Field<&inspect::RsaPrivateKey::exponent1, Integer>,
    Field<&inspect::RsaPrivateKey::exponent2, Integer>,
    Field<&inspect::RsaPrivateKey::coefficient, Integer>> {};

template <> struct Schema<inspect::EcPrivateKey> : Record<
    Field<&inspect::EcPrivateKey::version, Integer>,
    Field<&inspect::EcPrivateKey::privateKey, OctetString>,
    Field<&inspect::EcPrivateKey::parameters, Optional<Explicit<0, Any>>>,
    Field<&inspect::EcPrivateKey::publicKey, Optional<Explicit<1, BitString>>>> {};

template <> struct Schema<inspect::PrivateKeyInfo> : Record<
    Field<&inspect::PrivateKeyInfo::version, Integer>,
    Field<&inspect::PrivateKeyInfo::privateKeyAlgorithm, AlgorithmIdentifier>,
    Field<&inspect::PrivateKeyInfo::privateKey, OctetString>,
    Field<&inspect::PrivateKeyInfo::attributes, Optional<Implicit<0, RsaAttributeList>>>,
    Field<&inspect::PrivateKeyInfo::publicKey, Optional<Implicit<1, BitString>>>> {};

template <> struct Schema<inspect::EncryptedPrivateKeyInfo> : Record<
    Field<&inspect::EncryptedPrivateKeyInfo::encryptionAlgorithm, AlgorithmIdentifier>,
    Field<&inspect::EncryptedPrivateKeyInfo::encryptedData, OctetString>> {};

template <> struct Schema<inspect::Pfx> : Record<
    Field<&inspect::Pfx::version, Integer>,
    Field<&inspect::Pfx::authSafe, CmsContentInfo>,
    Field<&inspect::Pfx::macData, Optional<Any>>> {};

template <> struct Schema<inspect::DsaParameters> : Record<
    Field<&inspect::DsaParameters::p, Integer>,
    Field<&inspect::DsaParameters::q, Integer>,
    Field<&inspect::DsaParameters::g, Integer>> {};

template <> struct Schema<inspect::DhParameters> : Record<
    Field<&inspect::DhParameters::p, Integer>,
    Field<&inspect::DhParameters::g, Integer>,
    Field<&inspect::DhParameters::privateValueLength, Optional<Integer>>> {};

template <> struct Schema<inspect::EcParameters> : Choice<ObjectIdentifier> {};

template <> struct Schema<inspect::PssParameters> : Record<
    Field<&inspect::PssParameters::hashAlgorithm, Optional<Explicit<0, AlgorithmIdentifier>>>,
    Field<&inspect::PssParameters::maskGenAlgorithm, Optional<Explicit<1, AlgorithmIdentifier>>>,
    Field<&inspect::PssParameters::saltLength, Optional<Explicit<2, Integer>>>,
    Field<&inspect::PssParameters::trailerField, Optional<Explicit<3, Integer>>>> {};

template <> struct Schema<inspect::OaepParameters> : Record<
    Field<&inspect::OaepParameters::hashAlgorithm, Optional<Explicit<0, AlgorithmIdentifier>>>,
    Field<&inspect::OaepParameters::maskGenAlgorithm, Optional<Explicit<1, AlgorithmIdentifier>>>,
    Field<&inspect::OaepParameters::pSourceAlgorithm, Optional<Explicit<2, AlgorithmIdentifier>>>> {};

template <> struct Schema<inspect::PolicyMapping> : Record<
    Field<&inspect::PolicyMapping::issuerDomainPolicy, ObjectIdentifier>,
    Field<&inspect::PolicyMapping::subjectDomainPolicy, ObjectIdentifier>> {};
template <> struct Schema<inspect::PolicyMappings> : SequenceOf<inspect::PolicyMapping> {};

template <> struct Schema<inspect::PolicyConstraints> : Record<
    Field<&inspect::PolicyConstraints::requireExplicitPolicy, Optional<Implicit<0, Integer>>>,
    Field<&inspect::PolicyConstraints::inhibitPolicyMapping, Optional<Implicit<1, Integer>>>> {};

template <> struct Schema<inspect::GeneralSubtree> : Record<
    Field<&inspect::GeneralSubtree::base, X509GeneralName>,
    Field<&inspect::GeneralSubtree::minimum, Optional<Implicit<0, Integer>>>,
    Field<&inspect::GeneralSubtree::maximum, Optional<Implicit<1, Integer>>>> {};

template <> struct Schema<inspect::NameConstraints> : Record<
    Field<&inspect::NameConstraints::permittedSubtrees, Optional<Implicit<0, SequenceOf<inspect::GeneralSubtree>>>>,
    Field<&inspect::NameConstraints::excludedSubtrees, Optional<Implicit<1, SequenceOf<inspect::GeneralSubtree>>>>> {};

template <> struct Schema<inspect::PointName> : Choice<
    Implicit<0, X509GeneralNames>,             // fullName
    Implicit<1, RelativeDistinguishedName>> {};  // nameRelativeToCRLIssuer

template <> struct Schema<inspect::DistributionPoint> : Record<
    Field<&inspect::DistributionPoint::distributionPoint, Optional<Explicit<0, inspect::PointName>>>,
    Field<&inspect::DistributionPoint::reasons, Optional<Implicit<1, BitString>>>,
    Field<&inspect::DistributionPoint::cRLIssuer, Optional<Implicit<2, X509GeneralNames>>>> {};
template <> struct Schema<inspect::DistributionPoints> : SequenceOf<inspect::DistributionPoint> {};

template <> struct Schema<inspect::IssuingDistributionPoint> : Record<
    Field<&inspect::IssuingDistributionPoint::distributionPoint, Optional<Explicit<0, inspect::PointName>>>,
    Field<&inspect::IssuingDistributionPoint::onlyContainsUserCerts, Optional<Implicit<1, Boolean>>>,
    Field<&inspect::IssuingDistributionPoint::onlyContainsCACerts, Optional<Implicit<2, Boolean>>>,
    Field<&inspect::IssuingDistributionPoint::onlySomeReasons, Optional<Implicit<3, BitString>>>,
    Field<&inspect::IssuingDistributionPoint::indirectCRL, Optional<Implicit<4, Boolean>>>,
    Field<&inspect::IssuingDistributionPoint::onlyContainsAttributeCerts, Optional<Implicit<5, Boolean>>>> {};

// clang-format on
}  // namespace tlvforge::schema
