// Walks over OCSP requests and responses, which are made anew of what their getters give.
#pragma once

#include "walk_x509.h"

namespace walk {

// Extensions and certificates are documents of their own: they are walked and taken away.
void TakeExtensions(auto* from, auto get) {
    const X509Extensions extensions = Lent(get, from);
    WalkExtensions(extensions);
    Sure(RemoveX509Extensions(extensions));
}

void TakeCertificates(auto* from, auto count, auto get, auto remove) {
    Each(count, from, [&](uint32_t i) { WalkCertificate(Lent(get, from, i)); });
    Sure(remove(from));
}

// ---- Responses ----

inline auto RebuildSingleResponse(OcspSingleResponse* from) {
    auto rebuilt = Make<FreeOcspSingleResponse>(CreateOcspSingleResponse);
    OcspSingleResponse* const to = rebuilt.get();
    Require(Carry<Oid, Maybe, Octets, Octets, Octets>(Of(Complete(GetOcspSingleResponseCertID), from),
                                                      Of(SetOcspSingleResponseCertID, to)));
    const uint32_t answer = Lent(GetOcspSingleResponseCertStatus, from);
    const auto plain = answer == 0 ? SetOcspSingleResponseCertStatusGood : SetOcspSingleResponseCertStatusUnknown;
    if (answer == 1)
        Share<Time, Flag>(from, to, GetOcspSingleResponseCertStatusRevokedInfo, SetOcspSingleResponseCertStatusRevoked,
                          &kAnyTime, -1);
    else  // its NULL may have been read with content
        for (auto* each : {from, to}) Sure(plain(each));
    Share<Time>(from, to, PROPERTY(OcspSingleResponseThisUpdate), &kAnyTime);
    Share<Time>(from, to, PROPERTY(OcspSingleResponseNextUpdate), nullptr);
    TakeExtensions(from, GetOcspSingleResponseExtensions);
    RequireSame(Get(EncodeOcspSingleResponse, from), Get(EncodeOcspSingleResponse, to));
    return rebuilt;
}

inline auto RebuildBasicResponse(OcspBasicResponse* from) {
    auto rebuilt = Make<FreeOcspBasicResponse>(CreateOcspBasicResponse);
    OcspBasicResponse* const to = rebuilt.get();
    Sure(Get(GetOcspBasicResponseToBeSignedPart, from));
    Require(Carry<Flag, Octets>(Of(GetOcspBasicResponseResponderID, from), Of(SetOcspBasicResponseResponderID, to)));
    Share<Number>(from, to, PROPERTY(OcspBasicResponseVersion), 0);
    Share<Time>(from, to, PROPERTY(OcspBasicResponseProducedAt), &kAnyTime);
    Each(GetOcspBasicResponseSingleResponsesCount, from, [&](uint32_t i) {
        OcspSingleResponse* const single = Lent(GetOcspBasicResponseSingleResponse, from, i);
        Sure(AddOcspBasicResponseSingleResponse(to, RebuildSingleResponse(single).release()));
    });
    Share<Octets>(from, to, PROPERTY(OcspBasicResponseSignature), kAnyBytes, 1);
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
    WALK(OcspBasicResponse, in, RebuildBasicResponse);
    WALK(OcspSingleResponse, in, RebuildSingleResponse);
    WALK(OcspBasicResponses, in, WalkBasicResponses);
}

// Bytes without a type, and a type without bytes, can't be stored.
inline void WalkOcspResponse(OcspResponse* from) {
    const auto rebuilt = Make<FreeOcspResponse>(CreateOcspResponse);
    const auto [type, bytes] = Sure(Get(GetOcspResponseBytes, from, kOut, kOut));
    WalkResponsePart(bytes);
    Share<Number>(from, rebuilt.get(), PROPERTY(OcspResponseStatus), 0);
    if (type.size() > 1 && bytes.size() > 0)
        Sure(SetOcspResponseBytes(rebuilt.get(), type.data(), bytes.data(), bytes.size()));
    else
        Sure(SetOcspResponseBytes(from, nullptr, nullptr, 0));
    RequireSame(Get(EncodeOcspResponse, from), Get(EncodeOcspResponse, rebuilt.get()));
}

// ---- Requests ----

// Extensions of an entry. An empty cell can't be copied.
struct Cell : Plain<X509Extensions> {
    auto In() const { return std::tuple(Get(EncodeX509Extensions, value) ? value : nullptr); }
};

inline void WalkOcspRequest(OcspRequest* from) {
    const auto rebuilt = Make<FreeOcspRequest>(CreateOcspRequest);
    OcspRequest* const to = rebuilt.get();
    X509GeneralName* requestor = nullptr;  // none without a name
    uint32_t kind = 0;
    if (Ok(GetOcspRequestRequestorName(from, &requestor)) && requestor != nullptr)
        (void)Get(GetX509GeneralNameValue, requestor, &kind);
    Share<Number>(from, to, PROPERTY(OcspRequestVersion), 0);
    Carry<Flag, Octets>(Of(GetOcspRequestRequestorNameValue, from), Of(SetOcspRequestRequestorName, to));
    Each(GetOcspRequestCertRequestsCount, from, [&](uint32_t i) {
        Require(Carry<Oid, Maybe, Octets, Octets, Octets, Cell>(Of(Complete(GetOcspRequestCertRequest), from, i),
                                                                Of(AddOcspRequestCertRequest, to)));
    });
    if (Ok(IsExistsOcspRequestSignature(from))) Share<Octets>(from, to, PROPERTY(OcspRequestSignature), kAnyBytes, 1);
    Carry<Oid, Maybe>(Of(GetOcspRequestSignatureAlgorithmAndParameters, from),
                      Of(SetOcspRequestSignatureAlgorithmOidAndParameters, to));
    TakeExtensions(from, GetOcspRequestExtensions);
    TakeCertificates(from, GetOcspRequestCertificatesCount, GetOcspRequestCertificate, RemoveOcspRequestCertificates);
    RequireSame(Get(EncodeOcspRequest, from), Get(EncodeOcspRequest, to));
    for (const auto remove : {ClearOcspRequestCertRequests, RemoveOcspRequestRequestorName, RemoveOcspRequestSignature})
        Sure(remove(from));
    Sure(Get(EncodeOcspRequest, from));
}

inline void WalkOcsp(const Bytes& in) {
    WALK(OcspRequest, in, WalkOcspRequest, IsStable(in));
    WALK(OcspResponse, in, WalkOcspResponse);
    WalkResponsePart(in);
}

}  // namespace walk
