#include "walk_x509.h"

// The bytes as a certificate, and as the value of every extension.
void walk::WalkInput(const Bytes& in) {
    WalkValue(in);
    WalkEncodedCertificate(in);
}
