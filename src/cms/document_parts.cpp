#include "cms/document_parts.h"

#include "engine/views.h"
#include "x509/fields.h"

namespace tlvforge {

namespace {

// Indices into the alternatives of EntityIdentifier.
constexpr uint32_t kIssuerAndSerialNumber = 0;
constexpr uint32_t kSubjectKeyIdentifier = 1;

// Identifier octets of the kinds from 1 on.
constexpr uint8_t kCertificateOctets[] = {0x30, 0xA0, 0xA1, 0xA2, 0xA3};
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

// Whether the set has the element with this first byte.
bool HasCertificate(const CertificateSet& set, uint8_t octet, Bytes element) {
    for (uint32_t i = 0; i < set.count; ++i) {
        const Asn1Any* member = set.At(i);
        if (member == nullptr || member->length != element.length || HasLostBytes(member)) continue;
        if (member->data[0] == octet && memcmp(member->data + 1, element.data + 1, element.length - 1) == 0)
            return true;
    }
    return false;
}

bool IsSignedData(const Asn1Value* contentType) { return EqualRecords(*contentType, kSignedDataType); }

// Makes the value issuerAndSerialNumber, or keeps the one that is there.
Status EnsureIssuerAndSerialNumber(EntityIdentifier* identifier) {
    if (identifier->selected != kIssuerAndSerialNumber) {
        if (const Status status = ClearAsn1Choice(itemOf<EntityIdentifier>, identifier)) return status;
    }
    if (identifier->value == nullptr) {
        IssuerAndSerialNumber* both = nullptr;
        if (const Status status = CreateTree(&both, 0)) return status;
        identifier->value = both;
    }
    identifier->selected = kIssuerAndSerialNumber;
    return Ensure(&static_cast<IssuerAndSerialNumber*>(identifier->value)->issuer);
}

}  // namespace

Status IdentifierParts::Of(const Part<EntityIdentifier>& identifier, uint32_t* serialLength, uint32_t* keyIdLength,
                           Place place) {
    if (!identifier || identifier->value == nullptr) return identifier.Absent();
    if (identifier->selected == kSubjectKeyIdentifier) {
        if (serialLength != nullptr) *serialLength = 0;
        keyId = static_cast<const Asn1Value*>(identifier->value);
        return StatusOk;
    }
    if (identifier->selected != kIssuerAndSerialNumber) return Fail(StatusBadAlternative, place);
    if (keyIdLength != nullptr) *keyIdLength = 0;
    const auto* parts = static_cast<const IssuerAndSerialNumber*>(identifier->value);
    if (AnyNull(parts->issuer, parts->serialNumber)) return identifier.Absent();
    serialNumber = parts->serialNumber;
    return GetName({parts->issuer, identifier.place}, &issuer);
}

Status SetIssuerAndSerialNumber(const Part<EntityIdentifier>& identifier, const X509Name* issuer, Bytes serial) {
    if (!identifier) return identifier.Absent();
    if (const Status status = EnsureIssuerAndSerialNumber(identifier.node)) return status;
    auto* parts = static_cast<IssuerAndSerialNumber*>(identifier->value);
    if (const Status status = CopyName({parts->issuer, identifier.place}, issuer)) return status;
    const bool replaces = parts->serialNumber != nullptr;
    const Status status = SetAsn1ValueField(&parts->serialNumber, Asn1KindInteger, serial.data, serial.length);
    // A number that is lost while it is replaced is no failure: see docs/oddities.md.
    return replaces ? StatusOk : status;
}

Status SetSubjectKeyIdentifier(const Part<EntityIdentifier>& identifier, Bytes keyId) {
    if (!identifier) return identifier.Absent();
    Asn1Value* value = AllocAsn1Value(Asn1KindOctetString, keyId.data, keyId.length);
    (void)ClearAsn1Choice(itemOf<EntityIdentifier>, identifier.node);
    identifier->value = value;
    if (value == nullptr) return Fail(StatusOutOfMemory, identifier.place);
    identifier->selected = kSubjectKeyIdentifier;
    return StatusOk;
}

Status GetEncodedCertificate(const Part<CertificateSet>& set, uint32_t index, uint8_t* kind, Bytes* certificate,
                             Place place) {
    Asn1Any* element = nullptr;
    if (const Status status = GetMember(set, index, &element, place)) return status;
    uint8_t tagClass = 0, constructedBit = 0;
    uint32_t tagNumber = 0, contentLength = 0, headerLength = 0;
    if (const Status status = GetAsn1ObjectInfo(element->data, element->length, &tagClass, &constructedBit, &tagNumber,
                                                &contentLength, nullptr, &headerLength)) {
        return status;
    }
    *kind = CertificateKindOf(tagClass, constructedBit, tagNumber);
    *certificate = {element->data, element->length};
    return StatusOk;
}

bool IsCertificateKind(uint8_t kind) { return kind != 0 && kind <= sizeof kCertificateOctets; }

bool IsCrlKind(uint8_t kind) { return kind != 0 && kind <= CmsCrlKindOther; }

Status AddEncodedCertificate(CertificateSet* set, uint8_t kind, Bytes certificate, Place place) {
    const uint8_t octet = kCertificateOctets[kind - 1];
    if (HasCertificate(*set, octet, certificate)) return StatusOk;
    Tree<schema::ConstructedAny> element(AllocAsn1Any(Asn1KindSequence, certificate.data, certificate.length));
    if (!element) return Fail(StatusOutOfMemory, place);
    element->data[0] = octet;
    return element.MoveTo(set);
}

Status AddEncodedCrl(RevocationInfoChoices* set, Place place) {
    Tree<RevocationInfoChoice> element(AllocChoice<RevocationInfoChoice>(kNoAlternative));
    return element ? element.MoveTo(set) : Fail(StatusOutOfMemory, place);
}

Status ReplaceContent(const Slot<Asn1Value>& field, Bytes content) {
    if (field.cell == nullptr) return field.Absent();
    FreeField(field.cell);
    if (content.data == nullptr || content.length == 0) return StatusOk;
    return ReplaceField(field.cell, AllocAsn1Value(Asn1KindOctetString, content.data, content.length), field.place);
}

Status DecodeSignedMessage(Bytes message, Tree<CmsSignedData>* signedData, Place place) {
    Tree<SignedMessage> whole;
    const Status decoded = whole.Decode(message.data, message.length);
    if (decoded != StatusOk) {
        // That this is a ContentInfo of another type goes before what is wrong with the content.
        Tree<CmsContentInfo> info;
        if (const Status status = info.Decode(message.data, message.length)) return status;
        return IsSignedData(info->contentType) ? decoded : Fail(StatusWrongContentType, place);
    }
    if (!IsSignedData(whole->contentType)) return Fail(StatusWrongContentType, place);
    *signedData->Slot() = TakeField(&whole->content);
    return StatusOk;
}

Status EncodeSignedMessage(const CmsSignedData* signedData, uint8_t* buffer, uint32_t* length) {
    Asn1Value type = kSignedDataType;
    return EncodeTree(AddressOf(SignedMessage{&type, Unconst(signedData)}), buffer, length);
}

}  // namespace tlvforge
