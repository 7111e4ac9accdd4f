#include "tlvforge/cms.h"

#include "cms/cms.schema.h"
#include "cms/document_parts.h"
#include "engine/nodes.h"
#include "engine/oids.h"
#include "tlvforge/certificate.h"
#include "tlvforge/cms_tools.h"
#include "x509/certificate.schema.h"
#include "x509/transition.h"

using namespace tlvforge;

namespace {

// An algorithm by its length-prefixed OID and its parameters, as an element or null.
struct Algorithm {
    const uint8_t* oid;
    Bytes parameters;
};

bool HasContent(const CmsSignedData* document) {
    const Asn1Value* content = document->encapContentInfo->eContent;
    return content != nullptr && content->length != 0;
}

// The document that the signer is added to: a new one, or the given one, whose content must not be another than the one
// that is signed now, where both are there.
Status StartDocument(const Bytes& existing, const Bytes& content, CmsSignedData** document) {
    if (existing.data == nullptr || existing.length == 0) return CreateCmsSignedData(document);
    const Status status = DecodeSignedMessage(existing.data, existing.length, document);
    if (status != StatusOk || content.data == nullptr || !HasContent(*document)) return status;
    const Asn1Value& old = *(*document)->encapContentInfo->eContent;
    return SameBytes(old.data, old.length, content.data, content.length) ? StatusOk : Fail(StatusNotEqual);
}

Status AddCertificates(CmsSignedData* document, const uint8_t* const* certificates, const uint32_t* lengths,
                       uint32_t count) {
    Status status = StatusOk;
    for (uint32_t i = 0; status == StatusOk && i < count; ++i) {
        status =
            AddCmsSignedDataEncodedCertificate(document, CmsCertificateKindCertificate, certificates[i], lengths[i]);
    }
    return status;
}

// Everything of the document but its content, certificates and signer.
Status FillDocument(CmsSignedData* document, const Algorithm& digestAlgorithm) {
    Status status = SetCmsSignedDataVersion(document, 1);
    if (status != StatusOk) return status;
    status = AddCmsSignedDataDigestAlgorithmOidAndParameters(
        document, digestAlgorithm.oid, digestAlgorithm.parameters.data, digestAlgorithm.parameters.length);
    if (status != StatusOk) return status;
    return SetCmsSignedDataContentTypeOid(document, Oid<1, 2, 840, 113549, 1, 7, 1>);
}

Status IdentifySigner(CmsSignerInfo* signer, const Bytes& encodedCertificate) {
    Tree<Certificate> certificate;
    Status status = certificate.Decode(encodedCertificate.data, encodedCertificate.length);
    if (status != StatusOk) return status;
    uint32_t serialLength = 0;
    const uint8_t* serial = ptr_GetCertificateSerialNumber(certificate.Get(), &serialLength);
    X509Name* issuer = nullptr;
    status = GetCertificateIssuer(certificate.Get(), &issuer);
    if (status != StatusOk) return status;
    return SetCmsSignerInfoSignerIdentifierIssuerAndSerialNumber(signer, issuer, serial, serialLength);
}

Status FillSigner(CmsSignerInfo* signer, const Bytes& certificate, const Algorithm& digestAlgorithm,
                  const Algorithm& signatureAlgorithm, const Bytes& signature) {
    Status status = SetCmsSignerInfoVersion(signer, 1);
    if (status == StatusOk) status = IdentifySigner(signer, certificate);
    if (status != StatusOk) return status;
    status = SetCmsSignerInfoDigestAlgorithmOidAndParameters(
        signer, digestAlgorithm.oid, digestAlgorithm.parameters.data, digestAlgorithm.parameters.length);
    if (status != StatusOk) return status;
    status = SetCmsSignerInfoSignatureAlgorithmOidAndParameters(
        signer, signatureAlgorithm.oid, signatureAlgorithm.parameters.data, signatureAlgorithm.parameters.length);
    return status == StatusOk ? SetCmsSignerInfoSignature(signer, signature.data, signature.length) : status;
}

// Writes the document with this content or none, in the place of its own. The content may be large: it stays where the
// caller has it.
Status EncodeWithContent(const CmsSignedData* document, const Bytes& content, uint8_t* output, uint32_t* length) {
    Asn1Value octets = {Asn1KindOctetString, content.length, const_cast<uint8_t*>(content.data)};  // only read
    EncapsulatedContentInfo info = *document->encapContentInfo;
    info.eContent = content.data != nullptr && content.length != 0 ? &octets : nullptr;
    CmsSignedData whole = *document;
    whole.encapContentInfo = &info;
    return EncodeSignedMessage(&whole, output, length);
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
    const Algorithm digestAlgorithm = {digestAlgorithmOid, {digestParameters, digestParametersLength}};
    const Algorithm signatureAlgorithm = {signatureAlgorithmOid, {signatureParameters, signatureParametersLength}};

    CmsSignedData* signedData = nullptr;
    Status status = StartDocument({existingSignature, existingSignatureLength}, document, &signedData);
    const Tree<CmsSignedData> owner(signedData);
    if (status == StatusOk) status = FillDocument(signedData, digestAlgorithm);
    if (status == StatusOk) status = AddCertificates(signedData, certificates, certificateLengths, certificateCount);
    CmsSignerInfo* signer = nullptr;
    if (status == StatusOk) status = AddCmsSignedDataSignerInfo(signedData, &signer);
    if (status == StatusOk && useSignedAttributes != 0) {
        status = FillCmsSignerInfoWithSignedAttributes2(signer, digest, digestLength, signingTime, extraAttributes);
    }
    if (status != StatusOk) return status;
    status = FillSigner(signer, {signerCertificate, signerCertificateLength}, digestAlgorithm, signatureAlgorithm,
                        {signature, signatureLength});
    return status == StatusOk ? EncodeWithContent(signedData, document, output, outputLength) : status;
}
