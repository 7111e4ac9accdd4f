#include "tlvforge/cms.h"

#include "cms/cms.schema.h"
#include "engine/access.h"

using namespace tlvforge;

Status CreateSeveralData(SeveralData** data) { return CreateTree(data); }

Status DecodeSeveralData(const uint8_t* bytes, uint32_t length, SeveralData** data) {
    return DecodeTree(bytes, length, data);
}

Status EncodeSeveralData(const SeveralData* data, uint8_t* buffer, uint32_t* length) {
    return EncodeTree(data, buffer, length);
}

Status FreeSeveralData(SeveralData* data) { return FreeTree(data); }

Status AddSeveralDataContentInfo(SeveralData* data, CmsContentInfo* info) {
    if (AnyNull(data, info)) return Fail(StatusBadArgument);
    return AddMember(data, info);
}

Status GetSeveralDataContentInfoCount(const SeveralData* data, uint32_t* count) { return GetListCount(data, count); }

Status GetSeveralDataContentInfo(const SeveralData* data, uint32_t index, CmsContentInfo** info) {
    if (info == nullptr || !HasIndex(data, index)) return Fail(StatusBadArgument);
    return Borrow(MemberAt(data, index), info);
}

Status RemoveSeveralDataContentInfo(SeveralData* data, uint32_t index) {
    if (data == nullptr) return Fail(StatusBadArgument);
    return RemoveMember(data, index);
}
