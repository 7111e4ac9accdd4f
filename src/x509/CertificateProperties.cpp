#include "tlvforge/certificate.h"

#include "x509/certificate.schema.h"
#include "x509/fields.h"

using namespace tlvforge;

namespace {

// A field of tbsCertificate.
template <auto... Members, class Record>
auto Tbs(Record* certificate, Place place = Place::Here()) {
    return At<&Certificate::tbsCertificate, Members...>(certificate, place);
}

template <class Record>
auto PublicKey(Record* certificate, Place place = Place::Here()) {
    return Tbs<&TBSCertificate::subjectPublicKeyInfo, &SubjectPublicKeyInfo::subjectPublicKey>(certificate, place);
}

Part<AlgorithmIdentifier> KeyAlgorithm(const Certificate* certificate, Place place = Place::Here()) {
    return Tbs<&TBSCertificate::subjectPublicKeyInfo, &SubjectPublicKeyInfo::algorithm>(certificate, place);
}

template <class Set>
Status SetSignatureAlgorithm(Certificate* certificate, const Set& set, Place place = Place::Here()) {
    return SetSignatureAlgorithms(Tbs<&TBSCertificate::signature>(certificate, place),
                                  At<&Certificate::signatureAlgorithm>(certificate, place), set);
}

// Null bytes leave no unique identifier.
Status SetUniqueId(const Slot<Asn1BitString>& field, const uint8_t* bytes, uint32_t length, uint8_t unusedBits) {
    return bytes != nullptr ? ReplaceBits(field, bytes, length, unusedBits) : Remove(field);
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

// Reads and checks algorithm and parameter sets. What doesn't fit the work buffers is answered with
// StatusBufferTooSmall as it stands: see docs/oddities.md.
Status ReadGostKeyForm(const Part<AlgorithmIdentifier>& algorithm, uint32_t* publicKeyParamSet,
                       uint32_t* digestParamSet, uint32_t* encryptionParamSet) {
    if (!algorithm) return algorithm.Absent();
    uint8_t oid[100];
    uint8_t parameters[100];
    uint32_t oidLength = sizeof oid;
    uint32_t parametersLength = sizeof parameters;
    uint32_t algorithmId = 0;
    if (const Status status = GetAlgorithmIdentifierOid(algorithm.node, {oid, &oidLength})) return status;
    if (const Status status = GetAlgorithmIdentifierParameters(algorithm.node, {parameters, &parametersLength})) {
        return status;
    }
    if (const Status status = FindAlgIdByOid(oid, &algorithmId)) return status;
    const GostKeyForm* form = FindGostKeyForm(algorithmId);
    if (form == nullptr) return Fail(StatusBadKeyForm);

    uint8_t parametersForm = 0;
    if (const Status status = DecodeAlgorithmGostR34102001Parameters(
            parameters, parametersLength, &parametersForm, publicKeyParamSet, digestParamSet, encryptionParamSet)) {
        return status;
    }
    if (parametersForm != ParametersFormGost) return Fail(StatusBadKeyForm);
    const bool fits =
        Holds(form->publicKeyParamSets, *publicKeyParamSet) && Holds(form->digestParamSets, *digestParamSet);
    return fits ? StatusOk : Fail(StatusBadKeyForm);
}

}  // namespace

Status GetCertificateVersion(const Certificate* certificate, int32_t* version) {
    if (AnyNull(certificate, version)) return Fail(StatusBadArgument);
    return GetInt32(Tbs<&TBSCertificate::version>(certificate), version);
}

Status SetCertificateVersion(Certificate* certificate, uint32_t version) {
    if (certificate == nullptr || version > 2) return Fail(StatusBadArgument);
    return SetInt32(Tbs<&TBSCertificate::version>(certificate), static_cast<int32_t>(version));
}

Status GetCertificateSerialNumber(const Certificate* certificate, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(certificate, length)) return Fail(StatusBadArgument);
    return GetBytes(Tbs<&TBSCertificate::serialNumber>(certificate), buffer, length);
}

uint8_t* ptr_GetCertificateSerialNumber(const Certificate* certificate, uint32_t* length) {
    if (AnyNull(certificate, length)) return nullptr;
    const Part<Asn1Value> serial = Tbs<&TBSCertificate::serialNumber>(certificate);
    if (!serial || HasLostBytes(serial.node)) return nullptr;
    *length = serial->length;
    return serial->data;
}

Status SetCertificateSerialNumber(Certificate* certificate, const uint8_t* bytes, uint32_t length) {
    if (AnyNull(certificate, bytes) || length == 0) return Fail(StatusBadArgument);
    return SetBytes(Tbs<&TBSCertificate::serialNumber>(certificate), Asn1KindInteger, bytes, length);
}

Status GetCertificateIssuer(Certificate* certificate, X509Name** name) {
    if (AnyNull(certificate, name)) return Fail(StatusBadArgument);
    return GetName(Tbs<&TBSCertificate::issuer>(certificate), name);
}

Status GetCertificateSubject(Certificate* certificate, X509Name** name) {
    if (AnyNull(certificate, name)) return Fail(StatusBadArgument);
    return GetName(Tbs<&TBSCertificate::subject>(certificate), name);
}

Status SetCertificateIssuer(Certificate* certificate, const X509Name* name) {
    if (AnyNull(certificate, name)) return Fail(StatusBadArgument);
    return CopyName(Tbs<&TBSCertificate::issuer>(certificate), name);
}

Status SetCertificateSubject(Certificate* certificate, const X509Name* name) {
    if (AnyNull(certificate, name)) return Fail(StatusBadArgument);
    return CopyName(Tbs<&TBSCertificate::subject>(certificate), name);
}

Status SetCertificateIssuer_i(Certificate* certificate, X509Name* name, int32_t copy) {
    if (AnyNull(certificate, name)) return Fail(StatusBadArgument);
    const Part<Name> issuer = Tbs<&TBSCertificate::issuer>(certificate);
    return copy != 0 ? CopyName(issuer, name) : MoveName(issuer, name);
}

Status SetCertificateSubject_i(Certificate* certificate, X509Name* name, int32_t copy) {
    if (AnyNull(certificate, name)) return Fail(StatusBadArgument);
    const Part<Name> subject = Tbs<&TBSCertificate::subject>(certificate);
    return copy != 0 ? CopyName(subject, name) : MoveName(subject, name);
}

Status GetCertificateValidNotBefore(const Certificate* certificate, LibraryTime* time) {
    if (AnyNull(certificate, time)) return Fail(StatusBadArgument);
    return GetTime(Tbs<&TBSCertificate::validity, &Validity::notBefore>(certificate), time);
}

Status GetCertificateValidNotAfter(const Certificate* certificate, LibraryTime* time) {
    if (AnyNull(certificate, time)) return Fail(StatusBadArgument);
    return GetTime(Tbs<&TBSCertificate::validity, &Validity::notAfter>(certificate), time);
}

// A null time is StatusBadTime, not a bad argument.
Status SetCertificateValidNotBefore(Certificate* certificate, const LibraryTime* time) {
    if (certificate == nullptr) return Fail(StatusBadArgument);
    return SetTime(Tbs<&TBSCertificate::validity, &Validity::notBefore>(certificate), time);
}

Status SetCertificateValidNotAfter(Certificate* certificate, const LibraryTime* time) {
    if (certificate == nullptr) return Fail(StatusBadArgument);
    return SetTime(Tbs<&TBSCertificate::validity, &Validity::notAfter>(certificate), time);
}

Status GetCertificateIssuerUniqueId(const Certificate* certificate, uint8_t* buffer, uint32_t* length,
                                    uint8_t* unusedBits) {
    if (AnyNull(certificate, length)) return Fail(StatusBadArgument);
    return GetBits(Tbs<&TBSCertificate::issuerUniqueID>(certificate), buffer, length, unusedBits);
}

Status GetCertificateSubjectUniqueId(const Certificate* certificate, uint8_t* buffer, uint32_t* length,
                                     uint8_t* unusedBits) {
    if (AnyNull(certificate, length)) return Fail(StatusBadArgument);
    return GetBits(Tbs<&TBSCertificate::subjectUniqueID>(certificate), buffer, length, unusedBits);
}

Status SetCertificateIssuerUniqueId(Certificate* certificate, const uint8_t* bytes, uint32_t length,
                                    uint8_t unusedBits) {
    if (certificate == nullptr) return Fail(StatusBadArgument);
    return SetUniqueId(Tbs<&TBSCertificate::issuerUniqueID>(certificate), bytes, length, unusedBits);
}

Status SetCertificateSubjectUniqueId(Certificate* certificate, const uint8_t* bytes, uint32_t length,
                                     uint8_t unusedBits) {
    if (certificate == nullptr) return Fail(StatusBadArgument);
    return SetUniqueId(Tbs<&TBSCertificate::subjectUniqueID>(certificate), bytes, length, unusedBits);
}

Status GetCertificateExtensions(const Certificate* certificate, X509Extensions* extensions) {
    if (AnyNull(certificate, extensions)) return Fail(StatusBadArgument);
    return Borrow(Tbs<&TBSCertificate::extensions>(certificate), extensions);
}

Status SetCertificateExtensions(Certificate* certificate, X509Extensions source) {
    if (AnyNull(certificate, source)) return Fail(StatusBadArgument);
    const Part<X509ExtensionsCell> extensions = Tbs<&TBSCertificate::extensions>(certificate);
    if (!extensions) return extensions.Absent();
    if (source->list != nullptr) return CopyList(source->list, &extensions->list);
    FreeField(&extensions->list);
    return StatusOk;
}

Status GetCertificatePublicKey(const Certificate* certificate, uint8_t* key, uint32_t* length) {
    if (AnyNull(certificate, length)) return Fail(StatusBadArgument);
    return GetBits(PublicKey(certificate), key, length);
}

Status SetCertificatePublicKey(Certificate* certificate, const uint8_t* key, uint32_t length) {
    if (AnyNull(certificate, key)) return Fail(StatusBadArgument);
    return ReplaceBits(PublicKey(certificate), key, length);
}

Status SetCertificateGostR34102001PublicKey(Certificate* certificate, const uint8_t* key, uint32_t length) {
    if (AnyNull(certificate, key)) return Fail(StatusBadArgument);
    const auto field = PublicKey(certificate);
    return SetGostPublicKey(field, key, length);
}

Status GetCertificatePublicKeyGostR3410(const Certificate* certificate, uint8_t* key, uint32_t* length) {
    if (AnyNull(certificate, length)) return Fail(StatusBadArgument);
    const auto field = PublicKey(certificate);
    return GetGostPublicKey(field, key, length);
}

Status GetCertificateDecodedPublicKeyGostR34102012(const Certificate* certificate, uint8_t* key, uint32_t* length,
                                                   uint32_t* publicKeyParamSet, uint32_t* digestParamSet,
                                                   uint32_t* encryptionParamSet) {
    if (AnyNull(certificate, length, publicKeyParamSet, digestParamSet, encryptionParamSet)) {
        return Fail(StatusBadArgument);
    }
    const Part<AlgorithmIdentifier> algorithm = KeyAlgorithm(certificate);
    if (const Status status = ReadGostKeyForm(algorithm, publicKeyParamSet, digestParamSet, encryptionParamSet)) {
        return status;
    }
    uint8_t wrapped[168];
    uint32_t wrappedLength = sizeof wrapped;
    if (const Status status = GetBits(PublicKey(certificate), wrapped, &wrappedLength)) return status;
    return DecodeAsn1PrimitiveValue(Asn1KindOctetString, wrapped, wrappedLength, key, length);
}

Status GetCertificatePublicKeyAlgorithmOidAndParameters(const Certificate* certificate, uint8_t* oid,
                                                        uint32_t* oidLength, uint8_t* parameters,
                                                        uint32_t* parametersLength) {
    if (AnyNull(certificate, oidLength)) return Fail(StatusBadArgument);
    return GetAlgorithm(KeyAlgorithm(certificate), {oid, oidLength}, {parameters, parametersLength});
}

Status SetCertificatePublicKeyAlgorithmOidAndParameters(Certificate* certificate, const uint8_t* oid,
                                                        const uint8_t* parameters, uint32_t length) {
    if (AnyNull(certificate, oid)) return Fail(StatusBadArgument);
    return SetAlgorithm(KeyAlgorithm(certificate), oid, {parameters, length});
}

Status SetCertificatePublicKeyAlgorithmIdAndParameters(Certificate* certificate, uint32_t id, const uint8_t* parameters,
                                                       uint32_t length) {
    if (certificate == nullptr) return Fail(StatusBadArgument);
    return SetAlgorithmById(KeyAlgorithm(certificate), id, {parameters, length});
}

Status SetCertificateGostR34102001PublicKeyAlgorithmIdAndParameters(Certificate* certificate, uint32_t algorithmId,
                                                                    uint8_t parametersForm, uint32_t publicKeyParamSet,
                                                                    uint32_t digestParamSet,
                                                                    uint32_t encryptionParamSet) {
    if (certificate == nullptr) return Fail(StatusBadArgument);
    const GostSets sets = {parametersForm, publicKeyParamSet, digestParamSet, encryptionParamSet};
    return SetGostAlgorithm(KeyAlgorithm(certificate), algorithmId, sets);
}

Status GetCertificateSignature(const Certificate* certificate, uint8_t* signature, uint32_t* length) {
    if (AnyNull(certificate, length)) return Fail(StatusBadArgument);
    if (certificate->tbsCertificate == nullptr) return Fail(StatusAbsent);
    return GetBits(At<&Certificate::signature>(certificate), signature, length);
}

Status SetCertificateSignature(Certificate* certificate, const uint8_t* signature, uint32_t length) {
    if (AnyNull(certificate, signature)) return Fail(StatusBadArgument);
    return SetBits(At<&Certificate::signature>(certificate), signature, length);
}

Status GetCertificateSignatureAlgorithmOidAndParameters(const Certificate* certificate, uint8_t* oid,
                                                        uint32_t* oidLength, uint8_t* parameters,
                                                        uint32_t* parametersLength) {
    if (AnyNull(certificate, oidLength)) return Fail(StatusBadArgument);
    return GetAlgorithm(Tbs<&TBSCertificate::signature>(certificate), {oid, oidLength}, {parameters, parametersLength});
}

Status SetCertificateSignatureAlgorithmOidAndParameters(Certificate* certificate, const uint8_t* oid,
                                                        const uint8_t* parameters, uint32_t length) {
    if (AnyNull(certificate, oid)) return Fail(StatusBadArgument);
    return SetSignatureAlgorithm(certificate, [=](const auto& algorithm) {
        return SetAlgorithm(algorithm, oid, {parameters, length});
    });
}

Status SetCertificateGostR34102001SignatureAlgorithmIDAndParameters(Certificate* certificate, uint32_t algorithmId,
                                                                    uint8_t parametersForm, uint32_t publicKeyParamSet,
                                                                    uint32_t digestParamSet,
                                                                    uint32_t encryptionParamSet) {
    if (certificate == nullptr) return Fail(StatusBadArgument);
    const GostSets sets = {parametersForm, publicKeyParamSet, digestParamSet, encryptionParamSet};
    return SetSignatureAlgorithm(certificate,
                                 [&](const auto& algorithm) { return SetGostAlgorithm(algorithm, algorithmId, sets); });
}

Status SetCertificateGostR34102001SignatureAlgorithmID(Certificate* certificate, uint32_t algorithmId,
                                                       uint8_t parametersForm) {
    if (parametersForm != ParametersFormNull && parametersForm != ParametersFormAbsent) return Fail(StatusBadArgument);
    return SetCertificateGostR34102001SignatureAlgorithmIDAndParameters(certificate, algorithmId, parametersForm, 0, 0,
                                                                        0);
}
