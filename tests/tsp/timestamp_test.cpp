#include "tsp/arguments.h"

using namespace timestamps;

namespace {

const Bytes kFiveBytes = Hex("0205 0100000000");

// Failures but 49 end the call at once, and win over a 49 before them. Accuracies are read into one of sevens.
TEST(TimeStamps, FieldsOfAnInfoAreReadInOrder) {
    const std::string month = "20191302030405Z", t = "20190102030405";
    const Bytes tooLong = Tlv(48, kFiveBytes + Hex("800105"));
    // clang-format off
    const std::tuple<std::string, Bytes, uint32_t, Status, Numbers, Bytes> rows[] = {
        {t + "Z", Bytes(), 5, StatusOk, {0, 0, 0}, InfoOf(t + "Z", Bytes())},
        {t + ".Z", Bytes(), 5, StatusOk, {0, 0, 0}, InfoOf(t + "Z", Bytes())},
        {t + "?Z", Bytes(), 5, StatusOk, {0, 0, 0}, InfoOf(t + "Z", Bytes())},
        {t + ".5Z", Bytes(), 5, StatusOk, {0, 0, 0}, InfoOf(t + ".5Z", Bytes())},
        {t + ".120Z", Bytes(), 5, StatusOk, {0, 0, 0}, InfoOf(t + ".12Z", Bytes())},
        {t + ".0001Z", Bytes(), 5, StatusOk, {0, 0, 0}, InfoOf(t + ".0001Z", Bytes())},
        {t + ".12345678Z", Bytes(), 5, StatusOk, {0, 0, 0}, InfoOf(t + ".123456Z", Bytes())},
        {t + "Z", Hex("3000"), 5, StatusOk, {7, 0, 0}, InfoOf(t + "Z", Bytes())},
        {t + "Z", Hex("3004 800201F4"), 5, StatusOk, {7, 500, 0}, InfoOf(t + "Z", Hex("3004 800201F4"))},
        {t + "Z", Hex("3009 020100 800100 810109"), 5, StatusOk, {0, 0, 9}, InfoOf(t + "Z", Hex("3003 810109"))},
        {t + "Z", Hex("3007 02020400 8101FF"), 4, StatusBufferTooSmall, {1024, 0, ~0u}, InfoOf(t + "Z", Hex("3007 02020400 8101FF"))},
        {t + "Z", Hex("3003 020103 010100"), 5, StatusOk, {3, 0, 0}, InfoOf(t + "Z", Hex("3003 020103"))},
        {t + "Z", tooLong, 5, StatusBufferTooSmall, {7, 5, 0}, Bytes()},
        {t + ".5", Bytes(), 5, StatusBadValue, {7, 7, 7}, Bytes()},
        {t + ",5Z", Bytes(), 4, StatusBadValue, {7, 7, 7}, Bytes()},
        {t, Bytes(), 5, StatusBadValue, {7, 7, 7}, Bytes()}, {month, Bytes(), 4, StatusBadTime, {7, 7, 7}, Bytes()},
        {t + "Z", Hex("010101"), 5, StatusBadValue, {7, 7, 7}, Bytes()},
        {"", Bytes(), 4, StatusBadEncoding, {7, 7, 7}, Bytes()}};
    // clang-format on
    for (const auto& [time, middle, size, status, accuracy, rebuilt] : rows) {
        SCOPED_TRACE(time + " " + ToHex(middle));
        TstInfo info;
        info.accuracy = {7, 7, 7};
        uint8_t policy[5], *to[6] = {policy};
        uint32_t sizes[6] = {size, 9, 9, 9, 9, 9}, last = status == StatusOk || status == StatusBufferTooSmall ? 2 : 9;
        CHECK({info.Decode(InfoOf(time, middle), to, sizes), status}, {sizes[5], last});
        CHECK({info.tsa != nullptr, last == 2}, {info.extensions != nullptr, last == 2});
        EXPECT_EQ(Numbers(&info.accuracy.seconds, &info.accuracy.microseconds + 1), accuracy);
        EXPECT_EQ(ToHex(Rebuild<TstInfo>(InfoOf(time, middle))), ToHex(rebuilt));
    }
}

TEST(TimeStamps, DocumentsAreWrittenAsTheyWereRead) {
    const Bytes token = Tlv(48, OidTlv("1.2.3") + Tlv(0xA0, kNull)), plain = Hex("3003020102") + token;
    EXPECT_EQ(Rebuild<Request>(kRequest), kRequest);
    EXPECT_EQ(Rebuild<Request>(RequestOf(Hex("010100"))), RequestOf(Bytes()));
    EXPECT_EQ(Rebuild<TstInfo>(kInfo), kInfo);
    const std::tuple<Bytes, Status, uint32_t, bool, Bytes> rows[] = {
        {plain, StatusOk, 0, true, plain},
        {Hex("3009 020102 30040C024142"), StatusOk, 0, false, Hex("3009 020102 30040C024142")},
        {Hex("3007 0201FF 03020080"), StatusOk, 0x80, false, Hex("3007 0201FF 03020780")},
        {Hex("300A 020102 03050600000040"), StatusOk, 0x40000000, false, Hex("300A 020102 03050600000040")},
        {Hex("300B 020102 0306000102030405"), StatusOk, 0x04030201, false, Hex("300A 020102 03050201020304")},
        {Hex("3006 020102 030100"), StatusOk, 0, false, Hex("3003 020102")},
        {Tlv(48, kFiveBytes + Hex("30040C024142")) + token, StatusBufferTooSmall, 9, false, Bytes()},
        {kNull, StatusBadEncoding, 9, false, Bytes()}};
    for (const auto& [in, status, failInfo, handed, rebuilt] : rows) {
        Response response;
        const Bytes whole = Tlv(48, in);
        CHECK({Read(whole, &response), status}, {response.failInfo, failInfo}, {response.token != nullptr, handed});
        EXPECT_TRUE(status == 0 || response.text == nullptr);
        EXPECT_EQ(Rebuild<Response>(whole), status ? Bytes() : Tlv(48, rebuilt));
    }
}

TEST(TimeStamps, MissingAndUnfinishedArgumentsAreAnswered) {
    const LibraryPreciseTime time = {2019, 1, 2, 3, 4, 5, 0, 0}, tooFine = {2019, 1, 2, 3, 4, 5, 1000, 0};
    const Bytes request = RequestOf(Bytes());
    const auto extensions = Make<FreeX509Extensions>(CreateX509Extensions);
    const auto empty = Make<FreeX509GeneralName>(CreateX509GeneralName);
    uint8_t b[256] = {};
    uint32_t n = sizeof b;
    int32_t version = 0;
    X509Extensions handle = nullptr;
    EXPECT_STATUS(StatusOk, DecodeTimeStampReq(&request[0], Size(request), &version, b, &n, nullptr, nullptr, b, &n, b,
                                               &n, b, &n, &n, &handle));
    const auto write = [&](const LibraryPreciseTime& genTime, const X509GeneralName* tsa) {
        return EncodeTSTInfo(1, b, b, nullptr, 0, b, 1, b, 1, &genTime, nullptr, 0, nullptr, 0, tsa, extensions.get(),
                             nullptr, &n);
    };
    CHECK({write(time, nullptr)}, {write(tooFine, nullptr), StatusOutOfMemory},
          {write(time, empty.get()), StatusBadArgument}, {RemoveX509Extensions(extensions.get())},
          {write(time, nullptr), StatusBadArgument});
}

}  // namespace
