// What requests and responses do alike with single fields.
#pragma once

#include "ocsp/ocsp.schema.h"
#include "x509/fields.h"

namespace tlvforge {

// The lengths must not be null. A small buffer for the OID ends the reading; of the others, the first output that fits
// after one that didn't: see docs/oddities.md.
Status ReadCertID(const Part<CertID>& field, Output hashOid, Output parameters, Output nameHash, Output keyHash,
                  Output serial);
Status WriteCertID(const Part<CertID>& field, const uint8_t* hashOid, Bytes parameters, Bytes nameHash, Bytes keyHash,
                   Bytes serial);

// An algorithm is absent without its OID too. Both outputs are read, and a failure of another kind goes before a buffer
// that is too small.
Status ReadAlgorithm(const Part<AlgorithmIdentifier>& field, Output oid, Output parameters);

// Adds to the certificates beside a signature, and makes their list where there is none. It owns the certificate on
// success only.
Status AddCertificate(Certificates** certs, Certificate* certificate, Place place = Place::Here());

}  // namespace tlvforge
