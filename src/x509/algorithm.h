// What every document does with an AlgorithmIdentifier.
#pragma once

#include "x509/algorithm.schema.h"

namespace tlvforge {

// A null length gives 0 when the buffer is null too, so that a caller can skip the output, otherwise 32.
Status GetAlgorithmIdentifierOid(const AlgorithmIdentifier* record, uint8_t* oid, uint32_t* length);
// Absent parameters give a length of 0.
Status GetAlgorithmIdentifierParameters(const AlgorithmIdentifier* record, uint8_t* parameters, uint32_t* length);
// Both outputs, whatever happens to the first: 49 if either status is 49 or above, else the first that isn't 0.
Status GetAlgorithmIdentifierOidAndParameters(const AlgorithmIdentifier* record, uint8_t* oid, uint32_t* oidLength,
                                              uint8_t* parameters, uint32_t* parametersLength);
Status SetAlgorithmIdentifierOid(AlgorithmIdentifier* record, const uint8_t* oid);
// An unknown id gives 309 and leaves the OID absent.
Status SetAlgorithmIdentifierById(AlgorithmIdentifier* record, uint32_t id);
// Null or length 0 leaves no parameters; otherwise a whole element is copied.
Status SetAlgorithmIdentifierParameters(AlgorithmIdentifier* record, const uint8_t* parameters, uint32_t length);
Status SetAlgorithmIdentifierOidAndParameters(AlgorithmIdentifier* record, const uint8_t* oid,
                                              const uint8_t* parameters, uint32_t length);
Status SetAlgorithmIdentifierIdAndParameters(AlgorithmIdentifier* record, uint32_t id, const uint8_t* parameters,
                                             uint32_t length);

}  // namespace tlvforge
