#include "tlvforge/certificate.h"

#include "engine/nodes.h"
#include "x509/certificate.schema.h"
#include "x509/fields.h"

using namespace tlvforge;

namespace {

// A field of tbsCertificate; null too where the certificate has no tbsCertificate.
template <class Field>
Field* FieldOf(const Certificate* certificate, Field* TBSCertificate::*field) {
    return certificate->tbsCertificate == nullptr ? nullptr : certificate->tbsCertificate->*field;
}

using NameField = Name* TBSCertificate::*;
using TimeField = Time* Validity::*;
using BitStringField = Asn1BitString* TBSCertificate::*;

Status GetName(Certificate* certificate, NameField field, X509Name** name, Place place = Place::Here()) {
    if (AnyNull(certificate, name)) return Fail(StatusBadArgument, place);
    return LendName(FieldOf(certificate, field), name, place);
}

Status SetName(Certificate* certificate, NameField field, const X509Name* name, Place place = Place::Here()) {
    if (AnyNull(certificate, name)) return Fail(StatusBadArgument, place);
    return CopyNameInto(FieldOf(certificate, field), name, place);
}

Status AdoptName(Certificate* certificate, NameField field, X509Name* name, Place place = Place::Here()) {
    if (AnyNull(certificate, name)) return Fail(StatusBadArgument, place);
    return MoveNameInto(FieldOf(certificate, field), name, place);
}

Time* TimeOf(const Certificate* certificate, TimeField field) {
    const Validity* validity = FieldOf(certificate, &TBSCertificate::validity);
    return validity == nullptr ? nullptr : validity->*field;
}

Status GetTime(const Certificate* certificate, TimeField field, LibraryTime* time, Place place = Place::Here()) {
    if (AnyNull(certificate, time)) return Fail(StatusBadArgument, place);
    return GetTimeField(TimeOf(certificate, field), time, place);
}

// A null time is an invalid one (313), not a bad argument.
Status SetTime(Certificate* certificate, TimeField field, const LibraryTime* time, Place place = Place::Here()) {
    if (certificate == nullptr) return Fail(StatusBadArgument, place);
    return SetTimeField(TimeOf(certificate, field), time, place);
}

Status GetUniqueId(const Certificate* certificate, BitStringField field, uint8_t* buffer, uint32_t* length,
                   uint8_t* unusedBits, Place place = Place::Here()) {
    if (AnyNull(certificate, length)) return Fail(StatusBadArgument, place);
    const Asn1BitString* uniqueId = FieldOf(certificate, field);
    if (uniqueId == nullptr) return Fail(StatusAbsent, place);
    return GetAsn1BitString(uniqueId, unusedBits, buffer, length);
}

Status SetUniqueId(Certificate* certificate, BitStringField field, const uint8_t* bytes, uint32_t length,
                   uint8_t unusedBits, Place place = Place::Here()) {
    if (certificate == nullptr) return Fail(StatusBadArgument, place);
    if (certificate->tbsCertificate == nullptr) return Fail(StatusAbsent, place);
    Asn1BitString** uniqueId = &(certificate->tbsCertificate->*field);
    if (bytes != nullptr) return ReplaceBitString(uniqueId, bytes, length, unusedBits, place);
    FreeField(uniqueId);
    return StatusOk;
}

SubjectPublicKeyInfo* KeyInfoOf(const Certificate* certificate) {
    return FieldOf(certificate, &TBSCertificate::subjectPublicKeyInfo);
}

template <class Set>
Status SetSignatureAlgorithm(Certificate* certificate, Set set, Place place = Place::Here()) {
    AlgorithmIdentifier* inner = FieldOf(certificate, &TBSCertificate::signature);
    return SetSignatureAlgorithms(inner, certificate->signatureAlgorithm, set, place);
}

// The parameter sets that go with a GOST public key algorithm, as masks of their ids.
struct GostKeyForm {
    uint32_t algorithmId;
    uint32_t publicKeyParamSets;
    uint32_t digestParamSets;
};

constexpr uint32_t Ids(uint32_t first, uint32_t last) { return (2u << last) - (1u << first); }

constexpr GostKeyForm kGostKeyForms[] = {
    {AlgorithmGostR34102001, Ids(1, 6), Ids(1, 2)},
    // The sets of 2001 serve for 256-bit keys of 2012 as well.
    {AlgorithmGostR34102012Key256, Ids(1, 7) | Ids(9, 9), Ids(3, 3)},
    {AlgorithmGostR34102012Key512, Ids(8, 8) | Ids(10, 12), Ids(4, 4)},
};

const GostKeyForm* FindGostKeyForm(uint32_t algorithmId) {
    for (const GostKeyForm& form : kGostKeyForms) {
        if (form.algorithmId == algorithmId) return &form;
    }
    return nullptr;
}

constexpr bool Holds(uint32_t mask, uint32_t id) { return id < 32 && (mask >> id & 1) != 0; }

// Reads and checks algorithm and parameter sets. What doesn't fit the work buffers is answered with 49 as it stands,
// which is intended: the strict reader doesn't tell its own buffers from the caller's.
Status ReadGostKeyForm(const AlgorithmIdentifier* algorithm, uint32_t* publicKeyParamSet, uint32_t* digestParamSet,
                       uint32_t* encryptionParamSet) {
    uint8_t oid[100];
    uint8_t parameters[100];
    uint32_t oidLength = sizeof oid;
    uint32_t parametersLength = sizeof parameters;
    Status status = GetAlgorithmIdentifierOid(algorithm, oid, &oidLength);
    if (status == StatusOk) status = GetAlgorithmIdentifierParameters(algorithm, parameters, &parametersLength);
    uint32_t algorithmId = 0;
    if (status == StatusOk) status = FindAlgIdByOid(oid, &algorithmId);
    if (status != StatusOk) return status;
    const GostKeyForm* form = FindGostKeyForm(algorithmId);
    if (form == nullptr) return Fail(StatusBadKeyForm);

    uint8_t parametersForm = 0;
    status = DecodeAlgorithmGostR34102001Parameters(parameters, parametersLength, &parametersForm, publicKeyParamSet,
                                                    digestParamSet, encryptionParamSet);
    if (status != StatusOk) return status;
    if (parametersForm != ParametersFormGost) return Fail(StatusBadKeyForm);
    const bool fits =
        Holds(form->publicKeyParamSets, *publicKeyParamSet) && Holds(form->digestParamSets, *digestParamSet);
    return fits ? StatusOk : Fail(StatusBadKeyForm);
}

}  // namespace

Status GetCertificateVersion(const Certificate* certificate, int32_t* version) {
    if (AnyNull(certificate, version)) return Fail(StatusBadArgument);
    const Asn1Value* value = FieldOf(certificate, &TBSCertificate::version);
    if (value == nullptr) return Fail(StatusAbsent);
    return GetAsn1Int32(value, version);
}

Status SetCertificateVersion(Certificate* certificate, uint32_t version) {
    if (certificate == nullptr || version > 2) return Fail(StatusBadArgument);
    if (certificate->tbsCertificate == nullptr) return Fail(StatusAbsent);
    return SetAsn1Int32Field(&certificate->tbsCertificate->version, static_cast<int32_t>(version));
}

Status GetCertificateSerialNumber(const Certificate* certificate, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(certificate, length)) return Fail(StatusBadArgument);
    const Asn1Value* serial = FieldOf(certificate, &TBSCertificate::serialNumber);
    if (serial == nullptr) return Fail(StatusAbsent);
    return GetAsn1Value(serial, buffer, length);
}

uint8_t* ptr_GetCertificateSerialNumber(const Certificate* certificate, uint32_t* length) {
    if (AnyNull(certificate, length)) return nullptr;
    const Asn1Value* serial = FieldOf(certificate, &TBSCertificate::serialNumber);
    if (serial == nullptr || HasLostBytes(serial)) return nullptr;
    *length = serial->length;
    return serial->data;
}

Status SetCertificateSerialNumber(Certificate* certificate, const uint8_t* bytes, uint32_t length) {
    if (AnyNull(certificate, bytes) || length == 0) return Fail(StatusBadArgument);
    if (certificate->tbsCertificate == nullptr) return Fail(StatusAbsent);
    return SetAsn1ValueField(&certificate->tbsCertificate->serialNumber, Asn1KindInteger, bytes, length);
}

Status GetCertificateIssuer(Certificate* certificate, X509Name** name) {
    return GetName(certificate, &TBSCertificate::issuer, name);
}

Status GetCertificateSubject(Certificate* certificate, X509Name** name) {
    return GetName(certificate, &TBSCertificate::subject, name);
}

Status SetCertificateIssuer(Certificate* certificate, const X509Name* name) {
    return SetName(certificate, &TBSCertificate::issuer, name);
}

Status SetCertificateSubject(Certificate* certificate, const X509Name* name) {
    return SetName(certificate, &TBSCertificate::subject, name);
}

Status SetCertificateIssuer_i(Certificate* certificate, X509Name* name, int32_t copy) {
    return copy != 0 ? SetName(certificate, &TBSCertificate::issuer, name)
                     : AdoptName(certificate, &TBSCertificate::issuer, name);
}

Status SetCertificateSubject_i(Certificate* certificate, X509Name* name, int32_t copy) {
    return copy != 0 ? SetName(certificate, &TBSCertificate::subject, name)
                     : AdoptName(certificate, &TBSCertificate::subject, name);
}

Status GetCertificateValidNotBefore(const Certificate* certificate, LibraryTime* time) {
    return GetTime(certificate, &Validity::notBefore, time);
}

Status GetCertificateValidNotAfter(const Certificate* certificate, LibraryTime* time) {
    return GetTime(certificate, &Validity::notAfter, time);
}

Status SetCertificateValidNotBefore(Certificate* certificate, const LibraryTime* time) {
    return SetTime(certificate, &Validity::notBefore, time);
}

Status SetCertificateValidNotAfter(Certificate* certificate, const LibraryTime* time) {
    return SetTime(certificate, &Validity::notAfter, time);
}

Status GetCertificateIssuerUniqueId(const Certificate* certificate, uint8_t* buffer, uint32_t* length,
                                    uint8_t* unusedBits) {
    return GetUniqueId(certificate, &TBSCertificate::issuerUniqueID, buffer, length, unusedBits);
}

Status GetCertificateSubjectUniqueId(const Certificate* certificate, uint8_t* buffer, uint32_t* length,
                                     uint8_t* unusedBits) {
    return GetUniqueId(certificate, &TBSCertificate::subjectUniqueID, buffer, length, unusedBits);
}

Status SetCertificateIssuerUniqueId(Certificate* certificate, const uint8_t* bytes, uint32_t length,
                                    uint8_t unusedBits) {
    return SetUniqueId(certificate, &TBSCertificate::issuerUniqueID, bytes, length, unusedBits);
}

Status SetCertificateSubjectUniqueId(Certificate* certificate, const uint8_t* bytes, uint32_t length,
                                     uint8_t unusedBits) {
    return SetUniqueId(certificate, &TBSCertificate::subjectUniqueID, bytes, length, unusedBits);
}

Status GetCertificateExtensions(const Certificate* certificate, X509Extensions* extensions) {
    if (AnyNull(certificate, extensions)) return Fail(StatusBadArgument);
    if (certificate->tbsCertificate == nullptr) return Fail(StatusAbsent);
    *extensions = &certificate->tbsCertificate->extensions;
    return StatusOk;
}

Status SetCertificateExtensions(Certificate* certificate, X509Extensions source) {
    if (AnyNull(certificate, source)) return Fail(StatusBadArgument);
    if (certificate->tbsCertificate == nullptr) return Fail(StatusAbsent);
    // Copied first: the source may be the certificate's own.
    Tree<X509ExtensionList> copy;
    const Status status = source->list == nullptr ? StatusOk : copy.CopyOf(source->list);
    X509ExtensionList** list = &certificate->tbsCertificate->extensions.list;
    FreeField(list);
    *list = copy.Take();
    return status;
}

Status GetCertificatePublicKey(const Certificate* certificate, uint8_t* key, uint32_t* length) {
    if (AnyNull(certificate, length)) return Fail(StatusBadArgument);
    return GetPublicKey(KeyInfoOf(certificate), key, length);
}

Status SetCertificatePublicKey(Certificate* certificate, const uint8_t* key, uint32_t length) {
    if (AnyNull(certificate, key)) return Fail(StatusBadArgument);
    return SetPublicKey(KeyInfoOf(certificate), key, length);
}

Status SetCertificateGostR34102001PublicKey(Certificate* certificate, const uint8_t* key, uint32_t length) {
    if (AnyNull(certificate, key)) return Fail(StatusBadArgument);
    return SetGostPublicKey(KeyInfoOf(certificate), key, length);
}

Status GetCertificatePublicKeyGostR3410(const Certificate* certificate, uint8_t* key, uint32_t* length) {
    if (AnyNull(certificate, length)) return Fail(StatusBadArgument);
    return GetGostPublicKey(KeyInfoOf(certificate), key, length);
}

Status GetCertificateDecodedPublicKeyGostR34102012(const Certificate* certificate, uint8_t* key, uint32_t* length,
                                                   uint32_t* publicKeyParamSet, uint32_t* digestParamSet,
                                                   uint32_t* encryptionParamSet) {
    if (AnyNull(certificate, length, publicKeyParamSet, digestParamSet, encryptionParamSet)) {
        return Fail(StatusBadArgument);
    }
    const SubjectPublicKeyInfo* info = KeyInfoOf(certificate);
    if (AlgorithmOf(info) == nullptr) return Fail(StatusAbsent);
    Status status = ReadGostKeyForm(info->algorithm, publicKeyParamSet, digestParamSet, encryptionParamSet);
    if (status != StatusOk) return status;
    uint8_t wrapped[168];
    uint32_t wrappedLength = sizeof wrapped;
    status = GetPublicKey(info, wrapped, &wrappedLength);
    if (status != StatusOk) return status;
    return DecodeAsn1PrimitiveValue(Asn1KindOctetString, wrapped, wrappedLength, key, length);
}

Status GetCertificatePublicKeyAlgorithmOidAndParameters(const Certificate* certificate, uint8_t* oid,
                                                        uint32_t* oidLength, uint8_t* parameters,
                                                        uint32_t* parametersLength) {
    if (AnyNull(certificate, oidLength)) return Fail(StatusBadArgument);
    return GetAlgorithm(AlgorithmOf(KeyInfoOf(certificate)), oid, oidLength, parameters, parametersLength);
}

Status SetCertificatePublicKeyAlgorithmOidAndParameters(Certificate* certificate, const uint8_t* oid,
                                                        const uint8_t* parameters, uint32_t length) {
    if (AnyNull(certificate, oid)) return Fail(StatusBadArgument);
    return SetAlgorithm(AlgorithmOf(KeyInfoOf(certificate)), oid, parameters, length);
}

Status SetCertificatePublicKeyAlgorithmIdAndParameters(Certificate* certificate, uint32_t id, const uint8_t* parameters,
                                                       uint32_t length) {
    if (certificate == nullptr) return Fail(StatusBadArgument);
    AlgorithmIdentifier* algorithm = AlgorithmOf(KeyInfoOf(certificate));
    if (algorithm == nullptr) return Fail(StatusAbsent);
    return SetAlgorithmIdentifierIdAndParameters(algorithm, id, parameters, length);
}

Status SetCertificateGostR34102001PublicKeyAlgorithmIdAndParameters(Certificate* certificate, uint32_t algorithmId,
                                                                    uint8_t parametersForm, uint32_t publicKeyParamSet,
                                                                    uint32_t digestParamSet,
                                                                    uint32_t encryptionParamSet) {
    if (certificate == nullptr) return Fail(StatusBadArgument);
    return SetGostAlgorithm(AlgorithmOf(KeyInfoOf(certificate)), algorithmId, parametersForm, publicKeyParamSet,
                            digestParamSet, encryptionParamSet);
}

Status GetCertificateSignature(const Certificate* certificate, uint8_t* signature, uint32_t* length) {
    if (AnyNull(certificate, length)) return Fail(StatusBadArgument);
    if (certificate->tbsCertificate == nullptr) return Fail(StatusAbsent);
    return GetBitStringField(certificate->signature, signature, length);
}

Status SetCertificateSignature(Certificate* certificate, const uint8_t* signature, uint32_t length) {
    if (AnyNull(certificate, signature)) return Fail(StatusBadArgument);
    return SetAsn1BitStringField(&certificate->signature, signature, length);
}

Status GetCertificateSignatureAlgorithmOidAndParameters(const Certificate* certificate, uint8_t* oid,
                                                        uint32_t* oidLength, uint8_t* parameters,
                                                        uint32_t* parametersLength) {
    if (AnyNull(certificate, oidLength)) return Fail(StatusBadArgument);
    return GetAlgorithm(FieldOf(certificate, &TBSCertificate::signature), oid, oidLength, parameters, parametersLength);
}

Status SetCertificateSignatureAlgorithmOidAndParameters(Certificate* certificate, const uint8_t* oid,
                                                        const uint8_t* parameters, uint32_t length) {
    if (AnyNull(certificate, oid)) return Fail(StatusBadArgument);
    return SetSignatureAlgorithm(certificate, [=](AlgorithmIdentifier* algorithm) {
        return SetAlgorithmIdentifierOidAndParameters(algorithm, oid, parameters, length);
    });
}

Status SetCertificateGostR34102001SignatureAlgorithmIDAndParameters(Certificate* certificate, uint32_t algorithmId,
                                                                    uint8_t parametersForm, uint32_t publicKeyParamSet,
                                                                    uint32_t digestParamSet,
                                                                    uint32_t encryptionParamSet) {
    if (certificate == nullptr) return Fail(StatusBadArgument);
    return SetSignatureAlgorithm(certificate, [=](AlgorithmIdentifier* algorithm) {
        return SetAlgorithmGostR34102001AndParameters(algorithm, algorithmId, parametersForm, publicKeyParamSet,
                                                      digestParamSet, encryptionParamSet);
    });
}

Status SetCertificateGostR34102001SignatureAlgorithmID(Certificate* certificate, uint32_t algorithmId,
                                                       uint8_t parametersForm) {
    if (parametersForm != ParametersFormNull && parametersForm != ParametersFormAbsent) return Fail(StatusBadArgument);
    return SetCertificateGostR34102001SignatureAlgorithmIDAndParameters(certificate, algorithmId, parametersForm, 0, 0,
                                                                        0);
}
