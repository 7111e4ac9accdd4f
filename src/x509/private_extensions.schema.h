// Extensions that no RFC defines: their items, and the records that lie over them.
#pragma once

#include "engine/items.h"
#include "names/names.schema.h"
#include "tlvforge/private_extensions.h"

// Of StoreEntry. The other two kinds of store have no record of their own: their functions are those of this one.
struct ExtensionStoreCertificates : Asn1List {};
struct ExtensionOcspCheckFileExtResults : Asn1List {};  // of OcspCheckFileExtResult

namespace tlvforge {

struct IssuerSignTool {
    Asn1Value* signTool;
    Asn1Value* cATool;
    Asn1Value* signToolCert;
    Asn1Value* cAToolCert;
};

struct KeyStorage {
    Asn1Value* code;
    Asn1Value* text;
};

struct OcspCheckTime2 {
    Asn1Value* code;
    Asn1Value* time;
};

struct OcspCheckKeyMeshRegistry {
    Asn1Value* firstName;
    Asn1Value* secondName;
    Asn1Value* code;
};

struct OcspCheckFile {
    Asn1Value* fileData;
    Asn1Value* fileExtra1;
    Asn1Value* fileExtra2;
    Asn1Value* fileCode;
    Asn1Value* fileText1;
    Asn1Value* fileText2;
    Asn1Value* fileCode2;
};

struct StoreEntry {
    Asn1Value* type;
    Asn1Value* data;
};

struct OcspCheckFileExtResult {
    Asn1Value* code;
    Asn1Value* text;
    Asn1Value* status;
    Asn1Value* time;
    ExtensionStoreCertificates* certificates;
    X509GeneralNames* names;
};

namespace schema {
// clang-format off

inline constexpr Asn1Item RequestBlockingDate = Sequence<
    Optional<Implicit<0, GeneralizedTime>>,  // fromDate
    Optional<Implicit<1, GeneralizedTime>>>; // toDate

inline constexpr Asn1Item IssuerSignTool = Sequence<
    UTF8String,  // signTool
    UTF8String,  // cATool
    UTF8String,  // signToolCert
    UTF8String>; // cAToolCert

inline constexpr Asn1Item KeyStorage = Sequence<
    Enumerated,            // code
    Optional<UTF8String>>; // text

// Its first octet is B0.
inline constexpr Asn1Item OcspCheckTime2 = ContextOfKind<Sequence<
    Enumerated,                  // code
    Optional<GeneralizedTime>>>; // time

inline constexpr Asn1Item OcspCheckKeyMeshRegistry = Sequence<
    UTF8String,            // firstName
    UTF8String,            // secondName
    Optional<Enumerated>>; // code

// Three fields have a number in the universal class, and so the first octets of other types: 03, 04 and 05.
inline constexpr Asn1Item OcspCheckFile = Sequence<
    OctetString,                            // fileData
    Optional<Implicit<0, OctetString>>,     // fileExtra1
    Optional<Implicit<1, OctetString>>,     // fileExtra2
    Optional<Enumerated>,                   // fileCode
    Optional<UniversalTag<3, UTF8String>>,  // fileText1
    Optional<UniversalTag<4, UTF8String>>,  // fileText2
    Optional<UniversalTag<5, Enumerated>>>; // fileCode2

inline constexpr Asn1Item StoreEntry = Sequence<
    Enumerated,   // type
    OctetString>; // data

inline constexpr Asn1Item StoreCertificates = SequenceOf<StoreEntry>;

inline constexpr Asn1Item OcspCheckFileExtResult = Sequence<
    Enumerated,                                   // code
    UTF8String,                                   // text
    Enumerated,                                   // status
    Optional<GeneralizedTime>,                    // time
    StoreCertificates,                            // certificates
    Optional<UniversalTag<0, X509GeneralNames>>>; // names; the first octet is 20

inline constexpr Asn1Item OcspCheckFileExtResults = SequenceOf<OcspCheckFileExtResult>;

// clang-format on
}  // namespace schema

static_assert(sizeof(IssuerSignTool) == schema::IssuerSignTool.valueSize);
static_assert(sizeof(KeyStorage) == schema::KeyStorage.valueSize);
static_assert(sizeof(OcspCheckTime2) == schema::OcspCheckTime2.valueSize);
static_assert(sizeof(OcspCheckKeyMeshRegistry) == schema::OcspCheckKeyMeshRegistry.valueSize);
static_assert(sizeof(OcspCheckFile) == schema::OcspCheckFile.valueSize);
static_assert(sizeof(StoreEntry) == schema::StoreEntry.valueSize);
static_assert(sizeof(OcspCheckFileExtResult) == schema::OcspCheckFileExtResult.valueSize);

}  // namespace tlvforge
