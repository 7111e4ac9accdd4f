// Decode, encode and lookup of large revocation lists beside OpenSSL and the floor.
#include <malloc.h>

#ifdef HAVE_OPENSSL
#include <openssl/x509.h>
#endif

#include "floor.h"
#include "rounds.h"
#include "sample.h"
#include "x509/crl.schema.h"

namespace {

using namespace bench;

constexpr uint32_t kEntries = 200000;

X509Name* NameOf(const char* organisation) {
    X509Name* name = nullptr;
    Must(CreateX509Name(&name));
    FillName(name, Sample::NameOf({"US", "Arizona", "Scottsdale", organisation}));
    return name;
}

void AddExtension(X509Crl* crl, uint32_t index, const Bytes& oid, int32_t critical, const Bytes& value) {
    X509Extensions extensions = nullptr;
    Must(GetX509CrlRevokedCertificateExtensions(crl, index, &extensions));
    Must(AddX509ExtensionsExtension(extensions, oid.data(), critical, value.data(), Size(value)));
}

struct Document {
    const char* name;
    X509Name* lastIssuer;  // that of the last entry
    Bytes lastSerial;
    Bytes der;
};

// Each entry with a reason code; in an indirect list every hundredth carries a certificateIssuer too.
Document BuildList(const char* listName, bool indirect) {
    const Bytes reasonCode = Oid("2.5.29.21"), certificateIssuer = Oid("2.5.29.29"), key = Random(256);
    const Sample sample;
    Document document = {listName, NameOf("Example Trust Services LLC"), {}, {}};
    X509Crl* crl = nullptr;
    Must(CreateX509Crl(&crl));
    Must(SetX509CrlVersion(crl, 1));
    Must(SetX509CrlSignatureAlgorithmOidAndParameters(crl, sample.sha256WithRsa.data(), sample.null.data(), 2));
    Must(SetX509CrlIssuer(crl, document.lastIssuer));
    Must(SetX509CrlThisUpdate(crl, &sample.notBefore));
    Must(SetX509CrlNextUpdate(crl, &sample.notAfter));
    for (uint32_t i = 0; i < kEntries; ++i) {
        uint32_t index = 0;
        document.lastSerial = Joined({{0x04}, Random(15)});
        Must(AddX509CrlRevokedCertificate(crl, document.lastSerial.data(), 16, &sample.notBefore, &index));
        AddExtension(crl, index, reasonCode, 0, {0x0A, 0x01, static_cast<uint8_t>(1 + i % 5)});
        if (!indirect || i % 100 != 0) continue;
        FreeX509Name(document.lastIssuer);
        document.lastIssuer = NameOf(("Example Authority " + std::to_string(i)).c_str());
        AddExtension(crl, index, certificateIssuer, 1, Tlv(0x30, Tlv(0xA4, tlvforge::Encode(document.lastIssuer))));
    }
    Must(SetX509CrlSignature(crl, key.data(), Size(key)));
    document.der = tlvforge::Encode(crl);
    FreeX509Crl(crl);
    return document;
}

class CrlContest : public Contest {
public:
    explicit CrlContest(Document document)
        : Contest(document.name, 6), document_(std::move(document)), buffer_(document_.der.size()) {
        const size_t before = HeapInUse();
        crl_ = Decode();
        heap_ = HeapInUse() - before + crl_->tbsCertList->revokedCertificates->capacity * sizeof(void*);
        Collect(tlvforge::itemOf<X509Crl>, crl_, &nodes_);
        blocks_.resize(nodes_.size());
        AddTable();
        Add("floor", [this] { AllocateAll(nodes_, &blocks_); });
        Add("floor/with table", [this] { AllocateAll(nodesAndTable_, &blocksAndTable_); });
        Add("decode/tlvforge", [this] { FreeX509Crl(Decode()); });
        Add("encode/tlvforge", [this] {
            uint32_t length = Size(buffer_);
            Must(EncodeX509Crl(crl_, buffer_.data(), &length));
        });
        Add("find/tlvforge", [this] {
            uint32_t index = 0;
            Must(FindX509CrlFind(crl_, document_.lastIssuer, document_.lastSerial.data(), 16, &index));
            if (index + 1 != kEntries) Must(StatusNotFound);
        });
#ifdef HAVE_OPENSSL
        Add("decode/OpenSSL", [this] {
            const uint8_t* at = document_.der.data();
            X509_CRL* crl = d2i_X509_CRL(nullptr, &at, static_cast<long>(document_.der.size()));
            if (crl == nullptr) Must(StatusBadEncoding);
            X509_CRL_free(crl);
        });
#endif
    }
    ~CrlContest() override {
        FreeX509Crl(crl_);
        FreeX509Name(document_.lastIssuer);
    }

    void PrintRatios() const override {
        PrintFloorAndOwn(document_.der.size(), nodes_.size());
        PrintRatio("floor with the table of the entries", "floor/with table", "floor", "of the floor");
        const double first = FirstDecode();
        printf("  %-40s %10.0f ns  %6.2f times encode\n", "first decode, into fresh memory", first,
               first / Time("encode/tlvforge"));
        printf("  %-40s %10.0f ns  an entry\n", "find the last entry", Time("find/tlvforge") / kEntries);
        printf("  %-40s %10.0f bytes an entry\n", "memory", static_cast<double>(heap_) / kEntries);
        PrintRatio("OpenSSL, decode", "decode/OpenSSL", "decode/tlvforge", "times ours");
    }

private:
    // The table of the entries, as a block of the allocator: large enough to make it merge all that is free.
    void AddTable() {
        const Asn1List* entries = crl_->tbsCertList->revokedCertificates;
        const auto isList = [=](const Node& node) { return node.bytes == entries; };
        nodesAndTable_ = nodes_;
        nodesAndTable_.insert(std::find_if(nodesAndTable_.begin(), nodesAndTable_.end(), isList) + 1,
                              {entries->items, entries->capacity * sizeof(void*)});
        blocksAndTable_.resize(nodesAndTable_.size());
    }
    X509Crl* Decode() const {
        X509Crl* crl = nullptr;
        Must(DecodeX509Crl(document_.der.data(), Size(document_.der), &crl));
        return crl;
    }
    // As in a program that decodes once: the memory comes from the system, not from a list that was freed before.
    double FirstDecode() const {
        double seconds = 1e18;
        for (int round = 0; round < 6; ++round) {
            X509Crl* crl = nullptr;
            malloc_trim(0);
            seconds = std::min(seconds, Seconds({"", [&] { crl = Decode(); }}, 1));
            FreeX509Crl(crl);
        }
        return seconds * 1e9;
    }
    // With the allocator's headers; large tables lie outside the heap.
    static size_t HeapInUse() {
        const auto info = mallinfo2();
        return info.uordblks + info.hblkhd;
    }

    Document document_;
    Bytes buffer_;
    X509Crl* crl_ = nullptr;
    size_t heap_ = 0;
    std::vector<Node> nodes_, nodesAndTable_;
    std::vector<void*> blocks_, blocksAndTable_;
};

}  // namespace

void bench::AddCrls(Contests* contests) {
    contests->push_back(std::make_unique<CrlContest>(BuildList("crl/direct", false)));
    contests->push_back(std::make_unique<CrlContest>(BuildList("crl/indirect", true)));
}
