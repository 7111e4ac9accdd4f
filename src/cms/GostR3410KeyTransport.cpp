#include "tlvforge/enveloped.h"

#include "cms/enveloped.schema.h"
#include "engine/nodes.h"
#include "engine/oids.h"
#include "x509/fields.h"
#include "x509/transition.h"

using namespace tlvforge;

namespace {

// One of the two blocks of the structure.
template <class Block>
using Branch = Block* GostR3410KeyTransport::*;
constexpr Branch<SessionEncryptedKey> kSessionKey = &GostR3410KeyTransport::sessionEncryptedKey;
constexpr Branch<TransportParameters> kParameters = &GostR3410KeyTransport::transportParameters;

// A field of a block; null too where the block is absent.
template <class Block, class Field>
Field* FieldOf(const GostR3410KeyTransport* transport, Block* GostR3410KeyTransport::*branch, Field* Block::*field) {
    return transport->*branch == nullptr ? nullptr : transport->*branch->*field;
}

// Makes a block with every required field empty, where there is none.
template <class Block>
Status Need(Block** block) {
    return *block == nullptr ? CreateTree(block) : StatusOk;
}

template <class Block>
Status GetOctets(const GostR3410KeyTransport* transport, Block* GostR3410KeyTransport::*branch,
                 Asn1Value* Block::*field, uint8_t* buffer, uint32_t* length, Place place = Place::Here()) {
    if (AnyNull(transport, length)) return Fail(StatusBadArgument, place);
    const Asn1Value* value = FieldOf(transport, branch, field);
    return value == nullptr ? Fail(StatusAbsent, place) : GetAsn1Value(value, buffer, length);
}

template <class Block>
Status SetOctets(GostR3410KeyTransport* transport, Block* GostR3410KeyTransport::*branch, Asn1Value* Block::*field,
                 const uint8_t* data, uint32_t length, Place place = Place::Here()) {
    if (AnyNull(transport, data)) return Fail(StatusBadArgument, place);
    Block** block = &(transport->*branch);
    const Status status = Need(block);
    return status == StatusOk ? SetAsn1ValueField(&((*block)->*field), Asn1KindOctetString, data, length) : status;
}

SubjectPublicKeyInfo* EphemeralKeyOf(const GostR3410KeyTransport* transport) {
    return FieldOf(transport, kParameters, &TransportParameters::ephemeralPublicKey);
}

// Both ephemeral setters: without an input they remove the key with its algorithm, and never make a thing for it.
template <class Set>
Status SetEphemeralKey(GostR3410KeyTransport* transport, const uint8_t* input, Set set, Place place = Place::Here()) {
    if (transport == nullptr) return Fail(StatusBadArgument, place);
    TransportParameters** parameters = &transport->transportParameters;
    if (input == nullptr) {
        if (*parameters != nullptr) FreeField(&(*parameters)->ephemeralPublicKey);
        return StatusOk;
    }
    Status status = Need(parameters);
    if (status == StatusOk) status = Need(&(*parameters)->ephemeralPublicKey);
    return status == StatusOk ? set((*parameters)->ephemeralPublicKey) : status;
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
    return GetOctets(transport, kSessionKey, &SessionEncryptedKey::encryptedKey, buffer, length);
}

Status GetGostR3410KeyTransportMaskKey(const GostR3410KeyTransport* transport, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(transport, length)) return Fail(StatusBadArgument);
    const SessionEncryptedKey* key = transport->sessionEncryptedKey;
    if (key == nullptr) return Fail(StatusAbsent);
    if (key->maskKey != nullptr) return GetAsn1Value(key->maskKey, buffer, length);
    *length = 0;
    return StatusOk;
}

Status GetGostR3410KeyTransportMacKey(const GostR3410KeyTransport* transport, uint8_t* buffer, uint32_t* length) {
    return GetOctets(transport, kSessionKey, &SessionEncryptedKey::macKey, buffer, length);
}

Status GetGostR3410KeyTransportEncryptionParamSetOid(const GostR3410KeyTransport* transport, uint8_t* oid,
                                                     uint32_t* length) {
    if (AnyNull(transport, length)) return Fail(StatusBadArgument);
    const Asn1Value* paramSet = FieldOf(transport, kParameters, &TransportParameters::encryptionParamSet);
    return paramSet == nullptr ? Fail(StatusAbsent) : GetAsn1Oid(paramSet, oid, length);
}

Status GetGostR3410KeyTransportUkm(const GostR3410KeyTransport* transport, uint8_t* buffer, uint32_t* length) {
    return GetOctets(transport, kParameters, &TransportParameters::ukm, buffer, length);
}

Status GetGostR3410KeyTransportEphemeralPublicKey(const GostR3410KeyTransport* transport, uint8_t* buffer,
                                                  uint32_t* length) {
    if (AnyNull(transport, length)) return Fail(StatusBadArgument);
    return GetPublicKey(EphemeralKeyOf(transport), buffer, length);
}

Status GetGostR3410KeyTransportEphemeralPublicKeyAlgorithmOidAndParameters(const GostR3410KeyTransport* transport,
                                                                           uint8_t* oid, uint32_t* oidLength,
                                                                           uint8_t* parameters,
                                                                           uint32_t* parametersLength) {
    if (AnyNull(transport, oidLength)) return Fail(StatusBadArgument);
    return GetAlgorithm(AlgorithmOf(EphemeralKeyOf(transport)), oid, oidLength, parameters, parametersLength);
}

Status SetGostR3410KeyTransportEncryptedKey(GostR3410KeyTransport* transport, const uint8_t* data, uint32_t length) {
    return SetOctets(transport, kSessionKey, &SessionEncryptedKey::encryptedKey, data, length);
}

Status SetGostR3410KeyTransportMaskKey(GostR3410KeyTransport* transport, const uint8_t* data, uint32_t length) {
    if (transport == nullptr) return Fail(StatusBadArgument);
    SessionEncryptedKey* key = transport->sessionEncryptedKey;
    if (key != nullptr) FreeField(&key->maskKey);
    if (data == nullptr || length == 0) return StatusOk;
    return SetOctets(transport, kSessionKey, &SessionEncryptedKey::maskKey, data, length);
}

Status SetGostR3410KeyTransportMacKey(GostR3410KeyTransport* transport, const uint8_t* data, uint32_t length) {
    return SetOctets(transport, kSessionKey, &SessionEncryptedKey::macKey, data, length);
}

Status SetGostR3410KeyTransportEncryptionParamSetOid(GostR3410KeyTransport* transport, const uint8_t* oid) {
    if (AnyNull(transport, oid)) return Fail(StatusBadArgument);
    const Status status = Need(&transport->transportParameters);
    if (status != StatusOk) return status;
    Asn1Value** field = &transport->transportParameters->encryptionParamSet;
    // A set that is there is emptied, not replaced. This is intended: callers set it once.
    const bool filled = *field != nullptr && (*field)->data != nullptr;
    return SetAsn1ValueField(field, Asn1KindObjectIdentifier, oid + 1, filled ? 0 : oid[0]);
}

Status SetGostR3410KeyTransportEphemeralPublicKey(GostR3410KeyTransport* transport, const uint8_t* data,
                                                  uint32_t length) {
    return SetEphemeralKey(transport, data, [=](SubjectPublicKeyInfo* key) { return SetPublicKey(key, data, length); });
}

Status SetGostR3410KeyTransportEphemeralPublicKeyAlgorithmOidAndParameters(GostR3410KeyTransport* transport,
                                                                           const uint8_t* oid,
                                                                           const uint8_t* parameters,
                                                                           uint32_t parametersLength) {
    return SetEphemeralKey(transport, oid, [=](SubjectPublicKeyInfo* key) {
        const Status status = Need(&key->algorithm);
        return status == StatusOk ? SetAlgorithm(key->algorithm, oid, parameters, parametersLength) : status;
    });
}

Status SetGostR3410KeyTransportUkm(GostR3410KeyTransport* transport, const uint8_t* data, uint32_t length) {
    return SetOctets(transport, kParameters, &TransportParameters::ukm, data, length);
}
