// The standard extensions (RFC 5280, 4.2 and 5.2; RFC 6960): their items, and the records that lie over them.
#pragma once

#include "engine/items.h"
#include "names/names.schema.h"
#include "tlvforge/extensions.h"

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

// Of privateKeyUsagePeriod: notBefore and notAfter; and of a private extension, its from and to.
struct TimePair {
    Asn1Value* first;
    Asn1Value* second;
};

struct DistributionPointName : Asn1Choice {};

struct DistributionPoint {
    DistributionPointName* distributionPoint;
    Asn1BitString* reasons;
    X509GeneralNames* cRLIssuer;
};

struct IssuingDistributionPoint {
    DistributionPointName* distributionPoint;
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
    ListOf<PolicyQualifierInfo>* policyQualifiers;  // and the policy itself: AddExtensionPolicyQualifier
};

struct AccessDescription {
    Asn1Value* accessMethod;
    X509GeneralName* accessLocation;
};

}  // namespace tlvforge

struct ExtensionCrlDistributionPoints : tlvforge::ListOf<tlvforge::DistributionPoint> {};
struct ExtensionExtendedKeyUsage : tlvforge::ListOf<Asn1Value> {};
struct ExtensionAuthorityInformationAccess : tlvforge::ListOf<tlvforge::AccessDescription> {};
struct ExtensionCertificatePolicies : tlvforge::ListOf<tlvforge::PolicyInformation> {};

namespace tlvforge::schema {
// clang-format off

template <> struct Schema<AuthorityKeyIdentifier> : Record<
    Field<&AuthorityKeyIdentifier::keyIdentifier, Optional<Implicit<0, OctetString>>>,
    Field<&AuthorityKeyIdentifier::authorityCertIssuer, Optional<Implicit<1, X509GeneralNames>>>,
    Field<&AuthorityKeyIdentifier::authorityCertSerialNumber, Optional<Implicit<2, Integer>>>> {};

template <> struct Schema<BasicConstraints> : Record<
    Field<&BasicConstraints::cA, Default<Boolean, kFalse>>,
    Field<&BasicConstraints::pathLenConstraint, Optional<Integer>>> {};

template <> struct Schema<TimePair> : Record<
    Field<&TimePair::first, Optional<Implicit<0, GeneralizedTime>>>,
    Field<&TimePair::second, Optional<Implicit<1, GeneralizedTime>>>> {};

// The second alternative is a whole name, not the single RDN of RFC 5280, and as a CHOICE it is encoded without its
// tag: it can be written but not read back. See docs/oddities.md.
template <> struct Schema<DistributionPointName> : Choice<
    Implicit<0, X509GeneralNames>, // fullName
    Implicit<1, Name>> {};  // nameRelativeToCRLIssuer

template <> struct Schema<DistributionPoint> : Record<
    Field<&DistributionPoint::distributionPoint, Optional<Explicit<0, DistributionPointName>>>,
    Field<&DistributionPoint::reasons, Optional<Implicit<1, BitString>>>,
    Field<&DistributionPoint::cRLIssuer, Optional<Implicit<2, X509GeneralNames>>>> {};

template <> struct Schema<ExtensionCrlDistributionPoints> : SequenceOf<DistributionPoint> {};

// onlySomeReasons has the number of onlyContainsUserCerts, where RFC 5280 has 3. The bytes depend on it.
template <> struct Schema<IssuingDistributionPoint> : Record<
    Field<&IssuingDistributionPoint::distributionPoint, Optional<Explicit<0, DistributionPointName>>>,
    Field<&IssuingDistributionPoint::onlyContainsUserCerts, Default<Implicit<1, Boolean>, kFalse>>,
    Field<&IssuingDistributionPoint::onlyContainsCACerts, Default<Implicit<2, Boolean>, kFalse>>,
    Field<&IssuingDistributionPoint::onlySomeReasons, Optional<Implicit<1, BitString>>>,
    Field<&IssuingDistributionPoint::indirectCRL, Default<Implicit<4, Boolean>, kFalse>>,
    Field<&IssuingDistributionPoint::onlyContainsAttributeCerts, Default<Implicit<5, Boolean>, kFalse>>> {};

template <> struct Schema<PolicyQualifierInfo> : Record<
    Field<&PolicyQualifierInfo::policyQualifierId, ObjectIdentifier>,
    Field<&PolicyQualifierInfo::qualifier, Any>> {};

template <> struct Schema<PolicyInformation> : Record<
    Field<&PolicyInformation::policyIdentifier, ObjectIdentifier>,
    Field<&PolicyInformation::policyQualifiers, Optional<SequenceOf<PolicyQualifierInfo>>>> {};

template <> struct Schema<ExtensionCertificatePolicies> : SequenceOf<PolicyInformation> {};

template <> struct Schema<ExtensionExtendedKeyUsage> : SequenceOf<ObjectIdentifier> {};

template <> struct Schema<AccessDescription> : Record<
    Field<&AccessDescription::accessMethod, ObjectIdentifier>,
    Field<&AccessDescription::accessLocation, X509GeneralName>> {};

template <> struct Schema<ExtensionAuthorityInformationAccess> : SequenceOf<AccessDescription> {};
// clang-format on
}  // namespace tlvforge::schema
