// Attribute values of advanced signatures (RFC 2634, RFC 5035, RFC 5126, ETSI TS 101 733) and of documents: the items,
// and the records that lie over them.
#pragma once

#include "names/names.schema.h"
#include "ocsp/ocsp.schema.h"
#include "tlvforge/attribute_values.h"
#include "x509/algorithm.h"
#include "x509/crl.schema.h"
#include "x509/standard_extensions.schema.h"

struct ESSCertIDs : Asn1List {};    // of ESSCertID
struct ESSCertIDsV2 : Asn1List {};  // of ESSCertIDv2
struct OtherCertIDs : Asn1List {};  // of OtherCertID
struct CrlListIDs : Asn1List {};    // of CrlValidatedID
struct OcspListIDs : Asn1List {};   // of OcspResponseId
struct CrlOcspRefs : Asn1List {};   // of CrlOcspRef

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

struct OtherCertID {
    Asn1Choice* otherCertHash;
    IssuerSerial* issuerSerial;
};

// Of all three signing certificate attributes.
struct SigningCertificate {
    Asn1List* certs;
    Asn1List* policies;  // of PolicyInformation
};

struct CrlIdentifier {
    X509Name* crlissuer;
    Asn1Value* crlIssuedTime;
    Asn1Value* crlNumber;
};

struct CrlValidatedID {
    Asn1Choice* crlHash;
    CrlIdentifier* crlIdentifier;
};

struct OcspIdentifier {
    Asn1Choice* ocspResponderID;
    Asn1Value* producedAt;
};

struct OcspResponseId {
    OcspIdentifier* ocspIdentifier;
    Asn1Choice* ocspRepHash;
};

// A SEQUENCE of one field.
struct WrappedList {
    Asn1List* list;
};

struct CrlOcspRef {
    WrappedList* crlids;
    WrappedList* ocspids;
    TypedValue* otherRev;
};

struct RevocationValues {
    Asn1List* crlVals;   // of X509Crl
    Asn1List* ocspVals;  // of OcspBasicResponse
    TypedValue* otherRevVals;
};

// All three of Asn1Value.
struct AtsHashIndexLists {
    Asn1List* certificatesHashIndex;
    Asn1List* crlsHashIndex;
    Asn1List* unsignedAttrsHashIndex;
};

struct AtsHashIndex {
    AlgorithmIdentifier* hashIndAlgorithm;
    AtsHashIndexLists lists;
};

// Indices into the alternatives of OtherHash, and of OcspResponder.
enum { kSha1Hash = 0, kHashWithAlgorithm = 1 };
enum { kResponderByName = 0, kResponderByKey = 1, kResponderNameTree = 2 };

namespace schema {
// clang-format off

inline constexpr Asn1Item TypedValue = Sequence<
    ObjectIdentifier, // type
    Any>;             // value

inline constexpr Asn1Item DocInfo = Sequence<
    Enumerated,                              // docType
    Optional<Implicit<0, UTF8String>>,       // text0
    Optional<Implicit<1, UTF8String>>,       // text1
    Optional<Implicit<2, UTF8String>>,       // text2
    Optional<Implicit<3, GeneralizedTime>>,  // time3
    Optional<Implicit<4, GeneralizedTime>>,  // time4
    Optional<Implicit<5, UTF8String>>>;      // text5

inline constexpr Asn1Item IssuerSerial = Sequence<
    X509GeneralNames, // issuer
    Integer>;         // serialNumber

// 2.16.840.1.101.3.4.2.1
inline constexpr ::AlgorithmIdentifier kSha256 = {const_cast<Asn1Value*>(&ConstantValue<
    Asn1KindObjectIdentifier, 0x60, 0x86, 0x48, 0x01, 0x65, 0x03, 0x04, 0x02, 0x01>), nullptr};

inline constexpr Asn1Item HashAlgorithm = [] {
    Asn1Item item = Optional<AlgorithmIdentifier>;
    item.defaultValue = &kSha256;
    return item;
}();

inline constexpr Asn1Item ESSCertID = Sequence<
    OctetString,             // certHash
    Optional<IssuerSerial>>; // issuerSerial

inline constexpr Asn1Item ESSCertIDv2 = Sequence<
    HashAlgorithm,           // hashAlgorithm
    OctetString,             // certHash
    Optional<IssuerSerial>>; // issuerSerial

inline constexpr Asn1Item OtherHashAlgAndValue = Sequence<
    AlgorithmIdentifier, // hashAlgorithm
    OctetString>;        // hashValue

inline constexpr Asn1Item OtherHash = Choice<
    OctetString,           // sha1Hash
    OtherHashAlgAndValue>; // otherHash

inline constexpr Asn1Item OtherCertID = Sequence<
    OtherHash,               // otherCertHash
    Optional<IssuerSerial>>; // issuerSerial

inline constexpr Asn1Item ESSCertIDs = SequenceOf<ESSCertID>;
inline constexpr Asn1Item ESSCertIDsV2 = SequenceOf<ESSCertIDv2>;
inline constexpr Asn1Item OtherCertIDs = SequenceOf<OtherCertID>;

template <const Asn1Item& CertIDs>
inline constexpr Asn1Item SigningCertificateOf = Sequence<
    CertIDs,                        // certs
    Optional<CertificatePolicies>>; // policies

inline constexpr Asn1Item CrlIdentifier = Sequence<
    X509Name,           // crlissuer
    UTCTime,            // crlIssuedTime
    Optional<Integer>>; // crlNumber

inline constexpr Asn1Item CrlValidatedID = Sequence<
    OtherHash,                // crlHash
    Optional<CrlIdentifier>>; // crlIdentifier

// The last alternative is the first one's, with a name in place of its encoding. It is made in memory only: behind the
// first, whose tag it shares, the decoder never comes to it.
inline constexpr Asn1Item OcspResponder = Choice<
    Explicit<1, Any>,         // byName
    Explicit<2, OctetString>, // byKey
    Explicit<1, X509Name>>;   // byName

inline constexpr Asn1Item OcspIdentifier = Sequence<
    OcspResponder,    // ocspResponderID
    GeneralizedTime>; // producedAt

inline constexpr Asn1Item OcspResponseId = Sequence<
    OcspIdentifier,       // ocspIdentifier
    Optional<OtherHash>>; // ocspRepHash

inline constexpr Asn1Item CrlListIDs = SequenceOf<CrlValidatedID>;
inline constexpr Asn1Item OcspListIDs = SequenceOf<OcspResponseId>;

// Other references, like other values below, have the number 2 in the universal class, where RFC 5126 has a context
// tag. The bytes depend on it.
inline constexpr Asn1Item CrlOcspRef = Sequence<
    Optional<Explicit<0, Sequence<CrlListIDs>>>,  // crlids
    Optional<Explicit<1, Sequence<OcspListIDs>>>, // ocspids
    Optional<UniversalExplicit<2, TypedValue>>>;  // otherRev

inline constexpr Asn1Item CrlOcspRefs = SequenceOf<CrlOcspRef>;

inline constexpr Asn1Item RevocationValues = Sequence<
    Optional<Implicit<0, X509Crls>>,             // crlVals
    Optional<Implicit<1, OcspBasicResponses>>,   // ocspVals
    Optional<UniversalExplicit<2, TypedValue>>>; // otherRevVals

// The algorithm has the tag of the list behind it: where it is left out, only the second form decodes.
inline constexpr Asn1Item AtsHashIndex = Sequence<
    HashAlgorithm, // hashIndAlgorithm
    OctetStrings,  // certificatesHashIndex
    OctetStrings,  // crlsHashIndex
    OctetStrings>; // unsignedAttrsHashIndex

inline constexpr Asn1Item AtsHashIndexLists = Sequence<
    OctetStrings,  // certificatesHashIndex
    OctetStrings,  // crlsHashIndex
    OctetStrings>; // unsignedAttrsHashIndex

// clang-format on
}  // namespace schema

static_assert(sizeof(TypedValue) == schema::TypedValue.valueSize);
static_assert(sizeof(DocInfo) == schema::DocInfo.valueSize);
static_assert(sizeof(IssuerSerial) == schema::IssuerSerial.valueSize);
static_assert(sizeof(ESSCertID) == schema::ESSCertID.valueSize);
static_assert(sizeof(ESSCertIDv2) == schema::ESSCertIDv2.valueSize);
static_assert(sizeof(OtherHashAlgAndValue) == schema::OtherHashAlgAndValue.valueSize);
static_assert(sizeof(OtherCertID) == schema::OtherCertID.valueSize);
static_assert(sizeof(SigningCertificate) == schema::SigningCertificateOf<schema::ESSCertIDs>.valueSize);
static_assert(sizeof(CrlIdentifier) == schema::CrlIdentifier.valueSize);
static_assert(sizeof(CrlValidatedID) == schema::CrlValidatedID.valueSize);
static_assert(sizeof(OcspIdentifier) == schema::OcspIdentifier.valueSize);
static_assert(sizeof(OcspResponseId) == schema::OcspResponseId.valueSize);
static_assert(sizeof(WrappedList) == schema::Sequence<schema::CrlListIDs>.valueSize);
static_assert(sizeof(CrlOcspRef) == schema::CrlOcspRef.valueSize);
static_assert(sizeof(RevocationValues) == schema::RevocationValues.valueSize);
static_assert(sizeof(AtsHashIndexLists) == schema::AtsHashIndexLists.valueSize);
static_assert(sizeof(AtsHashIndex) == schema::AtsHashIndex.valueSize);

}  // namespace tlvforge
