// How requests and responses name a certificate (CertID, RFC 6960, 4.1.1).
#pragma once

#include "../issuing/parts.h"
#include "hash.h"

namespace examples {

struct CertificateId {
    Bytes hashOid, parameters;  // the algorithm of the two hashes
    Bytes nameHash, keyHash;    // of the issuer
    Bytes serial;

    bool operator==(const CertificateId&) const = default;
};

inline CertificateId IdentifyCertificate(const Bytes& hashOid, Certificate* issuer, const Bytes& serial) {
    const Bytes name = Require(Get(EncodeX509Name, SubjectOf(issuer)), "encoding a name");
    const Bytes key = Require(Get(GetCertificatePublicKey, issuer), "reading a public key");
    return {hashOid, {}, HashBy(hashOid, name), HashBy(hashOid, key), serial};
}

inline Bytes SerialNumberOf(const Certificate* certificate) {
    return Require(Get(GetCertificateSerialNumber, certificate), "reading a serial number");
}

// get: a getter of the library, whose arguments behind the document are the ten of a CertID.
template <class Get, class... Document>
CertificateId ReadCertificateId(Get get, Document... document) {
    Output hashOid, parameters, nameHash, keyHash, serial;
    const auto call = [&] {
        return get(document..., hashOid.data, &hashOid.length, parameters.data, &parameters.length, nameHash.data,
                   &nameHash.length, keyHash.data, &keyHash.length, serial.data, &serial.length);
    };
    Require(Fetch(call, hashOid, parameters, nameHash, keyHash, serial), "reading which certificate is meant");
    return {hashOid.bytes, parameters.bytes, nameHash.bytes, keyHash.bytes, serial.bytes};
}

// set: the reverse; further: its arguments behind those of a CertID.
template <class Set, class Document, class... Further>
void WriteCertificateId(Set set, Document* document, const CertificateId& id, Further... further) {
    const uint8_t* parametersOrNull = id.parameters.empty() ? nullptr : id.parameters.data();
    Require(set(document, id.hashOid.data(), parametersOrNull, Size(id.parameters), id.nameHash.data(),
                Size(id.nameHash), id.keyHash.data(), Size(id.keyHash), id.serial.data(), Size(id.serial), further...),
            "naming a certificate");
}

}  // namespace examples
