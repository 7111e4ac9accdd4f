#include "tlvforge/extensions.h"

#include "engine/list_cells.h"
#include "x509/extension.schema.h"

using namespace tlvforge;

Status CreateX509Extension(X509Extension** out, const uint8_t* oid, uint32_t critical, const uint8_t* value,
                           uint32_t valueLength) {
    if (out == nullptr) return Fail(StatusBadArgument);
    Tree<X509Extension> extension(NewRecord<X509Extension>());
    const Status status =
        extension ? SetX509Extension(extension.Get(), oid, critical, value, valueLength) : Fail(StatusOutOfMemory);
    *out = status == StatusOk ? extension.Take() : nullptr;
    return status;
}

Status SetX509Extension(X509Extension* extension, const uint8_t* oid, uint32_t critical, const uint8_t* value,
                        uint32_t valueLength) {
    if (AnyNull(extension, oid, value)) return Fail(StatusBadArgument);
    if (const Status status = ReplaceOidField(&extension->extnID, oid)) return status;
    if (const Status status = SetAsn1BooleanField(&extension->critical, critical != 0)) return status;
    return SetAsn1ValueField(&extension->extnValue, Asn1KindOctetString, value, valueLength);
}

Status GetX509Extension(const X509Extension* extension, uint8_t* oid, uint32_t* oidLength, uint32_t* critical,
                        uint8_t* value, uint32_t* valueLength) {
    if (AnyNull(extension, oidLength, valueLength)) return Fail(StatusBadArgument);
    if (AnyNull(extension->extnID, extension->extnValue)) return Fail(StatusAbsent);
    return ReadOutputs(
        OutputRule::kPastSmallBuffers, [&] { return GetAsn1Oid(extension->extnID, oid, oidLength); },
        [&] { return GetAsn1Value(extension->extnValue, value, valueLength); },
        [&] { return GetAsn1Boolean(extension->critical, critical); });
}

Status DecodeX509Extension(const uint8_t* data, uint32_t length, X509Extension** out) {
    return DecodeTree(data, length, out);
}

Status EncodeX509Extension(const X509Extension* extension, uint8_t* buffer, uint32_t* length) {
    return EncodeTree(extension, buffer, length);
}

Status FreeX509Extension(X509Extension* extension) { return FreeTree(extension); }

Status CreateX509Extensions(X509Extensions* out) {
    if (out == nullptr) return Fail(StatusBadArgument);
    return CreateCell(out);
}

Status DecodeX509Extensions(const uint8_t* data, uint32_t length, X509Extensions* out) {
    if (AnyNull(data, out)) return Fail(StatusBadArgument);
    return DecodeCell(data, length, out);
}

Status EncodeX509Extensions(X509Extensions extensions, uint8_t* buffer, uint32_t* length) {
    return EncodeCell(extensions, buffer, length);
}

Status FreeX509Extensions(X509Extensions extensions) { return FreeCell(extensions); }

Status ClearX509Extensions(X509Extensions extensions) { return ClearCell(extensions); }

Status RemoveX509Extensions(X509Extensions extensions) { return EmptyCell(extensions); }

Status AddX509ExtensionsExtension(X509Extensions extensions, const uint8_t* oid, int32_t critical, const uint8_t* value,
                                  uint32_t valueLength) {
    if (AnyNull(extensions, oid, value)) return Fail(StatusBadArgument);
    if (const Status status = Ensure(&extensions->list)) return status;
    Tree<X509Extension> extension;
    if (const Status status = CreateX509Extension(extension.Slot(), oid, critical != 0, value, valueLength)) {
        return status;
    }
    return extension.MoveTo(extensions->list);
}

Status FindX509Extension(X509Extensions extensions, const uint8_t* oid, uint32_t* index) {
    if (AnyNull(extensions, oid, index)) return Fail(StatusBadArgument);
    return FindByOid(extensions->list, &X509Extension::extnID, oid, index);
}

Status GetX509ExtensionsExtensionsCount(X509Extensions extensions, uint32_t* count) {
    return GetCellCount(extensions, count);
}

Status GetX509ExtensionsExtension(X509Extensions extensions, uint32_t index, uint8_t* oid, uint32_t* oidLength,
                                  uint32_t* critical, uint8_t* value, uint32_t* valueLength) {
    if (AnyNull(extensions, oidLength, valueLength)) return Fail(StatusBadArgument);
    const auto list = At<&X509ExtensionsCell::list>(extensions);
    X509Extension* extension = nullptr;
    if (const Status status = GetMember(list, index, &extension)) return status;
    return GetX509Extension(extension, oid, oidLength, critical, value, valueLength);
}

Status GetX509ExtensionsExtensionValue(X509Extensions extensions, const uint8_t* oid, uint8_t* value,
                                       uint32_t* valueLength) {
    if (valueLength == nullptr) return Fail(StatusBadArgument);
    uint32_t index = 0;
    if (const Status status = FindX509Extension(extensions, oid, &index)) return status;
    return GetBytes(At<&X509Extension::extnValue>(extensions->list->At(index)), value, valueLength);
}

Status RemoveX509ExtensionsExtension(X509Extensions extensions, uint32_t index) {
    if (extensions == nullptr) return Fail(StatusBadArgument);
    if (extensions->list == nullptr) return Fail(StatusAbsent);
    return RemoveMember(extensions->list, index);
}

Status RemoveX509ExtensionsExtension2(X509Extensions extensions, const uint8_t* oid) {
    if (AnyNull(extensions, oid)) return Fail(StatusBadArgument);
    // The index goes up after a removal too, so that the member after the removed one isn't looked at: see
    // docs/oddities.md. The setters that replace an extension share it.
    for (uint32_t i = 0; i < GetAsn1ListLength(extensions->list); ++i) {
        if (!HasOid(extensions->list, i, &X509Extension::extnID, oid)) continue;
        if (const Status status = RemoveMember(extensions->list, i)) return status;
    }
    return StatusOk;
}

Status SetX509ExtensionsSorted(X509Extensions extensions, uint32_t sorted) { return SetCellSorted(extensions, sorted); }
