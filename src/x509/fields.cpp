#include "x509/fields.h"

#include "common/times.h"
#include "tlvforge/certificate.h"

namespace tlvforge {

namespace {

constexpr uint32_t kGostKeyWriteLimit = 256;
constexpr uint32_t kGostKeyReadLimit = 270;

void StoreName(Name* field, X509Name* name) {
    (void)ClearAsn1Choice(itemOf<Name>, field);
    field->selected = 0;
    field->value = name;
}

Status AddDirectoryName(X509GeneralNames* names, const X509Name* name) {
    Block encoded;
    uint32_t length = 0;
    if (const Status status = Asn1Encode(name, &itemOf<X509Name>, encoded.Slot(), &length)) return status;
    return AddX509GeneralName(names, X509GeneralNameDirectoryName, encoded.Bytes(), length);
}

}  // namespace

Status GetName(const Part<Name>& field, X509Name** name) {
    if (!field) return field.Absent();
    if (field->value == nullptr) {
        field->value = AllocList<X509Name>();
        if (field->value == nullptr) return Fail(StatusOutOfMemory, field.place);
        field->selected = 0;
    }
    *name = static_cast<X509Name*>(field->value);
    return StatusOk;
}

Status CopyName(const Part<Name>& field, const X509Name* name) {
    if (!field) return field.Absent();
    Tree<X509Name> copy;
    const Status status = copy.CopyOf(name);
    StoreName(field.node, copy.Take());
    return status;
}

Status MoveName(const Part<Name>& field, X509Name* name) {
    if (!field) return field.Absent();
    if (field->value != name) StoreName(field.node, name);
    return StatusOk;
}

Status GetTime(const Part<Time>& field, LibraryTime* time) {
    return field ? Asn1TimeToLibraryTime(field.node, time) : field.Absent();
}

Status SetTime(const Part<Time>& field, const LibraryTime* time) {
    return field ? LibraryTimeToAsn1Time(time, field.node) : field.Absent();
}

Status GetGostPublicKey(const Part<Asn1BitString>& field, uint8_t* key, uint32_t* length, Place place) {
    uint8_t wrapped[kGostKeyReadLimit] = {};
    uint32_t wrappedLength = sizeof wrapped;
    const Status status = GetBits(field, wrapped, &wrappedLength);
    if (status == StatusBufferTooSmall) return FromWorkBuffer(status, place);
    if (status != StatusOk) wrappedLength = 0;
    return DecodeAsn1PrimitiveValue(Asn1KindOctetString, wrapped, wrappedLength, key, length);
}

Status SetGostPublicKey(const Slot<Asn1BitString>& field, const uint8_t* key, uint32_t length, Place place) {
    uint8_t wrapped[kGostKeyWriteLimit];
    uint32_t wrappedLength = sizeof wrapped;
    const Status status = EncodeAsn1PrimitiveValue(Asn1KindOctetString, key, length, wrapped, &wrappedLength);
    if (status != StatusOk) return FromWorkBuffer(status, place);
    return ReplaceBits(field, wrapped, wrappedLength);
}

Status ReplaceExtension(X509Extensions extensions, const uint8_t* oid, Bytes value) {
    if (const Status status = RemoveX509ExtensionsExtension2(extensions, oid)) return status;
    return AddX509ExtensionsExtension(extensions, oid, 0, value.data, value.length);
}

Status SetAuthorityKeyIdentifier(const Part<X509ExtensionsCell>& extensions, const AuthorityParts& parts) {
    Tree<X509GeneralNames> names;
    if (parts.issuer != nullptr) {
        if (const Status status = names.Create()) return status;
        if (const Status status = AddDirectoryName(names.Get(), parts.issuer)) return status;
    }
    Block value;
    uint32_t length = 0;
    const auto encode = [&](uint8_t* buffer, uint32_t* size) {
        return EncodeExtensionAuthorityKeyIdentifier(parts.keyId.data, parts.keyId.length, names.Get(),
                                                     parts.serial.data, parts.serial.length, buffer, size);
    };
    if (const Status status = MakeBytes(encode, &value, &length)) return status;
    if (!extensions) return extensions.Absent();
    return ReplaceExtension(extensions.node, Oid<2, 5, 29, 35>, {value.Bytes(), length});
}

Status AuthorityIdentity::ReadFrom(Certificate* issuerCertificate, Place place) {
    if (GetCertificateSubjectKeyIdentifier(issuerCertificate, keyIdBytes, &keyIdLength) == StatusOk) keyId = keyIdBytes;
    if (const Status status = GetCertificateIssuer(issuerCertificate, &issuer)) return status;
    return FromWorkBuffer(GetCertificateSerialNumber(issuerCertificate, serial, &serialLength), place);
}

}  // namespace tlvforge
