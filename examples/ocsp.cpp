// ocsp DIRECTORY: asks whether certificates are revoked, answers as the responder, and has the answer verified
// (OCSP, RFC 6960).
// ocsp answer DIRECTORY REQUEST RESPONSE: the responder alone, for the request of another client.
//
// The library makes and reads the messages and certificates, OpenSSL makes hashes, keys and signatures, and verifies.
// What is made is written to the directory, and once more into gost/ inside of it where OpenSSL has its GOST engine:
//
//   root.cer, issued.der, crl.crl     the authority, the list of its certificates, and what it has revoked
//   responder.cer, responder.key      who answers; the second form reads these files
//   good.cer, revoked.cer             two certificates of the authority
//   unlisted.cer                      one that it has no record of
//   request.orq, response.ors         the question about the three, and the answer
//
// The exit code is 0 when OpenSSL accepted everything. The two sides stand in ocsp/client.h and ocsp/responder.h.

#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include "ocsp/client.h"
#include "ocsp/responder_files.h"
#include "ocsp/verification.h"
#include "usage.h"

using namespace examples;

namespace {

constexpr char kUsage[] =
    "usage: ocsp DIRECTORY\n"
    "       ocsp answer DIRECTORY REQUEST RESPONSE\n\n"
    "Asks whether certificates are revoked, answers as the responder, and has OpenSSL verify the answer;\n"
    "`answer` is the responder alone.\n";

// A certificate to ask about, and what the answer should be.
struct Subject {
    const char* title;
    const char* file;
    OwnedCertificate certificate;
    int expected;  // V_OCSP_CERTSTATUS_...
};

Subject MakeSubject(const char* title, const char* file, const Identity& authority, int expected) {
    const Key key = authority.suite.generateKey();
    return {title, file,
            IssueEnd(authority.suite, "www.example.org", key.get(), authority.certificate, authority.key.get()),
            expected};
}

struct Subjects {
    Subject good, revoked, unlisted;

    explicit Subjects(const Identity& authority)
        : good(MakeSubject("the good one", "good.cer", authority, V_OCSP_CERTSTATUS_GOOD)),
          revoked(MakeSubject("the revoked one", "revoked.cer", authority, V_OCSP_CERTSTATUS_REVOKED)),
          unlisted(MakeSubject("the unlisted one", "unlisted.cer", authority, V_OCSP_CERTSTATUS_UNKNOWN)) {}

    std::array<const Subject*, 3> All() const { return {&good, &revoked, &unlisted}; }
};

Responder MakeResponder(const Identity& authority, const Subjects& subjects) {
    OwnedCertificate root;
    Require(CreateCertificateCopy(authority.certificate, root.Out()), "copying a certificate");
    OwnedCertificates issued;
    Require(CreateCertificates(issued.Out()), "making a list of certificates");
    AdoptCopy(subjects.good.certificate, AddCertificateToCertificates, issued);
    AdoptCopy(subjects.revoked.certificate, AddCertificateToCertificates, issued);
    return {MakeResponderIdentity(authority), std::move(root), std::move(issued),
            IssueCrl(authority.suite, authority.certificate, authority.key.get(), {1},
                     {RevokeForKeyCompromise(subjects.revoked.certificate)})};
}

bool Verify(const Subjects& subjects, const Identity& authority, const Bytes& request, const Bytes& response) {
    const OpenSslBasicResponse basic = ReadBasicResponseByOpenSsl(response);
    bool all = VerifyResponse(basic.get(), request, MakeStore(authority.Der()));
    for (const Subject* subject : subjects.All()) {
        const Bytes der = Require(Get(EncodeCertificate, subject->certificate), "encoding a certificate");
        all = VerifyStatus(basic.get(), DigestOf(authority.suite), der, authority.Der(),
                           {subject->title, subject->expected}) &&
              all;
    }
    return all;
}

// The question goes out, the answer comes back.
bool Ask(const Subjects& subjects, const Identity& authority, const Responder& responder,
         const std::filesystem::path& directory) {
    std::vector<CertificateId> ids;
    for (const Subject* subject : subjects.All()) {
        ids.push_back(IdentifyCertificate(DigestOid(authority.suite), authority.certificate,
                                          SerialNumberOf(subject->certificate)));
    }
    const Bytes nonce = MakeSerialNumber();
    const Bytes request = MakeOcspRequest(ids, nonce);
    const Bytes response = AnswerOcspRequest(responder, request);
    WriteFile(directory / "request.orq", request);
    WriteFile(directory / "response.ors", response);
    const RevocationAnswers answers = ReadOcspResponse(response);
    PrintAnswers(answers);
    if (!AnswersRequest(answers, ids, nonce)) throw std::runtime_error("this is no answer to the request");
    return Verify(subjects, authority, request, response);
}

bool AskAndAnswer(const Suite& suite, const std::filesystem::path& directory) {
    printf("%s\n", suite.title);
    std::filesystem::create_directories(directory);
    const Identity authority = MakeAuthority(suite);
    const Subjects subjects(authority);
    const Responder responder = MakeResponder(authority, subjects);
    WriteResponder(responder, directory);
    for (const Subject* subject : subjects.All()) {
        WriteDocument(directory / subject->file, EncodeCertificate, subject->certificate);
    }
    return Ask(subjects, authority, responder, directory);
}

bool AskAndAnswer(const std::filesystem::path& directory) {
    const bool verified = AskAndAnswer(kEc, directory);
    const GostEngine engine;
    if (!engine.IsThere()) {
        printf("GOST is left out: OpenSSL has no engine \"gost\" here\n");
        return verified;
    }
    return AskAndAnswer(kGost, directory / "gost") && verified;
}

void Answer(const char* directory, const char* request, const char* response) {
    const GostEngine engine;
    WriteFile(response, AnswerOcspRequest(ReadResponder(directory), ReadFile(request)));
}

}  // namespace

int main(int count, char** arguments) {
    const bool answer = count == 5 && strcmp(arguments[1], "answer") == 0;
    if (const auto status = AnswerUsage(kUsage, count, arguments, count == 2 || answer)) return *status;
    try {
        if (answer) return Answer(arguments[2], arguments[3], arguments[4]), 0;
        return AskAndAnswer(arguments[1]) ? 0 : 1;
    } catch (const std::exception& failure) {
        fprintf(stderr, "ocsp: %s\n", failure.what());
        return 1;
    }
}
