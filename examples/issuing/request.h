// Certification requests.
#pragma once

#include <string>

#include "parts.h"

namespace examples {

// The holder of a key asks for a certificate that a server can use.
inline OwnedRequest MakeRequest(const Suite& suite, const std::string& host, EVP_PKEY* key) {
    OwnedRequest request;
    Require(CreatePKCS10CertReq(request.Out()), "making a request");
    Require(SetPKCS10CertReqVersion(request, 0), "setting the version");  // version 1
    Require(SetPKCS10CertReqSubject(request, MakeExampleName(host)), "setting the subject");
    SetPublicKey(request, key, SetPKCS10CertReqPublicKeyAlgorithmOidAndParameters, SetPKCS10CertReqPublicKey);
    OwnedExtensions extensions;
    Require(CreateX509Extensions(extensions.Out()), "making extensions");
    AddKeyUsage(extensions, kDigitalSignature);
    AddSubjectDnsName(extensions, host);
    Require(SetPKCS10CertReqExtensions(request, extensions), "setting the requested extensions");
    SignDocument(suite, key, request, SetPKCS10CertReqSignatureAlgorithmOidAndParameters,
                 GetPKCS10CertReqToBeSignedPart, SetPKCS10CertReqSignature);
    return request;
}

}  // namespace examples
