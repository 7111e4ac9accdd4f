#include "x509/fields.h"

#include "common/times.h"
#include "engine/oids.h"
#include "engine/output.h"
#include "tlvforge/certificate.h"

namespace tlvforge {

namespace {

constexpr uint32_t kGostKeyWriteLimit = 256;
constexpr uint32_t kGostKeyReadLimit = 270;

void StoreName(Name* slot, X509Name* name) {
    (void)ClearAsn1Choice(itemOf<Name>, slot);
    slot->selected = 0;
    slot->value = name;
}

Status AddDirectoryName(X509GeneralNames* names, const X509Name* name) {
    Block encoded;
    uint32_t length = 0;
    const Status status = Asn1Encode(name, &itemOf<X509Name>, encoded.Slot(), &length);
    if (status != StatusOk) return status;
    return AddX509GeneralName(names, X509GeneralNameDirectoryName, encoded.Bytes(), length);
}

}  // namespace

Status LendName(Name* slot, X509Name** name, Place place) {
    if (slot == nullptr) return Fail(StatusAbsent, place);
    if (slot->value == nullptr) {
        slot->value = AllocAsn1List();
        if (slot->value == nullptr) return Fail(StatusOutOfMemory, place);
        slot->selected = 0;
    }
    *name = static_cast<X509Name*>(slot->value);
    return StatusOk;
}

Status CopyNameInto(Name* slot, const X509Name* name, Place place) {
    if (slot == nullptr) return Fail(StatusAbsent, place);
    Tree<X509Name> copy;
    const Status status = copy.CopyOf(name);
    StoreName(slot, copy.Take());
    return status;
}

Status MoveNameInto(Name* slot, X509Name* name, Place place) {
    if (slot == nullptr) return Fail(StatusAbsent, place);
    if (slot->value != name) StoreName(slot, name);
    return StatusOk;
}

Status GetTimeField(const Time* slot, LibraryTime* time, Place place) {
    return slot == nullptr ? Fail(StatusAbsent, place) : Asn1TimeToLibraryTime(slot, time);
}

Status SetTimeField(Time* slot, const LibraryTime* time, Place place) {
    return slot == nullptr ? Fail(StatusAbsent, place) : LibraryTimeToAsn1Time(time, slot);
}

Status GetBitStringField(const Asn1BitString* field, uint8_t* buffer, uint32_t* length, Place place) {
    return field == nullptr ? Fail(StatusAbsent, place) : GetAsn1BitString(field, nullptr, buffer, length);
}

Status ReplaceBitString(Asn1BitString** field, const uint8_t* bytes, uint32_t length, uint8_t unusedBits, Place place) {
    Asn1BitString* replacement = AllocAsn1BitString(bytes, length, unusedBits);
    ReleaseRecord(*field);
    *field = replacement;
    return replacement == nullptr ? Fail(StatusOutOfMemory, place) : StatusOk;
}

Status GetPublicKey(const SubjectPublicKeyInfo* info, uint8_t* key, uint32_t* length, Place place) {
    return GetBitStringField(info == nullptr ? nullptr : info->subjectPublicKey, key, length, place);
}

Status SetPublicKey(SubjectPublicKeyInfo* info, const uint8_t* key, uint32_t length, Place place) {
    if (info == nullptr) return Fail(StatusAbsent, place);
    return ReplaceBitString(&info->subjectPublicKey, key, length, 0, place);
}

Status GetGostPublicKey(const SubjectPublicKeyInfo* info, uint8_t* key, uint32_t* length, Place place) {
    uint8_t wrapped[kGostKeyReadLimit] = {};
    uint32_t wrappedLength = sizeof wrapped;
    const Status status = GetPublicKey(info, wrapped, &wrappedLength, place);
    if (status == StatusBufferTooSmall) return FromWorkBuffer(status, place);
    if (status != StatusOk) wrappedLength = 0;
    return DecodeAsn1PrimitiveValue(Asn1KindOctetString, wrapped, wrappedLength, key, length);
}

Status SetGostPublicKey(SubjectPublicKeyInfo* info, const uint8_t* key, uint32_t length, Place place) {
    uint8_t wrapped[kGostKeyWriteLimit];
    uint32_t wrappedLength = sizeof wrapped;
    const Status status = EncodeAsn1PrimitiveValue(Asn1KindOctetString, key, length, wrapped, &wrappedLength);
    if (status != StatusOk) return FromWorkBuffer(status, place);
    return SetPublicKey(info, wrapped, wrappedLength, place);
}

Status ReplaceExtension(X509Extensions extensions, const uint8_t* oid, const uint8_t* value, uint32_t length) {
    const Status status = RemoveX509ExtensionsExtension2(extensions, oid);
    return status != StatusOk ? status : AddX509ExtensionsExtension(extensions, oid, 0, value, length);
}

Status GetAlgorithm(const AlgorithmIdentifier* field, uint8_t* oid, uint32_t* oidLength, uint8_t* parameters,
                    uint32_t* parametersLength, Place place) {
    if (field == nullptr) return Fail(StatusAbsent, place);
    return GetAlgorithmIdentifierOidAndParameters(field, oid, oidLength, parameters, parametersLength);
}

Status SetAlgorithm(AlgorithmIdentifier* field, const uint8_t* oid, const uint8_t* parameters, uint32_t length,
                    Place place) {
    if (field == nullptr) return Fail(StatusAbsent, place);
    return SetAlgorithmIdentifierOidAndParameters(field, oid, parameters, length);
}

Status SetGostAlgorithm(AlgorithmIdentifier* field, uint32_t algorithmId, uint8_t parametersForm,
                        uint32_t publicKeyParamSet, uint32_t digestParamSet, uint32_t encryptionParamSet, Place place) {
    if (field == nullptr) return Fail(StatusAbsent, place);
    return SetAlgorithmGostR34102001AndParameters(field, algorithmId, parametersForm, publicKeyParamSet, digestParamSet,
                                                  encryptionParamSet);
}

Status SetAuthorityKeyIdentifier(X509Extensions extensions, const uint8_t* keyId, uint32_t keyIdLength,
                                 const X509Name* issuer, const uint8_t* serial, uint32_t serialLength, Place place) {
    if (keyId == nullptr && AnyNull(issuer, serial)) return Fail(StatusBadArgument, place);
    Tree<X509GeneralNames> names;
    if (issuer != nullptr) {
        Status status = names.Create();
        if (status == StatusOk) status = AddDirectoryName(names.Get(), issuer);
        if (status != StatusOk) return status;
    }
    uint32_t length = 0;
    const auto encode = [&](uint8_t* buffer) {
        return EncodeExtensionAuthorityKeyIdentifier(keyId, keyIdLength, names.Get(), serial, serialLength, buffer,
                                                     &length);
    };
    Status status = encode(nullptr);
    if (status != StatusOk) return status;
    Block value(length);
    if (!value) return Fail(StatusOutOfMemory, place);
    status = encode(value.Bytes());
    if (status != StatusOk) return status;

    if (extensions == nullptr) return Fail(StatusAbsent, place);
    return ReplaceExtension(extensions, Oid<2, 5, 29, 35>, value.Bytes(), length);
}

Status AuthorityIdentity::ReadFrom(Certificate* issuerCertificate, Place place) {
    if (GetCertificateSubjectKeyIdentifier(issuerCertificate, keyIdBytes, &keyIdLength) == StatusOk) keyId = keyIdBytes;
    const Status status = GetCertificateIssuer(issuerCertificate, &issuer);
    if (status != StatusOk) return status;
    return FromWorkBuffer(GetCertificateSerialNumber(issuerCertificate, serial, &serialLength), place);
}

}  // namespace tlvforge
