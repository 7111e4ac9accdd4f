#include "cms/document_parts.h"

#include "engine/list_cells.h"
#include "engine/oids.h"
#include "engine/output.h"
#include "x509/fields.h"
#include "x509/transition.h"

namespace tlvforge {

namespace {

// Indices into the alternatives of EntityIdentifier.
constexpr uint32_t kIssuerAndSerialNumber = 0;
constexpr uint32_t kSubjectKeyIdentifier = 1;

// Identifier octets of the kinds from 1 on.
constexpr uint8_t kCertificateOctets[] = {0x30, 0xA0, 0xA1, 0xA2, 0xA3};
constexpr uint8_t kCrlKinds = CmsCrlKindOther;

// Selects no alternative of any choice.
constexpr uint32_t kNoAlternative = UINT32_MAX;

// 1.2.840.113549.1.7.2
constexpr const Asn1Value& kSignedDataType =
    schema::ConstantValue<Asn1KindObjectIdentifier, 0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x07, 0x02>;

uint8_t CertificateKindOf(uint8_t tagClass, uint8_t constructedBit, uint32_t tagNumber) {
    for (uint32_t i = 0; i < sizeof kCertificateOctets; ++i) {
        const uint8_t octet = kCertificateOctets[i];
        const bool fits = (octet & 0xE0) == (tagClass | constructedBit) && (octet & 0x1Fu) == tagNumber;
        if (fits) return static_cast<uint8_t>(i + 1);
    }
    return 0;
}

// Whether an element is in the set whose first byte is another one in `data`.
bool HasCertificate(const CertificateSet& set, uint8_t octet, const uint8_t* data, uint32_t length) {
    for (uint32_t i = 0; i < set.count; ++i) {
        const Asn1Any* member = set.At(i);
        if (member == nullptr || member->length != length || HasLostBytes(member)) continue;
        if (member->data[0] == octet && memcmp(member->data + 1, data + 1, length - 1) == 0) return true;
    }
    return false;
}

bool IsSignedData(const Asn1Value* contentType) { return EqualRecords(*contentType, kSignedDataType); }

// Makes the value issuerAndSerialNumber, or keeps the one that is there.
Status NeedIssuerAndSerialNumber(EntityIdentifier* identifier, Place place) {
    if (identifier->selected != kIssuerAndSerialNumber) {
        const Status status = ClearAsn1Choice(itemOf<EntityIdentifier>, identifier);
        if (status != StatusOk) return status;
    }
    if (identifier->value == nullptr) {
        const Status status = CreateAsn1Object(&itemOf<IssuerAndSerialNumber>, &identifier->value, 0);
        if (status != StatusOk) return status;
    }
    identifier->selected = kIssuerAndSerialNumber;
    auto* parts = static_cast<IssuerAndSerialNumber*>(identifier->value);
    if (parts->issuer == nullptr) parts->issuer = AllocChoice<Name>();
    return parts->issuer == nullptr ? Fail(StatusOutOfMemory, place) : StatusOk;
}

}  // namespace

Status IdentifierParts::Of(EntityIdentifier* identifier, uint32_t* serialLength, uint32_t* keyIdLength, Place place) {
    if (identifier == nullptr || identifier->value == nullptr) return Fail(StatusAbsent, place);
    if (identifier->selected == kSubjectKeyIdentifier) {
        if (serialLength != nullptr) *serialLength = 0;
        keyId = static_cast<const Asn1Value*>(identifier->value);
        return StatusOk;
    }
    if (identifier->selected != kIssuerAndSerialNumber) return Fail(StatusBadAlternative, place);
    if (keyIdLength != nullptr) *keyIdLength = 0;
    const auto* parts = static_cast<const IssuerAndSerialNumber*>(identifier->value);
    if (AnyNull(parts->issuer, parts->serialNumber)) return Fail(StatusAbsent, place);
    serialNumber = parts->serialNumber;
    return LendName(parts->issuer, &issuer, place);
}

Status SetIssuerAndSerialNumber(EntityIdentifier* identifier, const X509Name* issuer, const uint8_t* serial,
                                uint32_t serialLength, Place place) {
    if (identifier == nullptr) return Fail(StatusAbsent, place);
    Status status = NeedIssuerAndSerialNumber(identifier, place);
    if (status != StatusOk) return status;
    auto* parts = static_cast<IssuerAndSerialNumber*>(identifier->value);
    status = CopyNameInto(parts->issuer, issuer, place);
    if (status != StatusOk) return status;
    const bool replaces = parts->serialNumber != nullptr;
    status = SetAsn1ValueField(&parts->serialNumber, Asn1KindInteger, serial, serialLength);
    // A number that is lost while it is replaced isn't told. This is intended.
    return replaces ? StatusOk : status;
}

Status SetSubjectKeyIdentifier(EntityIdentifier* identifier, const uint8_t* keyId, uint32_t length, Place place) {
    if (identifier == nullptr) return Fail(StatusAbsent, place);
    Asn1Value* value = AllocAsn1Value(Asn1KindOctetString, keyId, length);
    (void)ClearAsn1Choice(itemOf<EntityIdentifier>, identifier);
    identifier->value = value;
    if (value == nullptr) return Fail(StatusOutOfMemory, place);
    identifier->selected = kSubjectKeyIdentifier;
    return StatusOk;
}

Status GetEncodedCertificate(const CertificateSet* set, uint32_t index, uint8_t* kind, uint8_t* buffer,
                             uint32_t* length, Place place) {
    if (set == nullptr) return Fail(StatusAbsent, place);
    Asn1Any* element = nullptr;
    Status status = GetListMember(set, index, &element, place);
    if (status != StatusOk) return status;
    uint8_t tagClass = 0, constructedBit = 0;
    uint32_t tagNumber = 0, contentLength = 0, headerLength = 0;
    status = GetAsn1ObjectInfo(element->data, element->length, &tagClass, &constructedBit, &tagNumber, &contentLength,
                               nullptr, &headerLength);
    if (status != StatusOk) return status;
    *kind = CertificateKindOf(tagClass, constructedBit, tagNumber);
    if (buffer == nullptr && length == nullptr) return StatusOk;
    return CopyOut(element->data, element->length, buffer, length, place);
}

Status GetEncodedCrl(const RevocationInfoChoices* set, uint32_t index, uint8_t*, uint8_t*, uint32_t*, Place place) {
    if (set == nullptr) return Fail(StatusAbsent, place);
    RevocationInfoChoice* element = nullptr;
    const Status status = GetListMember(set, index, &element, place);
    return status == StatusOk ? Fail(StatusBadEncoding, place) : status;
}

Status AddEncodedCertificate(CertificateSet** set, uint8_t kind, const uint8_t* data, uint32_t length, Status badKind,
                             Place place) {
    const Status status = NeedList(set, place);
    if (status != StatusOk) return status;
    if (kind == 0 || kind > sizeof kCertificateOctets) return Fail(badKind, place);
    if (length == 0) return Fail(StatusBadArgument, place);
    const uint8_t octet = kCertificateOctets[kind - 1];
    if (HasCertificate(**set, octet, data, length)) return StatusOk;
    Tree<schema::ConstructedAny> element(AllocAsn1Any(Asn1KindSequence, data, length));
    if (!element) return Fail(StatusOutOfMemory, place);
    element->data[0] = octet;
    return element.MoveTo(*set);
}

Status AddEncodedCrl(RevocationInfoChoices** set, uint8_t kind, const uint8_t*, uint32_t, Status badKind, Place place) {
    const Status status = NeedList(set, place);
    if (status != StatusOk) return status;
    if (kind == 0 || kind > kCrlKinds) return Fail(badKind, place);
    Tree<RevocationInfoChoice> element(AllocChoice<RevocationInfoChoice>(kNoAlternative));
    return element ? element.MoveTo(*set) : Fail(StatusOutOfMemory, place);
}

Status DecodeSignedMessage(const uint8_t* data, uint32_t length, CmsSignedData** signedData, Place place) {
    *signedData = nullptr;
    Tree<SignedMessage> message;
    const Status decoded = message.Decode(data, length);
    if (decoded != StatusOk) {
        // Whether this is a ContentInfo of another type goes before what is wrong with the content.
        Tree<CmsContentInfo> info;
        const Status status = info.Decode(data, length);
        if (status != StatusOk) return status;
        return IsSignedData(info->contentType) ? decoded : Fail(StatusWrongContentType, place);
    }
    if (!IsSignedData(message->contentType)) return Fail(StatusWrongContentType, place);
    *signedData = message->content;
    message->content = nullptr;
    return StatusOk;
}

Status EncodeSignedMessage(const CmsSignedData* signedData, uint8_t* buffer, uint32_t* length) {
    if (signedData == nullptr) return Fail(StatusBadArgument);
    Asn1Value type = kSignedDataType;
    const SignedMessage message = {&type, const_cast<CmsSignedData*>(signedData)};  // the encoder only reads
    return EncodeTree(&message, buffer, length);
}

}  // namespace tlvforge
