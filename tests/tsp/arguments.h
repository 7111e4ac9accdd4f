// Time-stamp documents as the arguments that they are read into and written from.
#pragma once

#include "support.h"

namespace timestamps {

using namespace support;

// Documents with all that they can hold. The fields of an info between its time and nonce are accuracy and ordering.
inline const Bytes kNull = Hex("0500"), kHash = Hex("0A0B0C0D"), kNonce = Hex("0080"), kSerial = Hex("1234");
inline const Bytes kSha = OidOf("2.16.840.1.101.3.4.2.1"), kPolicy = OidOf("1.2.3.4.1"), kTrue = Hex("0101FF");
inline const Bytes kStart = Hex("020101"), kImprint = Tlv(48, Tlv(48, Bytes{6} + kSha + kNull) + Tlv(4, kHash));
inline const Bytes kReason = ExtensionTlv("2.5.29.21", kNull);
inline Bytes RequestOf(const Bytes& rest) { return Tlv(48, kStart + kImprint + rest); }
inline Bytes InfoOf(const std::string& time, const Bytes& middle) {
    const Bytes fields = kStart + Bytes{6} + kPolicy + kImprint + Tlv(2, kSerial) + Tlv(24, Text(time));
    return Tlv(48, fields + middle + Tlv(2, kNonce) + Hex("A003820161") + Tlv(0xA1, kReason));
}
inline const Bytes kRequest = RequestOf(Bytes{6} + kPolicy + Tlv(2, kNonce) + kTrue + Tlv(0xA0, kReason));
inline const Bytes kInfo = InfoOf("20190102030405.12Z", Hex("300A 020101 800201F4 810107") + kTrue);

// Owns what a decoder stores in its out-pointer. What stood there before is garbage: nothing may be left of it but by a
// status of 32.
template <class Owner>
Status Hand(Owner& owner, auto decode) {
    auto object = reinterpret_cast<typename Owner::pointer>(uintptr_t{0xBAD});
    const Status status = decode(&object);
    owner.reset(status == StatusBadArgument ? nullptr : object);
    return status;
}
inline const uint8_t* OrNull(const Bytes& bytes) { return bytes.empty() ? nullptr : bytes.data(); }

struct Request {
    int32_t version = 0;
    uint32_t certReq = 9;
    Bytes fields[5];  // hash algorithm, its parameters, hash, policy, nonce
    walk::Owned<FreeX509Extensions> extensions;

    Status Decode(const Bytes& in, uint8_t** to, uint32_t* n) {
        return Hand(extensions, [&](auto handle) {
            return DecodeTimeStampReq(in.data(), Size(in), &version, to[0], &n[0], to[1], &n[1], to[2], &n[2], to[3],
                                      &n[3], to[4], &n[4], &certReq, handle);
        });
    }
    Bytes Write() const {
        const auto& [hashOid, parameters, hash, policy, nonce] = fields;
        return Fetch(EncodeTimeStampReq, uint32_t(version), hashOid.data(), OrNull(parameters), Size(parameters),
                     hash.data(), Size(hash), OrNull(policy), 0u, OrNull(nonce), Size(nonce), certReq,
                     extensions.get());
    }
};

struct TstInfo {
    int32_t version = 0;
    uint32_t ordering = 9;
    Bytes fields[6];  // policy, hash algorithm, its parameters, hash, serial number, nonce
    LibraryPreciseTime genTime{};
    Accuracy accuracy{};
    walk::Owned<FreeX509GeneralName> tsa;
    walk::Owned<FreeX509Extensions> extensions;

    Status Decode(const Bytes& in, uint8_t** to, uint32_t* n) {
        const auto decode = [&](auto name, auto handle) {
            return DecodeTSTInfo(in.data(), Size(in), &version, to[0], &n[0], to[1], &n[1], to[2], &n[2], to[3], &n[3],
                                 to[4], &n[4], &genTime, &accuracy, &ordering, to[5], &n[5], name, handle);
        };
        return Hand(tsa, [&](auto name) { return Hand(extensions, std::bind_front(decode, name)); });
    }
    Bytes Write() const {
        const auto& [policy, hashOid, parameters, hash, serial, nonce] = fields;
        return Fetch(EncodeTSTInfo, uint32_t(version), policy.data(), hashOid.data(), OrNull(parameters),
                     Size(parameters), hash.data(), Size(hash), serial.data(), Size(serial), &genTime, &accuracy,
                     ordering, OrNull(nonce), Size(nonce), tsa.get(), extensions.get());
    }
};

struct Response {
    int32_t status = 0;
    uint32_t failInfo = 9;
    walk::Owned<FreePKIFreeText> text;
    walk::Owned<FreeCmsContentInfo> token;
    Bytes fields[1];  // none

    Status Decode(const Bytes& in, uint8_t**, uint32_t*) {
        const auto decode = [&](auto texts, auto info) {
            return DecodeTimeStampResp(in.data(), Size(in), &status, texts, &failInfo, info);
        };
        return Hand(text, [&](auto texts) { return Hand(token, std::bind_front(decode, texts)); });
    }
    Bytes Write() const { return Fetch(EncodeTimeStampResp, uint32_t(status), text.get(), failInfo, token.get()); }
};

// Asks for the sizes, and reads into buffers of these.
template <class Document>
Status Read(const Bytes& in, Document* document) {
    constexpr size_t kCount = std::extent_v<decltype(document->fields)>;
    uint8_t* to[kCount] = {};
    uint32_t sizes[kCount];
    std::fill_n(sizes, kCount, 9);
    const Status status = document->Decode(in, to, sizes);
    if (status != StatusOk) return status;
    for (size_t i = 0; i < kCount; ++i) {
        document->fields[i] = Bytes(sizes[i]);
        to[i] = document->fields[i].data();
    }
    return document->Decode(in, to, sizes);
}

// What a document is written as from the arguments that it was read into; nothing if it isn't read.
template <class Document>
Bytes Rebuild(const Bytes& in) {
    Document document;
    return Read(in, &document) == StatusOk ? document.Write() : Bytes();
}

}  // namespace timestamps
