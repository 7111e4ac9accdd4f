// What makes a signature an advanced one (CAdES, RFC 5126).
#pragma once

#include "message.h"
#include "time_stamp.h"

namespace examples {

inline OwnedGeneralNames MakeDirectoryName(const X509Name* name) {
    const Bytes der = Require(Get(EncodeX509Name, name), "encoding a name");
    OwnedGeneralNames names;
    Require(CreateX509GeneralNames(names.Out()), "making general names");
    Require(AddX509GeneralName(names, X509GeneralNameDirectoryName, der.data(), Size(der)), "adding a general name");
    return names;
}

inline void AddAttribute(RsaAttributes attributes, const char* oid, const Bytes& value) {
    uint32_t index = 0;
    Require(AddRsaAttributesAttributeWithValue(attributes, Oid(oid).data(), &index, value.data(), Size(value)),
            "adding an attribute");
}

// CAdES-BES: a signed attribute with the digest of the signer's certificate, so that no other one can take its place.
inline OwnedAttributes MakeSigningCertificateAttribute(const Identity& signer) {
    const Bytes digest = Digest(signer.suite, signer.Der());
    const Bytes serial = Require(Get(GetCertificateSerialNumber, signer.certificate), "reading the serial number");
    X509Name* issuer = nullptr;
    Require(GetCertificateIssuer(signer.certificate, &issuer), "reaching the issuer");
    Owned<ESSCertIDsV2, FreeESSCertIDsV2> list;
    Require(CreateESSCertIDsV2(list.Out()), "making a list of certificates");
    Require(AddESSCertIDv2ToList(list, DigestOid(signer.suite).data(), nullptr, 0, digest.data(), Size(digest),
                                 MakeDirectoryName(issuer), serial.data(), Size(serial)),
            "adding a certificate to the list");
    OwnedAttributes attributes;
    Require(CreateRsaAttributes(attributes.Out()), "making attributes");
    AddAttribute(attributes, "1.2.840.113549.1.9.16.2.47",  // id-aa-signingCertificateV2
                 Require(Get(EncodeRsaAttributeSigningCertificateV2Value, list, nullptr), "encoding an attribute"));
    return attributes;
}

inline constexpr char kTimeStampToken[] = "1.2.840.113549.1.9.16.2.14";  // id-aa-timeStampToken

inline Bytes SignatureOf(const CmsSignerInfo* signer) {
    return Require(Get(GetCmsSignerInfoSignature, signer), "reading a signature");
}

inline RsaAttributes UnsignedAttributesOf(CmsSignerInfo* signer) {
    RsaAttributes attributes = nullptr;
    Require(GetCmsSignerInfoUnsignedAttributes(signer, &attributes), "reaching the unsigned attributes");
    return attributes;
}

// CAdES-T: an unsigned attribute of the first signer proves that the signature existed by then.
inline Bytes AddTimeStamp(const Bytes& message, const Identity& timeStamper) {
    const OwnedSignedData signedData = ReadMessage(message);
    CmsSignerInfo* const signer = SignerOf(signedData, 0);
    const Bytes token = GetTimeStamp(timeStamper, SignatureOf(signer));
    AddAttribute(UnsignedAttributesOf(signer), kTimeStampToken, token);
    return WriteMessage(signedData);
}

// The reverse: the first signer's time-stamp, and the signature that it was given to.
struct TimeStamp {
    Bytes token, signature;
};

inline TimeStamp ReadTimeStamp(const Bytes& message) {
    const OwnedSignedData signedData = ReadMessage(message);
    CmsSignerInfo* const signer = SignerOf(signedData, 0);
    const RsaAttributes attributes = UnsignedAttributesOf(signer);
    uint32_t index = 0;
    Require(FindRsaAttributesAttribute(attributes, Oid(kTimeStampToken).data(), &index), "finding a time-stamp");
    return {Require(Get(GetRsaAttributesAttributeValue, attributes, index, 0), "reading a time-stamp"),
            SignatureOf(signer)};
}

}  // namespace examples
