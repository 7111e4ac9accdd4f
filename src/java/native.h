// One native method of the Java class is one row:
//
//     NATIVE(GetX509CrlSignature, h, o)
//     NATIVE_AS(AllocAsn1Integer_1s, AllocAsn1Integer_s, b)
//
// the name of the plain function, then the kinds of its parameters. NATIVE_AS serves names with an underscore, which
// Java spells _1 in symbols, and natives that call a function of another name. The letters of a kind, up to its
// underscore, are its Java parameters; the word after that is what the plain function makes of them:
//
//     h  long                     i  int
//     b  byte[], int              ri the same
//     r  byte[]                   o  byte[], int[]
//     n  int[]                    l  long[]
//     s  String
#pragma once

#include "java/parameters.h"

namespace tlvforge::java {

// Pointers come back as long, everything else as int: statuses, other numbers, and 0 for no result.
template <class Result>
using JavaResult = std::conditional_t<std::is_pointer_v<Result>, jlong, jint>;

template <class Function>
struct ResultOf;
template <class Result, class... Arguments>
struct ResultOf<Result (*)(Arguments...)> {
    using Type = JavaResult<Result>;
};
template <auto Function>
using NativeResult = typename ResultOf<decltype(Function)>::Type;

template <auto Function, class... Parameters>
[[gnu::always_inline]] inline NativeResult<Function> CallPlain(Parameters&... parameters) {
    using Plain = decltype(Function(parameters...));
    if constexpr (std::is_void_v<Plain>) {
        Function(parameters...);
        return 0;
    } else if constexpr (std::is_pointer_v<Plain>) {
        return reinterpret_cast<jlong>(Function(parameters...));
    } else {
        return static_cast<jint>(Function(parameters...));
    }
}

// Every native. Where it has neither arrays nor text, nothing is left but the call.
template <auto Function, class... Parameters>
[[gnu::always_inline]] inline NativeResult<Function> Run([[maybe_unused]] JNIEnv* env, Parameters... parameters) {
    [[maybe_unused]] Parameter* before = nullptr;
    ((parameters.Follow(before), before = &parameters), ...);
    (parameters.Pin(env), ...);
    (parameters.PinText(env), ...);
    NativeResult<Function> result = StatusBufferTooSmall;
    if ((parameters.Fits() && ...)) {
        do {
            result = CallPlain<Function>(parameters...);
        } while ((parameters.Repeats(&result) || ...));
        (parameters.WriteBack(), ...);
    }
    (parameters.Release(env), ...);
    (parameters.ReleaseText(env), ...);
    return result;
}

}  // namespace tlvforge::java

// The kinds: class and Java type of each of their parameters. A name is `p`, or begins with it.
#define NATIVE_h(parameter, p) parameter(Handle, jlong, p)
#define NATIVE_i(parameter, p) parameter(Number, jint, p)
#define NATIVE_b(parameter, p) parameter(Input, jbyteArray, p##0) parameter(Count, jint, p##1)
#define NATIVE_b_signed(parameter, p) parameter(Input, jbyteArray, p##0) parameter(SignedCount, jint, p##1)
#define NATIVE_b_oid(parameter, p) parameter(Oid, jbyteArray, p##0) parameter(Count, jint, p##1)
#define NATIVE_ib_name(parameter, p) \
    parameter(Number, jint, p##0) parameter(GeneralNameValue, jbyteArray, p##1) parameter(Count, jint, p##2)
#define NATIVE_ri(parameter, p) NATIVE_b(parameter, p)
#define NATIVE_r_oid(parameter, p) parameter(Oid, jbyteArray, p)
#define NATIVE_r_text(parameter, p) parameter(Text, jbyteArray, p)
#define NATIVE_r_octet(parameter, p) parameter(Block<1>, jbyteArray, p)
#define NATIVE_r_digest(parameter, p) parameter(Block<20>, jbyteArray, p)
#define NATIVE_r_node(parameter, p) parameter(Node, jbyteArray, p)
#define NATIVE_r_nodecell(parameter, p) parameter(NodeCell, jbyteArray, p)
#define NATIVE_o(parameter, p) parameter(Buffer, jbyteArray, p##0) parameter(Length, jintArray, p##1)
#define NATIVE_o_measured(parameter, p) \
    parameter(MeasuredBuffer, jbyteArray, p##0) parameter(MeasuredLength, jintArray, p##1)
#define NATIVE_o_oid(parameter, p) parameter(Oid, jbyteArray, p##0) parameter(Length, jintArray, p##1)
#define NATIVE_o_octet(parameter, p) parameter(Block<1>, jbyteArray, p##0) parameter(Length, jintArray, p##1)
#define NATIVE_o_node(parameter, p) parameter(Node, jbyteArray, p##0) parameter(Length, jintArray, p##1)
#define NATIVE_o_nodecell(parameter, p) parameter(NodeCell, jbyteArray, p##0) parameter(Length, jintArray, p##1)
#define NATIVE_oi_element(parameter, p) \
    parameter(ArrayOfOne, jbyteArray, p##0) parameter(Length, jintArray, p##1) parameter(OneAtMost, jint, p##2)
#define NATIVE_n(parameter, p) parameter(NumberCell, jintArray, p)
#define NATIVE_n_octet(parameter, p) parameter(OctetCell, jintArray, p)
#define NATIVE_l(parameter, p) parameter(HandleCell, jlongArray, p)
#define NATIVE_l_inout(parameter, p) parameter(HandleInOut, jlongArray, p)
#define NATIVE_l_object(parameter, p) parameter(Object, jlongArray, p)
#define NATIVE_s(parameter, p) parameter(JavaText, jstring, p)

// A parameter as the native declares it, and as the bridge gets it.
#define NATIVE_DECLARED(Class, Type, name) , Type name
#define NATIVE_PASSED(Class, Type, name) , tlvforge::java::Class(name)

// Does the same for each kind of a row, of which there are 16 at most.
// clang-format off
#define NATIVE_EACH(parameter, k1, k2, k3, k4, k5, k6, k7, k8, k9, k10, k11, k12, k13, k14, k15, k16, ...)  \
    NATIVE_##k1(parameter, a)  NATIVE_##k2(parameter, b)  NATIVE_##k3(parameter, c)  NATIVE_##k4(parameter, d)  \
    NATIVE_##k5(parameter, e)  NATIVE_##k6(parameter, f)  NATIVE_##k7(parameter, g)  NATIVE_##k8(parameter, h)  \
    NATIVE_##k9(parameter, i)  NATIVE_##k10(parameter, j) NATIVE_##k11(parameter, k) NATIVE_##k12(parameter, l) \
    NATIVE_##k13(parameter, m) NATIVE_##k14(parameter, n) NATIVE_##k15(parameter, o) NATIVE_##k16(parameter, p)
#define NATIVE_none(parameter, p)
#define NATIVE_ALL(parameter, ...) \
    NATIVE_EACH(parameter, __VA_ARGS__, none, none, none, none, none, none, none, none, none, none, none, none, none, \
                none, none, )
// clang-format on

#define NATIVE_AS(name, function, ...)                                                                       \
    extern "C" JNIEXPORT tlvforge::java::NativeResult<function> JNICALL                                      \
        Java_kestrelon_x509_tlvforge_Tlvforge_dll_1##name(JNIEnv* env,                                       \
                                                          jclass NATIVE_ALL(NATIVE_DECLARED, __VA_ARGS__)) { \
        return tlvforge::java::Run<function>(env NATIVE_ALL(NATIVE_PASSED, __VA_ARGS__));                    \
    }
#define NATIVE(name, ...) NATIVE_AS(name, name, __VA_ARGS__)
