#include "tlvforge/request.h"

#include "engine/access.h"
#include "x509/request.schema.h"

using namespace tlvforge;

Status CreatePKCS10CertReq(PKCS10CertReq** request) { return CreateTree(request); }

Status CreatePKCS10CertReqCopy(const PKCS10CertReq* request, PKCS10CertReq** copy) { return CopyTree(request, copy); }

Status DecodePKCS10CertReq(const uint8_t* bytes, uint32_t length, PKCS10CertReq** request) {
    RsaAttributes attributes = nullptr;
    if (const Status status = DecodeTree(bytes, length, request)) return status;
    if (const Status status = GetPKCS10CertReqAttributes(*request, &attributes)) return status;
    // In the order that was read, so that the request is encoded with the bytes that were signed.
    return SetRsaAttributesSorted(attributes, 0);
}

Status EncodePKCS10CertReq(const PKCS10CertReq* request, uint8_t* buffer, uint32_t* length) {
    return EncodeTree(request, buffer, length);
}

Status FreePKCS10CertReq(PKCS10CertReq* request) { return FreeTree(request); }

Status GetPKCS10CertReqToBeSignedPart(const PKCS10CertReq* request, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(request, length)) return Fail(StatusBadArgument);
    return Encode(At<&PKCS10CertReq::certificationRequestInfo>(request), buffer, length);
}
