#include "tlvforge/request.h"

#include "engine/nodes.h"
#include "engine/oids.h"
#include "x509/fields.h"
#include "x509/request.schema.h"

using namespace tlvforge;

namespace {

constexpr const uint8_t* kExtensionRequest = Oid<1, 2, 840, 113549, 1, 9, 14>;
constexpr const uint8_t* kMicrosoftCertificateExtensions = Oid<1, 3, 6, 1, 4, 1, 311, 2, 1, 14>;

// A field of certificationRequestInfo; null too where the request has none.
template <class Field>
Field* FieldOf(const PKCS10CertReq* request, Field* CertificationRequestInfo::*field) {
    return request->certificationRequestInfo == nullptr ? nullptr : request->certificationRequestInfo->*field;
}

SubjectPublicKeyInfo* KeyInfoOf(const PKCS10CertReq* request) {
    return FieldOf(request, &CertificationRequestInfo::subjectPKInfo);
}

AlgorithmIdentifier* SignatureAlgorithmOf(const PKCS10CertReq* request) {
    return request->certificationRequestInfo == nullptr ? nullptr : request->signatureAlgorithm;
}

}  // namespace

Status GetPKCS10CertReqVersion(const PKCS10CertReq* request, int32_t* version) {
    if (AnyNull(request, version)) return Fail(StatusBadArgument);
    const Asn1Value* value = FieldOf(request, &CertificationRequestInfo::version);
    if (value == nullptr) return Fail(StatusAbsent);
    return GetAsn1Int32(value, version);
}

Status SetPKCS10CertReqVersion(PKCS10CertReq* request, int32_t version) {
    if (request == nullptr || version < 0) return Fail(StatusBadArgument);
    if (request->certificationRequestInfo == nullptr) return Fail(StatusAbsent);
    return SetAsn1Int32Field(&request->certificationRequestInfo->version, version);
}

Status GetPKCS10CertReqSubject(PKCS10CertReq* request, X509Name** name) {
    if (AnyNull(request, name)) return Fail(StatusBadArgument);
    return LendName(FieldOf(request, &CertificationRequestInfo::subject), name);
}

Status SetPKCS10CertReqSubject(PKCS10CertReq* request, const X509Name* name) {
    if (AnyNull(request, name)) return Fail(StatusBadArgument);
    return CopyNameInto(FieldOf(request, &CertificationRequestInfo::subject), name);
}

Status GetPKCS10CertReqAttributes(const PKCS10CertReq* request, RsaAttributes* attributes) {
    if (AnyNull(request, attributes)) return Fail(StatusBadArgument);
    CertificationRequestInfo* info = request->certificationRequestInfo;
    if (info == nullptr || info->attributes.list == nullptr) return Fail(StatusAbsent);
    *attributes = &info->attributes;
    return StatusOk;
}

Status SetPKCS10CertReqAttributes(PKCS10CertReq* request, RsaAttributes source) {
    if (AnyNull(request, source)) return Fail(StatusBadArgument);
    RsaAttributes attributes = nullptr;
    Status status = GetPKCS10CertReqAttributes(request, &attributes);
    if (status != StatusOk) return status;
    // Copied first: the source may be the request's own.
    Tree<RsaAttributeList> copy;
    status = copy.CopyOf(source->list);
    FreeField(&attributes->list);
    attributes->list = copy.Take();
    return status;
}

Status GetPKCS10CertReqExtensions(const PKCS10CertReq* request, X509Extensions* extensions) {
    if (AnyNull(request, extensions)) return Fail(StatusBadArgument);
    RsaAttributes attributes = nullptr;
    uint32_t index = 0;
    Status status = GetPKCS10CertReqAttributes(request, &attributes);
    if (status != StatusOk) return status;
    status = FindRsaAttributesAttribute(attributes, kExtensionRequest, &index);
    if (status != StatusOk) status = FindRsaAttributesAttribute(attributes, kMicrosoftCertificateExtensions, &index);

    uint32_t length = 0;
    if (status == StatusOk) status = GetRsaAttributesAttributeValue(attributes, index, 0, nullptr, &length);
    if (status != StatusOk) return status;
    Block value(length);
    if (!value) return Fail(StatusOutOfMemory);
    status = GetRsaAttributesAttributeValue(attributes, index, 0, value.Bytes(), &length);
    return status == StatusOk ? DecodeX509Extensions(value.Bytes(), length, extensions) : status;
}

Status SetPKCS10CertReqExtensions(PKCS10CertReq* request, X509Extensions source) {
    if (AnyNull(request, source)) return Fail(StatusBadArgument);
    RsaAttributes attributes = nullptr;
    Status status = GetPKCS10CertReqAttributes(request, &attributes);
    if (status != StatusOk) return status;
    // A list that doesn't fit is answered with a plain 49 on purpose, although no buffer of the caller is at fault.
    uint8_t encoded[1024];
    uint32_t length = sizeof encoded;
    status = EncodeX509Extensions(source, encoded, &length);
    if (status == StatusOk) status = RemoveRsaAttributesAttribute2(attributes, kExtensionRequest);
    if (status != StatusOk) return status;
    uint32_t index = 0;
    return AddRsaAttributesAttributeWithValue(attributes, kExtensionRequest, &index, encoded, length);
}

Status GetPKCS10CertReqPublicKey(const PKCS10CertReq* request, uint8_t* key, uint32_t* length) {
    if (AnyNull(request, length)) return Fail(StatusBadArgument);
    return GetPublicKey(KeyInfoOf(request), key, length);
}

Status SetPKCS10CertReqPublicKey(PKCS10CertReq* request, const uint8_t* key, uint32_t length) {
    if (AnyNull(request, key)) return Fail(StatusBadArgument);
    return SetPublicKey(KeyInfoOf(request), key, length);
}

Status GetPKCS10CertReqPublicKeyGostR3410(const PKCS10CertReq* request, uint8_t* key, uint32_t* length) {
    if (AnyNull(request, length)) return Fail(StatusBadArgument);
    return GetGostPublicKey(KeyInfoOf(request), key, length);
}

Status SetPKCS10CertReqGostR34102001PublicKey(PKCS10CertReq* request, const uint8_t* key, uint32_t length) {
    if (AnyNull(request, key)) return Fail(StatusBadArgument);
    return SetGostPublicKey(KeyInfoOf(request), key, length);
}

Status GetPKCS10CertReqPublicKeyAlgorithmOidAndParameters(const PKCS10CertReq* request, uint8_t* oid,
                                                          uint32_t* oidLength, uint8_t* parameters,
                                                          uint32_t* parametersLength) {
    if (AnyNull(request, oidLength)) return Fail(StatusBadArgument);
    return GetAlgorithm(AlgorithmOf(KeyInfoOf(request)), oid, oidLength, parameters, parametersLength);
}

Status SetPKCS10CertReqPublicKeyAlgorithmOidAndParameters(PKCS10CertReq* request, const uint8_t* oid,
                                                          const uint8_t* parameters, uint32_t length) {
    if (AnyNull(request, oid)) return Fail(StatusBadArgument);
    return SetAlgorithm(AlgorithmOf(KeyInfoOf(request)), oid, parameters, length);
}

Status SetPKCS10CertReqGostR34102001PublicKeyAlgorithmIdAndParameters(PKCS10CertReq* request, uint32_t algorithmId,
                                                                      uint8_t parametersForm,
                                                                      uint32_t publicKeyParamSet,
                                                                      uint32_t digestParamSet,
                                                                      uint32_t encryptionParamSet) {
    if (request == nullptr) return Fail(StatusBadArgument);
    return SetGostAlgorithm(AlgorithmOf(KeyInfoOf(request)), algorithmId, parametersForm, publicKeyParamSet,
                            digestParamSet, encryptionParamSet);
}

Status GetPKCS10CertReqSignature(const PKCS10CertReq* request, uint8_t* signature, uint32_t* length) {
    if (AnyNull(request, length)) return Fail(StatusBadArgument);
    if (request->certificationRequestInfo == nullptr) return Fail(StatusAbsent);
    return GetBitStringField(request->signature, signature, length);
}

Status SetPKCS10CertReqSignature(PKCS10CertReq* request, const uint8_t* signature, uint32_t length) {
    if (AnyNull(request, signature)) return Fail(StatusBadArgument);
    return SetAsn1BitStringField(&request->signature, signature, length);
}

Status GetPKCS10CertReqSignatureAlgorithmOidAndParameters(const PKCS10CertReq* request, uint8_t* oid,
                                                          uint32_t* oidLength, uint8_t* parameters,
                                                          uint32_t* parametersLength) {
    if (AnyNull(request, oidLength)) return Fail(StatusBadArgument);
    return GetAlgorithm(SignatureAlgorithmOf(request), oid, oidLength, parameters, parametersLength);
}

Status SetPKCS10CertReqSignatureAlgorithmOidAndParameters(PKCS10CertReq* request, const uint8_t* oid,
                                                          const uint8_t* parameters, uint32_t length) {
    if (AnyNull(request, oid)) return Fail(StatusBadArgument);
    return SetAlgorithm(SignatureAlgorithmOf(request), oid, parameters, length);
}

Status SetPKCS10CertReqGostR34102001SignatureAlgorithmID(PKCS10CertReq* request, uint32_t algorithmId,
                                                         uint32_t parametersForm) {
    // The low byte alone counts. This is intended.
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
    return SetGostAlgorithm(SignatureAlgorithmOf(request), algorithmId, parametersForm, publicKeyParamSet,
                            digestParamSet, encryptionParamSet);
}

// The two generations of keys are wrapped alike.
decltype(SetPKCS10CertReqGostR34102001PublicKey) SetPKCS10CertReqGostR34102012PublicKey
    __attribute__((alias("SetPKCS10CertReqGostR34102001PublicKey")));
