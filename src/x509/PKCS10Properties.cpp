#include "tlvforge/request.h"

#include "engine/alias.h"
#include "x509/fields.h"
#include "x509/request.schema.h"

using namespace tlvforge;

namespace {

constexpr const uint8_t* kExtensionRequest = Oid<1, 2, 840, 113549, 1, 9, 14>;
constexpr const uint8_t* kMicrosoftCertificateExtensions = Oid<1, 3, 6, 1, 4, 1, 311, 2, 1, 14>;

// A field of certificationRequestInfo.
template <auto... Members, class Record>
auto Info(Record* request, Place place = Place::Here()) {
    return At<&PKCS10CertReq::certificationRequestInfo, Members...>(request, place);
}

template <class Record>
auto PublicKey(Record* request, Place place = Place::Here()) {
    return Info<&CertificationRequestInfo::subjectPKInfo, &SubjectPublicKeyInfo::subjectPublicKey>(request, place);
}

Part<AlgorithmIdentifier> KeyAlgorithm(const PKCS10CertReq* request, Place place = Place::Here()) {
    return Info<&CertificationRequestInfo::subjectPKInfo, &SubjectPublicKeyInfo::algorithm>(request, place);
}

// A request without certificationRequestInfo has no signature algorithm either.
Part<AlgorithmIdentifier> SignatureAlgorithm(const PKCS10CertReq* request, Place place = Place::Here()) {
    return {request->certificationRequestInfo == nullptr ? nullptr : request->signatureAlgorithm, place};
}

}  // namespace

Status GetPKCS10CertReqVersion(const PKCS10CertReq* request, int32_t* version) {
    if (AnyNull(request, version)) return Fail(StatusBadArgument);
    return GetInt32(Info<&CertificationRequestInfo::version>(request), version);
}

Status SetPKCS10CertReqVersion(PKCS10CertReq* request, int32_t version) {
    if (request == nullptr || version < 0) return Fail(StatusBadArgument);
    return SetInt32(Info<&CertificationRequestInfo::version>(request), version);
}

Status GetPKCS10CertReqSubject(PKCS10CertReq* request, X509Name** name) {
    if (AnyNull(request, name)) return Fail(StatusBadArgument);
    return GetName(Info<&CertificationRequestInfo::subject>(request), name);
}

Status SetPKCS10CertReqSubject(PKCS10CertReq* request, const X509Name* name) {
    if (AnyNull(request, name)) return Fail(StatusBadArgument);
    return CopyName(Info<&CertificationRequestInfo::subject>(request), name);
}

Status GetPKCS10CertReqAttributes(const PKCS10CertReq* request, RsaAttributes* attributes) {
    if (AnyNull(request, attributes)) return Fail(StatusBadArgument);
    const auto found = Info<&CertificationRequestInfo::attributes>(request);
    return found && found->list != nullptr ? Borrow(found, attributes) : found.Absent();
}

Status SetPKCS10CertReqAttributes(PKCS10CertReq* request, RsaAttributes source) {
    if (AnyNull(request, source)) return Fail(StatusBadArgument);
    RsaAttributes attributes = nullptr;
    if (const Status status = GetPKCS10CertReqAttributes(request, &attributes)) return status;
    return CopyList(source->list, &attributes->list);
}

Status GetPKCS10CertReqExtensions(const PKCS10CertReq* request, X509Extensions* extensions) {
    if (AnyNull(request, extensions)) return Fail(StatusBadArgument);
    RsaAttributes attributes = nullptr;
    uint32_t index = 0;
    if (const Status status = GetPKCS10CertReqAttributes(request, &attributes)) return status;
    if (FindRsaAttributesAttribute(attributes, kExtensionRequest, &index) != StatusOk) {
        const Status status = FindRsaAttributesAttribute(attributes, kMicrosoftCertificateExtensions, &index);
        if (status != StatusOk) return status;
    }
    Block value;
    uint32_t length = 0;
    const auto read = [&](uint8_t* buffer, uint32_t* size) {
        return GetRsaAttributesAttributeValue(attributes, index, 0, buffer, size);
    };
    if (const Status status = MakeBytes(read, &value, &length)) return status;
    return DecodeX509Extensions(value.Bytes(), length, extensions);
}

Status SetPKCS10CertReqExtensions(PKCS10CertReq* request, X509Extensions source) {
    if (request == nullptr) return Fail(StatusBadArgument);
    RsaAttributes attributes = nullptr;
    if (const Status status = GetPKCS10CertReqAttributes(request, &attributes)) return status;
    // A list that doesn't fit is answered with StatusBufferTooSmall although no buffer of the caller is at fault: see
    // docs/oddities.md.
    uint8_t encoded[1024];
    uint32_t length = sizeof encoded;
    uint32_t index = 0;
    if (const Status status = EncodeX509Extensions(source, encoded, &length)) return status;
    if (const Status status = RemoveRsaAttributesAttribute2(attributes, kExtensionRequest)) return status;
    return AddRsaAttributesAttributeWithValue(attributes, kExtensionRequest, &index, encoded, length);
}

Status GetPKCS10CertReqPublicKey(const PKCS10CertReq* request, uint8_t* key, uint32_t* length) {
    if (AnyNull(request, length)) return Fail(StatusBadArgument);
    return GetBits(PublicKey(request), key, length);
}

Status SetPKCS10CertReqPublicKey(PKCS10CertReq* request, const uint8_t* key, uint32_t length) {
    if (AnyNull(request, key)) return Fail(StatusBadArgument);
    return ReplaceBits(PublicKey(request), key, length);
}

Status GetPKCS10CertReqPublicKeyGostR3410(const PKCS10CertReq* request, uint8_t* key, uint32_t* length) {
    if (AnyNull(request, length)) return Fail(StatusBadArgument);
    const auto field = PublicKey(request);
    return GetGostPublicKey(field, key, length);
}

Status SetPKCS10CertReqGostR34102001PublicKey(PKCS10CertReq* request, const uint8_t* key, uint32_t length) {
    if (AnyNull(request, key)) return Fail(StatusBadArgument);
    const auto field = PublicKey(request);
    return SetGostPublicKey(field, key, length);
}

Status GetPKCS10CertReqPublicKeyAlgorithmOidAndParameters(const PKCS10CertReq* request, uint8_t* oid,
                                                          uint32_t* oidLength, uint8_t* parameters,
                                                          uint32_t* parametersLength) {
    if (AnyNull(request, oidLength)) return Fail(StatusBadArgument);
    return GetAlgorithm(KeyAlgorithm(request), {oid, oidLength}, {parameters, parametersLength});
}

Status SetPKCS10CertReqPublicKeyAlgorithmOidAndParameters(PKCS10CertReq* request, const uint8_t* oid,
                                                          const uint8_t* parameters, uint32_t length) {
    if (AnyNull(request, oid)) return Fail(StatusBadArgument);
    return SetAlgorithm(KeyAlgorithm(request), oid, {parameters, length});
}

Status SetPKCS10CertReqGostR34102001PublicKeyAlgorithmIdAndParameters(PKCS10CertReq* request, uint32_t algorithmId,
                                                                      uint8_t parametersForm,
                                                                      uint32_t publicKeyParamSet,
                                                                      uint32_t digestParamSet,
                                                                      uint32_t encryptionParamSet) {
    if (request == nullptr) return Fail(StatusBadArgument);
    const GostSets sets = {parametersForm, publicKeyParamSet, digestParamSet, encryptionParamSet};
    return SetGostAlgorithm(KeyAlgorithm(request), algorithmId, sets);
}

Status GetPKCS10CertReqSignature(const PKCS10CertReq* request, uint8_t* signature, uint32_t* length) {
    if (AnyNull(request, length)) return Fail(StatusBadArgument);
    if (request->certificationRequestInfo == nullptr) return Fail(StatusAbsent);
    return GetBits(At<&PKCS10CertReq::signature>(request), signature, length);
}

Status SetPKCS10CertReqSignature(PKCS10CertReq* request, const uint8_t* signature, uint32_t length) {
    if (AnyNull(request, signature)) return Fail(StatusBadArgument);
    return SetBits(At<&PKCS10CertReq::signature>(request), signature, length);
}

Status GetPKCS10CertReqSignatureAlgorithmOidAndParameters(const PKCS10CertReq* request, uint8_t* oid,
                                                          uint32_t* oidLength, uint8_t* parameters,
                                                          uint32_t* parametersLength) {
    if (AnyNull(request, oidLength)) return Fail(StatusBadArgument);
    return GetAlgorithm(SignatureAlgorithm(request), {oid, oidLength}, {parameters, parametersLength});
}

Status SetPKCS10CertReqSignatureAlgorithmOidAndParameters(PKCS10CertReq* request, const uint8_t* oid,
                                                          const uint8_t* parameters, uint32_t length) {
    if (AnyNull(request, oid)) return Fail(StatusBadArgument);
    return SetAlgorithm(SignatureAlgorithm(request), oid, {parameters, length});
}

Status SetPKCS10CertReqGostR34102001SignatureAlgorithmID(PKCS10CertReq* request, uint32_t algorithmId,
                                                         uint32_t parametersForm) {
    // The low byte alone counts: see docs/oddities.md.
    const auto form = static_cast<uint8_t>(parametersForm);
    if (form != ParametersFormNull && form != ParametersFormAbsent) return Fail(StatusBadArgument);
    return SetPKCS10CertReqGostR34102001SignatureAlgorithmIdAndParameters(request, algorithmId, form, 0, 0, 0);
}

Status SetPKCS10CertReqGostR34102001SignatureAlgorithmIdAndParameters(PKCS10CertReq* request, uint32_t algorithmId,
                                                                      uint8_t parametersForm,
                                                                      uint32_t publicKeyParamSet,
                                                                      uint32_t digestParamSet,
                                                                      uint32_t encryptionParamSet) {
    if (request == nullptr) return Fail(StatusBadArgument);
    const GostSets sets = {parametersForm, publicKeyParamSet, digestParamSet, encryptionParamSet};
    return SetGostAlgorithm(SignatureAlgorithm(request), algorithmId, sets);
}

// The two generations of keys are wrapped alike.
TLVFORGE_ALIAS(SetPKCS10CertReqGostR34102012PublicKey, SetPKCS10CertReqGostR34102001PublicKey);
