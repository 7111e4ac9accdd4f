// The native methods, driven through a virtual machine that records what they do with their arrays.
#include <dlfcn.h>

#include <array>
#include <concepts>
#include <fstream>

#include "engine/items.h"
#include "fake_vm.h"
#include "java/text.h"
#include "support.h"
#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace {

using namespace support;

// On the machines at hand every argument of a native takes a register or a slot of eight bytes, so one type fits all.
using Arguments = std::array<jlong, 25>;
template <size_t>
using Slot = jlong;
template <size_t... Place>
jlong CallAny(void* native, JNIEnv* env, const Arguments& arguments, std::index_sequence<Place...>) {
    return reinterpret_cast<jlong (*)(JNIEnv*, jclass, Slot<Place>...)>(native)(env, nullptr, arguments[Place]...);
}
jlong CallAny(void* native, JNIEnv* env, const Arguments& arguments) {
    return CallAny(native, env, arguments, std::make_index_sequence<std::tuple_size_v<Arguments>>());
}

void* Find(const std::string& name) {
    std::string symbol = "Java_kestrelon_x509_tlvforge_Tlvforge_dll_1";
    for (const char letter : name) symbol += letter == '_' ? std::string("_1") : std::string(1, letter);
    void* native = dlsym(RTLD_DEFAULT, symbol.c_str());
    EXPECT_NE(native, nullptr) << symbol;
    return native;
}

jlong JavaValue(const void* reference) { return reinterpret_cast<jlong>(reference); }
jlong JavaValue(std::integral auto number) { return static_cast<jlong>(number); }

// A call with Java values: arrays and strings as they are, numbers as long.
template <class... Values>
jint Call(FakeVm& vm, const char* name, Values... values) {
    const Arguments arguments = {JavaValue(values)...};
    return static_cast<jint>(CallAny(Find(name), vm.env(), arguments));
}

struct Native {
    std::string name, shape;
};

std::vector<Native> AllNatives() {
    std::ifstream list(TLVFORGE_NATIVES);
    std::vector<Native> natives;
    std::string name, shape;
    list >> name >> shape;
    while (list >> name >> shape) natives.push_back({name, shape});
    return natives;
}

// One array for each parameter that takes one, all of `length` elements; handles are null, numbers `number`.
struct Sweep {
    jint length;
    bool null;
    jint number;
};

struct Prepared {
    Arguments arguments{};
    std::vector<int> arrays, strings;  // numbers of the objects
    std::vector<int> results;          // the arrays that have to have an element
};

Prepared Prepare(FakeVm& vm, const std::string& shape, const Sweep& sweep) {
    Prepared prepared;
    size_t place = 0;
    int made = 0;
    const auto put = [&](auto array, std::vector<int>& kind) {
        if (!sweep.null) kind.push_back(made);
        ++made;
        prepared.arguments[place++] = sweep.null ? 0 : reinterpret_cast<jlong>(array);
    };
    const auto bytes = [&] { put(vm.Bytes(Bytes(static_cast<size_t>(sweep.length))), prepared.arrays); };
    const auto number = [&](jint value) { prepared.arguments[place++] = value; };
    const auto result = [&](auto array) {
        prepared.results.push_back(made);
        put(array, prepared.arrays);
    };
    const auto numbers = [&] { result(vm.Ints(std::vector<jint>(static_cast<size_t>(sweep.length)))); };
    for (const char letter : shape) {
        if (letter == 'h') number(0);
        if (letter == 'i') number(sweep.number);
        if (letter == 'b' || letter == 'r' || letter == 'o') bytes();
        if (letter == 'b') number(sweep.number);
        if (letter == 'o' || letter == 'n') numbers();
        if (letter == 'l') result(vm.Longs(std::vector<jlong>(static_cast<size_t>(sweep.length))));
        if (letter == 's') put(vm.String("nowhere"), prepared.strings);
    }
    return prepared;
}

// What must have been obtained and given back, with the failing one left out.
std::string ExpectedPins(const Prepared& prepared, int failing) {
    std::string pins;
    for (const char sign : {'+', '-'}) {
        for (const auto& objects : {prepared.arrays, prepared.strings}) {
            for (const int object : objects) {
                if (object != failing) pins += sign + std::to_string(object);
            }
        }
    }
    return pins;
}

void Drive(const Native& native, const Sweep& sweep, int failing = -1) {
    FakeVm vm;
    vm.failing = failing;
    const Prepared prepared = Prepare(vm, native.shape, sweep);
    const jlong status = CallAny(Find(native.name), vm.env(), prepared.arguments);
    EXPECT_EQ(vm.pins, ExpectedPins(prepared, failing));
    for (const int result : prepared.results) {
        if (sweep.null || sweep.length == 0 || result == failing) {
            EXPECT_EQ(static_cast<jint>(status), jint{StatusBufferTooSmall}) << "array " << result;
        }
    }
}

TEST(Bridge, EveryNativeGivesBackWhatItObtained) {
#if defined(__SANITIZE_ADDRESS__)
    __lsan::ScopedDisabler objectsThatAreCreatedOnTheWay;
#endif
    const std::vector<Native> natives = AllNatives();
    ASSERT_GE(natives.size(), 783u);
    for (const Native& native : natives) {
        SCOPED_TRACE(native.name + " " + native.shape);
        if (native.name == "GetVersionInfo") continue;
        for (const Sweep& sweep : {Sweep{0, true, 0}, Sweep{0, true, -1}, Sweep{0, false, 0}, Sweep{0, false, 1},
                                   Sweep{1, false, -1}, Sweep{64, false, 0}, Sweep{64, false, 8}, Sweep{64, false, 64},
                                   Sweep{64, false, -1}, Sweep{64, false, 65}, Sweep{64, false, INT32_MAX}}) {
            SCOPED_TRACE(sweep.null ? "null" : std::to_string(sweep.length) + ", " + std::to_string(sweep.number));
            Drive(native, sweep);
        }
        // A virtual machine out of memory, for each array: there are no more than two for a letter.
        for (int object = 0; object < 2 * static_cast<int>(native.shape.size()); ++object) {
            SCOPED_TRACE("no elements of " + std::to_string(object));
            Drive(native, {64, false, 1}, object);
        }
    }
}

// Arrays without a count: the bridge refuses those that hold less than the function would read or write.
TEST(Bridge, ArraysWithoutACountAreMeasured) {
    FakeVm vm;
    const auto length = [&] { return vm.Ints({0}); };
    const auto room = [&] { return vm.Bytes(Bytes(64)); };
    const auto sha = [&](size_t size) { return Call(vm, "sha1", vm.Bytes({'a'}), 1, vm.Bytes(Bytes(size))); };
    const auto oid = [&](Bytes bytes) { return Call(vm, "ConvertOidToString", vm.Bytes(bytes), room(), length()); };
    const auto text = [&](Bytes bytes) { return Call(vm, "ConvertAnsiToUTF8", vm.Bytes(bytes), room(), length()); };
    const auto names = Make<FreeX509GeneralNames>(CreateX509GeneralNames);
    const auto name = [&](jint alternative, Bytes bytes) {
        return Call(vm, "AddX509GeneralName", names.get(), alternative, vm.Bytes(bytes), Size(bytes));
    };
    const auto policy = [&](Bytes bytes) {
        return Call(vm, "EncodeTimeStampReq", 1, vm.Bytes({1, 42}), nullptr, 0, vm.Bytes({1}), 1, vm.Bytes(bytes), 0,
                    nullptr, 0, 0, jlong{0}, room(), length());
    };
    const auto found = [&](Bytes bytes) { return Call(vm, "FindAlgIdByOid", vm.Bytes(bytes), length()); };
    CHECK({sha(19), StatusBufferTooSmall}, {sha(20)},  //
          {oid({}), StatusBufferTooSmall}, {oid({1}), StatusBufferTooSmall}, {oid({2, 42}), StatusBufferTooSmall},
          {oid({1, 42})},                                                                    //
          {oid({1, 42, 9})}, {text({})}, {text({'a', 'b'})}, {text({'a', 0})},               //
          {name(1, {9, 42})}, {name(8, {9, 42}), StatusBufferTooSmall}, {name(8, {1, 42})},  //
          {policy({3, 42}), StatusBufferTooSmall}, {policy({1, 42})}, {found({200}), StatusBufferTooSmall},
          {found({1, 42}), StatusUnknownOid});

    // A text ends at its zero byte or with its array.
    for (const Bytes& label : {Bytes{'C', 'R', 'L'}, Bytes{'C', 'R', 'L', 0, 'x'}}) {
        const jbyteArray pem = vm.Bytes(Bytes(100));
        ASSERT_EQ(Call(vm, "EncodePem", vm.Bytes({1}), 1, vm.Bytes(label), pem, length()), StatusOk);
        EXPECT_EQ(std::string(reinterpret_cast<char*>(FakeVm::BytesOf(pem).data()), 21), "-----BEGIN CRL-----\r\n");
    }

    EXPECT_EQ(Call(vm, "IsArrayEquals", vm.Bytes({1}), -1, vm.Bytes({2}), -1), StatusOk) << "counts with their sign";

    const jbyteArray digest = vm.Bytes(Bytes(20));
    Call(vm, "sha1", vm.Bytes({'a', 'b', 'c'}), 3, digest);
    EXPECT_EQ(ToHex(FakeVm::BytesOf(digest)), "A9993E364706816ABA3E25717850C26C9CD0D89D");
}

TEST(Bridge, WhatIsWrittenWithoutACapacityIsMeasuredFirst) {
    const auto strings = Make<FreeOctetStrings>(CreateOctetStrings);
    const Bytes value = {1, 2, 3};
    ASSERT_EQ(AddOctetStringsValue(strings.get(), value.data(), 3), StatusOk);
    for (const int capacity : {-1, 0, 2, 3, 4}) {
        FakeVm vm;
        const jbyteArray buffer = capacity < 0 ? nullptr : vm.Bytes(Bytes(static_cast<size_t>(capacity)));
        const jintArray length = vm.Ints({0});
        const bool small = capacity >= 0 && capacity < 3;
        EXPECT_EQ(Call(vm, "GetOctetStringsValue", strings.get(), 0, buffer, length), small ? 49 : 0) << capacity;
        EXPECT_EQ(FakeVm::IntOf(length), 3);
        if (capacity == 3) {
            EXPECT_EQ(FakeVm::BytesOf(buffer), value);
        }
    }
    FakeVm vm;
    const jintArray length = vm.Ints({7});
    EXPECT_EQ(Call(vm, "GetOctetStringsValue", strings.get(), 1, vm.Bytes({0}), length), jint{StatusBadArgument});
}

// Trees of a caller's own schema, whose addresses travel in a long[] or in the bytes of a byte[].
TEST(Bridge, AddressesTravelInArrays) {
    const Asn1Item& kList = tlvforge::itemOf<tlvforge::schema::SequenceOf<tlvforge::schema::Integer>>;
    FakeVm vm;
    const Bytes der = Hex("30 06 02 01 05 02 01 06");
    const jlongArray item = vm.Longs({reinterpret_cast<jlong>(&kList)});
    const jbyteArray root = vm.Bytes(Bytes(9, 0xEE));
    const jintArray consumed = vm.Ints({0});
    ASSERT_EQ(Call(vm, "Asn1DecodeItem", vm.Bytes(der), 8, item, root, consumed), StatusOk);
    EXPECT_EQ(FakeVm::IntOf(consumed), 8);
    EXPECT_EQ(FakeVm::BytesOf(root)[8], 0xEE) << "after the address";
    EXPECT_EQ(FakeVm::LongOf(item), reinterpret_cast<jlong>(&kList));

    jlong list = 0;
    memcpy(&list, FakeVm::BytesOf(root).data(), sizeof list);
    const jlongArray object = vm.Longs({list});
    EXPECT_EQ(Call(vm, "GetAsn1ListLength", object), 2);
    const jbyteArray element = vm.Bytes(Bytes(8));
    ASSERT_EQ(Call(vm, "GetAsn1ListItem", object, 1, element), StatusOk);
    jlong integer = 0;
    memcpy(&integer, FakeVm::BytesOf(element).data(), sizeof integer);
    const jintArray number = vm.Ints({0});
    EXPECT_STATUS(StatusOk, Call(vm, "GetAsn1Int32", vm.Longs({integer}), number));
    EXPECT_EQ(FakeVm::IntOf(number), 6);

    const jintArray length = vm.Ints({0}), equal = vm.Ints({0});
    EXPECT_STATUS(StatusOk, Call(vm, "Asn1Encode", root, item, nullptr, length));
    EXPECT_EQ(FakeVm::IntOf(length), 8);
    EXPECT_STATUS(StatusOk, Call(vm, "CompareAsn1Objects", item, root, vm.Bytes(FakeVm::BytesOf(root)), equal));
    EXPECT_EQ(FakeVm::IntOf(equal), 1);
    CHECK({Call(vm, "Asn1Encode", vm.Bytes(Bytes(7)), item, nullptr, length), StatusBufferTooSmall},
          {Call(vm, "FreeAsn1Object", item, vm.Bytes(Bytes(7))), StatusBufferTooSmall},
          {Call(vm, "FreeAsn1Object", item, root)});

    // A choice goes in and its alternative comes out, node and item.
    const Asn1Item& kChoice = tlvforge::itemOf<tlvforge::schema::Choice<tlvforge::schema::Integer>>;
    Asn1Value value{};
    const Asn1Choice choice{0, &value};
    const Asn1Choice* address = &choice;
    Bytes bytes(sizeof address);
    memcpy(bytes.data(), &address, sizeof address);
    const jbyteArray node = vm.Bytes(bytes);
    const jlongArray type = vm.Longs({reinterpret_cast<jlong>(&kChoice)});
    EXPECT_STATUS(StatusOk, Call(vm, "GetAsn1ChoiceUnderlyingType", node, type));
    EXPECT_EQ(FakeVm::LongOf(type), reinterpret_cast<jlong>(&tlvforge::itemOf<tlvforge::schema::Integer>));
    const Asn1Value* held = nullptr;
    memcpy(&held, FakeVm::BytesOf(node).data(), sizeof held);
    EXPECT_EQ(held, &value);
}

TEST(Bridge, VersionTextReplacesTheContentOfAStringBuffer) {
    uint8_t text[100];
    uint32_t length = sizeof text;
    ASSERT_EQ(GetVersionInfo(text, &length), StatusOk);
    const std::string made = std::string("NewStringUTF ") + reinterpret_cast<char*>(text);
    const std::vector<std::string> all = {made, "setLength(I)V", "void",
                                          "append(Ljava/lang/String;)Ljava/lang/StringBuffer;", "object"};
    struct {
        const char* missing;
        bool buffer;
        size_t calls;
    } const kCases[] = {{"", true, 5}, {"append", true, 4}, {"setLength", true, 2}, {"", false, 1}};
    for (const auto& row : kCases) {
        FakeVm vm;
        vm.missing = row.missing;
        EXPECT_STATUS(StatusOk, Call(vm, "GetVersionInfo", row.buffer ? &vm : nullptr));
        EXPECT_EQ(vm.calls, std::vector<std::string>(all.begin(), all.begin() + static_cast<ptrdiff_t>(row.calls)));
    }
}

TEST(Text, BecomesCp1251) {
    struct {
        const char* utf8;
        const char* cp1251;
    } const kCases[] = {
        {"", ""},
        {"plain.p7s", "plain.p7s"},
        {"АЯапря", "\xC0\xDF\xE0\xEF\xF0\xFF"},
        {"Ёё №•", "\xA8\xB8 \xB9\x95"},
        {"ЄЇЎєїў¤°·", "\xAA\xAF\xA1\xBA\xBF\xA2\xA4\xB0\xB7"},
        {"a€b", "ab"},                 // three bytes that aren't in the table vanish
        {"é", "\x99"},                 // a wrong byte
        {"\xC0\x80", "\xB0"},          // how Java writes U+0000
        {"x\xD0", "x"},                // a lead byte at the end
        {"\xD0\x41\x90", "\x41\xC0"},  // ASCII overtakes
        {"\xE2\x80", ""},              // a sequence cut short
        {"\xD0\xD0\x84", "\xC0"},      // a pending lead byte comes before the table
    };
    for (const auto& row : kCases) {
        std::string text = row.utf8;
        auto* bytes = reinterpret_cast<uint8_t*>(text.data());
        EXPECT_EQ(tlvforge::java::ConvertUtf8ToCp1251(bytes, bytes), strlen(row.cp1251)) << row.utf8;
        EXPECT_STREQ(text.c_str(), row.cp1251);
    }
}

}  // namespace
