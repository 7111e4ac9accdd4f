// Where documents come from: files, standard input, and the blocks of PEM in them.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "bytes.h"

namespace inspect {

// Appends all that can be read. The result is what went wrong, or nothing.
std::string ReadToEnd(FILE* file, Bytes& bytes);
std::string ReadPath(const char* path, Bytes& bytes);

// Every kind of document is a SEQUENCE, and no PEM text begins with its identifier octet.
bool IsDer(View bytes);

// What stands between a BEGIN line and the line that ends it. Lines and columns are those of the file, from 1 on.
struct PemBlock {
    std::string_view text;
    std::string_view label;
    size_t line = 1;           // of BEGIN
    size_t textLine = 1;       // of the text
    bool isEncrypted = false;  // as its header lines have it
};

std::vector<PemBlock> SplitPem(std::string_view text);

// Base64 with white space of any kind anywhere. The result is what is wrong and where, or nothing; text begins in
// `line`.
std::string DecodeBase64(std::string_view text, size_t line, Bytes& bytes);

}  // namespace inspect
