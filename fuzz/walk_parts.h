// Getters and decoders give parts, which setters and encoders take in the same order: carried from the one to the other
// they have to make the same document again.
#pragma once

#include <cstring>
#include <utility>

#include "walk.h"

namespace walk {

// What was carried, but objects, and years: two digits may be written of them.
inline std::string carried;

// A number, a flag, an object that is lent, or a record. One of zeros is none.
template <class T>
struct Plain {
    T value{};
    T* Out() { return &value; }
    auto In(const Bytes*&) const {
        constexpr T kNone{};
        constexpr size_t kYear = std::is_class_v<T> ? sizeof(uint32_t) : 0;
        const auto* bytes = reinterpret_cast<const char*>(&value);
        if (!std::is_pointer_v<T>) carried.append(bytes + kYear, bytes + sizeof value);
        if constexpr (std::is_class_v<T>)
            return std::tuple(std::memcmp(&value, &kNone, sizeof value) != 0 ? &value : nullptr);
        else
            return std::tuple(value);
    }
};
using Number = Plain<int32_t>;
using Flag = Plain<uint32_t>;
using Time = Plain<LibraryTime>;

struct Octets {
    static Output Out() { return kOut; }
    static auto In(const Bytes*& next) {
        const Bytes& bytes = *next++;
        carried.append(bytes.data(), bytes.end());
        return std::tuple{bytes.data(), bytes.size()};
    }
};
// Null if empty.
struct Maybe : Octets {
    static auto In(const Bytes*& next) {
        const auto [bytes, size] = Octets::In(next);
        return std::tuple(size != 0 ? bytes : nullptr, size);
    }
};
struct Oid : Octets {
    static auto In(const Bytes*& next) { return std::tuple(std::get<0>(Maybe::In(next))); }
};

inline void Ignore(const void*) {}

// An object that every call hands over anew, and its walk.
template <auto Free, auto Walk = Ignore>
struct Handed {
    decltype(ArgumentOf(Free)) object = nullptr;
    struct Slot {
        decltype(object)* at;
        operator decltype(at)() const { return (void)Free(*at), *at = nullptr, at; }
    };
    ~Handed() { (void)Free(object); }
    Slot Out() { return {&object}; }
    auto In(const Bytes*&) const {
        const std::string before = carried;
        if (object != nullptr) Walk(object);
        carried = before;
        return std::tuple(object);
    }
};

// A function with its first arguments.
auto Of(auto function, auto... first) {
    return [=](auto... others) { return function(first..., others...); };
}

// False if the getter fails.
template <class... Parts>
bool Carry(auto get, auto set) {
    std::tuple<Parts...> parts;
    const auto carry = [&](auto&... part) {
        std::optional<std::array<Bytes, (0 + ... + std::is_base_of_v<Octets, Parts>)>> results;
        if constexpr ((std::is_base_of_v<Octets, Parts> || ...))
            results = Get(get, part.Out()...);
        else if (Ok(get(part.Out()...)))
            results.emplace();
        if (!results) return false;
        const Bytes* next = results->data();
        const std::tuple<decltype(part.In(next))...> inputs{part.In(next)...};
        const auto join = [](auto... input) { return std::tuple_cat(input...); };
        Require(Ok(std::apply(set, std::apply(join, inputs))));
        return true;
    };
    return std::apply(carry, parts);
}

// For parts that can be written in one form only: both documents get them, or others if they can't be read.
template <class... Parts, class T>
void Share(T* from, T* to, auto get, auto set, auto... others) {
    const auto both = [&](auto... values) { return Ok(set(from, values...)) ? set(to, values...) : StatusAbsent; };
    if (!Carry<Parts...>(Of(get, from), both)) Require(Ok(both(others...)));
}

template <auto Free, class... Parts>
auto RebuildList(const auto* list, auto create, auto count, auto get, auto add) {
    auto rebuilt = Make<Free>(create);
    Each(count, list, [&](uint32_t i) { Carry<Parts...>(Of(get, list, i), Of(add, rebuilt.get())); });
    return rebuilt;
}

template <class... Parts>
void WalkParts(const Bytes& in, auto decode, auto encode, bool stable = true) {
    const auto rewrite = [&](const Bytes& bytes) {
        MaybeBytes written;
        carried.clear();
        const auto write = [&](auto... values) { return (written = Get(encode, values...)) ? StatusOk : StatusAbsent; };
        Carry<Parts...>(Of(decode, bytes.data(), bytes.size()), write);
        return written;
    };
    const MaybeBytes once = rewrite(in);
    const std::string first = carried;
    if (once && stable) Require(rewrite((*once)[0]) == once && carried == first);
}

inline Buffer NoBuffer(Buffer) { return {}; }
auto NoBuffer(auto argument) { return argument; }

// For a getter that ends at the first buffer that is too small: the lengths behind it are filled in.
auto Complete(auto function) {
    return [=](auto... arguments) {
        const Status status = function(arguments...);
        if (status == StatusBufferTooSmall) (void)function(NoBuffer(arguments)...);
        return status;
    };
}

// For a function that knows no capacity.
auto WithRoom(auto function) {
    return [=](auto... arguments) {
        const auto all = std::tie(arguments...);
        uint32_t& length = *std::get<sizeof...(arguments) - 1>(all);
        const uint32_t room = std::get<sizeof...(arguments) - 2>(all).bytes != nullptr ? length : UINT32_MAX;
        const Status status = function(NoBuffer(arguments)...);
        if (!Ok(status) || room < length) return Ok(status) ? StatusBufferTooSmall : status;
        return function(arguments...);
    };
}

}  // namespace walk
