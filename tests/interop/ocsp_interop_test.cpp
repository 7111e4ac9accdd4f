// OpenSSL as the oracle of OCSP: what it reads from real requests and responses, this library reads as well.

#include "tlvforge/ocsp.h"

#include <openssl/ocsp.h>

#include "interop/peer.h"
#include "walk_ocsp.h"

using namespace peer;

namespace {

// A CertID from the parts that a getter of this library gives.
Bytes IdOf(auto get) {
    const auto [oid, parameters, name, key, serial] = Outputs(walk::Complete(get), kOut, kOut, kOut, kOut, kOut);
    return Tlv(48, Tlv(48, Bytes{6} + oid + parameters) + Tlv(4, name) + Tlv(4, key) + Tlv(2, serial));
}

void CompareRequest(Comparison& both, OcspRequest* ours, OCSP_REQUEST* theirs) {
    int next = 0;
    const uint32_t entries = walk::Lent(GetOcspRequestCertRequestsCount, ours);
    if (!both.Same("entries", int(entries), OCSP_request_onereq_count(theirs))) return;
    walk::Each(GetOcspRequestCertRequestsCount, ours, [&](uint32_t i) {
        X509Extensions list = nullptr;
        OCSP_ONEREQ* const entry = OCSP_request_onereq_get0(theirs, next++);
        both.Same("CertID", IdOf([&](auto... out) { return GetOcspRequestCertRequest(ours, i, out..., &list); }),
                  DerOf(OCSP_onereq_get0_id(entry), i2d_OCSP_CERTID));
        both.Same("entry extensions", ExtensionsOf(list),
                  Joined(entry, OCSP_ONEREQ_get_ext_count, OCSP_ONEREQ_get_ext, i2d_X509_EXTENSION));
    });
    both.Same("extensions", ExtensionsOf(GetOcspRequestExtensions, ours),
              Joined(theirs, OCSP_REQUEST_get_ext_count, OCSP_REQUEST_get_ext, i2d_X509_EXTENSION));
    both.Same("is signed", IsExistsOcspRequestSignature(ours) == StatusOk, OCSP_request_is_signed(theirs) != 0);
    both.Same("encoding", Fetch(EncodeOcspRequest, ours), DerOf(theirs, i2d_OCSP_REQUEST));
}

void CompareSingle(Comparison& both, OcspSingleResponse* ours, OCSP_SINGLERESP* theirs) {
    ASN1_GENERALIZEDTIME *revoked = nullptr, *thisUpdate = nullptr, *nextUpdate = nullptr;
    LibraryTime time = {};
    int peerReason = -1;
    uint32_t answer = 9, reason = UINT32_MAX;
    const int expected = OCSP_single_get0_status(theirs, &peerReason, &revoked, &thisUpdate, &nextUpdate);
    EXPECT_STATUS(StatusOk, GetOcspSingleResponseCertStatus(ours, &answer));
    both.Same("CertID", IdOf([&](auto... out) { return GetOcspSingleResponseCertID(ours, out...); }),
              DerOf(OCSP_SINGLERESP_get0_id(theirs), i2d_OCSP_CERTID));
    both.Same("certificate status", int(answer), expected);
    both.Time("thisUpdate", GetOcspSingleResponseThisUpdate(ours, &time), time, thisUpdate);
    both.Time("nextUpdate", GetOcspSingleResponseNextUpdate(ours, &time), time, nextUpdate);
    both.Same("single extensions", ExtensionsOf(GetOcspSingleResponseExtensions, ours),
              Joined(theirs, OCSP_SINGLERESP_get_ext_count, OCSP_SINGLERESP_get_ext, i2d_X509_EXTENSION));
    if (expected != V_OCSP_CERTSTATUS_REVOKED) return;
    both.Time("revocationTime", GetOcspSingleResponseCertStatusRevokedInfo(ours, &time, &reason), time, revoked);
    both.Same("reason", int(reason), peerReason);
}

// The basic response in it; an error status has none.
void CompareResponse(Comparison& both, OcspResponse* message, OCSP_RESPONSE* response) {
    int32_t status = -1;
    EXPECT_STATUS(StatusOk, GetOcspResponseStatus(message, &status));
    both.Same("status", status, OCSP_response_status(response));
    const walk::Owned<OCSP_BASICRESP_free> peer(OCSP_response_get1_basic(response));
    const auto [type, bytes] = Outputs(GetOcspResponseBytes, message, kOut, kOut);
    both.Same("basic response", type == OidOf("1.3.6.1.5.5.7.48.1.1"), peer != nullptr);
    if (!peer) return;
    const auto decoded = Decoded<FreeOcspBasicResponse>(DecodeOcspBasicResponse, bytes);
    OcspBasicResponse* const ours = decoded.get();
    OCSP_BASICRESP* const theirs = peer.get();
    const ASN1_OCTET_STRING* hash = nullptr;
    const X509_NAME* name = nullptr;
    LibraryTime time = {};
    uint32_t kind = 9;
    int next = 0;
    const uint32_t singles = walk::Lent(GetOcspBasicResponseSingleResponsesCount, ours);
    if (!both.Same("single responses", int(singles), OCSP_resp_count(theirs))) return;
    walk::Each(GetOcspBasicResponseSingleResponsesCount, ours, [&](uint32_t i) {
        OcspSingleResponse* single = nullptr;
        EXPECT_STATUS(StatusOk, GetOcspBasicResponseSingleResponse(ours, i, &single));
        CompareSingle(both, single, OCSP_resp_get0(theirs, next++));
    });
    both.Time("producedAt", GetOcspBasicResponseProducedAt(ours, &time), time, OCSP_resp_get0_produced_at(theirs));
    EXPECT_EQ(OCSP_resp_get0_id(theirs, &hash, &name), 1);
    both.Same("responder", Fetch(GetOcspBasicResponseResponderID, ours, &kind),
              DerOf(name, i2d_X509_NAME) + ContentOf(hash));
    both.Same("kind of responder", kind, hash != nullptr ? 1u : 0u);
    both.Same("extensions", ExtensionsOf(GetOcspBasicResponseExtensions, ours),
              Joined(theirs, OCSP_BASICRESP_get_ext_count, OCSP_BASICRESP_get_ext, i2d_X509_EXTENSION));
    both.Same("signed part", Fetch(GetOcspBasicResponseToBeSignedPart, ours),
              DerOf(OCSP_resp_get0_respdata(theirs), i2d_OCSP_RESPDATA));
    both.Same("signature algorithm", AlgorithmOf(GetOcspBasicResponseSignatureAlgorithmAndParameters, ours),
              DerOf(OCSP_resp_get0_tbs_sigalg(theirs), i2d_X509_ALGOR));
    both.Same("signature", Fetch(GetOcspBasicResponseSignature, ours), ContentOf(OCSP_resp_get0_signature(theirs)));
}

TEST(Interop, OcspIsReadAsOpenSslReadsIt) {
    SKIP_WITHOUT_CORPUS();
    Comparison requests(17),
        responses(42, {{"ocsp-resp/gocrypto-ocsp-test-hex3.der", "signed part", "no default is written"}});
    CompareFolder<FreeOcspRequest, OCSP_REQUEST_free>(requests, "ocsp-req", DecodeOcspRequest, d2i_OCSP_REQUEST,
                                                      CompareRequest);
    CompareFolder<FreeOcspResponse, OCSP_RESPONSE_free>(responses, "ocsp-resp", DecodeOcspResponse, d2i_OCSP_RESPONSE,
                                                        CompareResponse);
}

}  // namespace
