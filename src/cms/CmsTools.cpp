#include "tlvforge/cms_tools.h"

#include "cms/document_parts.h"
#include "cms/summary_text.h"
#include "common/files.h"
#include "engine/oids.h"
#include "engine/output.h"
#include "tlvforge/convert.h"
#include "tlvforge/oid.h"

using namespace tlvforge;

namespace {

constexpr const uint8_t* kData = Oid<1, 2, 840, 113549, 1, 7, 1>;
constexpr const uint8_t* kContentType = Oid<1, 2, 840, 113549, 1, 9, 3>;
constexpr const uint8_t* kMessageDigest = Oid<1, 2, 840, 113549, 1, 9, 4>;
constexpr const uint8_t* kSigningTime = Oid<1, 2, 840, 113549, 1, 9, 5>;

constexpr Cp1251Literal kSignerNotFound(u8"Подписант не найден");

// Limits of the search for the signing time, in bytes.
constexpr uint32_t kAttributeOidLimit = 99;
constexpr uint32_t kAttributeValueLimit = 8192;

// Adds an attribute whose one value encode(buffer, length) makes.
template <class Encode>
Status AddAttribute(RsaAttributes attributes, const uint8_t* oid, Encode encode) {
    Block value;
    uint32_t length = 0;
    uint32_t index = 0;
    const Status status = MakeBytes(encode, &value, &length);
    return status == StatusOk ? AddRsaAttributesAttributeWithValue(attributes, oid, &index, value.Bytes(), length)
                              : status;
}

// ---- Documents ----

// Size of the SignedData element in a document that has been decoded.
Status MeasureSignedData(const uint8_t* data, uint32_t length, uint32_t* size) {
    uint8_t tagClass = 0, constructedBit = 0;
    uint32_t tagNumber = 0, contentLength = 0, indefinite = 0, headerLength = 0;
    // Into the ContentInfo, over its type, into the tag of its content.
    constexpr bool kInto[] = {true, false, true};
    for (const bool into : kInto) {
        const Status status = GetAsn1ObjectInfo(data, length, &tagClass, &constructedBit, &tagNumber, &contentLength,
                                                &indefinite, &headerLength);
        if (status != StatusOk) return status;
        const uint32_t step = headerLength + (into ? 0 : contentLength);
        data += step;
        length -= step;
    }
    const Asn1Any any = {Asn1KindSequence, length, const_cast<uint8_t*>(data)};  // only read
    const Status status = GetAsn1AnyInfo(&any, &tagClass, &constructedBit, &tagNumber, &contentLength, &headerLength);
    *size = headerLength + contentLength;
    return status;
}

// A document whose content may be most of the memory there is: of the bytes it is read from, its tree and the bytes it
// is written to, a file's are never there together.
class Document {
public:
    Document() = default;
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;
    ~Document() { FreeCmsSignedData(data_); }

    // Status 32 for no bytes, and for the signer number 0.
    Status FromBytes(uint32_t signerNumber, const uint8_t* data, uint32_t length);
    // The file is read before anything is checked.
    Status FromFile(uint32_t signerNumber, const char* path);

    // Status 322.
    Status FindSigner(uint32_t signerNumber, CmsSignerInfo** signer) const;
    // Leaves the plain content when it was the only one.
    Status RemoveSigner(uint32_t signerNumber);

    Status Give(uint8_t* buffer, uint32_t* length) const;
    Status WriteTo(const char* path) const;

private:
    Status CheckGrowth() const;

    CmsSignedData* data_ = nullptr;
    uint32_t encodedLength_ = 0;        // of SignedData as it came
    const Asn1Value* plain_ = nullptr;  // eContent when that is all that is left
};

Status Document::FromBytes(uint32_t signerNumber, const uint8_t* data, uint32_t length) {
    if (signerNumber == 0 || data == nullptr || length == 0) return Fail(StatusBadArgument);
    const Status status = DecodeSignedMessage(data, length, &data_);
    return status == StatusOk ? MeasureSignedData(data, length, &encodedLength_) : status;
}

Status Document::FromFile(uint32_t signerNumber, const char* path) {
    Block bytes;
    uint32_t length = 0;
    const Status status = ReadWholeFile(path, &bytes, &length);
    return status == StatusOk ? FromBytes(signerNumber, bytes.Bytes(), length) : status;
}

Status Document::FindSigner(uint32_t signerNumber, CmsSignerInfo** signer) const {
    if (signerNumber > GetAsn1ListLength(data_->signerInfos)) return Fail(StatusNotFound);
    return GetListMember(data_->signerInfos, signerNumber - 1, signer);
}

Status Document::RemoveSigner(uint32_t signerNumber) {
    if (signerNumber == 1 && GetAsn1ListLength(data_->signerInfos) < 2) {
        plain_ = data_->encapContentInfo->eContent;
        return GetAsn1ValueLength(plain_) != 0 ? StatusOk : Fail(StatusNotFound);
    }
    const Status status = DeleteCmsSignedDataSignerInfo(data_, signerNumber - 1);
    return status == StatusOk ? CheckGrowth() : status;
}

// What is left must not be longer than what there was before, as it can become when it wasn't DER. No buffer of the
// caller is at fault, yet 49 is the answer: that is intended.
Status Document::CheckGrowth() const {
    uint32_t length = 0;
    const Status status = EncodeCmsSignedData(data_, nullptr, &length);
    return status == StatusOk && length > encodedLength_ ? Fail(StatusBufferTooSmall) : status;
}

Status Document::Give(uint8_t* buffer, uint32_t* length) const {
    return plain_ != nullptr ? GetAsn1Value(plain_, buffer, length) : EncodeSignedMessage(data_, buffer, length);
}

Status Document::WriteTo(const char* path) const {
    if (plain_ != nullptr) return WriteWholeFile(path, plain_->data, plain_->length);
    Block bytes;
    uint32_t length = 0;
    const Status status =
        MakeBytes([this](uint8_t* buffer, uint32_t* needed) { return EncodeSignedMessage(data_, buffer, needed); },
                  &bytes, &length);
    return status == StatusOk ? WriteWholeFile(path, bytes.Bytes(), length) : status;
}

// ---- Signers ----

// What doesn't fit is 49 as it stands, a key identifier above four bytes too. That is intended.
Status SignerIdentifierText(CmsSignerInfo* signer, uint8_t* text, uint32_t* textLength) {
    X509Name* issuer = nullptr;
    uint8_t serial[1024], keyId[4];
    uint32_t serialLength = sizeof serial, keyIdLength = sizeof keyId;
    Status status = GetCmsSignerInfoSignerIdentifier(signer, &issuer, serial, &serialLength, keyId, &keyIdLength);
    if (status != StatusOk) return status;
    if (issuer == nullptr && keyIdLength == 0) return Fail(StatusBadSignerData);
    if (issuer == nullptr) return GiveText(kSignerNotFound.text, kSignerNotFound.length, text, textLength);
    SummaryText summary;
    status = summary.AppendSerial(serial, serialLength);
    if (status == StatusOk) status = summary.AppendCommonNames(issuer);
    return status == StatusOk ? summary.Give(text, textLength) : status;
}

// Every attribute in front of the time has to have one value that isn't too long, and those behind it don't matter.
// That is intended.
Status ReadSigningTime(const RsaAttributeList* attributes, LibraryTime* time) {
    for (uint32_t i = 0; i < GetAsn1ListLength(attributes); ++i) {
        RsaAttribute* attribute = nullptr;
        Asn1Any* value = nullptr;
        Status status = GetListMember(attributes, i, &attribute);
        if (status != StatusOk) return status;
        if (GetAsn1ValueLength(attribute->type) > kAttributeOidLimit) return Fail(StatusBadSignerData);
        if (GetAsn1ListLength(attribute->values) != 1) return Fail(StatusBadSignerData);
        status = GetListMember(attribute->values, 0, &value);
        if (status != StatusOk) return status;
        if (value->length > kAttributeValueLimit) return Fail(StatusBadSignerData);
        if (IsOidAndAsn1ObjectIdentifierEquals(kSigningTime, attribute->type) != 0) {
            return DecodeTime(value->data, value->length, time);
        }
    }
    // *time stays as it was: only a new record is the null time then.
    return Fail(StatusNotFound);
}

Status DescribeSigner(const Document& document, uint32_t signerNumber, LibraryTime* time, uint8_t* text,
                      uint32_t* textLength) {
    CmsSignerInfo* signer = nullptr;
    Status status = document.FindSigner(signerNumber, &signer);
    if (status == StatusOk && textLength != nullptr) status = SignerIdentifierText(signer, text, textLength);
    if (status != StatusOk || time == nullptr) return status;
    return ReadSigningTime(signer->signedAttrs.list, time);
}

}  // namespace

Status FillCmsSignerInfoWithSignedAttributes(CmsSignerInfo* signer, const uint8_t* digest, uint32_t digestLength,
                                             const LibraryTime* signingTime) {
    if (AnyNull(signer, digest)) return Fail(StatusBadArgument);
    const RsaAttributes attributes = &signer->signedAttrs;
    Status status = AddAttribute(attributes, kContentType, [](uint8_t* buffer, uint32_t* length) {
        return EncodeAsn1Oid(kData, buffer, length);
    });
    if (status != StatusOk) return status;
    status = AddAttribute(attributes, kMessageDigest, [&](uint8_t* buffer, uint32_t* length) {
        return EncodeAsn1PrimitiveValue(Asn1KindOctetString, digest, digestLength, buffer, length);
    });
    if (status != StatusOk || signingTime == nullptr) return status;
    return AddAttribute(attributes, kSigningTime,
                        [&](uint8_t* buffer, uint32_t* length) { return EncodeTime(signingTime, buffer, length); });
}

Status FillCmsSignerInfoWithSignedAttributes2(CmsSignerInfo* signer, const uint8_t* digest, uint32_t digestLength,
                                              const LibraryTime* signingTime, RsaAttributes extra) {
    const Status status = FillCmsSignerInfoWithSignedAttributes(signer, digest, digestLength, signingTime);
    return status == StatusOk ? AppendRsaAttributes(&signer->signedAttrs, extra) : status;
}

Status GetCmsSignedDataToBeSignedPart(const uint8_t* digest, uint32_t digestLength, const LibraryTime* signingTime,
                                      uint8_t* buffer, uint32_t* length) {
    return GetCmsSignedDataToBeSignedPart2(digest, digestLength, signingTime, nullptr, buffer, length);
}

Status GetCmsSignedDataToBeSignedPart2(const uint8_t* digest, uint32_t digestLength, const LibraryTime* signingTime,
                                       RsaAttributes extra, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(digest, length)) return Fail(StatusBadArgument);
    Tree<CmsSignerInfo> signer;
    Status status = signer.Create();
    if (status != StatusOk) return status;
    status = FillCmsSignerInfoWithSignedAttributes2(signer.Get(), digest, digestLength, signingTime, extra);
    return status == StatusOk ? GetCmsSignerInfoEncodedSignedAttributes(signer.Get(), buffer, length) : status;
}

Status CompareSignerInfoAndCertificate(CmsSignerInfo* signer, Certificate* certificate) {
    if (AnyNull(signer, certificate)) return Fail(StatusBadArgument);
    X509Name* issuer = nullptr;
    uint8_t serial[64], keyId[32], ownKeyId[32];
    uint32_t serialLength = sizeof serial, keyIdLength = sizeof keyId, ownKeyIdLength = sizeof ownKeyId;
    Status status =
        FromWorkBuffer(GetCmsSignerInfoSignerIdentifier(signer, &issuer, serial, &serialLength, keyId, &keyIdLength));
    if (status != StatusOk) return status;
    if (issuer != nullptr) {
        return IsCertificateCorrespondToAuthKeyIdent(certificate, nullptr, 0, issuer, serial, serialLength);
    }
    status = FromWorkBuffer(GetCertificateSubjectKeyIdentifier(certificate, ownKeyId, &ownKeyIdLength));
    if (status != StatusOk) return status;
    return IsArrayEquals(keyId, static_cast<int32_t>(keyIdLength), ownKeyId, static_cast<int32_t>(ownKeyIdLength));
}

Status DeleteBufferCmsSignerInfo(uint32_t signerNumber, const uint8_t* data, uint32_t length, uint8_t* buffer,
                                 uint32_t* bufferLength) {
    if (bufferLength == nullptr) return Fail(StatusBadArgument);
    Document document;
    Status status = document.FromBytes(signerNumber, data, length);
    if (status == StatusOk) status = document.RemoveSigner(signerNumber);
    return status == StatusOk ? document.Give(buffer, bufferLength) : status;
}

Status DeleteCmsSignerInfo(uint32_t signerNumber, const char* inputPath, const char* outputPath) {
    if (AnyNull(inputPath, outputPath)) return Fail(StatusBadArgument);
    Document document;
    Status status = document.FromFile(signerNumber, inputPath);
    if (status == StatusOk) status = document.RemoveSigner(signerNumber);
    return status == StatusOk ? document.WriteTo(outputPath) : status;
}

Status GetBufferCmsSignatureTime(uint32_t signerNumber, const uint8_t* data, uint32_t length, LibraryTime* time) {
    return GetBufferCmsSignatureTimeAndCN(signerNumber, data, length, time, nullptr, nullptr);
}

Status GetBufferCmsSignatureTimeAndCN(uint32_t signerNumber, const uint8_t* data, uint32_t length, LibraryTime* time,
                                      uint8_t* text, uint32_t* textLength) {
    Document document;
    const Status status = document.FromBytes(signerNumber, data, length);
    return status == StatusOk ? DescribeSigner(document, signerNumber, time, text, textLength) : status;
}

Status GetCmsSignatureTime(uint32_t signerNumber, const char* path, LibraryTime* time) {
    return GetCmsSignatureTimeAndCN(signerNumber, path, time, nullptr, nullptr);
}

Status GetCmsSignatureTimeAndCN(uint32_t signerNumber, const char* path, LibraryTime* time, uint8_t* text,
                                uint32_t* textLength) {
    Document document;
    const Status status = document.FromFile(signerNumber, path);
    return status == StatusOk ? DescribeSigner(document, signerNumber, time, text, textLength) : status;
}
