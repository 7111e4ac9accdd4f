// The standard extensions (RFC 5280, 4.2 and 5.2; RFC 6960): their items, and the records that lie over them.
#pragma once

#include "engine/items.h"
#include "names/names.schema.h"
#include "tlvforge/extensions.h"

struct ExtensionCrlDistributionPoints : Asn1List {};       // of DistributionPoint
struct ExtensionExtendedKeyUsage : Asn1List {};            // of Asn1Value
struct ExtensionAuthorityInformationAccess : Asn1List {};  // of AccessDescription
struct ExtensionCertificatePolicies : Asn1List {};         // of PolicyInformation

namespace tlvforge {

struct AuthorityKeyIdentifier {
    Asn1Value* keyIdentifier;
    X509GeneralNames* authorityCertIssuer;
    Asn1Value* authorityCertSerialNumber;
};

struct BasicConstraints {
    Asn1Value* cA;
    Asn1Value* pathLenConstraint;
};

struct DistributionPoint {
    Asn1Choice* distributionPoint;  // DistributionPointName
    Asn1BitString* reasons;
    X509GeneralNames* cRLIssuer;
};

struct IssuingDistributionPoint {
    Asn1Choice* distributionPoint;  // DistributionPointName
    Asn1Value* onlyContainsUserCerts;
    Asn1Value* onlyContainsCACerts;
    Asn1BitString* onlySomeReasons;
    Asn1Value* indirectCRL;
    Asn1Value* onlyContainsAttributeCerts;
};

struct PolicyQualifierInfo {
    Asn1Value* policyQualifierId;
    Asn1Any* qualifier;
};

struct PolicyInformation {
    Asn1Value* policyIdentifier;
    Asn1List* policyQualifiers;  // of PolicyQualifierInfo, and of the policy itself
};

struct AccessDescription {
    Asn1Value* accessMethod;
    X509GeneralName* accessLocation;
};

namespace schema {
// clang-format off

inline constexpr Asn1Item AuthorityKeyIdentifier = Sequence<
    Optional<Implicit<0, OctetString>>,      // keyIdentifier
    Optional<Implicit<1, X509GeneralNames>>, // authorityCertIssuer
    Optional<Implicit<2, Integer>>>;         // authorityCertSerialNumber

inline constexpr Asn1Item BasicConstraints = Sequence<
    Default<Boolean, kFalse>, // cA
    Optional<Integer>>;       // pathLenConstraint

inline constexpr Asn1Item PrivateKeyUsagePeriod = Sequence<
    Optional<Implicit<0, GeneralizedTime>>,  // notBefore
    Optional<Implicit<1, GeneralizedTime>>>; // notAfter

// The second alternative is a whole name, not the single RDN of RFC 5280, and as a CHOICE it goes out without its
// tag: it can be written but not read back. That is the format.
inline constexpr Asn1Item DistributionPointName = Choice<
    Implicit<0, X509GeneralNames>, // fullName
    Implicit<1, Name>>;            // nameRelativeToCRLIssuer

inline constexpr Asn1Item DistributionPoint = Sequence<
    Optional<Explicit<0, DistributionPointName>>, // distributionPoint
    Optional<Implicit<1, BitString>>,             // reasons
    Optional<Implicit<2, X509GeneralNames>>>;     // cRLIssuer

inline constexpr Asn1Item CRLDistributionPoints = SequenceOf<DistributionPoint>;

// onlySomeReasons has the number of onlyContainsUserCerts, where RFC 5280 has 3. The bytes depend on it.
inline constexpr Asn1Item IssuingDistributionPoint = Sequence<
    Optional<Explicit<0, DistributionPointName>>, // distributionPoint
    Default<Implicit<1, Boolean>, kFalse>,        // onlyContainsUserCerts
    Default<Implicit<2, Boolean>, kFalse>,        // onlyContainsCACerts
    Optional<Implicit<1, BitString>>,             // onlySomeReasons
    Default<Implicit<4, Boolean>, kFalse>,        // indirectCRL
    Default<Implicit<5, Boolean>, kFalse>>;       // onlyContainsAttributeCerts

inline constexpr Asn1Item PolicyQualifierInfo = Sequence<
    ObjectIdentifier, // policyQualifierId
    Any>;             // qualifier

inline constexpr Asn1Item PolicyInformation = Sequence<
    ObjectIdentifier,                            // policyIdentifier
    Optional<SequenceOf<PolicyQualifierInfo>>>;  // policyQualifiers

inline constexpr Asn1Item CertificatePolicies = SequenceOf<PolicyInformation>;

inline constexpr Asn1Item ExtendedKeyUsage = SequenceOf<ObjectIdentifier>;

inline constexpr Asn1Item AccessDescription = Sequence<
    ObjectIdentifier, // accessMethod
    X509GeneralName>; // accessLocation

inline constexpr Asn1Item AuthorityInformationAccess = SequenceOf<AccessDescription>;

// clang-format on
}  // namespace schema

static_assert(sizeof(AuthorityKeyIdentifier) == schema::AuthorityKeyIdentifier.valueSize);
static_assert(sizeof(BasicConstraints) == schema::BasicConstraints.valueSize);
static_assert(sizeof(DistributionPoint) == schema::DistributionPoint.valueSize);
static_assert(sizeof(IssuingDistributionPoint) == schema::IssuingDistributionPoint.valueSize);
static_assert(sizeof(PolicyQualifierInfo) == schema::PolicyQualifierInfo.valueSize);
static_assert(sizeof(PolicyInformation) == schema::PolicyInformation.valueSize);
static_assert(sizeof(AccessDescription) == schema::AccessDescription.valueSize);

}  // namespace tlvforge
