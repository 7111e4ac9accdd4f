#include "tlvforge/algorithms.h"

#include <string.h>

#include "engine/alias.h"
#include "engine/views.h"
#include "tlvforge/oid.h"
#include "x509/algorithm.h"

using namespace tlvforge;

namespace {

constexpr OidId kAlgorithmIds[] = {
    {AlgorithmRsaEncryption, Oid<1, 2, 840, 113549, 1, 1, 1>},
    {AlgorithmMd2WithRsa, Oid<1, 2, 840, 113549, 1, 1, 2>},
    {AlgorithmMd5WithRsa, Oid<1, 2, 840, 113549, 1, 1, 4>},
    {AlgorithmSha1WithRsa, Oid<1, 2, 840, 113549, 1, 1, 5>},
    {AlgorithmGostR341194WithGostR34102001, Oid<1, 2, 643, 2, 2, 3>},
    {AlgorithmGostR341194WithGostR341094, Oid<1, 2, 643, 2, 2, 4>},
    {AlgorithmGostR34102001, Oid<1, 2, 643, 2, 2, 19>},
    {AlgorithmGostR341094, Oid<1, 2, 643, 2, 2, 20>},
    {AlgorithmGost2814789, Oid<1, 2, 643, 2, 2, 21>},
    {AlgorithmGostR341194, Oid<1, 2, 643, 2, 2, 9>},
    {AlgorithmGostR34102012Key256, Oid<1, 2, 643, 7, 1, 1, 1, 1>},
    {AlgorithmGostR34102012Key512, Oid<1, 2, 643, 7, 1, 1, 1, 2>},
    {AlgorithmGostR34102012Signature256, Oid<1, 2, 643, 7, 1, 1, 3, 2>},
    {AlgorithmGostR34102012Signature512, Oid<1, 2, 643, 7, 1, 1, 3, 3>},
};

constexpr OidId kPublicKeyParamSets[] = {
    {PublicKeySet2001Test, Oid<1, 2, 643, 2, 2, 35, 0>},      {PublicKeySet2001A, Oid<1, 2, 643, 2, 2, 35, 1>},
    {PublicKeySet2001B, Oid<1, 2, 643, 2, 2, 35, 2>},         {PublicKeySet2001C, Oid<1, 2, 643, 2, 2, 35, 3>},
    {PublicKeySet2001ExchangeA, Oid<1, 2, 643, 2, 2, 36, 0>}, {PublicKeySet2001ExchangeB, Oid<1, 2, 643, 2, 2, 36, 1>},
    {PublicKeySet256Test, Oid<1, 2, 643, 7, 1, 2, 1, 1, 0>},  {PublicKeySet256A, Oid<1, 2, 643, 7, 1, 2, 1, 1, 1>},
    {PublicKeySet512Test, Oid<1, 2, 643, 7, 1, 2, 1, 2, 0>},  {PublicKeySet512A, Oid<1, 2, 643, 7, 1, 2, 1, 2, 1>},
    {PublicKeySet512B, Oid<1, 2, 643, 7, 1, 2, 1, 2, 2>},     {PublicKeySet512C, Oid<1, 2, 643, 7, 1, 2, 1, 2, 3>},
};

constexpr OidId kDigestParamSets[] = {
    {DigestSet94Test, Oid<1, 2, 643, 2, 2, 30, 0>},
    {DigestSet94, Oid<1, 2, 643, 2, 2, 30, 1>},
    {DigestSet2012_256, Oid<1, 2, 643, 7, 1, 1, 2, 2>},
    {DigestSet2012_512, Oid<1, 2, 643, 7, 1, 1, 2, 3>},
};

constexpr OidId kEncryptionParamSets[] = {
    {EncryptionSet89Test, Oid<1, 2, 643, 2, 2, 31, 0>},
    {EncryptionSet89, Oid<1, 2, 643, 2, 2, 31, 1>},
    {2, Oid<1, 2, 643, 2, 2, 31, 2>},
    {3, Oid<1, 2, 643, 2, 2, 31, 3>},
    {4, Oid<1, 2, 643, 2, 2, 31, 4>},
    {5, Oid<1, 2, 643, 2, 2, 31, 5>},
    {6, Oid<1, 2, 643, 2, 2, 31, 6>},
    {7, Oid<1, 2, 643, 2, 2, 31, 7>},
    {EncryptionSet2012, Oid<1, 2, 643, 7, 1, 2, 5, 1, 1>},
};

constexpr uint8_t kNullParameters[] = {Asn1KindNull, 0};

uint8_t FormOf(const uint8_t* bytes, uint32_t length) {
    if (bytes == nullptr || length == 0) return ParametersFormAbsent;
    const bool null = length == sizeof kNullParameters && memcmp(bytes, kNullParameters, length) == 0;
    return null ? ParametersFormNull : ParametersFormGost;
}

// Whatever the decoder finds wrong, the parameters are not the GOST ones.
template <class Parameters>
Status DecodeGostParameters(Tree<Parameters>* parameters, Bytes bytes) {
    return parameters->Decode(bytes.data, bytes.length) == StatusOk ? StatusOk : Fail(StatusBadEncoding);
}

template <class Parameters>
Status DecodeParameterOids(Bytes bytes, Output publicKey, Output digest, Output encryption) {
    Tree<Parameters> parameters;
    if (const Status status = DecodeGostParameters(&parameters, bytes)) return status;
    return ReadOutputs(
        OutputRule::kAllLast,
        [&] { return GetAsn1Oid(parameters->publicKeyParamSet, publicKey.buffer, publicKey.length); },
        [&] { return GetAsn1Oid(parameters->digestParamSet, digest.buffer, digest.length); },
        [&] { return GetAsn1Oid(parameters->encryptionParamSet, encryption.buffer, encryption.length); });
}

bool Is2001(uint32_t algorithmId) { return algorithmId == AlgorithmGostR34102001; }

bool HasGostParameters(uint32_t algorithmId) {
    return Is2001(algorithmId) || algorithmId == AlgorithmGostR34102012Key256 ||
           algorithmId == AlgorithmGostR34102012Key512;
}

template <uint32_t Count>
Status FindIdOfValue(const OidId (&table)[Count], const Asn1Value* oid, uint32_t* id) {
    for (const OidId& row : table) {
        if (IsOidAndAsn1ObjectIdentifierEquals(row.oid, oid) == 0) continue;
        *id = row.id;
        return StatusOk;
    }
    return Fail(StatusUnknownOid);
}

}  // namespace

namespace tlvforge {

Status GetAlgorithmIdentifierOid(const AlgorithmIdentifier* record, Output oid) {
    if (record == nullptr) return Fail(StatusBadArgument);
    if (oid.length == nullptr) return oid.buffer == nullptr ? StatusOk : Fail(StatusBadArgument);
    return GetOid(At<&AlgorithmIdentifier::algorithm>(record), oid.buffer, oid.length);
}

Status GetAlgorithmIdentifierParameters(const AlgorithmIdentifier* record, Output parameters) {
    if (record == nullptr) return Fail(StatusBadArgument);
    if (parameters.length == nullptr) return parameters.buffer == nullptr ? StatusOk : Fail(StatusBadArgument);
    if (record->parameters != nullptr) return GetAsn1AnyValue(record->parameters, parameters.buffer, parameters.length);
    *parameters.length = 0;
    return StatusOk;
}

Status SetAlgorithmIdentifierById(AlgorithmIdentifier* record, uint32_t id) {
    if (record == nullptr) return Fail(StatusBadArgument);
    FreeField(&record->algorithm);
    const uint8_t* oid = nullptr;
    if (const Status status = FindOid(kAlgorithmIds, id, &oid)) return status;
    return ReplaceOidField(&record->algorithm, oid);
}

Status SetAlgorithmIdentifierParameters(AlgorithmIdentifier* record, Bytes parameters) {
    if (record == nullptr) return Fail(StatusBadArgument);
    const bool given = parameters.data != nullptr && parameters.length != 0;
    // Copied first: the parameters may be the record's own.
    Asn1Any* copy = given ? AllocAsn1Any(parameters.data[0] & 31, parameters.data, parameters.length) : nullptr;
    FreeField(&record->parameters);
    record->parameters = copy;
    return given && copy == nullptr ? Fail(StatusOutOfMemory) : StatusOk;
}

Status GetAlgorithm(const Part<AlgorithmIdentifier>& field, Output oid, Output parameters) {
    if (!field) return field.Absent();
    const Status first = GetAlgorithmIdentifierOid(field.node, oid);
    const Status second = GetAlgorithmIdentifierParameters(field.node, parameters);
    // Every higher status counts as a small buffer, an absent OID too: see docs/oddities.md.
    if (first >= StatusBufferTooSmall || second >= StatusBufferTooSmall) return Fail(StatusBufferTooSmall);
    return first != StatusOk ? first : second;
}

Status SetAlgorithm(const Part<AlgorithmIdentifier>& field, const uint8_t* oid, Bytes parameters) {
    if (!field) return field.Absent();
    if (const Status status = ReplaceOidField(&field.node->algorithm, oid)) return status;
    return SetAlgorithmIdentifierParameters(field.node, parameters);
}

Status SetAlgorithmById(const Part<AlgorithmIdentifier>& field, uint32_t id, Bytes parameters) {
    if (!field) return field.Absent();
    if (const Status status = SetAlgorithmIdentifierById(field.node, id)) return status;
    return SetAlgorithmIdentifierParameters(field.node, parameters);
}

Status SetGostAlgorithm(const Part<AlgorithmIdentifier>& field, uint32_t algorithmId, const GostSets& sets) {
    if (!field) return field.Absent();
    return SetAlgorithmGostR34102001AndParameters(field.node, algorithmId, sets.parametersForm, sets.publicKeyParamSet,
                                                  sets.digestParamSet, sets.encryptionParamSet);
}

}  // namespace tlvforge

Status FindAlgIdByOid(const uint8_t* oid, uint32_t* id) {
    if (AnyNull(oid, id)) return Fail(StatusBadArgument);
    return FindId(kAlgorithmIds, oid, id);
}

Status GetPublicKeyAlgorithmOid(uint32_t id, uint8_t* oid, uint32_t* length) {
    if (length == nullptr) return Fail(StatusBadArgument);
    const uint8_t* found = nullptr;
    if (const Status status = FindOid(kAlgorithmIds, id, &found)) return status;
    return CopyOutOid(found, oid, length);
}

Status DecodeAlgorithmGostR34102001Parameters(const uint8_t* bytes, uint32_t length, uint8_t* parametersForm,
                                              uint32_t* publicKeyParamSet, uint32_t* digestParamSet,
                                              uint32_t* encryptionParamSet) {
    if (parametersForm == nullptr) return Fail(StatusBadArgument);
    *parametersForm = FormOf(bytes, length);
    if (*parametersForm != ParametersFormGost) return StatusOk;
    if (AnyNull(publicKeyParamSet, digestParamSet, encryptionParamSet)) return Fail(StatusBadArgument);
    // Keys of 2012 are read with the default of 2001 as well: a missing encryption set is number 1 for all of them.
    Tree<GostR34102001Parameters> parameters;
    if (const Status status = DecodeGostParameters(&parameters, {bytes, length})) return status;
    return ReadOutputs(
        OutputRule::kUntilFailure,
        [&] { return FindIdOfValue(kPublicKeyParamSets, parameters->publicKeyParamSet, publicKeyParamSet); },
        [&] { return FindIdOfValue(kDigestParamSets, parameters->digestParamSet, digestParamSet); },
        [&] { return FindIdOfValue(kEncryptionParamSets, parameters->encryptionParamSet, encryptionParamSet); });
}

Status EncodeAlgorithmGostR34102001Parameters(uint8_t parametersForm, uint32_t publicKeyParamSet,
                                              uint32_t digestParamSet, uint32_t encryptionParamSet, uint8_t* buffer,
                                              uint32_t* length) {
    if (length == nullptr) return Fail(StatusBadArgument);
    const uint8_t* publicKeyOid = nullptr;
    const uint8_t* digestOid = nullptr;
    const uint8_t* encryptionOid = nullptr;
    if (parametersForm == ParametersFormGost) {
        if (const Status status = FindOid(kPublicKeyParamSets, publicKeyParamSet, &publicKeyOid)) return status;
        if (const Status status = FindOid(kDigestParamSets, digestParamSet, &digestOid)) return status;
        if (const Status status = FindOid(kEncryptionParamSets, encryptionParamSet, &encryptionOid)) return status;
    }
    return EncodeAlgorithmGostR34102001ParametersOid(parametersForm, publicKeyOid, digestOid, encryptionOid, buffer,
                                                     length);
}

Status DecodeAlgorithmGostR3410ParameterOids(uint32_t algorithmId, const uint8_t* bytes, uint32_t length,
                                             uint8_t* parametersForm, uint8_t* publicKeyOid,
                                             uint32_t* publicKeyOidLength, uint8_t* digestOid,
                                             uint32_t* digestOidLength, uint8_t* encryptionOid,
                                             uint32_t* encryptionOidLength) {
    if (AnyNull(parametersForm, publicKeyOidLength, digestOidLength, encryptionOidLength)) {
        return Fail(StatusBadArgument);
    }
    if (!HasGostParameters(algorithmId)) return Fail(StatusBadArgument);
    *parametersForm = FormOf(bytes, length);
    if (*parametersForm != ParametersFormGost) {
        *publicKeyOidLength = *digestOidLength = *encryptionOidLength = 0;
        return StatusOk;
    }
    const auto decode = Is2001(algorithmId) ? DecodeParameterOids<GostR34102001Parameters>
                                            : DecodeParameterOids<GostR34102012Parameters>;
    return decode({bytes, length}, {publicKeyOid, publicKeyOidLength}, {digestOid, digestOidLength},
                  {encryptionOid, encryptionOidLength});
}

Status DecodeAlgorithmGostR34102001ParameterOids(const uint8_t* bytes, uint32_t length, uint8_t* parametersForm,
                                                 uint8_t* publicKeyOid, uint32_t* publicKeyOidLength,
                                                 uint8_t* digestOid, uint32_t* digestOidLength, uint8_t* encryptionOid,
                                                 uint32_t* encryptionOidLength) {
    return DecodeAlgorithmGostR3410ParameterOids(AlgorithmGostR34102001, bytes, length, parametersForm, publicKeyOid,
                                                 publicKeyOidLength, digestOid, digestOidLength, encryptionOid,
                                                 encryptionOidLength);
}

Status DecodeAlgorithmGostR34102012ParameterOids(const uint8_t* bytes, uint32_t length, uint8_t* parametersForm,
                                                 uint8_t* publicKeyOid, uint32_t* publicKeyOidLength,
                                                 uint8_t* digestOid, uint32_t* digestOidLength, uint8_t* encryptionOid,
                                                 uint32_t* encryptionOidLength) {
    return DecodeAlgorithmGostR3410ParameterOids(AlgorithmGostR34102012Key256, bytes, length, parametersForm,
                                                 publicKeyOid, publicKeyOidLength, digestOid, digestOidLength,
                                                 encryptionOid, encryptionOidLength);
}

Status EncodeAlgorithmGostR3410ParametersOid(uint32_t algorithmId, uint8_t parametersForm, const uint8_t* publicKeyOid,
                                             const uint8_t* digestOid, const uint8_t* encryptionOid, uint8_t* buffer,
                                             uint32_t* length) {
    if (length == nullptr || !HasGostParameters(algorithmId)) return Fail(StatusBadArgument);
    if (parametersForm == ParametersFormNull) {
        return CopyOut(kNullParameters, sizeof kNullParameters, buffer, length);
    }
    if (parametersForm == ParametersFormAbsent) {
        *length = 0;
        return StatusOk;
    }
    if (parametersForm != ParametersFormGost || AnyNull(publicKeyOid, digestOid)) return Fail(StatusBadArgument);
    Asn1Value publicKey = ViewOfOid(publicKeyOid), digest = ViewOfOid(digestOid), encryption = ViewOfOid(encryptionOid);
    Asn1Value* const given = encryptionOid != nullptr ? &encryption : nullptr;
    const GostR34102001Parameters of2001 = {&publicKey, &digest, given};
    const GostR34102012Parameters of2012 = {&publicKey, &digest, given};
    return Is2001(algorithmId) ? EncodeTree(&of2001, buffer, length) : EncodeTree(&of2012, buffer, length);
}

Status EncodeAlgorithmGostR34102001ParametersOid(uint8_t parametersForm, const uint8_t* publicKeyOid,
                                                 const uint8_t* digestOid, const uint8_t* encryptionOid,
                                                 uint8_t* buffer, uint32_t* length) {
    return EncodeAlgorithmGostR3410ParametersOid(AlgorithmGostR34102001, parametersForm, publicKeyOid, digestOid,
                                                 encryptionOid, buffer, length);
}

Status EncodeAlgorithmGostR34102012ParametersOid(uint8_t parametersForm, const uint8_t* publicKeyOid,
                                                 const uint8_t* digestOid, const uint8_t* encryptionOid,
                                                 uint8_t* buffer, uint32_t* length) {
    return EncodeAlgorithmGostR3410ParametersOid(AlgorithmGostR34102012Key256, parametersForm, publicKeyOid, digestOid,
                                                 encryptionOid, buffer, length);
}

Status SetAlgorithmGostR34102001AndParameters(AlgorithmIdentifier* record, uint32_t algorithmId, uint8_t parametersForm,
                                              uint32_t publicKeyParamSet, uint32_t digestParamSet,
                                              uint32_t encryptionParamSet) {
    if (record == nullptr) return Fail(StatusBadArgument);
    uint8_t parameters[128];  // three OIDs of the tables need less than 40
    uint32_t length = sizeof parameters;
    if (const Status status = EncodeAlgorithmGostR34102001Parameters(parametersForm, publicKeyParamSet, digestParamSet,
                                                                     encryptionParamSet, parameters, &length)) {
        return status;
    }
    if (const Status status = SetAlgorithmIdentifierById(record, algorithmId)) return status;
    return SetAlgorithmIdentifierParameters(record, {parameters, length});
}

Status EncodeGostR34102001PublicKey(const uint8_t* key, uint32_t keyLength, uint8_t* buffer, uint32_t* length) {
    return EncodeAsn1PrimitiveValue(Asn1KindOctetString, key, keyLength, buffer, length);
}

Status DecodePublicKeyGostR34102001(const uint8_t* bytes, uint32_t length, uint8_t* key, uint32_t* keyLength) {
    return DecodeAsn1PrimitiveValue(Asn1KindOctetString, bytes, length, key, keyLength);
}

Status DecodeSubjectPublicKeyInfo(const uint8_t* bytes, uint32_t length, uint8_t* oid, uint32_t* oidLength,
                                  uint8_t* key, uint32_t* keyLength, uint8_t* parameters, uint32_t* parametersLength) {
    if (AnyNull(bytes, oidLength, keyLength, parametersLength)) return Fail(StatusBadArgument);
    Tree<SubjectPublicKeyInfo> info;
    if (const Status status = info.Decode(bytes, length)) return status;
    return ReadOutputs(
        OutputRule::kAllLast,
        [&] {
            return GetAlgorithmIdentifierOid(info->algorithm, {oid, oidLength});
        },
        [&] {
            return GetAlgorithmIdentifierParameters(info->algorithm, {parameters, parametersLength});
        },
        [&] { return GetSubjectPublicKeyInfoPublicKey(info.Get(), key, keyLength); });
}

Status GetSubjectPublicKeyInfoPublicKey(const SubjectPublicKeyInfo* info, uint8_t* key, uint32_t* length) {
    if (AnyNull(info, length)) return Fail(StatusBadArgument);
    return GetBits(At<&SubjectPublicKeyInfo::subjectPublicKey>(info), key, length);
}

// The two generations of keys are wrapped alike.
TLVFORGE_ALIAS(EncodeGostR34102012PublicKey, EncodeGostR34102001PublicKey);
TLVFORGE_ALIAS(DecodePublicKeyGostR34102012, DecodePublicKeyGostR34102001);
