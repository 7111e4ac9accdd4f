// OCSP requests and responses.
#pragma once

#include <string>

#include "certificate.h"

namespace examples {

// The certificate that is asked about, which `call` gives as five outputs.
template <class Call>
void PrintCertificateId(Outline& outline, Call&& call) {
    Output algorithm, parameters, nameHash, keyHash, serial;
    const auto fetch = [&] {
        return call(algorithm.data, &algorithm.length, parameters.data, &parameters.length, nameHash.data,
                    &nameHash.length, keyHash.data, &keyHash.length, serial.data, &serial.length);
    };
    const Status status = Fetch(fetch, algorithm, parameters, nameHash, keyHash, serial);
    if (status != StatusOk) return outline.Failed("certificate", status);
    outline.Hex("Serial number", serial.bytes);
    const Outline::Section section(outline);
    PrintAlgorithm(outline, "hash algorithm", {StatusOk, algorithm.bytes, parameters.bytes});
    outline.Hex("issuer name hash", nameHash.bytes);
    outline.Hex("issuer key hash", keyHash.bytes);
}

// --- Requests ---

inline void PrintRequestorName(Outline& outline, const OcspRequest* request) {
    X509GeneralName* name = nullptr;
    const Status status = GetOcspRequestRequestorName(request, &name);
    if (status != StatusOk) return outline.Failed("Requestor", status);
    if (name == nullptr) return;
    const Outline::Section section = outline.Open("Requestor");
    PrintGeneralName(outline, name);
}

inline void PrintCertificateRequest(Outline& outline, const OcspRequest* request, uint32_t index) {
    X509Extensions extensions = nullptr;
    PrintCertificateId(
        outline, [&](auto... outputs) { return GetOcspRequestCertRequest(request, index, outputs..., &extensions); });
    const Outline::Section section(outline);
    if (extensions != nullptr) PrintExtensions(outline, extensions);
}

inline void PrintOcspRequest(Outline& outline, const OcspRequest* request) {
    const Outline::Section section = outline.Open("OCSP request");
    PrintVersion(outline, GetOcspRequestVersion, request);
    PrintRequestorName(outline, request);
    PrintMembersField(outline, "Requests", GetOcspRequestCertRequestsCount, request,
                      [&](uint32_t index) { PrintCertificateRequest(outline, request, index); });
    PrintExtensionsField(outline, GetOcspRequestExtensions, request);
    if (IsExistsOcspRequestSignature(request) != StatusOk) return outline.Line("Signature", "none");
    PrintAlgorithm(outline, "Signature algorithm",
                   GetAlgorithm(GetOcspRequestSignatureAlgorithmAndParameters, request));
    outline.Start("Signature", Get(GetOcspRequestSignature, request));
    PrintLentMembers(outline, "Certificates", GetOcspRequestCertificatesCount, GetOcspRequestCertificate, request,
                     PrintCertificateSummary);
}

// --- Responses ---

inline void PrintRevokedInfo(Outline& outline, const OcspSingleResponse* single) {
    LibraryTime time = {};
    uint32_t reason = 0;
    const Status status = GetOcspSingleResponseCertStatusRevokedInfo(single, &time, &reason);
    if (status != StatusOk) return outline.Failed("revoked", status);
    outline.Line("revoked", ToText(time));
    if (reason != UINT32_MAX) outline.Line("reason", DescribeNumber(static_cast<int32_t>(reason), kReasonCodes));
}

inline void PrintSingleResponse(Outline& outline, OcspSingleResponse* single) {
    static constexpr const char* kStatuses[] = {"good", "revoked", "unknown"};
    static constexpr uint32_t kRevoked = 1;
    PrintCertificateId(outline, [&](auto... outputs) { return GetOcspSingleResponseCertID(single, outputs...); });
    const Outline::Section section(outline);
    uint32_t certificateStatus = 0;
    const Status status = GetOcspSingleResponseCertStatus(single, &certificateStatus);
    if (status != StatusOk) return outline.Failed("certificate status", status);
    outline.Line("certificate status", DescribeNumber(static_cast<int32_t>(certificateStatus), kStatuses));
    if (certificateStatus == kRevoked) PrintRevokedInfo(outline, single);
    PrintTimeField(outline, "this update", GetOcspSingleResponseThisUpdate, single);
    PrintTimeField(outline, "next update", GetOcspSingleResponseNextUpdate, single);
    PrintExtensionsField(outline, GetOcspSingleResponseExtensions, single);
}

inline void PrintResponder(Outline& outline, const OcspBasicResponse* response) {
    static constexpr uint32_t kByName = 0;
    uint32_t form = 0;
    const Fetched identifier = Get([&](uint8_t* buffer, uint32_t* length) {
        return GetOcspBasicResponseResponderID(response, &form, buffer, length);
    });
    if (identifier.status != StatusOk || form != kByName) return outline.Hex("Responder key hash", identifier);
    PrintEncodedName(outline, "Responder", identifier.bytes);
}

inline void PrintBasicResponse(Outline& outline, const OcspBasicResponse* response) {
    const Outline::Section section = outline.Open("Basic response");
    PrintVersion(outline, GetOcspBasicResponseVersion, response);
    PrintResponder(outline, response);
    PrintTimeField(outline, "Produced at", GetOcspBasicResponseProducedAt, response);
    PrintLentMembers(outline, "Responses", GetOcspBasicResponseSingleResponsesCount, GetOcspBasicResponseSingleResponse,
                     response, PrintSingleResponse);
    PrintExtensionsField(outline, GetOcspBasicResponseExtensions, response);
    PrintAlgorithm(outline, "Signature algorithm",
                   GetAlgorithm(GetOcspBasicResponseSignatureAlgorithmAndParameters, response));
    outline.Start("Signature", Get(GetOcspBasicResponseSignature, response));
    PrintLentMembers(outline, "Certificates", GetOcspBasicResponseCertificatesCount, GetOcspBasicResponseCertificate,
                     response, PrintCertificateSummary);
}

inline constexpr ValueCodec kResponseCodecs[] = {
    {"1.3.6.1.5.5.7.48.1.1",
     PrintDecoded<OcspBasicResponse, FreeOcspBasicResponse, DecodeOcspBasicResponse, PrintBasicResponse>},
};

inline void PrintOcspResponse(Outline& outline, const OcspResponse* response) {
    static constexpr const char* kStatuses[] = {"successful", "malformedRequest", "internalError", "tryLater",
                                                nullptr,      "sigRequired",      "unauthorized"};
    const Outline::Section section = outline.Open("OCSP response");
    int32_t number = 0;
    const Status status = GetOcspResponseStatus(response, &number);
    if (status != StatusOk) return outline.Failed("Response status", status);
    outline.Line("Response status", DescribeNumber(number, kStatuses));
    Output type, bytes;
    const auto call = [&] {
        return GetOcspResponseBytes(response, type.data, &type.length, bytes.data, &bytes.length);
    };
    const Status got = Fetch(call, type, bytes);
    if (got != StatusOk) return outline.Failed("Response", got);
    if (type.bytes.empty()) return outline.Line("Response", "none");
    outline.Line("Type", DescribeOid(type.bytes));
    PrintValue(outline, "Response", kResponseCodecs, type.bytes, bytes.bytes);
}

}  // namespace examples
