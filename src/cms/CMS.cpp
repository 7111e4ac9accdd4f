#include "tlvforge/cms.h"

#include "cms/document_parts.h"
#include "engine/views.h"
#include "tlvforge/certificate.h"
#include "tlvforge/cms_tools.h"
#include "x509/certificate.schema.h"

using namespace tlvforge;

namespace {

// An algorithm by its length-prefixed OID and its parameters, as an element or null.
struct Algorithm {
    const uint8_t* oid;
    Bytes parameters;
};

struct SignedAttributes {
    Bytes digest;
    const LibraryTime* signingTime;
    RsaAttributes extra;
};

struct Signer {
    Bytes certificate;
    Algorithm digestAlgorithm, signatureAlgorithm;
    const SignedAttributes* attributes;  // or null
    Bytes signature;
};

bool HasContent(const CmsSignedData* document) {
    const Asn1Value* content = document->encapContentInfo->eContent;
    return content != nullptr && content->length != 0;
}

// The document that the signer is added to: a new one, or the given one, whose content must not be another than the one
// that is signed now, where both are there.
Status StartDocument(Bytes existing, Bytes content, Tree<CmsSignedData>* document) {
    if (existing.data == nullptr || existing.length == 0) return document->Create(1);
    if (const Status status = DecodeSignedMessage(existing, document)) return status;
    if (content.data == nullptr || !HasContent(document->Get())) return StatusOk;
    const Asn1Value& old = *(*document)->encapContentInfo->eContent;
    return SameBytes(old.data, old.length, content.data, content.length) ? StatusOk : Fail(StatusNotEqual);
}

// Everything of the document but its content, certificates and signer.
Status FillDocument(CmsSignedData* document, const Algorithm& digestAlgorithm) {
    if (const Status status = SetCmsSignedDataVersion(document, 1)) return status;
    const auto& [oid, parameters] = digestAlgorithm;
    if (const Status status =
            AddCmsSignedDataDigestAlgorithmOidAndParameters(document, oid, parameters.data, parameters.length)) {
        return status;
    }
    return SetCmsSignedDataContentTypeOid(document, Oid<1, 2, 840, 113549, 1, 7, 1>);
}

Status AddCertificates(CmsSignedData* document, const uint8_t* const* certificates, const uint32_t* lengths,
                       uint32_t count) {
    constexpr uint8_t kKind = CmsCertificateKindCertificate;
    for (uint32_t i = 0; i < count; ++i) {
        const Status status = AddCmsSignedDataEncodedCertificate(document, kKind, certificates[i], lengths[i]);
        if (status != StatusOk) return status;
    }
    return StatusOk;
}

Status IdentifySigner(CmsSignerInfo* signer, Bytes encodedCertificate) {
    Tree<Certificate> certificate;
    if (const Status status = certificate.Decode(encodedCertificate.data, encodedCertificate.length)) return status;
    uint32_t serialLength = 0;
    const uint8_t* serial = ptr_GetCertificateSerialNumber(certificate.Get(), &serialLength);
    X509Name* issuer = nullptr;
    if (const Status status = GetCertificateIssuer(certificate.Get(), &issuer)) return status;
    return SetCmsSignerInfoSignerIdentifierIssuerAndSerialNumber(signer, issuer, serial, serialLength);
}

Status AddSigner(CmsSignedData* document, const Signer& signer) {
    const auto& [certificate, digest, signature, attributes, value] = signer;
    CmsSignerInfo* info = nullptr;
    if (const Status status = AddCmsSignedDataSignerInfo(document, &info)) return status;
    if (attributes != nullptr) {
        if (const Status status = FillCmsSignerInfoWithSignedAttributes2(
                info, attributes->digest.data, attributes->digest.length, attributes->signingTime, attributes->extra)) {
            return status;
        }
    }
    if (const Status status = SetCmsSignerInfoVersion(info, 1)) return status;
    if (const Status status = IdentifySigner(info, certificate)) return status;
    if (const Status status = SetCmsSignerInfoDigestAlgorithmOidAndParameters(info, digest.oid, digest.parameters.data,
                                                                              digest.parameters.length)) {
        return status;
    }
    if (const Status status = SetCmsSignerInfoSignatureAlgorithmOidAndParameters(
            info, signature.oid, signature.parameters.data, signature.parameters.length)) {
        return status;
    }
    return SetCmsSignerInfoSignature(info, value.data, value.length);
}

// Writes the document with this content or none, in the place of its own. The content may be large: it stays where the
// caller has it.
Status EncodeWithContent(const CmsSignedData* document, Bytes content, Output output) {
    Asn1Value octets = ViewOf(Asn1KindOctetString, content);
    EncapsulatedContentInfo info = *document->encapContentInfo;
    info.eContent = content.data != nullptr && content.length != 0 ? &octets : nullptr;
    CmsSignedData whole = *document;
    whole.encapContentInfo = &info;
    return EncodeSignedMessage(&whole, output.buffer, output.length);
}

}  // namespace

Status CreateCmsSignedData(CmsSignedData** signedData) { return CreateTree(signedData); }

Status CreateCmsSignedDataCopy(const CmsSignedData* signedData, CmsSignedData** copy) {
    return CopyTree(signedData, copy);
}

Status DecodeCmsSignedData(const uint8_t* bytes, uint32_t length, CmsSignedData** signedData) {
    return DecodeTree(bytes, length, signedData);
}

Status EncodeCmsSignedData(const CmsSignedData* signedData, uint8_t* buffer, uint32_t* length) {
    return EncodeTree(signedData, buffer, length);
}

Status FreeCmsSignedData(CmsSignedData* signedData) { return FreeTree(signedData); }

Status CreateCmsSignerInfo(CmsSignerInfo** signer) { return CreateTree(signer); }

Status FreeCmsSignerInfo(CmsSignerInfo* signer) { return FreeTree(signer); }

Status CreateCmsFileSignature2(const uint8_t* content, uint32_t contentLength, const uint8_t* digest,
                               uint32_t digestLength, const LibraryTime* signingTime, const uint8_t* digestAlgorithmOid,
                               const uint8_t* digestParameters, uint32_t digestParametersLength,
                               const uint8_t* signerCertificate, uint32_t signerCertificateLength,
                               const uint8_t* const* certificates, const uint32_t* certificateLengths,
                               uint32_t certificateCount, const uint8_t* signatureAlgorithmOid,
                               const uint8_t* signatureParameters, uint32_t signatureParametersLength,
                               uint32_t useSignedAttributes, RsaAttributes extraAttributes, const void*,
                               const uint8_t* signature, uint32_t signatureLength, const uint8_t* existingSignature,
                               uint32_t existingSignatureLength, uint8_t* output, uint32_t* outputLength) {
    if (useSignedAttributes != 0 && AnyNull(digest, signingTime)) return Fail(StatusBadArgument);
    if (certificateCount != 0 && AnyNull(certificates, certificateLengths)) return Fail(StatusBadArgument);
    if (AnyNull(digestAlgorithmOid, signatureAlgorithmOid, signature, outputLength, signerCertificate)) {
        return Fail(StatusBadArgument);
    }
    const Bytes document = {content, contentLength};
    const SignedAttributes attributes = {{digest, digestLength}, signingTime, extraAttributes};
    const Signer signer = {{signerCertificate, signerCertificateLength},
                           {digestAlgorithmOid, {digestParameters, digestParametersLength}},
                           {signatureAlgorithmOid, {signatureParameters, signatureParametersLength}},
                           useSignedAttributes != 0 ? &attributes : nullptr,
                           {signature, signatureLength}};
    Tree<CmsSignedData> signedData;
    if (const Status status = StartDocument({existingSignature, existingSignatureLength}, document, &signedData)) {
        return status;
    }
    if (const Status status = FillDocument(signedData.Get(), signer.digestAlgorithm)) return status;
    if (const Status status = AddCertificates(signedData.Get(), certificates, certificateLengths, certificateCount)) {
        return status;
    }
    if (const Status status = AddSigner(signedData.Get(), signer)) return status;
    return EncodeWithContent(signedData.Get(), document, {output, outputLength});
}
