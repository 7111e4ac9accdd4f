#include "tlvforge/certificate.h"

#include "engine/oids.h"
#include "engine/output.h"
#include "tlvforge/convert.h"
#include "tlvforge/sha1.h"
#include "x509/certificate.schema.h"
#include "x509/fields.h"

using namespace tlvforge;

namespace {

constexpr uint32_t kExtensionValueLimit = 1024;
constexpr uint32_t kTextLimit = 138;

Part<X509ExtensionsCell> ExtensionsOf(const Certificate* certificate, Place place = Place::Here()) {
    return At<&Certificate::tbsCertificate, &TBSCertificate::extensions>(certificate, place);
}

// Removes the old extension before the new value is made: a failure of `make` leaves the certificate without it.
template <class Make>
Status MakeExtension(X509Extensions extensions, const uint8_t* oid, Make make) {
    if (const Status status = RemoveX509ExtensionsExtension2(extensions, oid)) return status;
    uint8_t value[kTextLimit];
    uint32_t length = sizeof value;
    if (const Status status = FromWorkBuffer(make(value, &length))) return status;
    return AddX509ExtensionsExtension(extensions, oid, 0, value, length);
}

}  // namespace

Status GetCertificateExtensionValue(const Certificate* certificate, const uint8_t* oid, uint8_t* value,
                                    uint32_t* length) {
    if (AnyNull(certificate, oid, length)) return Fail(StatusBadArgument);
    const Part<X509ExtensionsCell> extensions = ExtensionsOf(certificate);
    if (!extensions) return Fail(StatusNotFound);
    return GetX509ExtensionsExtensionValue(extensions.node, oid, value, length);
}

Status GetCertificateSubjectKeyIdentifier(const Certificate* certificate, uint8_t* keyId, uint32_t* length) {
    if (AnyNull(certificate, length)) return Fail(StatusBadArgument);
    uint8_t value[kExtensionValueLimit];
    uint32_t valueLength = sizeof value;
    const Status status = GetCertificateExtensionValue(certificate, Oid<2, 5, 29, 14>, value, &valueLength);
    // A value that is too long counts as exhausted memory here, and here alone. Callers know it as that.
    if (status == StatusBufferTooSmall) return Fail(StatusOutOfMemory);
    if (status != StatusOk) return status;
    return DecodeExtensionSubjectKeyIdentifier(value, valueLength, keyId, length);
}

Status SetCertificateSubjectKeyIdentifier(Certificate* certificate) {
    if (certificate == nullptr) return Fail(StatusBadArgument);
    uint8_t key[512];
    uint32_t keyLength = sizeof key;
    if (const Status status = FromWorkBuffer(GetCertificatePublicKey(certificate, key, &keyLength))) return status;
    uint8_t keyId[20];
    if (const Status status = sha1(key, keyLength, keyId)) return status;
    return MakeExtension(ExtensionsOf(certificate).node, Oid<2, 5, 29, 14>, [&](uint8_t* value, uint32_t* length) {
        return EncodeExtensionSubjectKeyIdentifier(keyId, sizeof keyId, value, length);
    });
}

Status GetCertificateAuthorityKeyIdentifier(const Certificate* certificate, uint8_t* keyId, uint32_t* keyIdLength,
                                            X509GeneralNames** issuer, uint8_t* serial, uint32_t* serialLength) {
    if (AnyNull(certificate, keyIdLength, serialLength)) return Fail(StatusBadArgument);
    if (issuer != nullptr) *issuer = nullptr;
    uint8_t value[kExtensionValueLimit];
    uint32_t valueLength = sizeof value;
    const Status status = GetCertificateExtensionValue(certificate, Oid<2, 5, 29, 35>, value, &valueLength);
    if (status != StatusOk) return FromWorkBuffer(status);
    return DecodeExtensionAuthorityKeyIdentifier(value, valueLength, keyId, keyIdLength, issuer, serial, serialLength);
}

Status GetCertificateAuthorityKeyIdentifier2(const Certificate* certificate, uint8_t* keyId, uint32_t* keyIdLength,
                                             X509Name** issuer, uint8_t* serial, uint32_t* serialLength) {
    if (issuer != nullptr) *issuer = nullptr;
    if (AnyNull(certificate, keyIdLength, issuer, serialLength)) return Fail(StatusBadArgument);
    X509GeneralNames* names = nullptr;
    const Status status =
        GetCertificateAuthorityKeyIdentifier(certificate, keyId, keyIdLength, &names, serial, serialLength);
    if (names == nullptr) return status;
    const Tree<X509GeneralNames> owner(names);
    const Status nameStatus = GetX509NameFromGeneralNames(names, issuer);
    return status != StatusOk ? status : nameStatus;
}

Status SetCertificateAuthorityKeyIdentifier(Certificate* certificate, Certificate* issuerCertificate) {
    if (AnyNull(certificate, issuerCertificate)) return Fail(StatusBadArgument);
    AuthorityIdentity identity;
    if (const Status status = identity.ReadFrom(issuerCertificate)) return status;
    return SetCertificateAuthorityKeyIdentifier2(certificate, identity.keyId, identity.keyIdLength, identity.issuer,
                                                 identity.serial, identity.serialLength);
}

Status SetCertificateAuthorityKeyIdentifier2(Certificate* certificate, const uint8_t* keyId, uint32_t keyIdLength,
                                             const X509Name* issuer, const uint8_t* serial, uint32_t serialLength) {
    const AuthorityParts parts = {{keyId, keyIdLength}, issuer, {serial, serialLength}};
    if (certificate == nullptr || !parts.AreGiven()) return Fail(StatusBadArgument);
    return SetAuthorityKeyIdentifier(ExtensionsOf(certificate), parts);
}

Status SetCertificateZelcryptKeyIdentifier(Certificate* certificate, const char* text) {
    if (AnyNull(certificate, text)) return Fail(StatusBadArgument);
    const Part<X509ExtensionsCell> extensions = ExtensionsOf(certificate);
    if (!extensions) return extensions.Absent();
    return MakeExtension(extensions.node, Oid<1, 2, 643, 3, 123, 3, 1>, [&](uint8_t* value, uint32_t* length) {
        char utf8[kTextLimit];
        uint32_t utf8Length = sizeof utf8;
        if (const Status status = ConvertAnsiToUTF8(text, utf8, &utf8Length)) return status;
        return EncodeAsn1UTF8String(reinterpret_cast<uint8_t*>(utf8), utf8Length, value, length);
    });
}

Status IsCertificateCorrespondToAuthKeyIdent(Certificate* certificate, const uint8_t* keyId, uint32_t keyIdLength,
                                             const X509Name* issuer, const uint8_t* serial, uint32_t serialLength) {
    const bool hasKeyId = keyId != nullptr && keyIdLength != 0;
    const bool hasSerial = serial != nullptr && serialLength != 0;
    if (certificate == nullptr) return Fail(StatusBadArgument);
    if (!hasKeyId && issuer == nullptr && !hasSerial) return Fail(StatusBadArgument);
    if (hasKeyId) {
        uint8_t own[32];
        uint32_t ownLength = sizeof own;
        const Status status = GetCertificateSubjectKeyIdentifier(certificate, own, &ownLength);
        if (status == StatusBufferTooSmall) return FromWorkBuffer(status);
        // A certificate whose identifier can't be read differs from every one that is given.
        if (status != StatusOk) ownLength = 0;
        return IsArrayEquals(keyId, static_cast<int32_t>(keyIdLength), own, static_cast<int32_t>(ownLength));
    }
    uint32_t ownLength = 0;
    const uint8_t* own = ptr_GetCertificateSerialNumber(certificate, &ownLength);
    if (own == nullptr) return Fail(StatusBadValue);
    if (!hasSerial) return Fail(StatusNotEqual);
    const auto signedLength = static_cast<int32_t>(ownLength);
    if (const Status status = IsArrayEquals(own, signedLength, serial, static_cast<int32_t>(serialLength))) {
        return status;
    }
    X509Name* ownIssuer = nullptr;
    if (const Status status = GetCertificateIssuer(certificate, &ownIssuer)) return status;
    return CompareX509Names(ownIssuer, issuer);
}
