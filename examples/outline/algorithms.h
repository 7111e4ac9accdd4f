// Algorithm identifiers.
#pragma once

#include <string>

#include "elements.h"

namespace examples {

// An algorithm as the getters of all documents give it.
struct Algorithm {
    Status status = StatusOk;
    Bytes oid;
    Bytes parameters;  // whole element, empty when absent
};

// index: where the document has several.
template <class Function, class Document, class... Index>
Algorithm GetAlgorithm(Function function, const Document* document, Index... index) {
    Output oid, parameters;
    const auto call = [&] {
        return function(document, index..., oid.data, &oid.length, parameters.data, &parameters.length);
    };
    const Status status = Fetch(call, oid, parameters);
    return {status, std::move(oid.bytes), std::move(parameters.bytes)};
}

// The parameters of a GOST public key: the three parameter sets.
template <uint32_t AlgorithmId>
Status PrintGostKeyParameters(Outline& outline, const Bytes& parameters) {
    Output key, digest, encryption;
    uint8_t form = 0;
    const Status status = Fetch(
        [&] {
            return DecodeAlgorithmGostR3410ParameterOids(AlgorithmId, parameters.data(), Size(parameters), &form,
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

inline Status PrintGost89Parameters(Outline& outline, const Bytes& parameters) {
    Output vector, set;
    const auto decode = [&] {
        return DecodeGost2814789Parameters(parameters.data(), Size(parameters), vector.data, &vector.length, set.data,
                                           &set.length);
    };
    const Status status = Fetch(decode, vector, set);
    if (status != StatusOk) return status;
    outline.Hex("initialization vector", vector.bytes);
    outline.Line("encryption set", DescribeOid(set.bytes));
    return StatusOk;
}

inline constexpr ValueCodec kParameterCodecs[] = {
    {"1.2.643.2.2.19", PrintGostKeyParameters<AlgorithmGostR34102001>},
    {"1.2.643.7.1.1.1.1", PrintGostKeyParameters<AlgorithmGostR34102012Key256>},
    {"1.2.643.7.1.1.1.2", PrintGostKeyParameters<AlgorithmGostR34102012Key512>},
    {"1.2.643.2.2.21", PrintGost89Parameters},
};

inline void PrintAlgorithm(Outline& outline, const std::string& label, const Algorithm& algorithm) {
    if (algorithm.status != StatusOk) return outline.Failed(label, algorithm.status);
    outline.Line(label, DescribeOid(algorithm.oid));
    const Outline::Section section(outline);
    if (algorithm.parameters.empty()) return;
    PrintValue(outline, "parameters", kParameterCodecs, algorithm.oid, algorithm.parameters);
}

// Of keys that stand in an OCTET STRING of their own.
inline bool IsGostKey(const Bytes& oid) {
    uint32_t id = 0;
    if (oid.empty() || FindAlgIdByOid(oid.data(), &id) != StatusOk) return false;
    return id == AlgorithmGostR34102001 || id == AlgorithmGostR34102012Key256 || id == AlgorithmGostR34102012Key512;
}

}  // namespace examples
