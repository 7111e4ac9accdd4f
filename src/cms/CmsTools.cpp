#include "tlvforge/cms_tools.h"

#include "cms/document_parts.h"
#include "cms/summary_text.h"
#include "common/files.h"
#include "engine/header.h"
#include "engine/oids.h"
#include "engine/views.h"
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
Status AddAttribute(RsaAttributes attributes, const uint8_t* oid, const Encode& encode) {
    Block value;
    uint32_t length = 0;
    uint32_t index = 0;
    if (const Status status = MakeBytes(encode, &value, &length)) return status;
    return AddRsaAttributesAttributeWithValue(attributes, oid, &index, value.Bytes(), length);
}

// ---- Documents ----

// Size of the SignedData element in a document that has been decoded.
Status MeasureSignedData(Bytes message, uint32_t* size) {
    Header header{};
    // Into the ContentInfo, over its type, into the tag of its content.
    constexpr bool kInto[] = {true, false, true};
    for (const bool into : kInto) {
        if (const Status status = ReadLongHeader(message.data, message.length, &header)) return status;
        const uint32_t step = header.headerLength + (into ? 0 : header.contentLength);
        message = {message.data + step, message.length - step};
    }
    const Asn1Any any = {Asn1KindSequence, message.length, Unconst(message.data)};
    if (const Status status = GetAsn1AnyInfo(&any, &header.tagClass, &header.constructedBit, &header.tagNumber,
                                             &header.contentLength, &header.headerLength)) {
        return status;
    }
    *size = header.headerLength + header.contentLength;
    return StatusOk;
}

// A document whose content may be most of the memory there is: of the bytes it is read from, its tree and the bytes it
// is written to, a file's are never there together.
class Document {
public:
    // StatusBadArgument for no bytes, and for the signer number 0.
    Status FromBytes(uint32_t signerNumber, Bytes message);
    // The file is read before anything is checked.
    Status FromFile(uint32_t signerNumber, const char* path);

    // StatusNotFound for a number that is too large.
    Status FindSigner(uint32_t signerNumber, CmsSignerInfo** signer) const;
    // Leaves the plain content when it was the only one.
    Status RemoveSigner(uint32_t signerNumber);

    Status Encode(uint8_t* buffer, uint32_t* length) const;
    Status WriteTo(const char* path) const;

private:
    Status CheckGrowth() const;

    Tree<CmsSignedData> data_;
    uint32_t encodedLength_ = 0;        // of SignedData as it came
    const Asn1Value* plain_ = nullptr;  // eContent when that is all that is left
};

Status Document::FromBytes(uint32_t signerNumber, Bytes message) {
    if (signerNumber == 0 || message.data == nullptr || message.length == 0) return Fail(StatusBadArgument);
    if (const Status status = DecodeSignedMessage(message, &data_)) return status;
    return MeasureSignedData(message, &encodedLength_);
}

Status Document::FromFile(uint32_t signerNumber, const char* path) {
    Block bytes;
    uint32_t length = 0;
    if (const Status status = ReadWholeFile(path, &bytes, &length)) return status;
    return FromBytes(signerNumber, {bytes.Bytes(), length});
}

Status Document::FindSigner(uint32_t signerNumber, CmsSignerInfo** signer) const {
    if (signerNumber > GetAsn1ListLength(data_->signerInfos)) return Fail(StatusNotFound);
    return Borrow(MemberAt(data_->signerInfos, signerNumber - 1), signer);
}

Status Document::RemoveSigner(uint32_t signerNumber) {
    if (signerNumber == 1 && GetAsn1ListLength(data_->signerInfos) < 2) {
        plain_ = data_->encapContentInfo->eContent;
        return GetAsn1ValueLength(plain_) != 0 ? StatusOk : Fail(StatusNotFound);
    }
    if (const Status status = DeleteCmsSignedDataSignerInfo(data_.Get(), signerNumber - 1)) return status;
    return CheckGrowth();
}

// What is left must not be longer than what there was before, as it can become when it wasn't DER. No buffer of the
// caller is at fault, yet the status is StatusBufferTooSmall: see docs/statuses.md.
Status Document::CheckGrowth() const {
    uint32_t length = 0;
    if (const Status status = data_.Encode(nullptr, &length)) return status;
    return length > encodedLength_ ? Fail(StatusBufferTooSmall) : StatusOk;
}

Status Document::Encode(uint8_t* buffer, uint32_t* length) const {
    return plain_ != nullptr ? GetAsn1Value(plain_, buffer, length) : EncodeSignedMessage(data_.Get(), buffer, length);
}

Status Document::WriteTo(const char* path) const {
    if (plain_ != nullptr) return WriteWholeFile(path, plain_->data, plain_->length);
    Block bytes;
    uint32_t length = 0;
    const auto encode = [this](uint8_t* buffer, uint32_t* needed) {
        return EncodeSignedMessage(data_.Get(), buffer, needed);
    };
    if (const Status status = MakeBytes(encode, &bytes, &length)) return status;
    return WriteWholeFile(path, bytes.Bytes(), length);
}

// ---- Signers ----

// What doesn't fit is StatusBufferTooSmall as it stands, a key identifier above four bytes too: see docs/statuses.md.
Status SignerIdentifierText(CmsSignerInfo* signer, Output text) {
    X509Name* issuer = nullptr;
    uint8_t serial[1024], keyId[4];
    uint32_t serialLength = sizeof serial, keyIdLength = sizeof keyId;
    const Status status = GetCmsSignerInfoSignerIdentifier(signer, &issuer, serial, &serialLength, keyId, &keyIdLength);
    if (status != StatusOk) return status;
    if (issuer == nullptr && keyIdLength == 0) return Fail(StatusBadSignerData);
    if (issuer == nullptr) return CopyOutText(kSignerNotFound.text, kSignerNotFound.length, text.buffer, text.length);
    SummaryText summary;
    if (const Status failure = summary.AppendSerial(serial, serialLength)) return failure;
    if (const Status failure = summary.AppendCommonNames(issuer)) return failure;
    return summary.CopyOut(text.buffer, text.length);
}

// Every attribute before the time has to have one value that isn't too long: see docs/oddities.md.
Status ReadSigningTime(const RsaAttributeList* attributes, LibraryTime* time) {
    for (uint32_t i = 0; i < GetAsn1ListLength(attributes); ++i) {
        const Part<RsaAttribute> attribute = MemberAt(attributes, i);
        if (!attribute) return attribute.Absent();
        if (GetAsn1ValueLength(attribute->type) > kAttributeOidLimit) return Fail(StatusBadSignerData);
        if (GetAsn1ListLength(attribute->values) != 1) return Fail(StatusBadSignerData);
        const Part<Asn1Any> value = MemberAt(attribute->values, 0);
        if (!value) return value.Absent();
        if (value->length > kAttributeValueLimit) return Fail(StatusBadSignerData);
        if (IsOidAndAsn1ObjectIdentifierEquals(kSigningTime, attribute->type) != 0) {
            return DecodeTime(value->data, value->length, time);
        }
    }
    // *time stays as it was: only a new record is the null time then.
    return Fail(StatusNotFound);
}

// Time and text may be null.
Status DescribeSigner(const Document& document, uint32_t signerNumber, LibraryTime* time, Output text) {
    CmsSignerInfo* signer = nullptr;
    if (const Status status = document.FindSigner(signerNumber, &signer)) return status;
    if (text.length != nullptr) {
        if (const Status status = SignerIdentifierText(signer, text)) return status;
    }
    return time != nullptr ? ReadSigningTime(signer->signedAttrs.list, time) : StatusOk;
}

}  // namespace

Status FillCmsSignerInfoWithSignedAttributes(CmsSignerInfo* signer, const uint8_t* digest, uint32_t digestLength,
                                             const LibraryTime* signingTime) {
    if (AnyNull(signer, digest)) return Fail(StatusBadArgument);
    const RsaAttributes attributes = &signer->signedAttrs;
    const auto encodeType = [](uint8_t* buffer, uint32_t* length) { return EncodeAsn1Oid(kData, buffer, length); };
    const auto encodeDigest = [=](uint8_t* buffer, uint32_t* length) {
        return EncodeAsn1PrimitiveValue(Asn1KindOctetString, digest, digestLength, buffer, length);
    };
    const auto encodeTime = [=](uint8_t* buffer, uint32_t* length) { return EncodeTime(signingTime, buffer, length); };
    if (const Status status = AddAttribute(attributes, kContentType, encodeType)) return status;
    if (const Status status = AddAttribute(attributes, kMessageDigest, encodeDigest)) return status;
    return signingTime != nullptr ? AddAttribute(attributes, kSigningTime, encodeTime) : StatusOk;
}

Status FillCmsSignerInfoWithSignedAttributes2(CmsSignerInfo* signer, const uint8_t* digest, uint32_t digestLength,
                                              const LibraryTime* signingTime, RsaAttributes extra) {
    if (const Status status = FillCmsSignerInfoWithSignedAttributes(signer, digest, digestLength, signingTime)) {
        return status;
    }
    return AppendRsaAttributes(&signer->signedAttrs, extra);
}

Status GetCmsSignedDataToBeSignedPart(const uint8_t* digest, uint32_t digestLength, const LibraryTime* signingTime,
                                      uint8_t* buffer, uint32_t* length) {
    return GetCmsSignedDataToBeSignedPart2(digest, digestLength, signingTime, nullptr, buffer, length);
}

Status GetCmsSignedDataToBeSignedPart2(const uint8_t* digest, uint32_t digestLength, const LibraryTime* signingTime,
                                       RsaAttributes extra, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(digest, length)) return Fail(StatusBadArgument);
    Tree<CmsSignerInfo> signer;
    if (const Status status = signer.Create()) return status;
    if (const Status status =
            FillCmsSignerInfoWithSignedAttributes2(signer.Get(), digest, digestLength, signingTime, extra)) {
        return status;
    }
    return GetCmsSignerInfoEncodedSignedAttributes(signer.Get(), buffer, length);
}

Status CompareSignerInfoAndCertificate(CmsSignerInfo* signer, Certificate* certificate) {
    if (AnyNull(signer, certificate)) return Fail(StatusBadArgument);
    X509Name* issuer = nullptr;
    uint8_t serial[64], keyId[32], ownKeyId[32];
    uint32_t serialLength = sizeof serial, keyIdLength = sizeof keyId, ownKeyIdLength = sizeof ownKeyId;
    if (const Status status = FromWorkBuffer(
            GetCmsSignerInfoSignerIdentifier(signer, &issuer, serial, &serialLength, keyId, &keyIdLength))) {
        return status;
    }
    if (issuer != nullptr) {
        return IsCertificateCorrespondToAuthKeyIdent(certificate, nullptr, 0, issuer, serial, serialLength);
    }
    if (const Status status =
            FromWorkBuffer(GetCertificateSubjectKeyIdentifier(certificate, ownKeyId, &ownKeyIdLength))) {
        return status;
    }
    return IsArrayEquals(keyId, static_cast<int32_t>(keyIdLength), ownKeyId, static_cast<int32_t>(ownKeyIdLength));
}

Status DeleteBufferCmsSignerInfo(uint32_t signerNumber, const uint8_t* data, uint32_t length, uint8_t* buffer,
                                 uint32_t* bufferLength) {
    if (bufferLength == nullptr) return Fail(StatusBadArgument);
    Document document;
    if (const Status status = document.FromBytes(signerNumber, {data, length})) return status;
    if (const Status status = document.RemoveSigner(signerNumber)) return status;
    return document.Encode(buffer, bufferLength);
}

Status DeleteCmsSignerInfo(uint32_t signerNumber, const char* inputPath, const char* outputPath) {
    if (AnyNull(inputPath, outputPath)) return Fail(StatusBadArgument);
    Document document;
    if (const Status status = document.FromFile(signerNumber, inputPath)) return status;
    if (const Status status = document.RemoveSigner(signerNumber)) return status;
    return document.WriteTo(outputPath);
}

Status GetBufferCmsSignatureTime(uint32_t signerNumber, const uint8_t* data, uint32_t length, LibraryTime* time) {
    return GetBufferCmsSignatureTimeAndCN(signerNumber, data, length, time, nullptr, nullptr);
}

Status GetBufferCmsSignatureTimeAndCN(uint32_t signerNumber, const uint8_t* data, uint32_t length, LibraryTime* time,
                                      uint8_t* text, uint32_t* textLength) {
    Document document;
    if (const Status status = document.FromBytes(signerNumber, {data, length})) return status;
    return DescribeSigner(document, signerNumber, time, {text, textLength});
}

Status GetCmsSignatureTime(uint32_t signerNumber, const char* path, LibraryTime* time) {
    return GetCmsSignatureTimeAndCN(signerNumber, path, time, nullptr, nullptr);
}

Status GetCmsSignatureTimeAndCN(uint32_t signerNumber, const char* path, LibraryTime* time, uint8_t* text,
                                uint32_t* textLength) {
    Document document;
    if (const Status status = document.FromFile(signerNumber, path)) return status;
    return DescribeSigner(document, signerNumber, time, {text, textLength});
}
