/* Functions with a dozen arguments and more, as structs: in C++20 with designated initialisers. */
#ifndef TLVFORGE_CPP_MESSAGES_HPP
#define TLVFORGE_CPP_MESSAGES_HPP

#include <optional>
#include <vector>

#include "tlvforge/cpp/call.hpp"

namespace tlvforge {

namespace types {

/** An algorithm: its parameters are a whole element, or empty where there are none. */
struct Algorithm {
    Oid oid = {};
    Bytes parameters = {};
};

/**
 * FileSignature is what CreateCmsFileSignature2 makes a signed document of. All bytes are lent.
 *
 *     FileSignature signature{.content = text, .digest = hash, .signingTime = now, ...};
 *     signature.signature = Sign(ToBeSigned(signature));
 *     Bytes document = Encode(signature);
 */
struct FileSignature {
    ByteView content = nullptr;                   // null: a detached signature
    ByteView digest = nullptr;                    // of the content; may be null without signed attributes
    std::optional<LibraryTime> signingTime = {};  // may be absent without signed attributes
    Algorithm digestAlgorithm = {};               //
    ByteView signerCertificate = nullptr;         // BER; source of issuer and serial number, isn't put in
    std::vector<ByteView> certificates = {};      // DER, to be put in; those already there are left out
    Algorithm signatureAlgorithm = {};            //
    bool useSignedAttributes = true;              // false: the content itself is signed
    RsaAttributes extraAttributes = nullptr;      // further signed attributes, may be null
    ByteView signature = nullptr;                 //
    ByteView existingSignature = nullptr;         // the document to add a signer to; null: a new one
};

/** TimeStampRequest is TimeStampReq (RFC 3161, 2.4.1). Empty members, and null ones, are absent. */
struct TimeStampRequest {
    int32_t version = 1;
    Algorithm hashAlgorithm = {};
    Bytes hash = {};
    Oid policy = {};
    Bytes nonce = {};  // big-endian content bytes of an INTEGER, as those below
    bool certificateWanted = false;
    Handle<X509Extensions> extensions = {};
};

/** TimeStampResponse is TimeStampResp (RFC 3161, 2.4.2). status: 0 and 1 come with a token. failInfo: a flag word. */
struct TimeStampResponse {
    int32_t status = 0;
    Handle<PKIFreeText> statusString = {};
    uint32_t failInfo = 0;
    Handle<CmsContentInfo> token = {};
};

/** TimeStampInfo is TSTInfo (RFC 3161, 2.4.2), the content of a token. */
struct TimeStampInfo {
    int32_t version = 1;
    Oid policy = {};
    Algorithm hashAlgorithm = {};
    Bytes hash = {};
    Bytes serialNumber = {};
    LibraryPreciseTime genTime = {};
    Accuracy accuracy = {};
    bool ordering = false;
    Bytes nonce = {};
    Handle<X509GeneralName> tsa = {};
    Handle<X509Extensions> extensions = {};
};

}  // namespace types

namespace detail {

// Members that may be absent, as arguments.
inline ByteView Given(const Bytes& bytes) { return bytes.empty() ? ByteView() : ByteView(bytes); }
inline const uint8_t* Given(const Oid& oid) { return oid.empty() ? nullptr : oid.data(); }

}  // namespace detail

namespace nothrow {

/**
 * ToBeSigned returns the bytes that the signature of a document is made of: those of the signed attributes, and without
 * them the content. In a detached signature that is none of the members: nothing is returned, sign the content itself.
 */
inline Result<Bytes> ToBeSigned(const FileSignature& signature) {
    if (!signature.useSignedAttributes) return Bytes(signature.content);
    return nothrow::Get(GetCmsSignedDataToBeSignedPart2, signature.digest, signature.signingTime,
                        signature.extraAttributes);
}

/** Encode makes a message of a struct, with the statuses of the function that it stands for. */
inline Result<Bytes> Encode(const FileSignature& signature) {
    std::vector<const uint8_t*> certificates;
    std::vector<uint32_t> lengths;
    for (const ByteView certificate : signature.certificates) {
        if (certificate.size() > UINT32_MAX) return detail::OwnFailure(StatusBadArgument, "Encode");
        certificates.push_back(certificate.data());
        lengths.push_back(static_cast<uint32_t>(certificate.size()));
    }
    const auto& digest = signature.digestAlgorithm;
    const auto& algorithm = signature.signatureAlgorithm;
    return nothrow::Get(CreateCmsFileSignature2, signature.content, signature.digest, signature.signingTime, digest.oid,
                        detail::Given(digest.parameters), signature.signerCertificate, certificates.data(),
                        static_cast<const uint32_t*>(lengths.data()), lengths.size(), algorithm.oid,
                        detail::Given(algorithm.parameters), signature.useSignedAttributes, signature.extraAttributes,
                        nullptr, signature.signature, signature.existingSignature);
}

inline Result<Bytes> Encode(const TimeStampRequest& request) {
    return nothrow::Get(EncodeTimeStampReq, request.version, request.hashAlgorithm.oid,
                        detail::Given(request.hashAlgorithm.parameters), request.hash, detail::Given(request.policy), 0,
                        detail::Given(request.nonce), request.certificateWanted, request.extensions);
}

inline Result<Bytes> Encode(const TimeStampResponse& response) {
    return nothrow::Get(EncodeTimeStampResp, response.status, response.statusString, response.failInfo, response.token);
}

inline Result<Bytes> Encode(const TimeStampInfo& info) {
    return nothrow::Get(EncodeTSTInfo, info.version, info.policy, info.hashAlgorithm.oid,
                        detail::Given(info.hashAlgorithm.parameters), info.hash, info.serialNumber, info.genTime,
                        info.accuracy, info.ordering, detail::Given(info.nonce), info.tsa, info.extensions);
}

/** DecodeTimeStampRequest and the two after it read a message into a struct. */
inline Result<TimeStampRequest> DecodeTimeStampRequest(ByteView bytes) {
    TimeStampRequest r;
    const Result<void> read = detail::Store(DecodeTimeStampReq,
                                            std::tie(r.version, r.hashAlgorithm.oid, r.hashAlgorithm.parameters, r.hash,
                                                     r.policy, r.nonce, r.certificateWanted, r.extensions),
                                            bytes);
    if (!read) return read.failure();
    return r;
}

inline Result<TimeStampResponse> DecodeTimeStampResponse(ByteView bytes) {
    TimeStampResponse r;
    const Result<void> read =
        detail::Store(DecodeTimeStampResp, std::tie(r.status, r.statusString, r.failInfo, r.token), bytes);
    if (!read) return read.failure();
    return r;
}

inline Result<TimeStampInfo> DecodeTimeStampInfo(ByteView bytes) {
    TimeStampInfo i;
    const Result<void> read =
        detail::Store(DecodeTSTInfo,
                      std::tie(i.version, i.policy, i.hashAlgorithm.oid, i.hashAlgorithm.parameters, i.hash,
                               i.serialNumber, i.genTime, i.accuracy, i.ordering, i.nonce, i.tsa, i.extensions),
                      bytes);
    if (!read) return read.failure();
    return i;
}

}  // namespace nothrow

#if defined(__cpp_exceptions)
inline Bytes ToBeSigned(const FileSignature& signature) { return nothrow::ToBeSigned(signature).value(); }
inline Bytes Encode(const FileSignature& signature) { return nothrow::Encode(signature).value(); }
inline Bytes Encode(const TimeStampRequest& request) { return nothrow::Encode(request).value(); }
inline Bytes Encode(const TimeStampResponse& response) { return nothrow::Encode(response).value(); }
inline Bytes Encode(const TimeStampInfo& info) { return nothrow::Encode(info).value(); }
inline TimeStampRequest DecodeTimeStampRequest(ByteView bytes) {
    return nothrow::DecodeTimeStampRequest(bytes).value();
}
inline TimeStampResponse DecodeTimeStampResponse(ByteView bytes) {
    return nothrow::DecodeTimeStampResponse(bytes).value();
}
inline TimeStampInfo DecodeTimeStampInfo(ByteView bytes) { return nothrow::DecodeTimeStampInfo(bytes).value(); }
#endif

}  // namespace tlvforge

#endif
