// Extensions that no RFC defines: their items, and the records that lie over them.
#pragma once

#include "engine/items.h"
#include "names/names.schema.h"
#include "tlvforge/private_extensions.h"

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

}  // namespace tlvforge

// The other two kinds of store have no record of their own: their functions are those of this one.
struct ExtensionStoreCertificates : tlvforge::ListOf<tlvforge::StoreEntry> {};

namespace tlvforge {

struct OcspCheckFileExtResult {
    Asn1Value* code;
    Asn1Value* text;
    Asn1Value* status;
    Asn1Value* time;
    ExtensionStoreCertificates* certificates;
    X509GeneralNames* names;
};

}  // namespace tlvforge

struct ExtensionOcspCheckFileExtResults : tlvforge::ListOf<tlvforge::OcspCheckFileExtResult> {};

namespace tlvforge::schema {
// clang-format off

template <> struct Schema<IssuerSignTool> : Record<
    Field<&IssuerSignTool::signTool, UTF8String>,
    Field<&IssuerSignTool::cATool, UTF8String>,
    Field<&IssuerSignTool::signToolCert, UTF8String>,
    Field<&IssuerSignTool::cAToolCert, UTF8String>> {};

template <> struct Schema<KeyStorage> : Record<
    Field<&KeyStorage::code, Enumerated>,
    Field<&KeyStorage::text, Optional<UTF8String>>> {};

// Its first octet is B0.
template <> struct Schema<OcspCheckTime2> : ContextOfKind<Record<
    Field<&OcspCheckTime2::code, Enumerated>,
    Field<&OcspCheckTime2::time, Optional<GeneralizedTime>>>> {};

template <> struct Schema<OcspCheckKeyMeshRegistry> : Record<
    Field<&OcspCheckKeyMeshRegistry::firstName, UTF8String>,
    Field<&OcspCheckKeyMeshRegistry::secondName, UTF8String>,
    Field<&OcspCheckKeyMeshRegistry::code, Optional<Enumerated>>> {};

// Three fields have a number in the universal class, and so the first octets of other types: 03, 04 and 05.
template <> struct Schema<OcspCheckFile> : Record<
    Field<&OcspCheckFile::fileData, OctetString>,
    Field<&OcspCheckFile::fileExtra1, Optional<Implicit<0, OctetString>>>,
    Field<&OcspCheckFile::fileExtra2, Optional<Implicit<1, OctetString>>>,
    Field<&OcspCheckFile::fileCode, Optional<Enumerated>>,
    Field<&OcspCheckFile::fileText1, Optional<UniversalTag<3, UTF8String>>>,
    Field<&OcspCheckFile::fileText2, Optional<UniversalTag<4, UTF8String>>>,
    Field<&OcspCheckFile::fileCode2, Optional<UniversalTag<5, Enumerated>>>> {};

template <> struct Schema<StoreEntry> : Record<
    Field<&StoreEntry::type, Enumerated>,
    Field<&StoreEntry::data, OctetString>> {};

template <> struct Schema<ExtensionStoreCertificates> : SequenceOf<StoreEntry> {};

template <> struct Schema<OcspCheckFileExtResult> : Record<
    Field<&OcspCheckFileExtResult::code, Enumerated>,
    Field<&OcspCheckFileExtResult::text, UTF8String>,
    Field<&OcspCheckFileExtResult::status, Enumerated>,
    Field<&OcspCheckFileExtResult::time, Optional<GeneralizedTime>>,
    Field<&OcspCheckFileExtResult::certificates, ExtensionStoreCertificates>,
    Field<&OcspCheckFileExtResult::names, Optional<UniversalTag<0, X509GeneralNames>>>> {};  // the first octet is 20

template <> struct Schema<ExtensionOcspCheckFileExtResults> : SequenceOf<OcspCheckFileExtResult> {};
// clang-format on
}  // namespace tlvforge::schema
