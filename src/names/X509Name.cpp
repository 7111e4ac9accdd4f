#include "tlvforge/names.h"

#include "engine/access.h"
#include "names/names.schema.h"

using namespace tlvforge;

namespace {

// The numbers are the interface's: programs keep them, so rows are only ever appended.
constexpr OidId kNameAttributeTypes[] = {
    {1, Oid<2, 5, 4, 3>},                          // commonName
    {2, Oid<2, 5, 4, 10>},                         // organizationName
    {3, Oid<2, 5, 4, 11>},                         // organizationalUnitName
    {4, Oid<2, 5, 4, 6>},                          // countryName
    {5, Oid<2, 5, 4, 8>},                          // stateOrProvinceName
    {6, Oid<2, 5, 4, 7>},                          // localityName
    {7, Oid<1, 2, 840, 113549, 1, 9, 1>},          // emailAddress
    {8, Oid<2, 5, 4, 4>},                          // surname
    {9, Oid<2, 5, 4, 42>},                         // givenName
    {10, Oid<2, 5, 4, 12>},                        // title
    {11, Oid<0, 9, 2342, 19200300, 100, 1, 25>},   // domainComponent
    {12, Oid<2, 5, 4, 1>},                         // aliasedEntryName
    {13, Oid<1, 3, 6, 1, 5, 5, 7, 9, 1>},          // dateOfBirth
    {14, Oid<2, 5, 4, 36>},                        // userCertificate
    {15, Oid<2, 5, 4, 13>},                        // description
    {16, Oid<1, 3, 6, 1, 5, 5, 7, 9, 3>},          // gender
    {17, Oid<2, 5, 4, 44>},                        // generationQualifier
    {18, Oid<2, 5, 4, 43>},                        // initials
    {19, Oid<1, 3, 6, 1, 4, 1, 42, 2, 11, 2, 1>},  // IP address
    {20, Oid<1, 3, 6, 1, 5, 5, 7, 9, 2>},          // placeOfBirth
    {21, Oid<2, 5, 4, 16>},                        // postalAddress
    {22, Oid<2, 5, 4, 17>},                        // postalCode
    {23, Oid<2, 5, 4, 65>},                        // pseudonym
    {24, Oid<2, 5, 4, 5>},                         // serialNumber
    {25, Oid<2, 5, 4, 9>},                         // streetAddress
    {26, Oid<0, 9, 2342, 19200300, 100, 1, 1>},    // userid
    {27, Oid<2, 5, 4, 33>},                        // roleOccupant
    {28, Oid<2, 5, 4, 32>},                        // owner
    {29, Oid<2, 5, 4, 45>},                        // x500UniqueIdentifier
    {30, Oid<1, 2, 643, 100, 3>},                  // SNILS
    {31, Oid<1, 2, 643, 3, 131, 1, 1>},            // INN
    {32, Oid<1, 2, 643, 100, 1>},                  // OGRN
};

// The parsed header of a value; all zero when it can't be parsed.
struct ValueHeader {
    uint8_t tagClass = 0;
    uint8_t constructedBit = 0;
    uint32_t tagNumber = 0;
    uint32_t contentLength = 0;
    uint32_t headerLength = 0;
};

// A value need not be an element: an ANY takes whatever bytes a program put there. Its content never reaches beyond
// the record.
ValueHeader ReadValueHeader(const Asn1Any* value) {
    ValueHeader header;
    const Status status = GetAsn1AnyInfo(value, &header.tagClass, &header.constructedBit, &header.tagNumber,
                                         &header.contentLength, &header.headerLength);
    if (status != StatusOk) return {};
    const uint32_t rest = value->length - header.headerLength;
    if (header.contentLength > rest) header.contentLength = rest;
    return header;
}

// The RDN that a new entry goes to.
Status ChooseRdn(X509Name* name, int32_t newRdn, RelativeDistinguishedName** rdn) {
    if (newRdn == 0 && name->count == 0) return Fail(StatusBadArgument);
    if (newRdn == 0) return Borrow(MemberAt(name, name->count - 1), rdn);
    Tree<RelativeDistinguishedName> added(AllocList<RelativeDistinguishedName>());
    if (!added) return Fail(StatusOutOfMemory);
    *rdn = added.Get();
    return added.MoveTo(name);
}

// The first byte is left out, so that a PrintableString equals the same bytes as UTF8String: see docs/oddities.md.
Status CompareValues(const Asn1Any* left, const Asn1Any* right) {
    if (left == right) return StatusOk;
    if (AnyNull(left, right) || left->length != right->length) return Fail(StatusNotEqual);
    if (HasLostBytes(left) || HasLostBytes(right)) return Fail(StatusNotEqual);
    const uint32_t length = left->length;
    if (length > 1 && memcmp(left->data + 1, right->data + 1, length - 1) != 0) return Fail(StatusNotEqual);
    return StatusOk;
}

// Walks two lists in step; compare takes two members, null ones included.
template <class Member, class Compare>
Status CompareLists(const ListOf<Member>* left, const ListOf<Member>* right, Compare compare) {
    if (left->count != right->count) return Fail(StatusNotEqual);
    for (uint32_t i = 0; i < left->count; ++i) {
        if (const Status status = compare(left->At(i), right->At(i))) return status;
    }
    return StatusOk;
}

// Attribute types don't count, as string types don't.
Status CompareEntries(const AttributeTypeAndValue* left, const AttributeTypeAndValue* right) {
    if (left == right) return StatusOk;
    if (AnyNull(left, right)) return Fail(StatusNotEqual);
    return CompareValues(left->value, right->value);
}

Status CompareRdns(const RelativeDistinguishedName* left, const RelativeDistinguishedName* right) {
    if (left == right) return StatusOk;
    if (AnyNull(left, right)) return Fail(StatusNotEqual);
    return CompareLists(left, right, CompareEntries);
}

bool IsDigitOrSpace(uint8_t byte) { return (byte >= '0' && byte <= '9') || byte == ' '; }

bool IsPrintableStringByte(uint8_t byte) {
    if (IsDigitOrSpace(byte) || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z')) return true;
    return byte != 0 && strchr("'()+,-./:=?", byte) != nullptr;
}

}  // namespace

Status CreateX509Name(X509Name** out) { return CreateTree(out); }

Status CopyX509Name(const X509Name* source, X509Name** out) { return CopyTree(source, out); }

Status DecodeX509Name(const uint8_t* data, uint32_t length, X509Name** out) { return DecodeTree(data, length, out); }

Status EncodeX509Name(const X509Name* name, uint8_t* buffer, uint32_t* length) {
    return EncodeTree(name, buffer, length);
}

Status FreeX509Name(X509Name* name) { return FreeTree(name); }

Status ClearX509Name(X509Name* name) {
    if (name == nullptr) return Fail(StatusBadArgument);
    ClearList(name);
    return StatusOk;
}

Status GetX509NameRdnCount(const X509Name* name, uint32_t* count) { return GetListCount(name, count); }

Status GetX509NameEntryCount(const X509Name* name, uint32_t rdnIndex, uint32_t* count) {
    if (count == nullptr || !HasIndex(name, rdnIndex)) return Fail(StatusBadArgument);
    return GetCount(MemberAt(name, rdnIndex), count);
}

Status GetX509NameEntryExt(const X509Name* name, uint32_t rdnIndex, uint32_t entryIndex, uint8_t* value,
                           uint32_t* valueLength, uint8_t* tagClass, uint8_t* constructed, uint8_t* tag, uint8_t* oid,
                           uint32_t* oidLength) {
    if (AnyNull(valueLength, tagClass, constructed, tag, oidLength) || !HasIndex(name, rdnIndex)) {
        return Fail(StatusBadArgument);
    }
    const Part<RelativeDistinguishedName> rdn = MemberAt(name, rdnIndex);
    AttributeTypeAndValue* entry = nullptr;
    if (const Status status = GetMember(rdn, entryIndex, &entry)) return status;
    if (AnyNull(entry->type, entry->value) || HasLostBytes(entry->value)) return Fail(StatusAbsent);

    const ValueHeader header = ReadValueHeader(entry->value);
    *tagClass = header.tagClass;
    *constructed = header.constructedBit;
    const uint32_t offered = *valueLength;
    const Status status = GetAsn1Oid(entry->type, oid, oidLength);
    if (status != StatusOk && status != StatusBufferTooSmall) return status;
    // Both buffers or none: with one of them missing this is no size query but a failure, and the tag is kept back.
    // See docs/oddities.md.
    *valueLength = header.contentLength;
    if (status != StatusOk) return status;
    if (value == nullptr && oid == nullptr) return StatusOk;
    if (AnyNull(value, oid) || offered < header.contentLength) return Fail(StatusBufferTooSmall);
    if (header.contentLength != 0) memmove(value, entry->value->data + header.headerLength, header.contentLength);
    *tag = static_cast<uint8_t>(header.tagNumber);
    return StatusOk;
}

Status GetX509NameEntry(const X509Name* name, uint32_t rdnIndex, uint32_t entryIndex, uint8_t* value,
                        uint32_t* valueLength, uint8_t* tag, uint8_t* oid, uint32_t* oidLength) {
    uint8_t tagClass = 0;
    uint8_t constructed = 0;
    return GetX509NameEntryExt(name, rdnIndex, entryIndex, value, valueLength, &tagClass, &constructed, tag, oid,
                               oidLength);
}

Status AddX509NameEntryExt(X509Name* name, const uint8_t* value, uint32_t valueLength, uint8_t tagClass,
                           uint8_t constructed, uint8_t tag, const uint8_t* oid, int32_t newRdn) {
    if (AnyNull(name, value, oid)) return Fail(StatusBadArgument);
    RelativeDistinguishedName* rdn = nullptr;
    if (const Status status = ChooseRdn(name, newRdn, &rdn)) return status;
    // From here on a failure leaves a new RDN in the name, empty.
    Tree<AttributeTypeAndValue> entry(NewRecord<AttributeTypeAndValue>());
    if (!entry) return Fail(StatusOutOfMemory);
    if (const Status status = ReplaceOidField(&entry->type, oid)) return status;
    entry->value = AllocAsn1AnyFromContent(tagClass, constructed, tag, value, valueLength);
    if (entry->value == nullptr) return Fail(StatusOutOfMemory);
    return entry.MoveTo(rdn);
}

Status AddX509NameEntry(X509Name* name, const uint8_t* value, uint32_t valueLength, uint8_t tag, const uint8_t* oid,
                        int32_t newRdn) {
    return AddX509NameEntryExt(name, value, valueLength, Asn1ClassUniversal, 0, tag, oid, newRdn);
}

Status DeleteX509NameEntry(X509Name* name, uint32_t rdnIndex, uint32_t entryIndex) {
    if (!HasIndex(name, rdnIndex)) return Fail(StatusBadArgument);
    const Part<RelativeDistinguishedName> rdn = MemberAt(name, rdnIndex);
    const Part<RelativeDistinguishedName> last = MemberAt(name, name->count - 1);
    if (!rdn) return rdn.Absent();
    // The index is held against the last RDN too: see docs/oddities.md.
    if (!last) return last.Absent();
    if (entryIndex >= last->count || entryIndex >= rdn->count) return Fail(StatusBadArgument);
    if (rdn->count == 1) return RemoveMember(name, rdnIndex);
    return RemoveMember(rdn.node, entryIndex);
}

Status CompareX509Names(const X509Name* first, const X509Name* second) {
    if (AnyNull(first, second)) return Fail(StatusBadArgument);
    if (AnyNull(first->items, second->items)) return Fail(StatusAbsent);
    return CompareLists(first, second, CompareRdns);
}

Status DetermineSuitableStringType(const uint8_t* text, uint32_t length, uint32_t* stringType) {
    if (AnyNull(text, stringType)) return Fail(StatusBadArgument);
    *stringType = Asn1KindNumericString;
    uint32_t at = 0;
    while (at < length && IsDigitOrSpace(text[at])) ++at;
    if (at == length) return StatusOk;
    *stringType = Asn1KindPrintableString;
    for (; at < length; ++at) {
        if (text[at] < 0x20 || text[at] > 0x7F) {
            *stringType = Asn1KindUTF8String;
            return StatusOk;
        }
        if (!IsPrintableStringByte(text[at])) *stringType = Asn1KindIA5String;
    }
    return StatusOk;
}

Status FindNameAttributeTypeIdByOid(const uint8_t* oid, uint32_t* id) {
    if (AnyNull(oid, id)) return Fail(StatusBadArgument);
    return FindId(kNameAttributeTypes, oid, id);
}

Status GetNameAttributeTypeOid(uint32_t id, uint8_t* oid, uint32_t* oidLength) {
    if (oidLength == nullptr) return Fail(StatusBadArgument);
    const uint8_t* found = nullptr;
    if (const Status status = FindOid(kNameAttributeTypes, id, &found)) return status;
    return CopyOutOid(found, oid, oidLength);
}
