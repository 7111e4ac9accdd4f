#include "walk_ocsp.h"

// The bytes as a request, a response, and parts of one.
void walk::WalkInput(const Bytes& in) { WalkOcsp(in); }
