#include <set>

#include "support.h"

using namespace support;

namespace {

// A call that has failed, and the place that is on record after it.
struct Failure {
    Failure(Status is, Status wanted) : status(is), expected(wanted), file(GetLastFileErrorAsn(&line)) {}
    Status status, expected;
    uint32_t line = 0;
    std::string file;
};

// Calls of one function that fail for different reasons: each at a line of its own, in one file.
void ExpectPlaces(const char* file, std::initializer_list<Failure> calls, int at = __builtin_LINE()) {
    std::set<uint32_t> lines;
    for (const Failure& call : calls) {
        SCOPED_TRACE("line " + std::to_string(at) + ", call " + std::to_string(&call - calls.begin()));
        CHECK({call.status, call.expected});
        EXPECT_EQ(call.file, file);
        EXPECT_TRUE(lines.insert(call.line).second) << "at the line of another one: " << call.line;
    }
}

TEST(FailureRecord, NamesTellABadIndexFromALostMember) {
    const Bytes rdn = Tlv(0x31, Tlv(0x30, OidTlv("2.5.4.3") + Tlv(0x0C, Text("a")))), text = Text("a");
    const auto name = Decoded<FreeX509Name>(DecodeX509Name, Tlv(0x30, rdn + rdn));
    const auto names = Make<FreeX509GeneralNames>(CreateX509GeneralNames);
    const auto texts = Make<FreePKIFreeText>(CreatePKIFreeText);
    const auto strings = Make<FreeOctetStrings>(CreateOctetStrings);
    EXPECT_STATUS(StatusOk, AddX509GeneralName(names.get(), 1, text.data(), 1),
                  AddPKIFreeTextString(texts.get(), text.data(), 1),
                  AddOctetStringsValue(strings.get(), text.data(), 1));
    const auto first = [](void* list) { return static_cast<Asn1List*>(list)->items; };
    const Hole holes[] = {first(name.get()), first(names.get()), first(texts.get()), first(strings.get())};
    uint32_t n = 0, m = 0;
    uint8_t tag = 0;
    const auto count = [&](uint32_t i) { return GetX509NameEntryCount(name.get(), i, &n); };
    const auto entry = [&](auto i, auto j) { return GetX509NameEntry(name.get(), i, j, nullptr, &n, &tag, 0, &m); };
    const auto drop = [&](uint32_t i, uint32_t j) { return DeleteX509NameEntry(name.get(), i, j); };
    const auto general = [&](uint32_t i) { return GetX509GeneralName(names.get(), i, &n, nullptr, &m); };
    const auto string = [&](uint32_t i) { return GetPKIFreeTextString(texts.get(), i, nullptr, &n); };
    const auto octets = [&](uint32_t i) { return GetOctetStringsValue(strings.get(), i, nullptr, &n); };
    ExpectPlaces("X509Name.cpp", {{count(2), StatusBadArgument}, {count(0), StatusAbsent}});
    ExpectPlaces("X509Name.cpp",
                 {{entry(2, 0), StatusBadArgument}, {entry(0, 0), StatusAbsent}, {entry(1, 1), StatusBadArgument}});
    ExpectPlaces("X509Name.cpp",
                 {{drop(2, 0), StatusBadArgument}, {drop(0, 0), StatusAbsent}, {drop(1, 1), StatusBadArgument}});
    ExpectPlaces("GeneralNames.cpp", {{general(1), StatusBadArgument}, {general(0), StatusAbsent}});
    ExpectPlaces("X509General.cpp", {{string(1), StatusBadArgument}, {string(0), StatusAbsent}});
    ExpectPlaces("X509General.cpp", {{octets(1), StatusBadArgument}, {octets(0), StatusAbsent}});
}

TEST(FailureRecord, OcspTellsAMissingListFromABadIndex) {
    const auto request = Make<FreeOcspRequest>(CreateOcspRequest);
    const auto response = Make<FreeOcspBasicResponse>(CreateOcspBasicResponse);
    Certificate* found = nullptr;
    const auto ofRequest = [&](int32_t i) { return GetOcspRequestCertificate(request.get(), i, &found); };
    const auto ofResponse = [&](int32_t i, auto to) { return GetOcspBasicResponseCertificate(response.get(), i, to); };
    const auto add = [](auto adder, const auto& to) {
        EXPECT_STATUS(StatusOk, adder(to.get(), Make<FreeCertificate>(CreateCertificate).release()));
    };
    ExpectPlaces("OcspRequest.cpp", {{ofRequest(-1), StatusBadArgument},
                                     {ofRequest(0), StatusAbsent},
                                     {(add(AddOcspRequestCertificate, request), ofRequest(1)), StatusBadArgument}});
    ExpectPlaces("OcspResponse.cpp",
                 {{ofResponse(0, nullptr), StatusBadArgument},
                  {ofResponse(0, &found), StatusAbsent},
                  {(add(AddOcspBasicResponseCertificate, response), ofResponse(1, &found)), StatusBadArgument}});
}

TEST(FailureRecord, PoliciesTellTheTwoIndicesApart) {
    const auto policies = Make<FreeExtensionCertificatePolicies>(CreateExtensionCertificatePolicies);
    uint32_t n = 0, m = 0;
    ASSERT_EQ(AddExtensionPolicyInformation(policies.get(), OidOf("1.2.3").data(), nullptr), StatusOk);
    const auto read = [&](uint32_t i) { return GetExtensionPolicyQualifier(policies.get(), i, 0, nullptr, &n, 0, &m); };
    const auto remove = [&](uint32_t i) { return RemoveExtensionPolicyQualifier(policies.get(), i, 0); };
    ExpectPlaces("StandardExtensions.cpp", {{read(1), StatusBadArgument}, {read(0), StatusBadArgument}});
    ExpectPlaces("StandardExtensions.cpp", {{remove(1), StatusBadArgument}, {remove(0), StatusBadArgument}});
}

TEST(FailureRecord, MessagesTellTheirCausesApart) {
    const auto message = Make<FreeCmsSignedData>(CreateCmsSignedData);
    const auto enveloped = Make<FreeCmsEnvelopedData>(CreateCmsEnvelopedData);
    const auto signer = Make<FreeCmsSignerInfo>(CreateCmsSignerInfo);
    const auto hashes = Make<FreeESSCertIDs>(CreateESSCertIDs);
    const Bytes member = Tlv(0x30, Text("a"));
    uint8_t kind = 0, small[1];
    uint32_t n = 0, m = 0;
    const auto certificate = [&](uint32_t i, uint8_t* buffer, uint32_t* size) {
        return GetCmsSignedDataEncodedCertificate(message.get(), i, &kind, buffer, size);
    };
    const auto crl = [&](uint32_t i) { return GetCmsSignedDataEncodedCrl(message.get(), i, &kind, small, &n); };
    const auto add = [&](auto adder, const auto& to, uint8_t as, const uint8_t* data, uint32_t size) {
        return adder(to.get(), as, data, size);
    };
    const auto identifier = [&](auto* of, auto issuer) {
        return GetCmsSignerInfoSignerIdentifier(of, issuer, nullptr, &n, nullptr, &m);
    };
    const auto hash = [&](uint32_t i) { return GetESSCertIDInformation(hashes.get(), i, nullptr, &n, 0, nullptr, &m); };
    const auto addCertificate = AddCmsSignedDataEncodedCertificate, addCrl = AddCmsSignedDataEncodedCrl;
    const auto addEnveloped = AddCmsEnvelopedDataEncodedCertificate;
    const uint8_t* const data = member.data();
    CmsSignerInfo* const none = nullptr;
    EXPECT_STATUS(StatusOk, AddESSCertIDToList(hashes.get(), data, 1, nullptr, nullptr, 0));
    const Hole first(reinterpret_cast<Asn1List*>(hashes.get())->items);
    ExpectPlaces("CmsProperties.cpp",
                 {{certificate(0, nullptr, nullptr), StatusAbsent},
                  {(add(addCertificate, message, 1, data, 3), certificate(1, small, &n)), StatusBadArgument},
                  {certificate(0, small, nullptr), StatusBadArgument},
                  {certificate(0, small, &(n = 1)), StatusBufferTooSmall}});
    ExpectPlaces("CmsProperties.cpp", {{add(addCertificate, message, 0, data, 3), StatusBadArgument},
                                       {add(addCertificate, message, 1, data, 0), StatusBadArgument},
                                       {add(addCertificate, message, 1, nullptr, 3), StatusBadArgument}});
    ExpectPlaces("CmsEnvelopedData.cpp", {{add(addEnveloped, enveloped, 0, data, 3), StatusBadAlternative},
                                          {add(addEnveloped, enveloped, 1, data, 0), StatusBadArgument}});
    ExpectPlaces("CmsProperties.cpp", {{crl(0), StatusAbsent},
                                       {(add(addCrl, message, 1, data, 3), crl(1)), StatusBadArgument},
                                       {crl(0), StatusBadEncoding}});
    ExpectPlaces("CmsProperties.cpp",
                 {{identifier(none, nullptr), StatusBadArgument}, {identifier(signer.get(), nullptr), StatusAbsent}});
    ExpectPlaces("CadesLists.cpp", {{hash(1), StatusBadArgument}, {hash(0), StatusAbsent}});
}

}  // namespace
