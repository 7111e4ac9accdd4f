// Views: records over what a caller owns, for the encoder and for copies, which only read.
#pragma once

#include "engine/outputs.h"

namespace tlvforge {

template <class Node>
Node* Unconst(const Node* node) {
    return const_cast<Node*>(node);
}

inline Asn1Value ViewOf(uint32_t kind, Bytes bytes) { return {kind, bytes.length, Unconst(bytes.data)}; }

// Of a length-prefixed OID; without bytes for null.
inline Asn1Value ViewOfOid(const uint8_t* oid) {
    return oid != nullptr ? ViewOf(Asn1KindObjectIdentifier, {oid + 1, oid[0]}) : Asn1Value{};
}

// Lets a record of views be written where it is handed over: it lives until that call is over.
template <class Record>
const Record* AddressOf(const Record& record) {
    return &record;
}

}  // namespace tlvforge
