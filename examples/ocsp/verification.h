// What OpenSSL says to a response.
#pragma once

#include "../signing/verification.h"

// Behind the header above, which chooses what OpenSSL declares.
#include <openssl/ocsp.h>

namespace examples {

using OpenSslOcspRequest = OpenSsl<OCSP_REQUEST, OCSP_REQUEST_free>;
using OpenSslOcspResponse = OpenSsl<OCSP_RESPONSE, OCSP_RESPONSE_free>;
using OpenSslBasicResponse = OpenSsl<OCSP_BASICRESP, OCSP_BASICRESP_free>;

inline OpenSslBasicResponse ReadBasicResponseByOpenSsl(const Bytes& der) {
    const auto response = ReadByOpenSsl<OpenSslOcspResponse, d2i_OCSP_RESPONSE>(der);
    const bool successful = OCSP_response_status(response.get()) == OCSP_RESPONSE_STATUS_SUCCESSFUL;
    OpenSslBasicResponse basic(successful ? OCSP_response_get1_basic(response.get()) : nullptr);
    RequireOpenSsl(basic != nullptr, "reading a response");
    return basic;
}

// The signature by a responder whom the root has put in charge, and the nonce.
inline bool VerifyResponse(OCSP_BASICRESP* response, const Bytes& request, const Store& store) {
    const auto asked = ReadByOpenSsl<OpenSslOcspRequest, d2i_OCSP_REQUEST>(request);
    const bool sameNonce = OCSP_check_nonce(asked.get(), response) == 1;
    const bool verified = OCSP_basic_verify(response, nullptr, store.get(), 0) > 0;
    if (!verified) ERR_print_errors_fp(stderr);
    Report("the nonce", sameNonce, sameNonce ? "the one of the request" : "not that of the request");
    return ReportSignature("the response", verified) && sameNonce;
}

struct StatusExpectation {
    const char* title;
    int status;  // V_OCSP_CERTSTATUS_...
};

inline bool VerifyStatus(OCSP_BASICRESP* response, const EVP_MD* digest, const Bytes& certificateDer,
                         const Bytes& issuerDer, const StatusExpectation& expected) {
    const auto certificate = ReadByOpenSsl<OpenSslCertificate, d2i_X509>(certificateDer);
    const auto issuer = ReadByOpenSsl<OpenSslCertificate, d2i_X509>(issuerDer);
    const OpenSsl<OCSP_CERTID, OCSP_CERTID_free> id(OCSP_cert_to_id(digest, certificate.get(), issuer.get()));
    int status = -1, reason = -1;
    ASN1_GENERALIZEDTIME *revoked = nullptr, *thisUpdate = nullptr, *nextUpdate = nullptr;
    const bool found = id != nullptr && OCSP_resp_find_status(response, id.get(), &status, &reason, &revoked,
                                                              &thisUpdate, &nextUpdate) > 0;
    const bool current = found && OCSP_check_validity(thisUpdate, nextUpdate, 300, -1) > 0;
    return Report(expected.title, current && status == expected.status,
                  found ? OCSP_cert_status_str(status) : "not in the response");
}

}  // namespace examples
