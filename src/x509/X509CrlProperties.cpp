#include "tlvforge/crl.h"

#include "common/times.h"
#include "engine/header.h"
#include "x509/crl.schema.h"
#include "x509/fields.h"

using namespace tlvforge;

namespace {

// A field of tbsCertList.
template <auto... Members, class Record>
auto Tbs(Record* crl, Place place = Place::Here()) {
    return At<&X509Crl::tbsCertList, Members...>(crl, place);
}

template <class Set>
Status SetSignatureAlgorithm(X509Crl* crl, const Set& set, Place place = Place::Here()) {
    return SetSignatureAlgorithms(Tbs<&TBSCertList::signature>(crl, place),
                                  At<&X509Crl::signatureAlgorithm>(crl, place), set);
}

// ---- Lookup --------------------------------------------------------------------------------------------------------

constexpr uint32_t kNameLimit = 1500;  // of names and of extension values
constexpr uint32_t kSerialLimit = 150;

// 2.5.29.29
constexpr const Asn1Value& kCertificateIssuer = schema::ConstantValue<Asn1KindObjectIdentifier, 0x55, 0x1D, 0x1D>;

Status Read(const Asn1Value* value, uint32_t limit, Bytes* bytes) {
    if (value == nullptr || HasLostBytes(value)) return Fail(StatusAbsent);
    if (value->length > limit) return Fail(StatusBufferTooSmall);
    *bytes = {value->data, value->length};
    return StatusOk;
}

// Takes an element off the front of the bytes, if one with this identifier stands there in the usual form. Others are
// left to the decoder.
bool TakeElement(Bytes* bytes, uint8_t identifier, Bytes* content) {
    const uint8_t* const end = bytes->data + bytes->length;
    const uint8_t* at = nullptr;
    uint32_t length = 0;
    if (!ReadUsualLength(bytes->data, end, &at, &length) || bytes->data[0] != identifier) return false;
    if (length > static_cast<uint64_t>(end - at)) return false;
    *content = {at, length};
    *bytes = {at + length, static_cast<uint32_t>(end - at) - length};
    return true;
}

// The issuer that the entries belong to while they are walked: the CRL's own, until one carries another in a
// certificateIssuer extension (RFC 5280, 5.3.3). Walking large lists is what a CRL is for: nothing is allocated, and no
// failure recorded, for the entries that have nothing unusual.
class IssuerInForce {
public:
    Status Begin(const X509Name* own) { return EncodeX509Name(own, own_, &length_); }

    Status Follow(const X509ExtensionList* extensions) {
        for (uint32_t i = 0; i < GetAsn1ListLength(extensions); ++i) {
            const X509Extension* extension = extensions->At(i);
            if (extension == nullptr || extension->extnID == nullptr) continue;
            if (EqualRecords(*extension->extnID, kCertificateIssuer)) return ReadNames(extension->extnValue);
        }
        return StatusOk;
    }

    bool Is(const uint8_t* name, uint32_t length) const { return SameBytes(name_, length_, name, length); }

private:
    Status ReadNames(const Asn1Value* extnValue) {
        Bytes value{};
        if (const Status status = Read(extnValue, kNameLimit, &value)) return status;
        return TakeDirectoryNames(value) ? StatusOk : DecodeNames(value);
    }

    // False for a value with anything but directory names in the definite form, or with bytes after a name. What was
    // taken of it until then is taken again by DecodeNames.
    bool TakeDirectoryNames(Bytes value) {
        Bytes names{}, name{};
        if (!TakeElement(&value, 0x30, &names)) return false;
        while (names.length != 0) {
            if (!TakeElement(&names, 0xA0 | X509GeneralNameDirectoryName, &name)) return false;
            Bytes rest = name, rdns{};
            if (!TakeElement(&rest, 0x30, &rdns) || rest.length != 0) return false;
            memcpy(carried_, name.data, name.length);
            Carry(name.length);
        }
        return true;
    }

    // Each name is read over the one before it, and only a directory name sets the length. A name of another type
    // thereby spoils a carried issuer that is in force: see docs/oddities.md.
    Status DecodeNames(const Bytes& value) {
        Tree<X509GeneralNames> names;
        Status status = value.length == 0 ? Fail(StatusBadEncoding) : names.Decode(value.data, value.length);
        for (uint32_t i = 0; status == StatusOk && i < GetAsn1ListLength(names.Get()); ++i) {
            uint32_t alternative = 0, length = sizeof carried_;
            status = GetX509GeneralName(names.Get(), i, &alternative, carried_, &length);
            if (status == StatusOk && alternative == X509GeneralNameDirectoryName) Carry(length);
        }
        return status;
    }

    void Carry(uint32_t length) {
        name_ = carried_;
        length_ = length;
    }

    uint8_t own_[kNameLimit];
    uint8_t carried_[kNameLimit] = {};
    const uint8_t* name_ = own_;
    uint32_t length_ = sizeof own_;
};

}  // namespace

Status GetX509CrlVersion(const X509Crl* crl, int32_t* version) {
    if (AnyNull(crl, version)) return Fail(StatusBadArgument);
    return GetInt32(Tbs<&TBSCertList::version>(crl), version);
}

Status SetX509CrlVersion(X509Crl* crl, uint32_t version) {
    if (crl == nullptr || version > 1) return Fail(StatusBadArgument);
    return SetInt32(Tbs<&TBSCertList::version>(crl), static_cast<int32_t>(version));
}

Status GetX509CrlIssuer(X509Crl* crl, X509Name** name) {
    if (AnyNull(crl, name)) return Fail(StatusBadArgument);
    return GetName(Tbs<&TBSCertList::issuer>(crl), name);
}

Status SetX509CrlIssuer(X509Crl* crl, const X509Name* name) {
    if (AnyNull(crl, name)) return Fail(StatusBadArgument);
    return CopyName(Tbs<&TBSCertList::issuer>(crl), name);
}

Status GetX509CrlThisUpdate(const X509Crl* crl, LibraryTime* time) {
    if (AnyNull(crl, time)) return Fail(StatusBadArgument);
    return GetTime(Tbs<&TBSCertList::thisUpdate>(crl), time);
}

Status GetX509CrlNextUpdate(const X509Crl* crl, LibraryTime* time) {
    if (AnyNull(crl, time)) return Fail(StatusBadArgument);
    return GetTime(Tbs<&TBSCertList::nextUpdate>(crl), time);
}

Status SetX509CrlThisUpdate(X509Crl* crl, const LibraryTime* time) {
    if (crl == nullptr) return Fail(StatusBadArgument);
    return SetTime(Tbs<&TBSCertList::thisUpdate>(crl), time);
}

Status SetX509CrlNextUpdate(X509Crl* crl, const LibraryTime* time) {
    if (crl == nullptr) return Fail(StatusBadArgument);
    const Slot<Time> field = Tbs<&TBSCertList::nextUpdate>(crl);
    if (field || field.cell == nullptr) return SetTime(field, time);
    Tree<Time> choice(AllocChoice<Time>());
    if (!choice) return Fail(StatusOutOfMemory);
    if (const Status status = LibraryTimeToAsn1Time(time, choice.Get())) return status;
    *field.cell = choice.Take();
    return StatusOk;
}

Status RemoveX509CrlNextUpdate(X509Crl* crl) {
    if (crl == nullptr) return Fail(StatusBadArgument);
    return Remove(Tbs<&TBSCertList::nextUpdate>(crl));
}

Status GetX509CrlExtensions(const X509Crl* crl, X509Extensions* extensions) {
    if (AnyNull(crl, extensions)) return Fail(StatusBadArgument);
    return Borrow(Tbs<&TBSCertList::crlExtensions>(crl), extensions);
}

Status SetX509CrlAuthorityKeyIdentifier(X509Crl* crl, Certificate* issuerCertificate) {
    if (AnyNull(crl, issuerCertificate)) return Fail(StatusBadArgument);
    AuthorityIdentity identity;
    if (const Status status = identity.ReadFrom(issuerCertificate)) return status;
    return SetX509CrlAuthorityKeyIdentifier2(crl, identity.keyId, identity.keyIdLength, identity.issuer,
                                             identity.serial, identity.serialLength);
}

Status SetX509CrlAuthorityKeyIdentifier2(X509Crl* crl, const uint8_t* keyId, uint32_t keyIdLength,
                                         const X509Name* issuer, const uint8_t* serial, uint32_t serialLength) {
    const AuthorityParts parts = {{keyId, keyIdLength}, issuer, {serial, serialLength}};
    // Unlike in certificates, a key identifier can't stand alone: see docs/oddities.md.
    if (AnyNull(crl, issuer) || !parts.AreGiven()) return Fail(StatusBadArgument);
    return SetAuthorityKeyIdentifier(Tbs<&TBSCertList::crlExtensions>(crl), parts);
}

Status FindX509CrlFind(X509Crl* crl, const X509Name* issuer, const uint8_t* serial, uint32_t serialLength,
                       uint32_t* index) {
    if (AnyNull(crl, issuer, serial, index)) return Fail(StatusBadArgument);
    Block name;
    uint32_t nameLength = 0;
    X509Name* own = nullptr;
    IssuerInForce inForce;
    if (const Status status = Asn1Encode(issuer, &itemOf<X509Name>, name.Slot(), &nameLength)) return status;
    if (const Status status = GetX509CrlIssuer(crl, &own)) return status;
    if (const Status status = inForce.Begin(own)) return status;

    const X509RevokedCertificates* entries = crl->tbsCertList->revokedCertificates;
    const uint32_t count = GetAsn1ListLength(entries);
    for (uint32_t i = 0; i < count; ++i) {
        const X509RevokedCertificate* entry = entries->At(i);
        if (entry == nullptr) return Fail(StatusAbsent);
        Bytes number{};
        if (const Status status = inForce.Follow(entry->crlEntryExtensions.list)) return status;
        if (const Status status = Read(entry->userCertificate, kSerialLimit, &number)) return status;
        if (!SameBytes(serial, serialLength, number.data, number.length)) continue;
        if (!inForce.Is(name.Bytes(), nameLength)) continue;
        *index = i;
        return StatusOk;
    }
    return Fail(StatusNotFound);
}

Status GetX509CrlSignature(const X509Crl* crl, uint8_t* signature, uint32_t* length) {
    if (AnyNull(crl, length)) return Fail(StatusBadArgument);
    return GetBits(At<&X509Crl::signature>(crl), signature, length);
}

Status SetX509CrlSignature(X509Crl* crl, const uint8_t* signature, uint32_t length) {
    if (AnyNull(crl, signature)) return Fail(StatusBadArgument);
    return SetBits(At<&X509Crl::signature>(crl), signature, length);
}

Status GetX509CrlSignatureAlgorithmOidAndParameters(const X509Crl* crl, uint8_t* oid, uint32_t* oidLength,
                                                    uint8_t* parameters, uint32_t* parametersLength) {
    if (AnyNull(crl, oidLength)) return Fail(StatusBadArgument);
    return GetAlgorithm(Tbs<&TBSCertList::signature>(crl), {oid, oidLength}, {parameters, parametersLength});
}

Status SetX509CrlSignatureAlgorithmOidAndParameters(X509Crl* crl, const uint8_t* oid, const uint8_t* parameters,
                                                    uint32_t length) {
    if (AnyNull(crl, oid)) return Fail(StatusBadArgument);
    return SetSignatureAlgorithm(crl, [=](const auto& algorithm) {
        return SetAlgorithm(algorithm, oid, {parameters, length});
    });
}

Status SetX509CrlGostR34102001SignatureAlgorithmIDAndParameters(X509Crl* crl, uint32_t algorithmId,
                                                                uint8_t parametersForm, uint32_t publicKeyParamSet,
                                                                uint32_t digestParamSet, uint32_t encryptionParamSet) {
    if (crl == nullptr) return Fail(StatusBadArgument);
    const GostSets sets = {parametersForm, publicKeyParamSet, digestParamSet, encryptionParamSet};
    return SetSignatureAlgorithm(crl,
                                 [&](const auto& algorithm) { return SetGostAlgorithm(algorithm, algorithmId, sets); });
}

Status SetX509CrlGostR34102001SignatureAlgorithmID(X509Crl* crl, uint32_t algorithmId, uint32_t parametersForm) {
    // The low byte alone counts: see docs/oddities.md.
    const auto form = static_cast<uint8_t>(parametersForm);
    if (form != ParametersFormNull && form != ParametersFormAbsent) return Fail(StatusBadArgument);
    return SetX509CrlGostR34102001SignatureAlgorithmIDAndParameters(crl, algorithmId, form, 0, 0, 0);
}
