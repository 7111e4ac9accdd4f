// Functions with several inputs and outputs.
#pragma once

#include "engine/output.h"
#include "tlvforge/asn1.h"

namespace tlvforge {

// Arguments of the interface that go in pairs.
struct Input {
    const uint8_t* bytes;
    uint32_t length;
};

struct Output {
    uint8_t* buffer;
    uint32_t* length;
};

// Bytes of a field by the output-buffer rule. An absent field has the length 0.
inline Status GetOptionalValue(const void* value, uint8_t* buffer, uint32_t* length) {
    return value != nullptr ? GetAsn1Value(value, buffer, length) : GiveBytes(nullptr, 0, buffer, length);
}

// Fills outputs one after the other. A buffer that is too small is remembered and the filling goes on, so that one call
// gives all lengths; any other failure ends it.
class Outputs {
public:
    template <class Function, class... Arguments>
    void Then(Function function, Arguments... arguments) {
        if (status_ != StatusOk && status_ != StatusBufferTooSmall) return;
        const Status status = function(arguments...);
        if (status != StatusOk) status_ = status;
    }

    Status Result() const { return status_; }

private:
    Status status_ = StatusOk;
};

template <class... Reads>
Status ReadEach(Reads... reads) {
    Outputs outputs;
    (outputs.Then(reads), ...);
    return outputs.Result();
}

}  // namespace tlvforge
