#include "tlvforge/private_extensions.h"

#include <dlfcn.h>

#include "support.h"

using namespace support;

namespace {

const uint8_t kText[] = {'t', 0xFF}, kOid[] = {2, 0x2A, 0x03};
const LibraryTime kTime = {2024, 2, 29, 1, 2, 3}, kNullTime = {}, kWideTime = {10000, 1, 1, 0, 0, 0};
const std::string kTimeText = "0F32303234303232393031303230335A";  // 20240229010203Z

// What a decoder answers, as numbers: the status, then its outputs; of a time the year. All of them are 1 before the
// call, which is also the room in every buffer. A bit of `nulls` stands for an output that is a null pointer.
template <class... Outputs>
std::string Say(Status (*decode)(const uint8_t*, uint32_t, Outputs*...), const std::string& hex, uint32_t nulls = 0) {
    const Bytes data = Hex(hex) + Bytes{0};  // what follows the element is left alone
    uint32_t cells[sizeof...(Outputs)][sizeof(LibraryTime) / sizeof(uint32_t)] = {};
    for (auto& cell : cells) cell[0] = 1;
    const auto call = [&]<size_t... I>(std::index_sequence<I...>) {
        return decode(data.data(), Size(data) - 1,
                      (nulls >> I & 1 ? nullptr : reinterpret_cast<Outputs*>(cells[I]))...);
    };
    std::string words = std::to_string(call(std::index_sequence_for<Outputs...>()));
    for (const auto& cell : cells) words += " " + std::to_string(static_cast<int32_t>(cell[0]));
    return words;
}

TEST(PrivateExtension, HasTheseBytesOnTheWire) {
    const auto storage = EncodeExtensionKeyStorage;
    const auto check = EncodeExtensionOcspCheckTime2;
    const auto registry = EncodeExtensionOcspCheckKeyMeshRegistry;
    const auto file = EncodeExtensionOcspCheckFile;
    const uint8_t *t = kText, *none = nullptr;
    uint32_t n = 0;
    // clang-format off
    const std::pair<Bytes, std::string> rows[] = {
        {Fetch(EncodeExtensionSnils, t, 2), "0C0274FF"}, {Fetch(EncodeExtensionRelatedOsbKod, t, 2), "130274FF"},
        {Fetch(EncodeExtensionOwnerInformation, Make<FreeX509Name>(CreateX509Name).get()), "3000"},
        {Fetch(EncodeExtensionOcspCheckTime, &kTime), "18" + kTimeText},
        {Fetch(EncodeExtensionOcspRequestCertificates, 0x80), "0A020080"},
        {Fetch(EncodeExtensionOcspRequestDocuments, 0xFFFFFF00), "0202FF00"},
        {Fetch(EncodeExtensionParentAS, kOid), "06022A03"},
        {Fetch(EncodeExtensionRequestBlockingDate, nullptr, &kTime), "3011 81" + kTimeText},
        {Fetch(EncodeExtensionIssuerSignTool, t, 1, t, 0, t, 2, t, 1), "300C 0C0174 0C00 0C0274FF 0C0174"},
        {Fetch(storage, 3, none, 9), "3003 0A0103"}, {Fetch(storage, 3, t, 0), "3003 0A0103"},
        {Fetch(storage, 0x80000000, t, 1), "3009 0A0480000000 0C0174"},
        {Fetch(check, 1, nullptr), "B003 0A0101"}, {Fetch(check, 0, &kTime), "B014 0A0100 18" + kTimeText},
        {Fetch(registry, t, 1, t, 0, 0, 9), "3005 0C0174 0C00"},
        {Fetch(registry, t, 0, t, 1, -1, 9), "3008 0C00 0C0174 0A0109"},
        {Fetch(file, t, 1, none, 9, none, 9, 0, 6, t, 1, none, 9, 0, 5), "3006 040174 030174"},
        {Fetch(file, t, 0, t, 2, t, 0, 2, 6, none, 0, t, 1, 1, 5), "3011 0400 800274FF 8100 0A0106 040174 050105"}};
    // clang-format on
    for (const auto& [encoded, hex] : rows) EXPECT_EQ(ToHex(encoded), ToHex(Hex(hex)));
    Check({{EncodeExtensionIssuerSignTool(t, 1, t, 1, nullptr, 0, t, 1, nullptr, &n), 32},
           {EncodeExtensionOcspCheckFile(nullptr, 0, t, 1, t, 1, 0, 0, t, 1, t, 1, 0, 0, nullptr, &n), 32},
           {EncodeExtensionOcspCheckTime2(1, &kNullTime, nullptr, &n), 1}});
}

TEST(PrivateExtension, ReadsWhatIsThereAndRefusesTheRest) {
    const auto code = DecodeExtensionOcspRequestCertificates, number = DecodeExtensionOcspRequestDocuments;
    const auto storage = DecodeExtensionKeyStorage;
    const auto check = DecodeExtensionOcspCheckTime2;
    const auto registry = DecodeExtensionOcspCheckKeyMeshRegistry;
    const auto file = DecodeExtensionOcspCheckFile;
    const auto tools = DecodeExtensionIssuerSignTool;
    const std::string four = "3010 0C0103 0C020303 0C0105 0C0404040404";
    // clang-format off
    const std::pair<std::string, std::string> rows[] = {
        {Say(code, "0A01FF"), "0 -1"},             {Say(code, "020105"), "302 1"},    {Say(code, ""), "32 1"},
        {Say(number, "0202FF00"), "0 -256"},       {Say(number, "0A0105"), "302 1"},  {Say(number, ""), "32 1"},
        {Say(DecodeExtensionSnils, "0C0109"), "0 9 1"},             {Say(DecodeExtensionSnils, ""), "302 1 1"},
        {Say(DecodeExtensionRequestBlockingDate, "3011 80" + kTimeText), "0 2024 1"},
        {Say(storage, "3006 0A0103 0C0109"), "0 3 9 1"},            {Say(storage, "3003 0A0103"), "0 3 1 0"},
        {Say(storage, "3007 0A0103 0C020909"), "49 3 1 2"},         {Say(storage, "3005 0A00 0C0109"), "311 1 1 1"},
        {Say(check, "B003 0A0102"), "0 2 1"},                       {Say(check, "3003 0A0102"), "302 1 1"},
        {Say(check, "B003 0A0102", 1), "32 1 1"},                   {Say(check, "B005 0A0102 1800"), "302 2 1"},
        {Say(check, "B013 0A00 18" + kTimeText, 1), "0 1 2024"},    {Say(check, "B003 0A0102", 2), "32 1 1"},
        {Say(registry, "3009 0C0103 0C0104 0A0109"), "0 3 1 4 1 1 9"}, {Say(registry, ""), "32 1 1 1 1 1 1"},
        {Say(registry, "3005 0C0103 0C00"), "0 3 1 1 0 0 1"},
        {Say(registry, "300A 0C020303 0C0104 0A0109"), "49 1 2 1 1 1 1"},
        {Say(file, "3008 0400 0A0106 050105", 3 << 12), "0 1 0 1 0 1 0 1 6 1 0 1 0 1 1"},
        {Say(file, "3012 040103 800104 810105 030106 040107 050108"), "0 3 1 4 1 5 1 0 1 6 1 7 1 1 8"},
        {Say(file, "300E 04020303 810105 03020606 0C0109"), "49 1 2 1 0 5 1 0 1 1 2 1 0 0 1"},
        {Say(file, "300D 040103 0A050100000000 030106"), "49 3 1 1 0 1 0 1 1 1 1 1 1 1 1"},
        {Say(tools, four, 1 << 4), "32 1 1 1 1 1 1 1 1"},           {Say(tools, four, 0x45), "0 1 1 1 2 5 1 1 4"},
        {Say(tools, four, 0x60), "32 3 1 1 2 1 1 1 4"},             {Say(tools, four, 0x20), "49 3 1 1 2 1 1 1 4"}};
    // clang-format on
    for (const auto& row : rows) EXPECT_EQ(row.first, row.second) << "row " << &row - rows;
}

TEST(PrivateExtension, IsOneFunctionUnderSeveralNames) {
    const std::string text = "SubjectSignTool", store = "StoreCertificates";
    const std::pair<std::string, std::string> rows[] = {// clang-format off
        {text, "ZelcryptKeyIdentifier"}, {text, "Snils"}, {text, "OrganizationCode"}, {text, "ClockNumber"},
        {text, "VpnKeyTlsSerialNumber"}, {text, "OcspRequestGuid"}, {text, "OcspRequestPerson"},
        {text, "OcspRequestBsnProdCode"}, {"OcspRequestCertificates", "OcspRequestPrivateKeyContexts"},
        {"KeyStorage", "ExtendedResult"}, {store, "StorePrivateKeyContexts"}, {store, "StoreOcspRequestDocuments"}};
    // clang-format on
    const auto find = [](std::string form, const std::string& name) {
        return dlsym(RTLD_DEFAULT, form.replace(form.find('*'), 1, "Extension" + name).c_str());
    };
    uint32_t found = 0;
    for (const auto& [target, name] : rows)
        for (const char* form : {"Create*", "Decode*", "Encode*", "Free*", "Add*", "Get*", "Get*Count", "Remove*"}) {
            EXPECT_EQ(find(form, name), find(form, target)) << form << name;
            found += find(form, name) != nullptr;
        }
    EXPECT_EQ(found, 36u);
}

TEST(Stores, KeepTypesAndBytes) {
    const auto owner = Make<FreeExtensionStoreCertificates>(CreateExtensionStoreCertificates);
    ExtensionStoreCertificates *list = owner.get(), *none = list;
    const auto get = GetExtensionStoreCertificates;
    const Bytes der = Hex("3011 3007 0A0101 040274FF 3006 0A0200FF 0400");
    int32_t type = 0;
    uint32_t n = 1;
    Check({{AddExtensionStoreCertificates(list, 1, nullptr, 0), 32},
           {AddExtensionStoreCertificates(list, 1, kText, 2), 0},
           {AddExtensionStoreCertificates(list, 255, kText, 0), 0},
           {DecodeExtensionStoreCertificates(der.data(), 0, &none), 302}});
    EXPECT_EQ(Fetch(EncodeExtensionStoreCertificates, list), der);
    EXPECT_EQ(Fetch(get, list, 0, &type), Bytes(kText, kText + 2));
    Check({{type, 1}, {get(list, 2, &type, nullptr, &n), 32}, {get(list, 1, &type, nullptr, &n), 0}, {type, 255}});
    Check({{n, 0}, {RemoveExtensionStoreCertificates(list, 2), 32}, {RemoveExtensionStoreCertificates(list, 0), 0}});
    Check({{GetExtensionStoreCertificatesCount(list, &n), 0}, {n, 1}});
}

TEST(ExtendedResults, AdoptTheirListsAndLendThemAgain) {
    const auto results = Make<FreeExtensionOcspCheckFileExtResults>(CreateExtensionOcspCheckFileExtResults);
    auto certificates = Make<FreeExtensionStoreCertificates>(CreateExtensionStoreCertificates);
    auto names = Make<FreeX509GeneralNames>(CreateX509GeneralNames);
    const auto add = [&](const LibraryTime* time, ExtensionStoreCertificates* store, X509GeneralNames* named) {
        return AddExtensionOcspCheckFileExtResults(results.get(), 3, kText, 1, 2, time, store, named);
    };
    // Status, the two codes as digits, text, year, and which of the lists are there.
    const auto get = [](const ExtensionOcspCheckFileExtResults* list, uint32_t index) {
        int32_t code = 0, result = 0;
        uint8_t text = 0;
        uint32_t n = 1;
        LibraryTime time = kTime;
        ExtensionStoreCertificates* store = nullptr;
        X509GeneralNames* named = nullptr;
        const Status status =
            GetExtensionOcspCheckFileExtResults(list, index, &code, &text, &n, &result, &time, &store, &named);
        return Numbers{status, uint32_t(10 * code + result), text, time.year, store != nullptr, named != nullptr};
    };
    ASSERT_EQ(add(&kWideTime, certificates.get(), names.get()), 1u) << "and both are still the caller's";
    ASSERT_EQ(add(&kTime, certificates.release(), names.release()), StatusOk);
    const Bytes fields = Hex("0A0103 0C0174 0A0102 18"), der = Hex("3020 301E") + fields + Hex(kTimeText + "3000 2000");
    EXPECT_EQ(Fetch(EncodeExtensionOcspCheckFileExtResults, results.get()), der);
    ASSERT_EQ(add(&kNullTime, nullptr, nullptr), StatusOk);
    EXPECT_EQ(get(results.get(), 1), Numbers({0, 32, 't', 0, 0, 0}));
    EXPECT_EQ(get(results.get(), 2)[0], 32u);
    uint32_t n = 0;
    EXPECT_EQ(EncodeExtensionOcspCheckFileExtResults(results.get(), nullptr, &n), 311u);
    Check({{RemoveExtensionOcspCheckFileExtResults(results.get(), 0), 0},
           {GetExtensionOcspCheckFileExtResultsCount(results.get(), &n), 0},
           {n, 1}});
    const auto read = [&](const Bytes& from) {
        return get(Decoded<FreeExtensionOcspCheckFileExtResults>(DecodeExtensionOcspCheckFileExtResults, from).get(),
                   0);
    };
    EXPECT_EQ(read(der), Numbers({0, 32, 't', 2024, 1, 1}));
    EXPECT_EQ(read(Hex("300F 300D") + fields + Hex("00 3000")), Numbers({302, 32, 't', 0, 0, 0}));
}

TEST(IssuerSignTool, OfRealCertificatesIsWrittenAsItWas) {
    SKIP_WITHOUT_CORPUS();
    uint32_t found = 0;
    for (const auto& [name, der] : Corpus("cert")) {
        const auto certificate = Decoded<FreeCertificate>(DecodeCertificate, der);
        uint8_t value[4096], t[4][4096];
        uint32_t length = 4096, n[4] = {4096, 4096, 4096, 4096};
        const Bytes oid = OidOf("1.2.643.100.112");
        if (GetCertificateExtensionValue(certificate.get(), oid.data(), value, &length) != StatusOk) continue;
        ++found;
        EXPECT_EQ(DecodeExtensionIssuerSignTool(value, length, t[0], n, t[1], n + 1, t[2], n + 2, t[3], n + 3), 0u);
        const Bytes encoded = Fetch(EncodeExtensionIssuerSignTool, t[0], n[0], t[1], n[1], t[2], n[2], t[3], n[3]);
        EXPECT_EQ(encoded, Bytes(value, value + length)) << name;
    }
    EXPECT_GT(found, 0u);
}

}  // namespace
