#include "support.h"

using namespace support;

namespace {

using Texts = std::vector<std::string_view>;

// One commonName a text; with "+" in front it joins the RDN before.
auto NameWith(const Texts& texts, const char* type = "2.5.4.3", uint8_t tag = 12) {
    auto name = Make<FreeX509Name>(CreateX509Name);
    for (const std::string_view text : texts) {
        const Bytes value = Text(text.substr(text[0] == '+')), oid = OidOf(type);
        EXPECT_STATUS(StatusOk,
                      AddX509NameEntry(name.get(), value.data(), Size(value), tag, oid.data(), text[0] != '+'));
    }
    return name;
}

TEST(X509Name, EntryHasItsTagAndWhatIsInsideOfALongHeader) {
    const auto name = NameWith({});
    const Bytes content(200, 0x41), type = OidOf("2.5.4.3");
    Bytes value(200), oid(4), tag(3);
    uint32_t n = 0, m = 0;
    const auto get = [&](uint8_t* to, uint8_t* oidTo) {
        return GetX509NameEntryExt(name.get(), 0, 0, to, &n, &tag[0], &tag[1], &tag[2], oidTo, &m);
    };
    EXPECT_STATUS(StatusOk, AddX509NameEntryExt(name.get(), &content[0], 200, 0x80, 0x20, 201, &type[0], 1));
    CHECK({get(nullptr, nullptr)}, {n, 200}, {m, 4}, {tag[0], 0x80}, {tag[1], 0x20}, {tag[2], 0},
          {get(&value[0], &oid[0])}, {tag[2], 201});
    EXPECT_EQ(value + oid, content + type);
}

TEST(X509Name, ValueThatIsNoElementIsReadInsideItsRecord) {
    const auto name = NameWith({"b"});
    const auto* rdn = static_cast<Asn1List*>(reinterpret_cast<Asn1List*>(name.get())->items[0]);
    auto* any = static_cast<Asn1Any**>(rdn->items[0])[1];
    any->data[1] = 0x7F;
    for (const uint32_t stored : {3u, 2u, 1u, 0u}) {
        any->length = stored;
        uint8_t value[200], oid[4], tag = 0;
        uint32_t valueLength = sizeof value, oidLength = sizeof oid;
        EXPECT_STATUS(StatusOk, GetX509NameEntry(name.get(), 0, 0, value, &valueLength, &tag, oid, &oidLength));
        EXPECT_EQ(valueLength, stored == 3 ? 1u : 0u);
    }
    any->length = UINT32_MAX;
    uint32_t n = 0;
    EXPECT_STATUS(StatusLengthTooLong, EncodeX509Name(name.get(), nullptr, &n));
}

TEST(X509Name, DeleteHoldsTheIndexAgainstTheLastRdnToo) {
    const auto name = NameWith({"b", "+c", "+a", "d", "e"});
    const auto drop = [&](uint32_t rdn, uint32_t entry) { return DeleteX509NameEntry(name.get(), rdn, entry); };
    EXPECT_STATUS(StatusBadArgument, drop(0, 2), drop(1, 1), drop(3, 0), drop(~0u, 0), drop(0, ~0u));
    EXPECT_STATUS(StatusOk, drop(0, 0), drop(1, 0));
    EXPECT_EQ(ToHex(Fetch(EncodeX509Name, name.get())),
              "30223114300806035504030C0161300806035504030C0163310A300806035504030C0165");
    EXPECT_STATUS(StatusBadArgument,
                  AddX509NameEntry(NameWith({}).get(), Hex("00").data(), 1, 12, Hex("00").data(), 0));
}

TEST(X509Name, CompareSeesLengthsAndContentInOrder) {
    for (const Texts& other : {Texts{"A", "+b", "c"}, {"a ", "+b", "c"}, {"c", "a", "+b"}, {"a", "+b"}, {"a", "b"}})
        EXPECT_STATUS(StatusNotEqual, CompareX509Names(NameWith({"a", "+b", "c"}).get(), NameWith(other).get()));
    const auto first = NameWith({"a"}), second = NameWith({"a"}, "2.5.4.10", 19);
    const auto compare = [&](const auto& to) { return CompareX509Names(first.get(), to.get()); };
    const auto empty = Decoded<FreeX509Name>(DecodeX509Name, Hex("30800000"));
    CHECK({compare(second)}, {compare(NameWith({})), StatusAbsent}, {compare(empty), StatusAbsent});
    {
        auto* rdn = static_cast<Asn1List*>(reinterpret_cast<Asn1List*>(second.get())->items[0]);
        const Hole value(static_cast<void**>(rdn->items[0]) + 1);
        EXPECT_STATUS(StatusNotEqual, compare(second), CompareX509Names(second.get(), first.get()));
    }
    CHECK({ClearX509Name(first.get())}, {ClearX509Name(second.get())}, {compare(second)});
}

TEST(X509Name, StringTypeIsTheNarrowest) {
    const std::pair<std::string, uint32_t> rows[] = {{"", 18},        {"10 2", 18}, {"A", 19},  {"1-'(x)?", 19},
                                                     {"a@b", 22},     {"a_b", 22},  {"*A", 22}, {"\x7F", 22},
                                                     {"a@b\xC0", 12}, {"a\t", 12},  {"\t", 12}};
    for (const auto& [text, expected] : rows) {
        uint32_t type = 0;
        const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
        CHECK({DetermineSuitableStringType(bytes, Size(text), &type)}, {type, expected});
    }
}

TEST(X509Name, AttributeTypesAreNumberedBothWays) {
    // Programs keep the numbers.
    // clang-format off
    const char* const types[] = {
        "2.5.4.3", "2.5.4.10", "2.5.4.11", "2.5.4.6", "2.5.4.8", "2.5.4.7", "1.2.840.113549.1.9.1", "2.5.4.4",
        "2.5.4.42", "2.5.4.12", "0.9.2342.19200300.100.1.25", "2.5.4.1", "1.3.6.1.5.5.7.9.1", "2.5.4.36", "2.5.4.13",
        "1.3.6.1.5.5.7.9.3", "2.5.4.44", "2.5.4.43", "1.3.6.1.4.1.42.2.11.2.1", "1.3.6.1.5.5.7.9.2", "2.5.4.16",
        "2.5.4.17", "2.5.4.65", "2.5.4.5", "2.5.4.9", "0.9.2342.19200300.100.1.1", "2.5.4.33", "2.5.4.32", "2.5.4.45",
        "1.2.643.100.3", "1.2.643.3.131.1.1", "1.2.643.100.1"};
    // clang-format on
    uint32_t id = 0, number = 0;
    for (const char* const type : types) {
        EXPECT_EQ(Fetch(GetNameAttributeTypeOid, ++number), OidOf(type)) << type;
        CHECK({FindNameAttributeTypeIdByOid(OidOf(type).data(), &id)}, {id, number});
    }
    EXPECT_STATUS(StatusUnknownId, GetNameAttributeTypeOid(33, nullptr, &id));
}

TEST(GeneralNames, LargeTableIsABlockOfMalloc) {
    Bytes members;
    for (int i = 0; i < 9000; ++i) members.insert(members.end(), {0x82, 1, 0x61});
    const auto names = Decoded<FreeX509GeneralNames>(DecodeX509GeneralNames, Tlv(0x30, members));
    auto* list = reinterpret_cast<Asn1List*>(names.get());
    ASSERT_EQ(list->count, 9000u);
    void** table = static_cast<void**>(malloc(list->capacity * sizeof(void*)));
    std::copy_n(list->items, list->count, table);
    free(list->items);
    list->items = table;  // freed by the library
    EXPECT_EQ(Fetch(EncodeX509GeneralNames, names.get()), Tlv(0x30, members));
    const auto few = Make<FreeX509Name>(CopyX509Name, NameOf("few").get());
    list = reinterpret_cast<Asn1List*>(few.get());
    EXPECT_EQ(reinterpret_cast<Asn1List*>(list->items), list + 1) << "a small one lies beside the list";
}

TEST(GeneralNames, EachAlternativeGoesToTheWireAndBack) {
    const std::pair<const char*, const char*> rows[] = {
        {"30028000", "A0028000"}, {"614062", "8103614062"},     {"FF", "8201FF"},
        {"040107", "830107"},     {"3000", "A4023000"},         {"30028000", "A5028000"},
        {"753A76", "8603753A76"}, {"01020304", "870401020304"}, {"022A03", "88022A03"}};
    const Bytes broken = Hex("30 02 30 00");  // a directoryName that isn't one
    for (uint32_t i = 0; i < 9; ++i) {
        const auto names = Make<FreeX509GeneralNames>(CreateX509GeneralNames);
        const Bytes value = Hex(rows[i].first), element = Hex(rows[i].second);
        const uint32_t length = i == 8 ? 0 : Size(value);  // an OID tells its own length
        CHECK({AddX509GeneralName(names.get(), 4, broken.data(), 4)},
              {AddX509GeneralName(names.get(), 9, value.data(), length), StatusBadAlternative},
              {AddX509GeneralName(names.get(), i, value.data(), length)});
        const Bytes der = Fetch(EncodeX509GeneralNames, names.get());
        EXPECT_EQ(ToHex(der), ToHex(Tlv(0x30, Hex("A404") + broken + element)));
        const auto decoded = Decoded<FreeX509GeneralNames>(DecodeX509GeneralNames, der);
        uint32_t kind = 99;
        EXPECT_EQ(ToHex(Fetch(GetX509GeneralName, decoded.get(), 1, &kind)),
                  ToHex(i == 0 || i == 3 || i == 5 ? element : value));
        EXPECT_EQ(kind, i);
        X509Name* name = nullptr;
        EXPECT_EQ(GetX509NameFromGeneralNames(decoded.get(), &name), i == 4 ? StatusOk : StatusNotFound);
        FreeX509Name(name);
    }
}

TEST(ValueLists, KeepBytesAsTheyStand) {
    const auto texts = Make<FreePKIFreeText>(CreatePKIFreeText);
    const auto strings = Make<FreeOctetStrings>(CreateOctetStrings);
    const Bytes bytes = Hex("FFC0");
    Bytes read(2);
    uint32_t length = 1;  // the size offered doesn't count
    EXPECT_STATUS(StatusOk, AddPKIFreeTextString(texts.get(), bytes.data(), 0),
                  AddPKIFreeTextString(texts.get(), bytes.data(), 2),
                  AddOctetStringsValue(strings.get(), bytes.data(), 2),
                  GetOctetStringsValue(strings.get(), 0, read.data(), &length));
    EXPECT_EQ(Fetch(EncodePKIFreeText, texts.get()), Hex("3006 0C00 0C02 FFC0"));
    EXPECT_EQ(Fetch(GetPKIFreeTextString, texts.get(), 1), bytes);
    EXPECT_EQ(read, bytes);
    CHECK({length, 2}, {FreeOctetStrings(nullptr), StatusBadArgument});
}

}  // namespace
