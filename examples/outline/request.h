// Certification requests.
#pragma once

#include <optional>
#include <string>

#include "fields.h"

namespace examples {

// The attribute that GetPKCS10CertReqExtensions decodes: extensionRequest, or else Microsoft's.
inline std::optional<uint32_t> FindExtensionRequest(RsaAttributes attributes) {
    for (const char* dotted : {"1.2.840.113549.1.9.14", "1.3.6.1.4.1.311.2.1.14"}) {
        const Fetched oid = Get(ConvertStringToOid, dotted);
        uint32_t index = 0;
        if (oid.status != StatusOk) continue;
        if (FindRsaAttributesAttribute(attributes, oid.bytes.data(), &index) == StatusOk) return index;
    }
    return std::nullopt;
}

inline Status PrintRequestedExtensions(Outline& outline, const PKCS10CertReq* request) {
    OwnedExtensions extensions;
    const Status status = GetPKCS10CertReqExtensions(request, extensions.Out());
    if (status == StatusOk) {
        PrintExtensions(outline, extensions);
    } else {
        outline.Failed("Extensions", status);
    }
    return status;
}

// request: null where the values are no extensions that are decoded.
inline void PrintAttribute(Outline& outline, RsaAttributes attributes, uint32_t index, const PKCS10CertReq* request) {
    const Fetched oid = Get(GetRsaAttributesAttributeOid, attributes, index);
    if (oid.status != StatusOk) return outline.Failed("attribute", oid.status);
    const Outline::Section section = outline.Open(DescribeOid(oid.bytes));
    uint32_t count = 0;
    const Status status = GetRsaAttributesAttributeValuesCount(attributes, index, &count);
    if (status != StatusOk) return outline.Failed("values", status);
    if (count == 0) return outline.Line("no values");
    // Extensions are the first value; any other is shown as it stands.
    const bool decoded = request != nullptr && PrintRequestedExtensions(outline, request) == StatusOk;
    for (uint32_t i = decoded ? 1 : 0; i < count; ++i) {
        const Fetched value = Get(GetRsaAttributesAttributeValue, attributes, index, i);
        if (value.status == StatusOk) {
            PrintElement(outline, "value", value.bytes);
        } else {
            outline.Failed("value", value.status);
        }
    }
}

inline void PrintAttributes(Outline& outline, const PKCS10CertReq* request) {
    RsaAttributes attributes = nullptr;
    uint32_t count = 0;
    Status status = GetPKCS10CertReqAttributes(request, &attributes);
    if (status == StatusOk) status = GetRsaAttributesAttributesCount(attributes, &count);
    if (status != StatusOk) return outline.Failed("Attributes", status);
    if (count == 0) return;
    const Outline::Section section = outline.Open("Attributes");
    const std::optional<uint32_t> extensions = FindExtensionRequest(attributes);
    for (uint32_t i = 0; i < count; ++i) PrintAttribute(outline, attributes, i, extensions == i ? request : nullptr);
}

inline void PrintRequest(Outline& outline, PKCS10CertReq* request) {
    const Outline::Section section = outline.Open("Certification request");
    PrintVersion(outline, GetPKCS10CertReqVersion, request);
    PrintNameField(outline, "Subject", GetPKCS10CertReqSubject, request);
    PrintPublicKey(outline, GetPKCS10CertReqPublicKeyAlgorithmOidAndParameters, GetPKCS10CertReqPublicKey,
                   GetPKCS10CertReqPublicKeyGostR3410, request);
    PrintAttributes(outline, request);
    PrintAlgorithm(outline, "Signature algorithm",
                   GetAlgorithm(GetPKCS10CertReqSignatureAlgorithmOidAndParameters, request));
    outline.Start("Signature", Get(GetPKCS10CertReqSignature, request));
}

// For the table of kinds: nothing is printed unless the bytes are a request.
inline Status InspectRequest(Outline& outline, const Bytes& bytes) {
    OwnedRequest request;
    const Status status = DecodePKCS10CertReq(bytes.data(), Size(bytes), request.Out());
    if (status == StatusOk) PrintRequest(outline, request);
    return status;
}

}  // namespace examples
