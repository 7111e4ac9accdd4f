// Whole files.
#pragma once

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "../support.h"

namespace examples {

inline Bytes ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    Bytes bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (!file.is_open() || file.bad()) throw std::runtime_error(path.string() + " can't be read");
    // Lengths are 32 bits wide at the interface.
    if (bytes.size() > UINT32_MAX) throw std::runtime_error(path.string() + " is too large");
    return bytes;
}

inline void WriteFile(const std::filesystem::path& path, const Bytes& bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush()) throw std::runtime_error(path.string() + " can't be written");
    printf("  wrote %s, %u bytes\n", path.c_str(), Size(bytes));
}

}  // namespace examples
