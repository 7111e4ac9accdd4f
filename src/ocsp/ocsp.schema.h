// OCSP requests and responses (RFC 6960, 4.1.1 and 4.2.1): the items, and the records that lie over them.
#pragma once

#include "names/names.schema.h"
#include "tlvforge/ocsp.h"
#include "x509/certificate.schema.h"

struct OcspRevokedInfo {
    Asn1Value* revocationTime;
    Asn1Value* revocationReason;
};

namespace tlvforge {

// Certificates are named by hashes of their issuer's name and key, and their number.
struct CertID {
    AlgorithmIdentifier* hashAlgorithm;
    Asn1Value* issuerNameHash;
    Asn1Value* issuerKeyHash;
    Asn1Value* serialNumber;
};

struct OcspCertRequest {
    CertID* reqCert;
    X509ExtensionsCell singleRequestExtensions;
};

struct TBSRequest {
    Asn1Value* version;
    X509GeneralName* requestorName;
    ListOf<OcspCertRequest>* requestList;
    X509ExtensionsCell requestExtensions;
};

struct OcspSignature {
    AlgorithmIdentifier* signatureAlgorithm;
    Asn1BitString* signature;
    Certificates* certs;
};

struct OcspResponseBytes {
    Asn1Value* responseType;
    Asn1Value* response;
};

struct OcspCertStatus : Asn1Choice {};   // good, revoked, unknown
struct OcspResponderID : Asn1Choice {};  // byName, byKey

struct ResponseData {
    Asn1Value* version;
    OcspResponderID* responderID;
    Asn1Value* producedAt;
    ListOf<OcspSingleResponse>* responses;
    X509ExtensionsCell responseExtensions;
};

}  // namespace tlvforge

struct OcspRequest {
    tlvforge::TBSRequest* tbsRequest;
    tlvforge::OcspSignature* optionalSignature;
};

struct OcspResponse {
    Asn1Value* responseStatus;
    tlvforge::OcspResponseBytes* responseBytes;
};

struct OcspSingleResponse {
    tlvforge::CertID* certID;
    tlvforge::OcspCertStatus* certStatus;
    Asn1Value* thisUpdate;
    Asn1Value* nextUpdate;
    X509ExtensionsCell singleExtensions;
};

struct OcspBasicResponse {
    tlvforge::ResponseData* tbsResponseData;
    AlgorithmIdentifier* signatureAlgorithm;
    Asn1BitString* signature;
    Certificates* certs;
};

struct OcspBasicResponses : tlvforge::ListOf<OcspBasicResponse> {};

namespace tlvforge::schema {
// clang-format off

template <> struct Schema<CertID> : Record<
    Field<&CertID::hashAlgorithm, AlgorithmIdentifier>,
    Field<&CertID::issuerNameHash, OctetString>,
    Field<&CertID::issuerKeyHash, OctetString>,
    Field<&CertID::serialNumber, Integer>> {};

template <> struct Schema<OcspCertRequest> : Record<
    Field<&OcspCertRequest::reqCert, CertID>,
    Field<&OcspCertRequest::singleRequestExtensions, Optional<Explicit<0, X509ExtensionList>>>> {};

template <> struct Schema<TBSRequest> : Record<
    Field<&TBSRequest::version, Explicit<0, Default<Integer, kZero>>>,
    Field<&TBSRequest::requestorName, Optional<Explicit<1, X509GeneralName>>>,
    Field<&TBSRequest::requestList, SequenceOf<OcspCertRequest>>,
    Field<&TBSRequest::requestExtensions, Optional<Explicit<2, X509ExtensionList>>>> {};

template <> struct Schema<OcspSignature> : Record<
    Field<&OcspSignature::signatureAlgorithm, AlgorithmIdentifier>,
    Field<&OcspSignature::signature, BitString>,
    Field<&OcspSignature::certs, Optional<Explicit<0, Certificates>>>> {};

template <> struct Schema<OcspRequest> : Record<
    Field<&OcspRequest::tbsRequest, TBSRequest>,
    Field<&OcspRequest::optionalSignature, Optional<Explicit<0, OcspSignature>>>> {};

template <> struct Schema<OcspResponseBytes> : Record<
    Field<&OcspResponseBytes::responseType, ObjectIdentifier>,
    Field<&OcspResponseBytes::response, OctetString>> {};

template <> struct Schema<OcspResponse> : Record<
    Field<&OcspResponse::responseStatus, Enumerated>,
    Field<&OcspResponse::responseBytes, Optional<Explicit<0, OcspResponseBytes>>>> {};

template <> struct Schema<OcspRevokedInfo> : Record<
    Field<&OcspRevokedInfo::revocationTime, GeneralizedTime>,
    Field<&OcspRevokedInfo::revocationReason, Optional<Explicit<0, Enumerated>>>> {};

template <> struct Schema<OcspCertStatus> : Choice<
    Implicit<0, Null>,            // good
    Implicit<1, OcspRevokedInfo>, // revoked
    Implicit<2, Null>> {};  // unknown

template <> struct Schema<OcspSingleResponse> : Record<
    Field<&OcspSingleResponse::certID, CertID>,
    Field<&OcspSingleResponse::certStatus, OcspCertStatus>,
    Field<&OcspSingleResponse::thisUpdate, GeneralizedTime>,
    Field<&OcspSingleResponse::nextUpdate, Optional<Explicit<0, GeneralizedTime>>>,
    Field<&OcspSingleResponse::singleExtensions, Optional<Explicit<1, X509ExtensionList>>>> {};

// A name is kept as it stands: what was signed with it stays what it was.
template <> struct Schema<OcspResponderID> : Choice<
    Explicit<1, Any>,          // byName
    Explicit<2, OctetString>> {};  // byKey

template <> struct Schema<ResponseData> : Record<
    Field<&ResponseData::version, Explicit<0, Default<Integer, kZero>>>,
    Field<&ResponseData::responderID, OcspResponderID>,
    Field<&ResponseData::producedAt, GeneralizedTime>,
    Field<&ResponseData::responses, SequenceOf<OcspSingleResponse>>,
    Field<&ResponseData::responseExtensions, Optional<Explicit<1, X509ExtensionList>>>> {};

template <> struct Schema<OcspBasicResponse> : Record<
    Field<&OcspBasicResponse::tbsResponseData, ResponseData>,
    Field<&OcspBasicResponse::signatureAlgorithm, AlgorithmIdentifier>,
    Field<&OcspBasicResponse::signature, BitString>,
    Field<&OcspBasicResponse::certs, Optional<Explicit<0, Certificates>>>> {};

template <> struct Schema<OcspBasicResponses> : SequenceOf<OcspBasicResponse> {};
// clang-format on
}  // namespace tlvforge::schema
