// Algorithm identifiers.
#pragma once

#include <optional>
#include <string>

#include "elements.h"

namespace examples {

// An algorithm as the getters of all documents give it.
struct Algorithm {
    Status status = StatusOk;
    Bytes oid;
    Bytes parameters;  // whole element, empty when absent
};

template <class Function, class Document>
Algorithm GetAlgorithm(Function function, const Document* document) {
    Output oid, parameters;
    const Status status =
        Fetch([&] { return function(document, oid.data, &oid.length, parameters.data, &parameters.length); }, oid,
              parameters);
    return {status, std::move(oid.bytes), std::move(parameters.bytes)};
}

// The parameters of a GOST public key: the three parameter sets.
inline Status PrintGostParameters(Outline& outline, uint32_t algorithmId, const Bytes& parameters) {
    Output key, digest, encryption;
    uint8_t form = 0;
    const Status status = Fetch(
        [&] {
            return DecodeAlgorithmGostR3410ParameterOids(algorithmId, parameters.data(), Size(parameters), &form,
                                                         key.data, &key.length, digest.data, &digest.length,
                                                         encryption.data, &encryption.length);
        },
        key, digest, encryption);
    if (status != StatusOk) return status;
    if (form == ParametersFormNull) outline.Line("parameters", "NULL");
    if (form != ParametersFormGost) return StatusOk;
    outline.Line("public key set", DescribeOid(key.bytes));
    outline.Line("digest set", DescribeOid(digest.bytes));
    outline.Line("encryption set", DescribeOid(encryption.bytes));
    return StatusOk;
}

// The number of the algorithm if its keys are GOST keys.
inline std::optional<uint32_t> GostKeyAlgorithmId(const Bytes& oid) {
    uint32_t id = 0;
    const bool known = !oid.empty() && FindAlgIdByOid(oid.data(), &id) == StatusOk;
    const bool gost = known && (id == AlgorithmGostR34102001 || id == AlgorithmGostR34102012Key256 ||
                                id == AlgorithmGostR34102012Key512);
    return gost ? std::optional(id) : std::nullopt;
}

inline void PrintAlgorithm(Outline& outline, const std::string& label, const Algorithm& algorithm) {
    if (algorithm.status != StatusOk) return outline.Failed(label, algorithm.status);
    outline.Line(label, DescribeOid(algorithm.oid));
    const Outline::Section section(outline);
    if (const std::optional<uint32_t> id = GostKeyAlgorithmId(algorithm.oid)) {
        const Status status = PrintGostParameters(outline, *id, algorithm.parameters);
        if (status == StatusOk) return;
        outline.Failed("GOST parameters", status);
    }
    if (!algorithm.parameters.empty()) PrintElement(outline, "parameters", algorithm.parameters);
}

}  // namespace examples
