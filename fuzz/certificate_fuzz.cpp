#include "walk_x509.h"

// The bytes as a certificate, and as the value of every extension.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const walk::Bytes in(data, size);
    walk::WalkValue(in);
    walk::WalkEncodedCertificate(in);
    return 0;
}
