// The client: asks for a time-stamp, and reads what comes back. Whether it can be trusted is for verification.h to say.
#pragma once

#include "../ocsp/text.h"
#include "messages.h"

namespace examples {

inline TimeStampRequest RequestTimeStamp(const Suite& suite, const Bytes& content, const char* policy) {
    return {{DigestOid(suite), {}, Digest(suite, content)}, Oid(policy), MakeSerialNumber(), true, false};
}

// --- Responses ---

struct TimeStampResponse {
    int32_t status = kGranted;
    uint32_t failure = kNoFailure;
    OwnedFreeText text;      // null when there is none
    OwnedContentInfo token;  // null unless one was granted
};

inline TimeStampResponse ReadResponse(const Bytes& bytes) {
    TimeStampResponse response;
    Require(DecodeTimeStampResp(bytes.data(), Size(bytes), &response.status, response.text.Out(), &response.failure,
                                response.token.Out()),
            "decoding a response");
    return response;
}

// The TSTInfo that a token is signed around.
inline Bytes ReadContent(const CmsContentInfo* token) {
    const OwnedSignedData signedData = ReadMessage(Require(Get(EncodeCmsContentInfo, token), "encoding a token"));
    if (Require(Get(GetCmsSignedDataContentTypeOid, signedData), "reading a content type") != Oid(kTstInfo)) {
        throw std::runtime_error("this is no time-stamp");
    }
    return Require(Get(GetCmsSignedDataContent, signedData), "reading the content");
}

// --- What a time-stamp says ---

struct TstInfo {
    Imprint imprint;
    Bytes policy, serial, nonce;
    LibraryPreciseTime time = {};
    Accuracy accuracy = {};  // cleared, as seconds that are absent are left alone
    uint32_t ordering = 0;
    OwnedGeneralName authority;  // null when it is absent, as the extensions
    OwnedExtensions extensions;
};

inline TstInfo ReadTstInfo(const Bytes& bytes) {
    TstInfo info;
    int32_t version = 0;
    Output policy, hashOid, parameters, hash, serial, nonce;
    const auto call = [&] {
        return DecodeTSTInfo(bytes.data(), Size(bytes), &version, policy.data, &policy.length, hashOid.data,
                             &hashOid.length, parameters.data, &parameters.length, hash.data, &hash.length, serial.data,
                             &serial.length, &info.time, &info.accuracy, &info.ordering, nonce.data, &nonce.length,
                             info.authority.Out(), info.extensions.Out());
    };
    Require(Fetch(call, policy, hashOid, parameters, hash, serial, nonce), "decoding a TSTInfo");
    info.imprint = {hashOid.bytes, parameters.bytes, hash.bytes};
    info.policy = policy.bytes;
    info.serial = serial.bytes;
    info.nonce = nonce.bytes;
    return info;
}

// A time-stamp for something else, or an old one for the same, is no answer.
inline bool AnswersRequest(const TstInfo& info, const TimeStampRequest& request) {
    return info.imprint == request.imprint && info.nonce == request.nonce &&
           (request.policy.empty() || info.policy == request.policy);
}

// --- Texts ---

inline std::string DescribeTime(const LibraryPreciseTime& time) {
    char text[120];
    snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u.%03u%03u UTC", time.year, time.month, time.day,
             time.hour, time.minute, time.second, time.millisecond, time.microsecond);
    return text;
}

inline std::string DescribeAccuracy(const Accuracy& accuracy) {
    if (IsAccuracyNull(&accuracy) != 0) return "not told";
    return std::to_string(accuracy.seconds) + " s, " + std::to_string(accuracy.milliseconds) + " ms, " +
           std::to_string(accuracy.microseconds) + " us";
}

inline std::string DescribeAuthority(const X509GeneralName* name) {
    if (name == nullptr) return "not told";
    uint32_t alternative = 0;
    const Bytes value = Require(Get(GetX509GeneralNameValue, name, &alternative), "reading a general name");
    return alternative == X509GeneralNameDirectoryName ? DescribeEncodedName(value) : ToHex(value);
}

inline void PrintExtensions(X509Extensions extensions) {
    uint32_t count = 0;
    Require(GetX509ExtensionsExtensionsCount(extensions, &count), "counting extensions");
    for (uint32_t i = 0; i < count; ++i) {
        Output oid, value;
        uint32_t critical = 0;
        const auto call = [&] {
            return GetX509ExtensionsExtension(extensions, i, oid.data, &oid.length, &critical, value.data,
                                              &value.length);
        };
        Require(Fetch(call, oid, value), "reading an extension");
        printf("    extension %s%s: %s\n", DescribeOid(oid.bytes).c_str(), critical != 0 ? ", critical" : "",
               ToHex(value.bytes).c_str());
    }
}

inline void PrintTstInfo(const TstInfo& info) {
    printf("  time-stamp %s\n", ToHex(info.serial).c_str());
    printf("    time: %s\n", DescribeTime(info.time).c_str());
    printf("    accuracy: %s\n", DescribeAccuracy(info.accuracy).c_str());
    printf("    hash: %s by %s\n", ToHex(info.imprint.hash).c_str(), DescribeOid(info.imprint.hashOid).c_str());
    printf("    policy: %s\n", DescribeOid(info.policy).c_str());
    printf("    ordering: %s\n", info.ordering != 0 ? "yes" : "no");
    printf("    nonce: %s\n", info.nonce.empty() ? "none" : ToHex(info.nonce).c_str());
    printf("    authority: %s\n", DescribeAuthority(info.authority).c_str());
    if (info.extensions != nullptr) PrintExtensions(info.extensions);
}

inline void PrintRefusal(const TimeStampResponse& response) {
    printf("  refused with status %d, failures %08X\n", response.status, response.failure);
    uint32_t count = 0;
    if (response.text != nullptr) Require(GetPKIFreeTextStringCount(response.text, &count), "counting texts");
    for (uint32_t i = 0; i < count; ++i) {
        const Bytes text = Require(Get(GetPKIFreeTextString, response.text, i), "reading a text");
        printf("    %s\n", Escape(ReadUtf8(text)).c_str());
    }
}

}  // namespace examples
