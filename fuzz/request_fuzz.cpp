#include "walk_x509.h"

// The bytes as a request, a set of attributes, and one of them.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const walk::Bytes in(data, size);
    walk::WalkObject<FreeRsaAttribute>(in, DecodeRsaAttribute, EncodeRsaAttribute, [](RsaAttribute* from) {
        walk::Sure(walk::Get(GetRsaAttributeOid, from));
        walk::Each(GetRsaAttributeValuesCount, from, [=](uint32_t i) {
            walk::Carry<walk::Octets>(walk::Of(GetRsaAttributeValue, from, i), walk::Of(AddRsaAttributeValue, from));
        });
    });
    walk::WalkObject<FreeRsaAttributes>(in, DecodeRsaAttributes, EncodeRsaAttributes, walk::WalkAttributes);
    walk::WalkObject<FreePKCS10CertReq>(in, DecodePKCS10CertReq, EncodePKCS10CertReq, walk::WalkAndChangeRequest);
    return 0;
}
