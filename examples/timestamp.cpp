// timestamp DIRECTORY: asks for a time-stamp, gives it as the authority, and has it verified (RFC 3161).
// timestamp answer DIRECTORY REQUEST RESPONSE: the authority alone, for the request of another client.
// timestamp read REQUEST RESPONSE: prints a time-stamp of another authority, if it is the answer to the request.
//
// The library makes and reads the messages and certificates, OpenSSL makes hashes, keys and signatures, and verifies.
// What is made is written to the directory, and once more into gost/ inside of it where OpenSSL has its GOST engine:
//
//   root.cer                            the certificate to trust
//   authority.cer, authority.key        who gives time-stamps; the second form reads these files
//   data.txt                            what the time-stamp is given to
//   request.tsq, response.tsr           the request, and the response with the time-stamp
//   refused.tsq, refusal.tsr            a request that the authority refuses, and its response
//
// The exit code is 0 when OpenSSL accepted everything. The two sides stand in stamping/client.h and
// stamping/authority.h.

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string_view>

#include "ocsp/identity_files.h"
#include "stamping/authority.h"
#include "stamping/client.h"
#include "stamping/verification.h"
#include "usage.h"

using namespace examples;

namespace {

constexpr char kUsage[] =
    "usage: timestamp DIRECTORY\n"
    "       timestamp answer DIRECTORY REQUEST RESPONSE\n"
    "       timestamp read REQUEST RESPONSE\n\n"
    "Asks for a time-stamp, answers as the authority, and has OpenSSL verify the answer;\n"
    "`answer` is the authority alone, `read` prints the time-stamp of another authority.\n";

void PrintAnswer(const Bytes& bytes, const TimeStampRequest& request) {
    const TimeStampResponse response = ReadResponse(bytes);
    if (response.token == nullptr) return PrintRefusal(response);
    const TstInfo info = ReadTstInfo(ReadContent(response.token));
    PrintTstInfo(info);
    if (!AnswersRequest(info, request)) throw std::runtime_error("this is no answer to the request");
}

struct Exchange {
    Bytes request, response;
};

Exchange Ask(const Identity& authority, const Bytes& content, const char* policy) {
    const TimeStampRequest request = RequestTimeStamp(authority.suite, content, policy);
    Bytes encoded = EncodeRequest(request);
    Bytes response = AnswerRequest(authority, encoded);
    PrintAnswer(response, request);
    return {std::move(encoded), std::move(response)};
}

bool StampData(const Suite& suite, const std::filesystem::path& directory) {
    static constexpr std::string_view kText = "I owe you a lunch.\nAnna\n";
    static constexpr char kOtherPolicy[] = "1.3.6.1.4.1.32473.3";
    printf("%s\n", suite.title);
    std::filesystem::create_directories(directory);
    const Bytes content(kText.begin(), kText.end());
    const Identity root = MakeAuthority(suite);
    const Identity authority = MakeIdentity(root, "Time-Stamps", kTimeStamping);
    WriteIdentity(authority, directory, "authority");
    WriteFile(directory / "root.cer", root.Der());
    WriteFile(directory / "data.txt", content);
    const Exchange granted = Ask(authority, content, kPolicy);
    WriteFile(directory / "request.tsq", granted.request);
    WriteFile(directory / "response.tsr", granted.response);
    const Exchange refused = Ask(authority, content, kOtherPolicy);
    WriteFile(directory / "refused.tsq", refused.request);
    WriteFile(directory / "refusal.tsr", refused.response);
    const bool verified = VerifyResponse(granted.request, granted.response, MakeStore(root.Der()));
    return VerifyRefusal(refused.response, TS_INFO_UNACCEPTED_POLICY) && verified;
}

bool StampData(const std::filesystem::path& directory) {
    const bool verified = StampData(kEc, directory);
    const GostEngine engine;
    if (!engine.IsThere()) {
        printf("GOST is left out: OpenSSL has no engine \"gost\" here\n");
        return verified;
    }
    return StampData(kGost, directory / "gost") && verified;
}

void Answer(const char* directory, const char* request, const char* response) {
    const GostEngine engine;
    WriteFile(response, AnswerRequest(ReadIdentity(directory, "authority"), ReadFile(request)));
}

void Read(const char* request, const char* response) {
    TimeStampRequest decoded;
    Require(DecodeRequest(ReadFile(request), decoded), "decoding a request");
    PrintAnswer(ReadFile(response), decoded);
}

}  // namespace

int main(int count, char** arguments) {
    const bool answer = count == 5 && strcmp(arguments[1], "answer") == 0;
    const bool read = count == 4 && strcmp(arguments[1], "read") == 0;
    if (const auto status = AnswerUsage(kUsage, count, arguments, count == 2 || answer || read)) return *status;
    try {
        if (answer) return Answer(arguments[2], arguments[3], arguments[4]), 0;
        if (read) return Read(arguments[2], arguments[3]), 0;
        return StampData(arguments[1]) ? 0 : 1;
    } catch (const std::exception& failure) {
        fprintf(stderr, "timestamp: %s\n", failure.what());
        return 1;
    }
}
