// Extensions, lists of them, and their values: the bytes on the wire, what a reader makes of them, and who owns the
// parts.
#include "support.h"

using namespace support;

namespace {

using Points = walk::Owned<FreeExtensionCrlDistributionPoints>;

const uint8_t kText[] = {'t', 0xFF}, kBytes[] = {0x00, 0x05}, kOid[] = {3, 0x55, 0x1D, 0x20};
const LibraryTime kTime = {2024, 2, 29, 1, 2, 3}, kNullTime = {}, kWideTime = {10000, 1, 1, 0, 0, 0};
const std::string kTimeText = "32303234303232393031303230335A";  // 20240229010203Z
const std::string kFullName = "A005 A003 860175";                // the URI "u" in a DistributionPointName
const std::string kRelativeName = "A002 3000";

// Letters stand for extensions: the letter is the last arc and the value, a capital is critical.
Bytes OidOf(char letter) { return {3, 0x55, 0x1D, static_cast<uint8_t>(letter)}; }

Bytes ListTlv(std::string_view letters) {
    Bytes content;
    for (const char letter : letters) {
        const Bytes critical = letter < 'a' ? Hex("0101FF") : Bytes(), value = {static_cast<uint8_t>(letter)};
        content = content + Tlv(0x30, Bytes{6} + OidOf(letter) + critical + Tlv(4, value));
    }
    return Tlv(0x30, content);
}

auto ListOf(std::string_view letters) { return Decoded<FreeX509Extensions>(DecodeX509Extensions, ListTlv(letters)); }

Status Add(X509Extensions list, char letter) {
    const auto value = static_cast<uint8_t>(letter);
    return AddX509ExtensionsExtension(list, OidOf(letter).data(), letter < 'a' ? -1 : 0, &value, 1);
}

walk::Owned<FreeX509GeneralNames> Uri() {
    return Decoded<FreeX509GeneralNames>(DecodeX509GeneralNames, Hex("3003 860175"));
}

// An output of a reader. A time's first field is the year.
template <class Output>
union AnswerCell {
    Output output;
    std::conditional_t<std::is_pointer_v<Output>, uintptr_t, std::conditional_t<sizeof(Output) == 1, uint8_t, int32_t>>
        number;

    AnswerCell() : output{} { number = 1; }
    int64_t Word() const {
        return std::is_pointer_v<Output> && number != 0 && number != 1 ? 2 : static_cast<int64_t>(number);
    }
};

// What a reader answers, as numbers: the status, then its outputs; of a time the year, of an object 2. All of them are
// 1 before the call, which is also the room in every buffer. A bit of `nulls` stands for an output that is a null
// pointer.
template <class Source, class... Outputs>
std::string Ask(Status (*read)(Source, uint32_t, Outputs*...), std::type_identity_t<Source> source, uint32_t number,
                uint32_t nulls = 0) {
    std::tuple<AnswerCell<Outputs>...> cells;
    return std::apply(
        [&](auto&... cell) {
            uint32_t at = 0;
            const auto out = [&](auto& each) { return (nulls >> at++ & 1) != 0 ? nullptr : &each.output; };
            // In braces the arguments are taken from left to right.
            const std::tuple<Outputs*...> outputs{out(cell)...};
            const Status status = std::apply([&](auto*... to) { return read(source, number, to...); }, outputs);
            return (std::to_string(status) + ... + (" " + std::to_string(cell.Word())));
        },
        cells);
}

template <class... Outputs>
std::string Say(Status (*decode)(const uint8_t*, uint32_t, Outputs*...), const std::string& hex, uint32_t nulls = 0) {
    const Bytes data = Hex(hex) + Bytes{0};  // what follows the element is left alone
    return Ask(decode, data.data(), Size(data) - 1, nulls);
}

TEST(ExtensionList, KeepsItsOrderWhateverTheFlagSays) {
    const auto list = Make<FreeX509Extensions>(CreateX509Extensions);
    X509Extensions out = list.get();
    CHECK({Add(out, 'b')}, {Add(out, 'A')}, {Add(out, 'b')});
    for (const int32_t sorted : {1, 0}) {
        EXPECT_EQ(Fetch(EncodeX509Extensions, out), ListTlv("bAb"));
        EXPECT_STATUS(StatusOk, SetX509ExtensionsSorted(out, sorted));
    }
    EXPECT_EQ(Fetch(EncodeX509Extensions, out), ListTlv("bAb"));
    EXPECT_STATUS(StatusBadEncoding, DecodeX509Extensions(ListTlv("a").data(), 9, &out));
    EXPECT_EQ(out, list.get()) << "stored on success only";
}

TEST(ExtensionList, RemovesByOidWithoutLookingAtTheNextMember) {
    for (const auto& [before, after] :
         {std::pair("", ""), {"B", "B"}, {"A", ""}, {"AA", "A"}, {"AAA", "A"}, {"ABA", "B"}, {"AABAA", "ABA"}}) {
        const auto list = ListOf(before);
        EXPECT_EQ(RemoveX509ExtensionsExtension2(list.get(), OidOf('A').data()), StatusOk) << before;
        EXPECT_EQ(Fetch(EncodeX509Extensions, list.get()), ListTlv(after)) << before;
    }
}

TEST(ExtensionList, StartsAgainInAnEmptyCell) {
    const auto owner = ListOf("b");
    const X509Extensions slot = owner.get();
    const Bytes a = OidOf('a');
    uint32_t n = 7, critical = 7;
    CHECK({RemoveX509Extensions(slot)}, {GetX509ExtensionsExtensionsCount(slot, &n)}, {n, 0}, {Add(slot, 'B')},
          {Add(slot, 'a')}, {Add(slot, 'a')}, {FindX509Extension(slot, a.data(), &n)}, {n, 1},
          {GetX509ExtensionsExtension(slot, 0, nullptr, &n, &critical, nullptr, &n)}, {critical, 1},
          {RemoveX509ExtensionsExtension(slot, 3), StatusBadArgument}, {RemoveX509ExtensionsExtension(slot, 0)});
    EXPECT_EQ(Fetch(EncodeX509Extensions, slot), ListTlv("aa"));
    EXPECT_STATUS(StatusOk, ClearX509Extensions(slot));
    EXPECT_EQ(Fetch(EncodeX509Extensions, slot), Hex("3000"));
}

TEST(ExtensionValue, HasTheseBytesOnTheWire) {
    const auto names = Uri();
    const auto name = Make<FreeX509Name>(CreateX509Name);
    const auto point = EncodeExtensionIssuingDistributionPoint;
    const auto storage = EncodeExtensionKeyStorage;
    const auto check = EncodeExtensionOcspCheckTime2;
    const auto registry = EncodeExtensionOcspCheckKeyMeshRegistry;
    const auto file = EncodeExtensionOcspCheckFile;
    const auto tool = EncodeExtensionIssuerSignTool;
    const uint8_t *t = kText, *none = nullptr;
    // Of a point's two names the full one wins, and what is false or not wanted is left out. Its reasons stand under
    // the tag of the first flag.
    // clang-format off
    const std::pair<Bytes, std::string> rows[] = {
        {Fetch(EncodeExtensionNetscapeCertificateType, 0x8000), "0303070080"},
        {Fetch(EncodeExtensionBasicConstraints, 9, 128), "30070101FF02020080"},
        {Fetch(EncodeExtensionReasonCode, 1), "0A0101"},
        {Fetch(EncodeExtensionPrivateKeyUsagePeriod, nullptr, &kTime), "3011810F" + kTimeText},
        {Fetch(EncodeExtensionDeltaCrlIndicator, kBytes, 2), "02020005"},
        {Fetch(point, names.get(), name.get(), 0, 1, 9, 0, 4, 0, 0, 1, 0, 1), "3007" + kFullName},
        {Fetch(point, nullptr, name.get(), 1, 1, 2, 1, 64, 1, 3, 1, 4, 1),
         "3014" + kRelativeName + "8101FF 8201FF 81020640 8401FF 8501FF"},
        {Fetch(EncodeExtensionSnils, t, 2), "0C0274FF"}, {Fetch(EncodeExtensionRelatedOsbKod, t, 2), "130274FF"},
        {Fetch(EncodeExtensionOwnerInformation, name.get()), "3000"},
        {Fetch(EncodeExtensionOcspCheckTime, &kTime), "180F" + kTimeText},
        {Fetch(EncodeExtensionOcspRequestCertificates, 0x80), "0A020080"},
        {Fetch(EncodeExtensionOcspRequestDocuments, 0xFFFFFF00), "0202FF00"},
        {Fetch(EncodeExtensionParentAS, kOid), "0603551D20"},
        {Fetch(EncodeExtensionRequestBlockingDate, nullptr, &kTime), "3011 810F" + kTimeText},
        {Fetch(tool, t, 1, t, 0, t, 2, t, 1), "300C 0C0174 0C00 0C0274FF 0C0174"},
        {Fetch(storage, 3, none, 9), "3003 0A0103"}, {Fetch(storage, 3, t, 0), "3003 0A0103"},
        {Fetch(storage, 0x80000000, t, 1), "3009 0A0480000000 0C0174"}, {Fetch(check, 1, nullptr), "B003 0A0101"},
        {Fetch(check, 0, &kTime), "B014 0A0100 180F" + kTimeText},
        {Fetch(registry, t, 1, t, 0, 0, 9), "3005 0C0174 0C00"},
        {Fetch(registry, t, 0, t, 1, -1, 9), "3008 0C00 0C0174 0A0109"},
        {Fetch(file, t, 1, none, 9, none, 9, 0, 6, t, 1, none, 9, 0, 5), "3006 040174 030174"},
        {Fetch(file, t, 0, t, 2, t, 0, 2, 6, none, 0, t, 1, 1, 5), "3011 0400 800274FF 8100 0A0106 040174 050105"}};
    // clang-format on
    for (const auto& [encoded, hex] : rows) EXPECT_EQ(ToHex(encoded), ToHex(Hex(hex)));
}

TEST(ExtensionValue, IsReadAsFarAsItIsThere) {
    const auto usage = DecodeExtensionKeyUsage;
    const auto date = DecodeExtensionInvalidityDate;
    const auto authority = DecodeExtensionAuthorityKeyIdentifier;
    const auto point = DecodeExtensionIssuingDistributionPoint;
    const auto reason = DecodeExtensionReasonCode, code = DecodeExtensionOcspRequestCertificates,
               number = DecodeExtensionOcspRequestDocuments;
    const auto storage = DecodeExtensionKeyStorage;
    const auto check = DecodeExtensionOcspCheckTime2;
    const auto registry = DecodeExtensionOcspCheckKeyMeshRegistry;
    const auto file = DecodeExtensionOcspCheckFile;
    const auto tools = DecodeExtensionIssuerSignTool;
    const std::string four = "3010 0C0103 0C020303 0C0105 0C0404040404";
    // clang-format off
    const std::pair<std::string, std::string> rows[] = {
        {Say(usage, "03020106"), "0 6"}, {Say(usage, "0306000102030405"), "0 67305985"},
        {Say(usage, "030207FF"), "0 128"}, {Say(reason, "0A050100000000"), "49 1"}, {Say(reason, "0A01FF"), "0 -1"},
        {Say(date, "180F" + kTimeText), "0 2024"}, {Say(date, "1800"), "302 1"},
        {Say(date, "180E" + kTimeText), "307 1"}, {Say(authority, "3003 820105"), "0 1 0 0 5 1"},
        {Say(point, "3000"), "0 0 0 0 1 0 1 1 0 0 1 0 1"},
        {Say(point, "3014" + kFullName + "8101FF 81020640 8401FF 8501FF"), "0 2 0 255 1 0 1 64 1 255 1 255 1"},
        {Say(point, "3007" + kRelativeName + "8101FF"), "0 0 0 0 1 0 1 1 0 0 1 0 1"},
        {Say(point, "3006 A004A1023000"), "302 0 0 1 0 1 0 1 0 1 0 1 0"},
        {Say(point, "3004 81020640"), "307 0 0 1 0 1 0 1 0 1 0 1 0"}, {Say(code, "0A01FF"), "0 -1"},
        {Say(code, "020105"), "302 1"}, {Say(number, "0202FF00"), "0 -256"}, {Say(number, "0A0105"), "302 1"},
        {Say(DecodeExtensionSnils, "0C0109"), "0 9 1"},
        {Say(DecodeExtensionRequestBlockingDate, "3011 800F" + kTimeText), "0 2024 1"},
        {Say(DecodeExtensionRequestBlockingDate, "3022 800F" + kTimeText + "810F" + kTimeText), "0 2024 2024"},
        {Say(storage, "3006 0A0103 0C0109"), "0 3 9 1"}, {Say(storage, "3003 0A0103"), "0 3 1 0"},
        {Say(storage, "3005 0A00 0C0109"), "311 1 1 1"}, {Say(check, "B003 0A0102"), "0 2 1"},
        {Say(check, "3003 0A0102"), "302 1 1"}, {Say(check, "B003 0A0102", 1), "32 1 1"},
        {Say(check, "B005 0A0102 1800"), "302 2 1"}, {Say(check, "B013 0A00 180F" + kTimeText, 1), "0 1 2024"},
        {Say(check, "B003 0A0102", 2), "32 1 1"}, {Say(registry, "3009 0C0103 0C0104 0A0109"), "0 3 1 4 1 1 9"},
        {Say(registry, "3005 0C0103 0C00"), "0 3 1 1 0 0 1"},
        {Say(file, "3008 0400 0A0106 050105", 3 << 12), "0 1 0 1 0 1 0 1 6 1 0 1 0 1 1"},
        {Say(file, "3012 040103 800104 810105 030106 040107 050108"), "0 3 1 4 1 5 1 0 1 6 1 7 1 1 8"},
        {Say(file, "300E 04020303 810105 03020606 0C0109"), "49 1 2 1 0 5 1 0 1 1 2 1 0 0 1"},
        {Say(file, "300D 040103 0A050100000000 030106"), "49 3 1 1 0 1 0 1 1 1 1 1 1 1 1"},
        {Say(tools, four, 0x45), "0 1 1 1 2 5 1 1 4"}, {Say(tools, four, 0x60), "32 3 1 1 2 1 1 1 4"},
        {Say(tools, four, 0x20), "49 3 1 1 2 1 1 1 4"}};
    // clang-format on
    for (const auto& row : rows) EXPECT_EQ(row.first, row.second) << "row " << &row - rows;
}

TEST(CrlDistributionPoints, AdoptTheirPartsAndLendThemAgain) {
    const Points points = Make<FreeExtensionCrlDistributionPoints>(CreateExtensionCrlDistributionPoints);
    X509Name* name = Make<FreeX509Name>(CreateX509Name).release();
    X509GeneralNames* uri = Uri().release();
    const auto add = [&](auto full, auto relative, uint32_t reasons, auto issuer) {
        return AddExtensionCrlDistributionPoint(points.get(), full, relative, reasons, issuer);
    };
    EXPECT_STATUS(StatusBadArgument, add(uri, name, 0, nullptr), add(uri, nullptr, 0, uri),
                  add(nullptr, nullptr, 0, nullptr));
    EXPECT_STATUS(StatusOk, add(uri, nullptr, 0x8040, Uri().release()), add(nullptr, name, 0x40, nullptr),
                  add(nullptr, nullptr, 0x40, nullptr));
    const Bytes der =
        Hex("3023 3011" + kFullName + "8103074080 A203860175 3008" + kRelativeName + "81020640 300481020640");
    EXPECT_EQ(Fetch(EncodeExtensionCrlDistributionPoints, points.get()), der);
    const Points decoded = Decoded<FreeExtensionCrlDistributionPoints>(DecodeExtensionCrlDistributionPoints, der);
    const auto get = [](const Points& from, uint32_t i) {
        return Ask(GetExtensionCrlDistributionPoint, from.get(), i);
    };
    EXPECT_EQ(get(points, 0), "0 2 0 32832 2");
    EXPECT_EQ(get(points, 1), "0 0 2 64 0");
    EXPECT_EQ(get(decoded, 0), "0 2 0 32832 2");
    EXPECT_EQ(get(decoded, 1), "0 0 0 0 0") << "a relative name is lost on the way, and what follows it";
    EXPECT_EQ(get(decoded, 2), "0 0 0 64 0");
    EXPECT_EQ(get(decoded, 3), "32 1 1 1 1");
}

TEST(CrlDistributionPoints, OfACertificateAreReplacedUpToALimit) {
    const auto certificate = Make<FreeCertificate>(CreateCertificate);
    X509Extensions slot = nullptr;
    ASSERT_EQ(GetCertificateExtensions(certificate.get(), &slot), StatusOk);
    // The first takes 2048 bytes with its headers.
    for (const auto& [size, status] :
         {std::pair(2028, StatusOk), {1, StatusOk}, {2029, StatusBufferTooSmall}, {3000, StatusBufferTooSmall}}) {
        const std::string url(size, 'u');
        EXPECT_EQ(SetCertificateExtensionCrlDistributionPoints(certificate.get(), url.c_str()), status) << size;
    }
    EXPECT_EQ(Fetch(EncodeX509Extensions, slot), Hex("3014 3012 0603551D1F 040B 3009 3007" + kFullName));
}

TEST(CertificatePolicies, TakeThemselvesAsQualifiersAndStaySafe) {
    const Bytes der = Hex("3019 3010 0603551D20 3009 3007 0603551D25 0500 3005 0603551D21");
    const auto policies = Decoded<FreeExtensionCertificatePolicies>(DecodeExtensionCertificatePolicies, der);
    ExtensionCertificatePolicies* list = policies.get();
    // The status, the last arc, the first byte of the value, and the number of qualifiers.
    const auto qualifier = [&](uint32_t policy, uint32_t index, uint32_t room = 2) {
        uint8_t oid[4] = {}, value[2] = {};
        uint32_t oidLength = 4, count = 99;
        const Status status = GetExtensionPolicyQualifier(list, policy, index, oid, &oidLength, value, &room);
        EXPECT_STATUS(StatusOk, GetExtensionPolicyQualifiersCount(list, policy, &count));
        return Numbers{status, oid[3], value[0], count};
    };
    for (uint32_t i = 0; i < 24; ++i) {  // beyond the first table of a list
        EXPECT_STATUS(StatusOk, AddExtensionPolicyQualifier(list, i % 2, kOid, der.data(), 27));
    }
    uint32_t index = 99;
    EXPECT_EQ(Fetch(EncodeExtensionCertificatePolicies, list), der);
    Bytes all(der.begin() + 2, der.end());
    for (uint32_t i = 2; i < 30; ++i) {
        EXPECT_STATUS(StatusOk, AddExtensionPolicyInformation(list, kOid, &index));
        all = all + Hex("30050603551D20");
    }
    EXPECT_EQ(Fetch(EncodeExtensionCertificatePolicies, list), Tlv(0x30, all));
    {
        const Hole second(reinterpret_cast<Asn1List*>(list)->items + 1);
        EXPECT_STATUS(StatusAbsent, EncodeExtensionCertificatePolicies(list, nullptr, &index));
    }
    EXPECT_EQ(index, 29u);
    EXPECT_EQ(qualifier(0, 0), (Numbers{0, 0x25, 5, 13}));
    EXPECT_EQ(qualifier(0, 0, 1), (Numbers{49, 0x25, 0, 13}));
    EXPECT_EQ(qualifier(0, 12), (Numbers{0, 0x20, 0, 13}));
    EXPECT_EQ(qualifier(1, 0), (Numbers{0, 0x21, 0, 12}));
    EXPECT_EQ(qualifier(29, 0), (Numbers{32, 0, 0, 0}));
    EXPECT_STATUS(StatusOk, RemoveExtensionPolicyQualifier(list, 1, 11), RemoveExtensionPolicyInformation(list, 0));
    EXPECT_EQ(qualifier(0, 0), (Numbers{0, 0x21, 0, 11}));
}

TEST(ExtensionValue, IsOneFunctionUnderSeveralNames) {
    const auto find = [](std::string form, const std::string& name) {
        return Exported(form.replace(form.find('*'), 1, "Extension" + name).c_str());
    };
    uint32_t found = 0;
    for (const std::vector<std::string>& names : std::initializer_list<std::vector<std::string>>{
             {"SubjectSignTool", "ZelcryptKeyIdentifier", "Snils", "OrganizationCode", "ClockNumber",
              "VpnKeyTlsSerialNumber", "OcspRequestGuid", "OcspRequestPerson", "OcspRequestBsnProdCode"},
             {"OcspRequestCertificates", "OcspRequestPrivateKeyContexts"},
             {"KeyStorage", "ExtendedResult"},
             {"StoreCertificates", "StorePrivateKeyContexts", "StoreOcspRequestDocuments"}})
        for (const char* form : {"Create*", "Decode*", "Encode*", "Free*", "Add*", "Get*", "Get*Count", "Remove*"})
            for (const std::string& name : names) {
                EXPECT_EQ(find(form, name), find(form, names[0])) << form << name;
                found += name != names[0] && find(form, name) != nullptr;
            }
    EXPECT_EQ(found, 36u);
}

TEST(Stores, KeepTypesAndBytes) {
    const auto owner = Make<FreeExtensionStoreCertificates>(CreateExtensionStoreCertificates);
    ExtensionStoreCertificates* const list = owner.get();
    const auto add = AddExtensionStoreCertificates;
    const auto get = GetExtensionStoreCertificates;
    const Bytes der = Hex("3011 3007 0A0101 040274FF 3006 0A0200FF 0400");
    int32_t type = 0;
    uint32_t n = 1;
    EXPECT_STATUS(StatusOk, add(list, 1, kText, 2), add(list, 255, kText, 0));
    EXPECT_EQ(Fetch(EncodeExtensionStoreCertificates, list), der);
    EXPECT_EQ(Fetch(get, list, 0, &type), Bytes(kText, kText + 2));
    CHECK({type, 1}, {get(list, 2, &type, nullptr, &n), StatusBadArgument}, {get(list, 1, &type, nullptr, &n)},
          {type, 255}, {n, 0}, {RemoveExtensionStoreCertificates(list, 2), StatusBadArgument},
          {RemoveExtensionStoreCertificates(list, 0)}, {GetExtensionStoreCertificatesCount(list, &n)}, {n, 1});
}

TEST(ExtendedResults, AdoptTheirListsAndLendThemAgain) {
    const auto owner = Make<FreeExtensionOcspCheckFileExtResults>(CreateExtensionOcspCheckFileExtResults);
    ExtensionOcspCheckFileExtResults* results = owner.get();
    auto certificates = Make<FreeExtensionStoreCertificates>(CreateExtensionStoreCertificates);
    auto names = Make<FreeX509GeneralNames>(CreateX509GeneralNames);
    const auto add = [&](const LibraryTime* time, ExtensionStoreCertificates* store, X509GeneralNames* named) {
        return AddExtensionOcspCheckFileExtResults(results, 3, kText, 1, 2, time, store, named);
    };
    const auto get = GetExtensionOcspCheckFileExtResults;
    CHECK({add(&kWideTime, certificates.get(), names.get()), StatusOutOfMemory},  // and both are still the caller's
          {add(&kTime, certificates.release(), names.release())});
    const std::string fields = "0A0103 0C0174 0A0102 18", der = "3020 301E" + fields + "0F" + kTimeText + "3000 2000";
    EXPECT_EQ(Fetch(EncodeExtensionOcspCheckFileExtResults, results), Hex(der));
    EXPECT_STATUS(StatusOk, add(&kNullTime, nullptr, nullptr));
    EXPECT_EQ(Ask(get, results, 1), "0 3 116 1 2 0 0 0");
    uint32_t n = 0;
    CHECK({EncodeExtensionOcspCheckFileExtResults(results, nullptr, &n), StatusAbsent},
          {RemoveExtensionOcspCheckFileExtResults(results, 0)}, {GetExtensionOcspCheckFileExtResultsCount(results, &n)},
          {n, 1});
    EXPECT_EQ(Ask(get, results, 1), "32 1 1 1 1 1 1 1");
    const auto read = [&](const std::string& hex) {
        const auto decode = DecodeExtensionOcspCheckFileExtResults;
        return Ask(get, Decoded<FreeExtensionOcspCheckFileExtResults>(decode, Hex(hex)).get(), 0);
    };
    EXPECT_EQ(read(der), "0 3 116 1 2 2024 2 2");
    EXPECT_EQ(read("300F 300D" + fields + "00 3000"), "302 3 116 1 2 0 1 1");
}

}  // namespace
