// Real time-stamps: each is written from the arguments that it was read into as the same bytes, and none of their
// prefixes is read.

#include <map>

#include "tsp/arguments.h"

using support::Bytes;

namespace {

const std::map<std::string, Status> kRefused = {
    {"tstinfo/sigstoretsa-verify-test-b640-in.der", StatusBadValue},  // a time with a zone in place of Z
};

template <class Document>
void RebuildAll(const std::string& folder, size_t least) {
    const auto files = support::Corpus(folder);
    EXPECT_GE(files.size(), least) << folder;
    for (const auto& [name, bytes] : files) {
        SCOPED_TRACE(name);
        Document document;
        const auto refused = kRefused.find(name);
        const bool accepted = refused == kRefused.end();
        EXPECT_EQ(timestamps::Read(bytes, &document), accepted ? StatusOk : refused->second);
        EXPECT_EQ(timestamps::Rebuild<Document>(bytes), accepted ? bytes : Bytes());
        for (size_t size = 0; size < bytes.size(); ++size) {
            const Bytes cut(&bytes[0], &bytes[size]);
            EXPECT_EQ(timestamps::Read(cut, &document), size == 0 ? StatusBadArgument : StatusBadEncoding) << size;
        }
    }
}

TEST(Corpus, TimeStampsComeBackByteForByte) {
    SKIP_WITHOUT_CORPUS();
    RebuildAll<timestamps::Request>("tsp-req", 12);
    RebuildAll<timestamps::Response>("tsp-resp", 25);
    RebuildAll<timestamps::TstInfo>("tstinfo", 13);
}

}  // namespace
