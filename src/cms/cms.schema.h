// ContentInfo, SignedData and SignerInfo (RFC 5652, 3, 5.1 and 5.3): the items, and the records that lie over them.
#pragma once

#include "names/names.schema.h"
#include "tlvforge/cms.h"
#include "x509/algorithm.schema.h"
#include "x509/attribute.schema.h"

// The functions of a ContentInfo serve the encapContentInfo of a SignedData too, whose fields are alike.
struct [[gnu::may_alias]] CmsContentInfo {
    Asn1Value* contentType;
    Asn1Any* content;  // the whole inner element
};

struct SeveralData : tlvforge::ListOf<CmsContentInfo> {};

namespace tlvforge {

struct EncapsulatedContentInfo {
    Asn1Value* eContentType;
    Asn1Value* eContent;  // content octets; absent when detached
};

struct OtherRevocationInfo {
    Asn1Value* otherRevInfoFormat;
    Asn1Any* otherRevInfo;
};

struct RevocationInfoChoice : Asn1Choice {};

struct CertificateSet : ListOf<Asn1Any> {};
struct RevocationInfoChoices : ListOf<RevocationInfoChoice> {};

struct IssuerAndSerialNumber {
    Name* issuer;
    Asn1Value* serialNumber;
};

// SignerIdentifier and RecipientIdentifier.
struct EntityIdentifier : Asn1Choice {};

}  // namespace tlvforge

struct CmsSignerInfo {
    Asn1Value* version;
    tlvforge::EntityIdentifier* sid;
    AlgorithmIdentifier* digestAlgorithm;
    RsaAttributesCell signedAttrs;
    AlgorithmIdentifier* signatureAlgorithm;
    Asn1Value* signature;
    RsaAttributesCell unsignedAttrs;
};

struct CmsSignedData {
    Asn1Value* version;
    tlvforge::ListOf<AlgorithmIdentifier>* digestAlgorithms;
    tlvforge::EncapsulatedContentInfo* encapContentInfo;
    tlvforge::CertificateSet* certificates;
    tlvforge::RevocationInfoChoices* crls;
    tlvforge::ListOf<CmsSignerInfo>* signerInfos;
};

namespace tlvforge {

struct SignedMessage {
    Asn1Value* contentType;
    ::CmsSignedData* content;
};

namespace schema {
// clang-format off

template <> struct Schema<CmsContentInfo> : Record<
    Field<&CmsContentInfo::contentType, ObjectIdentifier>,
    Field<&CmsContentInfo::content, Optional<Explicit<0, Any>>>> {};

template <> struct Schema<SeveralData> : SequenceOf<CmsContentInfo> {};

template <> struct Schema<EncapsulatedContentInfo> : Record<
    Field<&EncapsulatedContentInfo::eContentType, ObjectIdentifier>,
    Field<&EncapsulatedContentInfo::eContent, Optional<Explicit<0, OctetString>>>> {};

template <> struct Schema<OtherRevocationInfo> : Record<
    Field<&OtherRevocationInfo::otherRevInfoFormat, ObjectIdentifier>,
    Field<&OtherRevocationInfo::otherRevInfo, Any>> {};

// The first alternative is primitive with the number 1, so that an ordinary CertificateList, 30, matches no alternative
// and a document that holds one is refused: see docs/oddities.md.
template <> struct Schema<RevocationInfoChoice> : Choice<
    UniversalTag<1, Any>,              // crl
    Implicit<1, OtherRevocationInfo>> {};  // other

// Of whole elements, kept as they stand.
template <> struct Schema<CertificateSet> : SetOf<ConstructedAny> {};
template <> struct Schema<RevocationInfoChoices> : SetOf<RevocationInfoChoice> {};

template <> struct Schema<IssuerAndSerialNumber> : Record<
    Field<&IssuerAndSerialNumber::issuer, Name>,
    Field<&IssuerAndSerialNumber::serialNumber, Integer>> {};

template <> struct Schema<EntityIdentifier> : Choice<
    IssuerAndSerialNumber,     // issuerAndSerialNumber
    Implicit<0, OctetString>> {};  // subjectKeyIdentifier

template <> struct Schema<CmsSignerInfo> : Record<
    Field<&CmsSignerInfo::version, Integer>,
    Field<&CmsSignerInfo::sid, EntityIdentifier>,
    Field<&CmsSignerInfo::digestAlgorithm, AlgorithmIdentifier>,
    Field<&CmsSignerInfo::signedAttrs, Optional<Implicit<0, RsaAttributeList>>>,
    Field<&CmsSignerInfo::signatureAlgorithm, AlgorithmIdentifier>,
    Field<&CmsSignerInfo::signature, OctetString>,
    Field<&CmsSignerInfo::unsignedAttrs, Optional<Implicit<1, RsaAttributeList>>>> {};

template <> struct Schema<CmsSignedData> : Record<
    Field<&CmsSignedData::version, Integer>,
    Field<&CmsSignedData::digestAlgorithms, SetOf<AlgorithmIdentifier>>,
    Field<&CmsSignedData::encapContentInfo, EncapsulatedContentInfo>,
    Field<&CmsSignedData::certificates, Optional<Implicit<0, CertificateSet>>>,
    Field<&CmsSignedData::crls, Optional<Implicit<1, RevocationInfoChoices>>>,
    Field<&CmsSignedData::signerInfos, SetOf<CmsSignerInfo>>> {};

// A SignedData within its ContentInfo as one tree, so that large content is moved once only.
template <> struct Schema<SignedMessage> : Record<
    Field<&SignedMessage::contentType, ObjectIdentifier>,
    Field<&SignedMessage::content, Explicit<0, CmsSignedData>>> {};

// clang-format on
}  // namespace schema
}  // namespace tlvforge
