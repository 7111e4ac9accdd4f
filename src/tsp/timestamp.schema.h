// Time-stamp requests, responses and TSTInfo (RFC 3161, 2.4): items, and the records that lie over them.
#pragma once

#include "cms/cms.schema.h"
#include "names/names.schema.h"
#include "x509/algorithm.h"
#include "x509/extension.schema.h"

namespace tlvforge {

struct MessageImprint {
    AlgorithmIdentifier* hashAlgorithm;
    Asn1Value* hashedMessage;
};

struct TimeStampReq {
    Asn1Value* version;
    MessageImprint* messageImprint;
    Asn1Value* reqPolicy;
    Asn1Value* nonce;
    Asn1Value* certReq;
    Asn1List* extensions;  // of X509Extension
};

struct PKIStatusInfo {
    Asn1Value* status;
    PKIFreeText* statusString;
    Asn1BitString* failInfo;
};

struct TimeStampResp {
    PKIStatusInfo* status;
    CmsContentInfo* timeStampToken;
};

struct AccuracyParts {
    Asn1Value* seconds;
    Asn1Value* millis;
    Asn1Value* micros;
};

struct TSTInfo {
    Asn1Value* version;
    Asn1Value* policy;
    MessageImprint* messageImprint;
    Asn1Value* serialNumber;
    Asn1Value* genTime;
    AccuracyParts* accuracy;
    Asn1Value* ordering;
    Asn1Value* nonce;
    X509GeneralName* tsa;
    Asn1List* extensions;  // of X509Extension
};

namespace schema {
// clang-format off

inline constexpr Asn1Item MessageImprint = Sequence<
    AlgorithmIdentifier, // hashAlgorithm
    OctetString>;        // hashedMessage

inline constexpr Asn1Item TimeStampReq = Sequence<
    Integer,                                // version
    MessageImprint,                         // messageImprint
    Optional<ObjectIdentifier>,             // reqPolicy
    Optional<Integer>,                      // nonce
    Default<Boolean, kFalse>,               // certReq
    Optional<Implicit<0, X509Extensions>>>; // extensions

inline constexpr Asn1Item PKIStatusInfo = Sequence<
    Integer,               // status
    Optional<PKIFreeText>, // statusString
    Optional<BitString>>;  // failInfo

inline constexpr Asn1Item TimeStampResp = Sequence<
    PKIStatusInfo,             // status
    Optional<CmsContentInfo>>; // timeStampToken

inline constexpr Asn1Item OptionalAccuracy = Optional<Sequence<
    Optional<Integer>,                // seconds
    Optional<Implicit<0, Integer>>,   // millis
    Optional<Implicit<1, Integer>>>>; // micros

inline constexpr Asn1Item TSTInfo = Sequence<
    Integer,                                // version
    ObjectIdentifier,                       // policy
    MessageImprint,                         // messageImprint
    Integer,                                // serialNumber
    GeneralizedTime,                        // genTime
    OptionalAccuracy,                       // accuracy
    Default<Boolean, kFalse>,               // ordering
    Optional<Integer>,                      // nonce
    Optional<Explicit<0, X509GeneralName>>, // tsa
    Optional<Implicit<1, X509Extensions>>>; // extensions

// clang-format on
}  // namespace schema

static_assert(sizeof(MessageImprint) == schema::MessageImprint.valueSize);
static_assert(sizeof(TimeStampReq) == schema::TimeStampReq.valueSize);
static_assert(sizeof(PKIStatusInfo) == schema::PKIStatusInfo.valueSize);
static_assert(sizeof(TimeStampResp) == schema::TimeStampResp.valueSize);
static_assert(sizeof(AccuracyParts) == schema::OptionalAccuracy.valueSize);
static_assert(sizeof(TSTInfo) == schema::TSTInfo.valueSize);

}  // namespace tlvforge
