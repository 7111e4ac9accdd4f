/* Owners of the library's objects. */
#ifndef TLVFORGE_CPP_HANDLE_HPP
#define TLVFORGE_CPP_HANDLE_HPP

#include <memory>
#include <type_traits>

#include "tlvforge/tlvforge.h"

namespace tlvforge {
namespace detail {

// The functions that belong to a type by their names; null for one that doesn't exist.
template <class T>
struct Functions {
    static constexpr bool kExists = false;
};

#define TLVFORGE_TYPE(type, free, create, decode, encode, copy) \
    template <>                                                 \
    struct Functions<type> {                                    \
        static constexpr bool kExists = true;                   \
        static constexpr auto kFree = free;                     \
        static constexpr auto kCreate = create;                 \
        static constexpr auto kDecode = decode;                 \
        static constexpr auto kEncode = encode;                 \
        static constexpr auto kCopy = copy;                     \
    };
#define TLVFORGE_CREATED(type) TLVFORGE_TYPE(type, Free##type, Create##type, nullptr, nullptr, nullptr)
#define TLVFORGE_CODED(type, copy) TLVFORGE_TYPE(type, Free##type, Create##type, Decode##type, Encode##type, copy)

TLVFORGE_CREATED(Accuracy)
TLVFORGE_CODED(Certificate, CreateCertificateCopy)
TLVFORGE_CODED(Certificates, CreateCertificatesCopy)
TLVFORGE_CODED(CmsContentInfo, CreateCmsContentInfoCopy)
TLVFORGE_CODED(CmsEnvelopedData, nullptr)
TLVFORGE_CODED(CmsSignedData, CreateCmsSignedDataCopy)
TLVFORGE_CREATED(CmsSignerInfo)
TLVFORGE_CREATED(CrlListIDs)
TLVFORGE_TYPE(CrlOcspRefs, FreeCrlOcspRefs, CreateCrlOcspRefs, DecodeRsaAttributeCompleteRevocationRefs,
              EncodeRsaAttributeCompleteRevocationRefs, nullptr)
TLVFORGE_CREATED(ESSCertIDs)
TLVFORGE_CREATED(ESSCertIDsV2)
TLVFORGE_CODED(ExtensionAuthorityInformationAccess, nullptr)
TLVFORGE_CODED(ExtensionCertificatePolicies, nullptr)
TLVFORGE_CODED(ExtensionCrlDistributionPoints, nullptr)
TLVFORGE_CODED(ExtensionExtendedKeyUsage, nullptr)
TLVFORGE_CODED(ExtensionOcspCheckFileExtResults, nullptr)
TLVFORGE_CODED(ExtensionStoreCertificates, nullptr)
TLVFORGE_CODED(ExtensionStoreOcspRequestDocuments, nullptr)
TLVFORGE_CODED(ExtensionStorePrivateKeyContexts, nullptr)
TLVFORGE_CODED(GostR3410KeyTransport, nullptr)
TLVFORGE_CODED(KeyTrans, nullptr)
TLVFORGE_CREATED(LibraryPreciseTime)
TLVFORGE_CREATED(LibraryTime)
TLVFORGE_CODED(OcspBasicResponse, nullptr)
TLVFORGE_CODED(OcspBasicResponses, CreateOcspBasicResponsesCopy)
TLVFORGE_CREATED(OcspListIDs)
TLVFORGE_CODED(OcspRequest, nullptr)
TLVFORGE_CODED(OcspResponse, nullptr)
TLVFORGE_CODED(OcspSingleResponse, nullptr)
TLVFORGE_CREATED(OctetStrings)
TLVFORGE_CODED(OtherCertIDs, nullptr)
TLVFORGE_CODED(PKCS10CertReq, CreatePKCS10CertReqCopy)
TLVFORGE_CODED(PKIFreeText, CreatePKIFreeTextCopy)
TLVFORGE_TYPE(RsaAttribute, FreeRsaAttribute, nullptr, DecodeRsaAttribute, EncodeRsaAttribute, nullptr)
TLVFORGE_TYPE(RsaAttributesCell, FreeRsaAttributes, CreateRsaAttributes, DecodeRsaAttributes, EncodeRsaAttributes,
              nullptr)
TLVFORGE_CODED(SeveralData, nullptr)
TLVFORGE_CODED(X509Crl, CreateX509CrlCopy)
TLVFORGE_CODED(X509Crls, CreateX509CrlsCopy)
TLVFORGE_TYPE(X509Extension, FreeX509Extension, nullptr, DecodeX509Extension, EncodeX509Extension, nullptr)
TLVFORGE_TYPE(X509ExtensionsCell, FreeX509Extensions, CreateX509Extensions, DecodeX509Extensions, EncodeX509Extensions,
              nullptr)
TLVFORGE_TYPE(X509GeneralName, FreeX509GeneralName, CreateX509GeneralName, nullptr, nullptr, CreateX509GeneralNameCopy)
TLVFORGE_CODED(X509GeneralNames, CopyX509GeneralNames)
TLVFORGE_CODED(X509Name, CopyX509Name)
TLVFORGE_TYPE(X509RevokedCertificates, FreeX509RevokedCertificates, CreateX509RevokedCertificates, nullptr,
              EncodeX509RevokedCertificates, nullptr)

#undef TLVFORGE_CODED
#undef TLVFORGE_CREATED
#undef TLVFORGE_TYPE

// A handle of the C interface, as X509Extensions, points to a cell in a document that was lent more often than not.
template <class T>
inline constexpr bool kIsCell = std::is_same_v<T, X509ExtensionsCell> || std::is_same_v<T, RsaAttributesCell>;

}  // namespace detail

namespace types {

/** Free calls the Free function of a type. */
struct Free {
    template <class T>
    void operator()(T* object) const noexcept {
        static_assert(detail::Functions<T>::kExists, "no Free function of the library takes this type");
        static_cast<void>(detail::Functions<T>::kFree(object));
    }
};

/**
 * Handle owns an object of the library: Handle<Certificate>, Handle<X509Extensions>. It is a unique_ptr of the size of
 * a pointer. Calls take it as it is; those that adopt an object take it by std::move, and leave it empty after success.
 */
template <class T>
using Handle = std::unique_ptr<std::remove_pointer_t<T>, Free>;

}  // namespace types

using namespace types;

}  // namespace tlvforge

#endif
