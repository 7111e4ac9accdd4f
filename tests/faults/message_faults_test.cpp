// Every allocation fails once, for messages, OCSP, time-stamps and the values in them; and files fail.

#include <stdio.h>

#include <fstream>

#include "faults.h"
#include "tsp/arguments.h"

using namespace faults;
using namespace support;

#ifndef _WIN32
// In the place of the C library's: a file may be shorter by the time that it is read.
static bool shrinking = false;
extern "C" size_t fread(void* bytes, size_t size, size_t count, FILE* file) {
    return fread_unlocked(bytes, size, shrinking ? count / 2 : count, file);
}
#endif

namespace {

const LibraryTime kTime = {2024, 2, 29, 12, 0, 0};
const Bytes kBytes(64, 4), kOidBytes = OidOf("1.2.3"), kAlgorithm = Tlv(0x30, OidTlv("1.2.3") + Hex("0500"));
const uint8_t kNull[] = {5, 0}, *const kKey = kBytes.data(), *const kOid = kOidBytes.data();
const Bytes kSigned = kAlgorithm + Hex("03020000"), kIssuer = kAlgorithm + NameTlv("a");
const Bytes kFields = Hex("020105") + kIssuer + Hex("3004 1700 1700 3000") + Tlv(0x30, kSigned);
const Bytes kCertificate = Tlv(0x30, Tlv(0x30, kFields) + kSigned);

// Enough for the table of a list to grow.
Status TwelveTimes(auto call) {
    Status status = StatusOk;
    for (int i = 0; i < 12; ++i) status = FirstFailure({status, call()});
    return status;
}

// Makes an object, fills it, and hands it to what adopts it.
template <auto Free>
Status MakeAndAdopt(auto create, auto fill, auto adopt) {
    typename walk::Owned<Free>::pointer part = nullptr;
    const Status created = create(&part), filled = fill(part), adopted = adopt(part);
    return FirstFailure({created, filled, adopted}) + (adopted != StatusOk ? Free(part) : StatusOk);
}

Status Sign(RsaAttributes extra, const Bytes& existing, Bytes* out) {
    const uint8_t* const certificates[] = {kCertificate.data(), kNull};
    const uint32_t sizes[] = {Size(kCertificate), 2};
    uint32_t length = 2000;
    out->resize(length);
    const Status status = CreateCmsFileSignature2(kKey, 9, kKey, 20, &kTime, kOid, kNull, 2, certificates[0], sizes[0],
                                                  certificates, sizes, 2, kOid, nullptr, 0, 1, extra, nullptr, kKey, 64,
                                                  existing.data(), Size(existing), out->data(), &length);
    out->resize(length);
    return status;
}

TEST(Faults, SignedMessages) {
    const auto extra = Decoded<FreeRsaAttributes>(DecodeRsaAttributes, Tlv(0x31, AttributeTlv("1.2", Hex("0500"))));
    const std::string path = testing::TempDir() + "tlvforge-faults" + std::to_string(getpid());
    Bytes one, two, out, room(2000);
    EXPECT_STATUS(StatusOk, Sign(extra.get(), {}, &one), Sign(extra.get(), one, &two));
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(&two[0]), Size(two));
    const auto info = Decoded<FreeCmsContentInfo>(DecodeCmsContentInfo, two);
    const Bytes content = Fetch(GetCmsContentInfoContent, info.get());
    const auto message = Decoded<FreeCmsSignedData>(DecodeCmsSignedData, content);
    LibraryTime time{};
    uint32_t n = 0;
    CmsSignerInfo* signer = nullptr;
    const auto remove = [&](const std::string& to) { return DeleteCmsSignerInfo(1, path.c_str(), to.c_str()); };
    const auto fill = [&](CmsSignedData* d) {
        return FirstFailure({TwelveTimes([&] { return AddCmsSignedDataEncodedCrl(d, CmsCrlKindOther, kKey, 9); }),
                             TwelveTimes([&] { return AddCmsSignedDataSignerInfo(d, &signer); })});
    };
    FailEveryAllocation(
        {{"sign", [&] { return Sign(extra.get(), {}, &out); }},
         {"add a signer", [&] { return Sign(extra.get(), one, &out); }},
         {"delete a signer", [&] { return DeleteBufferCmsSignerInfo(1, &two[0], Size(two), &room[0], &(n = 2000)); }},
         {"delete a signer in a file", [&] { return remove(NullDevice()); }},
         {"text", [&] { return GetBufferCmsSignatureTimeAndCN(2, &two[0], Size(two), &time, &room[0], &(n = 2000)); }},
         {"to be signed", [&] { return GetCmsSignedDataToBeSignedPart2(kKey, 20, &kTime, extra.get(), nullptr, &n); }},
         {"build", [&] { return MakeFillAndFree<FreeCmsSignedData>(CreateCmsSignedData, fill); }},
         {"decode", [&] { return MakeAndFree<FreeCmsSignedData>(DecodeCmsSignedData, &content[0], Size(content)); }},
         {"copy", [&] { return MakeAndFree<FreeCmsSignedData>(CreateCmsSignedDataCopy, message.get()); }}});
    // Files that fail by themselves: below a file, with too long a name, a folder, and one that shrinks while it is
    // read.
    for (const std::string& bad : {path + "/under", std::string(5000, 'x'), std::string("/")})
        EXPECT_STATUS(StatusFileOpenFailed, remove(bad));
    const auto from = [&](const std::string& file) { return DeleteCmsSignerInfo(1, file.c_str(), path.c_str()); };
    CHECK({from(path + "/under"), StatusFileOpenFailed}, {from(std::string(5000, 'x')), StatusFileOpenFailed},
          {from("/"), StatusBadArgument});
#ifndef _WIN32
    shrinking = true;
    EXPECT_STATUS(StatusFileReadShort, from(path));
    shrinking = false;
#endif
    CHECK({GetCmsSignatureTime(2, path.c_str(), &time)}, {unlink(path.c_str()), 0});
}

Status FillEnveloped(CmsEnvelopedData* e) {
    const auto adopt = [&](KeyTrans* r) { return AddCmsEnvelopedDataRecipientInfo(e, 1, r); };
    const auto fill = [](KeyTrans* r) {
        return FirstFailure({SetKeyTransRecipientIdentifierSubjectKeyIdentifier(r, kKey, 20), SetKeyTransVersion(r, 2),
                             SetKeyTransKeyEncryptionAlgorithmOidAndParameters(r, kOid, kNull, 2)});
    };
    return FirstFailure({SetCmsEnvelopedDataVersion(e, 2), SetCmsEnvelopedDataEncryptedContent(e, kKey, 40),
                         SetCmsEnvelopedDataContentEncryptionAlgorithmOidAndParameters(e, kOid, kNull, 2),
                         AddCmsEnvelopedDataEncodedCertificate(e, 1, kNull, 2),
                         TwelveTimes([&] { return MakeAndAdopt<FreeKeyTrans>(CreateKeyTrans, fill, adopt); })});
}

Status FillTransport(GostR3410KeyTransport* t) {
    return FirstFailure({SetGostR3410KeyTransportUkm(t, kKey, 8), SetGostR3410KeyTransportMaskKey(t, kKey, 8),
                         SetGostR3410KeyTransportEncryptionParamSetOid(t, kOid),
                         SetGostR3410KeyTransportEphemeralPublicKey(t, kKey, 64),
                         SetGostR3410KeyTransportEphemeralPublicKeyAlgorithmOidAndParameters(t, kOid, kNull, 2)});
}

TEST(Faults, EnvelopedMessages) {
    const auto whole = Make<FreeCmsEnvelopedData>(CreateCmsEnvelopedData);
    ASSERT_EQ(FillEnveloped(whole.get()), StatusOk);
    const Bytes in = Fetch(EncodeCmsEnvelopedData, whole.get()), set = Tlv(0x30, Tlv(4, kBytes) + OidTlv("1.2"));
    const auto addCrl = [](CmsEnvelopedData* e) { return AddCmsEnvelopedDataEncodedCrl(e, 1, kKey, 9); };
    uint32_t n = 0;
    FailEveryAllocation(
        {{"build", [] { return MakeFillAndFree<FreeCmsEnvelopedData>(CreateCmsEnvelopedData, FillEnveloped); }},
         {"CRL", [&] { return MakeFillAndFree<FreeCmsEnvelopedData>(CreateCmsEnvelopedData, addCrl); }},
         {"decode", [&] { return MakeAndFree<FreeCmsEnvelopedData>(DecodeCmsEnvelopedData, &in[0], Size(in)); }},
         {"GOST",
          [] { return MakeFillAndFree<FreeGostR3410KeyTransport>(CreateGostR3410KeyTransport, FillTransport); }},
         {"parameters", [&] { return EncodeGost2814789Parameters(kKey, 8, kOid, nullptr, &n); }}});
    const auto read = [&] { return DecodeGost2814789Parameters(&set[0], Size(set), nullptr, &n, nullptr, &n); };
    FailEveryAllocation({{"read parameters", read}}, StatusBadEncoding);
}

Status FillRequest(OcspRequest* r) {
    const auto add = [=] { return AddOcspRequestCertRequest(r, kOid, kNull, 2, kKey, 9, kKey, 9, kKey, 2, nullptr); };
    return FirstFailure({SetOcspRequestVersion(r, 1), SetOcspRequestRequestorName(r, 2, kKey, 3), TwelveTimes(add),
                         SetOcspRequestSignatureAlgorithmOidAndParameters(r, kOid, kNull, 2)});
}

Status FillSingle(OcspSingleResponse* s) {
    return FirstFailure({SetOcspSingleResponseCertID(s, kOid, kNull, 2, kKey, 20, kKey, 20, kKey, 2),
                         SetOcspSingleResponseCertStatusGood(s), SetOcspSingleResponseCertStatusRevoked(s, &kTime, 4),
                         SetOcspSingleResponseThisUpdate(s, &kTime)});
}

Status FillBasic(OcspBasicResponse* b) {
    const auto adopt = [=](OcspSingleResponse* s) { return AddOcspBasicResponseSingleResponse(b, s); };
    const auto add = [&] { return MakeAndAdopt<FreeOcspSingleResponse>(CreateOcspSingleResponse, FillSingle, adopt); };
    return FirstFailure({SetOcspBasicResponseResponderID(b, 0, kNull, 2), SetOcspBasicResponseProducedAt(b, &kTime),
                         SetOcspBasicResponseResponderID(b, 1, kKey, 20), TwelveTimes(add),
                         SetOcspBasicResponseSignature(b, kKey, 64)});
}

Status FillList(OcspBasicResponses* list) {
    const auto adopt = [=](OcspBasicResponse* b) { return AddResponseToOcspBasicResponses(list, b); };
    return MakeAndAdopt<FreeOcspBasicResponse>(CreateOcspBasicResponse, FillBasic, adopt);
}

TEST(Faults, Ocsp) {
    const auto list = Make<FreeOcspBasicResponses>(CreateOcspBasicResponses);
    ASSERT_EQ(FillList(list.get()), StatusOk);
    const auto fill = [](OcspResponse* r) { return SetOcspResponseBytes(r, kOid, kKey, 64); };
    FailEveryAllocation(
        {{"request", [] { return MakeFillAndFree<FreeOcspRequest>(CreateOcspRequest, FillRequest); }},
         {"response", [&] { return MakeFillAndFree<FreeOcspResponse>(CreateOcspResponse, fill); }},
         {"list", [] { return MakeFillAndFree<FreeOcspBasicResponses>(CreateOcspBasicResponses, FillList); }},
         {"copy", [&] { return MakeAndFree<FreeOcspBasicResponses>(CreateOcspBasicResponsesCopy, list.get()); }}});
}

template <class Document>
Status ReadStamp(const Bytes& in) {
    uint8_t* to[6] = {};
    uint32_t sizes[6] = {};
    return Document().Decode(in, to, sizes);
}

TEST(Faults, TimeStamps) {
    const LibraryPreciseTime time = {2024, 2, 29, 12, 0, 0, 1, 2};
    const Accuracy accuracy = {1, 2, 3};
    const Bytes status = Tlv(0x30, Hex("020102") + Tlv(0x30, Tlv(12, kBytes)) + Hex("03020780"));
    const auto own = Decoded<FreeX509Extensions>(DecodeX509Extensions, Tlv(0x30, timestamps::kReason));
    const X509Extensions extensions = own.get();
    int silent = 0;
    // Without memory for the hash the status is 0, and the length stays.
    const auto write = [&](auto encode, auto... arguments) {
        uint32_t length = 7777;
        const Status result = encode(arguments..., nullptr, &length);
        return result == StatusOk && length == 7777 ? ++silent, StatusOutOfMemory : result;
    };
    FailEveryAllocation(
        {{"read a request", [] { return ReadStamp<timestamps::Request>(timestamps::kRequest); }},
         {"read a response", [&] { return ReadStamp<timestamps::Response>(Tlv(0x30, status + kAlgorithm)); }},
         {"read an info", [] { return ReadStamp<timestamps::TstInfo>(timestamps::kInfo); }},
         {"write a response", [&] { return write(EncodeTimeStampResp, 2, nullptr, 0x80, nullptr); }},
         {"write a request",
          [&] { return write(EncodeTimeStampReq, 1, kOid, kNull, 2, kKey, 20, kOid, 0, kKey, 8, 1, extensions); }},
         {"write an info", [&] {
              return write(EncodeTSTInfo, 1, kOid, kOid, kNull, 2, kKey, 20, kKey, 2, &time, &accuracy, 1, kKey, 8,
                           nullptr, extensions);
          }}});
    EXPECT_EQ(silent, 4) << "twice in each of two documents";
}

// A list of twelve members.
template <auto Free>
auto ListOf(auto create, auto add, auto... parts) {
    const auto fill = [=](auto* to) { return TwelveTimes([=] { return add(to, parts...); }); };
    return [=] { return MakeFillAndFree<Free>(create, fill); };
}

TEST(Faults, Values) {
    const auto names = Decoded<FreeX509GeneralNames>(DecodeX509GeneralNames, Hex("3003820161"));
    const auto name = NameOf("a");
    const Bytes crl = Tlv(0x30, Tlv(0x30, kIssuer + Tlv(23, Text("240229120000Z"))) + kSigned);
    const Bytes values = Tlv(0x30, Tlv(0xA0, crl) + Tlv(0xA1, {}) + Tlv(0x22, kAlgorithm));
    uint32_t n = 0, m = 0;
    const auto readValues = [&](X509Crls** crls) {
        OcspBasicResponses* ocsps = nullptr;
        return DecodeRsaAttributeRevocationValues(&values[0], Size(values), crls, &ocsps, nullptr, &n, nullptr, &m) +
               FreeOcspBasicResponses(ocsps);
    };
    const auto addRefs = [](CrlOcspRefs* refs) {
        const auto adopt = [=](auto* crls) { return AddCrlOcspRefToList(refs, crls, nullptr, kOid, kNull, 2); };
        return MakeAndAdopt<FreeCrlListIDs>(
            CreateCrlListIDs, [](auto*) { return StatusOk; }, adopt);
    };
    FailEveryAllocation(
        {{"certificates", ListOf<FreeESSCertIDs>(CreateESSCertIDs, AddESSCertIDToList, kKey, 20, names.get(), kKey, 2)},
         {"other certificates", ListOf<FreeOtherCertIDs>(CreateOtherCertIDs, AddOtherCertIDToList, kOid, kNull, 2, kKey,
                                                         20, names.get(), kKey, 2)},
         {"references", [&] { return MakeFillAndFree<FreeCrlOcspRefs>(CreateCrlOcspRefs, addRefs); }},
         {"results", ListOf<FreeExtensionOcspCheckFileExtResults>(CreateExtensionOcspCheckFileExtResults,
                                                                  AddExtensionOcspCheckFileExtResults, 1, kKey, 9, 1,
                                                                  &kTime, nullptr, nullptr)},
         {"document", [&] { return EncodeDocInfo(1, kKey, 2, kKey, 2, nullptr, 0, &kTime, &kTime, kKey, 2, 0, &n); }},
         {"revocation values", [&] { return MakeAndFree<FreeX509Crls>(readValues); }}});
    // A time that can't be made adds nothing, and is no failure.
    FailEveryAllocation({{"CRLs", ListOf<FreeCrlListIDs>(CreateCrlListIDs, AddCrlValidatedIdToList, kKey, 20, kOid,
                                                         kNull, 2, name.get(), &kTime, kKey, 2)},
                         {"responses", ListOf<FreeOcspListIDs>(CreateOcspListIDs, AddOcspResponseIdToList, name.get(),
                                                               nullptr, 0, &kTime, kKey, 20, kOid, kNull, 2)}},
                        StatusOk);
}

}  // namespace
