/* Lists of the C interface, a count and a getter by index, as ranges. */
#ifndef TLVFORGE_CPP_LISTS_HPP
#define TLVFORGE_CPP_LISTS_HPP

#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

#include "tlvforge/cpp/call.hpp"

namespace tlvforge {

namespace types {

/**
 * Range is what the functions below return, for one loop over a list. The element is read into the range itself when
 * the loop comes to it, and keeps its memory from one to the next. A list must not change while it is read, and the
 * objects that it belongs to have to live as long.
 *
 * Ranges of the namespace tlvforge throw Error where an element can't be read. Those of tlvforge::nothrow end there:
 * ask status() or failure() after the loop.
 */
template <class Element, class Read, bool Throws>
class Range {
public:
    Range(Result<uint32_t> count, Read read) : read_(std::move(read)) {
        if (count) {
            count_ = *count;
        } else {
            Fail(count.failure());
        }
    }

    class Iterator {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = Element;
        using difference_type = std::ptrdiff_t;
        using pointer = Element*;
        using reference = Element&;

        explicit Iterator(Range* range = nullptr) : range_(range) { Settle(); }
        Element& operator*() const { return range_->element_; }
        Element* operator->() const { return &range_->element_; }
        Iterator& operator++() {
            ++range_->index_;
            Settle();
            return *this;
        }
        void operator++(int) { ++*this; }
        friend bool operator==(const Iterator& left, const Iterator& right) { return left.range_ == right.range_; }
        friend bool operator!=(const Iterator& left, const Iterator& right) { return left.range_ != right.range_; }

    private:
        void Settle() {
            if (range_ != nullptr && !range_->ReadElement()) range_ = nullptr;
        }
        Range* range_;
    };

    Iterator begin() {
        index_ = 0;
        return Iterator(this);
    }
    Iterator end() { return Iterator(); }

    uint32_t size() const noexcept { return count_; }
    bool empty() const noexcept { return count_ == 0; }
    Status status() const noexcept { return failure_.status; }
    const Failure& failure() const noexcept { return failure_; }

private:
    bool ReadElement() {
        if (index_ >= count_) return false;
        const Result<void> read = read_(index_, element_);
        if (!read) Fail(read.failure());
        return read.has_value();
    }

    void Fail(const Failure& failure) {
#if defined(__cpp_exceptions)
        if constexpr (Throws) throw Error(failure);
#endif
        failure_ = failure;
    }

    Read read_;
    Element element_{};
    uint32_t index_ = 0, count_ = 0;
    Failure failure_;
};

/** An extension: its value is the content of extnValue. */
struct Extension {
    Oid oid;
    bool critical = false;
    Bytes value;
};

/** An attribute: its values are whole elements. index is its own in the set. */
struct Attribute {
    Oid oid;
    std::vector<Bytes> values;
    uint32_t index = 0;
};

/** An entry of a CRL. serialNumber: big-endian content bytes. extensions: lent. */
struct RevokedCertificate {
    Bytes serialNumber;
    LibraryTime revocationDate = {};
    X509Extensions extensions = nullptr;
};

/** A general name: X509GeneralNameDNSName or another alternative, and a value in its form. */
struct GeneralName {
    uint32_t alternative = 0;
    Bytes value;
};

/** A method and a location, which is lent. */
struct AccessDescription {
    Oid method;
    X509GeneralName* location = nullptr;
};

/** Parts of a distribution point, lent, and null where absent; reasons is a flag word. */
struct DistributionPoint {
    X509GeneralNames* fullName = nullptr;
    X509Name* relativeName = nullptr;
    uint32_t reasons = 0;
    X509GeneralNames* crlIssuer = nullptr;
};

}  // namespace types

namespace detail {

template <bool Throws, class Element, class Read>
Range<Element, Read, Throws> MakeRange(Result<uint32_t> count, Read read) {
    return {std::move(count), std::move(read)};
}

// The outputs that make an element.
template <class Element>
std::tuple<Element&> Outputs(Element& element) {
    return std::tie(element);
}
inline auto Outputs(Extension& e) { return std::tie(e.oid, e.critical, e.value); }
inline auto Outputs(GeneralName& e) { return std::tie(e.alternative, e.value); }
inline auto Outputs(AccessDescription& e) { return std::tie(e.method, e.location); }
inline auto Outputs(DistributionPoint& e) { return std::tie(e.fullName, e.relativeName, e.reasons, e.crlIssuer); }

// A list by its two functions; the index is the last argument of the getter.
template <bool Throws, class Element, class Count, class Item, class Object, class... Arguments>
auto ListOf(Count count, Item item, Object object, Arguments... arguments) {
    return MakeRange<Throws, Element>(nothrow::Get(count, object, arguments...), [=](uint32_t index, Element& element) {
        return Store(item, Outputs(element), object, arguments..., index);
    });
}

// The type of a list's elements, and its functions.
template <class E, auto C, auto I>
struct ItemsOf {
    using Element = E;
    static constexpr auto kCount = C;
    static constexpr auto kItem = I;
};
template <class T>
struct Items {
    static_assert(!std::is_same_v<T, T>, "Members doesn't know this list; List takes any count and getter");
};
// clang-format off
template <> struct Items<Certificates> : ItemsOf<Certificate*, GetCertificatesCount, GetCertificatesCertificate> {};
template <> struct Items<X509Crls> : ItemsOf<X509Crl*, GetX509CrlsCount, GetX509CrlsCrl> {};
template <> struct Items<X509GeneralNames> : ItemsOf<GeneralName, GetX509GeneralNameCount, GetX509GeneralName> {};
template <> struct Items<PKIFreeText> : ItemsOf<std::string, GetPKIFreeTextStringCount, GetPKIFreeTextString> {};
template <> struct Items<OctetStrings> : ItemsOf<Bytes, GetOctetStringsCount, GetOctetStringsValue> {};
template <> struct Items<SeveralData>
    : ItemsOf<CmsContentInfo*, GetSeveralDataContentInfoCount, GetSeveralDataContentInfo> {};
template <> struct Items<CmsSignedData>
    : ItemsOf<CmsSignerInfo*, GetCmsSignedDataSignerInfosCount, GetCmsSignedDataSignerInfo> {};
template <> struct Items<OcspBasicResponse>
    : ItemsOf<OcspSingleResponse*, GetOcspBasicResponseSingleResponsesCount, GetOcspBasicResponseSingleResponse> {};
template <> struct Items<OcspBasicResponses>
    : ItemsOf<OcspBasicResponse*, GetOcspBasicResponsesCount, GetOcspBasicResponsesResponse> {};
template <> struct Items<ExtensionExtendedKeyUsage>
    : ItemsOf<Oid, GetExtensionExtendedKeyUsageCount, GetExtensionExtendedKeyUsage> {};
template <> struct Items<ExtensionCertificatePolicies>
    : ItemsOf<Oid, GetExtensionPolicyInformationCount, GetExtensionPolicyInformation> {};
template <> struct Items<ExtensionAuthorityInformationAccess>
    : ItemsOf<AccessDescription, GetExtensionAuthorityInformationAccessCount, GetExtensionAuthorityInformationAccess> {};
template <> struct Items<ExtensionCrlDistributionPoints>
    : ItemsOf<DistributionPoint, GetExtensionCrlDistributionPointsCount, GetExtensionCrlDistributionPoint> {};
// clang-format on

// The extensions of a document, or the handle itself. A request holds them encoded, so that they are the caller's.
inline Result<X509Extensions> ExtensionsOf(X509Extensions extensions) { return extensions; }
inline auto ExtensionsOf(const Certificate* object) { return nothrow::Get(GetCertificateExtensions, object); }
inline auto ExtensionsOf(const X509Crl* object) { return nothrow::Get(GetX509CrlExtensions, object); }
inline auto ExtensionsOf(const OcspRequest* object) { return nothrow::Get(GetOcspRequestExtensions, object); }
inline auto ExtensionsOf(const OcspBasicResponse* object) {
    return nothrow::Get(GetOcspBasicResponseExtensions, object);
}
inline auto ExtensionsOf(OcspSingleResponse* object) { return nothrow::Get(GetOcspSingleResponseExtensions, object); }
inline Result<Handle<X509Extensions>> ExtensionsOf(const PKCS10CertReq* object) {
    auto extensions = nothrow::Get(GetPKCS10CertReqExtensions, object);
    // A request that asks for none.
    if (extensions.status() == StatusNotFound) return nothrow::Create<X509Extensions>();
    return extensions;
}

template <bool Throws, class Object>
auto MakeExtensions(const Object& object) {
    auto owner = ExtensionsOf(PointerTo(object));
    Result<uint32_t> count =
        owner ? nothrow::Get(GetX509ExtensionsExtensionsCount, *owner) : Result<uint32_t>(owner.failure());
    auto read = [extensions = std::move(owner)](uint32_t index, Extension& element) {
        return Store(GetX509ExtensionsExtension, Outputs(element), *extensions, index);
    };
    return MakeRange<Throws, Extension>(std::move(count), std::move(read));
}

template <bool Throws>
auto MakeAttributes(RsaAttributes attributes) {
    return MakeRange<Throws, Attribute>(
        nothrow::Get(GetRsaAttributesAttributesCount, attributes),
        [attributes](uint32_t index, Attribute& element) -> Result<void> {
            element.index = index;
            Result<void> read = nothrow::GetInto(element.oid, GetRsaAttributesAttributeOid, attributes, index);
            const auto count = nothrow::Get(GetRsaAttributesAttributeValuesCount, attributes, index);
            if (!read || !count) return read ? Result<void>(count.failure()) : read;
            element.values.resize(*count);
            for (uint32_t i = 0; i < *count && read; ++i) {
                read = nothrow::GetInto(element.values[i], GetRsaAttributesAttributeValue, attributes, index, i);
            }
            return read;
        });
}

template <bool Throws>
auto MakeRevoked(const X509Crl* crl) {
    return MakeRange<Throws, RevokedCertificate>(
        nothrow::Get(GetX509CrlRevokedCertificateCount, crl),
        [crl](uint32_t index, RevokedCertificate& element) -> Result<void> {
            Result<void> read =
                nothrow::GetInto(element.serialNumber, GetX509CrlRevokedCertificateSerialNumber, crl, index);
            if (read) {
                read = nothrow::GetInto(element.revocationDate, GetX509CrlRevokedCertificateRevokationDate, crl, index);
            }
            if (read) read = nothrow::GetInto(element.extensions, GetX509CrlRevokedCertificateExtensions, crl, index);
            return read;
        });
}

template <bool Throws, class Object>
auto MakeMembers(const Object& object) {
    using T = std::remove_const_t<std::remove_pointer_t<decltype(PointerTo(object))>>;
    return ListOf<Throws, typename Items<T>::Element>(Items<T>::kCount, Items<T>::kItem,
                                                      static_cast<const T*>(PointerTo(object)));
}

template <bool Throws, class Count, class Item, class Object, class... Arguments>
auto MakeList(Count count, Item item, const Object& object, Arguments... arguments) {
    using Element = std::decay_t<decltype(nothrow::Get(item, PointerTo(object), arguments..., 0u).value())>;
    return MakeRange<Throws, Element>(
        nothrow::Get(count, PointerTo(object), arguments...),
        [item, object = PointerTo(object), arguments...](uint32_t index, Element& element) -> Result<void> {
            auto got = nothrow::Get(item, object, arguments..., index);
            if (!got) return got.failure();
            element = *std::move(got);
            return {};
        });
}

}  // namespace detail

namespace nothrow {

/**
 * Extensions lists those of a certificate, a CRL, a request, an OCSP message or a handle of them, as Extension. Objects
 * of all the functions below are handles or pointers.
 */
template <class Object>
auto Extensions(const Object& object) {
    return detail::MakeExtensions<false>(object);
}

/** Attributes lists those of a set, as Attribute. */
template <class Object = RsaAttributes>
auto Attributes(const Object& attributes) {
    return detail::MakeAttributes<false>(detail::PointerTo(attributes));
}

/** Revoked lists the entries of a CRL, as RevokedCertificate. */
template <class Object>
auto Revoked(const Object& crl) {
    return detail::MakeRevoked<false>(detail::PointerTo(crl));
}

/**
 * Members lists what an object is a list of: certificates, CRLs, general names (GeneralName), texts (std::string), OCSP
 * answers, signers, purposes of keys and policies (Oid), descriptions of access (AccessDescription), distribution
 * points (DistributionPoint). Objects are lent.
 */
template <class Object>
auto Members(const Object& object) {
    return detail::MakeMembers<false>(object);
}

/**
 * List makes a range of any two functions, one for the number of elements and one whose last argument is the index:
 * List(GetCmsSignedDataSignerInfosCount, GetCmsSignedDataSignerInfo, signedData). Elements are what Get returns.
 */
template <class Count, class Item, class Object, class... Arguments>
auto List(Count count, Item item, const Object& object, Arguments... arguments) {
    return detail::MakeList<false>(count, item, object, arguments...);
}

}  // namespace nothrow

/* The same, throwing Error. */
#if defined(__cpp_exceptions)
template <class Object>
auto Extensions(const Object& object) {
    return detail::MakeExtensions<true>(object);
}
template <class Object = RsaAttributes>
auto Attributes(const Object& attributes) {
    return detail::MakeAttributes<true>(detail::PointerTo(attributes));
}
template <class Object>
auto Revoked(const Object& crl) {
    return detail::MakeRevoked<true>(detail::PointerTo(crl));
}
template <class Object>
auto Members(const Object& object) {
    return detail::MakeMembers<true>(object);
}
template <class Count, class Item, class Object, class... Arguments>
auto List(Count count, Item item, const Object& object, Arguments... arguments) {
    return detail::MakeList<true>(count, item, object, arguments...);
}
#endif

}  // namespace tlvforge

#endif
