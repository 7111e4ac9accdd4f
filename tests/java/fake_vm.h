// A Java virtual machine as far as the native methods use one. It hands out the elements of an array as a block of
// exactly their size, and keeps a record of what was obtained and given back.
#pragma once

#include <gtest/gtest.h>
#include <jni.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

class FakeVm {
public:
    FakeVm() {
        current_ = this;
        void (*unexpected)() = [] { FAIL() << "a function of the virtual machine that natives don't use"; };
        auto* slots = reinterpret_cast<void (**)()>(&table_);
        for (size_t i = 0; i < sizeof table_ / sizeof *slots; ++i) slots[i] = unexpected;
        table_.GetArrayLength = [](JNIEnv*, jarray array) {
            return static_cast<jsize>(Of(array).elements.size() / Of(array).width);
        };
        table_.GetByteArrayElements = Get<jbyteArray, jbyte>;
        table_.GetIntArrayElements = Get<jintArray, jint>;
        table_.GetLongArrayElements = Get<jlongArray, jlong>;
        table_.ReleaseByteArrayElements = Release<jbyteArray, jbyte>;
        table_.ReleaseIntArrayElements = Release<jintArray, jint>;
        table_.ReleaseLongArrayElements = Release<jlongArray, jlong>;
        table_.GetStringUTFChars = [](JNIEnv* env, jstring text, jboolean* isCopy) {
            return reinterpret_cast<const char*>(Get<jstring, jbyte>(env, text, isCopy));
        };
        table_.ReleaseStringUTFChars = [](JNIEnv* env, jstring text, const char* characters) {
            Release<jstring, jbyte>(env, text, reinterpret_cast<jbyte*>(const_cast<char*>(characters)), 0);
        };
        table_.NewStringUTF = [](JNIEnv*, const char* text) {
            current_->calls.push_back(std::string("NewStringUTF ") + text);
            return reinterpret_cast<jstring>(current_);
        };
        table_.GetObjectClass = [](JNIEnv*, jobject) { return reinterpret_cast<jclass>(current_); };
        table_.GetMethodID = [](JNIEnv*, jclass, const char* name, const char* signature) {
            current_->calls.push_back(std::string(name) + signature);
            return current_->missing == name ? nullptr : reinterpret_cast<jmethodID>(current_);
        };
        table_.CallVoidMethod = CallMethod<void>;
        table_.CallObjectMethod = CallMethod<jobject>;
        env_.functions = &table_;
    }
    ~FakeVm() {
        for (const Object& object : objects_) EXPECT_EQ(object.pinned, nullptr) << "an array that was not given back";
    }
    FakeVm(const FakeVm&) = delete;

    JNIEnv* env() { return &env_; }

    jbyteArray Bytes(const std::vector<uint8_t>& bytes) { return Make<jbyteArray>(bytes); }
    jintArray Ints(const std::vector<jint>& numbers) { return Make<jintArray>(numbers); }
    jlongArray Longs(const std::vector<jlong>& numbers) { return Make<jlongArray>(numbers); }
    jstring String(const char* utf8) { return Make<jstring>(std::vector<char>(utf8, utf8 + strlen(utf8) + 1)); }

    static std::vector<uint8_t> BytesOf(jarray array) { return Of(array).elements; }
    template <class Element>
    static Element FirstOf(jarray array) {
        Element element;
        memcpy(&element, Of(array).elements.data(), sizeof element);
        return element;
    }

    std::string pins;                // "+0+1-0-1": objects obtained and given back, by the order of their making
    std::vector<std::string> calls;  // calls of methods and what leads to them
    int failing = -1;                // the object whose elements can't be had
    std::string missing;             // the method that isn't there

private:
    struct Object {
        std::vector<uint8_t> elements;
        size_t width;
        int number;
        void* pinned = nullptr;
    };

    template <class Array, class Element>
    Array Make(const std::vector<Element>& elements) {
        const auto* bytes = reinterpret_cast<const uint8_t*>(elements.data());
        const std::vector<uint8_t> copy(bytes, bytes + elements.size() * sizeof(Element));
        objects_.push_back({copy, sizeof(Element), static_cast<int>(objects_.size())});
        return reinterpret_cast<Array>(&objects_.back());
    }
    static Object& Of(jobject object) { return *reinterpret_cast<Object*>(object); }

    template <class Result>
    static Result CallMethod(JNIEnv*, jobject, jmethodID, ...) {
        current_->calls.emplace_back(std::is_void_v<Result> ? "void" : "object");
        return Result();
    }

    template <class Array, class Element>
    static Element* Get(JNIEnv*, Array array, jboolean* isCopy) {
        Object& object = Of(array);
        EXPECT_EQ(isCopy, nullptr);
        EXPECT_EQ(object.pinned, nullptr) << "obtained twice";
        if (object.number == current_->failing) return nullptr;
        current_->pins += "+" + std::to_string(object.number);
        object.pinned = malloc(object.elements.size());
        if (!object.elements.empty()) memcpy(object.pinned, object.elements.data(), object.elements.size());
        return static_cast<Element*>(object.pinned);
    }
    template <class Array, class Element>
    static void Release(JNIEnv*, Array array, Element* elements, jint mode) {
        Object& object = Of(array);
        ASSERT_EQ(elements, object.pinned);
        EXPECT_EQ(mode, 0);
        current_->pins += "-" + std::to_string(object.number);
        if (!object.elements.empty()) memcpy(object.elements.data(), object.pinned, object.elements.size());
        free(std::exchange(object.pinned, nullptr));
    }

    static inline FakeVm* current_ = nullptr;
    std::deque<Object> objects_;
    JNINativeInterface_ table_{};
    JNIEnv env_{};
};
