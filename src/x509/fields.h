// What certificates, CRLs and requests do alike with single fields.
#pragma once

#include "engine/access.h"
#include "names/names.schema.h"
#include "x509/algorithm.h"
#include "x509/extension.schema.h"

namespace tlvforge {

// Names within a CHOICE of one alternative. GetName creates an empty name where there is none.
Status GetName(const Part<Name>& field, X509Name** name);
// The name may be the field's own. A failed copy leaves the field empty.
Status CopyName(const Part<Name>& field, const X509Name* name);
Status MoveName(const Part<Name>& field, X509Name* name);

Status GetTime(const Part<Time>& field, LibraryTime* time);
Status SetTime(const Part<Time>& field, const LibraryTime* time);

// The key of a SubjectPublicKeyInfo as a GOST key, an OCTET STRING within the BIT STRING.
// An absent key is recorded as StatusAbsent and answered with StatusBadEncoding, the status of decoding no bytes: see
// docs/oddities.md. A key that is too long is recorded at the place of the call.
Status GetGostPublicKey(const Part<Asn1BitString>& field, uint8_t* key, uint32_t* length, Place place = Place::Here());
Status SetGostPublicKey(const Slot<Asn1BitString>& field, const uint8_t* key, uint32_t length,
                        Place place = Place::Here());

// Writes a signature algorithm into the signed part and then beside the signature, so that the two agree. If the second
// write fails, the first stays.
template <class Set>
Status SetSignatureAlgorithms(const Part<AlgorithmIdentifier>& inner, const Part<AlgorithmIdentifier>& outer,
                              const Set& set) {
    if (!inner || !outer) return inner.Absent();
    if (const Status status = set(inner)) return status;
    return set(outer);
}

// Puts a copy of a list into the place of another, which is freed in any case. The source may be the field's own.
template <class List>
Status CopyList(const List* source, List** field) {
    Tree<List> copy;
    const Status status = copy.CopyOf(source);
    FreeField(field);
    *field = copy.Take();
    return status;
}

// A copy of extensions that need not be given. An empty handle is StatusBadArgument, by the copy.
inline Status CopyExtensions(X509Extensions source, X509ExtensionList** field) {
    return source != nullptr ? CopyTree(source->list, field) : StatusOk;
}

// Removes the extensions with an OID, by RemoveX509ExtensionsExtension2, and adds a non-critical one.
Status ReplaceExtension(X509Extensions extensions, const uint8_t* oid, Bytes value);

// What an authority key identifier is made of. Each part may be null.
struct AuthorityParts {
    Bytes keyId;
    const X509Name* issuer;
    Bytes serial;

    // Without a key identifier the other two have to be there.
    bool AreGiven() const { return keyId.data != nullptr || !AnyNull(issuer, serial.data); }
};

// Extension 2.5.29.35. What the document lacks is noticed only after the value has been made.
Status SetAuthorityKeyIdentifier(const Part<X509ExtensionsCell>& extensions, const AuthorityParts& parts);

// The parts that an issuer's certificate supplies.
struct AuthorityIdentity {
    const uint8_t* keyId = nullptr;  // the bytes below, or null: any failure to read one means none
    uint32_t keyIdLength = sizeof keyIdBytes;
    X509Name* issuer = nullptr;  // of the certificate's issuer, lent
    uint32_t serialLength = sizeof serial;
    uint8_t keyIdBytes[32];
    uint8_t serial[64];

    Status ReadFrom(Certificate* issuerCertificate, Place place = Place::Here());
};

}  // namespace tlvforge
