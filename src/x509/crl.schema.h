// Certificate revocation lists (RFC 5280, 5.1): the items, and the records that lie over them.
#pragma once

#include "names/names.schema.h"
#include "tlvforge/crl.h"
#include "x509/algorithm.h"
#include "x509/extension.schema.h"

struct X509RevokedCertificates : Asn1List {};  // of X509RevokedCertificate

namespace tlvforge {

struct X509RevokedCertificate {
    Asn1Value* userCertificate;  // the serial number
    Asn1Choice* revocationDate;
    X509ExtensionsCell crlEntryExtensions;
};

struct TBSCertList {
    Asn1Value* version;  // absent or 0 for version 1, 1 for version 2
    AlgorithmIdentifier* signature;
    Asn1Choice* issuer;  // of one alternative, an X509Name
    Asn1Choice* thisUpdate;
    Asn1Choice* nextUpdate;
    X509RevokedCertificates* revokedCertificates;
    X509ExtensionsCell crlExtensions;
};

namespace schema {
// clang-format off

inline constexpr Asn1Item X509RevokedCertificate = Sequence<
    Integer,                    // userCertificate
    Time,                       // revocationDate
    Optional<X509Extensions>>;  // crlEntryExtensions

inline constexpr Asn1Item X509RevokedCertificates = SequenceOf<X509RevokedCertificate>;

inline constexpr Asn1Item TBSCertList = Sequence<
    Optional<Integer>,                       // version; without a default, so that a written 0 stays
    AlgorithmIdentifier,                     // signature
    Name,                                    // issuer
    Time,                                    // thisUpdate
    Optional<Time>,                          // nextUpdate
    Optional<X509RevokedCertificates>,       // revokedCertificates
    Optional<Explicit<0, X509Extensions>>>;  // crlExtensions

inline constexpr Asn1Item X509Crl = Sequence<
    TBSCertList,         // tbsCertList
    AlgorithmIdentifier, // signatureAlgorithm
    BitString>;          // signature

inline constexpr Asn1Item X509Crls = SequenceOf<X509Crl>;

// clang-format on
}  // namespace schema
}  // namespace tlvforge

struct X509Crl {
    tlvforge::TBSCertList* tbsCertList;
    AlgorithmIdentifier* signatureAlgorithm;
    Asn1BitString* signature;
};

struct X509Crls : Asn1List {};  // of X509Crl

namespace tlvforge {

static_assert(sizeof(X509RevokedCertificate) == schema::X509RevokedCertificate.valueSize);
static_assert(sizeof(TBSCertList) == schema::TBSCertList.valueSize);
static_assert(sizeof(::X509Crl) == schema::X509Crl.valueSize);

}  // namespace tlvforge
