#include "engine/codec.h"
#include "engine/nodes.h"

namespace tlvforge {

Asn1Any* AllocAsn1Any(uint32_t type, const uint8_t* data, uint32_t length) {
    return NewValue<Asn1Any>(type, data, length);
}

Asn1Any* AllocAsn1AnyFromContent(uint8_t tagClass, uint8_t constructedBit, uint32_t tagNumber, const uint8_t* content,
                                 uint32_t length) {
    const uint64_t size = TlvSize(length, tagNumber);
    if (size > UINT32_MAX || (content == nullptr && length != 0)) return nullptr;
    Asn1Any* any = NewRecordWithBytes<Asn1Any>(static_cast<uint32_t>(size));
    if (any == nullptr) return nullptr;
    any->type = tagNumber;
    const uint32_t header = WriteHeader(tagClass, constructedBit, tagNumber, length, any->data);
    CopyBytes(any->data + header, content, length);
    return any;
}

}  // namespace tlvforge
