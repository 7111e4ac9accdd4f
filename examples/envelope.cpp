// envelope IN OUT: takes an encrypted message (CMS EnvelopedData, BER or DER) apart and puts it together again, part by
// part, so that whoever could open it still can.
//
// Nothing is decrypted: the parts that are printed and carried over are those that a program with a recipient's key
// works on. The exit code is 0 when the new message was written.

#include <cstdio>
#include <iterator>
#include <stdexcept>
#include <string>

#include "issuing/require.h"
#include "signing/files.h"
#include "usage.h"

using namespace examples;

namespace {

constexpr char kUsage[] =
    "usage: envelope IN OUT\n\n"
    "Takes an encrypted message (CMS EnvelopedData, BER or DER) apart and puts it together again.\n";

using OwnedContentInfo = Owned<CmsContentInfo, FreeCmsContentInfo>;
using OwnedEnvelope = Owned<CmsEnvelopedData, FreeCmsEnvelopedData>;
using OwnedGostKey = Owned<GostR3410KeyTransport, FreeGostR3410KeyTransport>;

// --- Parts that occur at several places ---

std::string Dotted(const Bytes& oid) {
    const auto [status, text] = GetText(ConvertOidToString, oid.data());
    Require(status, "converting an OID");
    return text.c_str();  // without its terminating zero
}

struct Algorithm {
    Bytes oid, parameters;  // no parameters: empty
};

template <class Part, class GetAlgorithm>
Algorithm ReadAlgorithm(const Part& part, GetAlgorithm get) {
    Output oid, parameters;
    const Status status =
        Fetch([&] { return get(part, oid.data, &oid.length, parameters.data, &parameters.length); }, oid, parameters);
    Require(status, "reading an algorithm");
    return {oid.bytes, parameters.bytes};
}

template <class Part, class SetAlgorithm>
void WriteAlgorithm(const Part& part, SetAlgorithm set, const Algorithm& algorithm) {
    const uint8_t* parametersOrNull = algorithm.parameters.empty() ? nullptr : algorithm.parameters.data();
    Require(set(part, algorithm.oid.data(), parametersOrNull, Size(algorithm.parameters)), "setting an algorithm");
}

template <class From, class GetVersion, class To, class SetVersion>
void CopyVersion(const From& from, GetVersion get, const To& to, SetVersion set) {
    int32_t version = 0;
    Require(get(from, &version), "reading a version");
    Require(set(to, static_cast<uint32_t>(version)), "setting a version");
}

template <class From, class GetBytes, class To, class SetBytes>
void CopyBytes(const From& from, GetBytes get, const To& to, SetBytes set) {
    const Bytes bytes = Require(Get(get, from), "reading bytes");
    Require(set(to, bytes.data(), Size(bytes)), "setting bytes");
}

template <class From, class GetOid, class To, class SetOid>
void CopyOid(const From& from, GetOid get, const To& to, SetOid set) {
    Require(set(to, Require(Get(get, from), "reading an OID").data()), "setting an OID");
}

// --- The encrypted key of a recipient ---

// Under a 34.10 key it consists of parts itself (RFC 4490), which a GOST library wants one by one.
Bytes RebuildGostKey(const Bytes& key) {
    OwnedGostKey from, to;
    Require(DecodeGostR3410KeyTransport(key.data(), Size(key), from.Out()), "decoding a GOST key");
    Require(CreateGostR3410KeyTransport(to.Out()), "making a GOST key");
    CopyBytes(from, GetGostR3410KeyTransportEncryptedKey, to, SetGostR3410KeyTransportEncryptedKey);
    CopyBytes(from, GetGostR3410KeyTransportMaskKey, to, SetGostR3410KeyTransportMaskKey);
    CopyBytes(from, GetGostR3410KeyTransportMacKey, to, SetGostR3410KeyTransportMacKey);
    CopyOid(from, GetGostR3410KeyTransportEncryptionParamSetOid, to, SetGostR3410KeyTransportEncryptionParamSetOid);
    CopyBytes(from, GetGostR3410KeyTransportUkm, to, SetGostR3410KeyTransportUkm);
    const Algorithm ephemeral =
        ReadAlgorithm(from, GetGostR3410KeyTransportEphemeralPublicKeyAlgorithmOidAndParameters);
    WriteAlgorithm(to, SetGostR3410KeyTransportEphemeralPublicKeyAlgorithmOidAndParameters, ephemeral);
    CopyBytes(from, GetGostR3410KeyTransportEphemeralPublicKey, to, SetGostR3410KeyTransportEphemeralPublicKey);
    printf("    an ephemeral key, %s, and user keying material\n", Dotted(ephemeral.oid).c_str());
    return Require(Get(EncodeGostR3410KeyTransport, to), "encoding a GOST key");
}

bool IsGostKey(const std::string& keyEncryption) {
    constexpr const char* kAlgorithms[] = {
        "1.2.643.2.2.19",     // 34.10-2001
        "1.2.643.7.1.1.1.1",  // 34.10-2012, 256 bits
        "1.2.643.7.1.1.1.2",  // 34.10-2012, 512 bits
    };
    return std::find(std::begin(kAlgorithms), std::end(kAlgorithms), keyEncryption) != std::end(kAlgorithms);
}

// --- Recipients ---

void CopyIdentifier(KeyTrans* from, KeyTrans* to) {
    X509Name* issuer = nullptr;
    Bytes serial(256), keyId(256);
    uint32_t serialLength = Size(serial), keyIdLength = Size(keyId);
    Require(GetKeyTransRecipientIdentifier(from, &issuer, serial.data(), &serialLength, keyId.data(), &keyIdLength),
            "reading who a recipient is");
    const Status status =
        issuer != nullptr ? SetKeyTransRecipientIdentifierIssuerAndSerialNumber(to, issuer, serial.data(), serialLength)
                          : SetKeyTransRecipientIdentifierSubjectKeyIdentifier(to, keyId.data(), keyIdLength);
    Require(status, "setting who a recipient is");
}

// The message owns the new recipient from the beginning, and lends it.
KeyTrans* AddKeyTrans(CmsEnvelopedData* message) {
    KeyTrans* recipient = nullptr;
    Require(CreateKeyTrans(&recipient), "making a recipient");
    const Status status = AddCmsEnvelopedDataRecipientInfo(message, CmsRecipientKindKeyTransport, recipient);
    if (status != StatusOk) FreeKeyTrans(recipient);
    Require(status, "adding a recipient");
    return recipient;
}

void CopyKeyTrans(KeyTrans* from, CmsEnvelopedData* message) {
    KeyTrans* const to = AddKeyTrans(message);
    CopyVersion(from, GetKeyTransVersion, to, SetKeyTransVersion);
    CopyIdentifier(from, to);
    const Algorithm algorithm = ReadAlgorithm(from, GetKeyTransKeyEncryptionAlgorithmOidAndParameters);
    WriteAlgorithm(to, SetKeyTransKeyEncryptionAlgorithmOidAndParameters, algorithm);
    Bytes key = Require(Get(GetKeyTransEncryptedKey, from), "reading an encrypted key");
    printf("  key transport by %s, %u bytes\n", Dotted(algorithm.oid).c_str(), Size(key));
    if (IsGostKey(Dotted(algorithm.oid))) key = RebuildGostKey(key);
    Require(SetKeyTransEncryptedKey(to, key.data(), Size(key)), "setting an encrypted key");
}

// A recipient of any other kind is one element, which goes over as a whole.
void CopyOther(const void* from, uint32_t kind, CmsEnvelopedData* message) {
    static constexpr Asn1Item kAny = {0, 0, 0, Asn1KindAny, -1, 0, nullptr, 0, nullptr};
    const Bytes element = Require(Get(GetAsn1AnyValue, from), "reading a recipient");
    void* to = nullptr;
    uint32_t consumed = 0;
    Require(Asn1DecodeItem(element.data(), Size(element), &kAny, &to, &consumed), "making a recipient");
    const Status status = AddCmsEnvelopedDataRecipientInfo(message, kind, to);
    if (status != StatusOk) FreeAsn1Object(&kAny, to);
    Require(status, "adding a recipient");
    printf("  recipient of kind %u, %u bytes\n", kind, Size(element));
}

void CopyRecipients(const CmsEnvelopedData* from, CmsEnvelopedData* to) {
    uint32_t count = 0;
    Require(GetCmsEnvelopedDataRecipientInfosCount(from, &count), "counting recipients");
    for (uint32_t i = 0; i < count; ++i) {
        void* recipient = nullptr;
        uint32_t kind = 0;
        Require(GetCmsEnvelopedDataRecipientInfo(from, i, &recipient, &kind), "reaching a recipient");
        if (kind == CmsRecipientKindKeyTransport) {
            CopyKeyTrans(static_cast<KeyTrans*>(recipient), to);
        } else {
            CopyOther(recipient, kind, to);
        }
    }
}

// --- The encrypted content ---

// Initialization vector and parameter set of GOST 28147-89 (RFC 4357).
Bytes RebuildGostParameters(const Bytes& parameters) {
    Output iv, set;
    const Status status = Fetch(
        [&] {
            return DecodeGost2814789Parameters(parameters.data(), Size(parameters), iv.data, &iv.length, set.data,
                                               &set.length);
        },
        iv, set);
    Require(status, "decoding GOST parameters");
    printf("    initialization vector of %u bytes, parameter set %s\n", Size(iv.bytes), Dotted(set.bytes).c_str());
    return Require(Get(EncodeGost2814789Parameters, iv.bytes.data(), Size(iv.bytes), set.bytes.data()),
                   "encoding GOST parameters");
}

void CopyContent(const CmsEnvelopedData* from, CmsEnvelopedData* to) {
    CopyOid(from, GetCmsEnvelopedDataEncryptedContentTypeOid, to, SetCmsEnvelopedDataEncryptedContentTypeOid);
    Algorithm algorithm = ReadAlgorithm(from, GetCmsEnvelopedDataContentEncryptionAlgorithmOidAndParameters);
    printf("  content encrypted by %s\n", Dotted(algorithm.oid).c_str());
    if (Dotted(algorithm.oid) == "1.2.643.2.2.21") algorithm.parameters = RebuildGostParameters(algorithm.parameters);
    WriteAlgorithm(to, SetCmsEnvelopedDataContentEncryptionAlgorithmOidAndParameters, algorithm);
    CopyBytes(from, GetCmsEnvelopedDataEncryptedContent, to, SetCmsEnvelopedDataEncryptedContent);
}

// --- What the originator adds ---

void CopyCertificates(const CmsEnvelopedData* from, CmsEnvelopedData* to) {
    uint32_t count = 0;
    Require(GetCmsEnvelopedDataCertificatesCount(from, &count), "counting certificates");
    for (uint32_t i = 0; i < count; ++i) {
        uint8_t kind = 0;
        const Bytes der = Require(Get(GetCmsEnvelopedDataEncodedCertificate, from, i, &kind), "reading a certificate");
        Require(AddCmsEnvelopedDataEncodedCertificate(to, kind, der.data(), Size(der)), "adding a certificate");
    }
}

RsaAttributes AttributesOf(CmsEnvelopedData* message) {
    RsaAttributes attributes = nullptr;
    Require(GetCmsEnvelopedDataUnprotectedAttributes(message, &attributes), "reaching attributes");
    return attributes;
}

void CopyAttributes(RsaAttributes from, RsaAttributes to) {
    uint32_t count = 0;
    Require(GetRsaAttributesAttributesCount(from, &count), "counting attributes");
    for (uint32_t i = 0; i < count; ++i) {
        const Bytes oid = Require(Get(GetRsaAttributesAttributeOid, from, i), "reading an attribute");
        uint32_t index = 0, valueCount = 0;
        Require(AddRsaAttributesAttribute(to, oid.data(), &index), "adding an attribute");
        Require(GetRsaAttributesAttributeValuesCount(from, i, &valueCount), "counting values");
        for (uint32_t j = 0; j < valueCount; ++j) {
            const Bytes value = Require(Get(GetRsaAttributesAttributeValue, from, i, j), "reading a value");
            Require(AddRsaAttributesAttributeValue(to, index, value.data(), Size(value)), "adding a value");
        }
        printf("  unprotected attribute %s\n", Dotted(oid).c_str());
    }
}

// --- The message ---

OwnedEnvelope CopyEnvelope(const OwnedEnvelope& from) {
    OwnedEnvelope to;
    Require(CreateCmsEnvelopedData(to.Out()), "making enveloped data");
    CopyVersion(from, GetCmsEnvelopedDataVersion, to, SetCmsEnvelopedDataVersion);
    CopyCertificates(from, to);
    CopyRecipients(from, to);
    CopyContent(from, to);
    CopyAttributes(AttributesOf(from), AttributesOf(to));
    return to;
}

Bytes Rebuild(const Bytes& message) {
    OwnedContentInfo from, to;
    Require(DecodeCmsContentInfo(message.data(), Size(message), from.Out()), "decoding a message");
    const Bytes type = Require(Get(GetCmsContentInfoTypeOid, from), "reading the type");
    if (Dotted(type) != "1.2.840.113549.1.7.3") throw std::runtime_error("not enveloped data but " + Dotted(type));
    const Bytes content = Require(Get(GetCmsContentInfoContent, from), "reading the content");
    OwnedEnvelope envelope;
    Require(DecodeCmsEnvelopedData(content.data(), Size(content), envelope.Out()), "decoding enveloped data");
    const Bytes rebuilt = Require(Get(EncodeCmsEnvelopedData, CopyEnvelope(envelope)), "encoding enveloped data");
    Require(CreateCmsContentInfo(to.Out()), "making a message");
    Require(SetCmsContentInfoTypeOid(to, type.data()), "setting the type");
    Require(SetCmsContentInfoContent(to, rebuilt.data(), Size(rebuilt)), "setting the content");
    return Require(Get(EncodeCmsContentInfo, to), "encoding a message");
}

}  // namespace

int main(int count, char** arguments) {
    if (const auto status = AnswerUsage(kUsage, count, arguments, count == 3)) return *status;
    try {
        printf("%s\n", arguments[1]);
        const Bytes message = ReadFile(arguments[1]);
        const Bytes rebuilt = Rebuild(message);
        WriteFile(arguments[2], rebuilt);
        printf("  %s\n", rebuilt == message ? "the same bytes" : "other bytes, as the message wasn't DER");
        return 0;
    } catch (const std::exception& failure) {
        fprintf(stderr, "envelope: %s\n", failure.what());
        return 1;
    }
}
