// How cost grows with size: bytes per second should stay nearly the same from the shortest input to the longest.
#include <benchmark/benchmark.h>

#ifdef HAVE_OPENSSL
#include <openssl/evp.h>
#endif

#include "sample.h"

namespace {

using namespace bench;

// Counts the bytes of one run.
void CountBytes(benchmark::State& state, size_t bytes) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(bytes));
}

// ---- Engine ----

Bytes ListOf(const Bytes& element, int64_t count) {
    Bytes content;
    for (int64_t i = 0; i < count; ++i) content.insert(content.end(), element.begin(), element.end());
    return Tlv(0x30, content);
}

// A list of many small elements, and one whose elements nobody can count without reading them.
Bytes ManyNames(int64_t count) { return ListOf(Tlv(0x82, Text("www.example.com")), count); }
Bytes IndefiniteNames(int64_t count) { return ListOf({0xA4, 0x80, 0x30, 0x00, 0x00, 0x00}, count); }

// A name whose one RDN has its entries in the reverse of DER order.
Bytes ReversedSet(int64_t count) {
    Bytes content;
    for (int64_t i = count; i-- > 0;) {
        const auto byte = [i](int shift) { return static_cast<uint8_t>(i >> shift); };
        const Bytes element = Tlv(0x30, {OidTlv("2.5.4.5"), Tlv(0x04, {{byte(16), byte(8), byte(0)}})});
        content.insert(content.end(), element.begin(), element.end());
    }
    return Tlv(0x30, Tlv(0x31, content));
}

// A name with a value of nested elements in indefinite form.
Bytes NestedValue(int64_t depth) {
    Bytes value;
    for (int64_t i = 0; i < depth; ++i) value.insert(value.end(), {0x30, 0x80});
    value.resize(value.size() * 2);
    return Tlv(0x30, Tlv(0x31, Tlv(0x30, {OidTlv("2.5.4.5"), value})));
}

template <class T>
struct Codec {
    Status (*decode)(const uint8_t*, uint32_t, T**);
    Status (*encode)(const T*, uint8_t*, uint32_t*);
    Status (*free)(T*);
};

template <class T>
T* Decoded(const Codec<T>& codec, const Bytes& der) {
    T* object = nullptr;
    Must(codec.decode(der.data(), Size(der), &object));
    return object;
}

template <class T>
void Decode(benchmark::State& state, Codec<T> codec, Bytes (*make)(int64_t)) {
    const Bytes der = make(state.range(0));
    for (auto _ : state) codec.free(Decoded(codec, der));
    CountBytes(state, der.size());
}

template <class T>
void Encode(benchmark::State& state, Codec<T> codec, Bytes (*make)(int64_t)) {
    Bytes der = make(state.range(0));
    T* object = Decoded(codec, der);
    for (auto _ : state) {
        uint32_t length = Size(der);
        Must(codec.encode(object, der.data(), &length));
    }
    codec.free(object);
    CountBytes(state, der.size());
}

void Lengths(benchmark::internal::Benchmark* benchmark) { benchmark->RangeMultiplier(10)->Range(1000, 100000); }

constexpr Codec<X509GeneralNames> kList = {DecodeX509GeneralNames, EncodeX509GeneralNames, FreeX509GeneralNames};
constexpr Codec<X509Name> kName = {DecodeX509Name, EncodeX509Name, FreeX509Name};
BENCHMARK_CAPTURE(Decode, list, kList, ManyNames)->Apply(Lengths);
BENCHMARK_CAPTURE(Encode, list, kList, ManyNames)->Apply(Lengths);
BENCHMARK_CAPTURE(Decode, indefinite_list, kList, IndefiniteNames)->Apply(Lengths);
BENCHMARK_CAPTURE(Decode, reversed_set, kName, ReversedSet)->Apply(Lengths);
BENCHMARK_CAPTURE(Encode, reversed_set, kName, ReversedSet)->Apply(Lengths);
BENCHMARK_CAPTURE(Decode, nested, kName, NestedValue)->Apply(Lengths);

// ---- Bytes ----

// Runs over a buffer of the given size.
void Over(benchmark::State& state, void (*run)(const Bytes& in, Bytes* out)) {
    const Bytes in = Random(static_cast<size_t>(state.range(0)));
    Bytes out(2 * in.size() + 100);
    for (auto _ : state) run(in, &out);
    CountBytes(state, in.size());
}

// The same over the text of such a buffer.
void OverText(benchmark::State& state, void (*run)(const Bytes& in, Bytes* out)) {
    const Bytes bytes = Random(static_cast<size_t>(state.range(0)));
    const Bytes in = tlvforge::Get<Bytes>(EncodeToBase64, bytes);
    Bytes out(2 * in.size() + 100);
    for (auto _ : state) run(in, &out);
    CountBytes(state, in.size());
}

const char* TextOf(const Bytes& bytes) { return reinterpret_cast<const char*>(bytes.data()); }

void OwnSha1(const Bytes& in, Bytes* out) { Must(sha1(in.data(), Size(in), out->data())); }

void OwnBase64(const Bytes& in, Bytes* out) {
    uint32_t length = Size(*out);
    Must(EncodeToBase64(in.data(), Size(in), reinterpret_cast<char*>(out->data()), &length));
}

template <auto Read>
void OwnDecode(const Bytes& in, Bytes* out) {
    uint32_t length = Size(*out);
    Must(Read(TextOf(in), Size(in), out->data(), &length));
}

void Sizes(benchmark::internal::Benchmark* benchmark) { benchmark->Arg(64)->Arg(2048)->Arg(65536); }

BENCHMARK_CAPTURE(Over, sha1_tlvforge, OwnSha1)->Apply(Sizes);
BENCHMARK_CAPTURE(Over, base64_encode_tlvforge, OwnBase64)->Apply(Sizes);
BENCHMARK_CAPTURE(OverText, base64_decode_tlvforge, OwnDecode<DecodeFromBase64>)->Apply(Sizes);
BENCHMARK_CAPTURE(OverText, pem_decode_tlvforge, OwnDecode<DecodePem>)->Apply(Sizes);

#ifdef HAVE_OPENSSL
void OpenSslSha1(const Bytes& in, Bytes* out) {
    EVP_Digest(in.data(), in.size(), out->data(), nullptr, EVP_sha1(), nullptr);
}

// With line ends, as ours.
template <auto Begin, auto Update, auto Finish>
void OpenSslBase64(const Bytes& in, Bytes* out) {
    EVP_ENCODE_CTX* context = EVP_ENCODE_CTX_new();
    int length = 0, last = 0;
    Begin(context);
    Update(context, out->data(), &length, in.data(), static_cast<int>(in.size()));
    Finish(context, out->data() + length, &last);
    EVP_ENCODE_CTX_free(context);
}

BENCHMARK_CAPTURE(Over, sha1_openssl, OpenSslSha1)->Apply(Sizes);
BENCHMARK_CAPTURE(Over, base64_encode_openssl, OpenSslBase64<EVP_EncodeInit, EVP_EncodeUpdate, EVP_EncodeFinal>)
    ->Apply(Sizes);
BENCHMARK_CAPTURE(OverText, base64_decode_openssl, OpenSslBase64<EVP_DecodeInit, EVP_DecodeUpdate, EVP_DecodeFinal>)
    ->Apply(Sizes);
#endif

}  // namespace
