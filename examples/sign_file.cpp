// sign_file FILE DIRECTORY: signs a file in every form that a signed message (CMS) can have, and has the messages
// verified.
//
// The library makes the messages and the certificates, OpenSSL the keys, the signatures and the verification. What is
// made is written to the directory, and a second time with the prefix gost- where OpenSSL has its GOST engine:
//
//   root.pem           the certificate to trust
//   attached.p7m       the file with a signature;  detached.p7s: the signature alone, to lie beside the file
//   bare.p7m, .p7s     signatures without attributes
//   two-signers.*      the first two with a second signer, who was added later
//   second-signer.*    the same after the first signer was removed
//   cades.p7m          an advanced signature (CAdES-T) with a time-stamp
//   time-stamp.*       taken out of it: the token (.tst), and the signature (.bin) that it was given to
//
// The exit code is 0 when OpenSSL accepted everything. How a message is made stands in signing/.

#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "signing/cades.h"
#include "signing/files.h"
#include "signing/identity.h"
#include "signing/message.h"
#include "signing/verification.h"
#include "usage.h"

using namespace examples;

namespace {

constexpr char kUsage[] =
    "usage: sign_file FILE DIRECTORY\n\n"
    "Signs the file in every form of a signed message (CMS), has OpenSSL verify the messages, and writes them to the\n"
    "directory.\n";

constexpr Form kAttached = {true, true}, kDetached = {false, true};
constexpr Form kBareAttached = {true, false}, kBareDetached = {false, false};

void WritePem(const std::filesystem::path& path, const Bytes& certificate) {
    const auto [status, text] = GetText(EncodePem, certificate.data(), Size(certificate), "CERTIFICATE");
    Require(status, "encoding PEM");
    WriteFile(path, Bytes(text.begin(), text.end()));
}

// A message to be written, and what it has to be.
struct Message {
    const char* name;
    Bytes der;
    MessageExpectation expected;
};

std::vector<Message> MakeMessages(const Identity& authority, const Bytes& content) {
    const Identity anna = MakeIdentity(authority, "Анна", kEmailProtection);
    const Identity boris = MakeIdentity(authority, "Борис", kEmailProtection);
    const Identity timeStamper = MakeIdentity(authority, "Time-Stamps", kTimeStamping);
    const Bytes attached = AddSignature({}, anna, content, kAttached);
    const Bytes detached = AddSignature({}, anna, content, kDetached);
    const Bytes both = AddSignature(attached, boris, content, kAttached);
    const Bytes advanced = AddSignature({}, anna, content, kAttached, MakeSigningCertificateAttribute(anna));
    return {
        {"attached.p7m", attached, {true, 1, false}},
        {"detached.p7s", detached, {false, 1, false}},
        {"bare.p7m", AddSignature({}, anna, content, kBareAttached), {true, 1, false}},
        {"bare.p7s", AddSignature({}, anna, content, kBareDetached), {false, 1, false}},
        {"two-signers.p7m", both, {true, 2, false}},
        {"two-signers.p7s", AddSignature(detached, boris, content, kDetached), {false, 2, false}},
        {"second-signer.p7m", RemoveSigner(both, 1), {true, 1, false}},
        {"cades.p7m", AddTimeStamp(advanced, timeStamper), {true, 1, true}},
    };
}

// Where files are written, and what their names begin with.
struct Folder {
    std::filesystem::path directory;
    std::string prefix;

    std::filesystem::path operator/(const std::string& name) const { return directory / (prefix + name); }
};

bool WriteAndVerify(const Message& message, const Folder& folder, const Bytes& content, const Store& store) {
    WriteFile(folder / message.name, message.der);
    PrintSigners(message.der);
    return VerifyMessage(message.der, content, store, message.expected);
}

// From file to file, without a message in memory.
bool RemoveSignerFromFile(const Folder& folder, const Bytes& content, const Store& store) {
    const std::filesystem::path output = folder / "second-signer.p7s";
    Require(DeleteCmsSignerInfo(1, (folder / "two-signers.p7s").c_str(), output.c_str()), "removing a signer");
    return WriteAndVerify({"second-signer.p7s", ReadFile(output), {false, 1, false}}, folder, content, store);
}

bool WriteTimeStamp(const Folder& folder, const Store& store) {
    const TimeStamp timeStamp = ReadTimeStamp(ReadFile(folder / "cades.p7m"));
    WriteFile(folder / "time-stamp.tst", timeStamp.token);
    WriteFile(folder / "time-stamp.bin", timeStamp.signature);
    return VerifyTimeStamp(timeStamp, store);
}

bool SignContent(const Suite& suite, const Bytes& content, const std::filesystem::path& directory) {
    printf("%s\n", suite.title);
    const Folder folder = {directory, suite.filePrefix};
    const Identity authority = MakeAuthority(suite);
    const Store store = MakeStore(authority.Der());
    WritePem(folder / "root.pem", authority.Der());
    bool all = true;
    for (const Message& message : MakeMessages(authority, content)) {
        all = WriteAndVerify(message, folder, content, store) && all;
    }
    all = RemoveSignerFromFile(folder, content, store) && all;
    return WriteTimeStamp(folder, store) && all;
}

bool SignFile(const char* path, const std::filesystem::path& directory) {
    const Bytes content = ReadFile(path);
    std::filesystem::create_directories(directory);
    if (content.empty()) throw std::runtime_error("an empty file can't be attached to a signature");
    const bool verified = SignContent(kEc, content, directory);
    const GostEngine engine;
    if (!engine.IsThere()) {
        printf("GOST is left out: OpenSSL has no engine \"gost\" here\n");
        return verified;
    }
    return SignContent(kGost, content, directory) && verified;
}

}  // namespace

int main(int count, char** arguments) {
    if (const auto status = AnswerUsage(kUsage, count, arguments, count == 3)) return *status;
    try {
        return SignFile(arguments[1], arguments[2]) ? 0 : 1;
    } catch (const std::exception& failure) {
        fprintf(stderr, "sign_file: %s\n", failure.what());
        return 1;
    }
}
