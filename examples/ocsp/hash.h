// Hashes by the algorithm that a message names.
#pragma once

#include "../issuing/openssl.h"
#include "../outline/oids.h"

namespace examples {

// Null for an algorithm that OpenSSL doesn't know.
inline const EVP_MD* FindDigest(const Bytes& oid) { return EVP_get_digestbynid(OBJ_txt2nid(ToDotted(oid).c_str())); }

// Empty for such an algorithm.
inline Bytes HashBy(const Bytes& oid, const Bytes& bytes) {
    const EVP_MD* const digest = FindDigest(oid);
    if (digest == nullptr) return {};
    Bytes hash(EVP_MAX_MD_SIZE);
    unsigned length = 0;
    RequireOpenSsl(EVP_Digest(bytes.data(), bytes.size(), hash.data(), &length, digest, nullptr) > 0, "hashing");
    hash.resize(length);
    return hash;
}

}  // namespace examples
