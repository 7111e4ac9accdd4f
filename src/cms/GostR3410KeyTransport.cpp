#include "tlvforge/enveloped.h"

#include "cms/enveloped.schema.h"
#include "x509/fields.h"

using namespace tlvforge;

namespace {

using KeyInfo = SubjectPublicKeyInfo;

// Fields of the two blocks of the structure, and of the ephemeral key in the second.
template <auto Member, class Record>
auto SessionKey(Record* transport, Place place = Place::Here()) {
    return At<&GostR3410KeyTransport::sessionEncryptedKey, Member>(transport, place);
}
template <auto... Members, class Record>
auto Parameters(Record* transport, Place place = Place::Here()) {
    return At<&GostR3410KeyTransport::transportParameters, Members...>(transport, place);
}
template <auto Member, class Record>
auto EphemeralKey(Record* transport, Place place = Place::Here()) {
    return Parameters<&TransportParameters::ephemeralPublicKey, Member>(transport, place);
}

Status EnsureEphemeralKey(GostR3410KeyTransport* transport) {
    if (const Status status = Ensure(&transport->transportParameters)) return status;
    return Ensure(&transport->transportParameters->ephemeralPublicKey);
}

// The key is freed with its algorithm.
Status RemoveEphemeralKey(GostR3410KeyTransport* transport) {
    if (transport->transportParameters != nullptr) FreeField(&transport->transportParameters->ephemeralPublicKey);
    return StatusOk;
}

}  // namespace

Status CreateGostR3410KeyTransport(GostR3410KeyTransport** out) { return CreateTree(out); }

Status DecodeGostR3410KeyTransport(const uint8_t* data, uint32_t length, GostR3410KeyTransport** out) {
    return DecodeTree(data, length, out);
}

Status EncodeGostR3410KeyTransport(const GostR3410KeyTransport* transport, uint8_t* buffer, uint32_t* length) {
    return EncodeTree(transport, buffer, length);
}

Status FreeGostR3410KeyTransport(GostR3410KeyTransport* transport) { return FreeTree(transport); }

Status GetGostR3410KeyTransportEncryptedKey(const GostR3410KeyTransport* transport, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(transport, length)) return Fail(StatusBadArgument);
    return GetBytes(SessionKey<&SessionEncryptedKey::encryptedKey>(transport), buffer, length);
}

Status GetGostR3410KeyTransportMaskKey(const GostR3410KeyTransport* transport, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(transport, length)) return Fail(StatusBadArgument);
    return GetOptionalBytes(SessionKey<&SessionEncryptedKey::maskKey>(transport), buffer, length);
}

Status GetGostR3410KeyTransportMacKey(const GostR3410KeyTransport* transport, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(transport, length)) return Fail(StatusBadArgument);
    return GetBytes(SessionKey<&SessionEncryptedKey::macKey>(transport), buffer, length);
}

Status GetGostR3410KeyTransportEncryptionParamSetOid(const GostR3410KeyTransport* transport, uint8_t* oid,
                                                     uint32_t* length) {
    if (AnyNull(transport, length)) return Fail(StatusBadArgument);
    return GetOid(Parameters<&TransportParameters::encryptionParamSet>(transport), oid, length);
}

Status GetGostR3410KeyTransportUkm(const GostR3410KeyTransport* transport, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(transport, length)) return Fail(StatusBadArgument);
    return GetBytes(Parameters<&TransportParameters::ukm>(transport), buffer, length);
}

Status GetGostR3410KeyTransportEphemeralPublicKey(const GostR3410KeyTransport* transport, uint8_t* buffer,
                                                  uint32_t* length) {
    if (AnyNull(transport, length)) return Fail(StatusBadArgument);
    return GetBits(EphemeralKey<&KeyInfo::subjectPublicKey>(transport), buffer, length);
}

Status GetGostR3410KeyTransportEphemeralPublicKeyAlgorithmOidAndParameters(const GostR3410KeyTransport* transport,
                                                                           uint8_t* oid, uint32_t* oidLength,
                                                                           uint8_t* parameters,
                                                                           uint32_t* parametersLength) {
    if (AnyNull(transport, oidLength)) return Fail(StatusBadArgument);
    return GetAlgorithm(EphemeralKey<&KeyInfo::algorithm>(transport), {oid, oidLength}, {parameters, parametersLength});
}

Status SetGostR3410KeyTransportEncryptedKey(GostR3410KeyTransport* transport, const uint8_t* data, uint32_t length) {
    if (AnyNull(transport, data)) return Fail(StatusBadArgument);
    if (const Status status = Ensure(&transport->sessionEncryptedKey)) return status;
    return SetBytes(SessionKey<&SessionEncryptedKey::encryptedKey>(transport), Asn1KindOctetString, data, length);
}

Status SetGostR3410KeyTransportMaskKey(GostR3410KeyTransport* transport, const uint8_t* data, uint32_t length) {
    if (transport == nullptr) return Fail(StatusBadArgument);
    if (transport->sessionEncryptedKey != nullptr) FreeField(&transport->sessionEncryptedKey->maskKey);
    if (data == nullptr || length == 0) return StatusOk;
    if (const Status status = Ensure(&transport->sessionEncryptedKey)) return status;
    return SetBytes(SessionKey<&SessionEncryptedKey::maskKey>(transport), Asn1KindOctetString, data, length);
}

Status SetGostR3410KeyTransportMacKey(GostR3410KeyTransport* transport, const uint8_t* data, uint32_t length) {
    if (AnyNull(transport, data)) return Fail(StatusBadArgument);
    if (const Status status = Ensure(&transport->sessionEncryptedKey)) return status;
    return SetBytes(SessionKey<&SessionEncryptedKey::macKey>(transport), Asn1KindOctetString, data, length);
}

Status SetGostR3410KeyTransportEncryptionParamSetOid(GostR3410KeyTransport* transport, const uint8_t* oid) {
    if (AnyNull(transport, oid)) return Fail(StatusBadArgument);
    if (const Status status = Ensure(&transport->transportParameters)) return status;
    // A set that is there is emptied, not replaced: see docs/oddities.md.
    const auto paramSet = Parameters<&TransportParameters::encryptionParamSet>(transport);
    const bool filled = paramSet && paramSet->data != nullptr;
    return SetBytes(paramSet, Asn1KindObjectIdentifier, oid + 1, filled ? 0 : oid[0]);
}

Status SetGostR3410KeyTransportEphemeralPublicKey(GostR3410KeyTransport* transport, const uint8_t* data,
                                                  uint32_t length) {
    if (transport == nullptr) return Fail(StatusBadArgument);
    if (data == nullptr) return RemoveEphemeralKey(transport);
    if (const Status status = EnsureEphemeralKey(transport)) return status;
    return ReplaceBits(EphemeralKey<&KeyInfo::subjectPublicKey>(transport), data, length);
}

Status SetGostR3410KeyTransportEphemeralPublicKeyAlgorithmOidAndParameters(GostR3410KeyTransport* transport,
                                                                           const uint8_t* oid,
                                                                           const uint8_t* parameters,
                                                                           uint32_t parametersLength) {
    if (transport == nullptr) return Fail(StatusBadArgument);
    if (oid == nullptr) return RemoveEphemeralKey(transport);
    if (const Status status = EnsureEphemeralKey(transport)) return status;
    if (const Status status = Ensure(EphemeralKey<&KeyInfo::algorithm>(transport).cell)) return status;
    return SetAlgorithm(EphemeralKey<&KeyInfo::algorithm>(transport), oid, {parameters, parametersLength});
}

Status SetGostR3410KeyTransportUkm(GostR3410KeyTransport* transport, const uint8_t* data, uint32_t length) {
    if (AnyNull(transport, data)) return Fail(StatusBadArgument);
    if (const Status status = Ensure(&transport->transportParameters)) return status;
    return SetBytes(Parameters<&TransportParameters::ukm>(transport), Asn1KindOctetString, data, length);
}
