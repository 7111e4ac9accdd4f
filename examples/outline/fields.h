// Fields that several kinds of documents have. A document brings its own getters, and where it has many of a field, the
// index of one. A field that is absent, which only optional ones can be, isn't mentioned.
#pragma once

#include <string>

#include "algorithms.h"
#include "extensions.h"

namespace examples {

template <class Function, class Document>
void PrintVersion(Outline& outline, Function function, const Document* document) {
    int32_t version = 0;
    const Status status = function(document, &version);
    if (status == StatusAbsent) return;
    if (status != StatusOk) return outline.Failed("Version", status);
    outline.Line("Version", std::to_string(int64_t{version} + 1));
}

template <class Function, class Document, class... Index>
void PrintTimeField(Outline& outline, const std::string& label, Function function, const Document* document,
                    Index... index) {
    LibraryTime time = {};
    const Status status = function(document, index..., &time);
    if (status == StatusAbsent) return;
    if (status != StatusOk) return outline.Failed(label, status);
    outline.Line(label, ToText(time));
}

// The name getters lend the name inside the document, and may create an empty one there.
template <class Function, class Document>
void PrintNameField(Outline& outline, const std::string& label, Function function, Document* document) {
    X509Name* name = nullptr;
    const Status status = function(document, &name);
    if (status != StatusOk) return outline.Failed(label, status);
    PrintName(outline, label, name);
}

template <class GetAlgorithmOf, class GetKey, class GetGostKey, class Document>
void PrintPublicKey(Outline& outline, GetAlgorithmOf getAlgorithm, GetKey getKey, GetGostKey getGostKey,
                    const Document* document) {
    const Outline::Section section = outline.Open("Public key");
    const Algorithm algorithm = GetAlgorithm(getAlgorithm, document);
    PrintAlgorithm(outline, "algorithm", algorithm);
    outline.Start("key", Get(getKey, document));
    if (GostKeyAlgorithmId(algorithm.oid)) outline.Start("unwrapped", Get(getGostKey, document));
}

template <class Function, class Document, class... Index>
void PrintExtensionsField(Outline& outline, Function function, const Document* document, Index... index) {
    X509Extensions extensions = nullptr;
    const Status status = function(document, index..., &extensions);
    if (status != StatusOk) return outline.Failed("Extensions", status);
    PrintExtensions(outline, extensions);
}

}  // namespace examples
