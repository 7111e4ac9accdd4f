// Certification requests.
#pragma once

#include "attributes.h"

namespace examples {

inline void PrintRequest(Outline& outline, PKCS10CertReq* request) {
    const Outline::Section section = outline.Open("Certification request");
    PrintVersion(outline, GetPKCS10CertReqVersion, request);
    PrintNameField(outline, "Subject", GetPKCS10CertReqSubject, request);
    PrintPublicKey(outline, GetPKCS10CertReqPublicKeyAlgorithmOidAndParameters, GetPKCS10CertReqPublicKey,
                   GetPKCS10CertReqPublicKeyGostR3410, request);
    PrintAttributesField(outline, "Attributes", GetPKCS10CertReqAttributes, request);
    PrintAlgorithm(outline, "Signature algorithm",
                   GetAlgorithm(GetPKCS10CertReqSignatureAlgorithmOidAndParameters, request));
    outline.Start("Signature", Get(GetPKCS10CertReqSignature, request));
}

}  // namespace examples
