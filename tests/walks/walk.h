// What walks are made of. A walk reads an object with every getter there is, holds the answers against each other, and
// makes the same object again of them. What doesn't fit is thrown: a fuzzer stops at it, a test reports it.
#pragma once

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "tlvforge/tlvforge.h"

namespace walk {

inline void Require(bool holds, int line = __builtin_LINE(), const char* file = __builtin_FILE()) {
    if (!holds) throw std::logic_error(std::string(file) + ":" + std::to_string(line));
}

// In a heap block of exactly their size, so that a sanitizer sees one byte too far.
class Bytes {
public:
    explicit Bytes(size_t size = 0) : block_(new uint8_t[size]()), size_(static_cast<uint32_t>(size)) {}
    Bytes(const void* from, size_t size) : Bytes(size) { std::copy_n(static_cast<const uint8_t*>(from), size, data()); }

    uint8_t* data() const { return block_.get(); }
    uint8_t* end() const { return data() + size_; }
    uint32_t size() const { return size_; }
    bool Has(uint8_t byte) const { return std::find(data(), end(), byte) != end(); }
    bool operator==(const Bytes& other) const { return std::equal(data(), end(), other.data(), other.end()); }

private:
    std::unique_ptr<uint8_t[]> block_;
    uint32_t size_;
};

// What a fuzz target does with an input.
void WalkInput(const Bytes& in);

inline bool Ok(Status status) { return status == StatusOk; }

template <auto Free>
struct Deleter {
    void operator()(auto* object) const { (void)Free(object); }
};
template <class Result, class T>
T* ArgumentOf(Result (*)(T*));
template <auto Free>
using Owned = std::unique_ptr<std::remove_pointer_t<decltype(ArgumentOf(Free))>, Deleter<Free>>;

// Owns what a function gives through its last parameter, which has to be nothing after a failure.
template <auto Free, class Function, class... Arguments>
Owned<Free> Make(Function function, Arguments... arguments) {
    decltype(ArgumentOf(Free)) object = nullptr;
    Require(Ok(function(arguments..., &object)) == (object != nullptr));
    return Owned<Free>(object);
}

// ---- Calls, where some arguments stand for two parameters ----

// A buffer of bytes or of text.
struct Buffer {
    uint8_t* bytes;
    operator uint8_t*() const { return bytes; }
    operator char*() const { return reinterpret_cast<char*>(bytes); }
};

// Stands for a buffer and its length among the arguments of a getter.
struct Output {
    Buffer buffer{};
    uint32_t length = 0;
} inline constexpr kOut;

auto Spread(auto& argument) { return std::tuple(argument); }
inline auto Spread(Output& output) { return std::tuple(output.buffer, &output.length); }

// Measures, has buffers refused that are one byte short, then takes results in buffers of their size.
inline bool TakeOutputs(const std::function<Status()>& call, const std::vector<Output*>& outputs, Bytes* results) {
    const bool made = Ok(call());
    if (!made || outputs.empty()) return made;
    std::vector<uint32_t> needed;
    for (const Output* output : outputs) needed.push_back(output->length);
    for (const uint32_t missing : {1u, 0u}) {
        bool fit = true;
        for (size_t i = 0; i < needed.size(); ++i) {
            results[i] = Bytes(needed[i] - std::min(missing, needed[i]));
            *outputs[i] = {{results[i].data()}, results[i].size()};
            fit = fit && results[i].size() == needed[i];
        }
        Require(call() == (fit ? StatusOk : StatusBufferTooSmall));
        for (size_t i = 0; i < needed.size(); ++i) Require(outputs[i]->length == needed[i]);
    }
    return true;
}

// All outputs of a getter. Nothing if it fails.
template <class... Arguments>
auto GetAll(auto function, Arguments... arguments) {
    std::vector<Output*> outputs;
    const auto note = [&](auto& argument) {
        if constexpr (std::is_same_v<decltype(argument), Output&>) outputs.push_back(&argument);
    };
    (note(arguments), ...);
    const auto call = [&] { return std::apply(function, std::tuple_cat(Spread(arguments)...)); };
    std::optional<std::array<Bytes, (0 + ... + std::is_same_v<Arguments, Output>)>> results(std::in_place);
    if (!TakeOutputs(call, outputs, results->data())) results.reset();
    return results;
}

// Of one at the end if kOut isn't there.
template <class Function, class... Arguments>
auto Get(Function function, Arguments... arguments) {
    if constexpr ((std::is_same_v<Arguments, Output> || ...))
        return GetAll(function, arguments...);
    else
        return GetAll(function, arguments..., kOut);
}
using MaybeBytes = std::optional<std::array<Bytes, 1>>;

// A result that has to be there.
template <class Result>
Result Sure(std::optional<Result> result, int line = __builtin_LINE(), const char* file = __builtin_FILE()) {
    Require(result.has_value(), line, file);
    return std::move(*result);
}
inline void Sure(Status status, int line = __builtin_LINE(), const char* file = __builtin_FILE()) {
    Require(Ok(status), line, file);
}

// What a function stores through its last parameter, which it has to do.
template <class... Parameters>
auto Lent(Status (*get)(Parameters...), auto... arguments) {
    std::remove_pointer_t<std::tuple_element_t<sizeof...(arguments), std::tuple<Parameters...>>> object{};
    Sure(get(arguments..., &object));
    return object;
}

void Each(auto count, auto list, auto visit) {
    uint32_t members = 0;
    Sure(count(list, &members));
    for (uint32_t i = 0; i < members; ++i) visit(i);
}

// All parts that Carry took along, but objects, and years: two digits may be written of them.
inline std::string& Carried() {
    static thread_local std::string carried;
    return carried;
}

// What was read and written once comes back as the same bytes.
template <class Rewrite>
void WalkTwice(const Bytes& in, Rewrite rewrite, bool stable) {
    const MaybeBytes once = rewrite(in);
    if (once && stable) Require(rewrite((*once)[0]) == once);
}

// Objects. They are visited after they were written.
template <auto Free, class Decode, class Encode, class Visit>
void WalkObject(const Bytes& in, Decode decode, Encode encode, Visit visit, bool stable = true) {
    const auto rewrite = [&](const Bytes& bytes) -> MaybeBytes {
        Carried().clear();
        const auto object = Make<Free>(decode, bytes.data(), bytes.size());
        if (!object) return std::nullopt;
        MaybeBytes encoded = Sure(Get(encode, object.get()));
        visit(object.get());
        return encoded;
    };
    WalkTwice(in, rewrite, stable);
}

// An object, and what was made of its parts. They may differ by OIDs above 255 bytes, whose length is cut to a byte.
inline void RequireSame(const MaybeBytes& encoded, const MaybeBytes& rebuilt) {
    Require(encoded && rebuilt && (encoded == rebuilt || (*rebuilt)[0].size() + 256 <= (*encoded)[0].size()));
}

constexpr LibraryTime kAnyTime = {2025, 1, 1, 0, 0, 0};
constexpr uint8_t kAnyBytes[] = {1, 42};  // an object identifier too

// ---- Parts, that getters and decoders give, and setters and encoders take in the same order ----

// A number, a flag, an object that is lent, or a record. One of zeros is none.
template <class T>
struct Plain {
    T value{};
    T* Out() { return &value; }
    void Take(Bytes*&) const {
        constexpr size_t kYear = std::is_class_v<T> ? sizeof(uint32_t) : 0;
        const auto* bytes = reinterpret_cast<const char*>(&value);
        if (!std::is_pointer_v<T>) Carried().append(bytes + kYear, bytes + sizeof value);
    }
    auto In() const {
        constexpr T kNone{};
        if constexpr (std::is_class_v<T>)
            return std::tuple(std::memcmp(&value, &kNone, sizeof value) != 0 ? &value : nullptr);
        else
            return std::tuple(value);
    }
};
using Number = Plain<int32_t>;
using Flag = Plain<uint32_t>;
using Octet = Plain<uint8_t>;
using Time = Plain<LibraryTime>;

struct Octets {
    Bytes bytes{};
    static Output Out() { return kOut; }
    void Take(Bytes*& next) {
        bytes = std::move(*next++);
        Carried().append(bytes.data(), bytes.end());
    }
    auto In() const { return std::tuple(bytes.data(), bytes.size()); }
};
// Null if empty.
struct Maybe : Octets {
    auto In() const { return std::tuple(bytes.size() != 0 ? bytes.data() : nullptr, bytes.size()); }
};
struct Oid : Maybe {
    auto In() const { return std::tuple(std::get<0>(Maybe::In())); }
};

inline void Ignore(const void*) {}

// A new object from every call, and its walk.
template <auto Free, auto Walk = Ignore>
struct Handed {
    decltype(ArgumentOf(Free)) object = nullptr;
    struct Slot {
        decltype(object)* at;
        operator decltype(at)() const { return (void)Free(*at), *at = nullptr, at; }
    };
    ~Handed() { (void)Free(object); }
    Slot Out() { return {&object}; }
    void Take(Bytes*&) const {
        const std::string before = Carried();
        if (object != nullptr) Walk(object);
        Carried() = before;
    }
    auto In() const { return std::tuple(object); }
};

// A function with its first arguments.
auto Of(auto function, auto... first) {
    return [=](auto... others) { return function(first..., others...); };
}

// False if the getter fails.
template <class... Parts>
bool Carry(auto get, auto set) {
    const auto carry = [&](auto&... part) {
        auto results = GetAll(get, part.Out()...);
        if (!results) return false;
        Bytes* next = results->data();
        (part.Take(next), ...);
        Sure(std::apply(set, std::tuple_cat(part.In()...)));
        return true;
    };
    std::tuple<Parts...> parts;
    return std::apply(carry, parts);
}

// Sets what the getter of the same object gives.
template <class... Parts>
bool PutBack(auto* of, auto get, auto set) {
    return Carry<Parts...>(Of(get, of), Of(set, of));
}

// For parts that can be written in one form only: both documents get them, or others if they can't be read.
template <class... Parts, class T>
void Share(T* from, T* to, auto get, auto set, auto... others) {
    const auto both = [&](auto... values) { return Ok(set(from, values...)) ? set(to, values...) : StatusAbsent; };
    if (!Carry<Parts...>(Of(get, from), both)) Sure(both(others...));
}

// Set to what it is, which a setter refuses if it means nothing.
void WalkVersion(auto* of, auto get, auto set) {
    int32_t version = 0;
    if (Ok(get(of, &version))) (void)set(of, version);
}

template <auto Free, class... Parts>
auto RebuildList(const auto* list, auto create, auto count, auto get, auto add) {
    auto rebuilt = Make<Free>(create);
    Each(count, list, [&](uint32_t i) { Carry<Parts...>(Of(get, list, i), Of(add, rebuilt.get())); });
    return rebuilt;
}

// A name, made again of its entries.
inline auto RebuildName(const X509Name* name) {
    auto rebuilt = Make<FreeX509Name>(CreateX509Name);
    Each(GetX509NameRdnCount, name, [&](uint32_t rdn) {
        Each(Of(GetX509NameEntryCount, name), rdn, [&](uint32_t entry) {
            const auto add = [&](auto... parts) { return AddX509NameEntryExt(rebuilt.get(), parts..., entry == 0); };
            Require(Carry<Octets, Octet, Octet, Octet, Oid>(Of(GetX509NameEntryExt, name, rdn, entry), add));
            uint8_t tag = 0;
            uint32_t id = 0;
            const auto [value, oid] = Sure(Get(GetX509NameEntry, name, rdn, entry, kOut, &tag, kOut));
            (void)FindNameAttributeTypeIdByOid(oid.data(), &id);
        });
    });
    return rebuilt;
}

template <class... Parts>
void WalkParts(const Bytes& in, bool stable, auto decode, auto encode) {
    const auto rewrite = [&](const Bytes& bytes) {
        MaybeBytes written;
        Carried().clear();
        const auto write = [&](auto... values) { return (written = Get(encode, values...)) ? StatusOk : StatusAbsent; };
        Carry<Parts...>(Of(decode, bytes.data(), bytes.size()), write);
        return written;
    };
    const MaybeBytes once = rewrite(in);
    const std::string first = Carried();
    // OIDs above 255 bytes are written with their length cut to a byte.
    if (once && stable && in.size() < (*once)[0].size() + 256)
        Require(rewrite((*once)[0]) == once && Carried() == first);
}

// Codecs of the same parts: what decodes them and what encodes them, one pair after the other.
template <class... Parts>
void WalkCodecs(const Bytes& in, auto decode, auto encode, auto... others) {
    WalkParts<Parts...>(in, true, decode, encode);
    if constexpr (sizeof...(others) > 0) WalkCodecs<Parts...>(in, others...);
}

inline Buffer NoBuffer(Buffer) { return {}; }
auto NoBuffer(auto argument) { return argument; }

// For a getter that ends at the first buffer that is too small: the lengths after it are filled in.
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
