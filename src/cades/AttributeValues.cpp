#include "tlvforge/attribute_values.h"

#include <utility>

#include "cades/value_parts.h"
#include "common/times.h"
#include "engine/alias.h"
#include "tlvforge/oid.h"
#include "x509/certificate.schema.h"
#include "x509/extension_codecs.h"

using namespace tlvforge;

namespace {

// The rule of the encoders that know no capacity: see docs/oddities.md.
template <class Node>
Status EncodeInFull(const Node* node, uint8_t* buffer, uint32_t* length) {
    if (length == nullptr) return Fail(StatusBadArgument);
    uint32_t needed = UINT32_MAX;
    if (const Status status = EncodeTree(node, buffer, &needed)) return status;
    *length = needed;
    return StatusOk;
}

// --- Document information ---

Status GetTimeOrNull(const Asn1Value* field, LibraryTime* time) {
    if (field != nullptr) return GeneralizedTimeToLibraryTime(field, time);
    *time = {};
    return StatusOk;
}

Status SetText(Asn1Value** field, Bytes text) { return SetOptionalBytes(field, Asn1KindUTF8String, text); }

Status SetTimeUnlessNull(Asn1Value** field, const LibraryTime* time) {
    return IsLibraryTimeNull(time) == 0 ? SetOptionalTime(field, time) : StatusOk;
}

// --- Signing certificates ---

template <class List>
Status DecodeSigningCertificate(Bytes bytes, List** certs, ExtensionCertificatePolicies** policies) {
    if (AnyNull(bytes.data, certs, policies)) return Fail(StatusBadArgument);
    *certs = nullptr;
    *policies = nullptr;
    Tree<SigningCertificate<List>> value;
    if (const Status status = value.Decode(bytes.data, bytes.length)) return status;
    *certs = TakeField(&value->certs);
    *policies = TakeField(&value->policies);
    return StatusOk;
}

template <class List>
Status EncodeSigningCertificate(const List* certs, const ExtensionCertificatePolicies* policies, uint8_t* buffer,
                                uint32_t* length) {
    if (AnyNull(certs, length)) return Fail(StatusBadArgument);
    PoliciesView view;
    if (policies != nullptr) {
        if (const Status status = view.Of(policies)) return status;
    }
    const SigningCertificate<List> value = {Unconst(certs), Unconst(view.List())};
    return EncodeInFull(&value, buffer, length);
}

// --- Hash index ---

// With its algorithm, or without: then the algorithm is the default.
Status DecodeHashIndex(Bytes bytes, Tree<AtsHashIndex>* index) {
    const Status status = index->Decode(bytes.data, bytes.length);
    if (status != StatusBadEncoding) return status;
    Tree<AtsHashIndexLists> lists;
    const Status second = lists.Decode(bytes.data, bytes.length);
    if (second != StatusOk) return second == StatusOutOfMemory ? second : status;
    if (const Status created = index->Create()) return created;
    AtsHashIndex& found = *index->Get();
    std::swap(found.certificatesHashIndex, lists->certificatesHashIndex);
    std::swap(found.crlsHashIndex, lists->crlsHashIndex);
    std::swap(found.unsignedAttrsHashIndex, lists->unsignedAttrsHashIndex);
    return StatusOk;
}

}  // namespace

// --- Simple values ---

Status DecodeRsaAttributeContentTypeValue(const uint8_t* data, uint32_t length, uint8_t* oid, uint32_t* oidLength) {
    return DecodeAsn1Oid(data, length, oid, oidLength);
}

Status EncodeRsaAttributeContentTypeValue(const uint8_t* oid, uint8_t* buffer, uint32_t* length) {
    return EncodeAsn1Oid(oid, buffer, length);
}

Status DecodeRsaAttributeValidityPeriodValue(const uint8_t* data, uint32_t length, int32_t* number) {
    return DecodeAsn1Int32(data, length, number);
}

Status EncodeRsaAttributeValidityPeriodValue(int32_t number, uint8_t* buffer, uint32_t* length) {
    return EncodeAsn1Int32(number, buffer, length);
}

Status DecodeRsaAttributeMessageDigestValue(const uint8_t* data, uint32_t length, uint8_t* value,
                                            uint32_t* valueLength) {
    return DecodeAsn1PrimitiveValue(Asn1KindOctetString, data, length, value, valueLength);
}

Status EncodeRsaAttributeMessageDigestValue(const uint8_t* value, uint32_t valueLength, uint8_t* buffer,
                                            uint32_t* length) {
    return EncodeAsn1PrimitiveValue(Asn1KindOctetString, value, valueLength, buffer, length);
}

Status DecodeRsaAttributeTokenSerialNumberValue(const uint8_t* data, uint32_t length, uint8_t* text,
                                                uint32_t* textLength) {
    return DecodeAsn1UTF8String(data, length, text, textLength);
}

Status EncodeRsaAttributeTokenSerialNumberValue(const uint8_t* text, uint32_t textLength, uint8_t* buffer,
                                                uint32_t* length) {
    return EncodeAsn1UTF8String(text, textLength, buffer, length);
}

Status DecodeRsaAttributeSigningTimeValue(const uint8_t* data, uint32_t length, LibraryTime* time) {
    return DecodeTime(data, length, time);
}

Status EncodeRsaAttributeSigningTimeValue(const LibraryTime* time, uint8_t* buffer, uint32_t* length) {
    return EncodeTime(time, buffer, length);
}

// --- Values with several fields ---

Status DecodeRsaAttributeValidityValue(const uint8_t* data, uint32_t length, LibraryTime* notBefore,
                                       LibraryTime* notAfter) {
    if (AnyNull(data, notBefore, notAfter)) return Fail(StatusBadArgument);
    Tree<Validity> validity;
    if (const Status status = validity.Decode(data, length)) return status;
    if (const Status status = Asn1TimeToLibraryTime(validity->notBefore, notBefore)) return status;
    return Asn1TimeToLibraryTime(validity->notAfter, notAfter);
}

Status EncodeRsaAttributeValidityValue(const LibraryTime* notBefore, const LibraryTime* notAfter, uint8_t* buffer,
                                       uint32_t* length) {
    if (AnyNull(notBefore, notAfter, length)) return Fail(StatusBadArgument);
    Tree<Validity> validity;
    if (const Status status = validity.Create()) return status;
    if (const Status status = LibraryTimeToAsn1Time(notBefore, validity->notBefore)) return status;
    if (const Status status = LibraryTimeToAsn1Time(notAfter, validity->notAfter)) return status;
    return validity.Encode(buffer, length);
}

Status DecodeRsaAttributeExtSubjInfoValue(const uint8_t* data, uint32_t length, uint8_t* oid, uint32_t* oidLength,
                                          uint8_t* value, uint32_t* valueLength) {
    if (AnyNull(data, oidLength, valueLength)) return Fail(StatusBadArgument);
    Tree<TypedValue> info;
    if (const Status status = info.Decode(data, length)) return status;
    return GetTypedValue(info.Get(), {oid, oidLength}, {value, valueLength});
}

Status EncodeRsaAttributeExtSubjInfoValue(const uint8_t* oid, const uint8_t* value, uint32_t valueLength,
                                          uint8_t* buffer, uint32_t* length) {
    if (AnyNull(oid, value, length)) return Fail(StatusBadArgument);
    TypedValueView info(oid, {value, valueLength});
    return EncodeTree(info.Get(), buffer, length);
}

Status DecodeDocInfo(const uint8_t* data, uint32_t length, int32_t* docType, uint8_t* text0, uint32_t* text0Length,
                     uint8_t* text1, uint32_t* text1Length, uint8_t* text2, uint32_t* text2Length, LibraryTime* time3,
                     LibraryTime* time4, uint8_t* text5, uint32_t* text5Length) {
    if (AnyNull(data, docType, text0Length, text1Length, text2Length, time3, time4, text5Length)) {
        return Fail(StatusBadArgument);
    }
    Tree<DocInfo> info;
    if (const Status status = info.Decode(data, length)) return status;
    return ReadOutputs(
        OutputRule::kAllLast, [&] { return GetAsn1Int32(info->docType, docType); },
        BytesInto(info->text0, text0, text0Length), BytesInto(info->text1, text1, text1Length),
        BytesInto(info->text2, text2, text2Length), [&] { return GetTimeOrNull(info->time3, time3); },
        [&] { return GetTimeOrNull(info->time4, time4); }, BytesInto(info->text5, text5, text5Length));
}

// text2 has no effect: see docs/oddities.md.
Status EncodeDocInfo(uint32_t docType, const uint8_t* text0, uint32_t text0Length, const uint8_t* text1,
                     uint32_t text1Length, const uint8_t*, uint32_t, const LibraryTime* time3, const LibraryTime* time4,
                     const uint8_t* text5, uint32_t text5Length, uint8_t* buffer, uint32_t* length) {
    if (length == nullptr) return Fail(StatusBadArgument);
    Tree<DocInfo> info;
    if (const Status status = info.Create()) return status;
    if (const Status status = SetAsn1Int32Field(&info->docType, static_cast<int32_t>(docType))) return status;
    if (const Status status = SetText(&info->text0, {text0, text0Length})) return status;
    if (const Status status = SetText(&info->text1, {text1, text1Length})) return status;
    if (const Status status = SetTimeUnlessNull(&info->time3, time3)) return status;
    if (const Status status = SetTimeUnlessNull(&info->time4, time4)) return status;
    if (const Status status = SetText(&info->text5, {text5, text5Length})) return status;
    return info.Encode(buffer, length);
}

// --- Signing certificates ---

Status DecodeRsaAttributeSigningCertificateValue(const uint8_t* data, uint32_t length, ESSCertIDs** certs,
                                                 ExtensionCertificatePolicies** policies) {
    return DecodeSigningCertificate({data, length}, certs, policies);
}

Status DecodeRsaAttributeSigningCertificateV2Value(const uint8_t* data, uint32_t length, ESSCertIDsV2** certs,
                                                   ExtensionCertificatePolicies** policies) {
    return DecodeSigningCertificate({data, length}, certs, policies);
}

Status DecodeRsaAttributeOtherSigningCertificateValue(const uint8_t* data, uint32_t length, OtherCertIDs** certs,
                                                      ExtensionCertificatePolicies** policies) {
    return DecodeSigningCertificate({data, length}, certs, policies);
}

Status EncodeRsaAttributeSigningCertificateValue(const ESSCertIDs* certs, const ExtensionCertificatePolicies* policies,
                                                 uint8_t* buffer, uint32_t* length) {
    return EncodeSigningCertificate(certs, policies, buffer, length);
}

Status EncodeRsaAttributeSigningCertificateV2Value(const ESSCertIDsV2* certs,
                                                   const ExtensionCertificatePolicies* policies, uint8_t* buffer,
                                                   uint32_t* length) {
    return EncodeSigningCertificate(certs, policies, buffer, length);
}

Status EncodeRsaAttributeOtherSigningCertificateValue(const OtherCertIDs* certs,
                                                      const ExtensionCertificatePolicies* policies, uint8_t* buffer,
                                                      uint32_t* length) {
    return EncodeSigningCertificate(certs, policies, buffer, length);
}

Status DecodeOtherCertIDs(const uint8_t* data, uint32_t length, OtherCertIDs** list) {
    return DecodeTree(data, length, list);
}

Status EncodeOtherCertIDs(const OtherCertIDs* list, uint8_t* buffer, uint32_t* length) {
    return EncodeInFull(list, buffer, length);
}

// --- Revocation data ---

Status DecodeRsaAttributeCompleteRevocationRefs(const uint8_t* data, uint32_t length, CrlOcspRefs** list) {
    return DecodeTree(data, length, list);
}

Status EncodeRsaAttributeCompleteRevocationRefs(const CrlOcspRefs* list, uint8_t* buffer, uint32_t* length) {
    return EncodeInFull(list, buffer, length);
}

Status DecodeRsaAttributeRevocationValues(const uint8_t* data, uint32_t length, X509Crls** crls,
                                          OcspBasicResponses** ocsps, uint8_t* otherOid, uint32_t* otherOidLength,
                                          uint8_t* otherValue, uint32_t* otherValueLength) {
    if (AnyNull(data, crls, ocsps, otherOidLength, otherValueLength)) return Fail(StatusBadArgument);
    *crls = nullptr;
    *ocsps = nullptr;
    Tree<RevocationValues> values;
    if (const Status status = values.Decode(data, length)) return status;
    *crls = TakeField(&values->crlVals);
    *ocsps = TakeField(&values->ocspVals);
    return GetTypedValue(values->otherRevVals, {otherOid, otherOidLength}, {otherValue, otherValueLength});
}

Status EncodeRsaAttributeRevocationValues(const X509Crls* crls, const OcspBasicResponses* ocsps,
                                          const uint8_t* otherOid, const uint8_t* otherValue, uint32_t otherLength,
                                          uint8_t* buffer, uint32_t* length) {
    TypedValueView other(otherOid, {otherValue, otherLength});
    const bool hasOther = otherValue != nullptr && otherLength != 0;
    const RevocationValues values = {Unconst(crls), Unconst(ocsps), hasOther ? other.Get() : nullptr};
    return EncodeInFull(&values, buffer, length);
}

Status DecodeRsaAttributeAtsHashIndex(const uint8_t* data, uint32_t length, uint8_t* oid, uint32_t* oidLength,
                                      uint8_t* parameters, uint32_t* parametersLength, OctetStrings** certificates,
                                      OctetStrings** crls, OctetStrings** attributes) {
    if (AnyNull(data, oidLength, parametersLength, certificates, crls, attributes)) {
        return Fail(StatusBadArgument);
    }
    *certificates = *crls = *attributes = nullptr;
    Tree<AtsHashIndex> index;
    if (const Status status = DecodeHashIndex({data, length}, &index)) return status;
    *certificates = TakeField(&index->certificatesHashIndex);
    *crls = TakeField(&index->crlsHashIndex);
    *attributes = TakeField(&index->unsignedAttrsHashIndex);
    // A buffer that is too small is no failure here: see docs/oddities.md.
    (void)GetAlgorithm(At<&AtsHashIndex::hashIndAlgorithm>(index.Get()), {oid, oidLength},
                       {parameters, parametersLength});
    return StatusOk;
}

Status EncodeRsaAttributeAtsHashIndex(const uint8_t* oid, const uint8_t* parameters, uint32_t parametersLength,
                                      const OctetStrings* certificates, const OctetStrings* crls,
                                      const OctetStrings* attributes, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(oid, certificates, crls, attributes, length)) return Fail(StatusBadArgument);
    AlgorithmView algorithm(oid, {parameters, parametersLength});
    const AtsHashIndex index = {algorithm.Get(), Unconst(certificates), Unconst(crls), Unconst(attributes)};
    return EncodeInFull(&index, buffer, length);
}

// --- One function under the names of several attributes ---

TLVFORGE_ALIAS(DecodeRsaAttributeChannelCspClassValue, DecodeRsaAttributeContentTypeValue);
TLVFORGE_ALIAS(EncodeRsaAttributeChannelCspClassValue, EncodeRsaAttributeContentTypeValue);
TLVFORGE_ALIAS(DecodeRsaAttributeRequestCertificateStatusValue, DecodeRsaAttributeContentTypeValue);
TLVFORGE_ALIAS(EncodeRsaAttributeRequestCertificateStatusValue, EncodeRsaAttributeContentTypeValue);
TLVFORGE_ALIAS(DecodeRsaAttributeSecurityTokenTypeValue, DecodeRsaAttributeContentTypeValue);
TLVFORGE_ALIAS(EncodeRsaAttributeSecurityTokenTypeValue, EncodeRsaAttributeContentTypeValue);
TLVFORGE_ALIAS(DecodeRsaAttributeSignatureConfirmationTypeValue, DecodeRsaAttributeContentTypeValue);
TLVFORGE_ALIAS(EncodeRsaAttributeSignatureConfirmationTypeValue, EncodeRsaAttributeContentTypeValue);
TLVFORGE_ALIAS(DecodeRsaAttributeUsageValue, DecodeRsaAttributeContentTypeValue);
TLVFORGE_ALIAS(EncodeRsaAttributeUsageValue, EncodeRsaAttributeContentTypeValue);
TLVFORGE_ALIAS(DecodeRsaAttributePacketDigestCountValue, DecodeRsaAttributeValidityPeriodValue);
TLVFORGE_ALIAS(EncodeRsaAttributePacketDigestCountValue, EncodeRsaAttributeValidityPeriodValue);
TLVFORGE_ALIAS(DecodeRsaAttributePacketDigestNumberValue, DecodeRsaAttributeValidityPeriodValue);
TLVFORGE_ALIAS(EncodeRsaAttributePacketDigestNumberValue, EncodeRsaAttributeValidityPeriodValue);
TLVFORGE_ALIAS(DecodeRsaAttributePinNumberValue, DecodeRsaAttributeValidityPeriodValue);
TLVFORGE_ALIAS(EncodeRsaAttributePinNumberValue, EncodeRsaAttributeValidityPeriodValue);
TLVFORGE_ALIAS(DecodeRsaAttributeRequestCertificateTypeValue, DecodeRsaAttributeValidityPeriodValue);
TLVFORGE_ALIAS(EncodeRsaAttributeRequestCertificateTypeValue, EncodeRsaAttributeValidityPeriodValue);
TLVFORGE_ALIAS(DecodeRsaAttributeTokenSignatureNumberValue, DecodeRsaAttributeValidityPeriodValue);
TLVFORGE_ALIAS(EncodeRsaAttributeTokenSignatureNumberValue, EncodeRsaAttributeValidityPeriodValue);
TLVFORGE_ALIAS(DecodeRsaAttributeCyksCertificateValue, DecodeRsaAttributeMessageDigestValue);
TLVFORGE_ALIAS(EncodeRsaAttributeCyksCertificateValue, EncodeRsaAttributeMessageDigestValue);
TLVFORGE_ALIAS(DecodeRsaAttributeTemplateDigestValue, DecodeRsaAttributeMessageDigestValue);
TLVFORGE_ALIAS(EncodeRsaAttributeTemplateDigestValue, EncodeRsaAttributeMessageDigestValue);
TLVFORGE_ALIAS(DecodeRsaAttributeX509CertificateValue, DecodeRsaAttributeMessageDigestValue);
TLVFORGE_ALIAS(EncodeRsaAttributeX509CertificateValue, EncodeRsaAttributeMessageDigestValue);
TLVFORGE_ALIAS(DecodeRsaAttributeZelcryptPubKeyValue, DecodeRsaAttributeMessageDigestValue);
TLVFORGE_ALIAS(EncodeRsaAttributeZelcryptPubKeyValue, EncodeRsaAttributeMessageDigestValue);
