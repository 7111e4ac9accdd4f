// Fields that several kinds of documents have. A document brings its own getters, and where it has many of a field, the
// index of one. A field that is absent, which only optional ones can be, isn't mentioned.
#pragma once

#include <string>
#include <type_traits>

#include "algorithms.h"
#include "extensions.h"

namespace examples {

// The number on the wire.
template <class Function, class Document>
void PrintNumberField(Outline& outline, const std::string& label, Function function, const Document* document) {
    int32_t number = 0;
    const Status status = function(document, &number);
    if (status != StatusOk) return outline.Failed(label, status);
    outline.Line(label, std::to_string(number));
}

// Where version 1 is 0 on the wire.
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

// Who signed, or whom a key is for. `call` fetches the three outputs, of which there is either the last or the others.
template <class Call>
void PrintIdentifier(Outline& outline, Call&& call) {
    X509Name* issuer = nullptr;
    Output serial, keyId;
    const Status status = Fetch([&] { return call(&issuer, serial, keyId); }, serial, keyId);
    if (status != StatusOk) return outline.Failed("identifier", status);
    if (issuer == nullptr) return outline.Hex("key identifier", keyId.bytes);
    PrintName(outline, "issuer", issuer);
    outline.Hex("serial number", serial.bytes);
}

template <class GetAlgorithmOf, class GetKey, class GetGostKey, class Document>
void PrintPublicKey(Outline& outline, GetAlgorithmOf getAlgorithm, GetKey getKey, GetGostKey getGostKey,
                    const Document* document) {
    const Outline::Section section = outline.Open("Public key");
    const Algorithm algorithm = GetAlgorithm(getAlgorithm, document);
    PrintAlgorithm(outline, "algorithm", algorithm);
    outline.Start("key", Get(getKey, document));
    if (IsGostKey(algorithm.oid)) outline.Start("unwrapped", Get(getGostKey, document));
}

template <class Function, class Document, class... Index>
void PrintExtensionsField(Outline& outline, Function function, Document* document, Index... index) {
    X509Extensions extensions = nullptr;
    const Status status = function(document, index..., &extensions);
    if (status != StatusOk) return outline.Failed("Extensions", status);
    PrintExtensions(outline, extensions);
}

// A list, of which `print` shows the member at an index.
template <class Function, class Document, class Print>
void PrintMembersField(Outline& outline, const std::string& title, Function getCount, const Document* document,
                       Print&& print) {
    uint32_t count = 0;
    const Status status = getCount(document, &count);
    if (status != StatusOk) return outline.Failed(title, status);
    outline.Members(title, count, print);
}

// A list that lends its members.
template <class List, class Index, class Member, class Print>
void PrintLentMembers(Outline& outline, const std::string& title, Status (*getCount)(const List*, uint32_t*),
                      Status (*get)(const List*, Index, Member**), std::type_identity_t<const List*> list,
                      Print&& print) {
    PrintMembersField(outline, title, getCount, list, [&](uint32_t index) {
        Member* member = nullptr;
        const Status status = get(list, static_cast<Index>(index), &member);
        if (status != StatusOk) return outline.Failed("member", status);
        print(outline, member);
    });
}

}  // namespace examples
