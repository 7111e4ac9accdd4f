// The responder: answers requests about the certificates of one authority, of which it has a list, and the CRL.
#pragma once

#include "../issuing/crl.h"
#include "../signing/identity.h"
#include "certificate_id.h"
#include "messages.h"

namespace examples {

struct Responder {
    Identity identity;
    OwnedCertificate authority;
    OwnedCertificates issued;
    OwnedCrl crl;
};

// The authority lets it speak in its name, and asks nobody to check whether it is revoked itself.
inline Identity MakeResponderIdentity(const Identity& authority) {
    static constexpr Purpose kOcspSigning = {"1.3.6.1.5.5.7.3.9", false};
    Identity identity = MakeIdentity(authority, "OCSP Responder", kOcspSigning);
    const X509Extensions extensions = ExtensionsOf(GetCertificateExtensions, identity.certificate);
    AddExtension(extensions, kNoCheck, false, {StatusOk, {Asn1KindNull, 0}});
    SignCertificate(authority.suite, authority.key.get(), identity.certificate);
    return identity;
}

// --- The answer about one certificate ---

inline bool IsListed(const Certificates* list, const Bytes& serial) {
    uint32_t count = 0;
    Require(GetCertificatesCount(list, &count), "counting certificates");
    for (uint32_t i = 0; i < count; ++i) {
        Certificate* certificate = nullptr;
        Require(GetCertificatesCertificate(list, i, &certificate), "reaching a certificate");
        if (SerialNumberOf(certificate) == serial) return true;
    }
    return false;
}

// Hashes by an algorithm that OpenSSL doesn't know are nobody's.
inline bool IsKnown(const Responder& responder, const CertificateId& id) {
    const CertificateId own = IdentifyCertificate(id.hashOid, responder.authority, id.serial);
    return !own.nameHash.empty() && own.nameHash == id.nameHash && own.keyHash == id.keyHash &&
           IsListed(responder.issued, id.serial);
}

// Negative without a reason.
inline int32_t ReasonOf(const X509Crl* crl, uint32_t index) {
    const Bytes value = FindExtension(ExtensionsOf(GetX509CrlRevokedCertificateExtensions, crl, index), "2.5.29.21");
    if (value.empty()) return -1;
    int32_t reason = 0;
    Require(DecodeExtensionReasonCode(value.data(), Size(value), &reason), "decoding a reason");
    return reason;
}

inline void SetCertificateStatus(const Responder& responder, const CertificateId& id, OcspSingleResponse* single) {
    if (!IsKnown(responder, id)) {
        return Require(SetOcspSingleResponseCertStatusUnknown(single), "setting a status");
    }
    uint32_t index = 0;
    const Status found =
        FindX509CrlFind(responder.crl, SubjectOf(responder.authority), id.serial.data(), Size(id.serial), &index);
    if (found == StatusNotFound) return Require(SetOcspSingleResponseCertStatusGood(single), "setting a status");
    Require(found, "looking a certificate up");
    LibraryTime date = {};
    Require(GetX509CrlRevokedCertificateRevokationDate(responder.crl, index, &date), "reading a date");
    Require(SetOcspSingleResponseCertStatusRevoked(single, &date, ReasonOf(responder.crl, index)), "setting a status");
}

// An answer is as new as the CRL.
inline void AddAnswer(const Responder& responder, const CertificateId& id, OcspBasicResponse* response) {
    LibraryTime thisUpdate = {}, nextUpdate = {};
    Require(GetX509CrlThisUpdate(responder.crl, &thisUpdate), "reading thisUpdate");
    Require(GetX509CrlNextUpdate(responder.crl, &nextUpdate), "reading nextUpdate");
    OcspSingleResponse* single = nullptr;
    Require(CreateOcspSingleResponse(&single), "making an answer");
    Adopt<FreeOcspSingleResponse>(AddOcspBasicResponseSingleResponse, response, single);
    WriteCertificateId(SetOcspSingleResponseCertID, single, id);
    SetCertificateStatus(responder, id, single);
    Require(SetOcspSingleResponseThisUpdate(single, &thisUpdate), "setting thisUpdate");
    Require(SetOcspSingleResponseNextUpdate(single, &nextUpdate), "setting nextUpdate");
}

// --- The response ---

inline void AddAnswers(const Responder& responder, const OcspRequest* request, OcspBasicResponse* response) {
    uint32_t count = 0;
    Require(GetOcspRequestCertRequestsCount(request, &count), "counting entries");
    // Without the extensions of an entry, which come last.
    const auto get = [](const OcspRequest* from, uint32_t index, auto... outputs) {
        return GetOcspRequestCertRequest(from, index, outputs..., nullptr);
    };
    for (uint32_t i = 0; i < count; ++i) AddAnswer(responder, ReadCertificateId(get, request, i), response);
}

// The nonce of the request comes back, so that an old response can't stand for a new one.
inline void ReturnNonce(const OcspRequest* request, OcspBasicResponse* response) {
    Bytes nonce = FindExtension(ExtensionsOf(GetOcspRequestExtensions, request), kNonce);
    if (nonce.empty()) return;
    AddExtension(ExtensionsOf(GetOcspBasicResponseExtensions, response), kNonce, false, {StatusOk, std::move(nonce)});
}

inline Bytes MakeBasicResponse(const Responder& responder, const OcspRequest* request) {
    const Identity& identity = responder.identity;
    const Bytes name = Require(Get(EncodeX509Name, SubjectOf(identity.certificate)), "encoding a name");
    const LibraryTime now = Now();
    OwnedBasicResponse response;
    Require(CreateOcspBasicResponse(response.Out()), "making a response");
    Require(SetOcspBasicResponseResponderID(response, 0, name.data(), Size(name)), "setting the responder");  // byName
    Require(SetOcspBasicResponseProducedAt(response, &now), "setting producedAt");
    AddAnswers(responder, request, response);
    ReturnNonce(request, response);
    AdoptCopy(identity.certificate, AddOcspBasicResponseCertificate, response);
    SignDocument(identity.suite, identity.key.get(), response, SetOcspBasicResponseSignatureAlgorithmOidAndParameters,
                 GetOcspBasicResponseToBeSignedPart, SetOcspBasicResponseSignature);
    return Require(Get(EncodeOcspBasicResponse, response), "encoding a response");
}

inline Bytes AnswerOcspRequest(const Responder& responder, const Bytes& request) {
    OwnedOcspRequest decoded;
    OwnedOcspResponse response;
    const bool wellFormed = DecodeOcspRequest(request.data(), Size(request), decoded.Out()) == StatusOk;
    Require(CreateOcspResponse(response.Out()), "making a response");
    Require(SetOcspResponseStatus(response, wellFormed ? kSuccessful : kMalformedRequest), "setting the status");
    if (wellFormed) {
        const Bytes basic = MakeBasicResponse(responder, decoded);
        Require(SetOcspResponseBytes(response, Oid(kBasicType).data(), basic.data(), Size(basic)), "setting the bytes");
    }
    return Require(Get(EncodeOcspResponse, response), "encoding a response");
}

}  // namespace examples
