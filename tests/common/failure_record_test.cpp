#include <functional>
#include <map>

#include "support.h"

using namespace support;

namespace {

// Calls of one function that fail for different reasons.
struct Causes {
    const char* file;
    const char* function;
    std::vector<std::pair<Status, std::function<Status()>>> calls;
};

// Takes the first member out of a list while it lives.
class Hole {
public:
    explicit Hole(void* list) : slot_(static_cast<Asn1List*>(list)->items), member_(*slot_) { *slot_ = nullptr; }
    Hole(const Hole&) = delete;
    Hole& operator=(const Hole&) = delete;
    ~Hole() { *slot_ = member_; }

private:
    void** slot_;
    void* member_;
};

// Each at a line of its own, in one file.
void ExpectPlaces(const std::vector<Causes>& table) {
    for (const Causes& row : table) {
        std::map<uint32_t, size_t> lines;
        for (size_t i = 0; i < row.calls.size(); ++i) {
            EXPECT_EQ(row.calls[i].second(), row.calls[i].first) << row.function << ", call " << i;
            uint32_t line = 0;
            EXPECT_STREQ(GetLastFileErrorAsn(&line), row.file) << row.function << ", call " << i;
            const auto [other, added] = lines.emplace(line, i);
            EXPECT_TRUE(added) << row.function << ": calls " << other->second << " and " << i << " at line " << line;
        }
    }
}

TEST(FailureRecord, NamesTellABadIndexFromALostMember) {
    const Bytes rdn = Tlv(0x31, Tlv(0x30, OidTlv("2.5.4.3") + Tlv(0x0C, Text("a"))));
    const auto name = Decoded<FreeX509Name>(DecodeX509Name, Tlv(0x30, rdn + rdn));
    const auto names = Make<FreeX509GeneralNames>(CreateX509GeneralNames);
    const auto texts = Make<FreePKIFreeText>(CreatePKIFreeText);
    const auto strings = Make<FreeOctetStrings>(CreateOctetStrings);
    const Bytes text = Text("a");
    EXPECT_STATUS(StatusOk, AddX509GeneralName(names.get(), 1, text.data(), 1),
                  AddPKIFreeTextString(texts.get(), text.data(), 1),
                  AddOctetStringsValue(strings.get(), text.data(), 1));
    const Hole ofName(name.get()), ofNames(names.get()), ofTexts(texts.get()), ofStrings(strings.get());
    uint32_t count = 0, length = 0, oidLength = 0;
    uint8_t tag = 0;
    const auto entry = [&](uint32_t first, uint32_t second) {
        return GetX509NameEntry(name.get(), first, second, nullptr, &length, &tag, nullptr, &oidLength);
    };
    const auto general = [&](uint32_t i) { return GetX509GeneralName(names.get(), i, &count, nullptr, &length); };
    const auto string = [&](uint32_t i) { return GetPKIFreeTextString(texts.get(), i, nullptr, &length); };
    const auto octets = [&](uint32_t i) { return GetOctetStringsValue(strings.get(), i, nullptr, &length); };
    ExpectPlaces({
        {"X509Name.cpp",
         "GetX509NameEntryCount",
         {{32, [&] { return GetX509NameEntryCount(name.get(), 2, &count); }},
          {311, [&] { return GetX509NameEntryCount(name.get(), 0, &count); }}}},
        {"X509Name.cpp",
         "GetX509NameEntry",
         {{32, [&] { return entry(2, 0); }}, {311, [&] { return entry(0, 0); }}, {32, [&] { return entry(1, 1); }}}},
        {"X509Name.cpp",
         "DeleteX509NameEntry",
         {{32, [&] { return DeleteX509NameEntry(name.get(), 2, 0); }},
          {311, [&] { return DeleteX509NameEntry(name.get(), 0, 0); }},
          {32, [&] { return DeleteX509NameEntry(name.get(), 1, 1); }}}},
        {"GeneralNames.cpp",
         "GetX509GeneralName",
         {{32, [&] { return general(1); }}, {311, [&] { return general(0); }}}},
        {"X509General.cpp",
         "GetPKIFreeTextString",
         {{32, [&] { return string(1); }}, {311, [&] { return string(0); }}}},
        {"X509General.cpp",
         "GetOctetStringsValue",
         {{32, [&] { return octets(1); }}, {311, [&] { return octets(0); }}}},
    });
}

TEST(FailureRecord, OcspTellsAMissingListFromABadIndex) {
    const auto request = Make<FreeOcspRequest>(CreateOcspRequest);
    const auto response = Make<FreeOcspBasicResponse>(CreateOcspBasicResponse);
    Certificate* found = nullptr;
    const auto ofRequest = [&](int32_t i) { return GetOcspRequestCertificate(request.get(), i, &found); };
    const auto ofResponse = [&](int32_t i) { return GetOcspBasicResponseCertificate(response.get(), i, &found); };
    // Done by the third call: until then there are no certificates.
    const auto add = [&] {
        const auto ofOne = [](auto adder, auto* to) {
            return adder(to, Make<FreeCertificate>(CreateCertificate).release());
        };
        EXPECT_STATUS(StatusOk, ofOne(AddOcspRequestCertificate, request.get()),
                      ofOne(AddOcspBasicResponseCertificate, response.get()));
    };
    ExpectPlaces({
        {"OcspRequest.cpp",
         "GetOcspRequestCertificate",
         {{32, [&] { return ofRequest(-1); }},
          {311, [&] { return ofRequest(0); }},
          {32, [&] { return add(), ofRequest(1); }}}},
        {"OcspResponse.cpp",
         "GetOcspBasicResponseCertificate",
         {{32, [&] { return GetOcspBasicResponseCertificate(response.get(), 0, nullptr); }},
          {32, [&] { return ofResponse(1); }},
          {311, [&] { return (void)RemoveOcspBasicResponseCertificates(response.get()), ofResponse(0); }}}},
    });
}

TEST(FailureRecord, PoliciesTellTheTwoIndicesApart) {
    const auto policies = Make<FreeExtensionCertificatePolicies>(CreateExtensionCertificatePolicies);
    const Bytes oid = OidOf("1.2.3");
    uint32_t oidLength = 0, length = 0;
    ASSERT_EQ(AddExtensionPolicyInformation(policies.get(), oid.data(), nullptr), StatusOk);
    const auto read = [&](uint32_t i) {
        return GetExtensionPolicyQualifier(policies.get(), i, 0, nullptr, &oidLength, nullptr, &length);
    };
    const auto remove = [&](uint32_t i) { return RemoveExtensionPolicyQualifier(policies.get(), i, 0); };
    ExpectPlaces({
        {"StandardExtensions.cpp",
         "GetExtensionPolicyQualifier",
         {{32, [&] { return read(1); }}, {32, [&] { return read(0); }}}},
        {"StandardExtensions.cpp",
         "RemoveExtensionPolicyQualifier",
         {{32, [&] { return remove(1); }}, {32, [&] { return remove(0); }}}},
    });
}

TEST(FailureRecord, MessagesTellTheirCausesApart) {
    const auto message = Make<FreeCmsSignedData>(CreateCmsSignedData);
    const auto enveloped = Make<FreeCmsEnvelopedData>(CreateCmsEnvelopedData);
    const auto signer = Make<FreeCmsSignerInfo>(CreateCmsSignerInfo);
    const auto hashes = Make<FreeESSCertIDs>(CreateESSCertIDs);
    const Bytes member = Tlv(0x30, Text("a"));
    uint8_t kind = 0, small[1];
    uint32_t length = 0, serialLength = 0;
    const auto certificate = [&](uint32_t i, uint8_t* buffer, uint32_t* size) {
        return GetCmsSignedDataEncodedCertificate(message.get(), i, &kind, buffer, size);
    };
    const auto crl = [&](uint32_t i) { return GetCmsSignedDataEncodedCrl(message.get(), i, &kind, small, &length); };
    const auto add = [&](auto adder, auto* to, uint8_t ofKind, uint32_t size) {
        return adder(to, ofKind, member.data(), size);
    };
    const auto identifier = [&](CmsSignerInfo* of, X509Name** issuer) {
        return GetCmsSignerInfoSignerIdentifier(of, issuer, nullptr, &serialLength, nullptr, &length);
    };
    const auto hash = [&](uint32_t i) {
        return GetESSCertIDInformation(hashes.get(), i, nullptr, &length, nullptr, nullptr, &serialLength);
    };
    EXPECT_STATUS(StatusOk, AddESSCertIDToList(hashes.get(), member.data(), 1, nullptr, nullptr, 0));
    const Hole ofHashes(hashes.get());
    ExpectPlaces({
        {"CmsProperties.cpp",
         "GetCmsSignedDataEncodedCertificate",
         {{311, [&] { return certificate(0, nullptr, nullptr); }},
          {32,
           [&] {
               return add(AddCmsSignedDataEncodedCertificate, message.get(), 1, 3), certificate(1, small, &length);
           }},
          {32, [&] { return certificate(0, small, nullptr); }},
          {49, [&] { return length = 1, certificate(0, small, &length); }}}},
        {"CmsProperties.cpp",
         "AddCmsSignedDataEncodedCertificate",
         {{32, [&] { return add(AddCmsSignedDataEncodedCertificate, message.get(), 0, 3); }},
          {32, [&] { return add(AddCmsSignedDataEncodedCertificate, message.get(), 1, 0); }},
          {32, [&] { return AddCmsSignedDataEncodedCertificate(message.get(), 1, nullptr, 3); }}}},
        {"CmsEnvelopedData.cpp",
         "AddCmsEnvelopedDataEncodedCertificate",
         {{306, [&] { return add(AddCmsEnvelopedDataEncodedCertificate, enveloped.get(), 0, 3); }},
          {32, [&] { return add(AddCmsEnvelopedDataEncodedCertificate, enveloped.get(), 1, 0); }}}},
        {"CmsProperties.cpp",
         "GetCmsSignedDataEncodedCrl",
         {{311, [&] { return crl(0); }},
          {32, [&] { return add(AddCmsSignedDataEncodedCrl, message.get(), 1, 3), crl(1); }},
          {302, [&] { return crl(0); }}}},
        {"CmsProperties.cpp",
         "GetCmsSignerInfoSignerIdentifier",
         {{32, [&] { return identifier(nullptr, nullptr); }},
          {311, [&] { return identifier(signer.get(), nullptr); }}}},
        {"CadesLists.cpp", "GetESSCertIDInformation", {{32, [&] { return hash(1); }}, {311, [&] { return hash(0); }}}},
    });
}

}  // namespace
