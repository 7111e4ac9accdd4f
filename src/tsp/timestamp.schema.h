// Time-stamp requests, responses and TSTInfo (RFC 3161, 2.4): items, and the records that lie over them.
#pragma once

#include "cms/cms.schema.h"
#include "names/names.schema.h"
#include "x509/algorithm.schema.h"
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
    X509ExtensionList* extensions;
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
    X509ExtensionList* extensions;
};

namespace schema {
// clang-format off

template <> struct Schema<MessageImprint> : Record<
    Field<&MessageImprint::hashAlgorithm, AlgorithmIdentifier>,
    Field<&MessageImprint::hashedMessage, OctetString>> {};

template <> struct Schema<TimeStampReq> : Record<
    Field<&TimeStampReq::version, Integer>,
    Field<&TimeStampReq::messageImprint, MessageImprint>,
    Field<&TimeStampReq::reqPolicy, Optional<ObjectIdentifier>>,
    Field<&TimeStampReq::nonce, Optional<Integer>>,
    Field<&TimeStampReq::certReq, Default<Boolean, kFalse>>,
    Field<&TimeStampReq::extensions, Optional<Implicit<0, X509ExtensionList>>>> {};

template <> struct Schema<PKIStatusInfo> : Record<
    Field<&PKIStatusInfo::status, Integer>,
    Field<&PKIStatusInfo::statusString, Optional<PKIFreeText>>,
    Field<&PKIStatusInfo::failInfo, Optional<BitString>>> {};

template <> struct Schema<TimeStampResp> : Record<
    Field<&TimeStampResp::status, PKIStatusInfo>,
    Field<&TimeStampResp::timeStampToken, Optional<CmsContentInfo>>> {};

template <> struct Schema<AccuracyParts> : Record<
    Field<&AccuracyParts::seconds, Optional<Integer>>,
    Field<&AccuracyParts::millis, Optional<Implicit<0, Integer>>>,
    Field<&AccuracyParts::micros, Optional<Implicit<1, Integer>>>> {};

template <> struct Schema<TSTInfo> : Record<
    Field<&TSTInfo::version, Integer>,
    Field<&TSTInfo::policy, ObjectIdentifier>,
    Field<&TSTInfo::messageImprint, MessageImprint>,
    Field<&TSTInfo::serialNumber, Integer>,
    Field<&TSTInfo::genTime, GeneralizedTime>,
    Field<&TSTInfo::accuracy, Optional<AccuracyParts>>,
    Field<&TSTInfo::ordering, Default<Boolean, kFalse>>,
    Field<&TSTInfo::nonce, Optional<Integer>>,
    Field<&TSTInfo::tsa, Optional<Explicit<0, X509GeneralName>>>,
    Field<&TSTInfo::extensions, Optional<Implicit<1, X509ExtensionList>>>> {};
// clang-format on
}  // namespace schema
}  // namespace tlvforge
