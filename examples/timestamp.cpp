// timestamp ask|put ...: a client of an authority of time-stamps. The signature of a message gets a time-stamp, which
// makes an advanced signature of it (CAdES-T): it proves that the signature existed by then.

#include <cstdio>

#include "libcrypto.h"
#include "usage.h"

using namespace tlvforge;
using namespace examples;

namespace {

constexpr char kUsage[] =
    "usage: timestamp ask MESSAGE REQUEST\n"
    "       timestamp put AUTHORITY MESSAGE REQUEST RESPONSE OUTPUT\n\n"
    "Asks for a time-stamp of a message's first signature, and puts the answer of the authority, whose certificate is\n"
    "PEM, into the message.\n";

constexpr Oid kSignedData("1.2.840.113549.1.7.2"), kTimeStampToken("1.2.840.113549.1.9.16.2.14");
constexpr Oid kTimeStampInfo("1.2.840.113549.1.9.16.1.4"), kMessageDigest("1.2.840.113549.1.9.4");

Handle<CmsSignedData> ReadMessage(const Handle<CmsContentInfo>& info) {
    return Decode<CmsSignedData>(Get(GetCmsContentInfoContent, info));
}

CmsSignerInfo* FirstSignerOf(const Handle<CmsSignedData>& signedData) {
    return Get(GetCmsSignedDataSignerInfo, signedData, 0);
}

TimeStampRequest Ask(const Handle<CmsSignedData>& signedData) {
    const Suite& suite = SuiteOf(EVP_PKEY_EC);  // for its digest, SHA-256
    return {.hashAlgorithm = suite.digestAlgorithm,
            .hash = Digest(suite, Get(GetCmsSignerInfoSignature, FirstSignerOf(signedData))),
            .nonce = RandomNumber(8),
            .certificateWanted = true};
}

void Refuse(const char* reason) { throw std::runtime_error(std::string("not to be believed: ") + reason); }

// The token is a signed message itself: the authority signs attributes that hold the digest of the TSTInfo.
TimeStampInfo ReadToken(const Handle<CmsContentInfo>& token, const Handle<Certificate>& authority) {
    const auto signedData = ReadMessage(token);
    CmsSignerInfo* const signer = FirstSignerOf(signedData);
    const Key key = PublicKeyOf(authority);
    const Bytes info = Get(GetCmsSignedDataContent, signedData);
    if (Get<Oid>(GetCmsSignedDataContentTypeOid, signedData) != kTimeStampInfo) Refuse("the token isn't one");
    if (!Verifies(key, Get(GetCmsSignerInfoEncodedSignedAttributes, signer), Get(GetCmsSignerInfoSignature, signer))) {
        Refuse("not signed by the authority");
    }
    for (auto& [oid, values, index] : Attributes(Get(GetCmsSignerInfoSignedAttributes, signer))) {
        if (oid != kMessageDigest || values.size() != 1) continue;
        if (Get(DecodeRsaAttributeMessageDigestValue, values[0]) != Digest(SuiteOf(key), info)) Refuse("changed");
        return DecodeTimeStampInfo(info);
    }
    throw std::runtime_error("the token has no digest");
}

Handle<CmsContentInfo> TokenFor(const TimeStampRequest& request, const Bytes& der,
                                const Handle<Certificate>& authority) {
    TimeStampResponse response = DecodeTimeStampResponse(der);
    if (!response.token) {
        std::string reasons = "the authority refuses with " + std::to_string(response.status);
        if (response.statusString) {
            for (const std::string& text : Members(response.statusString)) reasons += ": " + text;
        }
        throw std::runtime_error(reasons);
    }
    const TimeStampInfo info = ReadToken(response.token, authority);
    if (info.hash != request.hash || info.hashAlgorithm.oid != request.hashAlgorithm.oid) Refuse("of other bytes");
    if (info.nonce != request.nonce) Refuse("another nonce");
    std::printf("time-stamp %s of %s\n", ToHex(info.serialNumber).c_str(),
                ToText(ToLibraryTime(ToChrono(info.genTime))).c_str());
    return std::move(response.token);
}

// An unsigned attribute of the signer: his signature doesn't cover it.
Bytes Put(const Handle<CmsSignedData>& signedData, const Handle<CmsContentInfo>& token) {
    const RsaAttributes attributes = Get(GetCmsSignerInfoUnsignedAttributes, FirstSignerOf(signedData));
    Call(AddRsaAttributesAttributeWithValue, attributes, kTimeStampToken, Encode(token));
    const auto message = Create<CmsContentInfo>();
    Call(SetCmsContentInfoTypeOid, message, kSignedData);
    Call(SetCmsContentInfoContent, message, Encode(signedData));
    return Encode(message);
}

}  // namespace

int main(int count, char** arguments) try {
    const std::string what = count > 1 ? arguments[1] : "";
    const bool ask = what == "ask" && count == 4, put = what == "put" && count == 7;
    if (const auto status = AnswerUsage(kUsage, count, arguments, ask || put)) return *status;
    const auto signedData = ReadMessage(Decode<CmsContentInfo>(ReadFile(arguments[ask ? 2 : 3])));
    if (ask) {
        WriteFile(arguments[3], Encode(Ask(signedData)));
    } else {
        const auto authority = Decode<Certificate>(ReadPem(arguments[2]));
        const auto request = DecodeTimeStampRequest(ReadFile(arguments[4]));
        WriteFile(arguments[6], Put(signedData, TokenFor(request, ReadFile(arguments[5]), authority)));
    }
} catch (const std::exception& failure) {
    std::fprintf(stderr, "timestamp: %s\n", failure.what());
    return 1;
}
