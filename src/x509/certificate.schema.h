// Certificates (RFC 5280, 4.1): the items, and the records that lie over them.
#pragma once

#include "names/names.schema.h"
#include "tlvforge/certificate.h"
#include "x509/algorithm.schema.h"
#include "x509/extension.schema.h"

namespace tlvforge {

struct Validity {
    Time* notBefore;
    Time* notAfter;
};

struct TBSCertificate {
    Asn1Value* version;  // 0, 1, 2 for versions 1, 2, 3
    Asn1Value* serialNumber;
    AlgorithmIdentifier* signature;
    Name* issuer;
    Validity* validity;
    Name* subject;
    SubjectPublicKeyInfo* subjectPublicKeyInfo;
    Asn1BitString* issuerUniqueID;
    Asn1BitString* subjectUniqueID;
    X509ExtensionsCell extensions;
};

}  // namespace tlvforge

struct Certificate {
    tlvforge::TBSCertificate* tbsCertificate;
    AlgorithmIdentifier* signatureAlgorithm;
    Asn1BitString* signature;
};

struct Certificates : tlvforge::ListOf<Certificate> {};

namespace tlvforge::schema {
// clang-format off

template <> struct Schema<Validity> : Record<
    Field<&Validity::notBefore, Time>,
    Field<&Validity::notAfter, Time>> {};

template <> struct Schema<TBSCertificate> : Record<
    Field<&TBSCertificate::version, Explicit<0, Default<Integer, kZero>>>,
    Field<&TBSCertificate::serialNumber, Integer>,
    Field<&TBSCertificate::signature, AlgorithmIdentifier>,
    Field<&TBSCertificate::issuer, Name>,
    Field<&TBSCertificate::validity, Validity>,
    Field<&TBSCertificate::subject, Name>,
    Field<&TBSCertificate::subjectPublicKeyInfo, SubjectPublicKeyInfo>,
    Field<&TBSCertificate::issuerUniqueID, Optional<Implicit<1, BitString>>>,
    Field<&TBSCertificate::subjectUniqueID, Optional<Implicit<2, BitString>>>,
    Field<&TBSCertificate::extensions, Optional<Explicit<3, X509ExtensionList>>>> {};

template <> struct Schema<Certificate> : Record<
    Field<&Certificate::tbsCertificate, TBSCertificate>,
    Field<&Certificate::signatureAlgorithm, AlgorithmIdentifier>,
    Field<&Certificate::signature, BitString>> {};

template <> struct Schema<Certificates> : SequenceOf<Certificate> {};
// clang-format on
}  // namespace tlvforge::schema
