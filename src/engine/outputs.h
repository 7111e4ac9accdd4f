// Functions with several inputs and outputs.
#pragma once

#include "engine/output.h"
#include "tlvforge/asn1.h"

namespace tlvforge {

// Arguments of the interface that come in pairs.
struct Bytes {
    const uint8_t* data;
    uint32_t length;
};

struct Output {
    uint8_t* buffer;
    uint32_t* length;
};

// Bytes of a field by the output-buffer rule. An absent field has the length 0.
inline Status GetOptionalBytes(const void* value, Output out) {
    return value != nullptr ? GetAsn1Value(value, out.buffer, out.length) : CopyOut(nullptr, 0, out.buffer, out.length);
}

// The same as a function for ReadOutputs.
inline auto BytesInto(const void* value, uint8_t* buffer, uint32_t* length) {
    return [=] { return GetOptionalBytes(value, {buffer, length}); };
}

// What becomes of the other outputs after one has failed, and which failure is the result.
enum class OutputRule {
    kUntilFailure,       // the first failure ends the reading
    kPastSmallBuffers,   // a buffer that is too small is remembered, so that one call stores all lengths; any other
                         // failure ends the reading and is the result
    kPastSmallUntilFit,  // a buffer that is too small is the result, and the first output after it that isn't ends the
                         // reading; without one, the first failure does
    kAllFirst,           // all are read; the first failure
    kAllLast,            // all are read; the last failure
    kAllSmallLast,       // all are read; the first failure but a small buffer, which comes last
};

// Fills outputs one after the other, by functions without arguments.
class OutputReader {
public:
    explicit OutputReader(OutputRule rule) : rule_(rule) {}

    template <class Read>
    void Then(const Read& read) {
        if (ended_) return;
        const Status status = read();
        ended_ = Ends(status);
        if (status != StatusOk && (result_ == StatusOk || Replaces(status))) result_ = status;
    }

    Status Result() const { return result_; }

private:
    bool Ends(Status status) const {
        switch (rule_) {
            case OutputRule::kUntilFailure: return status != StatusOk;
            case OutputRule::kPastSmallBuffers: return status != StatusOk && status != StatusBufferTooSmall;
            case OutputRule::kPastSmallUntilFit:
                return (status != StatusOk || result_ != StatusOk) && status != StatusBufferTooSmall;
            default: return false;
        }
    }

    bool Replaces(Status later) const {
        if (rule_ == OutputRule::kAllFirst || rule_ == OutputRule::kPastSmallUntilFit) return false;
        if (rule_ == OutputRule::kAllSmallLast) return result_ == StatusBufferTooSmall && later != StatusBufferTooSmall;
        return true;
    }

    OutputRule rule_;
    bool ended_ = false;
    Status result_ = StatusOk;
};

template <class... Reads>
Status ReadOutputs(OutputRule rule, const Reads&... reads) {
    OutputReader reader(rule);
    (reader.Then(reads), ...);
    return reader.Result();
}

}  // namespace tlvforge
