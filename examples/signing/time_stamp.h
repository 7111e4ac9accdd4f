// A time-stamp (RFC 3161). The library speaks for the one who asks for it, OpenSSL for the authority that gives it.
#pragma once

#include "../issuing/verification.h"
#include "identity.h"
#include "message.h"

// Behind the headers above, which choose what OpenSSL declares.
#include <openssl/ts.h>

#include <climits>

namespace examples {

using Bio = OpenSsl<BIO, BIO_free>;

inline Bio ReadFrom(const Bytes& bytes) {
    RequireOpenSsl(bytes.size() <= INT_MAX, "reading that much from memory");
    Bio bio(BIO_new_mem_buf(bytes.data(), static_cast<int>(bytes.size())));
    RequireOpenSsl(bio != nullptr, "reading from memory");
    return bio;
}

inline Bytes AnswerTimeStampRequest(const Identity& authority, const Bytes& request) {
    const EVP_MD* const digest = DigestOf(authority.suite);
    const auto certificate = ReadByOpenSsl<OpenSslCertificate, d2i_X509>(authority.Der());
    const OpenSsl<ASN1_OBJECT, ASN1_OBJECT_free> policy(OBJ_txt2obj("1.3.6.1.4.1.32473.1", 1));  // for examples
    const OpenSsl<TS_RESP_CTX, TS_RESP_CTX_free> context(TS_RESP_CTX_new());
    RequireOpenSsl(context != nullptr && TS_RESP_CTX_set_signer_cert(context.get(), certificate.get()) > 0 &&
                       TS_RESP_CTX_set_signer_key(context.get(), authority.key.get()) > 0 &&
                       TS_RESP_CTX_set_signer_digest(context.get(), digest) > 0 &&
                       TS_RESP_CTX_set_ess_cert_id_digest(context.get(), digest) > 0 &&
                       TS_RESP_CTX_add_md(context.get(), digest) > 0 &&
                       TS_RESP_CTX_set_def_policy(context.get(), policy.get()) > 0,
                   "preparing a time-stamp authority");
    const OpenSsl<TS_RESP, TS_RESP_free> response(TS_RESP_create_response(context.get(), ReadFrom(request).get()));
    uint8_t* der = nullptr;
    const int length = response == nullptr ? 0 : i2d_TS_RESP(response.get(), &der);
    RequireOpenSsl(length > 0, "answering a request for a time-stamp");
    Bytes bytes(der, der + length);
    OPENSSL_free(der);
    return bytes;
}

// The token for some bytes, of which the authority gets to know the digest only.
inline Bytes GetTimeStamp(const Identity& authority, const Bytes& bytes) {
    const Bytes digest = Digest(authority.suite, bytes);
    const Bytes nonce = MakeSerialNumber();
    const Bytes request = Require(Get(EncodeTimeStampReq, 1, DigestOid(authority.suite).data(), nullptr, 0,
                                      digest.data(), Size(digest), nullptr, 0, nonce.data(), Size(nonce), 1, nullptr),
                                  "encoding a request for a time-stamp");
    const Bytes response = AnswerTimeStampRequest(authority, request);
    int32_t status = 0;
    uint32_t failInfo = 0;
    Owned<PKIFreeText, FreePKIFreeText> statusString;
    OwnedContentInfo token;
    Require(DecodeTimeStampResp(response.data(), Size(response), &status, statusString.Out(), &failInfo, token.Out()),
            "decoding a time-stamp");
    if (status != 0 || token == nullptr) throw std::runtime_error("no time-stamp was granted");
    return Require(Get(EncodeCmsContentInfo, token), "encoding a time-stamp");
}

}  // namespace examples
