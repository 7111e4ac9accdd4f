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
    Asn1List* requestList;  // of OcspCertRequest
    X509ExtensionsCell requestExtensions;
};

struct OcspSignature {
    AlgorithmIdentifier* signatureAlgorithm;
    Asn1BitString* signature;
    Asn1List* certs;  // of Certificate
};

struct OcspResponseBytes {
    Asn1Value* responseType;
    Asn1Value* response;
};

struct ResponseData {
    Asn1Value* version;
    Asn1Choice* responderID;
    Asn1Value* producedAt;
    Asn1List* responses;  // of OcspSingleResponse
    X509ExtensionsCell responseExtensions;
};

namespace schema {
// clang-format off

inline constexpr Asn1Item CertID = Sequence<
    AlgorithmIdentifier, // hashAlgorithm
    OctetString,         // issuerNameHash
    OctetString,         // issuerKeyHash
    Integer>;            // serialNumber

inline constexpr Asn1Item OcspCertRequest = Sequence<
    CertID,                                 // reqCert
    Optional<Explicit<0, X509Extensions>>>; // singleRequestExtensions

inline constexpr Asn1Item OcspCertRequests = SequenceOf<OcspCertRequest>;

inline constexpr Asn1Item TBSRequest = Sequence<
    Explicit<0, Default<Integer, kZero>>,    // version
    Optional<Explicit<1, X509GeneralName>>,  // requestorName
    OcspCertRequests,                        // requestList
    Optional<Explicit<2, X509Extensions>>>;  // requestExtensions

inline constexpr Asn1Item OcspSignature = Sequence<
    AlgorithmIdentifier,                  // signatureAlgorithm
    BitString,                            // signature
    Optional<Explicit<0, Certificates>>>; // certs

inline constexpr Asn1Item OcspRequest = Sequence<
    TBSRequest,                            // tbsRequest
    Optional<Explicit<0, OcspSignature>>>; // optionalSignature

inline constexpr Asn1Item OcspResponseBytes = Sequence<
    ObjectIdentifier, // responseType
    OctetString>;     // response

inline constexpr Asn1Item OcspResponse = Sequence<
    Enumerated,                                // responseStatus
    Optional<Explicit<0, OcspResponseBytes>>>; // responseBytes

inline constexpr Asn1Item OcspRevokedInfo = Sequence<
    GeneralizedTime,                    // revocationTime
    Optional<Explicit<0, Enumerated>>>; // revocationReason

inline constexpr Asn1Item OcspCertStatus = Choice<
    Implicit<0, Null>,            // good
    Implicit<1, OcspRevokedInfo>, // revoked
    Implicit<2, Null>>;           // unknown

inline constexpr Asn1Item OcspSingleResponse = Sequence<
    CertID,                                 // certID
    OcspCertStatus,                         // certStatus
    GeneralizedTime,                        // thisUpdate
    Optional<Explicit<0, GeneralizedTime>>, // nextUpdate
    Optional<Explicit<1, X509Extensions>>>; // singleExtensions

// A name is kept as it stands: what was signed with it stays what it was.
inline constexpr Asn1Item OcspResponderID = Choice<
    Explicit<1, Any>,          // byName
    Explicit<2, OctetString>>; // byKey

inline constexpr Asn1Item ResponseData = Sequence<
    Explicit<0, Default<Integer, kZero>>,   // version
    OcspResponderID,                        // responderID
    GeneralizedTime,                        // producedAt
    SequenceOf<OcspSingleResponse>,         // responses
    Optional<Explicit<1, X509Extensions>>>; // responseExtensions

inline constexpr Asn1Item OcspBasicResponse = Sequence<
    ResponseData,                         // tbsResponseData
    AlgorithmIdentifier,                  // signatureAlgorithm
    BitString,                            // signature
    Optional<Explicit<0, Certificates>>>; // certs

inline constexpr Asn1Item OcspBasicResponses = SequenceOf<OcspBasicResponse>;

// clang-format on
}  // namespace schema
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
    Asn1Choice* certStatus;  // the alternatives are good, revoked, unknown
    Asn1Value* thisUpdate;
    Asn1Value* nextUpdate;
    X509ExtensionsCell singleExtensions;
};

struct OcspBasicResponse {
    tlvforge::ResponseData* tbsResponseData;
    AlgorithmIdentifier* signatureAlgorithm;
    Asn1BitString* signature;
    Asn1List* certs;  // of Certificate
};

struct OcspBasicResponses : Asn1List {};  // of OcspBasicResponse

namespace tlvforge {

static_assert(sizeof(::OcspRevokedInfo) == schema::OcspRevokedInfo.valueSize);
static_assert(sizeof(CertID) == schema::CertID.valueSize);
static_assert(sizeof(OcspCertRequest) == schema::OcspCertRequest.valueSize);
static_assert(sizeof(TBSRequest) == schema::TBSRequest.valueSize);
static_assert(sizeof(OcspSignature) == schema::OcspSignature.valueSize);
static_assert(sizeof(::OcspRequest) == schema::OcspRequest.valueSize);
static_assert(sizeof(OcspResponseBytes) == schema::OcspResponseBytes.valueSize);
static_assert(sizeof(::OcspResponse) == schema::OcspResponse.valueSize);
static_assert(sizeof(::OcspSingleResponse) == schema::OcspSingleResponse.valueSize);
static_assert(sizeof(ResponseData) == schema::ResponseData.valueSize);
static_assert(sizeof(::OcspBasicResponse) == schema::OcspBasicResponse.valueSize);

}  // namespace tlvforge
