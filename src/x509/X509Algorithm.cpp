#include "tlvforge/algorithms.h"

#include <string.h>

#include "engine/failure.h"
#include "engine/nodes.h"
#include "engine/oids.h"
#include "engine/outputs.h"
#include "tlvforge/asn1.h"
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
Status DecodeGostParameters(Tree<Parameters>* parameters, const uint8_t* bytes, uint32_t length) {
    return parameters->Decode(bytes, length) == StatusOk ? StatusOk : Fail(StatusBadEncoding);
}

// The last failure is the result.
template <class Parameters>
Status DecodeParameterOids(const uint8_t* bytes, uint32_t length, Output publicKey, Output digest, Output encryption) {
    Tree<Parameters> parameters;
    const Status decoded = DecodeGostParameters(&parameters, bytes, length);
    if (decoded != StatusOk) return decoded;
    const Status first = GetAsn1Oid(parameters->publicKeyParamSet, publicKey.buffer, publicKey.length);
    const Status second = GetAsn1Oid(parameters->digestParamSet, digest.buffer, digest.length);
    const Status third = GetAsn1Oid(parameters->encryptionParamSet, encryption.buffer, encryption.length);
    if (third != StatusOk) return third;
    return second != StatusOk ? second : first;
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

// A record over the caller's bytes, for the encoder, which only reads.
Asn1Value ViewOid(const uint8_t* oid) { return {Asn1KindObjectIdentifier, oid[0], const_cast<uint8_t*>(oid + 1)}; }

}  // namespace

namespace tlvforge {

Status GetAlgorithmIdentifierOid(const AlgorithmIdentifier* record, uint8_t* oid, uint32_t* length) {
    if (record == nullptr) return Fail(StatusBadArgument);
    if (length == nullptr) return oid == nullptr ? StatusOk : Fail(StatusBadArgument);
    if (record->algorithm == nullptr) return Fail(StatusAbsent);
    return GetAsn1Oid(record->algorithm, oid, length);
}

Status GetAlgorithmIdentifierParameters(const AlgorithmIdentifier* record, uint8_t* parameters, uint32_t* length) {
    if (record == nullptr) return Fail(StatusBadArgument);
    if (length == nullptr) return parameters == nullptr ? StatusOk : Fail(StatusBadArgument);
    if (record->parameters != nullptr) return GetAsn1AnyValue(record->parameters, parameters, length);
    *length = 0;
    return StatusOk;
}

Status GetAlgorithmIdentifierOidAndParameters(const AlgorithmIdentifier* record, uint8_t* oid, uint32_t* oidLength,
                                              uint8_t* parameters, uint32_t* parametersLength) {
    if (record == nullptr) return Fail(StatusAbsent);
    const Status first = GetAlgorithmIdentifierOid(record, oid, oidLength);
    const Status second = GetAlgorithmIdentifierParameters(record, parameters, parametersLength);
    // Every higher status counts as "too small", an absent OID too: callers expect this one number.
    if (first >= StatusBufferTooSmall || second >= StatusBufferTooSmall) return Fail(StatusBufferTooSmall);
    return first != StatusOk ? first : second;
}

Status SetAlgorithmIdentifierOid(AlgorithmIdentifier* record, const uint8_t* oid) {
    if (AnyNull(record, oid)) return Fail(StatusBadArgument);
    return ReplaceOidField(&record->algorithm, oid);
}

Status SetAlgorithmIdentifierById(AlgorithmIdentifier* record, uint32_t id) {
    if (record == nullptr) return Fail(StatusBadArgument);
    FreeField(&record->algorithm);
    const uint8_t* oid = nullptr;
    const Status status = FindOid(kAlgorithmIds, id, &oid);
    return status != StatusOk ? status : ReplaceOidField(&record->algorithm, oid);
}

Status SetAlgorithmIdentifierParameters(AlgorithmIdentifier* record, const uint8_t* parameters, uint32_t length) {
    if (record == nullptr) return Fail(StatusBadArgument);
    const bool given = parameters != nullptr && length != 0;
    Asn1Any* copy = given ? AllocAsn1Any(parameters[0] & 31, parameters, length) : nullptr;
    FreeField(&record->parameters);
    record->parameters = copy;
    return given && copy == nullptr ? Fail(StatusOutOfMemory) : StatusOk;
}

Status SetAlgorithmIdentifierOidAndParameters(AlgorithmIdentifier* record, const uint8_t* oid,
                                              const uint8_t* parameters, uint32_t length) {
    const Status status = SetAlgorithmIdentifierOid(record, oid);
    return status != StatusOk ? status : SetAlgorithmIdentifierParameters(record, parameters, length);
}

Status SetAlgorithmIdentifierIdAndParameters(AlgorithmIdentifier* record, uint32_t id, const uint8_t* parameters,
                                             uint32_t length) {
    const Status status = SetAlgorithmIdentifierById(record, id);
    return status != StatusOk ? status : SetAlgorithmIdentifierParameters(record, parameters, length);
}

}  // namespace tlvforge

Status FindAlgIdByOid(const uint8_t* oid, uint32_t* id) { return FindId(kAlgorithmIds, oid, id); }

Status GetPublicKeyAlgorithmOid(uint32_t id, uint8_t* oid, uint32_t* length) {
    return GiveOid(kAlgorithmIds, id, oid, length);
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
    Status status = DecodeGostParameters(&parameters, bytes, length);
    if (status != StatusOk) return status;
    status = FindIdOfValue(kPublicKeyParamSets, parameters->publicKeyParamSet, publicKeyParamSet);
    if (status != StatusOk) return status;
    status = FindIdOfValue(kDigestParamSets, parameters->digestParamSet, digestParamSet);
    if (status != StatusOk) return status;
    return FindIdOfValue(kEncryptionParamSets, parameters->encryptionParamSet, encryptionParamSet);
}

Status EncodeAlgorithmGostR34102001Parameters(uint8_t parametersForm, uint32_t publicKeyParamSet,
                                              uint32_t digestParamSet, uint32_t encryptionParamSet, uint8_t* buffer,
                                              uint32_t* length) {
    if (length == nullptr) return Fail(StatusBadArgument);
    const uint8_t* publicKeyOid = nullptr;
    const uint8_t* digestOid = nullptr;
    const uint8_t* encryptionOid = nullptr;
    Status status = StatusOk;
    if (parametersForm == ParametersFormGost) {
        status = FindOid(kPublicKeyParamSets, publicKeyParamSet, &publicKeyOid);
        if (status == StatusOk) status = FindOid(kDigestParamSets, digestParamSet, &digestOid);
        if (status == StatusOk) status = FindOid(kEncryptionParamSets, encryptionParamSet, &encryptionOid);
    }
    if (status != StatusOk) return status;
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
    return decode(bytes, length, {publicKeyOid, publicKeyOidLength}, {digestOid, digestOidLength},
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
        return GiveBytes(kNullParameters, sizeof kNullParameters, buffer, length);
    }
    if (parametersForm == ParametersFormAbsent) {
        *length = 0;
        return StatusOk;
    }
    if (parametersForm != ParametersFormGost || AnyNull(publicKeyOid, digestOid)) return Fail(StatusBadArgument);
    Asn1Value publicKey = ViewOid(publicKeyOid);
    Asn1Value digest = ViewOid(digestOid);
    Asn1Value encryption = encryptionOid != nullptr ? ViewOid(encryptionOid) : Asn1Value{};
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
    const Status status = EncodeAlgorithmGostR34102001Parameters(parametersForm, publicKeyParamSet, digestParamSet,
                                                                 encryptionParamSet, parameters, &length);
    if (status != StatusOk) return status;
    return SetAlgorithmIdentifierIdAndParameters(record, algorithmId, parameters, length);
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
    const Status decoded = info.Decode(bytes, length);
    if (decoded != StatusOk) return decoded;
    const Status oidStatus = GetAlgorithmIdentifierOid(info->algorithm, oid, oidLength);
    const Status keyStatus = GetSubjectPublicKeyInfoPublicKey(info.Get(), key, keyLength);
    const Status parametersStatus = GetAlgorithmIdentifierParameters(info->algorithm, parameters, parametersLength);
    if (keyStatus != StatusOk) return keyStatus;
    return parametersStatus != StatusOk ? parametersStatus : oidStatus;
}

Status GetSubjectPublicKeyInfoPublicKey(const SubjectPublicKeyInfo* info, uint8_t* key, uint32_t* length) {
    if (AnyNull(info, length)) return Fail(StatusBadArgument);
    if (info->subjectPublicKey == nullptr) return Fail(StatusAbsent);
    return GetAsn1BitString(info->subjectPublicKey, nullptr, key, length);
}

// The two generations of keys are wrapped alike.
decltype(EncodeGostR34102001PublicKey) EncodeGostR34102012PublicKey
    __attribute__((alias("EncodeGostR34102001PublicKey")));
decltype(DecodePublicKeyGostR34102001) DecodePublicKeyGostR34102012
    __attribute__((alias("DecodePublicKeyGostR34102001")));
