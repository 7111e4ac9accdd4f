#include "tlvforge/private_extensions.h"

#include "engine/alias.h"
#include "engine/views.h"
#include "tlvforge/oid.h"
#include "x509/extension_codecs.h"
#include "x509/private_extensions.schema.h"

using namespace tlvforge;

namespace {

// A number of a decoded structure as a function for ReadOutputs, with a flag that says whether it is there. Neither the
// number nor the flag has to be asked for.
auto CodeInto(const Asn1Value* field, int32_t* code, uint32_t* has = nullptr) {
    return [=]() -> Status {
        if (has != nullptr) *has = field != nullptr ? 1 : 0;
        return code != nullptr ? GetOptionalInt32(field, code) : StatusOk;
    };
}

// Arguments as the fields of a structure that is encoded or copied at once. Null bytes, and a code that isn't given,
// leave their field out.
struct FieldView {
    Asn1Value value;

    operator Asn1Value*() { return value.data != nullptr ? &value : nullptr; }
};

FieldView Octets(const uint8_t* data, uint32_t length) { return {ViewOf(Asn1KindOctetString, {data, length})}; }

FieldView Text(const uint8_t* data, uint32_t length) { return {ViewOf(Asn1KindUTF8String, {data, length})}; }

struct Code : FieldView {
    uint8_t element[6];

    explicit Code(uint32_t number, bool given = true) : FieldView{} {
        uint32_t size = sizeof element;
        (void)EncodeAsn1Int32(static_cast<int32_t>(number), element, &size);  // every number fits
        if (given) value = ViewOf(Asn1KindEnumerated, {element + 2, size - 2});
    }
    Code(const Code&) = delete;
    Code& operator=(const Code&) = delete;
};

}  // namespace

// --- Simple values ---

Status DecodeExtensionSubjectSignTool(const uint8_t* data, uint32_t length, uint8_t* text, uint32_t* textLength) {
    return DecodeAsn1UTF8String(data, length, text, textLength);
}

Status EncodeExtensionSubjectSignTool(const uint8_t* text, uint32_t textLength, uint8_t* buffer, uint32_t* length) {
    return EncodeAsn1UTF8String(text, textLength, buffer, length);
}

Status DecodeExtensionRelatedOsbKod(const uint8_t* data, uint32_t length, uint8_t* text, uint32_t* textLength) {
    return DecodeAsn1PrimitiveValue(Asn1KindPrintableString, data, length, text, textLength);
}

Status EncodeExtensionRelatedOsbKod(const uint8_t* text, uint32_t textLength, uint8_t* buffer, uint32_t* length) {
    return EncodeAsn1PrimitiveValue(Asn1KindPrintableString, text, textLength, buffer, length);
}

Status DecodeExtensionOwnerInformation(const uint8_t* data, uint32_t length, X509Name** out) {
    return DecodeX509Name(data, length, out);
}

Status EncodeExtensionOwnerInformation(const X509Name* name, uint8_t* buffer, uint32_t* length) {
    return EncodeX509Name(name, buffer, length);
}

Status DecodeExtensionParentAS(const uint8_t* data, uint32_t length, uint8_t* oid, uint32_t* oidLength) {
    return DecodeAsn1Oid(data, length, oid, oidLength);
}

Status EncodeExtensionParentAS(const uint8_t* oid, uint8_t* buffer, uint32_t* length) {
    return EncodeAsn1Oid(oid, buffer, length);
}

Status DecodeExtensionOcspCheckTime(const uint8_t* data, uint32_t length, LibraryTime* time) {
    return DecodeAsn1GeneralizedTime(data, length, time);
}

Status EncodeExtensionOcspCheckTime(const LibraryTime* time, uint8_t* buffer, uint32_t* length) {
    return EncodeAsn1GeneralizedTime(time, buffer, length);
}

Status DecodeExtensionOcspRequestCertificates(const uint8_t* data, uint32_t length, int32_t* value) {
    if (AnyNull(data, value) || length == 0) return Fail(StatusBadArgument);
    return DecodeEnumerated({data, length}, value);
}

Status EncodeExtensionOcspRequestCertificates(uint32_t value, uint8_t* buffer, uint32_t* length) {
    if (length == nullptr) return Fail(StatusBadArgument);
    return EncodeEnumerated(value, {buffer, length});
}

Status DecodeExtensionOcspRequestDocuments(const uint8_t* data, uint32_t length, int32_t* value) {
    return DecodeAsn1Enumerated(data, length, value);
}

// An INTEGER, whatever the name says, and unlike the neighbours: see docs/oddities.md.
Status EncodeExtensionOcspRequestDocuments(uint32_t value, uint8_t* buffer, uint32_t* length) {
    return EncodeAsn1Enumerated(static_cast<int32_t>(value), buffer, length);
}

Status DecodeExtensionRequestBlockingDate(const uint8_t* data, uint32_t length, LibraryTime* from, LibraryTime* to) {
    if (AnyNull(data, from, to)) return Fail(StatusBadArgument);
    return DecodeTimePair({data, length}, from, to);
}

Status EncodeExtensionRequestBlockingDate(const LibraryTime* from, const LibraryTime* to, uint8_t* buffer,
                                          uint32_t* length) {
    if (length == nullptr) return Fail(StatusBadArgument);
    return EncodeTimePair(from, to, {buffer, length});
}

// --- Several fields ---

Status DecodeExtensionIssuerSignTool(const uint8_t* data, uint32_t length, uint8_t* signTool, uint32_t* signToolLength,
                                     uint8_t* cATool, uint32_t* cAToolLength, uint8_t* signToolCert,
                                     uint32_t* signToolCertLength, uint8_t* cAToolCert, uint32_t* cAToolCertLength) {
    // Of the third text the buffer is required and not the length: see docs/oddities.md.
    if (AnyNull(data, signToolLength, cAToolLength, signToolCert, cAToolCertLength) || length == 0) {
        return Fail(StatusBadArgument);
    }
    Tree<IssuerSignTool> tools;
    if (const Status status = tools.Decode(data, length)) return status;
    return ReadOutputs(OutputRule::kAllLast, BytesInto(tools->signTool, signTool, signToolLength),
                       BytesInto(tools->cATool, cATool, cAToolLength),
                       BytesInto(tools->signToolCert, signToolCert, signToolCertLength),
                       BytesInto(tools->cAToolCert, cAToolCert, cAToolCertLength));
}

Status EncodeExtensionIssuerSignTool(const uint8_t* signTool, uint32_t signToolLength, const uint8_t* cATool,
                                     uint32_t cAToolLength, const uint8_t* signToolCert, uint32_t signToolCertLength,
                                     const uint8_t* cAToolCert, uint32_t cAToolCertLength, uint8_t* buffer,
                                     uint32_t* length) {
    if (AnyNull(signTool, cATool, signToolCert, cAToolCert, length)) return Fail(StatusBadArgument);
    return EncodeTree(
        AddressOf(IssuerSignTool{Text(signTool, signToolLength), Text(cATool, cAToolLength),
                                 Text(signToolCert, signToolCertLength), Text(cAToolCert, cAToolCertLength)}),
        buffer, length);
}

Status DecodeExtensionKeyStorage(const uint8_t* data, uint32_t length, int32_t* code, uint8_t* text,
                                 uint32_t* textLength) {
    if (AnyNull(data, code, textLength)) return Fail(StatusBadArgument);
    Tree<KeyStorage> storage;
    if (const Status status = storage.Decode(data, length)) return status;
    return ReadOutputs(OutputRule::kUntilFailure, CodeInto(storage->code, code),
                       BytesInto(storage->text, text, textLength));
}

Status EncodeExtensionKeyStorage(uint32_t code, const uint8_t* text, uint32_t textLength, uint8_t* buffer,
                                 uint32_t* length) {
    return EncodeTree(AddressOf(KeyStorage{Code(code), Text(textLength != 0 ? text : nullptr, textLength)}), buffer,
                      length);
}

Status DecodeExtensionOcspCheckTime2(const uint8_t* data, uint32_t length, int32_t* code, LibraryTime* time) {
    if (AnyNull(data, time)) return Fail(StatusBadArgument);
    Tree<OcspCheckTime2> check;
    if (const Status status = check.Decode(data, length)) return status;
    const Status codeStatus = GetAsn1Int32(check->code, code);
    // The status of a time takes the place of the code's: see docs/oddities.md.
    return check->time != nullptr ? GetOptionalTime(check->time, time) : codeStatus;
}

Status EncodeExtensionOcspCheckTime2(uint32_t code, const LibraryTime* time, uint8_t* buffer, uint32_t* length) {
    if (length == nullptr) return Fail(StatusBadArgument);
    Tree<OcspCheckTime2> check;
    if (const Status status = check.Create()) return status;
    if (const Status status = SetAsn1Int32Field(&check->code, static_cast<int32_t>(code))) return status;
    if (const Status status = SetOptionalTime(&check->time, time)) return status;
    return check.Encode(buffer, length);
}

Status DecodeExtensionOcspCheckKeyMeshRegistry(const uint8_t* data, uint32_t length, uint8_t* firstName,
                                               uint32_t* firstNameLength, uint8_t* secondName,
                                               uint32_t* secondNameLength, uint32_t* hasCode, int32_t* code) {
    if (AnyNull(data, firstNameLength, secondNameLength, hasCode, code) || length == 0) return Fail(StatusBadArgument);
    Tree<OcspCheckKeyMeshRegistry> registry;
    if (const Status status = registry.Decode(data, length)) return status;
    return ReadOutputs(OutputRule::kUntilFailure, BytesInto(registry->firstName, firstName, firstNameLength),
                       BytesInto(registry->secondName, secondName, secondNameLength),
                       CodeInto(registry->code, code, hasCode));
}

Status EncodeExtensionOcspCheckKeyMeshRegistry(const uint8_t* firstName, uint32_t firstNameLength,
                                               const uint8_t* secondName, uint32_t secondNameLength, int32_t hasCode,
                                               uint32_t code, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(firstName, secondName, length)) return Fail(StatusBadArgument);
    return EncodeTree(AddressOf(OcspCheckKeyMeshRegistry{Text(firstName, firstNameLength),
                                                         Text(secondName, secondNameLength), Code(code, hasCode != 0)}),
                      buffer, length);
}

Status DecodeExtensionOcspCheckFile(const uint8_t* data, uint32_t length, uint8_t* fileData, uint32_t* fileDataLength,
                                    uint8_t* fileExtra1, uint32_t* fileExtra1Length, uint8_t* fileExtra2,
                                    uint32_t* fileExtra2Length, uint32_t* hasFileCode, uint32_t* fileCode,
                                    uint8_t* fileText1, uint32_t* fileText1Length, uint8_t* fileText2,
                                    uint32_t* fileText2Length, uint32_t* hasFileCode2, int32_t* fileCode2) {
    if (AnyNull(data, fileDataLength, fileExtra1Length, fileExtra2Length, hasFileCode, fileCode, fileText1Length,
                fileText2Length)) {
        return Fail(StatusBadArgument);
    }
    Tree<OcspCheckFile> file;
    if (const Status status = file.Decode(data, length)) return status;
    const auto readFromCode = [&]() -> Status {
        // A code of more than four bytes is StatusBufferTooSmall as well, but ends the reading.
        const auto readCode = CodeInto(file->fileCode, reinterpret_cast<int32_t*>(fileCode), hasFileCode);
        if (const Status status = readCode()) return status;
        return ReadOutputs(OutputRule::kPastSmallBuffers, BytesInto(file->fileText1, fileText1, fileText1Length),
                           BytesInto(file->fileText2, fileText2, fileText2Length),
                           CodeInto(file->fileCode2, fileCode2, hasFileCode2));
    };
    return ReadOutputs(OutputRule::kPastSmallBuffers, BytesInto(file->fileData, fileData, fileDataLength),
                       BytesInto(file->fileExtra1, fileExtra1, fileExtra1Length),
                       BytesInto(file->fileExtra2, fileExtra2, fileExtra2Length), readFromCode);
}

Status EncodeExtensionOcspCheckFile(const uint8_t* fileData, uint32_t fileDataLength, const uint8_t* fileExtra1,
                                    uint32_t fileExtra1Length, const uint8_t* fileExtra2, uint32_t fileExtra2Length,
                                    int32_t hasFileCode, uint32_t fileCode, const uint8_t* fileText1,
                                    uint32_t fileText1Length, const uint8_t* fileText2, uint32_t fileText2Length,
                                    int32_t hasFileCode2, uint32_t fileCode2, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(fileData, length)) return Fail(StatusBadArgument);
    return EncodeTree(AddressOf(OcspCheckFile{Octets(fileData, fileDataLength), Octets(fileExtra1, fileExtra1Length),
                                              Octets(fileExtra2, fileExtra2Length), Code(fileCode, hasFileCode != 0),
                                              Text(fileText1, fileText1Length), Text(fileText2, fileText2Length),
                                              Code(fileCode2, hasFileCode2 != 0)}),
                      buffer, length);
}

// --- Stores ---

Status CreateExtensionStoreCertificates(ExtensionStoreCertificates** out) { return CreateTree(out); }

Status DecodeExtensionStoreCertificates(const uint8_t* data, uint32_t length, ExtensionStoreCertificates** out) {
    return DecodeTree(data, length, out);
}

Status EncodeExtensionStoreCertificates(const ExtensionStoreCertificates* list, uint8_t* buffer, uint32_t* length) {
    return EncodeTree(list, buffer, length);
}

Status FreeExtensionStoreCertificates(ExtensionStoreCertificates* list) { return FreeTree(list); }

Status AddExtensionStoreCertificates(ExtensionStoreCertificates* list, uint32_t type, const uint8_t* data,
                                     uint32_t dataLength) {
    if (AnyNull(list, data)) return Fail(StatusBadArgument);
    Tree<StoreEntry> entry;
    if (const Status status = entry.CopyOf(AddressOf(StoreEntry{Code(type), Octets(data, dataLength)}))) return status;
    return entry.MoveTo(list);
}

Status GetExtensionStoreCertificates(const ExtensionStoreCertificates* list, uint32_t index, int32_t* type,
                                     uint8_t* data, uint32_t* dataLength) {
    if (AnyNull(type, dataLength) || !HasIndex(list, index)) return Fail(StatusBadArgument);
    const Part<StoreEntry> entry = MemberAt(list, index);
    if (!entry || AnyNull(entry->type, entry->data)) return entry.Absent();
    return ReadOutputs(OutputRule::kUntilFailure, CodeInto(entry->type, type),
                       BytesInto(entry->data, data, dataLength));
}

Status GetExtensionStoreCertificatesCount(const ExtensionStoreCertificates* list, uint32_t* count) {
    return GetListCount(list, count);
}

Status RemoveExtensionStoreCertificates(ExtensionStoreCertificates* list, uint32_t index) {
    return RemoveListMember(list, index);
}

// --- Extended results of a file check ---

Status CreateExtensionOcspCheckFileExtResults(ExtensionOcspCheckFileExtResults** out) { return CreateTree(out); }

Status DecodeExtensionOcspCheckFileExtResults(const uint8_t* data, uint32_t length,
                                              ExtensionOcspCheckFileExtResults** out) {
    return DecodeTree(data, length, out);
}

Status EncodeExtensionOcspCheckFileExtResults(const ExtensionOcspCheckFileExtResults* list, uint8_t* buffer,
                                              uint32_t* length) {
    return EncodeTree(list, buffer, length);
}

Status FreeExtensionOcspCheckFileExtResults(ExtensionOcspCheckFileExtResults* list) { return FreeTree(list); }

Status AddExtensionOcspCheckFileExtResults(ExtensionOcspCheckFileExtResults* list, uint32_t code, const uint8_t* text,
                                           uint32_t textLength, uint32_t status, const LibraryTime* time,
                                           ExtensionStoreCertificates* certificates, X509GeneralNames* names) {
    if (AnyNull(list, text)) return Fail(StatusBadArgument);
    Tree<OcspCheckFileExtResult> result;
    const LibraryTime* given = IsLibraryTimeNull(time) == 0 ? time : nullptr;
    if (const Status made = result.CopyOf(AddressOf(
            OcspCheckFileExtResult{Code(code), Text(text, textLength), Code(status), nullptr, nullptr, nullptr}))) {
        return made;
    }
    if (const Status made = SetOptionalTime(&result->time, given)) return made;
    result->certificates = certificates;
    result->names = names;
    return result.MoveTo(list);
}

Status GetExtensionOcspCheckFileExtResults(const ExtensionOcspCheckFileExtResults* list, uint32_t index, int32_t* code,
                                           uint8_t* text, uint32_t* textLength, int32_t* status, LibraryTime* time,
                                           ExtensionStoreCertificates** certificates, X509GeneralNames** names) {
    if (AnyNull(code, textLength, status, certificates) || !HasIndex(list, index)) return Fail(StatusBadArgument);
    const Part<OcspCheckFileExtResult> result = MemberAt(list, index);
    if (!result || AnyNull(result->code, result->text, result->status)) return result.Absent();
    const auto readTime = [&]() -> Status {
        if (time == nullptr) return StatusOk;
        *time = LibraryTime{};
        return GetOptionalTime(result->time, time);
    };
    if (const Status read =
            ReadOutputs(OutputRule::kUntilFailure, CodeInto(result->code, code),
                        BytesInto(result->text, text, textLength), CodeInto(result->status, status), readTime)) {
        return read;
    }
    *certificates = result->certificates;
    if (names != nullptr) *names = result->names;
    return StatusOk;
}

Status GetExtensionOcspCheckFileExtResultsCount(const ExtensionOcspCheckFileExtResults* list, uint32_t* count) {
    return GetListCount(list, count);
}

Status RemoveExtensionOcspCheckFileExtResults(ExtensionOcspCheckFileExtResults* list, uint32_t index) {
    return RemoveListMember(list, index);
}

// --- One function under several names ---

TLVFORGE_ALIAS(DecodeExtensionZelcryptKeyIdentifier, DecodeExtensionSubjectSignTool);
TLVFORGE_ALIAS(DecodeExtensionSnils, DecodeExtensionSubjectSignTool);
TLVFORGE_ALIAS(DecodeExtensionOrganizationCode, DecodeExtensionSubjectSignTool);
TLVFORGE_ALIAS(DecodeExtensionClockNumber, DecodeExtensionSubjectSignTool);
TLVFORGE_ALIAS(DecodeExtensionVpnKeyTlsSerialNumber, DecodeExtensionSubjectSignTool);
TLVFORGE_ALIAS(DecodeExtensionOcspRequestGuid, DecodeExtensionSubjectSignTool);
TLVFORGE_ALIAS(DecodeExtensionOcspRequestPerson, DecodeExtensionSubjectSignTool);
TLVFORGE_ALIAS(DecodeExtensionOcspRequestBsnProdCode, DecodeExtensionSubjectSignTool);
TLVFORGE_ALIAS(EncodeExtensionZelcryptKeyIdentifier, EncodeExtensionSubjectSignTool);
TLVFORGE_ALIAS(EncodeExtensionSnils, EncodeExtensionSubjectSignTool);
TLVFORGE_ALIAS(EncodeExtensionOrganizationCode, EncodeExtensionSubjectSignTool);
TLVFORGE_ALIAS(EncodeExtensionClockNumber, EncodeExtensionSubjectSignTool);
TLVFORGE_ALIAS(EncodeExtensionVpnKeyTlsSerialNumber, EncodeExtensionSubjectSignTool);
TLVFORGE_ALIAS(EncodeExtensionOcspRequestGuid, EncodeExtensionSubjectSignTool);
TLVFORGE_ALIAS(EncodeExtensionOcspRequestPerson, EncodeExtensionSubjectSignTool);
TLVFORGE_ALIAS(EncodeExtensionOcspRequestBsnProdCode, EncodeExtensionSubjectSignTool);

TLVFORGE_ALIAS(DecodeExtensionOcspRequestPrivateKeyContexts, DecodeExtensionOcspRequestCertificates);
TLVFORGE_ALIAS(EncodeExtensionOcspRequestPrivateKeyContexts, EncodeExtensionOcspRequestCertificates);
TLVFORGE_ALIAS(DecodeExtensionExtendedResult, DecodeExtensionKeyStorage);
TLVFORGE_ALIAS(EncodeExtensionExtendedResult, EncodeExtensionKeyStorage);

// The types of the other stores are never completed: their lists are those of the first.
TLVFORGE_ALIAS_OF_HANDLE(CreateExtensionStorePrivateKeyContexts, CreateExtensionStoreCertificates);
TLVFORGE_ALIAS_OF_HANDLE(DecodeExtensionStorePrivateKeyContexts, DecodeExtensionStoreCertificates);
TLVFORGE_ALIAS_OF_HANDLE(EncodeExtensionStorePrivateKeyContexts, EncodeExtensionStoreCertificates);
TLVFORGE_ALIAS_OF_HANDLE(FreeExtensionStorePrivateKeyContexts, FreeExtensionStoreCertificates);
TLVFORGE_ALIAS_OF_HANDLE(AddExtensionStorePrivateKeyContexts, AddExtensionStoreCertificates);
TLVFORGE_ALIAS_OF_HANDLE(GetExtensionStorePrivateKeyContexts, GetExtensionStoreCertificates);
TLVFORGE_ALIAS_OF_HANDLE(GetExtensionStorePrivateKeyContextsCount, GetExtensionStoreCertificatesCount);
TLVFORGE_ALIAS_OF_HANDLE(RemoveExtensionStorePrivateKeyContexts, RemoveExtensionStoreCertificates);
TLVFORGE_ALIAS_OF_HANDLE(CreateExtensionStoreOcspRequestDocuments, CreateExtensionStoreCertificates);
TLVFORGE_ALIAS_OF_HANDLE(DecodeExtensionStoreOcspRequestDocuments, DecodeExtensionStoreCertificates);
TLVFORGE_ALIAS_OF_HANDLE(EncodeExtensionStoreOcspRequestDocuments, EncodeExtensionStoreCertificates);
TLVFORGE_ALIAS_OF_HANDLE(FreeExtensionStoreOcspRequestDocuments, FreeExtensionStoreCertificates);
TLVFORGE_ALIAS_OF_HANDLE(AddExtensionStoreOcspRequestDocuments, AddExtensionStoreCertificates);
TLVFORGE_ALIAS_OF_HANDLE(GetExtensionStoreOcspRequestDocuments, GetExtensionStoreCertificates);
TLVFORGE_ALIAS_OF_HANDLE(GetExtensionStoreOcspRequestDocumentsCount, GetExtensionStoreCertificatesCount);
TLVFORGE_ALIAS_OF_HANDLE(RemoveExtensionStoreOcspRequestDocuments, RemoveExtensionStoreCertificates);
