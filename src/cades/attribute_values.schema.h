// Attribute values of advanced signatures (RFC 2634, RFC 5035, RFC 5126, ETSI TS 101 733) and of documents: the items,
// and the records that lie over them.
#pragma once

#include "names/names.schema.h"
#include "ocsp/ocsp.schema.h"
#include "tlvforge/attribute_values.h"
#include "x509/algorithm.schema.h"
#include "x509/crl.schema.h"
#include "x509/standard_extensions.schema.h"

namespace tlvforge {

// Any value, and the identifier that says what it is.
struct TypedValue {
    Asn1Value* type;
    Asn1Any* value;
};

struct DocInfo {
    Asn1Value* docType;
    Asn1Value* text0;
    Asn1Value* text1;
    Asn1Value* text2;
    Asn1Value* time3;
    Asn1Value* time4;
    Asn1Value* text5;
};

struct IssuerSerial {
    X509GeneralNames* issuer;
    Asn1Value* serialNumber;
};

struct ESSCertID {
    Asn1Value* certHash;
    IssuerSerial* issuerSerial;
};

struct ESSCertIDv2 {
    AlgorithmIdentifier* hashAlgorithm;
    Asn1Value* certHash;
    IssuerSerial* issuerSerial;
};

struct OtherHashAlgAndValue {
    AlgorithmIdentifier* hashAlgorithm;
    Asn1Value* hashValue;
};

// A hash alone is one of SHA-1.
struct OtherHash : Asn1Choice {};

struct OtherCertID {
    OtherHash* otherCertHash;
    IssuerSerial* issuerSerial;
};

// Of all three signing certificate attributes.
template <class CertIDs>
struct SigningCertificate {
    CertIDs* certs;
    ExtensionCertificatePolicies* policies;
};

struct CrlIdentifier {
    X509Name* crlissuer;
    Asn1Value* crlIssuedTime;
    Asn1Value* crlNumber;
};

struct CrlValidatedID {
    OtherHash* crlHash;
    CrlIdentifier* crlIdentifier;
};

struct OcspResponder : Asn1Choice {};

struct OcspIdentifier {
    OcspResponder* ocspResponderID;
    Asn1Value* producedAt;
};

struct OcspResponseId {
    OcspIdentifier* ocspIdentifier;
    OtherHash* ocspRepHash;
};

}  // namespace tlvforge

struct ESSCertIDs : tlvforge::ListOf<tlvforge::ESSCertID> {};
struct ESSCertIDsV2 : tlvforge::ListOf<tlvforge::ESSCertIDv2> {};
struct OtherCertIDs : tlvforge::ListOf<tlvforge::OtherCertID> {};
struct CrlListIDs : tlvforge::ListOf<tlvforge::CrlValidatedID> {};
struct OcspListIDs : tlvforge::ListOf<tlvforge::OcspResponseId> {};

namespace tlvforge {

// A SEQUENCE of one field.
template <class List>
struct Wrapped {
    List* list;
};

struct CrlOcspRef {
    Wrapped<CrlListIDs>* crlids;
    Wrapped<OcspListIDs>* ocspids;
    TypedValue* otherRev;
};

struct RevocationValues {
    X509Crls* crlVals;
    OcspBasicResponses* ocspVals;
    TypedValue* otherRevVals;
};

struct AtsHashIndex {
    AlgorithmIdentifier* hashIndAlgorithm;
    OctetStrings* certificatesHashIndex;
    OctetStrings* crlsHashIndex;
    OctetStrings* unsignedAttrsHashIndex;
};

// The form without an algorithm.
struct AtsHashIndexLists {
    OctetStrings* certificatesHashIndex;
    OctetStrings* crlsHashIndex;
    OctetStrings* unsignedAttrsHashIndex;
};

// Indices into the alternatives of OtherHash, and of OcspResponder.
enum { kSha1Hash = 0, kHashWithAlgorithm = 1 };
enum { kResponderByName = 0, kResponderByKey = 1, kResponderNameTree = 2 };

}  // namespace tlvforge

struct CrlOcspRefs : tlvforge::ListOf<tlvforge::CrlOcspRef> {};

namespace tlvforge::schema {
// clang-format off

template <> struct Schema<TypedValue> : Record<
    Field<&TypedValue::type, ObjectIdentifier>,
    Field<&TypedValue::value, Any>> {};

template <> struct Schema<DocInfo> : Record<
    Field<&DocInfo::docType, Enumerated>,
    Field<&DocInfo::text0, Optional<Implicit<0, UTF8String>>>,
    Field<&DocInfo::text1, Optional<Implicit<1, UTF8String>>>,
    Field<&DocInfo::text2, Optional<Implicit<2, UTF8String>>>,
    Field<&DocInfo::time3, Optional<Implicit<3, GeneralizedTime>>>,
    Field<&DocInfo::time4, Optional<Implicit<4, GeneralizedTime>>>,
    Field<&DocInfo::text5, Optional<Implicit<5, UTF8String>>>> {};

template <> struct Schema<IssuerSerial> : Record<
    Field<&IssuerSerial::issuer, X509GeneralNames>,
    Field<&IssuerSerial::serialNumber, Integer>> {};

// 2.16.840.1.101.3.4.2.1
inline constexpr ::AlgorithmIdentifier kSha256 = {const_cast<Asn1Value*>(&ConstantValue<
    Asn1KindObjectIdentifier, 0x60, 0x86, 0x48, 0x01, 0x65, 0x03, 0x04, 0x02, 0x01>), nullptr};

using HashAlgorithm = Default<AlgorithmIdentifier, kSha256>;

template <> struct Schema<ESSCertID> : Record<
    Field<&ESSCertID::certHash, OctetString>,
    Field<&ESSCertID::issuerSerial, Optional<IssuerSerial>>> {};

template <> struct Schema<ESSCertIDv2> : Record<
    Field<&ESSCertIDv2::hashAlgorithm, HashAlgorithm>,
    Field<&ESSCertIDv2::certHash, OctetString>,
    Field<&ESSCertIDv2::issuerSerial, Optional<IssuerSerial>>> {};

template <> struct Schema<OtherHashAlgAndValue> : Record<
    Field<&OtherHashAlgAndValue::hashAlgorithm, AlgorithmIdentifier>,
    Field<&OtherHashAlgAndValue::hashValue, OctetString>> {};

template <> struct Schema<OtherHash> : Choice<
    OctetString,           // sha1Hash
    OtherHashAlgAndValue> {};  // otherHash

template <> struct Schema<OtherCertID> : Record<
    Field<&OtherCertID::otherCertHash, OtherHash>,
    Field<&OtherCertID::issuerSerial, Optional<IssuerSerial>>> {};

template <> struct Schema<ESSCertIDs> : SequenceOf<ESSCertID> {};
template <> struct Schema<ESSCertIDsV2> : SequenceOf<ESSCertIDv2> {};
template <> struct Schema<OtherCertIDs> : SequenceOf<OtherCertID> {};

template <class CertIDs> struct Schema<SigningCertificate<CertIDs>> : Record<
    Field<&SigningCertificate<CertIDs>::certs, CertIDs>,
    Field<&SigningCertificate<CertIDs>::policies, Optional<ExtensionCertificatePolicies>>> {};

template <> struct Schema<CrlIdentifier> : Record<
    Field<&CrlIdentifier::crlissuer, X509Name>,
    Field<&CrlIdentifier::crlIssuedTime, UTCTime>,
    Field<&CrlIdentifier::crlNumber, Optional<Integer>>> {};

template <> struct Schema<CrlValidatedID> : Record<
    Field<&CrlValidatedID::crlHash, OtherHash>,
    Field<&CrlValidatedID::crlIdentifier, Optional<CrlIdentifier>>> {};

// The last alternative is the first one's, with a name in place of its encoding. It is made in memory only: after the
// first, whose tag it shares, the decoder never comes to it.
template <> struct Schema<OcspResponder> : Choice<
    Explicit<1, Any>,         // byName
    Explicit<2, OctetString>, // byKey
    Explicit<1, X509Name>> {};  // byName

template <> struct Schema<OcspIdentifier> : Record<
    Field<&OcspIdentifier::ocspResponderID, OcspResponder>,
    Field<&OcspIdentifier::producedAt, GeneralizedTime>> {};

template <> struct Schema<OcspResponseId> : Record<
    Field<&OcspResponseId::ocspIdentifier, OcspIdentifier>,
    Field<&OcspResponseId::ocspRepHash, Optional<OtherHash>>> {};

template <> struct Schema<CrlListIDs> : SequenceOf<CrlValidatedID> {};
template <> struct Schema<OcspListIDs> : SequenceOf<OcspResponseId> {};

template <class List> struct Schema<Wrapped<List>> : Record<
    Field<&Wrapped<List>::list, List>> {};

// Other references, like other values below, have the number 2 in the universal class, where RFC 5126 has a context
// tag. The bytes depend on it.
template <> struct Schema<CrlOcspRef> : Record<
    Field<&CrlOcspRef::crlids, Optional<Explicit<0, Wrapped<CrlListIDs>>>>,
    Field<&CrlOcspRef::ocspids, Optional<Explicit<1, Wrapped<OcspListIDs>>>>,
    Field<&CrlOcspRef::otherRev, Optional<UniversalExplicit<2, TypedValue>>>> {};

template <> struct Schema<CrlOcspRefs> : SequenceOf<CrlOcspRef> {};

template <> struct Schema<RevocationValues> : Record<
    Field<&RevocationValues::crlVals, Optional<Implicit<0, X509Crls>>>,
    Field<&RevocationValues::ocspVals, Optional<Implicit<1, OcspBasicResponses>>>,
    Field<&RevocationValues::otherRevVals, Optional<UniversalExplicit<2, TypedValue>>>> {};

// The algorithm has the tag of the list after it: where it is left out, only the second form decodes.
template <> struct Schema<AtsHashIndex> : Record<
    Field<&AtsHashIndex::hashIndAlgorithm, HashAlgorithm>,
    Field<&AtsHashIndex::certificatesHashIndex, OctetStrings>,
    Field<&AtsHashIndex::crlsHashIndex, OctetStrings>,
    Field<&AtsHashIndex::unsignedAttrsHashIndex, OctetStrings>> {};

template <> struct Schema<AtsHashIndexLists> : Record<
    Field<&AtsHashIndexLists::certificatesHashIndex, OctetStrings>,
    Field<&AtsHashIndexLists::crlsHashIndex, OctetStrings>,
    Field<&AtsHashIndexLists::unsignedAttrsHashIndex, OctetStrings>> {};

// clang-format on
}  // namespace tlvforge::schema
