// What signed and enveloped documents do alike: identifiers of signers and recipients, sets of encoded certificates and
// CRLs; and signed documents as files have them. Failures are recorded at the place of the caller.
#pragma once

#include "cms/cms.schema.h"
#include "engine/nodes.h"

namespace tlvforge {

// The two forms of an identifier; the one that isn't there is null. 311 for a null identifier or one without a value,
// 306 for another alternative, 311 for a missing issuer or serialNumber. An issuer without a name gets an empty one.
// The length that belongs to the other form, if it is given, becomes 0, before that 311 too.
struct IdentifierParts {
    X509Name* issuer = nullptr;               // lent
    const Asn1Value* serialNumber = nullptr;  // with the issuer
    const Asn1Value* keyId = nullptr;

    Status Of(EntityIdentifier* identifier, uint32_t* serialLength, uint32_t* keyIdLength, Place place = Place::Here());
};

// The name may be the identifier's own. A null identifier is 311.
Status SetIssuerAndSerialNumber(EntityIdentifier* identifier, const X509Name* issuer, const uint8_t* serial,
                                uint32_t serialLength, Place place = Place::Here());
// After status 1 the old value is gone and the selector remains.
Status SetSubjectKeyIdentifier(EntityIdentifier* identifier, const uint8_t* keyId, uint32_t length,
                               Place place = Place::Here());

// Members of a certificate set or CRL set with their kind code. The set is absent: 311.
Status GetEncodedCertificate(const CertificateSet* set, uint32_t index, uint8_t* kind, uint8_t* buffer,
                             uint32_t* length, Place place = Place::Here());
// No member can be read: 302 for every index within the count.
Status GetEncodedCrl(const RevocationInfoChoices* set, uint32_t index, uint8_t* kind, uint8_t* buffer, uint32_t* length,
                     Place place = Place::Here());

// Adds by the rules of the two documents, which differ in their status for a bad kind. The set is made first when it is
// absent, and stays after a failure.
Status AddEncodedCertificate(CertificateSet** set, uint8_t kind, const uint8_t* data, uint32_t length, Status badKind,
                             Place place = Place::Here());
// The new member is a choice without an alternative: it counts, and nothing that holds it can be encoded or copied
// (306).
Status AddEncodedCrl(RevocationInfoChoices** set, uint8_t kind, const uint8_t* data, uint32_t length, Status badKind,
                     Place place = Place::Here());

// A ContentInfo with a SignedData, which the caller owns; null after a failure. Another type is 314, no content 302.
Status DecodeSignedMessage(const uint8_t* data, uint32_t length, CmsSignedData** signedData,
                           Place place = Place::Here());
// Writes straight into the buffer. A size query measures and writes nothing.
Status EncodeSignedMessage(const CmsSignedData* signedData, uint8_t* buffer, uint32_t* length);

}  // namespace tlvforge
