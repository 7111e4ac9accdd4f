// ContentInfo, SignedData and SignerInfo (RFC 5652, 3, 5.1 and 5.3): the items, and the records that lie over them.
#pragma once

#include "names/names.schema.h"
#include "tlvforge/cms.h"
#include "x509/algorithm.h"
#include "x509/attribute.schema.h"

// The functions of a ContentInfo serve the encapContentInfo of a SignedData too, whose fields are alike.
struct [[gnu::may_alias]] CmsContentInfo {
    Asn1Value* contentType;
    Asn1Any* content;  // the whole inner element
};

struct SeveralData : Asn1List {};  // of CmsContentInfo

namespace tlvforge {

struct EncapsulatedContentInfo {
    Asn1Value* eContentType;
    Asn1Value* eContent;  // content octets; absent when detached
};

struct OtherRevocationInfo {
    Asn1Value* otherRevInfoFormat;
    Asn1Any* otherRevInfo;
};

struct IssuerAndSerialNumber {
    Asn1Choice* issuer;  // of one alternative, an X509Name
    Asn1Value* serialNumber;
};

namespace schema {
// clang-format off

inline constexpr Asn1Item CmsContentInfo = Sequence<
    ObjectIdentifier,           // contentType
    Optional<Explicit<0, Any>>>; // content

inline constexpr Asn1Item SeveralData = SequenceOf<CmsContentInfo>;

inline constexpr Asn1Item EncapsulatedContentInfo = Sequence<
    ObjectIdentifier,                    // eContentType
    Optional<Explicit<0, OctetString>>>; // eContent

inline constexpr Asn1Item OtherRevocationInfo = Sequence<
    ObjectIdentifier, // otherRevInfoFormat
    Any>;             // otherRevInfo

// The first alternative is primitive with the number 1, so that an ordinary CertificateList, 30, matches no alternative
// and a document that holds one is refused. That is intended.
inline constexpr Asn1Item RevocationInfoChoice = Choice<
    UniversalTag<1, Any>,              // crl
    Implicit<1, OtherRevocationInfo>>; // other

// Of whole elements, kept as they stand.
inline constexpr Asn1Item CertificateSet = SetOf<ConstructedAny>;
inline constexpr Asn1Item RevocationInfoChoices = SetOf<RevocationInfoChoice>;

inline constexpr Asn1Item IssuerAndSerialNumber = Sequence<
    Name,     // issuer
    Integer>; // serialNumber

// SignerIdentifier and RecipientIdentifier.
inline constexpr Asn1Item EntityIdentifier = Choice<
    IssuerAndSerialNumber,     // issuerAndSerialNumber
    Implicit<0, OctetString>>; // subjectKeyIdentifier

inline constexpr Asn1Item CmsSignerInfo = Sequence<
    Integer,                               // version
    EntityIdentifier,                      // sid
    AlgorithmIdentifier,                   // digestAlgorithm
    Optional<Implicit<0, RsaAttributes>>,  // signedAttrs
    AlgorithmIdentifier,                   // signatureAlgorithm
    OctetString,                           // signature
    Optional<Implicit<1, RsaAttributes>>>; // unsignedAttrs

inline constexpr Asn1Item CmsSignedData = Sequence<
    Integer,                                      // version
    SetOf<AlgorithmIdentifier>,                   // digestAlgorithms
    EncapsulatedContentInfo,                      // encapContentInfo
    Optional<Implicit<0, CertificateSet>>,        // certificates
    Optional<Implicit<1, RevocationInfoChoices>>, // crls
    SetOf<CmsSignerInfo>>;                        // signerInfos

// A SignedData within its ContentInfo as one tree, so that large content is moved once only.
inline constexpr Asn1Item SignedMessage = Sequence<
    ObjectIdentifier,            // contentType
    Explicit<0, CmsSignedData>>; // content

// clang-format on
}  // namespace schema
}  // namespace tlvforge

struct CmsSignerInfo {
    Asn1Value* version;
    Asn1Choice* sid;
    AlgorithmIdentifier* digestAlgorithm;
    RsaAttributesCell signedAttrs;
    AlgorithmIdentifier* signatureAlgorithm;
    Asn1Value* signature;
    RsaAttributesCell unsignedAttrs;
};

struct CmsSignedData {
    Asn1Value* version;
    Asn1List* digestAlgorithms;  // of AlgorithmIdentifier
    tlvforge::EncapsulatedContentInfo* encapContentInfo;
    Asn1List* certificates;  // of Asn1Any
    Asn1List* crls;          // of Asn1Choice
    Asn1List* signerInfos;   // of CmsSignerInfo
};

namespace tlvforge {

struct SignedMessage {
    Asn1Value* contentType;
    ::CmsSignedData* content;
};

static_assert(sizeof(::CmsContentInfo) == schema::CmsContentInfo.valueSize);
static_assert(sizeof(EncapsulatedContentInfo) == schema::EncapsulatedContentInfo.valueSize);
static_assert(sizeof(OtherRevocationInfo) == schema::OtherRevocationInfo.valueSize);
static_assert(sizeof(IssuerAndSerialNumber) == schema::IssuerAndSerialNumber.valueSize);
static_assert(sizeof(::CmsSignerInfo) == schema::CmsSignerInfo.valueSize);
static_assert(sizeof(::CmsSignedData) == schema::CmsSignedData.valueSize);
static_assert(sizeof(SignedMessage) == schema::SignedMessage.valueSize);

}  // namespace tlvforge
