#include "support.h"

using namespace support;

namespace {

const Bytes kNone, kNull = Hex("0500"), kSha1 = OidOf("1.3.14.3.2.26"), kNames = Text("name"), kKeys = Text("key");
const Bytes kSerial = Hex("0080"), kSignature = Hex("0102"), kRsa = OidOf("1.2.840.113549.1.1.11"), kDns = Text("a.b");
const Bytes kSigned = Tlv(0x30, Bytes{6} + kRsa + kNull) + Tlv(3, Bytes{0} + kSignature);
const Bytes kTimeTlv = Tlv(24, Text("20240229123456Z")), kName = Hex("300D310B300906035504030C02434E");
const Bytes kExtensions = Tlv(0x30, Tlv(0x30, OidTlv("1.3.6.1.5.5.7.48.1.2") + Tlv(4, kNull)));
const Bytes kCertId = Tlv(48, Tlv(48, Bytes{6} + kSha1 + kNull) + Tlv(4, kNames) + Tlv(4, kKeys) + Tlv(2, kSerial));
const Bytes kEntries = Tlv(0x30, Tlv(0x30, kCertId) + Tlv(0x30, kCertId + Tlv(0xA0, kExtensions)));
const Bytes kTbs = Hex("A003020101") + Tlv(0xA1, Tlv(0x82, kDns)) + kEntries + Tlv(0xA2, kExtensions);
const Bytes kRequest = Tlv(0x30, Tlv(0x30, kTbs) + Tlv(0xA0, Tlv(0x30, kSigned)));

Bytes SingleTlv(const Bytes& status, const Bytes& rest = {}) { return Tlv(0x30, kCertId + status + kTimeTlv + rest); }
const Bytes kGood = SingleTlv(Hex("8000")), kUnknown = SingleTlv(Hex("8200"));
const Bytes kRevoked = SingleTlv(Tlv(0xA1, kTimeTlv + Hex("A0030A0100")), Tlv(0xA0, kTimeTlv) + Tlv(0xA1, kExtensions));
const Bytes kByName = Tlv(0xA1, kName), kByKey = Tlv(0xA2, Tlv(4, kKeys)), kSingles = kGood + kUnknown + kRevoked;
Bytes BasicTlv(const Bytes& responder, const Bytes& singles) {
    return Tlv(0x30, Tlv(0x30, responder + kTimeTlv + Tlv(0x30, singles) + Tlv(0xA1, kExtensions)) + kSigned);
}

const LibraryTime kTime = {2024, 2, 29, 12, 34, 56}, kNoTime = {};
auto BasicOf(const Bytes& bytes) { return Decoded<FreeOcspBasicResponse>(DecodeOcspBasicResponse, bytes); }
auto SingleOf(const Bytes& bytes) { return Decoded<FreeOcspSingleResponse>(DecodeOcspSingleResponse, bytes); }
Certificate* NewCertificate() { return Make<FreeCertificate>(CreateCertificate).release(); }
Status AddNonce(X509Extensions handle) { return AddExtension(handle, "1.3.6.1.5.5.7.48.1.2", kNull); }
Status AddEntry(OcspRequest* request, X509Extensions extensions, const Bytes& serial = kSerial) {
    return AddOcspRequestCertRequest(request, &kSha1[0], &kNull[0], 2, &kNames[0], 4, &kKeys[0], 3, &serial[0],
                                     Size(serial), extensions);
}

// Calls a getter with buffers by letter: N null, F of the size, S one byte short. Gives the status, and for each output
// 1 if its length was stored. Only a buffer that fits and whose length was stored may have been written.
template <size_t Count>
std::string Try(const std::string& letters, const Bytes (&expected)[Count], auto function, auto first, auto... last) {
    Bytes bytes[Count];
    uint32_t lengths[Count];
    const auto output = [&](size_t i) {
        bytes[i] = Bytes(expected[i].size(), 0xA5);
        lengths[i] = Size(expected[i]) + (letters[i] == 'S' ? -1 : 1);
        return std::tuple(letters[i] == 'N' ? nullptr : &bytes[i][0], &lengths[i]);
    };
    const Status status = [&]<size_t... I>(std::index_sequence<I...>) {
        return std::apply(function, std::tuple_cat(first, output(I)..., std::tuple(last...)));
    }
    (std::make_index_sequence<Count>());
    std::string result = std::to_string(status) + " ";
    for (size_t i = 0; i < Count; ++i) {
        const bool stored = lengths[i] == expected[i].size(), written = stored && letters[i] == 'F';
        result += stored ? '1' : '0';
        EXPECT_EQ(bytes[i], written ? expected[i] : Bytes(expected[i].size(), 0xA5)) << letters << i;
    }
    return result;
}

struct OcspTest : testing::Test {
    const walk::Owned<FreeOcspRequest> made = Make<FreeOcspRequest>(CreateOcspRequest),
                                       decoded = Decoded<FreeOcspRequest>(DecodeOcspRequest, kRequest);
    const walk::Owned<FreeOcspResponse> message = Make<FreeOcspResponse>(CreateOcspResponse);
    const walk::Owned<FreeOcspBasicResponse> basic = Make<FreeOcspBasicResponse>(CreateOcspBasicResponse);
    const walk::Owned<FreeOcspSingleResponse> single = Make<FreeOcspSingleResponse>(CreateOcspSingleResponse);
    OcspRequest *const fresh = made.get(), *const r = decoded.get();
    OcspResponse* const m = message.get();
    OcspBasicResponse *const b = basic.get(), *lentBasic = nullptr;
    OcspSingleResponse *const s = single.get(), *lent = nullptr;
    X509Extensions handle = nullptr;
    X509GeneralName* name = nullptr;
    Certificate* certificate = nullptr;
    LibraryTime time = {};
    int32_t number = 9;
    uint32_t n = 9, reason = 9;
    uint8_t byte = 0;
};

TEST_F(OcspTest, RequestBuiltFromNothingHasItsBytesAndComesApartAgain) {
    EXPECT_STATUS(StatusOk, SetOcspRequestVersion(fresh, 1), SetOcspRequestRequestorName(fresh, 2, &kDns[0], 3),
                  AddEntry(fresh, nullptr), GetOcspRequestExtensions(r, &handle), AddEntry(fresh, handle),
                  GetOcspRequestExtensions(fresh, &handle), AddNonce(handle),
                  SetOcspRequestSignature(fresh, &kRsa[0], 1),
                  SetOcspRequestSignatureAlgorithmOidAndParameters(fresh, &kRsa[0], &kNull[0], 2),
                  SetOcspRequestSignature(fresh, &kSignature[0], 2));
    EXPECT_EQ(ToHex(Fetch(EncodeOcspRequest, fresh)), ToHex(kRequest));
    EXPECT_STATUS(StatusBadArgument, SetOcspRequestRequestorName(r, 2, nullptr, 3));
    EXPECT_EQ(Fetch(EncodeOcspRequest, r), kRequest) << "as it was decoded";
    CHECK({GetOcspRequestVersion(r, &number)}, {number, 1}, {SetOcspRequestVersion(r, 0)},
          {SetOcspRequestRequestorName(r, 9, &byte, 1), StatusBadAlternative}, {GetOcspRequestRequestorName(r, &name)},
          {name != nullptr, false}, {GetOcspRequestRequestorNameValue(r, &n, nullptr, &n), StatusBadArgument},
          {ClearOcspRequestCertRequests(r)}, {GetOcspRequestExtensions(r, &handle)}, {RemoveX509Extensions(handle)},
          {RemoveOcspRequestSignature(r)}, {RemoveOcspRequestSignature(r)}, {RemoveOcspRequestRequestorName(r)});
    EXPECT_EQ(Fetch(EncodeOcspRequest, r), Hex("300430023000"));
}

TEST_F(OcspTest, SignatureOfARequestIsOneBlock) {
    CHECK({IsExistsOcspRequestSignature(fresh), StatusAbsent}, {AddOcspRequestCertificate(fresh, NewCertificate())},
          {GetOcspRequestSignature(fresh, nullptr, &n), StatusAbsent},
          {GetOcspRequestSignatureAlgorithmAndParameters(fresh, nullptr, &n, nullptr, nullptr)}, {n, 1},
          {GetOcspRequestCertificate(fresh, 1, &certificate), StatusBadArgument},
          {RemoveOcspRequestCertificates(fresh)}, {IsExistsOcspRequestSignature(fresh)},
          {AddOcspRequestCertificate(fresh, NewCertificate())}, {RemoveOcspRequestSignature(fresh)},
          {GetOcspRequestCertificatesCount(fresh, &n)}, {n, 0});
}

TEST_F(OcspTest, EntriesAreCountedFromZero) {
    const auto read = [&](int32_t i, uint32_t size = 1) {
        return GetOcspRequestCertRequest(fresh, i, nullptr, &n, nullptr, &n, nullptr, &n, nullptr, &n, &byte, &size, 0);
    };
    for (uint8_t i = 0; i < 25; ++i) EXPECT_STATUS(StatusOk, AddEntry(fresh, nullptr, {i}));
    for (uint8_t i = 0; i < 25; ++i) CHECK({read(i)}, {byte, i});
    CHECK({GetOcspRequestExtensions(fresh, &handle)}, {AddEntry(fresh, handle), StatusBadArgument},
          {read(25), StatusBadArgument}, {ClearOcspRequestCertRequests(fresh)}, {read(-1), StatusBadArgument},
          {AddEntry(fresh, nullptr, {7})}, {read(0)}, {byte, 7});
}

// What a caller learns from one call, and makes its buffers larger with for the next one.
TEST_F(OcspTest, GettersOfSeveralOutputsStoreTheLengthsAndGiveTheStatusThatCallersCountOn) {
    // hashOid, parameters, nameHash, keyHash, serial, and how many of their lengths are stored.
    const char* const rows[] = {"FFFFF5", "NNNNN5", "NFNFN5", "SFFFF1", "SSSSS1", "SNNNN1", "FFFFS5",
                                "FFFSF5", "FFFSS5", "FFSFF4", "FFSFS4", "FFSSF5", "FFSSS5", "FSFFF3",
                                "FSFFS3", "FSFSF3", "FSFSS3", "FSNSS3", "FSSFF4", "FSSFS4", "NSSNS4",
                                "FSSSF5", "FSSSS5", "NSSSN5", "NFNNS5", "FF",     "FN",     "NF",
                                "NN",     "FS",     "SF",     "SS",     "NS",     "SN"};
    const Bytes id[] = {kSha1, kNull, kNames, kKeys, kSerial}, two[] = {kRsa, kNull};
    const auto good = SingleOf(kGood);
    const auto whole = BasicOf(BasicTlv(kByName, kNone));
    const auto ofRequest = GetOcspRequestSignatureAlgorithmAndParameters;
    const auto ofBasic = GetOcspBasicResponseSignatureAlgorithmAndParameters;
    EXPECT_STATUS(StatusOk, SetOcspResponseBytes(m, &kRsa[0], &kNull[0], 2));
    for (const std::string row : rows) {
        const std::string status = row.find('S') == row.npos ? "0 " : "49 ";
        if (row.size() == 6) {
            const std::string expected = status + std::string(row[5] - '0', '1') + std::string('5' - row[5], '0');
            EXPECT_EQ(Try(row, id, GetOcspRequestCertRequest, std::tuple(r, 1), &(handle = nullptr)), expected) << row;
            EXPECT_EQ(Fetch(EncodeX509Extensions, handle), kExtensions) << "lent in any case";
            EXPECT_EQ(Try(row, id, GetOcspSingleResponseCertID, std::tuple(good.get())), expected) << row;
        } else {  // an algorithm and its parameters, or a type and bytes: both lengths always
            EXPECT_EQ(Try(row, two, ofRequest, std::tuple(r)), status + "11") << row;
            EXPECT_EQ(Try(row, two, ofBasic, std::tuple(whole.get())), status + "11") << row;
            EXPECT_EQ(Try(row, two, GetOcspResponseBytes, std::tuple(m)), status + "11") << row;
        }
    }
}

TEST_F(OcspTest, MessageCarriesBytesWithTheirType) {
    const auto is = [&](const char* hex) { EXPECT_EQ(ToHex(Fetch(EncodeOcspResponse, m)), hex); };
    const auto set = [&](const Bytes& oid, const Bytes& bytes, uint32_t length) {
        return SetOcspResponseBytes(m, oid.data(), bytes.data(), length);
    };
    CHECK({GetOcspResponseStatus(m, &number), StatusAbsent}, {SetOcspResponseStatus(m, 1)}, {set(kNone, kNone, 0)},
          {GetOcspResponseBytes(m, nullptr, &n, &byte, &reason)}, {n, 0}, {reason, 0}, {set(kRsa, kNone, 2)},
          {GetOcspResponseBytes(m, nullptr, &n, nullptr, &reason), StatusAbsent},
          {EncodeOcspResponse(m, nullptr, &n), StatusAbsent}, {set(kRsa, kKeys, 3)}, {set(kSha1, kRsa, 0)},
          {set(kNone, kRsa, 5), StatusBadArgument}, {set({0}, kRsa, 5), StatusBadArgument});
    is("30130A0101A00E300C06052B0E03021A04036B6579");  // another type with the bytes that were there
    EXPECT_STATUS(StatusOk, set(kSha1, kSerial, 2), SetOcspResponseStatus(m, 0));
    is("30120A0100A00D300B06052B0E03021A04020080");
    for (int cell : {0, 1}) {
        const Hole part(reinterpret_cast<void***>(m)[1] + cell);
        EXPECT_STATUS(StatusAbsent, GetOcspResponseBytes(m, nullptr, &n, nullptr, &reason));
    }
    EXPECT_STATUS(StatusOk, set({0}, kNone, 0));
    is("30030A0100");
}

TEST_F(OcspTest, BasicResponseBuiltFromNothingHasItsBytes) {
    const auto add = [&](const Bytes& tlv) { return AddOcspBasicResponseSingleResponse(b, SingleOf(tlv).release()); };
    const auto is = [&](const Bytes& tlv) { EXPECT_EQ(ToHex(Fetch(EncodeOcspSingleResponse, s)), ToHex(tlv)); };
    CHECK({SetOcspSingleResponseCertID(s, &kSha1[0], &kNull[0], 2, &kNames[0], 4, &kKeys[0], 3, &kSerial[0], 2)},
          {SetOcspSingleResponseThisUpdate(s, &kTime)}, {SetOcspSingleResponseCertStatusGood(s)});
    is(kGood);
    CHECK({SetOcspSingleResponseCertStatusUnknown(s)}, {GetOcspSingleResponseCertStatus(s, &n)}, {n, 2});
    is(kUnknown);
    CHECK({SetOcspSingleResponseCertStatusRevoked(s, &kTime, -1)}, {GetOcspSingleResponseCertStatus(s, &n)}, {n, 1},
          {GetOcspSingleResponseCertStatusRevokedInfo(s, &time, &reason)}, {reason, UINT32_MAX});
    is(SingleTlv(Tlv(0xA1, kTimeTlv)));
    EXPECT_STATUS(StatusOk, SetOcspSingleResponseCertStatusRevoked(s, &kTime, 0),
                  SetOcspSingleResponseNextUpdate(s, &kTime), GetOcspSingleResponseExtensions(s, &handle),
                  AddNonce(handle));
    is(kRevoked);
    CHECK({SetOcspBasicResponseProducedAt(b, &kTime)}, {GetOcspBasicResponseExtensions(b, &handle)}, {AddNonce(handle)},
          {add(kGood)}, {add(kUnknown)}, {add(kRevoked)}, {SetOcspBasicResponseSignature(b, &kSignature[0], 2)},
          {SetOcspBasicResponseSignatureAlgorithmOidAndParameters(b, &kRsa[0], &kNull[0], 2)},
          {SetOcspBasicResponseVersion(b, 3)}, {SetOcspBasicResponseResponderID(b, 1, &kKeys[0], 3)},
          {SetOcspBasicResponseResponderID(b, 2, &byte, 1), StatusBadArgument});
    EXPECT_EQ(ToHex(Fetch(EncodeOcspBasicResponse, b)), ToHex(BasicTlv(Hex("A003020103") + kByKey, kSingles)));
    EXPECT_STATUS(StatusOk, SetOcspBasicResponseVersion(b, 0),
                  SetOcspBasicResponseResponderID(b, 0, &kName[0], Size(kName)));
    EXPECT_EQ(Fetch(EncodeOcspBasicResponse, b), BasicTlv(kByName, kSingles));
    CHECK({AddOcspBasicResponseCertificate(b, NewCertificate())}, {GetOcspBasicResponseCertificatesCount(b, &n)},
          {n, 1}, {RemoveOcspBasicResponseCertificates(b)}, {GetOcspBasicResponseCertificatesCount(b, &n)}, {n, 0},
          {GetOcspBasicResponseCertificate(b, -1, &certificate), StatusAbsent},
          {GetOcspBasicResponseSingleResponse(b, -1, &lent), StatusBadArgument}, {ClearOcspBasicResponseResponses(b)},
          {GetOcspBasicResponseSingleResponsesCount(b, &n)}, {n, 0});
    const auto bare = Make<FreeOcspBasicResponse>(CreateOcspBasicResponse);
    free(std::exchange(reinterpret_cast<void***>(bare.get())[0][3], nullptr));  // its list
    CHECK({AddOcspBasicResponseSingleResponse(bare.get(), SingleOf(kGood).release())},
          {GetOcspBasicResponseSingleResponsesCount(bare.get(), &n)}, {n, 1});
}

TEST_F(OcspTest, TimesThatCannotBeWrittenLeaveTheirFieldsAbsent) {
    CHECK({SetOcspBasicResponseProducedAt(b, &kTime)}, {GetOcspBasicResponseProducedAt(b, &time)},
          {CompareTime(&time, &kTime), 0}, {SetOcspSingleResponseNextUpdate(s, &kTime)},
          {SetOcspSingleResponseNextUpdate(s, nullptr)}, {SetOcspSingleResponseNextUpdate(s, nullptr)},
          {SetOcspSingleResponseCertStatusGood(s)});
    EXPECT_STATUS(StatusOutOfMemory, SetOcspBasicResponseProducedAt(b, &kNoTime),
                  SetOcspSingleResponseThisUpdate(s, &kNoTime), SetOcspSingleResponseCertStatusRevoked(s, &kNoTime, 0));
    EXPECT_STATUS(StatusAbsent, GetOcspBasicResponseProducedAt(b, &time), GetOcspSingleResponseThisUpdate(s, &time),
                  GetOcspSingleResponseNextUpdate(s, &time));
    CHECK({GetOcspSingleResponseCertStatus(s, &n)}, {n, 0});
}

TEST_F(OcspTest, ListsAreCopiedUnlessAnAnswerHasNoValue) {
    const auto list = Make<FreeOcspBasicResponses>(CreateOcspBasicResponses);
    const auto add = [&](const Bytes& tlv) {
        return AddResponseToOcspBasicResponses(list.get(), BasicOf(BasicTlv(kByKey, tlv)).release());
    };
    OcspBasicResponses* copy = nullptr;
    OcspRevokedInfo* info = nullptr;
    CHECK({add(kRevoked)}, {add(kNone)});
    const auto same = Make<FreeOcspBasicResponses>(CreateOcspBasicResponsesCopy, list.get());
    EXPECT_EQ(Fetch(EncodeOcspBasicResponses, same.get()), Fetch(EncodeOcspBasicResponses, list.get()));
    CHECK({add(kGood)}, {CreateOcspBasicResponsesCopy(list.get(), &copy), StatusUnsupportedKind},
          {copy != nullptr, false}, {GetOcspBasicResponsesCount(same.get(), &n)}, {n, 2},
          {GetOcspBasicResponsesResponse(same.get(), 2, &lentBasic), StatusBadArgument},
          {GetOcspBasicResponsesResponse(same.get(), 0, &lentBasic)},
          {GetOcspBasicResponseSingleResponse(lentBasic, 0, &lent)}, {AllocCertStatusRevokedInfo(&kTime, 5, &info)},
          {SetOcspSingleResponseCertStatus(lent, 1, info)},
          {GetOcspSingleResponseCertStatusRevokedInfo(lent, &time, &reason)},
          {reason, 5},  // A record with an index that has no form is never freed, so one of the test's own does.
          {SetOcspSingleResponseCertStatus(lent, 3, &byte)},
          {EncodeOcspSingleResponse(lent, nullptr, &n), StatusBadAlternative},
          {CreateOcspBasicResponsesCopy(same.get(), &copy), StatusBadAlternative}, {copy != nullptr, false});
}

}  // namespace
