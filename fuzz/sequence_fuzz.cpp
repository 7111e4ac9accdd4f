// The bytes as a sequence of calls on a few objects of every kind, within the rules of ownership: objects are made, set
// from each other, added, handed over, copied, written, read back, and freed in any order.

#include "walk_cms.h"

namespace {

using walk::Bytes, walk::Get, walk::Owned;

// What is left of the input: numbers and texts that calls are made with. Nothing is left: zeros.
class Source {
public:
    Source(const uint8_t* data, size_t size) : at_(data), end_(data + size) {}
    bool IsEmpty() const { return at_ == end_; }
    uint8_t Octet() { return IsEmpty() ? 0 : *at_++; }
    uint32_t Number() { return Octet() < 200 ? Octet() % 8 : UINT32_MAX - Octet(); }
    Bytes Text() {
        const size_t wanted = Octet() % 48, size = std::min(wanted, static_cast<size_t>(end_ - at_));
        at_ += size;
        return {at_ - size, size};
    }
    // Length-prefixed, and never read past its end.
    Bytes Oid() {
        Bytes oid = Text();
        if (oid.size() == 0) oid = Bytes(1);
        oid.data()[0] = static_cast<uint8_t>(oid.size() - 1);
        return oid;
    }
    LibraryTime Time() {
        LibraryTime time{};
        (void)SetLibraryTime(&time, Octet() % 40, Octet() % 14, 1890 + Octet(), Octet() % 25, 0, 0);
        return time;
    }

private:
    const uint8_t *at_, *end_;
};

// Three objects of a kind; one that was handed over or freed is made anew when it is asked for.
template <auto Create, auto Free>
class Pool {
public:
    using Object = typename Owned<Free>::pointer;
    Object Pick(Source& in) {
        Owned<Free>& slot = At(in);
        if (!slot) slot = walk::Make<Free>(Create);
        return slot.get();
    }
    void Put(Source& in, Object object) {
        if (object != nullptr) At(in).reset(object);
    }
    // Calls add(object), after which it belongs to somebody else on success.
    void HandOver(Source& in, auto add) {
        Owned<Free>& slot = At(in);
        if (slot && walk::Ok(add(slot.get()))) (void)slot.release();
    }
    void Drop(Source& in) { At(in).reset(); }

private:
    Owned<Free>& At(Source& in) { return slots_[in.Octet() % std::size(slots_)]; }
    Owned<Free> slots_[3];
};

struct World {
    Source in;
    Pool<CreateX509Name, FreeX509Name> names;
    Pool<CreateX509Extensions, FreeX509Extensions> extensions;
    Pool<CreateRsaAttributes, FreeRsaAttributes> attributes;
    Pool<CreateCertificate, FreeCertificate> certificates;
    Pool<CreateCertificates, FreeCertificates> lists;
    Pool<CreateX509Crl, FreeX509Crl> crls;
    Pool<CreatePKCS10CertReq, FreePKCS10CertReq> requests;
    Pool<CreateCmsSignedData, FreeCmsSignedData> messages;
    Pool<CreateCmsEnvelopedData, FreeCmsEnvelopedData> envelopes;
    Pool<CreateKeyTrans, FreeKeyTrans> recipients;
    Pool<CreateOcspRequest, FreeOcspRequest> questions;
    Pool<CreateOcspSingleResponse, FreeOcspSingleResponse> answers;
    Pool<CreateOcspBasicResponse, FreeOcspBasicResponse> responses;
    Pool<CreateOcspBasicResponses, FreeOcspBasicResponses> responseLists;
};

// Writes an object, and puts what is read back in the place of some object.
void Reread(World& w, auto& pool, auto encode, auto decode) {
    typename std::remove_reference_t<decltype(pool)>::Object fresh = nullptr;
    const auto written = Get(encode, pool.Pick(w.in));
    if (written && walk::Ok(decode((*written)[0].data(), (*written)[0].size(), &fresh))) pool.Put(w.in, fresh);
}

void Copy(World& w, auto& pool, auto copy) {
    typename std::remove_reference_t<decltype(pool)>::Object fresh = nullptr;
    if (walk::Ok(copy(pool.Pick(w.in), &fresh))) pool.Put(w.in, fresh);
}

// The extensions or attributes that a document lends.
template <class Handle>
Handle Lent(auto get, auto* document) {
    Handle handle = nullptr;
    walk::Require(walk::Ok(get(document, &handle)));
    return handle;
}

// A set may be appended to itself, and doubles then: not too often.
void Append(RsaAttributes attributes, RsaAttributes source) {
    uint32_t count = 0;
    if (walk::Ok(GetRsaAttributesAttributesCount(source, &count)) && count < 50)
        (void)AppendRsaAttributes(attributes, source);
}

using Step = void (*)(World&);

constexpr Step kParts[] = {
    [](World& w) {
        const Bytes text = w.in.Text(), oid = w.in.Oid();
        (void)AddX509NameEntry(w.names.Pick(w.in), text.data(), text.size(), w.in.Octet(), oid.data(),
                               w.in.Octet() & 1);
    },
    [](World& w) { (void)DeleteX509NameEntry(w.names.Pick(w.in), w.in.Number(), w.in.Number()); },
    [](World& w) { (void)ClearX509Name(w.names.Pick(w.in)); },
    [](World& w) { Reread(w, w.names, EncodeX509Name, DecodeX509Name); },
    [](World& w) {
        const Bytes oid = w.in.Oid(), value = w.in.Text();
        (void)AddX509ExtensionsExtension(w.extensions.Pick(w.in), oid.data(), w.in.Octet() & 1, value.data(),
                                         value.size());
    },
    [](World& w) { (void)RemoveX509ExtensionsExtension(w.extensions.Pick(w.in), w.in.Number()); },
    [](World& w) { (void)RemoveX509Extensions(w.extensions.Pick(w.in)); },
    [](World& w) { Reread(w, w.extensions, EncodeX509Extensions, DecodeX509Extensions); },
    [](World& w) {
        const Bytes oid = w.in.Oid(), value = w.in.Text();
        uint32_t index = 0;
        (void)AddRsaAttributesAttributeWithValue(w.attributes.Pick(w.in), oid.data(), &index, value.data(),
                                                 value.size());
    },
    [](World& w) { Append(w.attributes.Pick(w.in), w.attributes.Pick(w.in)); },
    [](World& w) { (void)RemoveRsaAttributes(w.attributes.Pick(w.in)); },
    [](World& w) { Reread(w, w.attributes, EncodeRsaAttributes, DecodeRsaAttributes); },
};

constexpr Step kDocuments[] = {
    [](World& w) { (void)SetCertificateIssuer(w.certificates.Pick(w.in), w.names.Pick(w.in)); },
    [](World& w) {
        w.names.HandOver(w.in, [&](X509Name* n) { return SetCertificateSubject_i(w.certificates.Pick(w.in), n, 0); });
    },
    [](World& w) { (void)SetCertificateExtensions(w.certificates.Pick(w.in), w.extensions.Pick(w.in)); },
    [](World& w) {
        const LibraryTime time = w.in.Time();
        (void)SetCertificateValidNotAfter(w.certificates.Pick(w.in), &time);
    },
    [](World& w) { (void)SetCertificateAuthorityKeyIdentifier(w.certificates.Pick(w.in), w.certificates.Pick(w.in)); },
    [](World& w) { Copy(w, w.certificates, CreateCertificateCopy); },
    [](World& w) { Reread(w, w.certificates, EncodeCertificate, DecodeCertificate); },
    [](World& w) {
        w.certificates.HandOver(w.in,
                                [&](Certificate* c) { return AddCertificateToCertificates(w.lists.Pick(w.in), c); });
    },
    [](World& w) { Copy(w, w.lists, CreateCertificatesCopy); },
    [](World& w) {
        const Bytes serial = w.in.Text();
        const LibraryTime time = w.in.Time();
        uint32_t index = 0;
        (void)AddX509CrlRevokedCertificate(w.crls.Pick(w.in), serial.data(), serial.size(), &time, &index);
    },
    [](World& w) { (void)SetX509CrlIssuer(w.crls.Pick(w.in), w.names.Pick(w.in)); },
    [](World& w) { (void)RemoveX509CrlRevokedCertificates(w.crls.Pick(w.in)); },
    [](World& w) {
        const Bytes serial = w.in.Text();
        uint32_t index = 0;
        (void)FindX509CrlFind(w.crls.Pick(w.in), w.names.Pick(w.in), serial.data(), serial.size(), &index);
    },
    [](World& w) { Copy(w, w.crls, CreateX509CrlCopy); },
    [](World& w) { Reread(w, w.crls, EncodeX509Crl, DecodeX509Crl); },
    [](World& w) { (void)SetPKCS10CertReqSubject(w.requests.Pick(w.in), w.names.Pick(w.in)); },
    [](World& w) { (void)SetPKCS10CertReqAttributes(w.requests.Pick(w.in), w.attributes.Pick(w.in)); },
    [](World& w) { (void)SetPKCS10CertReqExtensions(w.requests.Pick(w.in), w.extensions.Pick(w.in)); },
    [](World& w) { Reread(w, w.requests, EncodePKCS10CertReq, DecodePKCS10CertReq); },
};

constexpr Step kMessages[] = {
    [](World& w) {
        const Bytes data = w.in.Text();
        (void)AddCmsSignedDataEncodedCertificate(w.messages.Pick(w.in), w.in.Octet() % 7, data.data(), data.size());
    },
    [](World& w) {
        const Bytes data = w.in.Text();
        (void)AddCmsSignedDataEncodedCrl(w.messages.Pick(w.in), w.in.Octet() % 4, data.data(), data.size());
    },
    [](World& w) { (void)RemoveCmsSignedDataCrls(w.messages.Pick(w.in)); },
    [](World& w) {
        const Bytes serial = w.in.Text(), digest = w.in.Text();
        const LibraryTime time = w.in.Time();
        CmsSignerInfo* signer = nullptr;
        if (!walk::Ok(AddCmsSignedDataSignerInfo(w.messages.Pick(w.in), &signer))) return;
        (void)FillCmsSignerInfoWithSignedAttributes2(signer, digest.data(), digest.size(), &time,
                                                     w.attributes.Pick(w.in));
        (void)SetCmsSignerInfoSignerIdentifierIssuerAndSerialNumber(signer, w.names.Pick(w.in), serial.data(),
                                                                    serial.size());
    },
    [](World& w) { (void)DeleteCmsSignedDataSignerInfo(w.messages.Pick(w.in), w.in.Number()); },
    [](World& w) { Copy(w, w.messages, CreateCmsSignedDataCopy); },
    [](World& w) { Reread(w, w.messages, EncodeCmsSignedData, DecodeCmsSignedData); },
    [](World& w) {
        const Bytes keyId = w.in.Text();
        (void)SetKeyTransRecipientIdentifierSubjectKeyIdentifier(w.recipients.Pick(w.in), keyId.data(), keyId.size());
    },
    [](World& w) {
        w.recipients.HandOver(w.in, [&](KeyTrans* r) {
            return AddCmsEnvelopedDataRecipientInfo(w.envelopes.Pick(w.in), w.in.Octet() & 1, r);
        });
    },
    [](World& w) { (void)RemoveCmsEnvelopedDataRecipientInfos(w.envelopes.Pick(w.in)); },
    [](World& w) {
        const Bytes data = w.in.Text();
        (void)AddCmsEnvelopedDataEncodedCrl(w.envelopes.Pick(w.in), w.in.Octet() % 4, data.data(), data.size());
    },
    [](World& w) { (void)RemoveCmsEnvelopedDataCrls(w.envelopes.Pick(w.in)); },
    [](World& w) {
        Append(Lent<RsaAttributes>(GetCmsEnvelopedDataUnprotectedAttributes, w.envelopes.Pick(w.in)),
               w.attributes.Pick(w.in));
    },
    [](World& w) { Reread(w, w.envelopes, EncodeCmsEnvelopedData, DecodeCmsEnvelopedData); },
};

constexpr Step kAnswers[] = {
    [](World& w) {
        const Bytes oid = w.in.Oid(), hash = w.in.Text();
        (void)AddOcspRequestCertRequest(w.questions.Pick(w.in), oid.data(), nullptr, 0, hash.data(), hash.size(),
                                        hash.data(), hash.size(), hash.data(), hash.size(), w.extensions.Pick(w.in));
    },
    [](World& w) {
        w.certificates.HandOver(w.in,
                                [&](Certificate* c) { return AddOcspRequestCertificate(w.questions.Pick(w.in), c); });
    },
    [](World& w) {
        const Bytes name = w.in.Oid();
        (void)SetOcspRequestRequestorName(w.questions.Pick(w.in), w.in.Octet() % 10, name.data(), name.size());
    },
    [](World& w) { (void)RemoveOcspRequestSignature(w.questions.Pick(w.in)); },
    [](World& w) { Reread(w, w.questions, EncodeOcspRequest, DecodeOcspRequest); },
    [](World& w) {
        const LibraryTime time = w.in.Time();
        (void)SetOcspSingleResponseCertStatusRevoked(w.answers.Pick(w.in), &time, static_cast<int32_t>(w.in.Number()));
        (void)SetOcspSingleResponseThisUpdate(w.answers.Pick(w.in), &time);
    },
    [](World& w) { (void)SetOcspSingleResponseCertStatusGood(w.answers.Pick(w.in)); },
    [](World& w) {
        w.answers.HandOver(
            w.in, [&](OcspSingleResponse* a) { return AddOcspBasicResponseSingleResponse(w.responses.Pick(w.in), a); });
    },
    [](World& w) {
        const Bytes id = w.in.Text();
        (void)SetOcspBasicResponseResponderID(w.responses.Pick(w.in), w.in.Octet() % 3, id.data(), id.size());
    },
    [](World& w) { (void)ClearOcspBasicResponseResponses(w.responses.Pick(w.in)); },
    [](World& w) { Reread(w, w.responses, EncodeOcspBasicResponse, DecodeOcspBasicResponse); },
    [](World& w) {
        w.responses.HandOver(
            w.in, [&](OcspBasicResponse* r) { return AddResponseToOcspBasicResponses(w.responseLists.Pick(w.in), r); });
    },
    [](World& w) { Copy(w, w.responseLists, CreateOcspBasicResponsesCopy); },
};

constexpr Step kDrops[] = {
    [](World& w) { w.names.Drop(w.in); },      [](World& w) { w.extensions.Drop(w.in); },
    [](World& w) { w.attributes.Drop(w.in); }, [](World& w) { w.certificates.Drop(w.in); },
    [](World& w) { w.crls.Drop(w.in); },       [](World& w) { w.messages.Drop(w.in); },
    [](World& w) { w.envelopes.Drop(w.in); },  [](World& w) { w.responses.Drop(w.in); },
};

template <size_t Count>
void Play(World& w, const Step (&steps)[Count]) {
    steps[w.in.Octet() % Count](w);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    World world{Source(data, size), {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}};
    for (int steps = 0; steps < 60 && !world.in.IsEmpty(); ++steps) {
        switch (world.in.Octet() % 9) {
            case 0:
            case 1: Play(world, kParts); break;
            case 2:
            case 3: Play(world, kDocuments); break;
            case 4:
            case 5: Play(world, kMessages); break;
            case 6:
            case 7: Play(world, kAnswers); break;
            default: Play(world, kDrops);
        }
    }
    return 0;
}
