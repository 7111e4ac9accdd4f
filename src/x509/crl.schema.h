// Certificate revocation lists (RFC 5280, 5.1): the items, and the records that lie over them.
#pragma once

#include "names/names.schema.h"
#include "tlvforge/crl.h"
#include "x509/algorithm.schema.h"
#include "x509/extension.schema.h"

namespace tlvforge {

struct X509RevokedCertificate {
    Asn1Value* userCertificate;  // the serial number
    Time* revocationDate;
    X509ExtensionsCell crlEntryExtensions;
};

}  // namespace tlvforge

struct X509RevokedCertificates : tlvforge::ListOf<tlvforge::X509RevokedCertificate> {};

namespace tlvforge {

struct TBSCertList {
    Asn1Value* version;  // absent or 0 for version 1, 1 for version 2
    AlgorithmIdentifier* signature;
    Name* issuer;
    Time* thisUpdate;
    Time* nextUpdate;
    X509RevokedCertificates* revokedCertificates;
    X509ExtensionsCell crlExtensions;
};

}  // namespace tlvforge

struct X509Crl {
    tlvforge::TBSCertList* tbsCertList;
    AlgorithmIdentifier* signatureAlgorithm;
    Asn1BitString* signature;
};

struct X509Crls : tlvforge::ListOf<X509Crl> {};

namespace tlvforge::schema {
// clang-format off

template <> struct Schema<X509RevokedCertificate> : Record<
    Field<&X509RevokedCertificate::userCertificate, Integer>,
    Field<&X509RevokedCertificate::revocationDate, Time>,
    Field<&X509RevokedCertificate::crlEntryExtensions, Optional<X509ExtensionList>>> {};

template <> struct Schema<X509RevokedCertificates> : SequenceOf<X509RevokedCertificate> {};

template <> struct Schema<TBSCertList> : Record<
    Field<&TBSCertList::version, Optional<Integer>>,  // without a default, so that a written 0 stays
    Field<&TBSCertList::signature, AlgorithmIdentifier>,
    Field<&TBSCertList::issuer, Name>,
    Field<&TBSCertList::thisUpdate, Time>,
    Field<&TBSCertList::nextUpdate, Optional<Time>>,
    Field<&TBSCertList::revokedCertificates, Optional<X509RevokedCertificates>>,
    Field<&TBSCertList::crlExtensions, Optional<Explicit<0, X509ExtensionList>>>> {};

template <> struct Schema<X509Crl> : Record<
    Field<&X509Crl::tbsCertList, TBSCertList>,
    Field<&X509Crl::signatureAlgorithm, AlgorithmIdentifier>,
    Field<&X509Crl::signature, BitString>> {};

template <> struct Schema<X509Crls> : SequenceOf<X509Crl> {};
// clang-format on
}  // namespace tlvforge::schema
