#include "tlvforge/private_extensions.h"

#include "engine/alias.h"
#include "engine/outputs.h"
#include "tlvforge/oid.h"
#include "x509/extension_codecs.h"
#include "x509/private_extensions.schema.h"

using namespace tlvforge;

namespace {

// --- Fields of a decoded structure ---

// A field and where it goes: bytes by the output-buffer rule, length 0 when it is absent; or a code, with a flag that
// tells whether it is there. A null code or flag isn't asked for.
class FieldOutput {
public:
    FieldOutput(const Asn1Value* field, uint8_t* buffer, uint32_t* length)
        : field_(field), isCode_(false), buffer_(buffer), length_(length) {}
    FieldOutput(const Asn1Value* field, int32_t* code, uint32_t* has = nullptr)
        : field_(field), isCode_(true), code_(code), has_(has) {}

    bool IsCode() const { return isCode_; }

    Status Read() const {
        if (has_ != nullptr) *has_ = field_ != nullptr ? 1 : 0;
        if (isCode_) return AnyNull(field_, code_) ? StatusOk : GetAsn1Int32(field_, code_);
        return GetOptionalValue(field_, buffer_, length_);
    }

private:
    const Asn1Value* field_;
    bool isCode_;
    uint8_t* buffer_ = nullptr;
    uint32_t* length_ = nullptr;
    int32_t* code_ = nullptr;
    uint32_t* has_ = nullptr;
};

// The failures after which the outputs behind are read all the same.
enum class GoOn { kNever, kAfterSmallBuffer, kAlways };

// Reads in order. The last failure is the result.
template <size_t Count>
Status ReadFields(const FieldOutput (&outputs)[Count], GoOn goOn = GoOn::kNever) {
    Status result = StatusOk;
    for (const FieldOutput& output : outputs) {
        const Status status = output.Read();
        if (status == StatusOk) continue;
        result = status;
        const bool smallBuffer = status == StatusBufferTooSmall && !output.IsCode();
        if (goOn == GoOn::kNever || (goOn == GoOn::kAfterSmallBuffer && !smallBuffer)) break;
    }
    return result;
}

// --- Arguments as the fields of a structure that is encoded or copied at once ---

// Null bytes, and a code that isn't given, leave their field out.
struct Argument {
    Asn1Value value;

    operator Asn1Value*() { return value.data != nullptr ? &value : nullptr; }
};

// Bytes of the caller, which are only read.
struct Octets : Argument {
    Octets(const uint8_t* data, uint32_t length)
        : Argument{{Asn1KindOctetString, length, const_cast<uint8_t*>(data)}} {}
};

struct Text : Argument {
    Text(const uint8_t* data, uint32_t length) : Argument{{Asn1KindUTF8String, length, const_cast<uint8_t*>(data)}} {}
};

struct Code : Argument {
    uint8_t element[6];

    explicit Code(uint32_t number, bool given = true) : Argument{} {
        uint32_t size = sizeof element;
        (void)EncodeAsn1Int32(static_cast<int32_t>(number), element, &size);  // every number fits
        if (given) value = {Asn1KindEnumerated, size - 2, element + 2};
    }
    Code(const Code&) = delete;
    Code& operator=(const Code&) = delete;
};

// Lets a structure of such fields be written where it is handed over: all of them live until that call is over.
template <class Record>
const Record* AddressOf(const Record& record) {
    return &record;
}

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
    return length != 0 ? DecodeEnumerated(data, length, value) : Fail(StatusBadArgument);
}

Status EncodeExtensionOcspRequestCertificates(uint32_t value, uint8_t* buffer, uint32_t* length) {
    return EncodeEnumerated(value, buffer, length);
}

Status DecodeExtensionOcspRequestDocuments(const uint8_t* data, uint32_t length, int32_t* value) {
    return DecodeAsn1Enumerated(data, length, value);
}

// An INTEGER, whatever the name says, and unlike the neighbours: intended, the format depends on it.
Status EncodeExtensionOcspRequestDocuments(uint32_t value, uint8_t* buffer, uint32_t* length) {
    return EncodeAsn1Enumerated(static_cast<int32_t>(value), buffer, length);
}

Status DecodeExtensionRequestBlockingDate(const uint8_t* data, uint32_t length, LibraryTime* from, LibraryTime* to) {
    return DecodeTimePair(data, length, from, to);
}

Status EncodeExtensionRequestBlockingDate(const LibraryTime* from, const LibraryTime* to, uint8_t* buffer,
                                          uint32_t* length) {
    return EncodeTimePair(from, to, buffer, length);
}

// --- Several fields ---

Status DecodeExtensionIssuerSignTool(const uint8_t* data, uint32_t length, uint8_t* signTool, uint32_t* signToolLength,
                                     uint8_t* cATool, uint32_t* cAToolLength, uint8_t* signToolCert,
                                     uint32_t* signToolCertLength, uint8_t* cAToolCert, uint32_t* cAToolCertLength) {
    // Of the third text the buffer is required and not the length: intended, callers depend on what the rest gives.
    if (AnyNull(data, signToolLength, cAToolLength, signToolCert, cAToolCertLength) || length == 0) {
        return Fail(StatusBadArgument);
    }
    Tree<IssuerSignTool> tools;
    const Status status = tools.Decode(data, length);
    if (status != StatusOk) return status;
    return ReadFields({{tools->signTool, signTool, signToolLength},
                       {tools->cATool, cATool, cAToolLength},
                       {tools->signToolCert, signToolCert, signToolCertLength},
                       {tools->cAToolCert, cAToolCert, cAToolCertLength}},
                      GoOn::kAlways);
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
    const Status status = storage.Decode(data, length);
    if (status != StatusOk) return status;
    return ReadFields({{storage->code, code}, {storage->text, text, textLength}});
}

Status EncodeExtensionKeyStorage(uint32_t code, const uint8_t* text, uint32_t textLength, uint8_t* buffer,
                                 uint32_t* length) {
    return EncodeTree(AddressOf(KeyStorage{Code(code), Text(textLength != 0 ? text : nullptr, textLength)}), buffer,
                      length);
}

Status DecodeExtensionOcspCheckTime2(const uint8_t* data, uint32_t length, int32_t* code, LibraryTime* time) {
    if (AnyNull(data, time)) return Fail(StatusBadArgument);
    Tree<OcspCheckTime2> check;
    const Status status = check.Decode(data, length);
    if (status != StatusOk) return status;
    const Status codeStatus = GetAsn1Int32(check->code, code);
    // The status of a time takes the place of the code's: intended, callers that only want the time depend on it.
    return check->time != nullptr ? GetOptionalTime(check->time, time) : codeStatus;
}

Status EncodeExtensionOcspCheckTime2(uint32_t code, const LibraryTime* time, uint8_t* buffer, uint32_t* length) {
    if (length == nullptr) return Fail(StatusBadArgument);
    Tree<OcspCheckTime2> check;
    Status status = check.Create();
    if (status == StatusOk) status = SetAsn1Int32Field(&check->code, static_cast<int32_t>(code));
    if (status == StatusOk) status = SetOptionalTime(&check->time, time);
    return status == StatusOk ? check.Encode(buffer, length) : status;
}

Status DecodeExtensionOcspCheckKeyMeshRegistry(const uint8_t* data, uint32_t length, uint8_t* firstName,
                                               uint32_t* firstNameLength, uint8_t* secondName,
                                               uint32_t* secondNameLength, uint32_t* hasCode, int32_t* code) {
    if (AnyNull(data, firstNameLength, secondNameLength, hasCode, code) || length == 0) return Fail(StatusBadArgument);
    Tree<OcspCheckKeyMeshRegistry> registry;
    const Status status = registry.Decode(data, length);
    if (status != StatusOk) return status;
    return ReadFields({{registry->firstName, firstName, firstNameLength},
                       {registry->secondName, secondName, secondNameLength},
                       {registry->code, code, hasCode}});
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
    const Status status = file.Decode(data, length);
    if (status != StatusOk) return status;
    return ReadFields({{file->fileData, fileData, fileDataLength},
                       {file->fileExtra1, fileExtra1, fileExtra1Length},
                       {file->fileExtra2, fileExtra2, fileExtra2Length},
                       {file->fileCode, reinterpret_cast<int32_t*>(fileCode), hasFileCode},
                       {file->fileText1, fileText1, fileText1Length},
                       {file->fileText2, fileText2, fileText2Length},
                       {file->fileCode2, fileCode2, hasFileCode2}},
                      GoOn::kAfterSmallBuffer);
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
    const Status status = entry.CopyOf(AddressOf(StoreEntry{Code(type), Octets(data, dataLength)}));
    return status == StatusOk ? entry.MoveTo(list) : status;
}

Status GetExtensionStoreCertificates(const ExtensionStoreCertificates* list, uint32_t index, int32_t* type,
                                     uint8_t* data, uint32_t* dataLength) {
    if (AnyNull(list, type, dataLength)) return Fail(StatusBadArgument);
    StoreEntry* entry = nullptr;
    const Status status = GetListMember(list, index, &entry);
    if (status != StatusOk) return status;
    if (AnyNull(entry->type, entry->data)) return Fail(StatusAbsent);
    return ReadFields({{entry->type, type}, {entry->data, data, dataLength}});
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
    Status made = result.CopyOf(
        AddressOf(OcspCheckFileExtResult{Code(code), Text(text, textLength), Code(status), nullptr, nullptr, nullptr}));
    if (made == StatusOk) made = SetOptionalTime(&result->time, IsLibraryTimeNull(time) == 0 ? time : nullptr);
    if (made != StatusOk) return made;
    result->certificates = certificates;
    result->names = names;
    return result.MoveTo(list);
}

Status GetExtensionOcspCheckFileExtResults(const ExtensionOcspCheckFileExtResults* list, uint32_t index, int32_t* code,
                                           uint8_t* text, uint32_t* textLength, int32_t* status, LibraryTime* time,
                                           ExtensionStoreCertificates** certificates, X509GeneralNames** names) {
    if (AnyNull(list, code, textLength, status, certificates)) return Fail(StatusBadArgument);
    OcspCheckFileExtResult* result = nullptr;
    Status read = GetListMember(list, index, &result);
    if (read != StatusOk) return read;
    if (AnyNull(result->code, result->text, result->status)) return Fail(StatusAbsent);
    read = ReadFields({{result->code, code}, {result->text, text, textLength}, {result->status, status}});
    if (read == StatusOk && time != nullptr) {
        *time = LibraryTime{};
        read = GetOptionalTime(result->time, time);
    }
    if (read != StatusOk) return read;
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

using DecodeText = decltype(DecodeExtensionSubjectSignTool);
using EncodeText = decltype(EncodeExtensionSubjectSignTool);
DecodeText DecodeExtensionZelcryptKeyIdentifier __attribute__((alias("DecodeExtensionSubjectSignTool")));
DecodeText DecodeExtensionSnils __attribute__((alias("DecodeExtensionSubjectSignTool")));
DecodeText DecodeExtensionOrganizationCode __attribute__((alias("DecodeExtensionSubjectSignTool")));
DecodeText DecodeExtensionClockNumber __attribute__((alias("DecodeExtensionSubjectSignTool")));
DecodeText DecodeExtensionVpnKeyTlsSerialNumber __attribute__((alias("DecodeExtensionSubjectSignTool")));
DecodeText DecodeExtensionOcspRequestGuid __attribute__((alias("DecodeExtensionSubjectSignTool")));
DecodeText DecodeExtensionOcspRequestPerson __attribute__((alias("DecodeExtensionSubjectSignTool")));
DecodeText DecodeExtensionOcspRequestBsnProdCode __attribute__((alias("DecodeExtensionSubjectSignTool")));
EncodeText EncodeExtensionZelcryptKeyIdentifier __attribute__((alias("EncodeExtensionSubjectSignTool")));
EncodeText EncodeExtensionSnils __attribute__((alias("EncodeExtensionSubjectSignTool")));
EncodeText EncodeExtensionOrganizationCode __attribute__((alias("EncodeExtensionSubjectSignTool")));
EncodeText EncodeExtensionClockNumber __attribute__((alias("EncodeExtensionSubjectSignTool")));
EncodeText EncodeExtensionVpnKeyTlsSerialNumber __attribute__((alias("EncodeExtensionSubjectSignTool")));
EncodeText EncodeExtensionOcspRequestGuid __attribute__((alias("EncodeExtensionSubjectSignTool")));
EncodeText EncodeExtensionOcspRequestPerson __attribute__((alias("EncodeExtensionSubjectSignTool")));
EncodeText EncodeExtensionOcspRequestBsnProdCode __attribute__((alias("EncodeExtensionSubjectSignTool")));

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
