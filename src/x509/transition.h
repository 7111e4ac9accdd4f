// Forms that are on their way out: see engine/access.h and x509/fields.h for the ones that stay.
#pragma once

#include "engine/list_cells.h"
#include "x509/fields.h"

namespace tlvforge {

using Input = Bytes;

inline Status GetOptionalValue(const void* value, uint8_t* buffer, uint32_t* length) {
    return GetOptionalBytes(value, {buffer, length});
}

class Outputs {
public:
    template <class Function, class... Arguments>
    void Then(Function function, Arguments... arguments) {
        if (status_ != StatusOk && status_ != StatusBufferTooSmall) return;
        const Status status = function(arguments...);
        if (status != StatusOk) status_ = status;
    }

    Status Result() const { return status_; }

private:
    Status status_ = StatusOk;
};

template <class... Reads>
Status ReadEach(Reads... reads) {
    return ReadOutputs(OutputRule::kPastSmallBuffers, reads...);
}

inline Status LendName(Name* slot, X509Name** name, Place place = Place::Here()) {
    return GetName({slot, place}, name);
}
inline Status CopyNameInto(Name* slot, const X509Name* name, Place place = Place::Here()) {
    return CopyName({slot, place}, name);
}
inline Status GetTimeField(const Time* slot, LibraryTime* time, Place place = Place::Here()) {
    return GetTime({const_cast<Time*>(slot), place}, time);
}
inline Status GetBitStringField(const Asn1BitString* field, uint8_t* buffer, uint32_t* length,
                                Place place = Place::Here()) {
    return GetBits({const_cast<Asn1BitString*>(field), place}, buffer, length);
}
inline Status ReplaceBitString(Asn1BitString** field, const uint8_t* bytes, uint32_t length, uint8_t unusedBits,
                               Place place = Place::Here()) {
    return ReplaceBits({{*field, place}, field}, bytes, length, unusedBits);
}
inline Status GetAlgorithm(const AlgorithmIdentifier* field, uint8_t* oid, uint32_t* oidLength, uint8_t* parameters,
                           uint32_t* parametersLength, Place place = Place::Here()) {
    return GetAlgorithm(Part<AlgorithmIdentifier>{const_cast<AlgorithmIdentifier*>(field), place}, {oid, oidLength},
                        {parameters, parametersLength});
}
inline Status SetAlgorithm(AlgorithmIdentifier* field, const uint8_t* oid, const uint8_t* parameters, uint32_t length,
                           Place place = Place::Here()) {
    return SetAlgorithm(Part<AlgorithmIdentifier>{field, place}, oid, {parameters, length});
}
inline Status GetAlgorithmIdentifierOid(const AlgorithmIdentifier* record, uint8_t* oid, uint32_t* length) {
    return GetAlgorithmIdentifierOid(record, {oid, length});
}
inline Status GetAlgorithmIdentifierParameters(const AlgorithmIdentifier* record, uint8_t* parameters,
                                               uint32_t* length) {
    return GetAlgorithmIdentifierParameters(record, {parameters, length});
}
inline Status GetAlgorithmIdentifierOidAndParameters(const AlgorithmIdentifier* record, uint8_t* oid,
                                                     uint32_t* oidLength, uint8_t* parameters,
                                                     uint32_t* parametersLength) {
    return GetAlgorithm(record, oid, oidLength, parameters, parametersLength);
}
inline Status SetAlgorithmIdentifierOidAndParameters(AlgorithmIdentifier* record, const uint8_t* oid,
                                                     const uint8_t* parameters, uint32_t length) {
    return SetAlgorithm(record, oid, parameters, length);
}
inline Status GetPublicKey(const SubjectPublicKeyInfo* info, uint8_t* key, uint32_t* length,
                           Place place = Place::Here()) {
    return GetBits(At<&SubjectPublicKeyInfo::subjectPublicKey>(info, place), key, length);
}
inline Status SetPublicKey(SubjectPublicKeyInfo* info, const uint8_t* key, uint32_t length,
                           Place place = Place::Here()) {
    return ReplaceBits(At<&SubjectPublicKeyInfo::subjectPublicKey>(info, place), key, length);
}
inline AlgorithmIdentifier* AlgorithmOf(const SubjectPublicKeyInfo* info) {
    return info == nullptr ? nullptr : info->algorithm;
}
template <class List>
Status NeedList(List** list, Place place = Place::Here()) {
    if (*list == nullptr) *list = AllocList<List>();
    return *list == nullptr ? Fail(StatusOutOfMemory, place) : StatusOk;
}

}  // namespace tlvforge
