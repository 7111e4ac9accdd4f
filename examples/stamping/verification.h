// What OpenSSL says to a response.
#pragma once

#include "../signing/verification.h"

namespace examples {

using OpenSslTimeStampRequest = OpenSsl<TS_REQ, TS_REQ_free>;
using OpenSslTimeStampResponse = OpenSsl<TS_RESP, TS_RESP_free>;

// The signature by an authority that the root has put in charge, and whether it is the answer to the request.
inline bool VerifyResponse(const Bytes& requestDer, const Bytes& responseDer, const Store& store) {
    const auto request = ReadByOpenSsl<OpenSslTimeStampRequest, d2i_TS_REQ>(requestDer);
    const auto response = ReadByOpenSsl<OpenSslTimeStampResponse, d2i_TS_RESP>(responseDer);
    const OpenSsl<TS_VERIFY_CTX, TS_VERIFY_CTX_free> context(TS_REQ_to_TS_VERIFY_CTX(request.get(), nullptr));
    RequireOpenSsl(context != nullptr && X509_STORE_up_ref(store.get()) > 0, "preparing the verification");
    // The context owns the store, too.
    TS_VERIFY_CTX_set_store(context.get(), store.get());
    TS_VERIFY_CTX_add_flags(context.get(), TS_VFY_SIGNATURE);
    const bool accepted = TS_RESP_verify_response(context.get(), response.get()) > 0;
    if (!accepted) ERR_print_errors_fp(stderr);
    return Report("the response", accepted, accepted ? "verified" : "refused");
}

// failure: the number of a bit of PKIFailureInfo.
inline bool VerifyRefusal(const Bytes& responseDer, int failure) {
    const auto response = ReadByOpenSsl<OpenSslTimeStampResponse, d2i_TS_RESP>(responseDer);
    const TS_STATUS_INFO* const status = TS_RESP_get_status_info(response.get());
    const ASN1_BIT_STRING* const failures = TS_STATUS_INFO_get0_failure_info(status);
    const bool asExpected = ASN1_INTEGER_get(TS_STATUS_INFO_get0_status(status)) == TS_STATUS_REJECTION &&
                            failures != nullptr && ASN1_BIT_STRING_get_bit(failures, failure) == 1 &&
                            TS_RESP_get_token(response.get()) == nullptr;
    return Report("the refusal", asExpected, asExpected ? "refused for the right reason" : "something else");
}

}  // namespace examples
