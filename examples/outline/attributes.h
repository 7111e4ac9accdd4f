// Attributes of requests and messages, each value through the codec that goes with the OID.
#pragma once

#include <string>

#include "references.h"
#include "timestamp.h"

namespace examples {

// A signer, which cms.h prints.
inline Status PrintCounterSignature(Outline& outline, const Bytes& value);

inline Status PrintContentType(Outline& outline, const Bytes& value) {
    const Fetched oid = Get(DecodeRsaAttributeContentTypeValue, value.data(), Size(value));
    if (oid.status == StatusOk) outline.Line("type", DescribeOid(oid.bytes));
    return oid.status;
}

inline Status PrintSigningTime(Outline& outline, const Bytes& value) {
    LibraryTime time = {};
    const Status status = DecodeRsaAttributeSigningTimeValue(value.data(), Size(value), &time);
    if (status == StatusOk) outline.Line("time", ToText(time));
    return status;
}

inline constexpr auto PrintRequestedExtensions =
    PrintDecoded<X509ExtensionsCell, FreeX509Extensions, DecodeX509Extensions, PrintExtensions>;

inline constexpr ValueCodec kAttributeCodecs[] = {
    {"1.2.840.113549.1.9.3", PrintContentType},
    {"1.2.840.113549.1.9.4", PrintBytes<DecodeRsaAttributeMessageDigestValue>},
    {"1.2.840.113549.1.9.5", PrintSigningTime},
    {"1.2.840.113549.1.9.6", PrintCounterSignature},
    {"1.2.840.113549.1.9.14", PrintRequestedExtensions},
    {"1.3.6.1.4.1.311.2.1.14", PrintRequestedExtensions},
    {"1.2.840.113549.1.9.16.2.12", PrintSigningCertificates<SigningCertificateForm>},
    {"1.2.840.113549.1.9.16.2.47", PrintSigningCertificates<SigningCertificateV2Form>},
    {"1.2.840.113549.1.9.16.2.19", PrintSigningCertificates<OtherSigningCertificateForm>},
    {"1.2.840.113549.1.9.16.2.21", PrintCertificateReferences},
    {"1.2.840.113549.1.9.16.2.44", PrintCertificateReferences},  // to attribute certificates
    {"1.2.840.113549.1.9.16.2.22", PrintRevocationReferences},
    {"1.2.840.113549.1.9.16.2.45", PrintRevocationReferences},  // of attribute certificates
    {"1.2.840.113549.1.9.16.2.24", PrintRevocationValues},
    {"1.2.840.113549.1.9.16.2.14", PrintToken},  // of a signature
    {"1.2.840.113549.1.9.16.2.20", PrintToken},  // of the content
    {"1.2.840.113549.1.9.16.2.25", PrintToken},  // of a signature with references
    {"1.2.840.113549.1.9.16.2.26", PrintToken},  // of references
    {"1.2.840.113549.1.9.16.2.27", PrintToken},  // of an archive
    {"1.2.840.113549.1.9.16.2.48", PrintToken},  // the same, version 2
    {"0.4.0.1733.2.4", PrintToken},              // the same, version 3
    {"0.4.0.1733.2.5", PrintHashIndex},
    {"1.3.6.1.4.1.311.3.3.1", PrintToken},  // Microsoft's, of a signature
    {"1.3.6.1.4.1.311.2.4.1", PrintToken},  // Microsoft's further signatures, messages as well
};

inline void PrintAttribute(Outline& outline, RsaAttributes attributes, uint32_t index) {
    const Fetched oid = Get(GetRsaAttributesAttributeOid, attributes, index);
    if (oid.status != StatusOk) return outline.Failed("attribute", oid.status);
    const Outline::Section section = outline.Open(DescribeOid(oid.bytes));
    uint32_t count = 0;
    const Status status = GetRsaAttributesAttributeValuesCount(attributes, index, &count);
    if (status != StatusOk) return outline.Failed("values", status);
    const auto print = [&](uint32_t i) {
        const Fetched value = Get(GetRsaAttributesAttributeValue, attributes, index, i);
        if (value.status != StatusOk) return outline.Failed("value", value.status);
        PrintValue(outline, "value", kAttributeCodecs, oid.bytes, value.bytes);
    };
    // Most have exactly one.
    if (count == 1) return print(0);
    outline.Members("Values", count, print);
}

// The getters lend the handle of the field, and an empty field isn't mentioned.
template <class Function, class Document>
void PrintAttributesField(Outline& outline, const std::string& label, Function function, Document* document) {
    RsaAttributes attributes = nullptr;
    uint32_t count = 0;
    Status status = function(document, &attributes);
    if (status == StatusOk) status = GetRsaAttributesAttributesCount(attributes, &count);
    if (status != StatusOk) return outline.Failed(label, status);
    if (count == 0) return;
    outline.Members(label, count, [&](uint32_t index) { PrintAttribute(outline, attributes, index); });
}

}  // namespace examples
