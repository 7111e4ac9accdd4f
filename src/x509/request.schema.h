// Certification requests (RFC 2986, 4): the items, and the records that lie over them.
#pragma once

#include "names/names.schema.h"
#include "tlvforge/request.h"
#include "x509/algorithm.schema.h"
#include "x509/attribute.schema.h"

namespace tlvforge {

struct CertificationRequestInfo {
    Asn1Value* version;
    Name* subject;
    SubjectPublicKeyInfo* subjectPKInfo;
    RsaAttributesCell attributes;
};

}  // namespace tlvforge

struct PKCS10CertReq {
    tlvforge::CertificationRequestInfo* certificationRequestInfo;
    AlgorithmIdentifier* signatureAlgorithm;
    Asn1BitString* signature;
};

namespace tlvforge::schema {
// clang-format off

template <> struct Schema<CertificationRequestInfo> : Record<
    Field<&CertificationRequestInfo::version, Integer>,
    Field<&CertificationRequestInfo::subject, Name>,
    Field<&CertificationRequestInfo::subjectPKInfo, SubjectPublicKeyInfo>,
    Field<&CertificationRequestInfo::attributes, Implicit<0, RsaAttributeList>>> {};  // may be empty, but not absent

template <> struct Schema<PKCS10CertReq> : Record<
    Field<&PKCS10CertReq::certificationRequestInfo, CertificationRequestInfo>,
    Field<&PKCS10CertReq::signatureAlgorithm, AlgorithmIdentifier>,
    Field<&PKCS10CertReq::signature, BitString>> {};
// clang-format on
}  // namespace tlvforge::schema
