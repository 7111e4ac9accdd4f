#include "walk_x509.h"

// The bytes as a revocation list, and as a list of them.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const walk::Bytes in(data, size);
    walk::WalkObject<FreeX509Crls>(in, DecodeX509Crls, EncodeX509Crls, walk::WalkCrls);
    walk::WalkObject<FreeX509Crl>(in, DecodeX509Crl, EncodeX509Crl, walk::WalkAndChangeCrl);
    return 0;
}
