// OpenSSL as the oracle of time-stamps: what it reads from real ones, this library reads as well.

#include <openssl/ts.h>

#include <cmath>

#include "interop/peer.h"
#include "tsp/arguments.h"

using namespace peer;
using namespace timestamps;

namespace {

// The DER of what this library gives in parts.
Bytes OidOr(const Bytes& oid) { return oid.empty() ? oid : Bytes{6} + oid; }
Bytes ImprintOf(const Bytes* fields) { return Tlv(48, Tlv(48, OidOr(fields[0]) + fields[1]) + Tlv(4, fields[2])); }

void Compare(Comparison& both, const Request& ours, TS_REQ* theirs) {
    both.Same("version", ours.version, TS_REQ_get_version(theirs));
    both.Same("imprint", ImprintOf(ours.fields), DerOf(TS_REQ_get_msg_imprint(theirs), i2d_TS_MSG_IMPRINT));
    both.Same("policy", OidOr(ours.fields[3]), DerOf(TS_REQ_get_policy_id(theirs), i2d_ASN1_OBJECT));
    both.Same("nonce", TlvOr(ours.fields[4], 2), DerOf(TS_REQ_get_nonce(theirs), i2d_ASN1_INTEGER));
    both.Same("certReq", ours.certReq != 0, TS_REQ_get_cert_req(theirs) != 0);
    both.Same("extensions", ExtensionsOf(ours.extensions.get()), Joined(TS_REQ_get_exts(theirs), i2d_X509_EXTENSION));
}

void Compare(Comparison& both, const TstInfo& ours, TS_TST_INFO* theirs) {
    const ASN1_GENERALIZEDTIME* const time = TS_TST_INFO_get_time(theirs);
    const std::string fraction(time->data + 14, time->data + time->length);
    const TS_ACCURACY* const accuracy = TS_TST_INFO_get_accuracy(theirs);
    const auto part = [&](auto get) { return accuracy == nullptr ? 0 : uint32_t(ASN1_INTEGER_get(get(accuracy))); };
    both.Same("version", ours.version, TS_TST_INFO_get_version(theirs));
    both.Same("policy", OidOr(ours.fields[0]), DerOf(TS_TST_INFO_get_policy_id(theirs), i2d_ASN1_OBJECT));
    both.Same("imprint", ImprintOf(ours.fields + 1), DerOf(TS_TST_INFO_get_msg_imprint(theirs), i2d_TS_MSG_IMPRINT));
    both.Same("serial number", TlvOr(ours.fields[4], 2), DerOf(TS_TST_INFO_get_serial(theirs), i2d_ASN1_INTEGER));
    both.Time("genTime", 0, ours.genTime, time);
    both.Same("fraction", ours.genTime.millisecond * 1000 + ours.genTime.microsecond,
              uint32_t(std::lround(atof(("0" + fraction).c_str()) * 1e6)));
    both.Same("accuracy", Numbers(&ours.accuracy.seconds, &ours.accuracy.microseconds + 1),
              Numbers{part(TS_ACCURACY_get_seconds), part(TS_ACCURACY_get_millis), part(TS_ACCURACY_get_micros)});
    both.Same("ordering", ours.ordering != 0, TS_TST_INFO_get_ordering(theirs) != 0);
    both.Same("nonce", TlvOr(ours.fields[5], 2), DerOf(TS_TST_INFO_get_nonce(theirs), i2d_ASN1_INTEGER));
    both.Same("tsa", GeneralNameOf(ours.tsa.get()), DerOf(TS_TST_INFO_get_tsa(theirs), i2d_GENERAL_NAME));
    both.Same("extensions", ExtensionsOf(ours.extensions.get()),
              Joined(TS_TST_INFO_get_exts(theirs), i2d_X509_EXTENSION));
}

void Compare(Comparison& both, const Response& ours, TS_RESP* theirs) {
    TS_STATUS_INFO* const status = TS_RESP_get_status_info(theirs);
    Bytes failure = ContentOf(TS_STATUS_INFO_get0_failure_info(status)), texts;
    failure.resize(4);
    const auto add = [&](uint32_t i) { texts = texts + Tlv(12, Fetch(GetPKIFreeTextString, ours.text.get(), i)); };
    if (ours.text) walk::Each(GetPKIFreeTextStringCount, ours.text.get(), add);
    both.Same("status", ours.status, ASN1_INTEGER_get(TS_STATUS_INFO_get0_status(status)));
    both.Same("text", texts, Joined(TS_STATUS_INFO_get0_text(status), i2d_ASN1_UTF8STRING));
    both.Same("failure", ours.failInfo, failure[0] | failure[1] << 8 | failure[2] << 16 | uint32_t(failure[3]) << 24);
    both.Same("token", ours.token ? Fetch(EncodeCmsContentInfo, ours.token.get()) : Bytes(),
              DerOf(TS_RESP_get_token(theirs), i2d_PKCS7));
}

template <class Document, auto Free>
void CompareAll(Comparison& both, const char* folder, auto d2i) {
    for (const auto& [name, bytes] : Corpus(folder)) {
        SCOPED_TRACE(name);
        both.Begin(name);
        Document ours;
        const auto theirs = FromDer<Free>(d2i, bytes);
        const bool isRead = Read(bytes, &ours) == StatusOk;
        both.Same("reading", isRead, theirs != nullptr);
        if (isRead && theirs) Compare(both, ours, theirs.get());
    }
}

TEST(Interop, TimeStampsAreReadAsOpenSslReadsThem) {
    SKIP_WITHOUT_CORPUS();
    Comparison both(50, {{"tstinfo/sigstoretsa-verify-test-b640-in.der", "reading", "a zone in place of Z"}});
    CompareAll<Request, TS_REQ_free>(both, "tsp-req", d2i_TS_REQ);
    CompareAll<TstInfo, TS_TST_INFO_free>(both, "tstinfo", d2i_TS_TST_INFO);
    CompareAll<Response, TS_RESP_free>(both, "tsp-resp", d2i_TS_RESP);
}

}  // namespace
