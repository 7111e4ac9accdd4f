// Certification requests (RFC 2986, 4): the items, and the records that lie over them.
#pragma once

#include "names/names.schema.h"
#include "tlvforge/request.h"
#include "x509/algorithm.h"
#include "x509/attribute.schema.h"

namespace tlvforge {

struct CertificationRequestInfo {
    Asn1Value* version;
    Asn1Choice* subject;  // of one alternative, an X509Name
    SubjectPublicKeyInfo* subjectPKInfo;
    RsaAttributesCell attributes;
};

namespace schema {
// clang-format off

inline constexpr Asn1Item CertificationRequestInfo = Sequence<
    Integer,                     // version
    Name,                        // subject
    SubjectPublicKeyInfo,        // subjectPKInfo
    Implicit<0, RsaAttributes>>; // attributes; may be empty, but not absent

inline constexpr Asn1Item PKCS10CertReq = Sequence<
    CertificationRequestInfo, // certificationRequestInfo
    AlgorithmIdentifier,      // signatureAlgorithm
    BitString>;               // signature

// clang-format on
}  // namespace schema
}  // namespace tlvforge

struct PKCS10CertReq {
    tlvforge::CertificationRequestInfo* certificationRequestInfo;
    AlgorithmIdentifier* signatureAlgorithm;
    Asn1BitString* signature;
};

namespace tlvforge {

static_assert(sizeof(CertificationRequestInfo) == schema::CertificationRequestInfo.valueSize);
static_assert(sizeof(::PKCS10CertReq) == schema::PKCS10CertReq.valueSize);

}  // namespace tlvforge
