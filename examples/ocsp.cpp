// ocsp ask|read ...: a client of OCSP. The request and the response are files: they travel over HTTP, which is for
// others.

#include <cstdio>

#include "libcrypto.h"
#include "usage.h"

using namespace tlvforge;
using namespace examples;

namespace {

constexpr char kUsage[] =
    "usage: ocsp ask ISSUER CERTIFICATE REQUEST\n"
    "       ocsp read ISSUER REQUEST RESPONSE\n\n"
    "Asks about a certificate, and says what the issuer answers. Certificates are PEM, the others DER.\n";

constexpr Oid kSha1("1.3.14.3.2.26"), kNonce("1.3.6.1.5.5.7.48.1.2"), kBasicResponse("1.3.6.1.5.5.7.48.1.1");

Bytes Sha1(const Bytes& bytes) {
    Bytes digest(20);
    Call([&](const uint8_t* data, uint32_t length) { return sha1(data, length, digest.data()); }, bytes);
    return digest;
}

// A certificate is named by the hashes of its issuer's name and key and by its serial number.
Handle<OcspRequest> Ask(const Handle<Certificate>& issuer, const Handle<Certificate>& certificate) {
    auto request = Create<OcspRequest>();
    const Bytes null = {5, 0};
    Call(AddOcspRequestCertRequest, request, kSha1, null, Sha1(Encode(Get(GetCertificateSubject, issuer))),
         Sha1(Get(GetCertificatePublicKey, issuer)), Get(GetCertificateSerialNumber, certificate), nullptr);
    // A number that the response has to repeat, so that an old one can't be played again.
    Call(AddX509ExtensionsExtension, Get(GetOcspRequestExtensions, request), kNonce, false,
         Get(EncodeExtensionOcspNonce, RandomNumber(16)));
    return request;
}

void Refuse(const char* reason) { throw std::runtime_error(std::string("not to be believed: ") + reason); }

void PrintStatus(const OcspSingleResponse* answer) {
    switch (Get(GetOcspSingleResponseCertStatus, answer)) {
        case 0: std::printf("good\n"); break;
        case 1: {
            const auto [time, reason] = Get(GetOcspSingleResponseCertStatusRevokedInfo, answer);
            std::printf("revoked at %s", ToText(time).c_str());
            std::printf(reason == UINT32_MAX ? "\n" : ", reason %u\n", reason);
            break;
        }
        default: std::printf("unknown to the responder\n");
    }
}

// The issuer itself answers here; one that it has appointed has a certificate in the response.
void Read(const Handle<Certificate>& issuer, const Handle<OcspRequest>& request, const Bytes& der) {
    const auto response = Decode<OcspResponse>(der);
    if (const int status = Get(GetOcspResponseStatus, response)) {
        throw std::runtime_error("the responder refuses with " + std::to_string(status));
    }
    const auto [type, bytes] = Get<Oid, Bytes>(GetOcspResponseBytes, response);
    if (type != kBasicResponse) Refuse("another type of response");
    const auto basic = Decode<OcspBasicResponse>(bytes);
    if (!Verifies(PublicKeyOf(issuer), Get(GetOcspBasicResponseToBeSignedPart, basic),
                  Get(GetOcspBasicResponseSignature, basic))) {
        Refuse("not signed by the issuer");
    }
    const auto asked = Find(GetX509ExtensionsExtensionValue, Get(GetOcspRequestExtensions, request), kNonce);
    const auto repeated = Find(GetX509ExtensionsExtensionValue, Get(GetOcspBasicResponseExtensions, basic), kNonce);
    if (asked != repeated) Refuse("another nonce");

    const auto [algorithm, parameters, name, key, serial, extensions] = Get(GetOcspRequestCertRequest, request, 0);
    const auto now = std::chrono::system_clock::now();
    for (const OcspSingleResponse* answer : Members(basic)) {
        if (Get(GetOcspSingleResponseCertID, answer) != std::tie(algorithm, parameters, name, key, serial)) continue;
        const auto next = Find<TimePoint>(GetOcspSingleResponseNextUpdate, answer);
        if (Get<TimePoint>(GetOcspSingleResponseThisUpdate, answer) > now || (next && *next < now))
            Refuse("out of date");
        std::printf("%s: ", ToHex(serial).c_str());
        return PrintStatus(answer);
    }
    Refuse("no answer about the certificate");
}

}  // namespace

int main(int count, char** arguments) try {
    const std::string what = count > 1 ? arguments[1] : "";
    const bool fits = count == 5 && (what == "ask" || what == "read");
    if (const auto status = AnswerUsage(kUsage, count, arguments, fits)) return *status;
    const auto issuer = Decode<Certificate>(ReadPem(arguments[2]));
    if (what == "ask") {
        WriteFile(arguments[4], Encode(Ask(issuer, Decode<Certificate>(ReadPem(arguments[3])))));
    } else {
        Read(issuer, Decode<OcspRequest>(ReadFile(arguments[3])), ReadFile(arguments[4]));
    }
} catch (const std::exception& failure) {
    std::fprintf(stderr, "ocsp: %s\n", failure.what());
    return 1;
}
