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
jlong CallAny(const std::string& name, FakeVm& vm, const Arguments& arguments) {
    std::string symbol = "Java_kestrelon_x509_tlvforge_Tlvforge_dll_1";
    for (const char letter : name) symbol += letter == '_' ? std::string("_1") : std::string(1, letter);
    void* const native = dlsym(RTLD_DEFAULT, symbol.c_str());
    EXPECT_NE(native, nullptr) << symbol;
    const auto call = [&](auto... slots) {
        return reinterpret_cast<jlong (*)(JNIEnv*, jclass, decltype(slots)...)>(native)(vm.env(), nullptr, slots...);
    };
    return std::apply(call, arguments);
}

jlong JavaValue(const void* reference) { return reinterpret_cast<jlong>(reference); }
jlong JavaValue(std::integral auto number) { return static_cast<jlong>(number); }

// A call with Java values: arrays and strings as they are, numbers as long.
jint Call(FakeVm& vm, const char* name, auto... values) {
    return static_cast<jint>(CallAny(name, vm, {JavaValue(values)...}));
}

// One array for each parameter that takes one, all of `length` elements or null; handles are null, numbers `number`.
struct Sweep {
    jint length;
    bool null;
    jint number;
};

void Drive(const std::string& name, const std::string& shape, const Sweep& sweep, int failing = -1) {
    SCOPED_TRACE(name + " " + shape + " " +
                 testing::PrintToString(std::tuple(sweep.null, sweep.length, sweep.number, failing)));
    FakeVm vm;
    vm.failing = failing;
    Arguments arguments{};
    size_t place = 0;
    int made = 0;
    bool refused = false;                  // for the lack of an element that a result needs
    std::string obtained[2], released[2];  // arrays, then strings
    const auto put = [&](auto array, bool isResult, bool isString = false) {
        const bool pinned = !sweep.null && made != failing;
        if (pinned) obtained[isString] += "+" + std::to_string(made);
        if (pinned) released[isString] += "-" + std::to_string(made);
        refused |= isResult && (!pinned || sweep.length == 0);
        arguments[place++] = sweep.null ? 0 : JavaValue(array);
        ++made;
    };
    const auto size = static_cast<size_t>(sweep.length);
    for (const char letter : shape) {
        if (letter == 'b' || letter == 'r' || letter == 'o') put(vm.Bytes(Bytes(size)), false);
        if (letter == 'o' || letter == 'n') put(vm.Ints(std::vector<jint>(size)), true);
        if (letter == 'l') put(vm.Longs(std::vector<jlong>(size)), true);
        if (letter == 's') put(vm.String("nowhere"), false, true);
        if (letter == 'b' || letter == 'i') arguments[place++] = sweep.number;
        if (letter == 'h') arguments[place++] = 0;
    }
    const auto status = static_cast<jint>(CallAny(name, vm, arguments));
    EXPECT_EQ(vm.pins, obtained[0] + obtained[1] + released[0] + released[1]);
    if (refused) EXPECT_STATUS(StatusBufferTooSmall, status);
}

TEST(Bridge, EveryNativeGivesBackWhatItObtained) {
#if defined(__SANITIZE_ADDRESS__)
    __lsan::ScopedDisabler objectsThatAreCreatedOnTheWay;
#endif
    std::ifstream natives(TLVFORGE_NATIVES);
    std::string name, shape;
    natives >> name >> shape;  // the heading
    size_t count = 0;
    for (; natives >> name >> shape; ++count) {
        if (name == "GetVersionInfo") continue;
        for (const Sweep& sweep : {Sweep{0, true, 0}, Sweep{0, true, -1}, Sweep{0, false, 0}, Sweep{0, false, 1},
                                   Sweep{1, false, -1}, Sweep{64, false, 0}, Sweep{64, false, 8}, Sweep{64, false, 64},
                                   Sweep{64, false, -1}, Sweep{64, false, 65}, Sweep{64, false, INT32_MAX}}) {
            Drive(name, shape, sweep);
        }
        // A virtual machine out of memory, for each array: there are no more than two for a letter.
        for (int object = 0; object < 2 * static_cast<int>(shape.size()); ++object)
            Drive(name, shape, {64, false, 1}, object);
    }
    EXPECT_GE(count, 783u);
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
    CHECK({sha(19), StatusBufferTooSmall}, {sha(20)}, {oid({}), StatusBufferTooSmall}, {oid({1}), StatusBufferTooSmall},
          {oid({2, 42}), StatusBufferTooSmall}, {oid({1, 42})}, {oid({1, 42, 9})}, {text({})}, {text({'a', 'b'})},
          {text({'a', 0})}, {name(1, {9, 42})}, {name(8, {9, 42}), StatusBufferTooSmall}, {name(8, {1, 42})},
          {policy({3, 42}), StatusBufferTooSmall}, {policy({1, 42})}, {found({200}), StatusBufferTooSmall},
          {found({1, 42}), StatusUnknownOid});

    // A text ends at its zero byte or with its array.
    for (const Bytes& label : {Bytes{'C', 'R', 'L'}, Bytes{'C', 'R', 'L', 0, 'x'}}) {
        const jbyteArray pem = vm.Bytes(Bytes(100));
        ASSERT_EQ(Call(vm, "EncodePem", vm.Bytes({1}), 1, vm.Bytes(label), pem, length()), StatusOk);
        EXPECT_EQ(std::string(reinterpret_cast<char*>(FakeVm::BytesOf(pem).data()), 21), "-----BEGIN CRL-----\r\n");
    }

    const jbyteArray digest = vm.Bytes(Bytes(20));
    EXPECT_STATUS(StatusOk, Call(vm, "sha1", vm.Bytes({'a', 'b', 'c'}), 3, digest));
    EXPECT_EQ(ToHex(FakeVm::BytesOf(digest)), "A9993E364706816ABA3E25717850C26C9CD0D89D");
}

TEST(Bridge, CountsStayWithinTheirArrays) {
    FakeVm vm;
    const auto certificate = Make<FreeCertificate>(CreateCertificate);
    const jbyteArray four = vm.Bytes({1, 2, 3, 4}), empty = vm.Bytes({});
    const auto set = [&](jbyteArray bytes, jint count) {
        return Call(vm, "SetCertificateSerialNumber", certificate.get(), bytes, count);
    };
    for (const auto& [count, stored] :
         {std::pair(4, "01020304"), std::pair(2, "0102"), std::pair(-1, "01020304"), std::pair(1, "01")}) {
        EXPECT_STATUS(StatusOk, set(four, count));
        EXPECT_EQ(ToHex(Fetch(GetCertificateSerialNumber, certificate.get())), stored);
    }
    CHECK({set(four, 5), StatusBufferTooSmall}, {set(nullptr, 1), StatusBufferTooSmall},
          {set(empty, 1), StatusBufferTooSmall}, {set(nullptr, 0), StatusBadArgument});
    CHECK({Call(vm, "IsArrayEquals", vm.Bytes({1}), -1, vm.Bytes({2}), -1)});  // counts with their sign
}

// Of a function that looks at the capacity, and of one that doesn't and so is called to measure first.
TEST(Bridge, TheCapacityIsTheLengthOfTheArray) {
    const auto crl = Make<FreeX509Crl>(CreateX509Crl);
    const auto strings = Make<FreeOctetStrings>(CreateOctetStrings);
    const Bytes value = {1, 2, 3};
    EXPECT_STATUS(StatusOk, SetX509CrlSignature(crl.get(), value.data(), 3),
                  AddOctetStringsValue(strings.get(), value.data(), 3));
    for (const bool measured : {false, true}) {
        for (const int capacity : {-1, 0, 2, 3, 4}) {
            FakeVm vm;
            const Bytes before(static_cast<size_t>(std::max(capacity, 0)), 0xEE);
            const jbyteArray buffer = capacity < 0 ? nullptr : vm.Bytes(before);
            const jintArray length = vm.Ints({1000, -5});
            const bool small = capacity >= 0 && capacity < 3;
            EXPECT_STATUS(small ? StatusBufferTooSmall : StatusOk,
                          measured ? Call(vm, "GetOctetStringsValue", strings.get(), 0, buffer, length)
                                   : Call(vm, "GetX509CrlSignature", crl.get(), buffer, length));
            EXPECT_EQ(FakeVm::BytesOf(length), FakeVm::BytesOf(vm.Ints({3, -5}))) << capacity;
            if (buffer == nullptr) continue;
            EXPECT_EQ(FakeVm::BytesOf(buffer), small ? before : capacity == 3 ? value : value + Bytes{0xEE});
        }
    }
    FakeVm vm;
    EXPECT_STATUS(StatusBadArgument, Call(vm, "GetOctetStringsValue", strings.get(), 1, vm.Bytes({0}), vm.Ints({7})));
    uint32_t line = 0;
    const jintArray cell = vm.Ints({0});
    EXPECT_EQ(CallAny("GetLastFileErrorAsn", vm, {JavaValue(cell)}), JavaValue(GetLastFileErrorAsn(&line)));
    EXPECT_EQ(FakeVm::FirstOf<uint32_t>(cell), line);
    EXPECT_STATUS(StatusBufferTooSmall, Call(vm, "AllocAsn1Integer_s", vm.Bytes({1}), 2));  // for a handle
}

// Trees of a caller's own schema, whose addresses travel in a long[] or in the bytes of a byte[].
TEST(Bridge, AddressesTravelInArrays) {
    const Asn1Item& kList = tlvforge::itemOf<tlvforge::schema::SequenceOf<tlvforge::schema::Integer>>;
    FakeVm vm;
    const auto address = [](auto array) { return FakeVm::FirstOf<jlong>(array); };
    const auto number = [](jintArray array) { return FakeVm::FirstOf<jint>(array); };
    const jlongArray item = vm.Longs({JavaValue(&kList)});
    const jbyteArray root = vm.Bytes(Bytes(9, 0xEE)), seven = vm.Bytes(Bytes(7));
    const jintArray length = vm.Ints({0});
    CHECK({Call(vm, "Asn1DecodeItem", vm.Bytes(Hex("30 06 02 01 05 02 01 06")), 8, item, root, length)},
          {number(length), 8}, {FakeVm::BytesOf(root)[8], 0xEE});
    EXPECT_EQ(address(item), JavaValue(&kList));

    const jlongArray object = vm.Longs({address(root)});
    const jbyteArray element = vm.Bytes(Bytes(8));
    const jintArray value = vm.Ints({0}), size = vm.Ints({0}), equal = vm.Ints({0});
    CHECK({Call(vm, "GetAsn1ListLength", object), 2}, {Call(vm, "GetAsn1ListItem", object, 1, element)},
          {Call(vm, "GetAsn1Int32", vm.Longs({address(element)}), value)}, {number(value), 6},
          {Call(vm, "Asn1Encode", root, item, nullptr, size)}, {number(size), 8},
          {Call(vm, "CompareAsn1Objects", item, root, vm.Bytes(FakeVm::BytesOf(root)), equal)}, {number(equal), 1},
          {Call(vm, "Asn1Encode", seven, item, nullptr, size), StatusBufferTooSmall},
          {Call(vm, "FreeAsn1Object", item, seven), StatusBufferTooSmall}, {Call(vm, "FreeAsn1Object", item, root)});

    // A choice goes in and its alternative comes out, node and item.
    const Asn1Item& kChoice = tlvforge::itemOf<tlvforge::schema::Choice<tlvforge::schema::Integer>>;
    Asn1Value held{};
    const Asn1Choice choice{0, &held};
    const jbyteArray node = vm.Bytes(FakeVm::BytesOf(vm.Longs({JavaValue(&choice)})));
    const jlongArray type = vm.Longs({JavaValue(&kChoice)});
    EXPECT_STATUS(StatusOk, Call(vm, "GetAsn1ChoiceUnderlyingType", node, type));
    EXPECT_EQ(address(type), JavaValue(&tlvforge::itemOf<tlvforge::schema::Integer>));
    EXPECT_EQ(address(node), JavaValue(&held));
}

TEST(Bridge, VersionTextReplacesTheContentOfAStringBuffer) {
    uint8_t text[100];
    uint32_t length = sizeof text;
    ASSERT_EQ(GetVersionInfo(text, &length), StatusOk);
    const std::string made = std::string("NewStringUTF ") + reinterpret_cast<char*>(text);
    const std::vector<std::string> all = {made, "setLength(I)V", "void",
                                          "append(Ljava/lang/String;)Ljava/lang/StringBuffer;", "object"};
    using Rows = std::vector<std::tuple<const char*, bool, ptrdiff_t>>;
    for (const auto& [missing, buffer, calls] :
         Rows{{"", true, 5}, {"append", true, 4}, {"setLength", true, 2}, {"", false, 1}}) {
        FakeVm vm;
        vm.missing = missing;
        EXPECT_STATUS(StatusOk, Call(vm, "GetVersionInfo", buffer ? &vm : nullptr));
        EXPECT_EQ(vm.calls, std::vector(all.begin(), all.begin() + calls)) << missing;
    }
}

TEST(Text, BecomesCp1251) {
    const std::pair<const char*, const char*> rows[] = {
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
    for (const auto& [utf8, cp1251] : rows) {
        std::string text = utf8;
        auto* bytes = reinterpret_cast<uint8_t*>(text.data());
        EXPECT_EQ(tlvforge::java::ConvertUtf8ToCp1251(bytes, bytes), strlen(cp1251)) << utf8;
        EXPECT_STREQ(text.c_str(), cp1251);
    }
}

}  // namespace
