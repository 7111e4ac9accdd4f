// What signed and enveloped documents do alike: identifiers of signers and recipients, sets of encoded certificates and
// CRLs, content; and signed documents as files have them. Failures are recorded at the place of the caller: what the
// document lacks at that of the part, anything else at that of the call.
#pragma once

#include "cms/cms.schema.h"
#include "engine/access.h"

namespace tlvforge {

// The two forms of an identifier; the one that isn't there is null. StatusAbsent for an identifier that is absent, has
// no value, or lacks its issuer or serialNumber; StatusBadAlternative. An issuer without a name gets an empty one.
// The length that belongs to the other form, if it is given, becomes 0, also before a missing issuer is found.
struct IdentifierParts {
    X509Name* issuer = nullptr;               // lent
    const Asn1Value* serialNumber = nullptr;  // with the issuer
    const Asn1Value* keyId = nullptr;

    Status Of(const Part<EntityIdentifier>& identifier, uint32_t* serialLength, uint32_t* keyIdLength,
              Place place = Place::Here());
};

// The name may be the identifier's own.
Status SetIssuerAndSerialNumber(const Part<EntityIdentifier>& identifier, const X509Name* issuer, Bytes serial);
// After a failed allocation the old value is gone and the selector remains.
Status SetSubjectKeyIdentifier(const Part<EntityIdentifier>& identifier, Bytes keyId);

// A member of a certificate set, lent, with its kind code.
Status GetEncodedCertificate(const Part<CertificateSet>& set, uint32_t index, uint8_t* kind, Bytes* certificate,
                             Place place = Place::Here());

bool IsCertificateKind(uint8_t kind);
bool IsCrlKind(uint8_t kind);
// Adds a copy, whose first byte is that of the kind, unless the set has it. The certificate isn't empty.
Status AddEncodedCertificate(CertificateSet* set, uint8_t kind, Bytes certificate, Place place = Place::Here());
// Adds a choice without an alternative: it counts, and nothing that holds it can be encoded or copied.
Status AddEncodedCrl(RevocationInfoChoices* set, Place place = Place::Here());

// Replaces content, which may be large: the old one is freed first. Null or length 0 leaves none.
Status ReplaceContent(const Slot<Asn1Value>& field, Bytes content);

// A ContentInfo with a SignedData. Another type is StatusWrongContentType, no content StatusBadEncoding.
Status DecodeSignedMessage(Bytes message, Tree<CmsSignedData>* signedData, Place place = Place::Here());
// Writes straight into the buffer. A size query measures and writes nothing.
Status EncodeSignedMessage(const CmsSignedData* signedData, uint8_t* buffer, uint32_t* length);

}  // namespace tlvforge
