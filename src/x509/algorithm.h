// What every document does with an AlgorithmIdentifier.
#pragma once

#include "engine/access.h"
#include "x509/algorithm.schema.h"

namespace tlvforge {

// A null length is StatusOk when the buffer is null too, so that a caller can skip the output, otherwise
// StatusBadArgument.
Status GetAlgorithmIdentifierOid(const AlgorithmIdentifier* record, Output oid);
// Absent parameters have the length 0.
Status GetAlgorithmIdentifierParameters(const AlgorithmIdentifier* record, Output parameters);
// An unknown id is StatusUnknownId and leaves the OID absent.
Status SetAlgorithmIdentifierById(AlgorithmIdentifier* record, uint32_t id);
// Null or length 0 leaves no parameters; otherwise a whole element is copied.
Status SetAlgorithmIdentifierParameters(AlgorithmIdentifier* record, Bytes parameters);

// The algorithm of a document. Both outputs, whatever happens to the first: StatusBufferTooSmall if either status is
// that or above, else the first that isn't StatusOk.
Status GetAlgorithm(const Part<AlgorithmIdentifier>& field, Output oid, Output parameters);
Status SetAlgorithm(const Part<AlgorithmIdentifier>& field, const uint8_t* oid, Bytes parameters);
Status SetAlgorithmById(const Part<AlgorithmIdentifier>& field, uint32_t id, Bytes parameters);

// The parameter sets of a GOST key by their numbers.
struct GostSets {
    uint8_t parametersForm;
    uint32_t publicKeyParamSet = 0;
    uint32_t digestParamSet = 0;
    uint32_t encryptionParamSet = 0;
};

Status SetGostAlgorithm(const Part<AlgorithmIdentifier>& field, uint32_t algorithmId, const GostSets& sets);

}  // namespace tlvforge
