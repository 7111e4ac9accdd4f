#include "walk_documents.h"

// The bytes as a request, and as a set of attributes.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const walk::Bytes in(data, size);
    walk::WalkObject<FreeRsaAttributes>(in, DecodeRsaAttributes, EncodeRsaAttributes, walk::WalkAttributes);
    walk::WalkObject<FreePKCS10CertReq>(in, DecodePKCS10CertReq, EncodePKCS10CertReq, walk::WalkAndChangeRequest);
    return 0;
}
