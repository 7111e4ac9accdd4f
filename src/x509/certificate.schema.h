// Certificates (RFC 5280, 4.1): the items, and the records that lie over them.
#pragma once

#include "names/names.schema.h"
#include "tlvforge/certificate.h"
#include "x509/algorithm.h"
#include "x509/extension.schema.h"

namespace tlvforge {

struct Validity {
    Asn1Choice* notBefore;
    Asn1Choice* notAfter;
};

struct TBSCertificate {
    Asn1Value* version;  // 0, 1, 2 for versions 1, 2, 3
    Asn1Value* serialNumber;
    AlgorithmIdentifier* signature;
    Asn1Choice* issuer;  // of one alternative, an X509Name
    Validity* validity;
    Asn1Choice* subject;  // as issuer
    SubjectPublicKeyInfo* subjectPublicKeyInfo;
    Asn1BitString* issuerUniqueID;
    Asn1BitString* subjectUniqueID;
    X509ExtensionsCell extensions;
};

namespace schema {
// clang-format off

inline constexpr Asn1Item Validity = Sequence<
    Time,  // notBefore
    Time>; // notAfter

inline constexpr Asn1Item TBSCertificate = Sequence<
    Explicit<0, Default<Integer, kZero>>,    // version
    Integer,                                 // serialNumber
    AlgorithmIdentifier,                     // signature
    Name,                                    // issuer
    Validity,                                // validity
    Name,                                    // subject
    SubjectPublicKeyInfo,                    // subjectPublicKeyInfo
    Optional<Implicit<1, BitString>>,        // issuerUniqueID
    Optional<Implicit<2, BitString>>,        // subjectUniqueID
    Optional<Explicit<3, X509Extensions>>>;  // extensions

inline constexpr Asn1Item Certificate = Sequence<
    TBSCertificate,      // tbsCertificate
    AlgorithmIdentifier, // signatureAlgorithm
    BitString>;          // signature

inline constexpr Asn1Item Certificates = SequenceOf<Certificate>;

// clang-format on
}  // namespace schema
}  // namespace tlvforge

struct Certificate {
    tlvforge::TBSCertificate* tbsCertificate;
    AlgorithmIdentifier* signatureAlgorithm;
    Asn1BitString* signature;
};

struct Certificates : Asn1List {};  // of Certificate

namespace tlvforge {

static_assert(sizeof(Validity) == schema::Validity.valueSize);
static_assert(sizeof(TBSCertificate) == schema::TBSCertificate.valueSize);
static_assert(sizeof(::Certificate) == schema::Certificate.valueSize);

}  // namespace tlvforge
