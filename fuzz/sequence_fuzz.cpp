// The bytes as a sequence of calls on a few objects of every kind, within the rules of ownership: objects are made, set
// from each other, added, handed over, copied, written, read back, and freed in any order.
#include "walk.h"

namespace {

using walk::Bytes, walk::Get, walk::Owned;

// What is left of the input: numbers and texts that calls are made with. Nothing is left: zeros.
class Source {
public:
    explicit Source(const Bytes& in) : at_(in.data()), end_(in.end()) {}
    bool IsEmpty() const { return at_ == end_; }
    uint8_t Octet() { return IsEmpty() ? 0 : *at_++; }
    uint32_t Number() {
        constexpr uint32_t kTelling[] = {
            0, 1, 2, 3, 4, 5, 6, 255, AlgorithmGostR34102001, AlgorithmGostR34102012Key512};
        return Octet() < 200 ? kTelling[Octet() % std::size(kTelling)] : UINT32_MAX - Octet();
    }
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
    Bytes Time() {
        LibraryTime time{};
        (void)SetLibraryTime(&time, Octet() % 40, Octet() % 14, 1890 + Octet(), Octet() % 25, 0, 0);
        return {&time, sizeof time};
    }

private:
    const uint8_t *at_, *end_;
};

// Three objects of a kind; one that was handed over or freed is made anew when it is asked for.
template <class Object, auto Create, auto Free>
class Pool {
public:
    Object* Pick(Source& in) {
        Owned<Free>& slot = At(in);
        if (!slot) slot = walk::Make<Free>(Create);
        return slot.get();
    }
    void Put(Source& in, Object* object) {
        if (object != nullptr) At(in).reset(object);
    }
    // Calls add(object), after which it belongs to somebody else on success.
    void HandOver(Source& in, auto add) {
        Owned<Free>& slot = At(in);
        if (slot && walk::Ok(add(slot.get()))) (void)slot.release();
    }
    Owned<Free> Take(Source& in) { return std::move(At(in)); }
    void Drop(Source& in) { At(in).reset(); }

private:
    Owned<Free>& At(Source& in) { return slots_[in.Octet() % std::size(slots_)]; }
    Owned<Free> slots_[3];
};

template <class... Pools>
struct WorldOf : Pools... {
    explicit WorldOf(Source source) : in(source) {}
    Source in;
    std::vector<Bytes> arguments{};              // of one call
    std::vector<std::function<void()>> given{};  // for one call: keeps what it adopts from being freed
    void* Keep(Bytes bytes) { return arguments.emplace_back(std::move(bytes)).data(); }
    void DropAny() {
        size_t kind = in.Octet() % sizeof...(Pools);
        ((kind-- == 0 ? Pools::Drop(in) : void()), ...);
    }
};
using World = WorldOf<
#include "sequence.kinds"
    >;
using Step = void (*)(World&);

template <class Object, auto Create, auto Free>
auto& PoolOf(Pool<Object, Create, Free>& pool) {
    return pool;
}
template <class Object>
Object* Pick(World& w) {
    return PoolOf<Object>(w).Pick(w.in);
}

// An object that is handed over.
template <class Object>
Object* Give(World& w) {
    auto taken = std::make_shared<decltype(PoolOf<Object>(w).Take(w.in))>(PoolOf<Object>(w).Take(w.in));
    w.given.emplace_back([taken] { (void)taken->release(); });
    return taken->get();
}

// An argument of a type. Bytes with a size after them are any, others an OID.
template <class T>
T Draw(World& w, bool isGiven, bool hasSize, bool isSize) {
    if constexpr (std::is_same_v<T, const uint8_t*>) {
        return static_cast<T>(w.Keep(hasSize ? w.in.Text() : w.in.Oid()));
    } else if constexpr (std::is_same_v<T, const char*>) {
        const Bytes text = w.in.Text();
        return static_cast<T>(w.Keep({std::string(text.data(), text.end()).c_str(), text.size() + size_t{1}}));
    } else if constexpr (std::is_same_v<T, const LibraryTime*>) {
        return w.in.Octet() == 0 ? nullptr : static_cast<T>(w.Keep(w.in.Time()));
    } else if constexpr (std::is_same_v<T, uint8_t*>) {
        return static_cast<T>(w.Keep(Bytes(w.in.Octet() % 64)));
    } else if constexpr (std::is_same_v<T, uint32_t*>) {
        const uint32_t room = w.arguments.empty() ? 0 : w.arguments.back().size();
        return static_cast<T>(w.Keep({&room, sizeof room}));
    } else if constexpr (std::is_pointer_v<T>) {
        using Object = std::remove_const_t<std::remove_pointer_t<T>>;
        return isGiven ? Give<Object>(w) : Pick<Object>(w);
    } else {
        return static_cast<T>(isSize ? w.arguments.back().size() : w.in.Number());
    }
}

// A call with arguments from the input. If it adopts them, objects after the first one belong to that one then. An
// object identifier at `Oid` is one although a number follows.
template <auto Function, bool Adopts = false, size_t Oid = SIZE_MAX>
void Play(World& w) {
    const auto play = [&w]<class... T, size_t... I>(Status (*function)(T...), std::index_sequence<I...>) {
        constexpr bool kBytes[] = {false, (std::is_same_v<T, const uint8_t*> && I != Oid)..., false};
        constexpr bool kSizes[] = {(std::is_same_v<T, uint32_t>)..., false};
        w.arguments.clear();
        w.given.clear();
        const std::tuple<T...> arguments{
            Draw<T>(w, Adopts && I != 0, kBytes[I + 1] && kSizes[I + 1], kBytes[I] && kSizes[I])...};
        if (walk::Ok(std::apply(function, arguments)))
            for (const auto& keep : w.given) keep();
    };
    [&]<class... T>(Status (*function)(T...)) { play(function, std::index_sequence_for<T...>()); }(Function);
}
template <auto Function>
constexpr Step Adopt = Play<Function, true>;

// Writes an object, and puts what is read back in the place of some object.
template <auto Encode, auto Decode>
void Reread(World& w) {
    [&w]<class Object>(Status (*decode)(const uint8_t*, uint32_t, Object**)) {
        Object* fresh = nullptr;
        const auto written = Get(Encode, Pick<Object>(w));
        if (written && walk::Ok(decode((*written)[0].data(), (*written)[0].size(), &fresh)))
            PoolOf<Object>(w).Put(w.in, fresh);
    }(Decode);
}

template <auto CreateCopy>
void Copy(World& w) {
    [&w]<class Object>(Status (*copy)(const Object*, Object**)) {
        Object* fresh = nullptr;
        if (walk::Ok(copy(Pick<Object>(w), &fresh))) PoolOf<Object>(w).Put(w.in, fresh);
    }(CreateCopy);
}

// A set may be appended to itself, and doubles then: not too often.
void Append(RsaAttributes attributes, RsaAttributes source) {
    uint32_t count = 0;
    if (walk::Ok(GetRsaAttributesAttributesCount(source, &count)) && count < 50)
        (void)AppendRsaAttributes(attributes, source);
}

template <auto... Functions>
constexpr Step kPlays[] = {Play<Functions>...};
template <Step... Steps>
constexpr Step kSteps[] = {Steps...};

constexpr auto& kCalls = kPlays<
#include "sequence.functions"
    >;
#define REREAD(Name) Reread<Encode##Name, Decode##Name>
constexpr auto& kMoves =
    kSteps<Adopt<AddCertificateToCertificates>, Adopt<AddX509CrlToX509Crls>, Adopt<AddSeveralDataContentInfo>,
           Adopt<AddOcspRequestCertificate>, Adopt<AddOcspBasicResponseSingleResponse>,
           Adopt<AddOcspBasicResponseCertificate>, Adopt<AddResponseToOcspBasicResponses>, Copy<CreateCertificateCopy>,
           Copy<CreateX509CrlCopy>, Copy<CreatePKCS10CertReqCopy>, Copy<CreateCmsSignedDataCopy>,
           Copy<CreateCertificatesCopy>, Copy<CreatePKIFreeTextCopy>, Copy<CreateX509GeneralNameCopy>, REREAD(X509Name),
           REREAD(X509Extensions), REREAD(RsaAttributes), REREAD(Certificate), REREAD(X509Crl), REREAD(PKCS10CertReq),
           REREAD(CmsSignedData), REREAD(CmsContentInfo), REREAD(SeveralData), REREAD(CmsEnvelopedData),
           REREAD(KeyTrans), REREAD(OcspRequest), REREAD(OcspBasicResponse), REREAD(X509GeneralNames),
           REREAD(PKIFreeText), REREAD(ExtensionExtendedKeyUsage), REREAD(ExtensionCertificatePolicies),
           REREAD(ExtensionCrlDistributionPoints), REREAD(ExtensionAuthorityInformationAccess)>;
constexpr Step kOthers[] = {
    Play<AddX509ExtensionsExtension, false, 1>,
    [](World& w) { w.DropAny(); },
    [](World& w) { Append(Pick<RsaAttributesCell>(w), Pick<RsaAttributesCell>(w)); },
    [](World& w) {
        for (const auto set : {SetCertificateIssuer_i, SetCertificateSubject_i})
            PoolOf<X509Name>(w).HandOver(w.in, [&](auto* name) { return set(Pick<Certificate>(w), name, 0); });
    },
    [](World& w) {
        const Bytes oid = w.in.Oid(), value = w.in.Text();
        X509Extension* extension = nullptr;
        RsaAttribute* attribute = nullptr;
        (void)CreateX509Extension(&extension, oid.data(), 1, value.data(), value.size());
        (void)CreateRsaAttribute(&attribute, oid.data(), value.data(), value.size());
        (void)FreeX509Extension(extension);
        (void)FreeRsaAttribute(attribute);
    },
    [](World& w) {
        CmsSignerInfo* const signer = walk::Lent(AddCmsSignedDataSignerInfo, Pick<CmsSignedData>(w));
        (void)SetCmsSignerInfoSignerSubjectKeyIdentifier(signer, walk::kAnyBytes, 2);
        (void)FillCmsSignerInfoWithSignedAttributes2(signer, walk::kAnyBytes, 2, nullptr, Pick<RsaAttributesCell>(w));
    },
    [](World& w) {
        PoolOf<KeyTrans>(w).HandOver(w.in, [&](KeyTrans* r) {
            return AddCmsEnvelopedDataRecipientInfo(Pick<CmsEnvelopedData>(w), w.in.Octet() & 1, r);
        });
    },
    [](World& w) {
        Append(walk::Lent(GetCmsEnvelopedDataUnprotectedAttributes, Pick<CmsEnvelopedData>(w)),
               Pick<RsaAttributesCell>(w));
    },
    [](World& w) {
        const Bytes value = w.in.Oid();  // a registeredID is read by its first byte
        X509GeneralName* name = nullptr;
        (void)AllocX509GeneralNameValue(&name, w.in.Octet() % 10, value.data(), value.size());
        PoolOf<X509GeneralName>(w).Put(w.in, name);
        Adopt<AddExtensionAuthorityInformationAccess>(w);
    },
    Adopt<AddExtensionCrlDistributionPoint>,
    Adopt<AddCrlOcspRefToList>,
    [](World& w) {
        const Bytes name = w.in.Oid();
        (void)SetOcspRequestRequestorName(Pick<OcspRequest>(w), w.in.Octet() % 10, name.data(), name.size());
    },
};
static_assert(std::size(kCalls) <= 256);

void PlayAny(World& w, const auto& steps) { steps[w.in.Octet() % std::size(steps)](w); }

}  // namespace

void walk::WalkInput(const Bytes& in) {
    World world{Source(in)};
    for (int steps = 0; steps < 60 && !world.in.IsEmpty(); ++steps) {
        const int kind = world.in.Octet() % 8;
        kind == 0 ? PlayAny(world, kOthers) : kind < 3 ? PlayAny(world, kMoves) : PlayAny(world, kCalls);
    }
}
