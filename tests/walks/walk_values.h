// Walks over time-stamps, and over values of private extensions and of attributes.
#pragma once

#include "walk_ocsp.h"
#include "walk_x509.h"

namespace walk {

using Extensions = Handed<FreeX509Extensions, WalkExtensions>;
using Names = Plain<X509GeneralNames*>;

inline void WalkTimeStamp(const Bytes& in) {
    WalkCodecs<Number, Oid, Maybe, Octets, Maybe, Maybe, Flag, Extensions>(in, CODEC(TimeStampReq));
    WalkCodecs<Number, Handed<FreePKIFreeText>, Flag, Handed<FreeCmsContentInfo>>(in, CODEC(TimeStampResp));
    WalkParts<Number, Oid, Oid, Maybe, Octets, Octets, Plain<LibraryPreciseTime>, Plain<Accuracy>, Flag, Maybe,
              Handed<FreeX509GeneralName>, Extensions>(in, IsStable(in), CODEC(TSTInfo));
}

// ---- Private extensions ----

inline auto RebuildStore(const ExtensionStoreCertificates* list) {
    return RebuildList<FreeExtensionStoreCertificates, Number, Octets>(
        list, CreateExtensionStoreCertificates, GetExtensionStoreCertificatesCount, GetExtensionStoreCertificates,
        AddExtensionStoreCertificates);
}

inline auto RebuildResults(const ExtensionOcspCheckFileExtResults* list) {
    const auto add = [](auto* to, auto code, auto text, auto length, auto status, auto time, auto store, auto names) {
        if (names != nullptr) names = Make<FreeX509GeneralNames>(CopyX509GeneralNames, names).release();
        return AddExtensionOcspCheckFileExtResults(to, code, text, length, status, time, RebuildStore(store).release(),
                                                   names);
    };
    return RebuildList<FreeExtensionOcspCheckFileExtResults, Number, Octets, Number, Time,
                       Plain<ExtensionStoreCertificates*>, Names>(list, CreateExtensionOcspCheckFileExtResults,
                                                                  GetExtensionOcspCheckFileExtResultsCount,
                                                                  GetExtensionOcspCheckFileExtResults, add);
}

// What a list is rebuilt as comes back as it is.
auto Twice(auto rebuild, auto encode) {
    return [=](auto* list) {
        const auto rebuilt = rebuild(list), again = rebuild(rebuilt.get());
        Require(Sure(Get(encode, rebuilt.get())) == Get(encode, again.get()));
    };
}

inline void WalkPrivateExtension(const Bytes& in) {
    // Requires the third buffer, also when sizes are asked for.
    const auto decodeTools = [](const uint8_t* data, uint32_t length, Buffer a, uint32_t* aLength, Buffer b,
                                uint32_t* bLength, Buffer c, uint32_t* cLength, auto... last) {
        const Bytes room(length);
        if (c.bytes == nullptr) c.bytes = room.data(), *cLength = length;
        return DecodeExtensionIssuerSignTool(data, length, a, aLength, b, bLength, c, cLength, last...);
    };
    WalkCodecs<Octets>(in, CODEC(ExtensionSubjectSignTool), CODEC(ExtensionRelatedOsbKod));
    WalkCodecs<Oid>(in, CODEC(ExtensionParentAS));
    WalkCodecs<Time>(in, CODEC(ExtensionOcspCheckTime));
    WalkCodecs<Number>(in, CODEC(ExtensionOcspRequestCertificates), CODEC(ExtensionOcspRequestDocuments));
    WalkCodecs<Time, Time>(in, CODEC(ExtensionRequestBlockingDate));
    WalkCodecs<Octets, Octets, Octets, Octets>(in, decodeTools, EncodeExtensionIssuerSignTool);
    WalkCodecs<Number, Maybe>(in, CODEC(ExtensionKeyStorage));
    WalkCodecs<Number, Time>(in, CODEC(ExtensionOcspCheckTime2));
    WalkCodecs<Octets, Octets, Flag, Number>(in, Complete(DecodeExtensionOcspCheckKeyMeshRegistry),
                                             EncodeExtensionOcspCheckKeyMeshRegistry);
    WalkCodecs<Octets, Maybe, Maybe, Flag, Flag, Maybe, Maybe, Flag, Number>(in, CODEC(ExtensionOcspCheckFile));
    WalkObject<FreeX509Name>(in, CODEC(ExtensionOwnerInformation), Ignore);
    WALK(ExtensionStoreCertificates, in, Twice(RebuildStore, EncodeExtensionStoreCertificates));
    WALK(ExtensionOcspCheckFileExtResults, in, Twice(RebuildResults, EncodeExtensionOcspCheckFileExtResults),
         IsStable(in));
}

// ---- Attribute values ----

inline void WalkStrings(OctetStrings* list) {
    Each(GetOctetStringsCount, list, [&](uint32_t i) { Sure(Get(WithRoom(GetOctetStringsValue), list, i)); });
}

inline void WalkRefs(CrlOcspRefs* list) {
    CrlListIDs* crls = nullptr;
    OcspListIDs* ocsps = nullptr;
    X509Name* issuer = nullptr;
    void* responder = nullptr;
    LibraryTime time{};
    const auto readCrl = [&](uint32_t i) {
        Require(Get(GetCrlValidatedIdInformation, crls, i, kOut, kOut, kOut, &issuer, &time, kOut) || issuer);
    };
    const auto readOcsp = [&](uint32_t i) {
        (void)Get(GetOcspResponseIdInformation, ocsps, i, &responder, kOut, &time, kOut, kOut, kOut);
    };
    Each(GetCrlOcspRefCount, list, [&](uint32_t i) {
        if (!Get(GetCrlOcspRefInformation, list, i, &crls, &ocsps, kOut, kOut)) return;
        if (crls != nullptr) Each(GetCrlListIDsCount, crls, readCrl);
        if (ocsps != nullptr) Each(GetOcspListIDsCount, ocsps, readOcsp);
    });
}

// A signing certificate attribute. Its list is the same when it is made again.
template <auto Free, class... Parts>
void WalkCertIDs(const Bytes& in, auto decode, auto encode, auto create, auto count, auto get, auto add) {
    constexpr ExtensionCertificatePolicies* kNone = nullptr;
    const auto write = [=](auto* list, auto... others) {
        const auto rebuilt = RebuildList<Free, Parts..., Octets, Names, Maybe>(list, create, count, get, add);
        RequireSame(Get(WithRoom(encode), list, kNone), Get(WithRoom(encode), rebuilt.get(), kNone));
        return WithRoom(encode)(rebuilt.get(), others...);
    };
    WalkParts<Handed<Free>, Handed<FreeExtensionCertificatePolicies, WalkPolicies>>(in, IsStable(in), decode, write);
}

struct Unwritten : Octets {
    void Take(Bytes*& next) { bytes = std::move(*next++); }
};

inline void WalkAttributeValue(const Bytes& in) {
    using Strings = Handed<FreeOctetStrings, WalkStrings>;
    // Doesn't tell of buffers that are too small.
    const auto decodeIndex = [](const uint8_t* data, uint32_t length, Buffer a, uint32_t* aLength, Buffer b,
                                uint32_t* bLength, auto... lists) {
        const uint32_t room[] = {a.bytes ? *aLength : UINT32_MAX, b.bytes ? *bLength : UINT32_MAX};
        const Status status = DecodeRsaAttributeAtsHashIndex(data, length, a, aLength, b, bLength, lists...);
        return Ok(status) && (*aLength > room[0] || *bLength > room[1]) ? StatusBufferTooSmall : status;
    };
    WalkCodecs<Oid>(in, CODEC(RsaAttributeContentTypeValue));
    WalkCodecs<Number>(in, CODEC(RsaAttributeValidityPeriodValue));
    WalkCodecs<Octets>(in, CODEC(RsaAttributeMessageDigestValue), CODEC(RsaAttributeTokenSerialNumberValue));
    WalkCodecs<Time>(in, CODEC(RsaAttributeSigningTimeValue));
    WalkCodecs<Time, Time>(in, CODEC(RsaAttributeValidityValue));
    WalkCodecs<Oid, Octets>(in, CODEC(RsaAttributeExtSubjInfoValue));
    WalkCodecs<Number, Maybe, Maybe, Unwritten, Time, Time, Maybe>(in, CODEC(DocInfo));
    WalkCodecs<Oid, Maybe, Strings, Strings, Strings>(in, decodeIndex, WithRoom(EncodeRsaAttributeAtsHashIndex));
    WalkCodecs<Handed<FreeX509Crls, WalkCrls>, Handed<FreeOcspBasicResponses, WalkBasicResponses>, Oid, Maybe>(
        in, DecodeRsaAttributeRevocationValues, WithRoom(EncodeRsaAttributeRevocationValues));
    WalkCertIDs<FreeESSCertIDs>(in, CODEC(RsaAttributeSigningCertificateValue), CreateESSCertIDs, GetESSCertIDCount,
                                GetESSCertIDInformation, AddESSCertIDToList);
    WalkCertIDs<FreeESSCertIDsV2, Oid, Maybe>(in, CODEC(RsaAttributeSigningCertificateV2Value), CreateESSCertIDsV2,
                                              GetESSCertIDV2Count, GetESSCertIDV2Information, AddESSCertIDv2ToList);
    WalkCertIDs<FreeOtherCertIDs, Oid, Maybe>(in, CODEC(RsaAttributeOtherSigningCertificateValue), CreateOtherCertIDs,
                                              GetOtherCertIDCount, GetOtherCertIDInformation, AddOtherCertIDToList);
    WalkObject<FreeOtherCertIDs>(in, DecodeOtherCertIDs, WithRoom(EncodeOtherCertIDs), Ignore, IsStable(in));
    WalkObject<FreeCrlOcspRefs>(in, DecodeRsaAttributeCompleteRevocationRefs,
                                WithRoom(EncodeRsaAttributeCompleteRevocationRefs), WalkRefs);
}

}  // namespace walk
