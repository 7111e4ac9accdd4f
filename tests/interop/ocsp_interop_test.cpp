// OpenSSL as the oracle of OCSP: what either writes, both read alike, and OpenSSL verifies what was signed.

#include "tlvforge/ocsp.h"

#include <openssl/ocsp.h>

#include "interop/peer.h"
#include "walk_ocsp.h"

using namespace peer;
using walk::kOut;

namespace {

const Bytes kSha1 = OidOf("1.3.14.3.2.26");

// A key with its certificate, which is the one that is asked about.
struct Authority {
    const walk::Owned<EVP_PKEY_free> key{EVP_EC_gen("P-256")};
    const walk::Owned<X509_free> owner = CertificateOf(key.get());
    X509* const certificate = owner.get();
    X509_NAME* const name = X509_get_subject_name(certificate);
    const Bytes encoded = DerOf(certificate, i2d_X509), encodedName = DerOf(name, i2d_X509_NAME);
    const walk::Owned<OCSP_CERTID_free> certId{OCSP_cert_to_id(EVP_sha1(), certificate, certificate)};
    Bytes id[3];  // hashes of name and key, serial number

    Authority() {
        ASN1_STRING* parts[3] = {};
        OCSP_id_get0_info(&parts[0], nullptr, &parts[1], &parts[2], certId.get());
        std::transform(parts, parts + 3, id, ContentOf);
    }
    Bytes Sign(const Bytes& tbs) const {
        const walk::Owned<EVP_MD_CTX_free> context(EVP_MD_CTX_new());
        Bytes signature(256);
        size_t size = signature.size();
        EXPECT_EQ(EVP_DigestSignInit(context.get(), nullptr, EVP_sha256(), nullptr, key.get()), 1);
        EXPECT_EQ(EVP_DigestSign(context.get(), &signature[0], &size, &tbs[0], tbs.size()), 1);
        return Bytes(&signature[0], &signature[size]);
    }
};

// A CertID from the parts that a getter of this library gives.
Bytes IdTlv(auto get) {
    const auto [oid, parameters, name, key, serial] = Outputs(walk::Complete(get), kOut, kOut, kOut, kOut, kOut);
    return Tlv(48, Tlv(48, Bytes{6} + oid + parameters) + Tlv(4, name) + Tlv(4, key) + Tlv(2, serial));
}

void ReadRequest(const Bytes& der) {
    const auto ours = Decoded<FreeOcspRequest>(DecodeOcspRequest, der);
    const auto peer = FromDer<OCSP_REQUEST_free>(d2i_OCSP_REQUEST, der);
    uint32_t count = 0;
    EXPECT_EQ(GetOcspRequestCertRequestsCount(ours.get(), &count), 0u);
    ASSERT_EQ(count, uint32_t(OCSP_request_onereq_count(peer.get())));
    for (uint32_t i = 0; i < count; ++i) {
        EXPECT_EQ(IdTlv([&](auto... out) { return GetOcspRequestCertRequest(ours.get(), i, out..., nullptr); }),
                  DerOf(OCSP_onereq_get0_id(OCSP_request_onereq_get0(peer.get(), int(i))), i2d_OCSP_CERTID));
    }
    EXPECT_EQ(IsExistsOcspRequestSignature(ours.get()), OCSP_request_is_signed(peer.get()) ? 0u : 311u);
}

void ReadSingle(const OcspSingleResponse* ours, OCSP_SINGLERESP* peer) {
    ASN1_GENERALIZEDTIME *revoked = nullptr, *thisUpdate = nullptr, *nextUpdate = nullptr;
    LibraryTime time = {};
    int peerReason = -1;
    uint32_t answer = 9, reason = UINT32_MAX;
    EXPECT_EQ(IdTlv([&](auto... out) { return GetOcspSingleResponseCertID(ours, out...); }),
              DerOf(OCSP_SINGLERESP_get0_id(peer), i2d_OCSP_CERTID));
    EXPECT_EQ(GetOcspSingleResponseCertStatus(ours, &answer), 0u);
    ASSERT_EQ(int(answer), OCSP_single_get0_status(peer, &peerReason, &revoked, &thisUpdate, &nextUpdate));
    ExpectTime(GetOcspSingleResponseThisUpdate(ours, &time), time, thisUpdate);
    ExpectTime(GetOcspSingleResponseNextUpdate(ours, &time), time, nextUpdate);
    if (answer != V_OCSP_CERTSTATUS_REVOKED) return;
    ExpectTime(GetOcspSingleResponseCertStatusRevokedInfo(ours, &time, &reason), time, revoked);
    EXPECT_EQ(int(reason), peerReason);
}

void ReadResponse(const Bytes& der) {
    const auto message = Decoded<FreeOcspResponse>(DecodeOcspResponse, der);
    const auto [type, bytes] = Outputs(GetOcspResponseBytes, message.get(), kOut, kOut);
    if (bytes.empty()) return;  // an error status alone
    const auto decoded = Decoded<FreeOcspBasicResponse>(DecodeOcspBasicResponse, bytes);
    const auto response = FromDer<OCSP_RESPONSE_free>(d2i_OCSP_RESPONSE, der);
    const walk::Owned<OCSP_BASICRESP_free> owner(OCSP_response_get1_basic(response.get()));
    OcspBasicResponse* const ours = decoded.get();
    OCSP_BASICRESP* const peer = owner.get();
    OcspSingleResponse* single = nullptr;
    const ASN1_OCTET_STRING* hash = nullptr;
    const X509_NAME* name = nullptr;
    LibraryTime time = {};
    uint32_t kind = 9, count = 0;
    EXPECT_EQ(GetOcspBasicResponseSingleResponsesCount(ours, &count), 0u);
    ASSERT_EQ(count, uint32_t(OCSP_resp_count(peer)));
    for (uint32_t i = 0; i < count; ++i) {
        EXPECT_EQ(GetOcspBasicResponseSingleResponse(ours, i, &single), 0u);
        ReadSingle(single, OCSP_resp_get0(peer, int(i)));
    }
    ExpectTime(GetOcspBasicResponseProducedAt(ours, &time), time, OCSP_resp_get0_produced_at(peer));
    EXPECT_EQ(OCSP_resp_get0_id(peer, &hash, &name), 1);
    EXPECT_EQ(Fetch(GetOcspBasicResponseResponderID, ours, &kind), DerOf(name, i2d_X509_NAME) + ContentOf(hash));
    EXPECT_EQ(Fetch(GetOcspBasicResponseSignature, ours), ContentOf(OCSP_resp_get0_signature(peer)));
}

// A response of this library, with another time in the signed part than was signed if spoilt.
Bytes WriteResponse(const Authority& ca, bool spoilt) {
    const Bytes ecdsa = OidOf("1.2.840.10045.4.3.2"), type = OidOf("1.3.6.1.5.5.7.48.1.1"), *id = ca.id;
    const auto basic = Make<FreeOcspBasicResponse>(CreateOcspBasicResponse);
    const auto message = Make<FreeOcspResponse>(CreateOcspResponse);
    OcspSingleResponse* const single = Make<FreeOcspSingleResponse>(CreateOcspSingleResponse).release();
    OcspBasicResponse* const b = basic.get();
    LibraryTime now = {};
    Expect(0, {AddOcspBasicResponseSingleResponse(b, single), GetCurrentLibTime(&now),
               AddOcspBasicResponseCertificate(b, Decoded<FreeCertificate>(DecodeCertificate, ca.encoded).release()),
               SetOcspSingleResponseCertID(single, &kSha1[0], nullptr, 0, &id[0][0], 20, &id[1][0], 20, &id[2][0], 2),
               SetOcspSingleResponseThisUpdate(single, &now), SetOcspSingleResponseNextUpdate(single, &now),
               SetOcspSingleResponseCertStatusRevoked(single, &now, 4), SetOcspBasicResponseProducedAt(b, &now),
               SetOcspBasicResponseResponderID(b, 0, &ca.encodedName[0], Size(ca.encodedName)),
               SetOcspBasicResponseSignatureAlgorithmOidAndParameters(b, &ecdsa[0], nullptr, 0)});
    const Bytes signature = ca.Sign(Fetch(GetOcspBasicResponseToBeSignedPart, b));
    if (spoilt) now.year = 2020;
    Expect(0, {SetOcspBasicResponseSignature(b, &signature[0], Size(signature)),
               SetOcspBasicResponseProducedAt(b, &now), SetOcspResponseStatus(message.get(), 0)});
    const Bytes bytes = Fetch(EncodeOcspBasicResponse, b);
    EXPECT_EQ(SetOcspResponseBytes(message.get(), &type[0], &bytes[0], Size(bytes)), 0u);
    return Fetch(EncodeOcspResponse, message.get());
}

TEST(Interop, OcspRequestsOfEitherSideAreReadAlike) {
    const Authority ca;
    const Bytes nonce = Hex("0401AA"), *id = ca.id;
    for (const auto& [file, bytes] : Corpus("ocsp-req")) ReadRequest(bytes);
    const walk::Owned<OCSP_REQUEST_free> theirs(OCSP_REQUEST_new());
    for (int i = 0; i < 2; ++i) EXPECT_TRUE(OCSP_request_add0_id(theirs.get(), OCSP_CERTID_dup(ca.certId.get())));
    EXPECT_EQ(OCSP_request_set1_name(theirs.get(), ca.name), 1);
    EXPECT_EQ(OCSP_request_sign(theirs.get(), ca.certificate, ca.key.get(), EVP_sha256(), nullptr, 0), 1);
    const Bytes der = DerOf(theirs.get(), i2d_OCSP_REQUEST);
    ReadRequest(der);
    const auto ours = Decoded<FreeOcspRequest>(DecodeOcspRequest, der), made = Make<FreeOcspRequest>(CreateOcspRequest);
    Certificate* certificate = nullptr;
    X509Extensions extensions = nullptr;
    uint32_t kind = 9;
    EXPECT_EQ(Fetch(GetOcspRequestRequestorNameValue, ours.get(), &kind), ca.encodedName);
    EXPECT_EQ(GetOcspRequestCertificate(ours.get(), 0, &certificate), 0u);
    EXPECT_EQ(Fetch(EncodeCertificate, certificate), ca.encoded);

    OcspRequest* const r = made.get();
    Expect(0, {AddOcspRequestCertRequest(r, &kSha1[0], nullptr, 0, &id[0][0], 20, &id[1][0], 20, &id[2][0], 2, nullptr),
               SetOcspRequestRequestorName(r, 4, &ca.encodedName[0], Size(ca.encodedName)),
               GetOcspRequestExtensions(r, &extensions),
               AddX509ExtensionsExtension(extensions, OidOf("1.3.6.1.5.5.7.48.1.2").data(), 0, &nonce[0], 3)});
    const Bytes written = Fetch(EncodeOcspRequest, r);
    ReadRequest(written);
    const auto peer = FromDer<OCSP_REQUEST_free>(d2i_OCSP_REQUEST, written);
    EXPECT_EQ(DerOf(peer.get(), i2d_OCSP_REQUEST), written);
    EXPECT_GE(OCSP_REQUEST_get_ext_by_NID(peer.get(), NID_id_pkix_OCSP_Nonce, -1), 0);
}

TEST(Interop, OcspResponsesOfEitherSideAreReadAlikeAndOursVerify) {
    const Authority ca;
    for (const auto& [file, bytes] : Corpus("ocsp-resp")) ReadResponse(bytes);
    const walk::Owned<OCSP_BASICRESP_free> theirs(OCSP_BASICRESP_new());
    const walk::Owned<ASN1_TIME_free> now(X509_gmtime_adj(nullptr, 0));
    for (int status : {V_OCSP_CERTSTATUS_GOOD, V_OCSP_CERTSTATUS_REVOKED, V_OCSP_CERTSTATUS_UNKNOWN}) {
        EXPECT_TRUE(OCSP_basic_add1_status(theirs.get(), ca.certId.get(), status, 4, now.get(), now.get(), nullptr));
    }
    EXPECT_EQ(OCSP_basic_sign(theirs.get(), ca.certificate, ca.key.get(), EVP_sha256(), nullptr, OCSP_RESPID_KEY), 1);
    const walk::Owned<OCSP_RESPONSE_free> message(OCSP_response_create(0, theirs.get()));
    ReadResponse(DerOf(message.get(), i2d_OCSP_RESPONSE));

    const walk::Owned<X509_STORE_free> store(X509_STORE_new());
    EXPECT_EQ(X509_STORE_add_cert(store.get(), ca.certificate), 1);
    for (const bool spoilt : {false, true}) {
        const Bytes der = WriteResponse(ca, spoilt);
        ReadResponse(der);
        const auto peer = FromDer<OCSP_RESPONSE_free>(d2i_OCSP_RESPONSE, der);
        const walk::Owned<OCSP_BASICRESP_free> basic(OCSP_response_get1_basic(peer.get()));
        EXPECT_EQ(OCSP_basic_verify(basic.get(), nullptr, store.get(), 0) == 1, !spoilt);
    }
}

}  // namespace
