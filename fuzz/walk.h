// Walks over objects with every getter there is, and holds their answers against each other. What doesn't fit is
// thrown: a fuzzer stops at it, a test reports it.
#pragma once

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <tuple>

#include "tlvforge/tlvforge.h"

namespace walk {

inline void Require(bool holds, int line = __builtin_LINE(), const char* file = __builtin_FILE()) {
    if (!holds) throw std::logic_error(std::string(file) + ":" + std::to_string(line));
}

// In a heap block of exactly their size, so that a sanitizer sees one byte too far.
class Bytes {
public:
    explicit Bytes(size_t size = 0) : block_(new uint8_t[size]()), size_(static_cast<uint32_t>(size)) {}
    Bytes(const void* from, size_t size) : Bytes(size) { std::copy_n(static_cast<const uint8_t*>(from), size, data()); }

    uint8_t* data() const { return block_.get(); }
    uint8_t* end() const { return data() + size_; }
    uint32_t size() const { return size_; }
    bool Has(uint8_t byte) const { return std::find(data(), end(), byte) != end(); }
    bool operator==(const Bytes& other) const { return std::equal(data(), end(), other.data(), other.end()); }

private:
    std::unique_ptr<uint8_t[]> block_;
    uint32_t size_;
};

inline bool Ok(Status status) { return status == StatusOk; }

template <auto Free>
struct Deleter {
    void operator()(auto* object) const { (void)Free(object); }
};
template <class Result, class T>
T* ArgumentOf(Result (*)(T*));
template <auto Free>
using Owned = std::unique_ptr<std::remove_pointer_t<decltype(ArgumentOf(Free))>, Deleter<Free>>;

// Owns what a function gives through its last parameter, which has to be nothing after a failure.
template <auto Free, class Function, class... Arguments>
Owned<Free> Make(Function function, Arguments... arguments) {
    decltype(ArgumentOf(Free)) object = nullptr;
    Require(Ok(function(arguments..., &object)) == (object != nullptr));
    return Owned<Free>(object);
}

// Stands for a buffer and its length among the arguments of a getter.
struct Output {
} inline constexpr kOut;

// A buffer of bytes or of text.
struct Buffer {
    uint8_t* bytes;
    operator uint8_t*() const { return bytes; }
    operator char*() const { return reinterpret_cast<char*>(bytes); }
};

// Outputs of a getter, of one at the end if kOut isn't there: measured, refused by buffers that are one byte short,
// then taken in buffers of their size.
template <class Function, class... Arguments>
auto Get(Function function, Arguments... arguments) {
    constexpr size_t kCount = (0 + ... + std::is_same_v<Arguments, Output>);
    if constexpr (kCount == 0) {
        return Get(function, arguments..., kOut);
    } else {
        Buffer buffers[kCount] = {};
        uint32_t lengths[kCount] = {}, needed[kCount] = {};
        const auto call = [&] {
            size_t next = 0;
            const auto expand = [&]<class T>(T argument) {
                if constexpr (!std::is_same_v<T, Output>)
                    return std::tuple(argument);
                else
                    return ++next, std::tuple(buffers[next - 1], &lengths[next - 1]);
            };
            const std::tuple<decltype(expand(arguments))...> parts{expand(arguments)...};
            return std::apply(function, std::apply([](auto... part) { return std::tuple_cat(part...); }, parts));
        };
        std::optional<std::array<Bytes, kCount>> results;
        if (!Ok(call())) return results;
        results.emplace();
        std::copy_n(lengths, kCount, needed);
        for (const uint32_t missing : {1u, 0u}) {
            for (size_t i = 0; i < kCount; ++i) {
                (*results)[i] = Bytes(lengths[i] = needed[i] - std::min(missing, needed[i]));
                buffers[i] = {(*results)[i].data()};
            }
            const bool fit = std::equal(lengths, lengths + kCount, needed);
            Require(call() == (fit ? StatusOk : StatusBufferTooSmall));
            Require(std::equal(lengths, lengths + kCount, needed));
        }
        return results;
    }
}
using MaybeBytes = std::optional<std::array<Bytes, 1>>;

// A result that has to be there.
template <class Result>
Result Sure(std::optional<Result> result, int line = __builtin_LINE(), const char* file = __builtin_FILE()) {
    Require(result.has_value(), line, file);
    return std::move(*result);
}

template <class Count, class List, class Visit>
void Each(Count count, List list, Visit visit) {
    uint32_t members = 0;
    Require(Ok(count(list, &members)));
    for (uint32_t i = 0; i < members; ++i) visit(i);
}

// What was read and written once comes back as the same bytes.
template <class Rewrite>
void WalkTwice(const Bytes& in, Rewrite rewrite, bool stable) {
    const MaybeBytes once = rewrite(in);
    if (once && stable) Require(rewrite((*once)[0]) == once);
}

// Objects. They are visited after they were written.
template <auto Free, class Decode, class Encode, class Visit>
void WalkObject(const Bytes& in, Decode decode, Encode encode, Visit visit, bool stable = true) {
    const auto rewrite = [&](const Bytes& bytes) -> MaybeBytes {
        const auto object = Make<Free>(decode, bytes.data(), bytes.size());
        if (!object) return std::nullopt;
        MaybeBytes encoded = Sure(Get(encode, object.get()));
        visit(object.get());
        return encoded;
    };
    WalkTwice(in, rewrite, stable);
}

// Numbers, flags and times, that a decoder stores one by one and an encoder takes in the same order.
template <class... Fields, class Encode>
void WalkFields(const Bytes& in, Status (*decode)(const uint8_t*, uint32_t, Fields*...), Encode encode,
                bool stable = true) {
    const auto toWrite = []<class T>(T& field) {
        if constexpr (std::is_class_v<T>)
            return IsLibraryTimeNull(&field) != 0 ? nullptr : &field;
        else
            return std::is_pointer_v<T> ? T{} : field;  // a pointer that is handed out leads to nothing
    };
    const auto rewrite = [&](const Bytes& bytes) -> MaybeBytes {
        std::tuple<Fields...> fields{};
        const auto read = [&](Fields&... field) { return decode(bytes.data(), bytes.size(), &field...); };
        const auto write = [&](Fields&... field) { return Sure(Get(encode, toWrite(field)...)); };
        return Ok(std::apply(read, fields)) ? MaybeBytes(std::apply(write, fields)) : std::nullopt;
    };
    WalkTwice(in, rewrite, stable);
}

// An object, and what was made of its parts. They may differ by OIDs above 255 bytes, whose length is cut to a byte.
inline void RequireSame(const MaybeBytes& encoded, const MaybeBytes& rebuilt) {
    Require(encoded && rebuilt && (encoded == rebuilt || (*rebuilt)[0].size() + 256 <= (*encoded)[0].size()));
}

inline auto RebuildName(const X509Name* name) {
    auto rebuilt = Make<FreeX509Name>(CreateX509Name);
    Each(GetX509NameRdnCount, name, [&](uint32_t rdn) {
        const auto count = [&](const X509Name* of, uint32_t* n) { return GetX509NameEntryCount(of, rdn, n); };
        Each(count, name, [&](uint32_t entry) {
            uint8_t tagClass = 0, constructed = 0, tag = 0;
            uint32_t id = 0;
            const auto [value, oid] =
                Sure(Get(GetX509NameEntryExt, name, rdn, entry, kOut, &tagClass, &constructed, &tag, kOut));
            Sure(Get(GetX509NameEntry, name, rdn, entry, kOut, &tag, kOut));
            (void)FindNameAttributeTypeIdByOid(oid.data(), &id);
            Require(Ok(AddX509NameEntryExt(rebuilt.get(), value.data(), value.size(), tagClass, constructed, tag,
                                           oid.data(), entry == 0)));
        });
    });
    return rebuilt;
}

inline void WalkName(const X509Name* name) {
    const Status compared = CompareX509Names(name, Make<FreeX509Name>(CopyX509Name, name).get());
    Require(compared == StatusOk || compared == StatusAbsent);
    // A value in another than the shortest form of tag and length is in the shortest one from here on.
    const auto rebuilt = RebuildName(name), again = RebuildName(rebuilt.get());
    Require(Sure(Get(EncodeX509Name, rebuilt.get())) == Get(EncodeX509Name, again.get()));
}

inline void WalkGeneralNames(const X509GeneralNames* names) {
    if (names == nullptr) return;
    const auto rebuilt = Make<FreeX509GeneralNames>(CreateX509GeneralNames);
    Each(GetX509GeneralNameCount, names, [&](uint32_t i) {
        uint32_t kind = 0;
        const auto [value] = Sure(Get(GetX509GeneralName, names, i, &kind, kOut));
        Require(Ok(AddX509GeneralName(rebuilt.get(), kind, value.data(), value.size())));
    });
    RequireSame(Get(EncodeX509GeneralNames, names), Get(EncodeX509GeneralNames, rebuilt.get()));
    if (const auto name = Make<FreeX509Name>(GetX509NameFromGeneralNames, names)) WalkName(name.get());
}

inline void WalkPoints(ExtensionCrlDistributionPoints* list) {
    Each(GetExtensionCrlDistributionPointsCount, list, [&](uint32_t i) {
        X509GeneralNames *fullName = nullptr, *issuer = nullptr;
        X509Name* relativeName = nullptr;
        uint32_t reasons = 0;
        Require(Ok(GetExtensionCrlDistributionPoint(list, i, &fullName, &relativeName, &reasons, &issuer)));
        for (const X509GeneralNames* names : {fullName, issuer}) WalkGeneralNames(names);
    });
}

inline void WalkAccess(ExtensionAuthorityInformationAccess* list) {
    Each(GetExtensionAuthorityInformationAccessCount, list, [&](uint32_t i) {
        X509GeneralName* location = nullptr;
        uint32_t kind = 0;
        Sure(Get(GetExtensionAuthorityInformationAccess, list, i, kOut, &location));
        Sure(Get(GetX509GeneralNameValue, location, &kind));
    });
}

inline void WalkPolicies(ExtensionCertificatePolicies* list) {
    const uint32_t size = Sure(Get(EncodeExtensionCertificatePolicies, list))[0].size();
    Each(GetExtensionPolicyInformationCount, list, [&](uint32_t i) {
        const auto [policy] = Sure(Get(GetExtensionPolicyInformation, list, i));
        const auto count = [&](auto* of, uint32_t* n) { return GetExtensionPolicyQualifiersCount(of, i, n); };
        // The new member stands for the policy, and isn't written. Nor is a list that was empty before.
        Require(Ok(AddExtensionPolicyQualifier(list, i, policy.data(), nullptr, 0)));
        Each(count, list, [&](uint32_t j) { Sure(Get(GetExtensionPolicyQualifier, list, i, j, kOut, kOut)); });
    });
    Require(Sure(Get(EncodeExtensionCertificatePolicies, list))[0].size() <= size);
}

// A getter that gives a key identifier, an issuer in a form of its own, and a serial number.
template <auto Free, class Function, class... Arguments>
auto GetAuthority(Function function, Arguments... arguments) {
    Owned<Free> issuer;
    const auto read = [&](uint8_t* keyId, uint32_t* keyIdLength, uint8_t* serial, uint32_t* serialLength) {
        decltype(issuer.get()) fresh = nullptr;
        const Status status = function(arguments..., keyId, keyIdLength, &fresh, serial, serialLength);
        issuer.reset(fresh);
        return status;
    };
    auto parts = Get(read, kOut, kOut);
    if constexpr (std::is_same_v<decltype(issuer.get()), X509GeneralNames*>) WalkGeneralNames(issuer.get());
    return parts;
}

// Every codec of an extension value, and of the elements that documents hold, whatever the bytes are meant to be.
inline void WalkValue(const Bytes& in) {
    // An implicit tag breaks a captured element with a low tag number in the high form: only its first octet changes.
    const bool stable = !in.Has(0x9F) && !in.Has(0xBF);
    const auto members = [](auto count, auto get) {
        return [=](auto* list) { Each(count, list, [&](uint32_t i) { Sure(Get(get, list, i)); }); };
    };
    uint8_t form = 0;
    uint32_t critical = 0;
    for (const auto decode : {DecodeExtensionSubjectKeyIdentifier, DecodeExtensionCrlNumber, DecodeExtensionOcspNonce,
                              DecodePublicKeyGostR34102012, DecodeAsn1UTF8String, DecodeAsn1Oid}) {
        (void)Get(decode, in.data(), in.size());
    }
    for (const uint32_t id : {AlgorithmGostR34102001, AlgorithmGostR34102012Key512}) {
        (void)Get(DecodeAlgorithmGostR3410ParameterOids, id, in.data(), in.size(), &form, kOut, kOut, kOut);
    }
    (void)Get(DecodeSubjectPublicKeyInfo, in.data(), in.size(), kOut, kOut, kOut);
    (void)GetAuthority<FreeX509GeneralNames>(DecodeExtensionAuthorityKeyIdentifier, in.data(), in.size());
    WalkFields(in, DecodeAlgorithmGostR34102001Parameters, EncodeAlgorithmGostR34102001Parameters);
    WalkFields(in, DecodeTime, EncodeTime);
    WalkFields(in, DecodeExtensionKeyUsage, EncodeExtensionKeyUsage);
    WalkFields(in, DecodeExtensionNetscapeCertificateType, EncodeExtensionNetscapeCertificateType);
    WalkFields(in, DecodeExtensionBasicConstraints, EncodeExtensionBasicConstraints);
    WalkFields(in, DecodeExtensionReasonCode, EncodeExtensionReasonCode);
    WalkFields(in, DecodeExtensionInvalidityDate, EncodeExtensionInvalidityDate);
    WalkFields(in, DecodeExtensionPrivateKeyUsagePeriod, EncodeExtensionPrivateKeyUsagePeriod);
    // Reasons without onlyContainsUserCerts are taken for it by the next reader.
    WalkFields(in, DecodeExtensionIssuingDistributionPoint, EncodeExtensionIssuingDistributionPoint, false);
    WalkObject<FreeX509Name>(in, DecodeX509Name, EncodeX509Name, WalkName);
    WalkObject<FreeX509GeneralNames>(in, DecodeX509GeneralNames, EncodeX509GeneralNames, WalkGeneralNames, stable);
    WalkObject<FreePKIFreeText>(in, DecodePKIFreeText, EncodePKIFreeText,
                                members(GetPKIFreeTextStringCount, GetPKIFreeTextString));
    WalkObject<FreeX509Extension>(in, DecodeX509Extension, EncodeX509Extension, [&](X509Extension* extension) {
        Sure(Get(GetX509Extension, extension, kOut, &critical, kOut));
    });
    WalkObject<FreeExtensionExtendedKeyUsage>(in, DecodeExtensionExtendedKeyUsage, EncodeExtensionExtendedKeyUsage,
                                              members(GetExtensionExtendedKeyUsageCount, GetExtensionExtendedKeyUsage));
    WalkObject<FreeExtensionCertificatePolicies>(in, DecodeExtensionCertificatePolicies,
                                                 EncodeExtensionCertificatePolicies, WalkPolicies);
    WalkObject<FreeExtensionCrlDistributionPoints>(in, DecodeExtensionCrlDistributionPoints,
                                                   EncodeExtensionCrlDistributionPoints, WalkPoints, stable);
    WalkObject<FreeExtensionAuthorityInformationAccess>(in, DecodeExtensionAuthorityInformationAccess,
                                                        EncodeExtensionAuthorityInformationAccess, WalkAccess, stable);
}

inline void WalkExtensions(X509Extensions extensions) {
    const auto rebuilt = Make<FreeX509Extensions>(CreateX509Extensions);
    Each(GetX509ExtensionsExtensionsCount, extensions, [&](uint32_t i) {
        uint32_t critical = 0, first = 0;
        const auto [oid, value] = Sure(Get(GetX509ExtensionsExtension, extensions, i, kOut, &critical, kOut));
        WalkValue(value);
        Require(Ok(AddX509ExtensionsExtension(rebuilt.get(), oid.data(), critical, value.data(), value.size())));
        if (oid.size() > 256) return;  // its length is cut
        Require(Ok(FindX509Extension(extensions, oid.data(), &first)) && first <= i);
        Require(first != i || Sure(Get(GetX509ExtensionsExtensionValue, extensions, oid.data()))[0] == value);
    });
    const auto encoded = Get(EncodeX509Extensions, extensions);  // nothing for a document without extensions
    if (encoded) RequireSame(encoded, Get(EncodeX509Extensions, rebuilt.get()));
}

// Every getter of a certificate that was decoded.
inline void WalkCertificate(Certificate* certificate) {
    uint32_t length = 0, sets[3];
    int32_t version = 0;
    uint8_t unusedBits = 0;
    LibraryTime time{};
    X509Name *subject = nullptr, *issuer = nullptr;
    X509Extensions extensions = nullptr;
    (void)GetCertificateVersion(certificate, &version);
    Sure(Get(GetCertificateToBeSignedPart, certificate));
    for (const auto get : {GetCertificatePublicKey, GetCertificatePublicKeyGostR3410, GetCertificateSignature}) {
        (void)Get(get, certificate);
    }
    (void)Get(GetCertificateDecodedPublicKeyGostR34102012, certificate, kOut, &sets[0], &sets[1], &sets[2]);
    Sure(Get(GetCertificatePublicKeyAlgorithmOidAndParameters, certificate, kOut, kOut));
    Sure(Get(GetCertificateSignatureAlgorithmOidAndParameters, certificate, kOut, kOut));
    (void)Get(GetCertificateIssuerUniqueId, certificate, kOut, &unusedBits);
    (void)Get(GetCertificateSubjectUniqueId, certificate, kOut, &unusedBits);
    for (const auto get : {GetCertificateValidNotBefore, GetCertificateValidNotAfter}) {
        if (Ok(get(certificate, &time))) Sure(Get(EncodeTime, &time));
    }
    Require(Ok(GetCertificateSubject(certificate, &subject)) && Ok(GetCertificateIssuer(certificate, &issuer)));
    for (const X509Name* name : {subject, issuer}) WalkName(name);
    Require(Ok(GetCertificateExtensions(certificate, &extensions)));
    WalkExtensions(extensions);

    // It is the one that its own identifiers mean.
    const uint8_t* serial = ptr_GetCertificateSerialNumber(certificate, &length);
    Require(Sure(Get(GetCertificateSerialNumber, certificate))[0] == Bytes(serial, length));
    Require(IsCertificateCorrespondToAuthKeyIdent(certificate, nullptr, 0, issuer, serial, length) ==
            CompareX509Names(issuer, issuer));
    if (const auto own = Get(GetCertificateSubjectKeyIdentifier, certificate)) {
        const auto& [id] = *own;
        Require(Ok(IsCertificateCorrespondToAuthKeyIdent(certificate, id.data(), id.size(), nullptr, nullptr, 0)) ==
                (id.size() > 0 && id.size() <= 32));
    }
    const auto same = GetAuthority<FreeX509Name>(GetCertificateAuthorityKeyIdentifier2, certificate);
    Require(!same || same == GetAuthority<FreeX509GeneralNames>(GetCertificateAuthorityKeyIdentifier, certificate));
}

// Setters. What the certificate itself lends changes nothing; then it gets other extensions, and loses them.
inline void ChangeCertificate(const Certificate* original) {
    const auto owner = Make<FreeCertificate>(CreateCertificateCopy, original);
    Certificate* copy = owner.get();
    uint32_t length = 0;
    X509Name *issuer = nullptr, *subject = nullptr;
    X509Extensions extensions = nullptr;
    const uint8_t* serial = ptr_GetCertificateSerialNumber(copy, &length);
    Require(Ok(SetCertificateSerialNumber(copy, serial, length)));
    Require(Ok(GetCertificateIssuer(copy, &issuer)) && Ok(SetCertificateIssuer(copy, issuer)));
    Require(Ok(GetCertificateSubject(copy, &subject)) && Ok(SetCertificateSubject_i(copy, subject, 0)));
    Require(Ok(GetCertificateExtensions(copy, &extensions)) && Ok(SetCertificateExtensions(copy, extensions)));
    Require(Sure(Get(EncodeCertificate, original)) == Get(EncodeCertificate, copy));

    Require(Ok(SetCertificateVersion(copy, 2)));
    (void)SetCertificateSubjectKeyIdentifier(copy);
    (void)SetCertificateAuthorityKeyIdentifier(copy, copy);
    Require(Ok(SetCertificateExtensionCrlDistributionPoints(copy, "http://a/b.crl")));
    WalkCertificate(copy);
    Each(GetX509ExtensionsExtensionsCount, extensions,
         [&](uint32_t) { Require(Ok(RemoveX509ExtensionsExtension(extensions, 0))); });
    Sure(Get(EncodeCertificate, copy));
}

inline void WalkCertificates(Certificates* list) {
    Each(GetCertificatesCount, list, [&](uint32_t i) {
        Certificate* member = nullptr;
        Require(Ok(GetCertificatesCertificate(list, i, &member)));
        WalkCertificate(member);
    });
}

// The whole way: decoded, encoded, decoded again, read and changed.
inline void WalkEncodedCertificate(const Bytes& in) {
    WalkObject<FreeCertificates>(in, DecodeCertificates, EncodeCertificates, WalkCertificates);
    WalkObject<FreeCertificate>(in, DecodeCertificate, EncodeCertificate, [](Certificate* certificate) {
        WalkCertificate(certificate);
        ChangeCertificate(certificate);
    });
}

}  // namespace walk
