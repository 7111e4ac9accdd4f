// Decode, encode and build of certificates beside the peers and the floor.
#include <algorithm>
#include <fstream>
#include <iterator>

#include "floor.h"
#include "peers.h"
#include "rounds.h"
#include "x509/certificate.schema.h"

namespace {

using namespace bench;

struct Document {
    std::string name;
    Bytes der;
};

const Sample& TheSample() {
    static const Sample sample;
    return sample;
}

// The sample, and real certificates where they lie beside the checkout.
std::vector<Document> Documents() {
    Certificate* certificate = Build(TheSample());
    std::vector<Document> documents = {{"sample", Encode(certificate)}};
    FreeCertificate(certificate);
    for (const char* name : {"ossl-embeddedscts3", "ruca-2025-07-03t09-34-16z-2039-07-03t09-34-16z"}) {
        const std::string path = std::string(TLVFORGE_CORPUS "/cert/") + name + ".der";
        std::ifstream in(path, std::ios::binary);
        if (in) documents.push_back({name, Bytes(std::istreambuf_iterator<char>(in), {})});
    }
    return documents;
}

class CertificateContest : public Contest {
public:
    explicit CertificateContest(Document document)
        : Contest("certificate/" + document.name, 400),
          document_(std::move(document)),
          buffer_(document_.der.size() + 1024) {
        Must(DecodeCertificate(document_.der.data(), Size(document_.der), &certificate_));
        Collect(tlvforge::itemOf<Certificate>, certificate_, &nodes_);
        blocks_.resize(nodes_.size());
        Add("floor", [this] { AllocateAll(nodes_, &blocks_); });
        for (const auto& codec : codecs_) AddCodec(codec.get());
        if (document_.name == "sample") Add("build/tlvforge", [this] { BuildAndEncode(); });
    }
    ~CertificateContest() override { FreeCertificate(certificate_); }

    void PrintRatios() const override {
        PrintFloorAndOwn(document_.der.size(), nodes_.size());
        PrintRatio("build, encode and free", "build/tlvforge", "decode/tlvforge", "of decode and free");
        for (const auto& codec : codecs_) {
            const std::string name = codec->Name();
            if (name == "tlvforge") continue;
            for (const std::string what : {"decode", "encode"}) {
                PrintRatio(name + ", " + what, what + "/" + name, what + "/tlvforge", "times ours");
            }
        }
    }

private:
    void AddCodec(Codec* codec) {
        if (!codec->DecodeAndFree(document_.der)) return;
        Add(std::string("decode/") + codec->Name(), [this, codec] { codec->DecodeAndFree(document_.der); });
        if (!codec->Keep(document_.der)) return;
        if (codec->Encode(buffer_.data(), buffer_.size()) != document_.der.size() ||
            !std::equal(document_.der.begin(), document_.der.end(), buffer_.begin())) {
            fprintf(stderr, "%s: %s encodes other bytes\n", document_.name.c_str(), codec->Name());
            return;
        }
        Add(std::string("encode/") + codec->Name(), [this, codec] { codec->Encode(buffer_.data(), buffer_.size()); });
    }

    void BuildAndEncode() {
        Certificate* built = Build(TheSample());
        auto length = static_cast<uint32_t>(buffer_.size());
        Must(EncodeCertificate(built, buffer_.data(), &length));
        FreeCertificate(built);
    }

    Document document_;
    Bytes buffer_;
    Certificate* certificate_ = nullptr;
    std::vector<Node> nodes_;
    std::vector<void*> blocks_;
    std::vector<std::unique_ptr<Codec>> codecs_ = Codecs();
};

}  // namespace

void bench::AddCertificates(Contests* contests) {
    for (Document& document : Documents()) {
        contests->push_back(std::make_unique<CertificateContest>(std::move(document)));
    }
}
