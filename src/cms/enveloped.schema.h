// EnvelopedData with its key transport recipient (RFC 5652, 6), and the GOST structures that go into them (RFC 4357,
// 8.1; RFC 4490, 4.2): the items, and the records that lie over them.
#pragma once

#include "cms/cms.schema.h"
#include "tlvforge/enveloped.h"

struct KeyTrans {
    Asn1Value* version;
    Asn1Choice* rid;
    AlgorithmIdentifier* keyEncryptionAlgorithm;
    Asn1Value* encryptedKey;
};

namespace tlvforge {

struct OriginatorInfo {
    Asn1List* certs;  // of Asn1Any
    Asn1List* crls;   // of Asn1Choice
};

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

namespace schema {
// clang-format off

inline constexpr Asn1Item OriginatorInfo = Sequence<
    Optional<Implicit<0, CertificateSet>>,         // certs
    Optional<Implicit<1, RevocationInfoChoices>>>; // crls

inline constexpr Asn1Item KeyTrans = Sequence<
    Integer,             // version
    EntityIdentifier,    // rid
    AlgorithmIdentifier, // keyEncryptionAlgorithm
    OctetString>;        // encryptedKey

// The selector is the kind of recipient less one.
inline constexpr Asn1Item RecipientInfo = Choice<
    KeyTrans,                   // ktri
    ImplicitConstructedAny<1>,  // kari
    ImplicitConstructedAny<2>,  // kekri
    ImplicitConstructedAny<3>,  // pwri
    ImplicitConstructedAny<4>>; // ori

inline constexpr Asn1Item EncryptedContentInfo = Sequence<
    ObjectIdentifier,                    // contentType
    AlgorithmIdentifier,                 // contentEncryptionAlgorithm
    Optional<Implicit<0, OctetString>>>; // encryptedContent

inline constexpr Asn1Item CmsEnvelopedData = Sequence<
    Integer,                               // version
    Optional<Implicit<0, OriginatorInfo>>, // originatorInfo
    SetOf<RecipientInfo>,                  // recipientInfos
    EncryptedContentInfo,                  // encryptedContentInfo
    Optional<Implicit<1, RsaAttributes>>>; // unprotectedAttrs

inline constexpr Asn1Item Gost2814789Parameters = Sequence<
    OctetString,       // iv
    ObjectIdentifier>; // encryptionParamSet

inline constexpr Asn1Item SessionEncryptedKey = Sequence<
    OctetString,                        // encryptedKey
    Optional<Implicit<0, OctetString>>, // maskKey
    OctetString>;                       // macKey

inline constexpr Asn1Item TransportParameters = Sequence<
    ObjectIdentifier,                            // encryptionParamSet
    Optional<Implicit<0, SubjectPublicKeyInfo>>, // ephemeralPublicKey
    OctetString>;                                // ukm

inline constexpr Asn1Item GostR3410KeyTransport = Sequence<
    SessionEncryptedKey,                         // sessionEncryptedKey
    Optional<Implicit<0, TransportParameters>>>; // transportParameters

// clang-format on
}  // namespace schema
}  // namespace tlvforge

struct CmsEnvelopedData {
    Asn1Value* version;
    tlvforge::OriginatorInfo* originatorInfo;
    Asn1List* recipientInfos;  // of Asn1Choice
    tlvforge::EncryptedContentInfo* encryptedContentInfo;
    RsaAttributesCell unprotectedAttrs;
};

struct GostR3410KeyTransport {
    tlvforge::SessionEncryptedKey* sessionEncryptedKey;
    tlvforge::TransportParameters* transportParameters;
};

namespace tlvforge {

static_assert(sizeof(OriginatorInfo) == schema::OriginatorInfo.valueSize);
static_assert(sizeof(::KeyTrans) == schema::KeyTrans.valueSize);
static_assert(sizeof(EncryptedContentInfo) == schema::EncryptedContentInfo.valueSize);
static_assert(sizeof(::CmsEnvelopedData) == schema::CmsEnvelopedData.valueSize);
static_assert(sizeof(Gost2814789Parameters) == schema::Gost2814789Parameters.valueSize);
static_assert(sizeof(SessionEncryptedKey) == schema::SessionEncryptedKey.valueSize);
static_assert(sizeof(TransportParameters) == schema::TransportParameters.valueSize);
static_assert(sizeof(::GostR3410KeyTransport) == schema::GostR3410KeyTransport.valueSize);

}  // namespace tlvforge
