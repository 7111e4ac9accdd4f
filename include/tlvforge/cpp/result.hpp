/* Failures: as an exception, and as a value. */
#ifndef TLVFORGE_CPP_RESULT_HPP
#define TLVFORGE_CPP_RESULT_HPP

#if __has_include(<dlfcn.h>)
#include <dlfcn.h>
#endif

#include <cstdlib>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#if defined(__cpp_exceptions)
#include <stdexcept>
#endif

#include "tlvforge/status_text.h"

namespace tlvforge {
namespace types {

/** Failure says what failed and where. */
struct Failure {
    Status status = StatusOk;
    // The function of the library that failed; empty where that can't be found out. One of its names, if it has
    // several.
    std::string call = {};
    // Where the library found the fault, as GetLastFileErrorAsn says; null if it wasn't called.
    const char* file = nullptr;
    uint32_t line = 0;

    // "DecodeCertificate: the bytes aren't well-formed BER, ... (status 302, Tlvforge.cpp:12)"
    std::string text() const {
        std::string text = call.empty() ? call : call + ": ";
        text += StatusText(status);
        text += " (status " + std::to_string(status);
        if (file != nullptr) text += std::string(", ") + file + ":" + std::to_string(line);
        return text + ")";
    }
};

#if defined(__cpp_exceptions)
/** Error is what the functions of the namespace tlvforge throw; what() is the text of the failure. */
class Error : public std::runtime_error {
public:
    explicit Error(Failure failure) : std::runtime_error(failure.text()), failure_(std::move(failure)) {}

    Status status() const noexcept { return failure_.status; }
    const char* text() const noexcept { return StatusText(failure_.status); }
    const std::string& call() const noexcept { return failure_.call; }
    const Failure& failure() const noexcept { return failure_; }

private:
    Failure failure_;
};
#endif

/**
 * Result is what the functions of the namespace tlvforge::nothrow return: a value, or the failure in its place. To ask
 * for the value of a failure throws Error; without exceptions it ends the program.
 */
template <class T>
class [[nodiscard]] Result {
public:
    Result(T value) : value_(std::move(value)) {}
    Result(Failure failure) : failure_(std::move(failure)) {}

    explicit operator bool() const noexcept { return value_.has_value(); }
    bool has_value() const noexcept { return value_.has_value(); }
    Status status() const noexcept { return failure_.status; }
    const Failure& failure() const noexcept { return failure_; }

    T& value() & { return Checked(), *value_; }
    const T& value() const& { return Checked(), *value_; }
    T value() && { return Checked(), std::move(*value_); }
    T value_or(T other) && { return value_ ? std::move(*value_) : std::move(other); }
    T& operator*() & { return value(); }
    const T& operator*() const& { return value(); }
    T operator*() && { return std::move(*this).value(); }
    T* operator->() { return &value(); }
    const T* operator->() const { return &value(); }

private:
    void Checked() const {
        if (value_) return;
#if defined(__cpp_exceptions)
        throw Error(failure_);
#else
        std::abort();
#endif
    }

    std::optional<T> value_;
    Failure failure_;
};

/** The result of a call that has no outputs. */
template <>
class [[nodiscard]] Result<void> {
public:
    Result() = default;
    Result(Failure failure) : failure_(std::move(failure)) {}

    explicit operator bool() const noexcept { return failure_.status == StatusOk; }
    bool has_value() const noexcept { return failure_.status == StatusOk; }
    Status status() const noexcept { return failure_.status; }
    const Failure& failure() const noexcept { return failure_; }

    void value() const {
        if (has_value()) return;
#if defined(__cpp_exceptions)
        throw Error(failure_);
#else
        std::abort();
#endif
    }

private:
    Failure failure_;
};

}  // namespace types

using namespace types;

namespace detail {

// The failure of a call that isn't made, as its arguments can't be passed on, or whose results can't be taken. A
// function is named as the linker knows it.
template <class Function>
Failure RefusalOf(Status status, [[maybe_unused]] Function function) {
    Failure failure;
    failure.status = status;
#if __has_include(<dlfcn.h>)
    if constexpr (std::is_pointer_v<Function>) {
        Dl_info info;
        const bool found = dladdr(reinterpret_cast<const void*>(function), &info) != 0 && info.dli_sname != nullptr;
        if (found) failure.call = info.dli_sname;
    }
#endif
    return failure;
}

// The failure of a call that has just returned a status.
template <class Function>
Failure FailureOf(Status status, Function function) {
    Failure failure = RefusalOf(status, function);
    failure.file = GetLastFileErrorAsn(&failure.line);
    return failure;
}

// The failure of a function of these headers, where the library has no part in it.
inline Failure OwnFailure(Status status, const char* function) {
    Failure failure;
    failure.status = status;
    failure.call = function;
    return failure;
}

}  // namespace detail
}  // namespace tlvforge

#endif
