// What both sides need (RFC 6960).
#pragma once

#include "../issuing/parts.h"

namespace examples {

using OwnedCertificates = Owned<Certificates, FreeCertificates>;
using OwnedOcspRequest = Owned<OcspRequest, FreeOcspRequest>;
using OwnedOcspResponse = Owned<OcspResponse, FreeOcspResponse>;
using OwnedBasicResponse = Owned<OcspBasicResponse, FreeOcspBasicResponse>;

enum ResponseStatus : int32_t { kSuccessful = 0, kMalformedRequest = 1 };
enum CertificateStatus : uint32_t { kGood = 0, kRevoked = 1, kUnknown = 2 };

inline constexpr char kBasicType[] = "1.3.6.1.5.5.7.48.1.1";  // id-pkix-ocsp-basic
inline constexpr char kNonce[] = "1.3.6.1.5.5.7.48.1.2";      // id-pkix-ocsp-nonce
inline constexpr char kNoCheck[] = "1.3.6.1.5.5.7.48.1.5";    // id-pkix-ocsp-nocheck

// Hands an object over to the one that becomes its owner.
template <auto Free, class Add, class Owner, class Object>
void Adopt(Add add, const Owner& owner, Object* object) {
    const Status status = add(owner, object);
    if (status != StatusOk) (void)Free(object);
    Require(status, "handing an object over");
}

inline void AdoptCopy(const Certificate* certificate, auto add, const auto& owner) {
    Certificate* copy = nullptr;
    Require(CreateCertificateCopy(certificate, &copy), "copying a certificate");
    Adopt<FreeCertificate>(add, owner, copy);
}

// The value of an extension; empty without it.
inline Bytes FindExtension(X509Extensions extensions, const char* oid) {
    Fetched value = Get(GetX509ExtensionsExtensionValue, extensions, Oid(oid).data());
    if (value.status == StatusNotFound) return {};
    return Require(std::move(value), "reading an extension");
}

}  // namespace examples
