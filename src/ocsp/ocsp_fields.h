// What requests and responses do alike with single fields. A part or record that the document lacks is handed in as
// null and gives 311. Failures are recorded at the place of the caller.
#pragma once

#include "engine/nodes.h"
#include "engine/outputs.h"
#include "ocsp/ocsp.schema.h"
#include "x509/transition.h"

namespace tlvforge {

// A field of a part; null too where the document lacks the part.
template <class Part, class Field>
Field* FieldOf(const Part* part, Field* Part::*field) {
    return part == nullptr ? nullptr : part->*field;
}

inline Status GetNumber(const Asn1Value* field, int32_t* number, Place place = Place::Here()) {
    return field == nullptr ? Fail(StatusAbsent, place) : GetAsn1Int32(field, number);
}

template <class Part>
Status LendExtensions(Part* part, X509ExtensionsCell Part::*cell, X509Extensions* extensions,
                      Place place = Place::Here()) {
    if (part == nullptr) return Fail(StatusAbsent, place);
    *extensions = &(part->*cell);
    return StatusOk;
}

// The lengths must not be null. A short buffer of the OID ends the reading. Otherwise it goes on behind a short buffer,
// and ends at the first value behind the parameters that fits after one: 49. Callers depend on which lengths they get.
Status ReadCertID(const CertID* id, const Output& hashOid, const Output& parameters, const Output& nameHash,
                  const Output& keyHash, const Output& serial, Place place = Place::Here());
Status WriteCertID(CertID* id, const uint8_t* hashOid, const Input& parameters, const Input& nameHash,
                   const Input& keyHash, const Input& serial, Place place = Place::Here());

// The status of a getter with two outputs, both of which have been tried: a failure of another kind goes before a
// buffer that is too small.
inline Status StatusOfBoth(Status first, Status second) {
    if (first != StatusOk && first != StatusBufferTooSmall) return first;
    return second != StatusOk ? second : first;
}

// An algorithm is absent (311) without its OID too.
Status ReadAlgorithm(const AlgorithmIdentifier* field, const Output& oid, const Output& parameters,
                     Place place = Place::Here());

// The certificates beside a signature. Adding makes the list; the list owns the certificate on success only.
Status AddCertificate(Certificates** certs, Certificate* certificate, Place place = Place::Here());
Status LendCertificate(const Certificates* certs, uint32_t index, Certificate** certificate,
                       Place place = Place::Here());

}  // namespace tlvforge
