#include "tlvforge/cms.h"

#include "cms/cms.schema.h"
#include "engine/nodes.h"
#include "x509/extension_codecs.h"

using namespace tlvforge;

Status CreateSeveralData(SeveralData** data) { return CreateAsn1Object(&schema::SeveralData, Untyped(data), 1); }

Status DecodeSeveralData(const uint8_t* bytes, uint32_t length, SeveralData** data) {
    return DecodeTree(schema::SeveralData, bytes, length, data);
}

Status EncodeSeveralData(const SeveralData* data, uint8_t* buffer, uint32_t* length) {
    return GetAsn1EncodedValue(data, &schema::SeveralData, buffer, length);
}

Status FreeSeveralData(SeveralData* data) { return FreeAsn1Object(&schema::SeveralData, data); }

Status AddSeveralDataContentInfo(SeveralData* data, CmsContentInfo* info) {
    if (AnyNull(data, info)) return Fail(StatusBadArgument);
    return AddAsn1ListItem(data, schema::CmsContentInfo, info);
}

Status GetSeveralDataContentInfoCount(const SeveralData* data, uint32_t* count) { return GetListCount(data, count); }

Status GetSeveralDataContentInfo(const SeveralData* data, uint32_t index, CmsContentInfo** info) {
    return GetListMember(data, index, info);
}

Status RemoveSeveralDataContentInfo(SeveralData* data, uint32_t index) {
    return RemoveListMember(data, index, schema::CmsContentInfo);
}
