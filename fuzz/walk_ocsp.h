// Walks over OCSP requests and responses, which are made anew of what their getters give.
#pragma once

#include "walk_parts.h"

namespace walk {

constexpr LibraryTime kAnyTime = {2025, 1, 1, 0, 0, 0};

// Extensions and certificates are documents of their own: they are walked and taken away.
void TakeExtensions(auto* from, auto get) {
    X509Extensions extensions = nullptr;
    Require(Ok(get(from, &extensions)));
    WalkExtensions(extensions);
    Require(Ok(RemoveX509Extensions(extensions)));
}

void TakeCertificates(auto* from, auto count, auto get, auto remove) {
    Each(count, from, [&](uint32_t i) {
        Certificate* certificate = nullptr;
        Require(Ok(get(from, i, &certificate)));
        WalkCertificate(certificate);
    });
    Require(Ok(remove(from)));
}

// ---- Responses ----

inline auto RebuildSingleResponse(OcspSingleResponse* from) {
    auto rebuilt = Make<FreeOcspSingleResponse>(CreateOcspSingleResponse);
    OcspSingleResponse* const to = rebuilt.get();
    uint32_t answer = 3;
    Require(Carry<Oid, Maybe, Octets, Octets, Octets>(Of(Complete(GetOcspSingleResponseCertID), from),
                                                      Of(SetOcspSingleResponseCertID, to)));
    Require(Ok(GetOcspSingleResponseCertStatus(from, &answer)) && answer < 3);
    if (answer == 1)
        Share<Time, Flag>(from, to, GetOcspSingleResponseCertStatusRevokedInfo, SetOcspSingleResponseCertStatusRevoked,
                          &kAnyTime, -1);
    else
        Require(Ok((answer == 0 ? SetOcspSingleResponseCertStatusGood : SetOcspSingleResponseCertStatusUnknown)(to)));
    Share<Time>(from, to, GetOcspSingleResponseThisUpdate, SetOcspSingleResponseThisUpdate, &kAnyTime);
    Share<Time>(from, to, GetOcspSingleResponseNextUpdate, SetOcspSingleResponseNextUpdate, nullptr);
    TakeExtensions(from, GetOcspSingleResponseExtensions);
    RequireSame(Get(EncodeOcspSingleResponse, from), Get(EncodeOcspSingleResponse, to));
    return rebuilt;
}

inline auto RebuildBasicResponse(OcspBasicResponse* from) {
    auto rebuilt = Make<FreeOcspBasicResponse>(CreateOcspBasicResponse);
    OcspBasicResponse* const to = rebuilt.get();
    Sure(Get(GetOcspBasicResponseToBeSignedPart, from));
    Require(Carry<Flag, Octets>(Of(GetOcspBasicResponseResponderID, from), Of(SetOcspBasicResponseResponderID, to)));
    Share<Number>(from, to, GetOcspBasicResponseVersion, SetOcspBasicResponseVersion, 0);
    Share<Time>(from, to, GetOcspBasicResponseProducedAt, SetOcspBasicResponseProducedAt, &kAnyTime);
    Each(GetOcspBasicResponseSingleResponsesCount, from, [&](uint32_t i) {
        OcspSingleResponse* single = nullptr;
        Require(Ok(GetOcspBasicResponseSingleResponse(from, i, &single)));
        Require(Ok(AddOcspBasicResponseSingleResponse(to, RebuildSingleResponse(single).release())));
    });
    Share<Octets>(from, to, GetOcspBasicResponseSignature, SetOcspBasicResponseSignature, nullptr, 0);
    Require(Carry<Oid, Maybe>(Of(GetOcspBasicResponseSignatureAlgorithmAndParameters, from),
                              Of(SetOcspBasicResponseSignatureAlgorithmOidAndParameters, to)));
    TakeExtensions(from, GetOcspBasicResponseExtensions);
    TakeCertificates(from, GetOcspBasicResponseCertificatesCount, GetOcspBasicResponseCertificate,
                     RemoveOcspBasicResponseCertificates);
    RequireSame(Get(EncodeOcspBasicResponse, from), Get(EncodeOcspBasicResponse, to));
    return rebuilt;
}

inline void WalkBasicResponses(OcspBasicResponses* from) {
    const auto add = [](auto* to, auto* response) {
        return AddResponseToOcspBasicResponses(to, RebuildBasicResponse(response).release());
    };
    const auto copy = Make<FreeOcspBasicResponses>(CreateOcspBasicResponsesCopy, from);
    Require(!copy || Get(EncodeOcspBasicResponses, copy.get()) == Get(EncodeOcspBasicResponses, from));
    const auto rebuilt = RebuildList<FreeOcspBasicResponses, Plain<OcspBasicResponse*>>(
        from, CreateOcspBasicResponses, GetOcspBasicResponsesCount, GetOcspBasicResponsesResponse, add);
    RequireSame(Get(EncodeOcspBasicResponses, from), Get(EncodeOcspBasicResponses, rebuilt.get()));
}

// What a response carries, and parts of that.
inline void WalkResponsePart(const Bytes& in) {
    WalkObject<FreeOcspBasicResponse>(in, DecodeOcspBasicResponse, EncodeOcspBasicResponse, RebuildBasicResponse);
    WalkObject<FreeOcspSingleResponse>(in, DecodeOcspSingleResponse, EncodeOcspSingleResponse, RebuildSingleResponse);
    WalkObject<FreeOcspBasicResponses>(in, DecodeOcspBasicResponses, EncodeOcspBasicResponses, WalkBasicResponses);
}

// Bytes without a type, and a type without bytes, can't be stored.
inline void WalkOcspResponse(OcspResponse* from) {
    const auto rebuilt = Make<FreeOcspResponse>(CreateOcspResponse);
    const auto [type, bytes] = Sure(Get(GetOcspResponseBytes, from, kOut, kOut));
    WalkResponsePart(bytes);
    Share<Number>(from, rebuilt.get(), GetOcspResponseStatus, SetOcspResponseStatus, 0);
    if (type.size() > 1 && bytes.size() > 0)
        Carry<Oid, Octets>(Of(GetOcspResponseBytes, from), Of(SetOcspResponseBytes, rebuilt.get()));
    else
        Require(Ok(SetOcspResponseBytes(from, nullptr, nullptr, 0)));
    RequireSame(Get(EncodeOcspResponse, from), Get(EncodeOcspResponse, rebuilt.get()));
}

// ---- Requests ----

// Extensions of an entry. An empty cell can't be copied.
struct Cell : Plain<X509Extensions> {
    auto In(const Bytes*&) const { return std::tuple(Get(EncodeX509Extensions, value) ? value : nullptr); }
};

inline void WalkOcspRequest(OcspRequest* from) {
    const auto rebuilt = Make<FreeOcspRequest>(CreateOcspRequest);
    OcspRequest* const to = rebuilt.get();
    Share<Number>(from, to, GetOcspRequestVersion, SetOcspRequestVersion, 0);
    Carry<Flag, Octets>(Of(GetOcspRequestRequestorNameValue, from), Of(SetOcspRequestRequestorName, to));
    Each(GetOcspRequestCertRequestsCount, from, [&](uint32_t i) {
        Require(Carry<Oid, Maybe, Octets, Octets, Octets, Cell>(Of(Complete(GetOcspRequestCertRequest), from, i),
                                                                Of(AddOcspRequestCertRequest, to)));
    });
    if (Ok(IsExistsOcspRequestSignature(from)))
        Share<Octets>(from, to, GetOcspRequestSignature, SetOcspRequestSignature, nullptr, 0);
    Carry<Oid, Maybe>(Of(GetOcspRequestSignatureAlgorithmAndParameters, from),
                      Of(SetOcspRequestSignatureAlgorithmOidAndParameters, to));
    TakeExtensions(from, GetOcspRequestExtensions);
    TakeCertificates(from, GetOcspRequestCertificatesCount, GetOcspRequestCertificate, RemoveOcspRequestCertificates);
    RequireSame(Get(EncodeOcspRequest, from), Get(EncodeOcspRequest, to));
    for (const auto remove : {ClearOcspRequestCertRequests, RemoveOcspRequestRequestorName, RemoveOcspRequestSignature})
        Require(Ok(remove(from)));
    Sure(Get(EncodeOcspRequest, from));
}

inline void WalkOcsp(const Bytes& in) {
    const bool stable = !in.Has(0x9F) && !in.Has(0xBF);  // as in WalkValue
    WalkObject<FreeOcspRequest>(in, DecodeOcspRequest, EncodeOcspRequest, WalkOcspRequest, stable);
    WalkObject<FreeOcspResponse>(in, DecodeOcspResponse, EncodeOcspResponse, WalkOcspResponse);
    WalkResponsePart(in);
}

}  // namespace walk
