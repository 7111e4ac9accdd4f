// What happens to the parameters of a native method on their way to the plain function.
//
// Each Java parameter is one argument of the plain function and one object of the classes below, which converts to
// that argument. Around the call the objects are taken through the same steps, in the order of the parameters:
//
//   Follow     look at the previous parameter: a count at its bytes, a length at its buffer
//   Pin        obtain the elements of an array; PinText those of a String, after all arrays
//   Fits       refuse what the plain function would read or write past
//   ...        the call, if everything fits; Repeats may ask for a second one
//   WriteBack  store what came out into the array
//   Release    give back what was obtained; ReleaseText after all arrays
//
// A null reference is a null pointer and is neither pinned nor released. Null elements of an array that isn't null,
// which is how the virtual machine reports that it has run out of memory, are a null pointer too.
#pragma once

#include <jni.h>
#include <stdint.h>
#include <string.h>

#include <concepts>
#include <type_traits>

#include "engine/tmalloc.h"
#include "tlvforge/names.h"
#include "tlvforge/status.h"

namespace tlvforge::java {

// By default a parameter does nothing but convert.
class Parameter {
public:
    void Follow(Parameter*) {}
    void Pin(JNIEnv*) {}
    void PinText(JNIEnv*) {}
    bool Fits() const { return true; }
    template <class Result>
    bool Repeats(Result*) {
        return false;
    }
    void WriteBack() {}
    void Release(JNIEnv*) {}
    void ReleaseText(JNIEnv*) {}
};

template <class T, class... Types>
concept OneOf = (std::same_as<T, Types> || ...);

// A cell that the plain function sees as a pointer of its own type.
using Address [[gnu::may_alias]] = void*;

inline void* ToPointer(jlong handle) {
    return reinterpret_cast<void*>(handle);  // NOLINT(performance-no-int-to-ptr)
}

// A long: an address, or a number that the plain function may take narrower.
class Handle : public Parameter {
public:
    explicit Handle(jlong value) : value_(value) {}
    template <class T>
    requires std::is_pointer_v<T>
    operator T() const { return static_cast<T>(ToPointer(value_)); }
    template <std::integral T>
    operator T() const {
        return static_cast<T>(value_);
    }

private:
    jlong value_;
};

// An int; the plain function may take its low byte.
class Number : public Parameter {
public:
    explicit Number(jint value) : value_(value) {}
    jint Value() const { return value_; }
    template <std::integral T>
    operator T() const {
        return static_cast<T>(value_);
    }

private:
    jint value_;
};

// Arrays. Pinning and releasing stand out of line, once for each type.
template <class Array>
struct ElementOf;
template <>
struct ElementOf<jbyteArray> {
    using Type = jbyte;
};
template <>
struct ElementOf<jintArray> {
    using Type = jint;
};
template <>
struct ElementOf<jlongArray> {
    using Type = jlong;
};

template <class Array>
class Pinned : public Parameter {
public:
    explicit Pinned(Array array) : array_(array) {}
    bool IsNull() const { return array_ == nullptr; }
    jint Length() const { return length_; }
    void Pin(JNIEnv* env);
    void Release(JNIEnv* env);

protected:
    using Element = typename ElementOf<Array>::Type;

    // Element 0 can be read and written. Arrays for a single result have to have one.
    bool HasElement() const { return elements_ != nullptr && length_ >= 1; }
    // Either no elements, or at least as many.
    bool IsNullOrHolds(jint count) const { return elements_ == nullptr || length_ >= count; }

    Array array_;
    Element* elements_ = nullptr;
    jint length_ = 0;
};

// --- byte[] ---

class Bytes : public Pinned<jbyteArray> {
public:
    using Pinned::Pinned;

protected:
    uint8_t* Data() const { return reinterpret_cast<uint8_t*>(elements_); }
    bool IsNullOrHoldsOid() const { return elements_ == nullptr || (length_ >= 1 && length_ >= 1 + *Data()); }
};

// Bytes to read, whose number is the next parameter.
class Input : public Bytes {
public:
    using Bytes::Bytes;
    template <OneOf<uint8_t, char> T>
    operator const T*() const {
        return reinterpret_cast<const T*>(elements_);
    }
};

// The value of a general name, whose alternative is the previous parameter. A registeredID is read by its own length
// byte, whatever the count says.
class GeneralNameValue : public Input {
public:
    using Input::Input;
    void Follow(Parameter* alternative) { alternative_ = static_cast<const Number*>(alternative); }
    bool Fits() const { return alternative_->Value() != X509GeneralNameRegisteredID || IsNullOrHoldsOid(); }

private:
    const Number* alternative_ = nullptr;
};

// How many bytes of the previous parameter to use. A negative count of an array stands for all of it: the plain
// function takes it for a huge one.
class Count : public Parameter {
public:
    explicit Count(jint count) : count_(count) {}
    void Follow(Parameter* bytes) { bytes_ = static_cast<const Bytes*>(bytes); }
    bool Fits() const { return bytes_->Length() >= count_; }
    operator uint32_t() const {
        return static_cast<uint32_t>(count_ < 0 && !bytes_->IsNull() ? bytes_->Length() : count_);
    }

protected:
    jint count_;

private:
    const Bytes* bytes_ = nullptr;
};

// A count that the plain function takes with its sign.
class SignedCount : public Count {
public:
    using Count::Count;
    operator int32_t() const { return count_; }
};

// A length-prefixed object identifier.
class Oid : public Bytes {
public:
    using Bytes::Bytes;
    bool Fits() const { return IsNullOrHoldsOid(); }
    operator const uint8_t*() const { return Data(); }
};

// An array of byte arrays with these bytes as its only element.
class ArrayOfOne : public Bytes {
public:
    using Bytes::Bytes;
    operator const uint8_t* const*() {
        element_ = Data();
        return &element_;
    }

private:
    const uint8_t* element_ = nullptr;
};

// How many byte arrays there are: more than the one Java can't hand over.
class OneAtMost : public Number {
public:
    using Number::Number;
    bool Fits() const { return Value() == 0 || Value() == 1; }
};

// Text up to a zero byte, or to the end of the array: then a copy gets the zero. Without memory for that it is null.
class Text : public Bytes {
public:
    using Bytes::Bytes;
    void Pin(JNIEnv* env);
    operator const char*() const { return text_; }

private:
    const char* text_ = nullptr;
    tlvforge::Block copy_;
};

// Bytes to write, always `Size` of them.
template <jint Size>
class Block : public Bytes {
public:
    using Bytes::Bytes;
    bool Fits() const { return IsNullOrHolds(Size); }
    operator uint8_t*() const { return Data(); }
};

// A node, whose address stands in the first eight bytes in the order of the machine. The bytes themselves are no node.
class Node : public Bytes {
public:
    using Bytes::Bytes;
    bool Fits() const { return IsNullOrHolds(sizeof(void*)); }
    operator void*() const {
        void* node = nullptr;
        if (elements_ != nullptr) memcpy(&node, elements_, sizeof node);
        return node;
    }
};

// A cell for a node, which starts as the address in the bytes and ends there.
class NodeCell : public Bytes {
public:
    using Bytes::Bytes;
    bool Fits() const { return IsNullOrHolds(sizeof(void*)); }
    template <OneOf<void, uint8_t> T>
    operator T**() {
        if (elements_ == nullptr) return nullptr;
        memcpy(&node_, elements_, sizeof node_);
        return static_cast<T**>(static_cast<void*>(&node_));
    }
    void WriteBack() {
        if (elements_ != nullptr) memcpy(elements_, &node_, sizeof node_);
    }

private:
    Address node_ = nullptr;
};

// A buffer to fill; the next parameter is its Length.
class Buffer : public Bytes {
public:
    using Bytes::Bytes;
    template <OneOf<uint8_t, char> T>
    operator T*() const {
        return reinterpret_cast<T*>(elements_);
    }
};

// A buffer for a plain function that doesn't ask for its capacity. The first call only measures; the next parameter is
// a MeasuredLength, which has the second one made if the result fits.
class MeasuredBuffer : public Bytes {
public:
    using Bytes::Bytes;
    bool HasElements() const { return elements_ != nullptr; }
    void Offer() { offered_ = true; }
    bool Offered() const { return offered_; }
    operator uint8_t*() const { return offered_ ? Data() : nullptr; }

private:
    bool offered_ = false;
};

// --- int[] and long[] ---

// The length of the previous parameter, a buffer: its capacity before the call, whatever the array held.
class Length : public Pinned<jintArray> {
public:
    using Pinned::Pinned;
    void Follow(Parameter* buffer) { buffer_ = static_cast<Bytes*>(buffer); }
    bool Fits() const { return HasElement(); }
    operator uint32_t*() {
        cell_ = static_cast<uint32_t>(buffer_->Length());
        return &cell_;
    }
    void WriteBack() { elements_[0] = static_cast<jint>(cell_); }

protected:
    Bytes* buffer_ = nullptr;
    uint32_t cell_ = 0;
};

class MeasuredLength : public Length {
public:
    using Length::Length;
    template <class Result>
    bool Repeats(Result* status) {
        auto* buffer = static_cast<MeasuredBuffer*>(buffer_);
        if (*status != StatusOk || !buffer->HasElements() || buffer->Offered()) return false;
        if (static_cast<uint32_t>(buffer->Length()) < cell_) {
            *status = StatusBufferTooSmall;
            return false;
        }
        buffer->Offer();
        return true;
    }
};

// A number that is stored.
class NumberCell : public Pinned<jintArray> {
public:
    using Pinned::Pinned;
    bool Fits() const { return HasElement(); }
    operator uint32_t*() { return &cell_; }
    operator int32_t*() { return reinterpret_cast<int32_t*>(&cell_); }
    void WriteBack() { elements_[0] = static_cast<jint>(cell_); }

private:
    uint32_t cell_ = 0;
};

// A number of one byte that is stored.
class OctetCell : public Pinned<jintArray> {
public:
    using Pinned::Pinned;
    bool Fits() const { return HasElement(); }
    operator uint8_t*() { return &cell_; }
    void WriteBack() { elements_[0] = cell_; }

private:
    uint8_t cell_ = 0;
};

// A handle that is stored.
class HandleCell : public Pinned<jlongArray> {
public:
    using Pinned::Pinned;
    bool Fits() const { return HasElement(); }
    template <class T>
    operator T**() {
        return static_cast<T**>(static_cast<void*>(&cell_));
    }
    void WriteBack() { elements_[0] = reinterpret_cast<jlong>(cell_); }

protected:
    Address cell_ = nullptr;
};

// A handle that is read, and another stored in its place.
class HandleInOut : public HandleCell {
public:
    using HandleCell::HandleCell;
    void Pin(JNIEnv* env) {
        HandleCell::Pin(env);
        if (HasElement()) cell_ = ToPointer(elements_[0]);
    }
};

// A handle that is read from a long[], where a single result would stand; the array stays as it is.
class Object : public Pinned<jlongArray> {
public:
    using Pinned::Pinned;
    bool Fits() const { return HasElement(); }
    template <class T>
    requires(!std::is_pointer_v<T>) operator T*() const { return static_cast<T*>(ToPointer(elements_[0])); }
};

// --- String ---

// Text for the library, in CP1251. It is converted in the virtual machine's own buffer.
class JavaText : public Parameter {
public:
    explicit JavaText(jstring text) : text_(text) {}
    void PinText(JNIEnv* env);
    void ReleaseText(JNIEnv* env);
    operator const char*() const { return characters_; }

private:
    jstring text_;
    const char* characters_ = nullptr;
};

}  // namespace tlvforge::java
