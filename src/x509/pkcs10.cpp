#include "tlvforge/request.h"

#include "engine/nodes.h"
#include "x509/request.schema.h"

using namespace tlvforge;

Status CreatePKCS10CertReq(PKCS10CertReq** request) { return CreateTree(request); }

Status CreatePKCS10CertReqCopy(const PKCS10CertReq* request, PKCS10CertReq** copy) { return CopyTree(request, copy); }

Status DecodePKCS10CertReq(const uint8_t* bytes, uint32_t length, PKCS10CertReq** request) {
    Status status = DecodeTree(bytes, length, request);
    RsaAttributes attributes = nullptr;
    if (status == StatusOk) status = GetPKCS10CertReqAttributes(*request, &attributes);
    // In the order that was read, so that the request goes out with the bytes that were signed.
    return status == StatusOk ? SetRsaAttributesSorted(attributes, 0) : status;
}

Status EncodePKCS10CertReq(const PKCS10CertReq* request, uint8_t* buffer, uint32_t* length) {
    return EncodeTree(request, buffer, length);
}

Status FreePKCS10CertReq(PKCS10CertReq* request) { return FreeTree(request); }

Status GetPKCS10CertReqToBeSignedPart(const PKCS10CertReq* request, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(request, length)) return Fail(StatusBadArgument);
    if (request->certificationRequestInfo == nullptr) return Fail(StatusAbsent);
    return EncodeTree(request->certificationRequestInfo, buffer, length);
}
