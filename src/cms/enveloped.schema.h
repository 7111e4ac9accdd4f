// EnvelopedData with its key transport recipient (RFC 5652, 6), and the GOST structures that go into them (RFC 4357,
// 8.1; RFC 4490, 4.2): the items, and the records that lie over them.
#pragma once

#include "cms/cms.schema.h"
#include "tlvforge/enveloped.h"

struct KeyTrans {
    Asn1Value* version;
    tlvforge::EntityIdentifier* rid;
    AlgorithmIdentifier* keyEncryptionAlgorithm;
    Asn1Value* encryptedKey;
};

namespace tlvforge {

struct OriginatorInfo {
    CertificateSet* certs;
    RevocationInfoChoices* crls;
};

struct RecipientInfo : Asn1Choice {};
struct RecipientInfos : ListOf<RecipientInfo> {};

struct EncryptedContentInfo {
    Asn1Value* contentType;
    AlgorithmIdentifier* contentEncryptionAlgorithm;
    Asn1Value* encryptedContent;
};

struct Gost2814789Parameters {
    Asn1Value* iv;
    Asn1Value* encryptionParamSet;
};

struct SessionEncryptedKey {
    Asn1Value* encryptedKey;
    Asn1Value* maskKey;
    Asn1Value* macKey;
};

struct TransportParameters {
    Asn1Value* encryptionParamSet;
    SubjectPublicKeyInfo* ephemeralPublicKey;
    Asn1Value* ukm;
};

}  // namespace tlvforge

struct CmsEnvelopedData {
    Asn1Value* version;
    tlvforge::OriginatorInfo* originatorInfo;
    tlvforge::RecipientInfos* recipientInfos;
    tlvforge::EncryptedContentInfo* encryptedContentInfo;
    RsaAttributesCell unprotectedAttrs;
};

struct GostR3410KeyTransport {
    tlvforge::SessionEncryptedKey* sessionEncryptedKey;
    tlvforge::TransportParameters* transportParameters;
};

namespace tlvforge::schema {
// clang-format off

template <> struct Schema<OriginatorInfo> : Record<
    Field<&OriginatorInfo::certs, Optional<Implicit<0, CertificateSet>>>,
    Field<&OriginatorInfo::crls, Optional<Implicit<1, RevocationInfoChoices>>>> {};

template <> struct Schema<KeyTrans> : Record<
    Field<&KeyTrans::version, Integer>,
    Field<&KeyTrans::rid, EntityIdentifier>,
    Field<&KeyTrans::keyEncryptionAlgorithm, AlgorithmIdentifier>,
    Field<&KeyTrans::encryptedKey, OctetString>> {};

// The selector is the kind of recipient less one.
template <> struct Schema<RecipientInfo> : Choice<
    KeyTrans,                   // ktri
    ImplicitConstructedAny<1>,  // kari
    ImplicitConstructedAny<2>,  // kekri
    ImplicitConstructedAny<3>,  // pwri
    ImplicitConstructedAny<4>> {};  // ori

template <> struct Schema<RecipientInfos> : SetOf<RecipientInfo> {};

template <> struct Schema<EncryptedContentInfo> : Record<
    Field<&EncryptedContentInfo::contentType, ObjectIdentifier>,
    Field<&EncryptedContentInfo::contentEncryptionAlgorithm, AlgorithmIdentifier>,
    Field<&EncryptedContentInfo::encryptedContent, Optional<Implicit<0, OctetString>>>> {};

template <> struct Schema<CmsEnvelopedData> : Record<
    Field<&CmsEnvelopedData::version, Integer>,
    Field<&CmsEnvelopedData::originatorInfo, Optional<Implicit<0, OriginatorInfo>>>,
    Field<&CmsEnvelopedData::recipientInfos, RecipientInfos>,
    Field<&CmsEnvelopedData::encryptedContentInfo, EncryptedContentInfo>,
    Field<&CmsEnvelopedData::unprotectedAttrs, Optional<Implicit<1, RsaAttributeList>>>> {};

template <> struct Schema<Gost2814789Parameters> : Record<
    Field<&Gost2814789Parameters::iv, OctetString>,
    Field<&Gost2814789Parameters::encryptionParamSet, ObjectIdentifier>> {};

template <> struct Schema<SessionEncryptedKey> : Record<
    Field<&SessionEncryptedKey::encryptedKey, OctetString>,
    Field<&SessionEncryptedKey::maskKey, Optional<Implicit<0, OctetString>>>,
    Field<&SessionEncryptedKey::macKey, OctetString>> {};

template <> struct Schema<TransportParameters> : Record<
    Field<&TransportParameters::encryptionParamSet, ObjectIdentifier>,
    Field<&TransportParameters::ephemeralPublicKey, Optional<Implicit<0, SubjectPublicKeyInfo>>>,
    Field<&TransportParameters::ukm, OctetString>> {};

template <> struct Schema<GostR3410KeyTransport> : Record<
    Field<&GostR3410KeyTransport::sessionEncryptedKey, SessionEncryptedKey>,
    Field<&GostR3410KeyTransport::transportParameters, Optional<Implicit<0, TransportParameters>>>> {};

// clang-format on
}  // namespace tlvforge::schema
