/* Calls of the C interface with C++ arguments and results. */
#ifndef TLVFORGE_CPP_CALL_HPP
#define TLVFORGE_CPP_CALL_HPP

#include <optional>
#include <tuple>
#include <type_traits>
#include <utility>

#include "tlvforge/cpp/bytes.hpp"
#include "tlvforge/cpp/handle.hpp"
#include "tlvforge/cpp/result.hpp"
#include "tlvforge/cpp/time.hpp"

namespace tlvforge {
namespace detail {

// --- What a function's parameters are ---

// The parameters, as a tuple that is never made.
template <class Function, class = void>
struct Signature {
    static_assert(
        !std::is_same_v<Function, Function>,
        "not a function that returns a Status; one with templates or several overloads can't be given either");
};
template <bool Noexcept, class... P>
struct Signature<Status (*)(P...) noexcept(Noexcept), void> {
    using Parameters = std::tuple<P...>;
};
template <class Class, bool Noexcept, class... P>
struct Signature<Status (Class::*)(P...) noexcept(Noexcept), void> : Signature<Status (*)(P...)> {};
template <class Class, bool Noexcept, class... P>
struct Signature<Status (Class::*)(P...) const noexcept(Noexcept), void> : Signature<Status (*)(P...)> {};
template <class Functor>
struct Signature<Functor, std::void_t<decltype(&Functor::operator())>> : Signature<decltype(&Functor::operator())> {};

template <class Function>
using ParametersOf = typename Signature<Function>::Parameters;

template <class T>
inline constexpr bool kIsTime = std::is_same_v<T, LibraryTime> || std::is_same_v<T, LibraryPreciseTime>;

// Pointers to what a function can store: numbers, pointers and plain records. Objects of the library are none of them.
template <class P, class T = std::remove_pointer_t<P>>
inline constexpr bool kIsOutput =
    std::is_pointer_v<P> && !std::is_const_v<T> && (std::is_scalar_v<T> || kIsTime<T> || std::is_same_v<T, Accuracy>);

template <class P>
inline constexpr bool kIsBufferPointer = std::is_same_v<P, uint8_t*> || std::is_same_v<P, char*>;
template <class P>
inline constexpr bool kIsBytesPointer = std::is_same_v<P, const uint8_t*> || std::is_same_v<P, const char*>;

// --- What goes in ---

template <class A>
inline constexpr bool kIsHandle = false;
template <class T>
inline constexpr bool kIsHandle<std::unique_ptr<T, Free>> = true;

template <class A>
inline constexpr bool kIsTimePoint = false;
template <class Duration>
inline constexpr bool kIsTimePoint<std::chrono::time_point<std::chrono::system_clock, Duration>> = true;

template <class A>
inline constexpr bool kIsOptional = false;
template <class T>
inline constexpr bool kIsOptional<std::optional<T>> = true;

// Arguments that stand for a pointer and a length where a function has both. An Oid contains its length.
template <class A>
inline constexpr bool kIsBytes =
    !std::is_same_v<A, Oid> && (kIsByteRange<A> || std::is_convertible_v<const A&, const char*>);

// A time_point as the record that a function takes; lives as long as the call.
template <class Record>
struct TimeArgument {
    Record record;
    operator const Record*() const noexcept { return &record; }
};

template <class Record, class Duration>
TimeArgument<Record> ToArgument(std::chrono::time_point<std::chrono::system_clock, Duration> time) noexcept {
    if constexpr (std::is_same_v<Record, LibraryTime>) {
        return {RecordOf(std::chrono::floor<std::chrono::seconds>(time))};
    } else {
        const auto record = nothrow::ToLibraryPreciseTime(time);
        return {record ? *record : LibraryPreciseTime{}};
    }
}

// The parameter that an argument stands for.
template <class P, class A>
decltype(auto) Pass(const A& argument) noexcept {
    using Pointee = std::remove_cv_t<std::remove_pointer_t<P>>;
    if constexpr (kIsHandle<A>) {
        static_assert(std::is_convertible_v<typename A::pointer, P>, "a handle of another type than the call takes");
        return P{argument.get()};
    } else if constexpr (std::is_convertible_v<const A&, P> && (std::is_pointer_v<P> || std::is_same_v<A, P>)) {
        return P{argument};
    } else if constexpr (std::is_arithmetic_v<P> && (std::is_arithmetic_v<A> || std::is_enum_v<A>)) {
        return static_cast<P>(argument);
    } else if constexpr (std::is_same_v<P, const char*> && std::is_same_v<A, std::string>) {
        return argument.c_str();
    } else if constexpr (std::is_same_v<P, const uint8_t*> && kIsByteRange<A>) {
        return ByteView(argument).data();
    } else if constexpr (kIsTime<Pointee> && kIsTimePoint<A>) {
        return ToArgument<Pointee>(argument);
    } else if constexpr (std::is_same_v<P, const A*>) {
        return &argument;
    } else if constexpr (kIsOptional<A>) {
        static_assert(std::is_same_v<typename A::value_type, Pointee>, "an argument has the wrong type for the call");
        return argument ? &*argument : P{nullptr};
    } else {
        static_assert(!std::is_same_v<A, A>, "an argument has the wrong type for the call");
    }
}

// Whether a number is the same in another type: the same bits can be a negative one there.
template <class P, class A>
constexpr bool Fits(A number) noexcept {
    const P passed = static_cast<P>(number);
    return static_cast<A>(passed) == number && (passed > P{}) == (number > A{});
}

// What is wrong with an argument before the call is made.
template <class P, bool Wide, class A>
Status Check(const A& argument) noexcept {
    if constexpr (Wide && !std::is_null_pointer_v<A>) {
        return ByteView(argument).size() > UINT32_MAX ? StatusBadArgument : StatusOk;
    } else if constexpr (std::is_same_v<P, const uint8_t*> && kIsByteRange<A>) {
        // Without a length it is an object identifier.
        const ByteView oid(argument);
        return oid.size() == 0 || oid.size() != size_t{1} + oid[0] ? StatusBadArgument : StatusOk;
    } else if constexpr (std::is_integral_v<P> && std::is_integral_v<A>) {
        return Fits<P, A>(argument) ? StatusOk : StatusBadArgument;
    } else if constexpr (kIsTimePoint<A>) {
        return IsSet(RecordOf(std::chrono::floor<std::chrono::seconds>(argument))) ? StatusOk : StatusBadTime;
    } else {
        return StatusOk;
    }
}

// --- What comes out ---

// Containers that take what a pointer and a length receive.
template <class O, class = void>
inline constexpr bool kIsBuffer = std::is_same_v<O, Oid>;
template <class O>
inline constexpr bool kIsBuffer<O, std::void_t<decltype(std::declval<O&>().resize(size_t{}))>> = kIsByteRange<O>;

template <class P, class O, bool Buffer = kIsBuffer<O>>
struct Slot {
    O& output;
    std::remove_pointer_t<P> value{};

    template <bool Length>
    P Parameter() noexcept {
        return &value;
    }
    void Called() noexcept {}
    bool Reserve() noexcept { return true; }
    void Finish() noexcept {
        if constexpr (kIsTimePoint<O>) {
            // Nanoseconds don't reach back to what the null time becomes.
            constexpr bool kReached = std::ratio_greater_equal_v<typename O::period, std::micro>;
            output = !kReached && value.month == 0
                         ? O::min()
                         : std::chrono::time_point_cast<typename O::duration>(ToChrono(value));
        } else {
            output = static_cast<O>(value);
        }
    }
};

template <class T>
struct Slot<T**, Handle<T>, false> {
    Handle<T>& output;
    T* value = nullptr;

    template <bool Length>
    T** Parameter() noexcept {
        return &value;
    }
    // A call that only asks for sizes can hand over an object too: it is freed before the next.
    void Called() noexcept {
        output.reset(value);
        value = nullptr;
    }
    bool Reserve() noexcept {
        output.reset();
        return true;
    }
    void Finish() noexcept {}
};

template <class P, class O>
struct Slot<P, O, true> {
    static constexpr bool kIsOid = std::is_same_v<O, Oid>;
    static_assert(!kIsOid || std::is_same_v<P, uint8_t*>, "an object identifier is read from bytes");
    O& output;
    P data = nullptr;
    uint32_t length = 0;
    uint8_t oid[kIsOid ? 256 : 1] = {};

    template <bool Length>
    auto Parameter() noexcept {
        if constexpr (Length) {
            return &length;
        } else {
            return data;
        }
    }
    void Called() noexcept {}
    bool Reserve() {
        if constexpr (kIsOid) {
            data = oid;
            return std::exchange(length, uint32_t{sizeof oid}) <= sizeof oid;
        } else {
            // A byte more than asked for: a buffer is never null then, and the few functions that forget a terminating
            // zero when they are asked for the size have room for it.
            if (length < UINT32_MAX) ++length;
            output.resize(length);
            data = reinterpret_cast<P>(output.data());
            return true;
        }
    }
    void Finish() {
        if constexpr (kIsOid) {
            output = Oid::Prefixed(oid, length);
        } else {
            output.resize(length);
            if (std::is_same_v<P, char*> && length > 0 && output.back() == typename O::value_type{}) output.pop_back();
        }
    }
};

// --- Which goes where ---

// For each parameter: is it an output, the how manieth of the outputs or arguments, and the second one of a pair?
template <size_t Count>
struct Plan {
    struct Place {
        bool output = false, length = false, wide = false;
        size_t index = 0;
    };
    Place places[Count > 0 ? Count : 1] = {};
    size_t outputs = 0, arguments = 0;

    constexpr size_t FirstOf(size_t output) const {
        for (size_t i = 0; i < Count; ++i) {
            if (places[i].output && places[i].index == output) return i;
        }
        return Count;
    }
};

// An output takes a pair of parameters where the pair is there and the output, or anything, is a buffer. Places that
// are not taken have the index of one too many.
template <class... P, size_t Arguments, size_t Outputs>
constexpr auto MakePlan(std::tuple<P...>*, const bool (&argumentIsBytes)[Arguments],
                        const bool (&outputIsBuffer)[Outputs], bool deduced) {
    constexpr size_t kCount = sizeof...(P);
    constexpr bool kOutput[] = {kIsOutput<P>..., false};
    constexpr bool kBuffer[] = {kIsBufferPointer<P>..., false};
    constexpr bool kBytes[] = {kIsBytesPointer<P>..., false};
    constexpr bool kLength[] = {std::is_same_v<P, uint32_t*>..., false};
    constexpr bool kSize[] = {std::is_same_v<P, uint32_t>..., false};
    Plan<kCount> plan;
    for (size_t i = 0; i < kCount; ++i) {
        const bool output = kOutput[i];
        const size_t index = output ? plan.outputs++ : plan.arguments++;
        const bool wanted = output ? deduced || (index + 1 < Outputs && outputIsBuffer[index])
                                   : index + 1 < Arguments && argumentIsBytes[index];
        const bool pair = output ? kBuffer[i] && kLength[i + 1] : kBytes[i] && kSize[i + 1];
        plan.places[i].output = output;
        plan.places[i].index = index;
        plan.places[i].wide = wanted && pair;
        if (!plan.places[i].wide) continue;
        plan.places[i + 1] = plan.places[i];
        plan.places[++i].length = true;
    }
    return plan;
}

// The plan for outputs that are named, or for those that the parameters suggest.
template <class Function, class Outputs, class... A>
struct PlanOf;
template <class Function, class... O, class... A>
struct PlanOf<Function, std::tuple<O...>, A...> {
    using Parameters = ParametersOf<Function>;
    static constexpr bool kArguments[] = {(kIsBytes<A> || std::is_null_pointer_v<A>)..., false};
    static constexpr bool kOutputs[] = {kIsBuffer<O>..., false};
    static constexpr auto kPlan = MakePlan(static_cast<Parameters*>(nullptr), kArguments, kOutputs, false);
};

template <class Function, class... A>
struct DeducedPlanOf {
    using Parameters = ParametersOf<Function>;
    static constexpr bool kArguments[] = {(kIsBytes<A> || std::is_null_pointer_v<A>)..., false};
    static constexpr bool kOutputs[] = {false};
    static constexpr auto kPlan = MakePlan(static_cast<Parameters*>(nullptr), kArguments, kOutputs, true);
};

// --- Who owns ---

template <class Parameters, class... Functions>
inline constexpr bool kIsOneOf = (std::is_same_v<Parameters, ParametersOf<Functions>> || ...);

template <class T>
inline constexpr bool kIsObject = Functions<std::remove_cv_t<T>>::kExists && !kIsTime<std::remove_cv_t<T>>;

template <class Parameters>
inline constexpr bool kIsCopy = false;
template <class T>
inline constexpr bool kIsCopy<std::tuple<const T*, T**>> = true;

// Objects that are made of anything but an object are the caller's, copies too; what comes out of an object is lent,
// with the exceptions that are listed.
template <class Parameters>
constexpr bool Owns() {
    using First = std::remove_pointer_t<std::tuple_element_t<0, Parameters>>;
    if constexpr (kIsOneOf<Parameters, decltype(&GetPKCS10CertReqExtensions), decltype(&GetX509NameFromGeneralNames),
                           decltype(&GetCertificateAuthorityKeyIdentifier),
                           decltype(&GetCertificateAuthorityKeyIdentifier2)>) {
        return true;
    } else if constexpr (kIsOneOf<Parameters, decltype(&DecodeExtensionIssuingDistributionPoint)>) {
        return false;
    } else {
        return kIsCopy<Parameters> || !kIsObject<First>;
    }
}

// The type that stands for an output which isn't named.
template <class Parameters, class P, bool Wide>
struct Deduced {
    using Type = std::remove_pointer_t<P>;
};
template <class Parameters>
struct Deduced<Parameters, uint8_t*, true> {
    using Type = Bytes;
};
template <class Parameters>
struct Deduced<Parameters, char*, true> {
    using Type = std::string;
};
template <class Parameters, class T>
struct Deduced<Parameters, T**, false> {
    static constexpr bool Owned() {
        if constexpr (std::is_void_v<T> || std::is_const_v<T>) {
            return false;
        } else {
            return Functions<T>::kExists && Owns<Parameters>();
        }
    }
    using Type = std::conditional_t<Owned(), Handle<std::conditional_t<Owned(), T, int>>, T*>;
};

template <class Function, class Plan, class Indices>
struct DeducedOutputs;
template <class Function, class Plan, size_t... K>
struct DeducedOutputs<Function, Plan, std::index_sequence<K...>> {
    using Parameters = ParametersOf<Function>;
    using Type = std::tuple<typename Deduced<Parameters, std::tuple_element_t<Plan::kPlan.FirstOf(K), Parameters>,
                                             Plan::kPlan.places[Plan::kPlan.FirstOf(K)].wide>::Type...>;
};

template <class Function, class Named, class... A>
struct OutputsOf {
    using Type = Named;
};
template <class Function, class... A>
struct OutputsOf<Function, std::tuple<>, A...> {
    using Plan = DeducedPlanOf<Function, A...>;
    using Type = typename DeducedOutputs<Function, Plan, std::make_index_sequence<Plan::kPlan.outputs>>::Type;
};

// A later parameter for an object that isn't const adopts it, but for the functions that are listed.
template <class Parameters, size_t I>
constexpr bool Adopts() {
    using P = std::tuple_element_t<I, Parameters>;
    using T = std::remove_pointer_t<P>;
    if constexpr (I == 0 || !std::is_pointer_v<P> || std::is_const_v<T>) {
        return false;
    } else if constexpr (std::is_void_v<T>) {
        return kIsOneOf<Parameters, decltype(&AddCmsEnvelopedDataRecipientInfo)>;
    } else {
        return kIsObject<T> && !kIsCell<T> &&
               !kIsOneOf<Parameters, decltype(&CompareSignerInfoAndCertificate),
                         decltype(&SetCertificateAuthorityKeyIdentifier), decltype(&SetX509CrlAuthorityKeyIdentifier)>;
    }
}

// Leaves an object that has been adopted to its new owner.
template <class Parameters, size_t I, class A, class Arguments>
void Release(Status status, A&& argument, [[maybe_unused]] const Arguments& arguments) noexcept {
    if constexpr (kIsHandle<std::decay_t<A>> && Adopts<Parameters, I>()) {
        static_assert(!std::is_lvalue_reference_v<A>,
                      "this call adopts the object: hand it over by std::move, or lend a plain pointer by get()");
        bool adopted = status == StatusOk;
        if constexpr (kIsOneOf<Parameters, decltype(&SetCertificateIssuer_i)>) {
            adopted = adopted && std::get<2>(arguments) == 0;
        }
        if constexpr (kIsOneOf<Parameters, decltype(&AddExtensionCrlDistributionPoint)>) {
            adopted = adopted || status == StatusOutOfMemory;
        }
        if (adopted) static_cast<void>(argument.release());
    }
}

// --- The call ---

template <class Function, class Outputs, class Arguments, class Parameters, class Indices, class OutputIndices>
class Call;
template <class Function, class... O, class... A, class... P, size_t... I, size_t... K>
class Call<Function, std::tuple<O...>, std::tuple<A...>, std::tuple<P...>, std::index_sequence<I...>,
           std::index_sequence<K...>> {
    using Parameters = std::tuple<P...>;
    using Planned = PlanOf<Function, std::tuple<O...>, std::decay_t<A>...>;
    static constexpr const auto& kPlan = Planned::kPlan;
    static_assert(kPlan.arguments >= sizeof...(A), "too many arguments for this function (outputs are not among them)");
    static_assert(kPlan.arguments <= sizeof...(A),
                  "too few arguments for this function (a range of bytes stands for "
                  "pointer and length, a raw pointer doesn't)");
    static_assert(kPlan.outputs == sizeof...(O), "the function has another number of outputs than are named");

public:
    static Result<void> Make(const Function& function, [[maybe_unused]] std::tuple<O&...> outputs,
                             std::tuple<A...> arguments) {
        Status status = StatusOk;
        (void)(((status = CheckAt<I>(arguments)) == StatusOk) && ...);
        if (status != StatusOk) return RefusalOf(status, function);
        std::tuple<Slot<std::tuple_element_t<kPlan.FirstOf(K), Parameters>, O>...> slots{
            Slot<std::tuple_element_t<kPlan.FirstOf(K), Parameters>, O>{std::get<K>(outputs)}...};
        const auto call = [&] {
            const Status called = function(ParameterAt<I>(slots, arguments)...);
            (std::get<K>(slots).Called(), ...);
            return called;
        };
        status = call();
        if constexpr ((kIsBuffer<O> || ...)) {
            if (status != StatusOk) return FailureOf(status, function);
            if (!(std::get<K>(slots).Reserve() && ...)) return RefusalOf(StatusBufferTooSmall, function);
            status = call();
        }
        if (status == StatusOk) (std::get<K>(slots).Finish(), ...);
        (ReleaseAt<I>(status, arguments), ...);
        return status == StatusOk ? Result<void>() : FailureOf(status, function);
    }

private:
    template <size_t At>
    static decltype(auto) ParameterAt(std::tuple<Slot<std::tuple_element_t<kPlan.FirstOf(K), Parameters>, O>...>& slots,
                                      std::tuple<A...>& arguments) {
        using Parameter = std::tuple_element_t<At, Parameters>;
        constexpr auto kPlace = kPlan.places[At];
        if constexpr (kPlace.output) {
            return std::get<kPlace.index>(slots).template Parameter<kPlace.length>();
        } else if constexpr (!kPlace.wide) {
            return Pass<Parameter, std::decay_t<std::tuple_element_t<kPlace.index, std::tuple<A...>>>>(
                std::get<kPlace.index>(arguments));
        } else if constexpr (kPlace.length) {
            return static_cast<uint32_t>(ByteView(std::get<kPlace.index>(arguments)).size());
        } else {
            return reinterpret_cast<Parameter>(ByteView(std::get<kPlace.index>(arguments)).data());
        }
    }

    template <size_t At>
    static Status CheckAt(const std::tuple<A...>& arguments) {
        constexpr auto kPlace = kPlan.places[At];
        if constexpr (kPlace.output || kPlace.length) {
            return StatusOk;
        } else {
            return Check<std::tuple_element_t<At, Parameters>, kPlace.wide,
                         std::decay_t<std::tuple_element_t<kPlace.index, std::tuple<A...>>>>(
                std::get<kPlace.index>(arguments));
        }
    }

    template <size_t At>
    static void ReleaseAt(Status status, std::tuple<A...>& arguments) {
        constexpr auto kPlace = kPlan.places[At];
        if constexpr (!kPlace.output && !kPlace.length) {
            using Argument = std::tuple_element_t<kPlace.index, std::tuple<A...>>;
            Release<Parameters, At>(status, static_cast<Argument>(std::get<kPlace.index>(arguments)), arguments);
        }
    }
};

// Stores the outputs of function(arguments...).
template <class Function, class... O, class... A>
Result<void> Store(Function function, std::tuple<O&...> outputs, A&&... arguments) {
    using Parameters = ParametersOf<Function>;
    return Call<Function, std::tuple<O...>, std::tuple<A&&...>, Parameters,
                std::make_index_sequence<std::tuple_size_v<Parameters>>,
                std::index_sequence_for<O...>>::Make(function, outputs,
                                                     std::forward_as_tuple(std::forward<A>(arguments)...));
}

// What several outputs are returned as.
template <class... O>
auto Packed(std::tuple<O...>&& outputs) {
    if constexpr (sizeof...(O) == 1) {
        return std::get<0>(std::move(outputs));
    } else if constexpr (sizeof...(O) == 2) {
        return std::pair<O...>(std::get<0>(std::move(outputs)), std::get<1>(std::move(outputs)));
    } else {
        return std::move(outputs);
    }
}

template <class... O>
std::tuple<O&...> Tied(std::tuple<O...>& outputs) {
    return std::apply([](O&... output) { return std::tuple<O&...>(output...); }, outputs);
}

// The pointer to an object that is owned, lent or stands in a handle.
template <class T>
T* PointerTo(T* object) noexcept {
    return object;
}
template <class T>
T* PointerTo(const std::unique_ptr<T, Free>& object) noexcept {
    return object.get();
}

}  // namespace detail

namespace nothrow {

/**
 * Get calls a function of the library and returns its outputs.
 *
 * Arguments are the function's parameters without the outputs:
 *   a pointer and a length       any range of bytes or a text; nullptr for none
 *   an object identifier         an Oid, or a range of bytes in the length-prefixed form
 *   an object                    a Handle, a pointer, or nullptr; by std::move where the function adopts it
 *   a LibraryTime and its like   the record itself, a time_point of the system clock, or nullptr
 *   numbers and flags            any numbers; StatusBadArgument for one that doesn't fit
 *
 * Outputs are what the function's pointers to non-const values lead to:
 *   a buffer and its length      Bytes, or std::string where they are characters
 *   a pointer to an object       a Handle where it is the caller's, otherwise a plain pointer, which is lent
 *   anything else                itself
 *
 * One is returned as it is, two as a pair, more as a tuple, in the function's order. Buffers are asked for their size
 * first, and then filled; a terminating zero isn't part of a text. Other types can be named for the outputs, all or
 * none: for bytes Oid and containers with resize, for times a time_point, for numbers other numbers, enumerations and
 * bool.
 *
 *     Get<Oid, Bytes>(GetCertificateSignatureAlgorithmOidAndParameters, certificate)
 *
 * They have to be named where a byte and a number that belongs to something else stand side by side:
 *
 *     Get<bool, uint32_t>(DecodeExtensionBasicConstraints, value)
 *
 * Statuses are those of the function, StatusBufferTooSmall for an object identifier above 255 bytes, StatusBadTime for
 * a time_point outside the years 1900 to 2100, and StatusBadArgument for bytes in place of an object identifier that
 * aren't in its form.
 */
template <class... Outputs, class Function, class... Arguments>
auto Get(Function function, Arguments&&... arguments) {
    using All = typename detail::OutputsOf<Function, std::tuple<Outputs...>, std::decay_t<Arguments>...>::Type;
    All outputs;
    Result<void> stored = detail::Store(function, detail::Tied(outputs), std::forward<Arguments>(arguments)...);
    if constexpr (std::tuple_size_v<All> == 0) {
        return stored;
    } else {
        using Value = decltype(detail::Packed(std::move(outputs)));
        if (!stored) return Result<Value>(stored.failure());
        return Result<Value>(detail::Packed(std::move(outputs)));
    }
}

/** Call is Get by another name, for functions that are called for what they do. */
template <class... Outputs, class Function, class... Arguments>
auto Call(Function function, Arguments&&... arguments) {
    return nothrow::Get<Outputs...>(function, std::forward<Arguments>(arguments)...);
}

/** GetText is Get of bytes that are a text, or characters. */
template <class Function, class... Arguments>
Result<std::string> GetText(Function function, Arguments&&... arguments) {
    return nothrow::Get<std::string>(function, std::forward<Arguments>(arguments)...);
}

/**
 * GetInto is Get of one output into an object of the caller's, a container that keeps its memory from call to call.
 */
template <class Output, class Function, class... Arguments>
Result<void> GetInto(Output& output, Function function, Arguments&&... arguments) {
    return detail::Store(function, std::tie(output), std::forward<Arguments>(arguments)...);
}

/** Find is Get with nothing in place of StatusAbsent and StatusNotFound. */
template <class... Outputs, class Function, class... Arguments>
auto Find(Function function, Arguments&&... arguments) {
    auto got = nothrow::Get<Outputs...>(function, std::forward<Arguments>(arguments)...);
    using Value = std::optional<std::decay_t<decltype(got.value())>>;
    if (got.status() == StatusAbsent || got.status() == StatusNotFound) return Result<Value>(Value());
    return got ? Result<Value>(Value(*std::move(got))) : Result<Value>(got.failure());
}

/** Same asks a function that compares: true for StatusOk, false for StatusNotEqual. */
template <class Function, class... Arguments>
Result<bool> Same(Function function, Arguments&&... arguments) {
    const Result<void> compared = nothrow::Get(function, std::forward<Arguments>(arguments)...);
    if (compared || compared.status() == StatusNotEqual) return compared.has_value();
    return compared.failure();
}

/** Create makes an empty object: Create<Certificate>(). */
template <class T>
Result<Handle<T>> Create() {
    return nothrow::Get(detail::Functions<std::remove_pointer_t<T>>::kCreate);
}

/** Decode reads an object from the front of BER or DER: Decode<Certificate>(bytes). What follows it is ignored. */
template <class T>
Result<Handle<T>> Decode(ByteView bytes) {
    return nothrow::Get(detail::Functions<std::remove_pointer_t<T>>::kDecode, bytes);
}

/** Encode writes an object as DER. object: a Handle or a pointer. */
template <class Object>
Result<Bytes> Encode(const Object& object) {
    using T = std::remove_const_t<std::remove_pointer_t<decltype(detail::PointerTo(object))>>;
    return nothrow::Get(detail::Functions<T>::kEncode, detail::PointerTo(object));
}

/** Copy makes a deep copy of an object. object: a Handle or a pointer. */
template <class Object>
auto Copy(const Object& object) {
    using T = std::remove_const_t<std::remove_pointer_t<decltype(detail::PointerTo(object))>>;
    return nothrow::Get(detail::Functions<T>::kCopy, static_cast<const T*>(detail::PointerTo(object)));
}

}  // namespace nothrow

/* The same functions with their results alone; they throw Error in place of a failure. */
#if defined(__cpp_exceptions)
template <class... Outputs, class Function, class... Arguments>
auto Get(Function function, Arguments&&... arguments) {
    return nothrow::Get<Outputs...>(function, std::forward<Arguments>(arguments)...).value();
}
template <class... Outputs, class Function, class... Arguments>
auto Call(Function function, Arguments&&... arguments) {
    return nothrow::Get<Outputs...>(function, std::forward<Arguments>(arguments)...).value();
}
template <class Function, class... Arguments>
std::string GetText(Function function, Arguments&&... arguments) {
    return nothrow::GetText(function, std::forward<Arguments>(arguments)...).value();
}
template <class Output, class Function, class... Arguments>
void GetInto(Output& output, Function function, Arguments&&... arguments) {
    nothrow::GetInto(output, function, std::forward<Arguments>(arguments)...).value();
}
template <class... Outputs, class Function, class... Arguments>
auto Find(Function function, Arguments&&... arguments) {
    return nothrow::Find<Outputs...>(function, std::forward<Arguments>(arguments)...).value();
}
template <class Function, class... Arguments>
bool Same(Function function, Arguments&&... arguments) {
    return nothrow::Same(function, std::forward<Arguments>(arguments)...).value();
}
template <class T>
Handle<T> Create() {
    return nothrow::Create<T>().value();
}
template <class T>
Handle<T> Decode(ByteView bytes) {
    return nothrow::Decode<T>(bytes).value();
}
template <class Object>
Bytes Encode(const Object& object) {
    return nothrow::Encode(object).value();
}
template <class Object>
auto Copy(const Object& object) {
    return nothrow::Copy(object).value();
}
#endif

}  // namespace tlvforge

#endif
