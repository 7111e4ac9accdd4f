#include "tlvforge/crl.h"

#include "common/times.h"
#include "x509/crl.schema.h"
#include "x509/fields.h"

using namespace tlvforge;

namespace {

Part<X509RevokedCertificates> EntriesOf(const X509Crl* crl, Place place = Place::Here()) {
    return At<&X509Crl::tbsCertList, &TBSCertList::revokedCertificates>(crl, place);
}

}  // namespace

Status CreateX509Crl(X509Crl** crl) { return CreateTree(crl); }

Status CreateX509CrlCopy(const X509Crl* crl, X509Crl** copy) { return CopyTree(crl, copy); }

Status DecodeX509Crl(const uint8_t* bytes, uint32_t length, X509Crl** crl) { return DecodeTree(bytes, length, crl); }

Status EncodeX509Crl(const X509Crl* crl, uint8_t* buffer, uint32_t* length) { return EncodeTree(crl, buffer, length); }

Status FreeX509Crl(X509Crl* crl) { return FreeTree(crl); }

Status CreateX509Crls(X509Crls** crls) { return CreateTree(crls); }

Status CreateX509CrlsCopy(const X509Crls* crls, X509Crls** copy) { return CopyTree(crls, copy); }

Status DecodeX509Crls(const uint8_t* bytes, uint32_t length, X509Crls** crls) {
    return DecodeTree(bytes, length, crls);
}

Status EncodeX509Crls(const X509Crls* crls, uint8_t* buffer, uint32_t* length) {
    return EncodeTree(crls, buffer, length);
}

Status FreeX509Crls(X509Crls* crls) { return FreeTree(crls); }

Status AddX509CrlToX509Crls(X509Crls* crls, X509Crl* crl) {
    if (AnyNull(crls, crl)) return Fail(StatusBadArgument);
    return AddMember(crls, crl);
}

Status GetX509CrlsCount(const X509Crls* crls, uint32_t* count) { return GetListCount(crls, count); }

Status GetX509CrlsCrl(const X509Crls* crls, uint32_t index, X509Crl** crl) {
    if (AnyNull(crl) || !HasIndex(crls, index)) return Fail(StatusBadArgument);
    return Borrow(MemberAt(crls, index), crl);
}

Status GetX509CrlToBeSignedPart(const X509Crl* crl, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(crl, length)) return Fail(StatusBadArgument);
    return Encode(At<&X509Crl::tbsCertList>(crl), buffer, length);
}

Status AddX509CrlRevokedCertificate(X509Crl* crl, const uint8_t* serial, uint32_t serialLength,
                                    const LibraryTime* revocationDate, uint32_t* index) {
    if (AnyNull(crl, serial, revocationDate)) return Fail(StatusBadArgument);
    if (crl->tbsCertList == nullptr) return Fail(StatusAbsent);
    X509RevokedCertificates** list = &crl->tbsCertList->revokedCertificates;
    if (const Status status = Ensure(list)) return status;
    return AddX509RevokedCertificatesRevokedCertificate(*list, serial, serialLength, revocationDate, index);
}

Status GetX509CrlRevokedCertificateCount(const X509Crl* crl, uint32_t* count) {
    if (AnyNull(crl, count)) return Fail(StatusBadArgument);
    if (crl->tbsCertList == nullptr) return Fail(StatusAbsent);
    *count = GetAsn1ListLength(crl->tbsCertList->revokedCertificates);
    return StatusOk;
}

Status GetX509CrlRevokedCertificateSerialNumber(const X509Crl* crl, uint32_t index, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(crl, length)) return Fail(StatusBadArgument);
    const auto entries = EntriesOf(crl);
    X509RevokedCertificate* entry = nullptr;
    if (const Status status = GetMember(entries, index, &entry)) return status;
    return GetBytes(At<&X509RevokedCertificate::userCertificate>(entry), buffer, length);
}

Status GetX509CrlRevokedCertificateRevokationDate(const X509Crl* crl, uint32_t index, LibraryTime* revocationDate) {
    if (AnyNull(crl, revocationDate)) return Fail(StatusBadArgument);
    const auto entries = EntriesOf(crl);
    X509RevokedCertificate* entry = nullptr;
    if (const Status status = GetMember(entries, index, &entry)) return status;
    return GetTime(At<&X509RevokedCertificate::revocationDate>(entry), revocationDate);
}

Status GetX509CrlRevokedCertificateExtensions(const X509Crl* crl, uint32_t index, X509Extensions* extensions) {
    if (AnyNull(crl, extensions)) return Fail(StatusBadArgument);
    const auto entries = EntriesOf(crl);
    X509RevokedCertificate* entry = nullptr;
    if (const Status status = GetMember(entries, index, &entry)) return status;
    return Borrow(At<&X509RevokedCertificate::crlEntryExtensions>(entry), extensions);
}

Status ClearX509CrlRevokedCertificates(X509Crl* crl) {
    if (crl == nullptr) return Fail(StatusBadArgument);
    if (crl->tbsCertList == nullptr) return Fail(StatusAbsent);
    X509RevokedCertificates* list = crl->tbsCertList->revokedCertificates;
    if (list != nullptr) ClearList(list);
    return StatusOk;
}

Status RemoveX509CrlRevokedCertificates(X509Crl* crl) {
    if (crl == nullptr) return Fail(StatusBadArgument);
    if (crl->tbsCertList == nullptr) return Fail(StatusAbsent);
    FreeField(&crl->tbsCertList->revokedCertificates);
    return StatusOk;
}

Status CreateX509RevokedCertificates(X509RevokedCertificates** list) { return CreateTree(list); }

Status AddX509RevokedCertificatesRevokedCertificate(X509RevokedCertificates* list, const uint8_t* serial,
                                                    uint32_t serialLength, const LibraryTime* revocationDate,
                                                    uint32_t* index) {
    if (AnyNull(list, serial, revocationDate)) return Fail(StatusBadArgument);
    Tree<X509RevokedCertificate> entry;
    if (const Status status = entry.Create()) return status;
    if (const Status status = SetAsn1ValueField(&entry->userCertificate, Asn1KindInteger, serial, serialLength)) {
        return status;
    }
    if (const Status status = LibraryTimeToAsn1Time(revocationDate, entry->revocationDate)) return status;
    if (const Status status = ReserveAsn1ListItem(list)) return status;  // a failed add loses no entries
    if (const Status status = entry.MoveTo(list)) return status;
    if (index != nullptr) *index = list->count - 1;
    return StatusOk;
}

Status GetX509RevokedCertificatesRevokedCertificateExtensions(const X509RevokedCertificates* list, uint32_t index,
                                                              X509Extensions* extensions) {
    if (AnyNull(extensions) || !HasIndex(list, index)) return Fail(StatusBadArgument);
    const auto entry = MemberAt(list, index);
    return Borrow(At<&X509RevokedCertificate::crlEntryExtensions>(entry.node), extensions);
}

Status EncodeX509RevokedCertificates(const X509RevokedCertificates* list, uint8_t* buffer, uint32_t* length) {
    return EncodeTree(list, buffer, length);
}

Status FreeX509RevokedCertificates(X509RevokedCertificates* list) { return FreeTree(list); }
