// OpenSSL as the oracle: what it reads from real documents, this library reads as well.

#include <openssl/cms.h>
#include <openssl/ocsp.h>
#include <openssl/ts.h>

#include <cmath>

#include "interop/peer.h"
#include "tlvforge/cpp/names.hpp"
#include "tsp/arguments.h"

using namespace peer;
using namespace timestamps;

namespace {

// --- Certificates, CRLs, requests ---

// As DER, and on one line as RFC 2253 and its successor RFC 4514 write it, but with the characters of UTF-8 as they
// are. OpenSSL has other short names for two types, or none, and turns the entries of an RDN round as well.
void CompareNames(Comparison& both, const char* field, const X509Name* ours, const X509_NAME* theirs) {
    both.Same(field, NameOf(ours), DerOf(theirs, i2d_X509_NAME));
    std::string line = tlvforge::ToText(ours);
    if (line.find("INNLE=") != line.npos || line.find('+') != line.npos) return;
    for (size_t at; (at = line.find("STREET=")) != line.npos;) line.replace(at, 6, "street");
    const walk::Owned<BIO_free> out(BIO_new(BIO_s_mem()));
    X509_NAME_print_ex(out.get(), theirs, 0, XN_FLAG_RFC2253 & ~static_cast<unsigned long>(ASN1_STRFLGS_ESC_MSB));
    const char* data = nullptr;
    const long size = BIO_get_mem_data(out.get(), &data);
    both.Same(field, line, std::string(data, static_cast<size_t>(size)));
}

void Compare(Comparison& both, Certificate* ours, X509* theirs) {
    LibraryTime time = {};
    both.Same("version", walk::Lent(GetCertificateVersion, ours), X509_get_version(theirs));
    both.Same("serial number", Tlv(2, Fetch(GetCertificateSerialNumber, ours)),
              DerOf(X509_get_serialNumber(theirs), i2d_ASN1_INTEGER));
    CompareNames(both, "issuer", walk::Lent(GetCertificateIssuer, ours), X509_get_issuer_name(theirs));
    CompareNames(both, "subject", walk::Lent(GetCertificateSubject, ours), X509_get_subject_name(theirs));
    both.Time("notBefore", GetCertificateValidNotBefore(ours, &time), time, X509_get0_notBefore(theirs));
    both.Time("notAfter", GetCertificateValidNotAfter(ours, &time), time, X509_get0_notAfter(theirs));
    both.Same("key", WithBits(GetCertificatePublicKeyAlgorithmOidAndParameters, GetCertificatePublicKey, ours),
              DerOf(X509_get_X509_PUBKEY(theirs), i2d_X509_PUBKEY));
    both.Same("extensions", ExtensionsOf(GetCertificateExtensions, ours),
              Joined(X509_get0_extensions(theirs), i2d_X509_EXTENSION));
    both.Same("signed",
              WithBits(GetCertificateSignatureAlgorithmOidAndParameters, GetCertificateSignature, ours,
                       Fetch(GetCertificateToBeSignedPart, ours)),
              DerOf(theirs, i2d_X509));
    if (const auto* keyId = X509_get0_subject_key_id(theirs))
        both.Same("subject key", Fetch(GetCertificateSubjectKeyIdentifier, ours), ContentOf(keyId));
}

void Compare(Comparison& both, X509Crl* ours, X509_CRL* theirs) {
    int32_t version = 0;  // without the field it is version 1, written as 0
    LibraryTime time = {};
    (void)GetX509CrlVersion(ours, &version);
    both.Same("version", version, X509_CRL_get_version(theirs));
    CompareNames(both, "issuer", walk::Lent(GetX509CrlIssuer, ours), X509_CRL_get_issuer(theirs));
    both.Time("thisUpdate", GetX509CrlThisUpdate(ours, &time), time, X509_CRL_get0_lastUpdate(theirs));
    both.Time("nextUpdate", GetX509CrlNextUpdate(ours, &time), time, X509_CRL_get0_nextUpdate(theirs));
    both.Same("extensions", ExtensionsOf(GetX509CrlExtensions, ours),
              Joined(X509_CRL_get0_extensions(theirs), i2d_X509_EXTENSION));
    both.Same("signed",
              WithBits(GetX509CrlSignatureAlgorithmOidAndParameters, GetX509CrlSignature, ours,
                       Fetch(GetX509CrlToBeSignedPart, ours)),
              DerOf(theirs, i2d_X509_CRL));
    const STACK_OF(X509_REVOKED)* const list = X509_CRL_get_REVOKED(theirs);
    int entries = 0;
    const uint32_t count = walk::Lent(GetX509CrlRevokedCertificateCount, ours);
    if (!both.Same("entries", int(count), std::max(sk_X509_REVOKED_num(list), 0))) return;
    walk::Each(GetX509CrlRevokedCertificateCount, ours, [&](uint32_t i) {
        const X509_REVOKED* const entry = sk_X509_REVOKED_value(list, entries++);
        both.Same("entry serial", Tlv(2, Fetch(GetX509CrlRevokedCertificateSerialNumber, ours, i)),
                  DerOf(X509_REVOKED_get0_serialNumber(entry), i2d_ASN1_INTEGER));
        both.Time("entry date", GetX509CrlRevokedCertificateRevokationDate(ours, i, &time), time,
                  X509_REVOKED_get0_revocationDate(entry));
        both.Same("entry extensions", ExtensionsOf(GetX509CrlRevokedCertificateExtensions, ours, i),
                  Joined(X509_REVOKED_get0_extensions(entry), i2d_X509_EXTENSION));
    });
}

void FreeStack(STACK_OF(X509_EXTENSION) * stack) { sk_X509_EXTENSION_pop_free(stack, X509_EXTENSION_free); }

void Compare(Comparison& both, PKCS10CertReq* ours, X509_REQ* theirs) {
    const auto extensions = walk::Make<FreeX509Extensions>(GetPKCS10CertReqExtensions, ours);
    const walk::Owned<FreeStack> requested(X509_REQ_get_extensions(theirs));
    both.Same("version", walk::Lent(GetPKCS10CertReqVersion, ours), X509_REQ_get_version(theirs));
    CompareNames(both, "subject", walk::Lent(GetPKCS10CertReqSubject, ours), X509_REQ_get_subject_name(theirs));
    both.Same("key", WithBits(GetPKCS10CertReqPublicKeyAlgorithmOidAndParameters, GetPKCS10CertReqPublicKey, ours),
              DerOf(X509_REQ_get_X509_PUBKEY(theirs), i2d_X509_PUBKEY));
    both.Same("attributes", AttributesOf(GetPKCS10CertReqAttributes, ours),
              Joined(theirs, X509_REQ_get_attr_count, X509_REQ_get_attr, i2d_X509_ATTRIBUTE));
    both.Same("extensions", ExtensionsOf(extensions.get()), Joined(requested.get(), i2d_X509_EXTENSION));
    both.Same("signed",
              WithBits(GetPKCS10CertReqSignatureAlgorithmOidAndParameters, GetPKCS10CertReqSignature, ours,
                       Fetch(GetPKCS10CertReqToBeSignedPart, ours)),
              DerOf(theirs, i2d_X509_REQ));
}

// --- CMS ---

void CompareSigner(Comparison& both, CmsSignerInfo* ours, CMS_SignerInfo* theirs) {
    ASN1_OCTET_STRING* keyId = nullptr;
    X509_NAME* issuer = nullptr;
    ASN1_INTEGER* number = nullptr;
    X509Name* name = nullptr;
    CMS_SignerInfo_get0_signer_id(theirs, &keyId, &issuer, &number);
    const auto [serial, id] = Outputs(GetCmsSignerInfoSignerIdentifier, ours, &name, kOut, kOut);
    both.Same("issuer", name != nullptr ? NameOf(name) : Bytes(), DerOf(issuer, i2d_X509_NAME));
    both.Same("serial number", TlvOr(serial, 2), DerOf(number, i2d_ASN1_INTEGER));
    both.Same("key", id, ContentOf(keyId));
    both.Same("signed attributes", AttributesOf(GetCmsSignerInfoSignedAttributes, ours),
              Joined(theirs, CMS_signed_get_attr_count, CMS_signed_get_attr, i2d_X509_ATTRIBUTE));
    both.Same("unsigned attributes", AttributesOf(GetCmsSignerInfoUnsignedAttributes, ours),
              Joined(theirs, CMS_unsigned_get_attr_count, CMS_unsigned_get_attr, i2d_X509_ATTRIBUTE));
    both.Same("signature", Fetch(GetCmsSignerInfoSignature, ours), ContentOf(CMS_SignerInfo_get0_signature(theirs)));
}

// Takes the content apart, and has it written.
template <auto Free>
auto Rewrite(CmsContentInfo* message, auto decode, auto encode) {
    auto content = Reader<Free>(decode)(Fetch(GetCmsContentInfoContent, message));
    const Bytes der = content ? Fetch(encode, content.get()) : Bytes{0};
    EXPECT_STATUS(StatusOk, SetCmsContentInfoContent(message, der.data(), Size(der)));
    return content;
}
void Compare(Comparison& both, CmsContentInfo* ours, CMS_ContentInfo* theirs) {
    const int type = OBJ_obj2nid(CMS_get0_type(theirs));
    if (type == NID_pkcs7_enveloped)
        Rewrite<FreeCmsEnvelopedData>(ours, DecodeCmsEnvelopedData, EncodeCmsEnvelopedData);
    if (type == NID_pkcs7_signed) {
        const auto content = Rewrite<FreeCmsSignedData>(ours, DecodeCmsSignedData, EncodeCmsSignedData);
        const auto* signers = CMS_get0_SignerInfos(theirs);
        if (!both.Same("content", content != nullptr, true)) return;
        walk::Each(GetCmsSignedDataSignerInfosCount, content.get(), [&](uint32_t i) {
            CompareSigner(both, walk::Lent(GetCmsSignedDataSignerInfo, content.get(), i),
                          sk_CMS_SignerInfo_value(signers, int(i)));
        });
    }
    both.Same("encoding", Fetch(EncodeCmsContentInfo, ours), DerOf(theirs, i2d_CMS_ContentInfo));
}

// --- OCSP ---

// A CertID from the parts that a getter of this library gives.
Bytes IdOf(auto get) {
    const auto [oid, parameters, name, key, serial] = Outputs(walk::Complete(get), kOut, kOut, kOut, kOut, kOut);
    return Tlv(48, Tlv(48, Bytes{6} + oid + parameters) + Tlv(4, name) + Tlv(4, key) + Tlv(2, serial));
}

void Compare(Comparison& both, OcspRequest* ours, OCSP_REQUEST* theirs) {
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
    uint32_t reason = UINT32_MAX;
    const int expected = OCSP_single_get0_status(theirs, &peerReason, &revoked, &thisUpdate, &nextUpdate);
    both.Same("CertID", IdOf([&](auto... out) { return GetOcspSingleResponseCertID(ours, out...); }),
              DerOf(OCSP_SINGLERESP_get0_id(theirs), i2d_OCSP_CERTID));
    both.Same("certificate status", int(walk::Lent(GetOcspSingleResponseCertStatus, ours)), expected);
    both.Time("thisUpdate", GetOcspSingleResponseThisUpdate(ours, &time), time, thisUpdate);
    both.Time("nextUpdate", GetOcspSingleResponseNextUpdate(ours, &time), time, nextUpdate);
    both.Same("single extensions", ExtensionsOf(GetOcspSingleResponseExtensions, ours),
              Joined(theirs, OCSP_SINGLERESP_get_ext_count, OCSP_SINGLERESP_get_ext, i2d_X509_EXTENSION));
    if (expected != V_OCSP_CERTSTATUS_REVOKED) return;
    both.Time("revocationTime", GetOcspSingleResponseCertStatusRevokedInfo(ours, &time, &reason), time, revoked);
    both.Same("reason", int(reason), peerReason);
}

// The basic response in it; an error status has none.
void Compare(Comparison& both, OcspResponse* message, OCSP_RESPONSE* response) {
    both.Same("status", walk::Lent(GetOcspResponseStatus, message), OCSP_response_status(response));
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
        CompareSingle(both, walk::Lent(GetOcspBasicResponseSingleResponse, ours, i), OCSP_resp_get0(theirs, next++));
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

// --- Time-stamps ---

// The DER of what this library gives in parts.
Bytes OidOr(const Bytes& oid) { return oid.empty() ? oid : Bytes{6} + oid; }
Bytes ImprintOf(const Bytes* fields) { return Tlv(48, Tlv(48, OidOr(fields[0]) + fields[1]) + Tlv(4, fields[2])); }

void Compare(Comparison& both, const Request* ours, TS_REQ* theirs) {
    both.Same("version", ours->version, TS_REQ_get_version(theirs));
    both.Same("imprint", ImprintOf(ours->fields), DerOf(TS_REQ_get_msg_imprint(theirs), i2d_TS_MSG_IMPRINT));
    both.Same("policy", OidOr(ours->fields[3]), DerOf(TS_REQ_get_policy_id(theirs), i2d_ASN1_OBJECT));
    both.Same("nonce", TlvOr(ours->fields[4], 2), DerOf(TS_REQ_get_nonce(theirs), i2d_ASN1_INTEGER));
    both.Same("certReq", ours->certReq != 0, TS_REQ_get_cert_req(theirs) != 0);
    both.Same("extensions", ExtensionsOf(ours->extensions.get()), Joined(TS_REQ_get_exts(theirs), i2d_X509_EXTENSION));
}

void Compare(Comparison& both, const TstInfo* ours, TS_TST_INFO* theirs) {
    const ASN1_GENERALIZEDTIME* const time = TS_TST_INFO_get_time(theirs);
    const std::string fraction(time->data + 14, time->data + time->length);
    const TS_ACCURACY* const accuracy = TS_TST_INFO_get_accuracy(theirs);
    const auto part = [&](auto get) { return accuracy == nullptr ? 0 : uint32_t(ASN1_INTEGER_get(get(accuracy))); };
    both.Same("version", ours->version, TS_TST_INFO_get_version(theirs));
    both.Same("policy", OidOr(ours->fields[0]), DerOf(TS_TST_INFO_get_policy_id(theirs), i2d_ASN1_OBJECT));
    both.Same("imprint", ImprintOf(ours->fields + 1), DerOf(TS_TST_INFO_get_msg_imprint(theirs), i2d_TS_MSG_IMPRINT));
    both.Same("serial number", TlvOr(ours->fields[4], 2), DerOf(TS_TST_INFO_get_serial(theirs), i2d_ASN1_INTEGER));
    both.Time("genTime", 0, ours->genTime, time);
    both.Same("fraction", ours->genTime.millisecond * 1000 + ours->genTime.microsecond,
              uint32_t(std::lround(atof(("0" + fraction).c_str()) * 1e6)));
    both.Same("accuracy", Numbers(&ours->accuracy.seconds, &ours->accuracy.microseconds + 1),
              Numbers{part(TS_ACCURACY_get_seconds), part(TS_ACCURACY_get_millis), part(TS_ACCURACY_get_micros)});
    both.Same("ordering", ours->ordering != 0, TS_TST_INFO_get_ordering(theirs) != 0);
    both.Same("nonce", TlvOr(ours->fields[5], 2), DerOf(TS_TST_INFO_get_nonce(theirs), i2d_ASN1_INTEGER));
    both.Same("tsa", GeneralNameOf(ours->tsa.get()), DerOf(TS_TST_INFO_get_tsa(theirs), i2d_GENERAL_NAME));
    both.Same("extensions", ExtensionsOf(ours->extensions.get()),
              Joined(TS_TST_INFO_get_exts(theirs), i2d_X509_EXTENSION));
}

void Compare(Comparison& both, const Response* ours, TS_RESP* theirs) {
    TS_STATUS_INFO* const status = TS_RESP_get_status_info(theirs);
    Bytes failure = ContentOf(TS_STATUS_INFO_get0_failure_info(status)), texts;
    failure.resize(4);
    const auto add = [&](uint32_t i) { texts = texts + Tlv(12, Fetch(GetPKIFreeTextString, ours->text.get(), i)); };
    if (ours->text) walk::Each(GetPKIFreeTextStringCount, ours->text.get(), add);
    both.Same("status", ours->status, ASN1_INTEGER_get(TS_STATUS_INFO_get0_status(status)));
    both.Same("text", texts, Joined(TS_STATUS_INFO_get0_text(status), i2d_ASN1_UTF8STRING));
    both.Same("failure", ours->failInfo, failure[0] | failure[1] << 8 | failure[2] << 16 | uint32_t(failure[3]) << 24);
    both.Same("token", ours->token ? Fetch(EncodeCmsContentInfo, ours->token.get()) : Bytes(),
              DerOf(TS_RESP_get_token(theirs), i2d_PKCS7));
}

// --- All documents of a folder, as both have read them ---

template <auto FreeTheirs>
void CompareFolder(Comparison& both, const char* folder, auto read, auto d2i) {
    for (const auto& [name, bytes] : Corpus(folder)) {
        SCOPED_TRACE(name);
        both.Begin(name);
        const auto ours = read(bytes);
        const auto theirs = FromDer<FreeTheirs>(d2i, bytes);
        both.Same("reading", ours != nullptr, theirs != nullptr);
        if (ours && theirs) Compare(both, ours.get(), theirs.get());
    }
}

template <class Document>
std::unique_ptr<Document> ReadAs(const Bytes& der) {
    auto document = std::make_unique<Document>();
    return Read(der, document.get()) == StatusOk ? std::move(document) : nullptr;
}

TEST(Interop, CertificatesCrlsAndRequestsAreReadAsOpenSslReadsThem) {
    SKIP_WITHOUT_CORPUS();
    Comparison crls(38), requests(31);
    Comparison certificates(120, {{"cert/pkits-invaliddsasignaturetest6ee.der", "signed", "unused bits are dropped"}});
    CompareFolder<X509_free>(certificates, "cert", Reader<FreeCertificate>(DecodeCertificate), d2i_X509);
    CompareFolder<X509_CRL_free>(crls, "crl", Reader<FreeX509Crl>(DecodeX509Crl), d2i_X509_CRL);
    CompareFolder<X509_REQ_free>(requests, "csr", Reader<FreePKCS10CertReq>(DecodePKCS10CertReq), d2i_X509_REQ);
}

TEST(Interop, MessagesAreReadAsOpenSslReadsThem) {
    SKIP_WITHOUT_CORPUS();
    Comparison both(113, {
                             {"cms-signed/gen-certscrls.der", "content", "ordinary CRLs are refused"},
                             {"cms-signed/rpkirs-apnic-testbed-response.der", "content", "ordinary CRLs are refused"},
                             {"cms-signed/rpkirs-issue.der", "content", "ordinary CRLs are refused"},
                             {"cms-other/gen-data-stream.der", "encoding", "not taken apart"},
                             {"cms-other/gen-digest-stream.der", "encoding", "not taken apart"},
                             {"cms-other/gen-encdata-stream.der", "encoding", "not taken apart"},
                         });
    for (const char* folder : {"cms-signed", "cms-enveloped", "cms-other"}) {
        CompareFolder<CMS_ContentInfo_free>(both, folder, Reader<FreeCmsContentInfo>(DecodeCmsContentInfo),
                                            d2i_CMS_ContentInfo);
    }
}

TEST(Interop, OcspIsReadAsOpenSslReadsIt) {
    SKIP_WITHOUT_CORPUS();
    Comparison requests(17),
        responses(42, {{"ocsp-resp/gocrypto-ocsp-test-hex3.der", "signed part", "no default is written"}});
    CompareFolder<OCSP_REQUEST_free>(requests, "ocsp-req", Reader<FreeOcspRequest>(DecodeOcspRequest),
                                     d2i_OCSP_REQUEST);
    CompareFolder<OCSP_RESPONSE_free>(responses, "ocsp-resp", Reader<FreeOcspResponse>(DecodeOcspResponse),
                                      d2i_OCSP_RESPONSE);
}

TEST(Interop, TimeStampsAreReadAsOpenSslReadsThem) {
    SKIP_WITHOUT_CORPUS();
    Comparison both(50, {{"tstinfo/sigstoretsa-verify-test-b640-in.der", "reading", "a zone in place of Z"}});
    CompareFolder<TS_REQ_free>(both, "tsp-req", ReadAs<Request>, d2i_TS_REQ);
    CompareFolder<TS_TST_INFO_free>(both, "tstinfo", ReadAs<TstInfo>, d2i_TS_TST_INFO);
    CompareFolder<TS_RESP_free>(both, "tsp-resp", ReadAs<Response>, d2i_TS_RESP);
}

}  // namespace
