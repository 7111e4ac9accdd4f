// Time-stamps: requests, responses and what a token says.
#pragma once

#include <string>

#include "fields.h"

namespace examples {

// A token is a message, and cms.h prints it.
inline void PrintMessage(Outline& outline, const CmsContentInfo* message);

inline constexpr auto PrintToken = PrintDecoded<CmsContentInfo, FreeCmsContentInfo, DecodeCmsContentInfo, PrintMessage>;

inline std::string ToText(const LibraryPreciseTime& time) {
    std::string text = ToText(LibraryTime{time.year, time.month, time.day, time.hour, time.minute, time.second});
    char fraction[24];
    snprintf(fraction, sizeof fraction, ".%03u%03uZ", time.millisecond, time.microsecond);
    if (time.millisecond != 0 || time.microsecond != 0) text.replace(text.size() - 1, 1, fraction);
    return text;
}

// "1 s, 500 ms"; empty for no accuracy.
inline std::string ToText(const Accuracy& accuracy) {
    const struct {
        uint32_t count;
        const char* unit;
    } parts[] = {{accuracy.seconds, " s"}, {accuracy.milliseconds, " ms"}, {accuracy.microseconds, " us"}};
    std::string text;
    for (const auto& part : parts) {
        if (part.count != 0) text += (text.empty() ? "" : ", ") + std::to_string(part.count) + part.unit;
    }
    return text;
}

// What a time-stamp is for.
struct Imprint {
    Output algorithm, parameters, hash;
};

inline void PrintImprint(Outline& outline, const Imprint& imprint) {
    const Outline::Section section = outline.Open("Message imprint");
    PrintAlgorithm(outline, "algorithm", {StatusOk, imprint.algorithm.bytes, imprint.parameters.bytes});
    outline.Hex("hash", imprint.hash.bytes);
}

inline void PrintNonce(Outline& outline, const Bytes& nonce) {
    if (!nonce.empty()) outline.Hex("Nonce", nonce);
}

inline Status PrintTimeStampRequest(Outline& outline, const Bytes& bytes) {
    int32_t version = 0;
    uint32_t certificateWanted = 0;
    Imprint imprint;
    Output policy, nonce;
    OwnedExtensions extensions;
    const auto decode = [&] {
        return DecodeTimeStampReq(bytes.data(), Size(bytes), &version, imprint.algorithm.data,
                                  &imprint.algorithm.length, imprint.parameters.data, &imprint.parameters.length,
                                  imprint.hash.data, &imprint.hash.length, policy.data, &policy.length, nonce.data,
                                  &nonce.length, &certificateWanted, extensions.Out());
    };
    const Status status = Fetch(decode, imprint.algorithm, imprint.parameters, imprint.hash, policy, nonce);
    if (status != StatusOk) return status;
    const Outline::Section section = outline.Open("Time-stamp request");
    outline.Line("Version", std::to_string(version));
    PrintImprint(outline, imprint);
    if (!policy.bytes.empty()) outline.Line("Policy", DescribeOid(policy.bytes));
    PrintNonce(outline, nonce.bytes);
    outline.Line("Certificate wanted", certificateWanted != 0 ? "yes" : "no");
    if (extensions != nullptr) PrintExtensions(outline, extensions);
    return StatusOk;
}

// --- What a token says ---

// On its own, so that a time that is refused doesn't hide the rest.
inline void PrintGenerationTime(Outline& outline, const Bytes& bytes) {
    LibraryPreciseTime time = {};
    const Status status =
        DecodeTSTInfo(bytes.data(), Size(bytes), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                      nullptr, nullptr, nullptr, &time, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    if (status != StatusOk) return outline.Failed("Time", status);
    outline.Line("Time", ToText(time));
}

inline Status PrintTstInfo(Outline& outline, const Bytes& bytes) {
    int32_t version = 0;
    uint32_t ordering = 0;
    Imprint imprint;
    Output policy, serial, nonce;
    Accuracy accuracy = {};
    Owned<X509GeneralName, FreeX509GeneralName> authority;
    OwnedExtensions extensions;
    const auto decode = [&] {
        return DecodeTSTInfo(bytes.data(), Size(bytes), &version, policy.data, &policy.length, imprint.algorithm.data,
                             &imprint.algorithm.length, imprint.parameters.data, &imprint.parameters.length,
                             imprint.hash.data, &imprint.hash.length, serial.data, &serial.length, nullptr, &accuracy,
                             &ordering, nonce.data, &nonce.length, authority.Out(), extensions.Out());
    };
    const Status status = Fetch(decode, policy, imprint.algorithm, imprint.parameters, imprint.hash, serial, nonce);
    if (status != StatusOk) return status;
    const Outline::Section section = outline.Open("Time-stamp information");
    outline.Line("Version", std::to_string(version));
    outline.Line("Policy", DescribeOid(policy.bytes));
    PrintImprint(outline, imprint);
    outline.Hex("Serial number", serial.bytes);
    PrintGenerationTime(outline, bytes);
    if (const std::string text = ToText(accuracy); !text.empty()) outline.Line("Accuracy", text);
    outline.Line("Ordering", ordering != 0 ? "yes" : "no");
    PrintNonce(outline, nonce.bytes);
    if (authority != nullptr) {
        const Outline::Section name = outline.Open("Authority");
        PrintGeneralName(outline, authority);
    }
    if (extensions != nullptr) PrintExtensions(outline, extensions);
    return StatusOk;
}

// --- Responses ---

inline void PrintFreeText(Outline& outline, const PKIFreeText* texts) {
    PrintMembersField(outline, "Texts", GetPKIFreeTextStringCount, texts, [&](uint32_t index) {
        const Fetched text = Get(GetPKIFreeTextString, texts, index);
        if (text.status != StatusOk) return outline.Failed("text", text.status);
        outline.Line(Escape(ReadUtf8(text.bytes)));
    });
}

inline Status PrintTimeStampResponse(Outline& outline, const Bytes& bytes) {
    static constexpr const char* kStatuses[] = {"granted", "grantedWithMods",   "rejection",
                                                "waiting", "revocationWarning", "revocationNotification"};
    // clang-format off
    static constexpr const char* kFailures[] = {
        "badAlg", nullptr, "badRequest", nullptr, nullptr, "badDataFormat", nullptr, nullptr, nullptr, nullptr,
        nullptr, nullptr, nullptr, nullptr, "timeNotAvailable", "unacceptedPolicy", "unacceptedExtension",
        "addInfoNotAvailable", nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, "systemFailure"};
    // clang-format on
    int32_t number = 0;
    uint32_t failures = 0;
    Owned<PKIFreeText, FreePKIFreeText> texts;
    Owned<CmsContentInfo, FreeCmsContentInfo> token;
    const Status status = DecodeTimeStampResp(bytes.data(), Size(bytes), &number, texts.Out(), &failures, token.Out());
    if (status != StatusOk) return status;
    const Outline::Section section = outline.Open("Time-stamp response");
    outline.Line("Response status", DescribeNumber(number, kStatuses));
    if (texts != nullptr) PrintFreeText(outline, texts);
    if (failures != 0) outline.Line("Failures", DescribeFlags(failures, kFailures));
    if (token == nullptr) {
        outline.Line("Token", "none");
    } else {
        const Outline::Section tokenSection = outline.Open("Token");
        PrintMessage(outline, token);
    }
    return StatusOk;
}

}  // namespace examples
