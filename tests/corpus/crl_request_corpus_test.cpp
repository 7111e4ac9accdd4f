// Real revocation lists and requests: each decodes and encodes to the same bytes, and none of their prefixes does.

#include "support.h"
#include "walk_documents.h"

using support::Bytes;
using support::Fetch;

namespace {

// Decodes from a block of exactly the input's size. What comes out is written, and walked by every getter.
template <auto Free>
Bytes Read(auto decode, auto encode, auto walk, const Bytes& input) {
    const walk::Bytes exact(input.data(), input.size());
    const auto object = walk::Make<Free>(decode, exact.data(), exact.size());
    if (!object) return {};
    const Bytes written = Fetch(encode, object.get());
    walk(object.get());
    return written;
}
Bytes ReadCrl(const Bytes& input) {
    return Read<FreeX509Crl>(DecodeX509Crl, EncodeX509Crl, walk::WalkAndChangeCrl, input);
}
Bytes ReadRequest(const Bytes& input) {
    return Read<FreePKCS10CertReq>(DecodePKCS10CertReq, EncodePKCS10CertReq, walk::WalkAndChangeRequest, input);
}

TEST(Corpus, RevocationListsAndRequestsComeBackByteForByte) {
    SKIP_WITHOUT_CORPUS();
    for (const auto& [folder, read] : {std::pair("crl", &ReadCrl), std::pair("csr", &ReadRequest)}) {
        const auto files = support::Corpus(folder);
        EXPECT_GE(files.size(), 30u);
        for (const auto& [name, bytes] : files) {
            SCOPED_TRACE(name);
            EXPECT_EQ(read(bytes), bytes);
            for (auto end = bytes.begin(); end != bytes.end(); ++end) EXPECT_EQ(read({bytes.begin(), end}), Bytes());
        }
    }
}

// All files have their attributes in DER order, so they are turned round here.
TEST(Corpus, RequestsWithTurnedAttributesComeBackByteForByte) {
    SKIP_WITHOUT_CORPUS();
    int turned = 0;
    for (const auto& [name, bytes] : support::Corpus("csr")) {
        SCOPED_TRACE(name);
        const auto request = support::Decoded<FreePKCS10CertReq>(DecodePKCS10CertReq, bytes);
        RsaAttributes attributes = nullptr;
        ASSERT_EQ(GetPKCS10CertReqAttributes(request.get(), &attributes), StatusOk);
        const Bytes before = Fetch(EncodeRsaAttributes, attributes);
        if (before.size() == 2) continue;  // none
        Bytes reversed, changed = bytes;
        walk::Each(GetRsaAttributesAttributesCount, attributes, [&](uint32_t i) {
            using support::operator+;
            const Bytes value = Fetch(GetRsaAttributesAttributeValue, attributes, i, 0u);  // the only one
            const Bytes oid = Bytes{6} + Fetch(GetRsaAttributesAttributeOid, attributes, i);
            reversed = support::Tlv(0x30, oid + support::Tlv(0x31, value)) + reversed;
        });
        const auto place = std::search(changed.begin(), changed.end(), before.begin() + 1, before.end());
        ASSERT_NE(place, changed.end());
        reversed = support::Tlv(0xA0, reversed);
        ASSERT_EQ(reversed.size(), before.size());
        std::copy(reversed.begin(), reversed.end(), place - 1);
        EXPECT_EQ(ReadRequest(changed), changed);
        if (changed != bytes) ++turned;
    }
    EXPECT_GE(turned, 2);
}

}  // namespace
