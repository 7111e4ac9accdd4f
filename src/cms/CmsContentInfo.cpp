#include "tlvforge/cms.h"

#include "cms/cms.schema.h"
#include "engine/access.h"

using namespace tlvforge;

Status CreateCmsContentInfo(CmsContentInfo** info) { return CreateTree(info); }

Status CreateCmsContentInfoCopy(const CmsContentInfo* info, CmsContentInfo** copy) { return CopyTree(info, copy); }

Status DecodeCmsContentInfo(const uint8_t* bytes, uint32_t length, CmsContentInfo** info) {
    return DecodeTree(bytes, length, info);
}

Status EncodeCmsContentInfo(const CmsContentInfo* info, uint8_t* buffer, uint32_t* length) {
    return EncodeTree(info, buffer, length);
}

Status FreeCmsContentInfo(CmsContentInfo* info) { return FreeTree(info); }

Status GetCmsContentInfoTypeOid(const CmsContentInfo* info, uint8_t* oid, uint32_t* length) {
    if (AnyNull(info, length)) return Fail(StatusBadArgument);
    return GetOid(At<&CmsContentInfo::contentType>(info), oid, length);
}

Status SetCmsContentInfoTypeOid(CmsContentInfo* info, const uint8_t* oid) {
    if (AnyNull(info, oid)) return Fail(StatusBadArgument);
    return SetOid(At<&CmsContentInfo::contentType>(info), oid);
}

Status GetCmsContentInfoContent(const CmsContentInfo* info, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(info, length)) return Fail(StatusBadArgument);
    return GetOptionalBytes(info->content, {buffer, length});
}

Status SetCmsContentInfoContent(CmsContentInfo* info, const uint8_t* data, uint32_t length) {
    if (info == nullptr) return Fail(StatusBadArgument);
    FreeField(&info->content);  // first: large content shouldn't be there twice
    if (data == nullptr || length == 0) return StatusOk;
    return ReplaceField(&info->content, AllocAsn1Any(data[0], data, length));
}

Status DecodeCmsContentInfoContent(const uint8_t* data, uint32_t length, uint8_t* buffer, uint32_t* bufferLength) {
    return DecodeAsn1PrimitiveValue(Asn1KindOctetString, data, length, buffer, bufferLength);
}

Status EncodeCmsContentInfoContent(const uint8_t* value, uint32_t valueLength, uint8_t* buffer, uint32_t* length) {
    return EncodeAsn1PrimitiveValue(Asn1KindOctetString, value, valueLength, buffer, length);
}
