#include "java/parameters.h"

#include "java/text.h"

namespace tlvforge::java {
namespace {

// Inputs too are given back as changed: there is one mode for all.
constexpr jint kCopyBackAndFree = 0;

jbyte* Get(JNIEnv* env, jbyteArray array) { return env->GetByteArrayElements(array, nullptr); }
jint* Get(JNIEnv* env, jintArray array) { return env->GetIntArrayElements(array, nullptr); }
jlong* Get(JNIEnv* env, jlongArray array) { return env->GetLongArrayElements(array, nullptr); }

void Give(JNIEnv* env, jbyteArray array, jbyte* elements) {
    env->ReleaseByteArrayElements(array, elements, kCopyBackAndFree);
}
void Give(JNIEnv* env, jintArray array, jint* elements) {
    env->ReleaseIntArrayElements(array, elements, kCopyBackAndFree);
}
void Give(JNIEnv* env, jlongArray array, jlong* elements) {
    env->ReleaseLongArrayElements(array, elements, kCopyBackAndFree);
}

}  // namespace

template <class Array>
void Pinned<Array>::Pin(JNIEnv* env) {
    if (array_ == nullptr) return;
    length_ = env->GetArrayLength(array_);
    elements_ = Get(env, array_);
}

template <class Array>
void Pinned<Array>::Release(JNIEnv* env) {
    if (elements_ != nullptr) Give(env, array_, elements_);
}

template class Pinned<jbyteArray>;
template class Pinned<jintArray>;
template class Pinned<jlongArray>;

void Text::Pin(JNIEnv* env) {
    Bytes::Pin(env);
    if (elements_ == nullptr) return;
    const auto length = static_cast<size_t>(length_);
    text_ = reinterpret_cast<const char*>(elements_);
    if (memchr(text_, 0, length) != nullptr) return;
    uint8_t* copy = static_cast<uint8_t*>(Allocate(length + 1));
    if (copy != nullptr) {
        memcpy(copy, text_, length);
        copy[length] = 0;
    }
    *copy_.Slot() = copy;
    text_ = reinterpret_cast<const char*>(copy);
}

void JavaText::PinText(JNIEnv* env) {
    if (text_ == nullptr) return;
    characters_ = env->GetStringUTFChars(text_, nullptr);
    if (characters_ == nullptr) return;
    auto* bytes = reinterpret_cast<uint8_t*>(const_cast<char*>(characters_));
    ConvertUtf8ToCp1251(bytes, bytes);
}

void JavaText::ReleaseText(JNIEnv* env) {
    if (characters_ != nullptr) env->ReleaseStringUTFChars(text_, characters_);
}

}  // namespace tlvforge::java
