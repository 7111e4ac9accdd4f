// libcrypto as the oracle of OCSP: what either writes, both read alike, and libcrypto verifies what was signed.

#include <openssl/ocsp.h>

#include "support.h"
#include "tlvforge/ocsp.h"

using namespace support;

namespace {

Bytes ContentOf(const ASN1_STRING* text) { return Bytes(text->data, text->data + text->length); }
Bytes DerOf(auto* value, auto write) {
    Bytes der(static_cast<size_t>(write(value, nullptr)));
    uint8_t* at = der.data();
    write(value, &at);
    return der;
}
template <auto Free>
walk::Owned<Free> FromDer(auto decode, const Bytes& der) {
    const uint8_t* at = der.data();
    return walk::Owned<Free>(decode(nullptr, &at, static_cast<long>(der.size())));
}

// A key with its certificate, which issued itself and is the one that is asked about.
struct Authority {
    const walk::Owned<EVP_PKEY_free> key{EVP_EC_gen("P-256")};
    const walk::Owned<X509_free> owner{X509_new()};
    X509* const certificate = owner.get();
    X509_NAME* const name = X509_get_subject_name(certificate);
    Bytes id[3];  // hashes of name and key, serial number

    Authority() {
        X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const uint8_t*>("CA"), -1, -1, 0);
        X509_set_issuer_name(certificate, name);
        ASN1_INTEGER_set(X509_get_serialNumber(certificate), 0x1234);
        X509_gmtime_adj(X509_getm_notBefore(certificate), -60);
        X509_gmtime_adj(X509_getm_notAfter(certificate), 3600);
        X509_set_pubkey(certificate, key.get());
        EXPECT_GT(X509_sign(certificate, key.get(), EVP_sha256()), 0);
        const walk::Owned<OCSP_CERTID_free> own(Id());
        ASN1_STRING* parts[3] = {};
        OCSP_id_get0_info(&parts[0], nullptr, &parts[1], &parts[2], own.get());
        for (int i = 0; i < 3; ++i) id[i] = ContentOf(parts[i]);
    }
    Certificate* Ours() const {
        return Decoded<FreeCertificate>(DecodeCertificate, DerOf(certificate, i2d_X509)).release();
    }
    OCSP_CERTID* Id() const { return OCSP_cert_to_id(EVP_sha1(), certificate, certificate); }
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
    Bytes p[5] = {Bytes(64), Bytes(64), Bytes(64), Bytes(64), Bytes(64)};
    uint32_t n[5] = {64, 64, 64, 64, 64};
    EXPECT_EQ(get(&p[0][0], &n[0], &p[1][0], &n[1], &p[2][0], &n[2], &p[3][0], &n[3], &p[4][0], &n[4]), 0u);
    for (int i = 0; i < 5; ++i) p[i].resize(n[i]);
    return Tlv(48, Tlv(48, Bytes{6} + p[0] + p[1]) + Tlv(4, p[2]) + Tlv(4, p[3]) + Tlv(2, p[4]));
}
void ExpectTime(Status status, const LibraryTime& time, const ASN1_GENERALIZEDTIME* peer) {
    uint64_t digits = 0;
    for (const uint32_t* field = &time.year; field <= &time.second; ++field) digits = digits * 100 + *field;
    EXPECT_EQ(status, peer == nullptr ? StatusAbsent : StatusOk);
    EXPECT_EQ(std::to_string(digits), peer == nullptr ? "0" : std::string(peer->data, peer->data + 14));
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
    ASN1_GENERALIZEDTIME* times[3] = {};
    LibraryTime time[3] = {};
    int peerReason = -1;
    uint32_t certStatus = 9, reason = 9;
    EXPECT_EQ(IdTlv([&](auto... out) { return GetOcspSingleResponseCertID(ours, out...); }),
              DerOf(OCSP_SINGLERESP_get0_id(peer), i2d_OCSP_CERTID));
    EXPECT_EQ(GetOcspSingleResponseCertStatus(ours, &certStatus), 0u);
    ASSERT_EQ(int(certStatus), OCSP_single_get0_status(peer, &peerReason, &times[0], &times[1], &times[2]));
    ExpectTime(GetOcspSingleResponseThisUpdate(ours, &time[1]), time[1], times[1]);
    ExpectTime(GetOcspSingleResponseNextUpdate(ours, &time[2]), time[2], times[2]);
    if (certStatus != V_OCSP_CERTSTATUS_REVOKED) return;
    ExpectTime(GetOcspSingleResponseCertStatusRevokedInfo(ours, &time[0], &reason), time[0], times[0]);
    EXPECT_EQ(int(reason), peerReason);
}

void ReadResponse(const Bytes& der) {
    const auto message = Decoded<FreeOcspResponse>(DecodeOcspResponse, der);
    const auto bytes = walk::Sure(walk::Get(GetOcspResponseBytes, message.get(), walk::kOut, walk::kOut));
    if (bytes[1].size() == 0) return;  // an error status alone
    const auto ours = Make<FreeOcspBasicResponse>(DecodeOcspBasicResponse, bytes[1].data(), bytes[1].size());
    const auto peerMessage = FromDer<OCSP_RESPONSE_free>(d2i_OCSP_RESPONSE, der);
    const walk::Owned<OCSP_BASICRESP_free> owner(OCSP_response_get1_basic(peerMessage.get()));
    OCSP_BASICRESP* const peer = owner.get();
    OcspSingleResponse* single = nullptr;
    const ASN1_OCTET_STRING* hash = nullptr;
    const X509_NAME* name = nullptr;
    LibraryTime time = {};
    uint32_t type = 9, count = 0;
    EXPECT_EQ(GetOcspBasicResponseSingleResponsesCount(ours.get(), &count), 0u);
    ASSERT_EQ(count, uint32_t(OCSP_resp_count(peer)));
    for (uint32_t i = 0; i < count; ++i) {
        EXPECT_EQ(GetOcspBasicResponseSingleResponse(ours.get(), i, &single), 0u);
        ReadSingle(single, OCSP_resp_get0(peer, int(i)));
    }
    ExpectTime(GetOcspBasicResponseProducedAt(ours.get(), &time), time, OCSP_resp_get0_produced_at(peer));
    EXPECT_EQ(OCSP_resp_get0_id(peer, &hash, &name), 1);
    EXPECT_EQ(Fetch(GetOcspBasicResponseResponderID, ours.get(), &type),
              name != nullptr ? DerOf(name, i2d_X509_NAME) : ContentOf(hash));
    EXPECT_EQ(Fetch(GetOcspBasicResponseSignature, ours.get()), ContentOf(OCSP_resp_get0_signature(peer)));
}

// A response of this library, with another time in the signed part than was signed if spoilt.
Bytes WriteResponse(const Authority& ca, bool spoilt) {
    const Bytes name = DerOf(ca.name, i2d_X509_NAME), sha1 = OidOf("1.3.14.3.2.26"), *id = ca.id;
    const Bytes ecdsa = OidOf("1.2.840.10045.4.3.2"), type = OidOf("1.3.6.1.5.5.7.48.1.1");
    const auto basic = Make<FreeOcspBasicResponse>(CreateOcspBasicResponse);
    const auto message = Make<FreeOcspResponse>(CreateOcspResponse);
    OcspSingleResponse* const s = Make<FreeOcspSingleResponse>(CreateOcspSingleResponse).release();
    OcspBasicResponse* const b = basic.get();
    LibraryTime now = {};
    // clang-format off
    Check({{AddOcspBasicResponseSingleResponse(b, s), 0}, {AddOcspBasicResponseCertificate(b, ca.Ours()), 0},
           {SetOcspSingleResponseCertID(s, &sha1[0], nullptr, 0, &id[0][0], 20, &id[1][0], 20, &id[2][0], 2), 0},
           {GetCurrentLibTime(&now), 0}, {SetOcspSingleResponseThisUpdate(s, &now), 0},
           {SetOcspSingleResponseNextUpdate(s, &now), 0}, {SetOcspSingleResponseCertStatusRevoked(s, &now, 4), 0},
           {SetOcspBasicResponseProducedAt(b, &now), 0},
           {SetOcspBasicResponseResponderID(b, 0, &name[0], Size(name)), 0},
           {SetOcspBasicResponseSignatureAlgorithmOidAndParameters(b, &ecdsa[0], nullptr, 0), 0}});
    const Bytes signature = ca.Sign(Fetch(GetOcspBasicResponseToBeSignedPart, b));
    if (spoilt) now.year = 2020;
    Check({{SetOcspBasicResponseSignature(b, &signature[0], Size(signature)), 0},
           {SetOcspBasicResponseProducedAt(b, &now), 0}, {SetOcspResponseStatus(message.get(), 0), 0}});
    // clang-format on
    const Bytes bytes = Fetch(EncodeOcspBasicResponse, b);
    EXPECT_EQ(SetOcspResponseBytes(message.get(), &type[0], &bytes[0], Size(bytes)), 0u);
    return Fetch(EncodeOcspResponse, message.get());
}

TEST(Interop, OcspRequestsOfEitherSideAreReadAlike) {
    const Authority ca;
    const Bytes name = DerOf(ca.name, i2d_X509_NAME), nonce = Hex("0401AA"), sha1 = OidOf("1.3.14.3.2.26"), *id = ca.id;
    for (const auto& [file, bytes] : Corpus("ocsp-req")) ReadRequest(bytes);
    const walk::Owned<OCSP_REQUEST_free> theirs(OCSP_REQUEST_new());
    for (int i = 0; i < 2; ++i) EXPECT_TRUE(OCSP_request_add0_id(theirs.get(), ca.Id()));
    EXPECT_EQ(OCSP_request_set1_name(theirs.get(), ca.name), 1);
    EXPECT_EQ(OCSP_request_sign(theirs.get(), ca.certificate, ca.key.get(), EVP_sha256(), nullptr, 0), 1);
    const Bytes der = DerOf(theirs.get(), i2d_OCSP_REQUEST);
    ReadRequest(der);
    const auto ours = Decoded<FreeOcspRequest>(DecodeOcspRequest, der), made = Make<FreeOcspRequest>(CreateOcspRequest);
    Certificate* certificate = nullptr;
    X509Extensions extensions = nullptr;
    uint32_t type = 9;
    EXPECT_EQ(Fetch(GetOcspRequestRequestorNameValue, ours.get(), &type), name);
    EXPECT_EQ(GetOcspRequestCertificate(ours.get(), 0, &certificate), 0u);
    EXPECT_EQ(Fetch(EncodeCertificate, certificate), DerOf(ca.certificate, i2d_X509));

    OcspRequest* const r = made.get();
    // clang-format off
    Check({{AddOcspRequestCertRequest(r, &sha1[0], nullptr, 0, &id[0][0], 20, &id[1][0], 20, &id[2][0], 2, nullptr), 0},
           {GetOcspRequestExtensions(r, &extensions), 0}, {SetOcspRequestRequestorName(r, 4, &name[0], Size(name)), 0},
           {AddX509ExtensionsExtension(extensions, OidOf("1.3.6.1.5.5.7.48.1.2").data(), 0, &nonce[0], 3), 0}});
    // clang-format on
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
    const walk::Owned<OCSP_CERTID_free> id(ca.Id());
    for (int status : {V_OCSP_CERTSTATUS_GOOD, V_OCSP_CERTSTATUS_REVOKED, V_OCSP_CERTSTATUS_UNKNOWN}) {
        EXPECT_TRUE(OCSP_basic_add1_status(theirs.get(), id.get(), status, 4, now.get(), now.get(), nullptr));
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
