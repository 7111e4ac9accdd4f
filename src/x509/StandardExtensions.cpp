#include "tlvforge/extensions.h"

#include "common/times.h"
#include "engine/alias.h"
#include "engine/oids.h"
#include "engine/outputs.h"
#include "tlvforge/certificate.h"
#include "x509/extension_codecs.h"
#include "x509/standard_extensions.schema.h"

using namespace tlvforge;

// --- What the codecs have in common ---

namespace tlvforge {

Status DecodeEnumerated(const uint8_t* data, uint32_t length, int32_t* number) {
    if (AnyNull(data, number)) return Fail(StatusBadArgument);
    Tree<schema::Enumerated> value;
    const Status status = value.Decode(data, length);
    return status == StatusOk ? GetAsn1Int32(value.Get(), number) : status;
}

Status EncodeEnumerated(uint32_t number, uint8_t* buffer, uint32_t* length) {
    if (length == nullptr) return Fail(StatusBadArgument);
    const Tree<schema::Enumerated> value(AllocAsn1Integer(static_cast<int32_t>(number)));
    return value ? value.Encode(buffer, length) : Fail(StatusOutOfMemory);
}

Status GetOptionalTime(const Asn1Value* field, LibraryTime* time) {
    return field != nullptr ? GeneralizedTimeToLibraryTime(field, time) : StatusOk;
}

Status SetOptionalTime(Asn1Value** field, const LibraryTime* time) {
    if (time == nullptr) return StatusOk;
    *field = LibraryTimeToGeneralizedTime(time);
    return *field != nullptr ? StatusOk : Fail(StatusOutOfMemory);
}

Status DecodeTimePair(const uint8_t* data, uint32_t length, LibraryTime* first, LibraryTime* second) {
    if (AnyNull(data, first, second)) return Fail(StatusBadArgument);
    Tree<TimePair> pair;
    Status status = pair.Decode(data, length);
    if (status == StatusOk) status = GetOptionalTime(pair->first, first);
    return status == StatusOk ? GetOptionalTime(pair->second, second) : status;
}

Status EncodeTimePair(const LibraryTime* first, const LibraryTime* second, uint8_t* buffer, uint32_t* length) {
    if (length == nullptr) return Fail(StatusBadArgument);
    Tree<TimePair> pair;
    Status status = pair.Create();
    if (status == StatusOk) status = SetOptionalTime(&pair->first, first);
    if (status == StatusOk) status = SetOptionalTime(&pair->second, second);
    return status == StatusOk ? pair.Encode(buffer, length) : status;
}

}  // namespace tlvforge

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

// Lends the name of a distribution point. The output of the other kind keeps what it held.
Status LendPointName(const DistributionPointName* choice, X509GeneralNames** fullName, X509Name** relativeName) {
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

// Copies an optional argument into a tree.
template <class T>
Status CopyIfGiven(const T* source, Tree<T>* copy) {
    return source != nullptr ? copy->CopyOf(source) : StatusOk;
}

// --- Fields that may be absent ---

Status SetOptionalValue(Asn1Value** field, uint32_t type, const uint8_t* data, uint32_t length) {
    return data != nullptr ? SetAsn1ValueField(field, type, data, length) : StatusOk;
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

// A BIT STRING field from a flag word.
Status SetFlagWord(Asn1BitString** field, uint32_t flags) {
    *field = AllocAsn1BitStringFromFlags(flags);
    return *field != nullptr ? StatusOk : Fail(StatusOutOfMemory);
}

Status GetOid(const Asn1Value* value, uint8_t* oid, uint32_t* length) {
    return value != nullptr ? GetAsn1Oid(value, oid, length) : Fail(StatusAbsent);
}

// --- Policies ---

// True for the slots in which a policy stands in its own qualifier list.
bool IsSelf(const PolicyInformation* policy, uint32_t qualifierIndex) {
    return policy->policyQualifiers->items[qualifierIndex] == policy;
}

uint32_t QualifierCount(const PolicyInformation* policy) {
    return policy != nullptr ? GetAsn1ListLength(policy->policyQualifiers) : 0;
}

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

// A policy with qualifiers: 32 for an index out of range of either list, or no list of qualifiers.
Status FindQualifier(const ExtensionCertificatePolicies* list, uint32_t policyIndex, uint32_t qualifierIndex,
                     PolicyInformation** policy) {
    const Status status = GetListMember(list, policyIndex, policy);
    if (status != StatusOk) return status;
    return qualifierIndex < QualifierCount(*policy) ? StatusOk : Fail(StatusBadArgument);
}

// One policy of a filtered view, with the list of the qualifiers that are left.
struct FilteredPolicy {
    PolicyInformation policy;
    ListOf<PolicyQualifierInfo> qualifiers;
};

// Fills a view's policy; gives the first cell that it did not use.
void** Filter(const PolicyInformation* policy, FilteredPolicy* filtered, void** cells) {
    filtered->policy = *policy;
    if (policy->policyQualifiers == nullptr) return cells;
    filtered->qualifiers = *policy->policyQualifiers;
    filtered->qualifiers.items = cells;
    filtered->qualifiers.count = 0;
    for (uint32_t i = 0; i < QualifierCount(policy); ++i) {
        if (!IsSelf(policy, i)) cells[filtered->qualifiers.count++] = policy->policyQualifiers->items[i];
    }
    const uint32_t kept = filtered->qualifiers.count;
    const bool emptied = kept == 0 && QualifierCount(policy) != 0;
    filtered->policy.policyQualifiers = emptied ? nullptr : &filtered->qualifiers;
    return cells + kept;
}

// --- The URI of a certificate's distribution point ---

constexpr uint32_t kMaxPointsValue = 2048;

// The value of a CRLDistributionPoints of one point with one URI. Status 49 above `kMaxPointsValue` bytes.
Status EncodeUriPoint(const char* url, uint8_t* buffer, uint32_t* length) {
    const size_t urlLength = strlen(url);
    if (urlLength > kMaxPointsValue) return Fail(StatusBufferTooSmall);
    Tree<X509GeneralNames> names;
    Tree<ExtensionCrlDistributionPoints> points;
    Status status = names.Create();
    if (status == StatusOk) status = points.Create();
    if (status != StatusOk) return status;
    status = AddX509GeneralName(names.Get(), X509GeneralNameUniformResourceIdentifier,
                                reinterpret_cast<const uint8_t*>(url), static_cast<uint32_t>(urlLength));
    if (status != StatusOk) return status;
    status = AddExtensionCrlDistributionPoint(points.Get(), names.Take(), nullptr, 0, nullptr);
    return status == StatusOk ? points.Encode(buffer, length) : status;
}

}  // namespace

namespace tlvforge {

Status PoliciesView::Of(const ExtensionCertificatePolicies* policies) {
    list_ = policies;
    uint64_t cells = policies->count;
    bool hasSelf = false;
    for (uint32_t i = 0; i < policies->count; ++i) {
        const PolicyInformation* policy = policies->At(i);
        cells += QualifierCount(policy);
        for (uint32_t at = 0; at < QualifierCount(policy) && !hasSelf; ++at) hasSelf = IsSelf(policy, at);
    }
    if (!hasSelf) return StatusOk;

    const size_t recordsSize = policies->count * sizeof(FilteredPolicy);
    *block_.Slot() = static_cast<uint8_t*>(Allocate(recordsSize + cells * sizeof(void*)));
    if (!block_) return Fail(StatusOutOfMemory);
    auto* records = reinterpret_cast<FilteredPolicy*>(block_.Bytes());
    auto** items = reinterpret_cast<void**>(block_.Bytes() + recordsSize);
    void** next = items + policies->count;
    for (uint32_t i = 0; i < policies->count; ++i) {
        const PolicyInformation* policy = policies->At(i);
        items[i] = nullptr;
        if (policy == nullptr) continue;
        FilteredPolicy* filtered = new (&records[i]) FilteredPolicy{};
        next = Filter(policy, filtered, next);
        items[i] = &filtered->policy;
    }
    filtered_ = *policies;
    filtered_.items = items;
    list_ = &filtered_;
    return StatusOk;
}

}  // namespace tlvforge

// --- Simple values ---

Status DecodeExtensionKeyUsage(const uint8_t* data, uint32_t length, uint32_t* flags) {
    if (AnyNull(data, flags) || length == 0) return Fail(StatusBadArgument);
    Tree<schema::BitString> bits;
    const Status status = bits.Decode(data, length);
    if (status == StatusOk) *flags = FlagsOfAsn1BitString(bits.Get());
    return status;
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
    const Status status = constraints.Decode(data, length);
    if (status != StatusOk) return status;
    uint32_t hasFlag = 0;
    *cA = 0;
    GetFlag(constraints->cA, cA, &hasFlag);
    int32_t number = -1;
    const Status pathStatus =
        constraints->pathLenConstraint != nullptr ? GetAsn1Int32(constraints->pathLenConstraint, &number) : StatusOk;
    if (pathStatus == StatusOk) *pathLength = static_cast<uint32_t>(number);
    return pathStatus;
}

Status EncodeExtensionBasicConstraints(uint8_t cA, uint32_t pathLength, uint8_t* buffer, uint32_t* length) {
    if (length == nullptr) return Fail(StatusBadArgument);
    Tree<BasicConstraints> constraints;
    Status status = constraints.Create();
    if (status == StatusOk) status = SetFlag(&constraints->cA, cA, 1);
    if (status == StatusOk && pathLength != UINT32_MAX) {
        status = SetAsn1Int32Field(&constraints->pathLenConstraint, static_cast<int32_t>(pathLength));
    }
    return status == StatusOk ? constraints.Encode(buffer, length) : status;
}

Status DecodeExtensionReasonCode(const uint8_t* data, uint32_t length, int32_t* reason) {
    return DecodeEnumerated(data, length, reason);
}

Status EncodeExtensionReasonCode(uint32_t reason, uint8_t* buffer, uint32_t* length) {
    return EncodeEnumerated(reason, buffer, length);
}

Status DecodeExtensionInvalidityDate(const uint8_t* data, uint32_t length, LibraryTime* time) {
    return DecodeAsn1GeneralizedTime(data, length, time);
}

Status EncodeExtensionInvalidityDate(const LibraryTime* time, uint8_t* buffer, uint32_t* length) {
    return EncodeAsn1GeneralizedTime(time, buffer, length);
}

Status DecodeExtensionPrivateKeyUsagePeriod(const uint8_t* data, uint32_t length, LibraryTime* notBefore,
                                            LibraryTime* notAfter) {
    return DecodeTimePair(data, length, notBefore, notAfter);
}

Status EncodeExtensionPrivateKeyUsagePeriod(const LibraryTime* notBefore, const LibraryTime* notAfter, uint8_t* buffer,
                                            uint32_t* length) {
    return EncodeTimePair(notBefore, notAfter, buffer, length);
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
    const Status status = identifier.Decode(data, length);
    if (status != StatusOk) return status;
    const Status keyIdStatus = GetOptionalValue(identifier->keyIdentifier, keyId, keyIdLength);
    if (issuer != nullptr) {
        *issuer = identifier->authorityCertIssuer;
        identifier->authorityCertIssuer = nullptr;
    }
    const Status serialStatus = GetOptionalValue(identifier->authorityCertSerialNumber, serial, serialLength);
    return keyIdStatus != StatusOk ? keyIdStatus : serialStatus;
}

Status EncodeExtensionAuthorityKeyIdentifier(const uint8_t* keyId, uint32_t keyIdLength, const X509GeneralNames* issuer,
                                             const uint8_t* serial, uint32_t serialLength, uint8_t* buffer,
                                             uint32_t* length) {
    if (length == nullptr) return Fail(StatusBadArgument);
    Tree<AuthorityKeyIdentifier> identifier;
    Tree<X509GeneralNames> names;
    Status status = identifier.Create();
    if (status != StatusOk) return status;
    status = SetOptionalValue(&identifier->keyIdentifier, Asn1KindOctetString, keyId, keyIdLength);
    if (status == StatusOk) status = CopyIfGiven(issuer, &names);
    if (status != StatusOk) return status;
    identifier->authorityCertIssuer = names.Take();
    status = SetOptionalValue(&identifier->authorityCertSerialNumber, Asn1KindInteger, serial, serialLength);
    return status == StatusOk ? identifier.Encode(buffer, length) : status;
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
    Status status = point.Decode(data, length);
    // The names die with the tree: intended, the callers of this function only test them.
    if (status == StatusOk) status = LendPointName(point->distributionPoint, fullName, relativeName);
    if (status != StatusOk) return status;
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
    Status status = point.Create();
    if (status == StatusOk) status = CopyIfGiven(fullName, &names);
    if (status == StatusOk && fullName == nullptr) status = CopyIfGiven(relativeName, &name);
    if (status == StatusOk) status = MoveToPointName(&names, &name, &point->distributionPoint);
    if (status == StatusOk) status = SetFlag(&point->onlyContainsUserCerts, onlyUser, hasOnlyUser);
    if (status == StatusOk) status = SetFlag(&point->onlyContainsCACerts, onlyCa, hasOnlyCa);
    if (status == StatusOk && hasOnlySomeReasons) status = SetFlagWord(&point->onlySomeReasons, onlySomeReasons);
    if (status == StatusOk) status = SetFlag(&point->indirectCRL, indirect, hasIndirect);
    if (status == StatusOk) status = SetFlag(&point->onlyContainsAttributeCerts, onlyAttribute, hasOnlyAttribute);
    return status == StatusOk ? point.Encode(buffer, length) : status;
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
    Status status = point.Create();
    if (status == StatusOk) status = MoveToPointName(&names, &name, &point->distributionPoint);
    if (status == StatusOk && reasons != 0) status = SetFlagWord(&point->reasons, reasons);
    if (status != StatusOk) return status;
    point->cRLIssuer = issuer.Take();
    return point.MoveTo(list);
}

Status GetExtensionCrlDistributionPoint(const ExtensionCrlDistributionPoints* list, uint32_t index,
                                        X509GeneralNames** fullName, X509Name** relativeName, uint32_t* reasons,
                                        X509GeneralNames** crlIssuer) {
    if (AnyNull(list, fullName, relativeName, reasons, crlIssuer)) return Fail(StatusBadArgument);
    DistributionPoint* point = nullptr;
    const Status status = GetListMember(list, index, &point);
    if (status != StatusOk) return status;
    *fullName = nullptr;
    *relativeName = nullptr;
    *reasons = point->reasons != nullptr ? FlagsOfAsn1BitString(point->reasons) : 0;
    *crlIssuer = point->cRLIssuer;
    return LendPointName(point->distributionPoint, fullName, relativeName);
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
    Status status = EncodeUriPoint(url, value, &length);
    if (status == StatusOk) status = GetCertificateExtensions(certificate, &extensions);
    if (status == StatusOk) status = RemoveX509ExtensionsExtension2(extensions, Oid<2, 5, 29, 31>);
    if (status != StatusOk) return status;
    return AddX509ExtensionsExtension(extensions, Oid<2, 5, 29, 31>, 0, value, length);
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
    if (AnyNull(list, oidLength)) return Fail(StatusBadArgument);
    Asn1Value* purpose = nullptr;
    const Status status = GetListMember(list, index, &purpose);
    return status == StatusOk ? GetAsn1Oid(purpose, oid, oidLength) : status;
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
    Status status = description.Create();
    if (status == StatusOk) status = ReplaceOidField(&description->accessMethod, method);
    if (status != StatusOk) return status;
    FreeField(&description->accessLocation);
    description->accessLocation = location;
    status = description.MoveTo(list);
    if (status != StatusOk) description->accessLocation = nullptr;
    return status;
}

Status GetExtensionAuthorityInformationAccess(const ExtensionAuthorityInformationAccess* list, uint32_t index,
                                              uint8_t* method, uint32_t* methodLength, X509GeneralName** location) {
    if (AnyNull(list, methodLength)) return Fail(StatusBadArgument);
    AccessDescription* description = nullptr;
    const Status status = GetListMember(list, index, &description);
    if (status != StatusOk) return status;
    if (location != nullptr) *location = description->accessLocation;
    return GetOid(description->accessMethod, method, methodLength);
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
    const Status status = view.Of(list);
    return status == StatusOk ? EncodeTree(view.List(), buffer, length) : status;
}

Status FreeExtensionCertificatePolicies(ExtensionCertificatePolicies* list) {
    SetAllSelfReferences(list, false);
    return FreeTree(list);
}

Status AddExtensionPolicyInformation(ExtensionCertificatePolicies* list, const uint8_t* oid, uint32_t* index) {
    if (AnyNull(list, oid)) return Fail(StatusBadArgument);
    Tree<PolicyInformation> policy;
    Status status = policy.Create();
    if (status == StatusOk) status = ReplaceOidField(&policy->policyIdentifier, oid);
    if (status == StatusOk) status = Append(list, list, policy.Get());
    if (status != StatusOk) return status;
    policy.Take();
    if (index != nullptr) *index = list->count - 1;
    return StatusOk;
}

Status GetExtensionPolicyInformation(const ExtensionCertificatePolicies* list, uint32_t index, uint8_t* oid,
                                     uint32_t* oidLength) {
    if (AnyNull(list, oidLength)) return Fail(StatusBadArgument);
    PolicyInformation* policy = nullptr;
    const Status status = GetListMember(list, index, &policy);
    return status == StatusOk ? GetOid(policy->policyIdentifier, oid, oidLength) : status;
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
    if (AnyNull(list, oid)) return Fail(StatusBadArgument);
    PolicyInformation* policy = nullptr;
    const Status status = GetListMember(list, policyIndex, &policy);
    if (status != StatusOk) return status;
    if (policy->policyQualifiers == nullptr) policy->policyQualifiers = AllocList<ListOf<PolicyQualifierInfo>>();
    if (policy->policyQualifiers == nullptr) return Fail(StatusOutOfMemory);
    // The policy itself and not the qualifier given: intended, callers depend on the count that rises.
    return Append(list, policy->policyQualifiers, policy);
}

Status GetExtensionPolicyQualifier(const ExtensionCertificatePolicies* list, uint32_t policyIndex,
                                   uint32_t qualifierIndex, uint8_t* oid, uint32_t* oidLength, uint8_t* value,
                                   uint32_t* valueLength) {
    if (AnyNull(list, oidLength, valueLength)) return Fail(StatusBadArgument);
    PolicyInformation* policy = nullptr;
    const Status status = FindQualifier(list, policyIndex, qualifierIndex, &policy);
    if (status != StatusOk) return status;
    const PolicyQualifierInfo* qualifier = policy->policyQualifiers->At(qualifierIndex);
    if (qualifier == nullptr) return Fail(StatusAbsent);
    const bool self = IsSelf(policy, qualifierIndex);
    const Status valueStatus = GetOptionalValue(self ? nullptr : qualifier->qualifier, value, valueLength);
    const Status oidStatus = GetOid(self ? policy->policyIdentifier : qualifier->policyQualifierId, oid, oidLength);
    return valueStatus == StatusBufferTooSmall ? valueStatus : oidStatus;
}

Status GetExtensionPolicyQualifiersCount(const ExtensionCertificatePolicies* list, uint32_t policyIndex,
                                         uint32_t* count) {
    if (AnyNull(list, count)) return Fail(StatusBadArgument);
    PolicyInformation* policy = nullptr;
    const Status status = GetListMember(list, policyIndex, &policy);
    if (status != StatusOk) return status;
    if (policy->policyIdentifier == nullptr) return Fail(StatusAbsent);
    *count = QualifierCount(policy);
    return StatusOk;
}

Status RemoveExtensionPolicyQualifier(ExtensionCertificatePolicies* list, uint32_t policyIndex,
                                      uint32_t qualifierIndex) {
    PolicyInformation* policy = nullptr;
    const Status status = FindQualifier(list, policyIndex, qualifierIndex, &policy);
    if (status != StatusOk) return status;
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
