// What both sides need (RFC 3161).
#pragma once

#include "../signing/message.h"

namespace examples {

inline constexpr char kPolicy[] = "1.3.6.1.4.1.32473.1";         // for examples
inline constexpr char kTstInfo[] = "1.2.840.113549.1.9.16.1.4";  // id-ct-TSTInfo
inline constexpr char kWorth[] = "1.3.6.1.4.1.32473.2";          // an extension that says what a time-stamp is worth

enum TimeStampStatus : int32_t { kGranted = 0, kRejection = 2 };

// Bits of PKIFailureInfo as a flag word, in which bit 0 is 0x80 of the first byte.
enum TimeStampFailure : uint32_t {
    kNoFailure = 0,
    kBadAlgorithm = 0x80,
    kBadDataFormat = 0x04,
    kUnacceptedPolicy = 0x01 << 8,
    kUnacceptedExtension = 0x80 << 16,
};

using OwnedFreeText = Owned<PKIFreeText, FreePKIFreeText>;
using OwnedGeneralName = Owned<X509GeneralName, FreeX509GeneralName>;

// What a time-stamp is given to: the authority gets to know the hash only.
struct Imprint {
    Bytes hashOid, parameters, hash;

    bool operator==(const Imprint&) const = default;
};

// The arguments of functions that take bytes or null for none.
inline const uint8_t* OrNull(const Bytes& bytes) { return bytes.empty() ? nullptr : bytes.data(); }

struct TimeStampRequest {
    Imprint imprint;
    Bytes policy, nonce;  // empty for none
    bool certificateWanted = false;
    bool hasExtensions = false;
};

inline Bytes EncodeRequest(const TimeStampRequest& request) {
    const Imprint& imprint = request.imprint;
    return Require(
        Get(EncodeTimeStampReq, 1, imprint.hashOid.data(), OrNull(imprint.parameters), Size(imprint.parameters),
            imprint.hash.data(), Size(imprint.hash), OrNull(request.policy), Size(request.policy),
            OrNull(request.nonce), Size(request.nonce), request.certificateWanted, nullptr),
        "encoding a request");
}

// The status of the decoder.
inline Status DecodeRequest(const Bytes& bytes, TimeStampRequest& request) {
    int32_t version = 0;
    uint32_t certificateWanted = 0;
    Output hashOid, parameters, hash, policy, nonce;
    OwnedExtensions extensions;
    const auto call = [&] {
        return DecodeTimeStampReq(bytes.data(), Size(bytes), &version, hashOid.data, &hashOid.length, parameters.data,
                                  &parameters.length, hash.data, &hash.length, policy.data, &policy.length, nonce.data,
                                  &nonce.length, &certificateWanted, extensions.Out());
    };
    const Status status = Fetch(call, hashOid, parameters, hash, policy, nonce);
    request = {{hashOid.bytes, parameters.bytes, hash.bytes},
               policy.bytes,
               nonce.bytes,
               certificateWanted != 0,
               extensions != nullptr};
    return status;
}

}  // namespace examples
