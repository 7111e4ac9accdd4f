#include "walk_x509.h"

// The bytes as a revocation list, and as a list of them.
void walk::WalkInput(const Bytes& in) {
    WALK(X509Crls, in, WalkCrls);
    WALK(X509Crl, in, WalkAndChangeCrl);
}
