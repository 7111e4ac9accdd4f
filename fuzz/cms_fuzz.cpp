#include "walk_cms.h"

// The bytes as a message, its content, and a list of messages.
void walk::WalkInput(const Bytes& in) { WalkMessage(in); }
