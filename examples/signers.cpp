// signers list|add|remove ...: the signers of a message, one more, one fewer. The content stays as it is, and so do the
// signatures of the others.

#include <cstdio>

#include "libcrypto.h"
#include "usage.h"

using namespace tlvforge;
using namespace examples;

namespace {

constexpr char kUsage[] =
    "usage: signers list MESSAGE\n"
    "       signers add KEY CERTIFICATE MESSAGE OUTPUT [FILE]\n"
    "       signers remove CERTIFICATE MESSAGE OUTPUT\n\n"
    "Lists the signers of a message, adds one, or takes one out. FILE is the content of a detached message.\n";

Handle<CmsSignedData> ReadMessage(const Bytes& message) {
    return Decode<CmsSignedData>(Get(GetCmsContentInfoContent, Decode<CmsContentInfo>(message)));
}

// The certificate that a signer refers to, if it is in the message.
Handle<Certificate> FindCertificate(const Handle<CmsSignedData>& signedData, CmsSignerInfo* signer) {
    for (auto& [kind, der] : List(GetCmsSignedDataCertificatesCount, GetCmsSignedDataEncodedCertificate, signedData)) {
        if (kind != CmsCertificateKindCertificate) continue;
        auto certificate = Decode<Certificate>(der);
        if (Same(CompareSignerInfoAndCertificate, signer, certificate)) return certificate;
    }
    return nullptr;
}

void ListSigners(const Bytes& message) {
    constexpr Oid kSigningTime("1.2.840.113549.1.9.5"), kTimeStamp("1.2.840.113549.1.9.16.2.14");
    const auto signedData = ReadMessage(message);
    for (CmsSignerInfo* signer : Members(signedData)) {
        const auto certificate = FindCertificate(signedData, signer);
        std::printf("%s\n", certificate ? ToText(Get(GetCertificateSubject, certificate)).c_str()
                                        : "somebody whose certificate isn't here");
        for (auto& [oid, values, index] : Attributes(Get(GetCmsSignerInfoSignedAttributes, signer))) {
            if (oid != kSigningTime || values.size() != 1) continue;
            std::printf("  at %s\n", ToText(Get(DecodeRsaAttributeSigningTimeValue, values[0])).c_str());
        }
        for (auto& attribute : Attributes(Get(GetCmsSignerInfoUnsignedAttributes, signer))) {
            if (attribute.oid == kTimeStamp) std::printf("  with a time-stamp\n");
        }
    }
}

// The existing message goes into the function that makes messages. Its content is looked at, not signed again.
Bytes AddSigner(const Key& key, const Bytes& certificate, const Bytes& existing, const Bytes& detached) {
    const Bytes inside = Get(GetCmsSignedDataContent, ReadMessage(existing));
    const Bytes& content = inside.empty() ? detached : inside;
    const Suite& suite = SuiteOf(key);
    const Bytes digest = Digest(suite, content);
    FileSignature parts{.content = inside.empty() ? ByteView() : inside,
                        .digest = digest,
                        .signingTime = ToLibraryTime(std::chrono::system_clock::now()),
                        .digestAlgorithm = suite.digestAlgorithm,
                        .signerCertificate = certificate,
                        .certificates = {certificate},
                        .signatureAlgorithm = suite.signatureAlgorithm,
                        .existingSignature = existing};
    const Bytes signature = Sign(key, ToBeSigned(parts));
    parts.signature = signature;
    return Encode(parts);
}

// Signers are numbered from 1, in the order of the message.
Bytes RemoveSigner(const Bytes& certificate, const Bytes& message) {
    const auto signedData = ReadMessage(message);
    const auto leaving = Decode<Certificate>(certificate);
    uint32_t number = 0;
    for (CmsSignerInfo* signer : Members(signedData)) {
        ++number;
        if (Same(CompareSignerInfoAndCertificate, signer, leaving))
            return Get(DeleteBufferCmsSignerInfo, number, message);
    }
    throw std::runtime_error("the certificate is that of no signer");
}

}  // namespace

int main(int count, char** arguments) try {
    const std::string what = count > 1 ? arguments[1] : "";
    const bool list = what == "list" && count == 3, remove = what == "remove" && count == 5;
    const bool add = what == "add" && (count == 6 || count == 7);
    if (const auto status = AnswerUsage(kUsage, count, arguments, list || add || remove)) return *status;
    if (list) {
        ListSigners(ReadFile(arguments[2]));
    } else if (add) {
        WriteFile(arguments[5], AddSigner(ReadKey(arguments[2]), ReadPem(arguments[3]), ReadFile(arguments[4]),
                                          count == 7 ? ReadFile(arguments[6]) : Bytes()));
    } else {
        WriteFile(arguments[4], RemoveSigner(ReadPem(arguments[2]), ReadFile(arguments[3])));
    }
} catch (const std::exception& failure) {
    std::fprintf(stderr, "signers: %s\n", failure.what());
    return 1;
}
