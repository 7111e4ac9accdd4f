#include "tlvforge/extensions.h"

#include "engine/alias.h"
#include "tlvforge/certificate.h"
#include "x509/extension_codecs.h"
#include "x509/fields.h"

using namespace tlvforge;

namespace {

// --- Distribution point names ---

// Indices into the alternatives of DistributionPointName.
constexpr uint32_t kFullName = 0;
constexpr uint32_t kRelativeName = 1;

// A choice that holds what a tree owns; null, with nothing moved, when out of memory.
template <class Choice, class T>
Choice* WrapInChoice(uint32_t selected, Tree<T>* value) {
    Choice* choice = AllocChoice<Choice>(selected, value->Get());
    if (choice != nullptr) value->Take();
    return choice;
}

// Moves a name into a distribution point; the full one wins. Without either the field stays absent.
Status MoveToPointName(Tree<X509GeneralNames>* fullName, Tree<X509Name>* relativeName, DistributionPointName** field) {
    if (*fullName) {
        *field = WrapInChoice<DistributionPointName>(kFullName, fullName);
    } else if (*relativeName) {
        Tree<Name> name(WrapInChoice<Name>(0, relativeName));
        if (name) *field = WrapInChoice<DistributionPointName>(kRelativeName, &name);
    } else {
        return StatusOk;
    }
    return *field != nullptr ? StatusOk : Fail(StatusOutOfMemory);
}

// The name of a distribution point. The output of the other kind keeps what it held.
Status BorrowPointName(const DistributionPointName* choice, X509GeneralNames** fullName, X509Name** relativeName) {
    if (choice == nullptr || choice->value == nullptr) return StatusOk;
    if (choice->selected == kFullName) {
        *fullName = static_cast<X509GeneralNames*>(choice->value);
    } else if (choice->selected == kRelativeName) {
        *relativeName = static_cast<X509Name*>(static_cast<const Name*>(choice->value)->value);
    } else {
        return Fail(StatusBadAlternative);
    }
    return StatusOk;
}

// --- Fields that may be absent ---

// A BIT STRING from a flag word.
Status SetFlags(Asn1BitString** field, uint32_t flags, bool given) {
    return given ? ReplaceField(field, AllocAsn1BitStringFromFlags(flags)) : StatusOk;
}

// Raw byte of a BOOLEAN, and whether it is there.
void GetFlag(const Asn1Value* value, uint8_t* flag, uint32_t* has) {
    if (value == nullptr || value->data == nullptr) return;
    *flag = value->data[0];
    *has = 1;
}

Status SetFlag(Asn1Value** field, uint8_t flag, int32_t has) {
    return has != 0 ? SetAsn1BooleanField(field, flag != 0) : StatusOk;
}

// --- Policies ---

// Takes the self references out of a policy, so that freeing it does not come back to it, or puts them back. Nothing
// else leaves a null slot in a qualifier list.
void SetSelfReferences(PolicyInformation* policy, bool present) {
    void* const from = present ? nullptr : policy;
    void* const to = present ? policy : nullptr;
    for (uint32_t i = 0; i < QualifierCount(policy); ++i) {
        void** slot = policy->policyQualifiers->items + i;
        if (*slot == from) *slot = to;
    }
}

void SetAllSelfReferences(ExtensionCertificatePolicies* policies, bool present) {
    for (uint32_t i = 0; i < GetAsn1ListLength(policies); ++i) SetSelfReferences(policies->At(i), present);
}

// Appends to the list of policies, or to the qualifier list of one of them. A full list frees its elements when it
// can't grow.
template <class Node>
Status Append(ExtensionCertificatePolicies* policies, ListOf<Node>* list, void* element) {
    const bool full = list->count == list->capacity;
    if (full) SetAllSelfReferences(policies, false);
    const Status status = AddAsn1ListItem(list, itemOf<Node>, element);
    if (full) SetAllSelfReferences(policies, true);
    return status;
}

// The policy of a qualifier: StatusBadArgument for an index out of range of either list, or no list of qualifiers.
Status GetPolicyOfQualifier(const ExtensionCertificatePolicies* list, uint32_t policyIndex, uint32_t qualifierIndex,
                            PolicyInformation** policy) {
    if (!HasIndex(list, policyIndex)) return Fail(StatusBadArgument);
    if (const Status status = Borrow(MemberAt(list, policyIndex), policy)) return status;
    return qualifierIndex < QualifierCount(*policy) ? StatusOk : Fail(StatusBadArgument);
}

// --- The URI of a certificate's distribution point ---

constexpr uint32_t kMaxPointsValue = 2048;

// The value of a CRLDistributionPoints of one point with one URI. StatusBufferTooSmall above `kMaxPointsValue` bytes.
Status EncodeUriPoint(const char* url, uint8_t* buffer, uint32_t* length) {
    const size_t urlLength = strlen(url);
    if (urlLength > kMaxPointsValue) return Fail(StatusBufferTooSmall);
    const Bytes uri = {reinterpret_cast<const uint8_t*>(url), static_cast<uint32_t>(urlLength)};
    constexpr uint32_t kUri = X509GeneralNameUniformResourceIdentifier;
    Tree<X509GeneralNames> names;
    Tree<ExtensionCrlDistributionPoints> points;
    if (const Status status = names.Create()) return status;
    if (const Status status = points.Create()) return status;
    if (const Status status = AddX509GeneralName(names.Get(), kUri, uri.data, uri.length)) return status;
    if (const Status status = AddExtensionCrlDistributionPoint(points.Get(), names.Take(), nullptr, 0, nullptr)) {
        return status;
    }
    return points.Encode(buffer, length);
}

}  // namespace

// --- Simple values ---

Status DecodeExtensionKeyUsage(const uint8_t* data, uint32_t length, uint32_t* flags) {
    if (AnyNull(data, flags) || length == 0) return Fail(StatusBadArgument);
    Tree<schema::BitString> bits;
    if (const Status status = bits.Decode(data, length)) return status;
    *flags = FlagsOfAsn1BitString(bits.Get());
    return StatusOk;
}

Status EncodeExtensionKeyUsage(uint32_t flags, uint8_t* buffer, uint32_t* length) {
    if (length == nullptr) return Fail(StatusBadArgument);
    const Tree<schema::BitString> bits(AllocAsn1BitStringFromFlags(flags));
    return bits ? bits.Encode(buffer, length) : Fail(StatusOutOfMemory);
}

Status DecodeExtensionSubjectKeyIdentifier(const uint8_t* data, uint32_t length, uint8_t* keyId,
                                           uint32_t* keyIdLength) {
    return DecodeAsn1PrimitiveValue(Asn1KindOctetString, data, length, keyId, keyIdLength);
}

Status EncodeExtensionSubjectKeyIdentifier(const uint8_t* keyId, uint32_t keyIdLength, uint8_t* buffer,
                                           uint32_t* length) {
    return EncodeAsn1PrimitiveValue(Asn1KindOctetString, keyId, keyIdLength, buffer, length);
}

Status DecodeExtensionBasicConstraints(const uint8_t* data, uint32_t length, uint8_t* cA, uint32_t* pathLength) {
    if (AnyNull(data, cA, pathLength)) return Fail(StatusBadArgument);
    Tree<BasicConstraints> constraints;
    if (const Status status = constraints.Decode(data, length)) return status;
    uint32_t hasFlag = 0;
    int32_t number = -1;
    *cA = 0;
    GetFlag(constraints->cA, cA, &hasFlag);
    if (const Status status = GetOptionalInt32(constraints->pathLenConstraint, &number)) return status;
    *pathLength = static_cast<uint32_t>(number);
    return StatusOk;
}

Status EncodeExtensionBasicConstraints(uint8_t cA, uint32_t pathLength, uint8_t* buffer, uint32_t* length) {
    if (length == nullptr) return Fail(StatusBadArgument);
    Tree<BasicConstraints> constraints;
    if (const Status status = constraints.Create()) return status;
    if (const Status status = SetFlag(&constraints->cA, cA, 1)) return status;
    if (pathLength == UINT32_MAX) return constraints.Encode(buffer, length);
    const auto number = static_cast<int32_t>(pathLength);
    if (const Status status = SetAsn1Int32Field(&constraints->pathLenConstraint, number)) return status;
    return constraints.Encode(buffer, length);
}

Status DecodeExtensionReasonCode(const uint8_t* data, uint32_t length, int32_t* reason) {
    if (AnyNull(data, reason)) return Fail(StatusBadArgument);
    return DecodeEnumerated({data, length}, reason);
}

Status EncodeExtensionReasonCode(uint32_t reason, uint8_t* buffer, uint32_t* length) {
    if (length == nullptr) return Fail(StatusBadArgument);
    return EncodeEnumerated(reason, {buffer, length});
}

Status DecodeExtensionInvalidityDate(const uint8_t* data, uint32_t length, LibraryTime* time) {
    return DecodeAsn1GeneralizedTime(data, length, time);
}

Status EncodeExtensionInvalidityDate(const LibraryTime* time, uint8_t* buffer, uint32_t* length) {
    return EncodeAsn1GeneralizedTime(time, buffer, length);
}

Status DecodeExtensionPrivateKeyUsagePeriod(const uint8_t* data, uint32_t length, LibraryTime* notBefore,
                                            LibraryTime* notAfter) {
    if (AnyNull(data, notBefore, notAfter)) return Fail(StatusBadArgument);
    return DecodeTimePair({data, length}, notBefore, notAfter);
}

Status EncodeExtensionPrivateKeyUsagePeriod(const LibraryTime* notBefore, const LibraryTime* notAfter, uint8_t* buffer,
                                            uint32_t* length) {
    if (length == nullptr) return Fail(StatusBadArgument);
    return EncodeTimePair(notBefore, notAfter, {buffer, length});
}

Status DecodeExtensionCrlNumber(const uint8_t* data, uint32_t length, uint8_t* number, uint32_t* numberLength) {
    return DecodeAsn1PrimitiveValue(Asn1KindInteger, data, length, number, numberLength);
}

Status EncodeExtensionCrlNumber(const uint8_t* number, uint32_t numberLength, uint8_t* buffer, uint32_t* length) {
    return EncodeAsn1PrimitiveValue(Asn1KindInteger, number, numberLength, buffer, length);
}

// --- Authority key identifier ---

Status DecodeExtensionAuthorityKeyIdentifier(const uint8_t* data, uint32_t length, uint8_t* keyId,
                                             uint32_t* keyIdLength, X509GeneralNames** issuer, uint8_t* serial,
                                             uint32_t* serialLength) {
    if (AnyNull(data, keyIdLength, serialLength) || length == 0) return Fail(StatusBadArgument);
    if (issuer != nullptr) *issuer = nullptr;
    Tree<AuthorityKeyIdentifier> identifier;
    if (const Status status = identifier.Decode(data, length)) return status;
    if (issuer != nullptr) *issuer = TakeField(&identifier->authorityCertIssuer);
    return ReadOutputs(OutputRule::kAllFirst, BytesInto(identifier->keyIdentifier, keyId, keyIdLength),
                       BytesInto(identifier->authorityCertSerialNumber, serial, serialLength));
}

Status EncodeExtensionAuthorityKeyIdentifier(const uint8_t* keyId, uint32_t keyIdLength, const X509GeneralNames* issuer,
                                             const uint8_t* serial, uint32_t serialLength, uint8_t* buffer,
                                             uint32_t* length) {
    if (length == nullptr) return Fail(StatusBadArgument);
    const Bytes keyIdBytes = {keyId, keyIdLength}, serialBytes = {serial, serialLength};
    Tree<AuthorityKeyIdentifier> identifier;
    if (const Status status = identifier.Create()) return status;
    Asn1Value** const idField = &identifier->keyIdentifier;
    if (const Status status = SetOptionalBytes(idField, Asn1KindOctetString, keyIdBytes)) return status;
    if (const Status status = CopyOptional(issuer, &identifier->authorityCertIssuer)) return status;
    Asn1Value** const serialField = &identifier->authorityCertSerialNumber;
    if (const Status status = SetOptionalBytes(serialField, Asn1KindInteger, serialBytes)) return status;
    return identifier.Encode(buffer, length);
}

// --- Issuing distribution point ---

Status DecodeExtensionIssuingDistributionPoint(const uint8_t* data, uint32_t length, X509GeneralNames** fullName,
                                               X509Name** relativeName, uint8_t* onlyUser, uint32_t* hasOnlyUser,
                                               uint8_t* onlyCa, uint32_t* hasOnlyCa, uint32_t* onlySomeReasons,
                                               uint32_t* hasOnlySomeReasons, uint8_t* indirect, uint32_t* hasIndirect,
                                               uint8_t* onlyAttribute, uint32_t* hasOnlyAttribute) {
    if (AnyNull(data, fullName, relativeName, onlyUser, hasOnlyUser, onlyCa, hasOnlyCa, onlySomeReasons,
                hasOnlySomeReasons, indirect, hasIndirect, onlyAttribute, hasOnlyAttribute)) {
        return Fail(StatusBadArgument);
    }
    *fullName = nullptr;
    *relativeName = nullptr;
    *hasOnlyUser = *hasOnlyCa = *hasOnlySomeReasons = *hasIndirect = *hasOnlyAttribute = 0;
    Tree<IssuingDistributionPoint> point;
    if (const Status status = point.Decode(data, length)) return status;
    // The names are freed with the tree: see docs/oddities.md.
    if (const Status status = BorrowPointName(point->distributionPoint, fullName, relativeName)) return status;
    GetFlag(point->onlyContainsUserCerts, onlyUser, hasOnlyUser);
    GetFlag(point->onlyContainsCACerts, onlyCa, hasOnlyCa);
    GetFlag(point->indirectCRL, indirect, hasIndirect);
    GetFlag(point->onlyContainsAttributeCerts, onlyAttribute, hasOnlyAttribute);
    if (point->onlySomeReasons == nullptr) return StatusOk;
    *onlySomeReasons = FlagsOfAsn1BitString(point->onlySomeReasons);
    *hasOnlySomeReasons = 1;
    return StatusOk;
}

Status EncodeExtensionIssuingDistributionPoint(const X509GeneralNames* fullName, const X509Name* relativeName,
                                               uint8_t onlyUser, int32_t hasOnlyUser, uint8_t onlyCa, int32_t hasOnlyCa,
                                               uint32_t onlySomeReasons, int32_t hasOnlySomeReasons, uint8_t indirect,
                                               int32_t hasIndirect, uint8_t onlyAttribute, int32_t hasOnlyAttribute,
                                               uint8_t* buffer, uint32_t* length) {
    if (length == nullptr) return Fail(StatusBadArgument);
    Tree<IssuingDistributionPoint> point;
    Tree<X509GeneralNames> names;
    Tree<X509Name> name;
    if (fullName != nullptr) relativeName = nullptr;
    if (const Status status = point.Create()) return status;
    if (const Status status = CopyOptional(fullName, names.Slot())) return status;
    if (const Status status = CopyOptional(relativeName, name.Slot())) return status;
    if (const Status status = MoveToPointName(&names, &name, &point->distributionPoint)) return status;
    if (const Status status = SetFlag(&point->onlyContainsUserCerts, onlyUser, hasOnlyUser)) return status;
    if (const Status status = SetFlag(&point->onlyContainsCACerts, onlyCa, hasOnlyCa)) return status;
    if (const Status status = SetFlags(&point->onlySomeReasons, onlySomeReasons, hasOnlySomeReasons != 0)) {
        return status;
    }
    if (const Status status = SetFlag(&point->indirectCRL, indirect, hasIndirect)) return status;
    if (const Status status = SetFlag(&point->onlyContainsAttributeCerts, onlyAttribute, hasOnlyAttribute)) {
        return status;
    }
    return point.Encode(buffer, length);
}

// --- CRL distribution points ---

Status CreateExtensionCrlDistributionPoints(ExtensionCrlDistributionPoints** out) { return CreateTree(out); }

Status DecodeExtensionCrlDistributionPoints(const uint8_t* data, uint32_t length,
                                            ExtensionCrlDistributionPoints** out) {
    return DecodeNonEmpty(data, length, out);
}

Status EncodeExtensionCrlDistributionPoints(const ExtensionCrlDistributionPoints* list, uint8_t* buffer,
                                            uint32_t* length) {
    return EncodeTree(list, buffer, length);
}

Status FreeExtensionCrlDistributionPoints(ExtensionCrlDistributionPoints* list) { return FreeTree(list); }

Status AddExtensionCrlDistributionPoint(ExtensionCrlDistributionPoints* list, X509GeneralNames* fullName,
                                        X509Name* relativeName, uint32_t reasons, X509GeneralNames* crlIssuer) {
    const bool bothNames = fullName != nullptr && relativeName != nullptr;
    const bool empty = fullName == nullptr && relativeName == nullptr && reasons == 0 && crlIssuer == nullptr;
    const bool givenTwice = fullName != nullptr && fullName == crlIssuer;
    if (list == nullptr || bothNames || empty || givenTwice) return Fail(StatusBadArgument);
    Tree<X509GeneralNames> names(fullName);
    Tree<X509Name> name(relativeName);
    Tree<X509GeneralNames> issuer(crlIssuer);
    Tree<DistributionPoint> point;
    if (const Status status = point.Create()) return status;
    if (const Status status = MoveToPointName(&names, &name, &point->distributionPoint)) return status;
    if (const Status status = SetFlags(&point->reasons, reasons, reasons != 0)) return status;
    point->cRLIssuer = issuer.Take();
    return point.MoveTo(list);
}

Status GetExtensionCrlDistributionPoint(const ExtensionCrlDistributionPoints* list, uint32_t index,
                                        X509GeneralNames** fullName, X509Name** relativeName, uint32_t* reasons,
                                        X509GeneralNames** crlIssuer) {
    if (AnyNull(fullName, relativeName, reasons, crlIssuer) || !HasIndex(list, index)) return Fail(StatusBadArgument);
    DistributionPoint* point = nullptr;
    if (const Status status = Borrow(MemberAt(list, index), &point)) return status;
    *fullName = nullptr;
    *relativeName = nullptr;
    *reasons = point->reasons != nullptr ? FlagsOfAsn1BitString(point->reasons) : 0;
    *crlIssuer = point->cRLIssuer;
    return BorrowPointName(point->distributionPoint, fullName, relativeName);
}

Status GetExtensionCrlDistributionPointsCount(const ExtensionCrlDistributionPoints* list, uint32_t* count) {
    return GetListCount(list, count);
}

Status RemoveExtensionCrlDistributionPoint(ExtensionCrlDistributionPoints* list, uint32_t index) {
    return RemoveListMember(list, index);
}

Status SetCertificateExtensionCrlDistributionPoints(Certificate* certificate, const char* url) {
    if (AnyNull(certificate, url)) return Fail(StatusBadArgument);
    uint8_t value[kMaxPointsValue];
    uint32_t length = sizeof value;
    X509Extensions extensions = nullptr;
    if (const Status status = EncodeUriPoint(url, value, &length)) return status;
    if (const Status status = GetCertificateExtensions(certificate, &extensions)) return status;
    return ReplaceExtension(extensions, Oid<2, 5, 29, 31>, {value, length});
}

// --- Extended key usage ---

Status CreateExtensionExtendedKeyUsage(ExtensionExtendedKeyUsage** out) { return CreateTree(out); }

Status DecodeExtensionExtendedKeyUsage(const uint8_t* data, uint32_t length, ExtensionExtendedKeyUsage** out) {
    return DecodeNonEmpty(data, length, out);
}

Status EncodeExtensionExtendedKeyUsage(const ExtensionExtendedKeyUsage* list, uint8_t* buffer, uint32_t* length) {
    return EncodeTree(list, buffer, length);
}

Status FreeExtensionExtendedKeyUsage(ExtensionExtendedKeyUsage* list) { return FreeTree(list); }

Status AddExtensionExtendedKeyUsage(ExtensionExtendedKeyUsage* list, const uint8_t* oid) {
    if (AnyNull(list, oid)) return Fail(StatusBadArgument);
    Tree<schema::ObjectIdentifier> purpose(AllocAsn1OidFromOid(oid));
    return purpose ? purpose.MoveTo(list) : Fail(StatusOutOfMemory);
}

Status GetExtensionExtendedKeyUsage(const ExtensionExtendedKeyUsage* list, uint32_t index, uint8_t* oid,
                                    uint32_t* oidLength) {
    if (oidLength == nullptr || !HasIndex(list, index)) return Fail(StatusBadArgument);
    return GetOid(MemberAt(list, index), oid, oidLength);
}

Status GetExtensionExtendedKeyUsageCount(const ExtensionExtendedKeyUsage* list, uint32_t* count) {
    return GetListCount(list, count);
}

Status RemoveExtensionExtendedKeyUsage(ExtensionExtendedKeyUsage* list, uint32_t index) {
    return RemoveListMember(list, index);
}

// --- Authority information access ---

Status CreateExtensionAuthorityInformationAccess(ExtensionAuthorityInformationAccess** out) { return CreateTree(out); }

Status DecodeExtensionAuthorityInformationAccess(const uint8_t* data, uint32_t length,
                                                 ExtensionAuthorityInformationAccess** out) {
    return DecodeNonEmpty(data, length, out);
}

Status EncodeExtensionAuthorityInformationAccess(const ExtensionAuthorityInformationAccess* list, uint8_t* buffer,
                                                 uint32_t* length) {
    return EncodeTree(list, buffer, length);
}

Status FreeExtensionAuthorityInformationAccess(ExtensionAuthorityInformationAccess* list) { return FreeTree(list); }

Status AddExtensionAuthorityInformationAccess(ExtensionAuthorityInformationAccess* list, const uint8_t* method,
                                              X509GeneralName* location) {
    if (AnyNull(list, method, location)) return Fail(StatusBadArgument);
    Tree<AccessDescription> description;
    if (const Status status = description.Create()) return status;
    if (const Status status = ReplaceOidField(&description->accessMethod, method)) return status;
    FreeField(&description->accessLocation);
    description->accessLocation = location;
    const Status status = description.MoveTo(list);
    if (status != StatusOk) description->accessLocation = nullptr;  // still the caller's
    return status;
}

Status GetExtensionAuthorityInformationAccess(const ExtensionAuthorityInformationAccess* list, uint32_t index,
                                              uint8_t* method, uint32_t* methodLength, X509GeneralName** location) {
    if (methodLength == nullptr || !HasIndex(list, index)) return Fail(StatusBadArgument);
    AccessDescription* description = nullptr;
    if (const Status status = Borrow(MemberAt(list, index), &description)) return status;
    if (location != nullptr) *location = description->accessLocation;
    return GetOid(At<&AccessDescription::accessMethod>(description), method, methodLength);
}

Status GetExtensionAuthorityInformationAccessCount(const ExtensionAuthorityInformationAccess* list, uint32_t* count) {
    return GetListCount(list, count);
}

Status RemoveExtensionAuthorityInformationAccess(ExtensionAuthorityInformationAccess* list, uint32_t index) {
    return RemoveListMember(list, index);
}

// --- Certificate policies ---

Status CreateExtensionCertificatePolicies(ExtensionCertificatePolicies** out) { return CreateTree(out); }

Status DecodeExtensionCertificatePolicies(const uint8_t* data, uint32_t length, ExtensionCertificatePolicies** out) {
    return DecodeNonEmpty(data, length, out);
}

Status EncodeExtensionCertificatePolicies(const ExtensionCertificatePolicies* list, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(list, length)) return Fail(StatusBadArgument);
    PoliciesView view;
    if (const Status status = view.Of(list)) return status;
    return EncodeTree(view.List(), buffer, length);
}

Status FreeExtensionCertificatePolicies(ExtensionCertificatePolicies* list) {
    SetAllSelfReferences(list, false);
    return FreeTree(list);
}

Status AddExtensionPolicyInformation(ExtensionCertificatePolicies* list, const uint8_t* oid, uint32_t* index) {
    if (AnyNull(list, oid)) return Fail(StatusBadArgument);
    Tree<PolicyInformation> policy;
    if (const Status status = policy.Create()) return status;
    if (const Status status = ReplaceOidField(&policy->policyIdentifier, oid)) return status;
    if (const Status status = Append(list, list, policy.Get())) return status;
    policy.Take();
    if (index != nullptr) *index = list->count - 1;
    return StatusOk;
}

Status GetExtensionPolicyInformation(const ExtensionCertificatePolicies* list, uint32_t index, uint8_t* oid,
                                     uint32_t* oidLength) {
    if (oidLength == nullptr || !HasIndex(list, index)) return Fail(StatusBadArgument);
    return GetOid(At<&PolicyInformation::policyIdentifier>(MemberAt(list, index).node), oid, oidLength);
}

Status GetExtensionPolicyInformationCount(const ExtensionCertificatePolicies* list, uint32_t* count) {
    return GetListCount(list, count);
}

Status RemoveExtensionPolicyInformation(ExtensionCertificatePolicies* list, uint32_t index) {
    if (index < GetAsn1ListLength(list)) SetSelfReferences(list->At(index), false);
    return RemoveListMember(list, index);
}

Status AddExtensionPolicyQualifier(ExtensionCertificatePolicies* list, uint32_t policyIndex, const uint8_t* oid,
                                   const uint8_t*, uint32_t) {
    if (oid == nullptr || !HasIndex(list, policyIndex)) return Fail(StatusBadArgument);
    PolicyInformation* policy = nullptr;
    if (const Status status = Borrow(MemberAt(list, policyIndex), &policy)) return status;
    if (const Status status = EnsureList(&policy->policyQualifiers)) return status;
    // The policy itself and not the qualifier given: see docs/oddities.md.
    return Append(list, policy->policyQualifiers, policy);
}

Status GetExtensionPolicyQualifier(const ExtensionCertificatePolicies* list, uint32_t policyIndex,
                                   uint32_t qualifierIndex, uint8_t* oid, uint32_t* oidLength, uint8_t* value,
                                   uint32_t* valueLength) {
    if (AnyNull(list, oidLength, valueLength)) return Fail(StatusBadArgument);
    PolicyInformation* policy = nullptr;
    if (const Status status = GetPolicyOfQualifier(list, policyIndex, qualifierIndex, &policy)) return status;
    PolicyQualifierInfo* qualifier = nullptr;
    if (const Status status = Borrow(MemberAt(policy->policyQualifiers, qualifierIndex), &qualifier)) return status;
    const bool self = IsSelf(policy, qualifierIndex);
    const Part<Asn1Value> id = self ? At<&PolicyInformation::policyIdentifier>(policy)
                                    : At<&PolicyQualifierInfo::policyQualifierId>(qualifier);
    return ReadOutputs(
        OutputRule::kAllLast, [&] { return GetOid(id, oid, oidLength); },
        BytesInto(self ? nullptr : qualifier->qualifier, value, valueLength));
}

Status GetExtensionPolicyQualifiersCount(const ExtensionCertificatePolicies* list, uint32_t policyIndex,
                                         uint32_t* count) {
    if (count == nullptr || !HasIndex(list, policyIndex)) return Fail(StatusBadArgument);
    const Part<PolicyInformation> policy = MemberAt(list, policyIndex);
    if (!policy || policy->policyIdentifier == nullptr) return policy.Absent();
    *count = QualifierCount(policy.node);
    return StatusOk;
}

Status RemoveExtensionPolicyQualifier(ExtensionCertificatePolicies* list, uint32_t policyIndex,
                                      uint32_t qualifierIndex) {
    PolicyInformation* policy = nullptr;
    if (const Status status = GetPolicyOfQualifier(list, policyIndex, qualifierIndex, &policy)) return status;
    if (IsSelf(policy, qualifierIndex)) policy->policyQualifiers->items[qualifierIndex] = nullptr;
    return RemoveMember(policy->policyQualifiers, qualifierIndex);
}

// --- One function under several names ---

TLVFORGE_ALIAS(DecodeExtensionNetscapeCertificateType, DecodeExtensionKeyUsage);
TLVFORGE_ALIAS(EncodeExtensionNetscapeCertificateType, EncodeExtensionKeyUsage);
TLVFORGE_ALIAS(DecodeExtensionOcspNonce, DecodeExtensionSubjectKeyIdentifier);
TLVFORGE_ALIAS(EncodeExtensionOcspNonce, EncodeExtensionSubjectKeyIdentifier);
TLVFORGE_ALIAS(DecodeExtensionDeltaCrlIndicator, DecodeExtensionCrlNumber);
TLVFORGE_ALIAS(EncodeExtensionDeltaCrlIndicator, EncodeExtensionCrlNumber);
