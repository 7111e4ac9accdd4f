// The client: asks whether certificates are revoked, and reads what comes back. Whether the answer can be trusted is
// for verification.h to say.
#pragma once

#include <algorithm>
#include <vector>

#include "certificate_id.h"
#include "messages.h"
#include "text.h"

namespace examples {

inline Bytes MakeOcspRequest(const std::vector<CertificateId>& ids, const Bytes& nonce) {
    OwnedOcspRequest request;
    Require(CreateOcspRequest(request.Out()), "making a request");
    for (const CertificateId& id : ids) WriteCertificateId(AddOcspRequestCertRequest, &*request, id, nullptr);
    AddExtension(ExtensionsOf(GetOcspRequestExtensions, request), kNonce, false,
                 Get(EncodeExtensionOcspNonce, nonce.data(), Size(nonce)));
    return Require(Get(EncodeOcspRequest, request), "encoding a request");
}

// --- What a response says ---

struct RevocationAnswer {
    CertificateId id;
    uint32_t status = kUnknown;
    LibraryTime thisUpdate = {};
    LibraryTime revoked = {};  // the null time for a certificate that isn't
    uint32_t reason = 0;       // all bits set without one
};

struct RevocationAnswers {
    int32_t status = kSuccessful;  // with any other one nothing else is there
    std::string responder;
    LibraryTime producedAt = {};
    Bytes nonce;
    std::vector<RevocationAnswer> answers;
};

inline RevocationAnswer ReadAnswer(const OcspSingleResponse* single) {
    RevocationAnswer answer;
    answer.id = ReadCertificateId(GetOcspSingleResponseCertID, single);
    Require(GetOcspSingleResponseCertStatus(single, &answer.status), "reading a status");
    Require(GetOcspSingleResponseThisUpdate(single, &answer.thisUpdate), "reading thisUpdate");
    if (answer.status == kRevoked) {
        Require(GetOcspSingleResponseCertStatusRevokedInfo(single, &answer.revoked, &answer.reason),
                "reading about a revocation");
    }
    return answer;
}

inline std::string DescribeResponder(const OcspBasicResponse* response) {
    uint32_t form = 0;
    const Bytes id = Require(Get([&](uint8_t* buffer, uint32_t* length) {
                                 return GetOcspBasicResponseResponderID(response, &form, buffer, length);
                             }),
                             "reading the responder");
    return form == 0 ? DescribeEncodedName(id) : "the key with the SHA-1 " + ToHex(id);
}

inline Bytes ReadNonce(const OcspBasicResponse* response) {
    const Bytes value = FindExtension(ExtensionsOf(GetOcspBasicResponseExtensions, response), kNonce);
    if (value.empty()) return {};
    return Require(Get(DecodeExtensionOcspNonce, value.data(), Size(value)), "decoding a nonce");
}

inline void ReadBasicResponse(const Bytes& bytes, RevocationAnswers& answers) {
    OwnedBasicResponse response;
    Require(DecodeOcspBasicResponse(bytes.data(), Size(bytes), response.Out()), "decoding a basic response");
    answers.responder = DescribeResponder(response);
    answers.nonce = ReadNonce(response);
    Require(GetOcspBasicResponseProducedAt(response, &answers.producedAt), "reading producedAt");
    uint32_t count = 0;
    Require(GetOcspBasicResponseSingleResponsesCount(response, &count), "counting answers");
    for (uint32_t i = 0; i < count; ++i) {
        OcspSingleResponse* single = nullptr;
        Require(GetOcspBasicResponseSingleResponse(response, i, &single), "reaching an answer");
        answers.answers.push_back(ReadAnswer(single));
    }
}

inline RevocationAnswers ReadOcspResponse(const Bytes& bytes) {
    OwnedOcspResponse response;
    RevocationAnswers answers;
    Require(DecodeOcspResponse(bytes.data(), Size(bytes), response.Out()), "decoding a response");
    Require(GetOcspResponseStatus(response, &answers.status), "reading a status");
    if (answers.status != kSuccessful) return answers;
    Output type, basic;
    const auto call = [&] {
        return GetOcspResponseBytes(response, type.data, &type.length, basic.data, &basic.length);
    };
    Require(Fetch(call, type, basic), "reading a response");
    if (type.bytes != Oid(kBasicType)) throw std::runtime_error("the response is of an unknown type");
    ReadBasicResponse(basic.bytes, answers);
    return answers;
}

// An answer to another question, or to the same one at another time, is none.
inline bool AnswersRequest(const RevocationAnswers& answers, const std::vector<CertificateId>& ids,
                           const Bytes& nonce) {
    const auto same = [](const RevocationAnswer& answer, const CertificateId& id) { return answer.id == id; };
    return answers.nonce == nonce &&
           std::equal(answers.answers.begin(), answers.answers.end(), ids.begin(), ids.end(), same);
}

// --- Texts ---

inline std::string DescribeStatus(const RevocationAnswer& answer) {
    static constexpr const char* kNames[] = {"good", "revoked", "unknown"};
    std::string text = answer.status <= kUnknown ? kNames[answer.status] : "of no status";
    if (answer.status == kRevoked) {
        text += " at " + DescribeTime(answer.revoked);
        if (answer.reason != UINT32_MAX) text += " for reason " + std::to_string(answer.reason);
    }
    return text + ", as of " + DescribeTime(answer.thisUpdate);
}

inline void PrintAnswers(const RevocationAnswers& answers) {
    if (answers.status != kSuccessful) return (void)printf("  refused with status %d\n", answers.status);
    printf("  answered by %s at %s\n", answers.responder.c_str(), DescribeTime(answers.producedAt).c_str());
    for (const RevocationAnswer& answer : answers.answers) {
        printf("    %s is %s\n", ToHex(answer.id.serial).c_str(), DescribeStatus(answer).c_str());
    }
}

}  // namespace examples
