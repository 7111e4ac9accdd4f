// What a C++ program puts between itself and the plain interface: owners of objects, and buffers of the right size.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tlvforge/tlvforge.h"

namespace examples {

using Bytes = std::vector<uint8_t>;

inline uint32_t Size(const Bytes& bytes) { return static_cast<uint32_t>(bytes.size()); }

// Owns an object of the library, and stands for the pointer to it.
template <class T, auto Free>
class Owned {
public:
    Owned() = default;
    Owned(Owned&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Owned& operator=(Owned&&) = delete;
    ~Owned() { (void)Free(object_); }

    operator T*() const { return object_; }

    // For the out-pointer of CreateX and DecodeX.
    T** Out() {
        (void)Free(std::exchange(object_, nullptr));
        return &object_;
    }

private:
    T* object_ = nullptr;
};

using OwnedCertificate = Owned<Certificate, FreeCertificate>;
using OwnedCrl = Owned<X509Crl, FreeX509Crl>;
using OwnedRequest = Owned<PKCS10CertReq, FreePKCS10CertReq>;
using OwnedExtensions = Owned<X509ExtensionsCell, FreeX509Extensions>;
using OwnedName = Owned<X509Name, FreeX509Name>;
using OwnedGeneralNames = Owned<X509GeneralNames, FreeX509GeneralNames>;

// One output of a function that gives bytes.
struct Output {
    uint8_t* data = nullptr;
    uint32_t length = 0;
    Bytes bytes;
};

// Makes a call that uses the outputs twice: first they are null and it tells their sizes, then it fills them.
template <class Call, class... Outputs>
Status Fetch(Call&& call, Outputs&... outputs) {
    const Status asked = call();
    if (asked != StatusOk) return asked;
    // A null pointer would ask for the size again, so an empty output gets a byte too.
    (outputs.bytes.resize(std::max(outputs.length, 1u)), ...);
    ((outputs.data = outputs.bytes.data()), ...);
    const Status filled = call();
    (outputs.bytes.resize(filled == StatusOk ? outputs.length : 0), ...);
    return filled;
}

// The bytes that a function gave, or the status that stands in their place.
struct Fetched {
    Status status = StatusOk;
    Bytes bytes;
};

// Fetches the bytes of a function that ends in (buffer, length) from the arguments before these two.
template <class Function, class... Arguments>
Fetched Get(Function function, const Arguments&... arguments) {
    Output output;
    const Status status = Fetch([&] { return function(arguments..., output.data, &output.length); }, output);
    return {status, std::move(output.bytes)};
}

// The same for functions that give characters.
template <class Function, class... Arguments>
std::pair<Status, std::string> GetText(Function function, const Arguments&... arguments) {
    const Fetched fetched = Get([&](uint8_t* buffer, uint32_t* length) {
        return function(arguments..., reinterpret_cast<char*>(buffer), length);
    });
    return {fetched.status, std::string(fetched.bytes.begin(), fetched.bytes.end())};
}

// "status 302, detected in Tlvforge.cpp, line 12"; only directly after the call that failed.
inline std::string DescribeFailure(Status status) {
    uint32_t line = 0;
    const char* file = GetLastFileErrorAsn(&line);
    std::string text = "status " + std::to_string(status);
    if (file != nullptr) text += std::string(", detected in ") + file + ", line " + std::to_string(line);
    return text;
}

}  // namespace examples
