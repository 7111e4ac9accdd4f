// References to certificates and revocation data, and the data itself, as attributes of advanced signatures hold them.
#pragma once

#include <string>

#include "crl.h"
#include "ocsp.h"

namespace examples {

// What something is known by, and the algorithm of the hash, whose identifier is empty for the one of the first
// edition.
struct Reference {
    Output algorithm, parameters, hash;
};

inline void PrintReferenceHash(Outline& outline, const Reference& reference) {
    if (reference.algorithm.bytes.empty()) return outline.Hex("SHA-1 hash", reference.hash.bytes);
    PrintAlgorithm(outline, "hash algorithm", {StatusOk, reference.algorithm.bytes, reference.parameters.bytes});
    outline.Hex("hash", reference.hash.bytes);
}

inline void PrintOtherPart(Outline& outline, const Output& oid, const Output& value) {
    if (!oid.bytes.empty()) PrintElement(outline, DescribeOid(oid.bytes), value.bytes);
}

// --- References to certificates, in three forms of the same content ---

struct CertificateReference : Reference {
    Output serial;
    X509GeneralNames* issuer = nullptr;
};

struct SigningCertificateForm {
    using List = ESSCertIDs;
    static constexpr auto kDecode = DecodeRsaAttributeSigningCertificateValue;
    static constexpr auto kFree = FreeESSCertIDs;
    static constexpr auto kGetCount = GetESSCertIDCount;
    static Status Read(const List* list, uint32_t index, CertificateReference& out) {
        return GetESSCertIDInformation(list, index, out.hash.data, &out.hash.length, &out.issuer, out.serial.data,
                                       &out.serial.length);
    }
};

template <auto GetInformation, class List>
Status ReadWithAlgorithm(const List* list, uint32_t index, CertificateReference& out) {
    return GetInformation(list, index, out.algorithm.data, &out.algorithm.length, out.parameters.data,
                          &out.parameters.length, out.hash.data, &out.hash.length, &out.issuer, out.serial.data,
                          &out.serial.length);
}

struct SigningCertificateV2Form {
    using List = ESSCertIDsV2;
    static constexpr auto kDecode = DecodeRsaAttributeSigningCertificateV2Value;
    static constexpr auto kFree = FreeESSCertIDsV2;
    static constexpr auto kGetCount = GetESSCertIDV2Count;
    static constexpr auto Read = ReadWithAlgorithm<GetESSCertIDV2Information, List>;
};

struct OtherSigningCertificateForm {
    using List = OtherCertIDs;
    static constexpr auto kDecode = DecodeRsaAttributeOtherSigningCertificateValue;
    static constexpr auto kFree = FreeOtherCertIDs;
    static constexpr auto kGetCount = GetOtherCertIDCount;
    static constexpr auto Read = ReadWithAlgorithm<GetOtherCertIDInformation, List>;
};

template <class Form>
void PrintCertificateReferenceList(Outline& outline, const typename Form::List* list) {
    PrintMembersField(outline, "Certificates", Form::kGetCount, list, [&](uint32_t index) {
        CertificateReference reference;
        const auto read = [&] { return Form::Read(list, index, reference); };
        const Status status = Fetch(read, reference.algorithm, reference.parameters, reference.hash, reference.serial);
        if (status != StatusOk) return outline.Failed("certificate", status);
        const Outline::Section section = outline.Open("certificate");
        PrintReferenceHash(outline, reference);
        if (reference.issuer == nullptr) return;
        const Outline::Section issuer = outline.Open("issuer");
        PrintGeneralNames(outline, reference.issuer);
        outline.Hex("serial number", reference.serial.bytes);
    });
}

inline void PrintPolicyList(Outline& outline, const ExtensionCertificatePolicies* policies) {
    PrintMembersField(outline, "Policies", GetExtensionPolicyInformationCount, policies, [&](uint32_t index) {
        const Status status = PrintPolicy(outline, policies, index);
        if (status != StatusOk) outline.Failed("policy", status);
    });
}

template <class Form>
Status PrintSigningCertificates(Outline& outline, const Bytes& value) {
    Owned<typename Form::List, Form::kFree> list;
    Owned<ExtensionCertificatePolicies, FreeExtensionCertificatePolicies> policies;
    const Status status = Form::kDecode(value.data(), Size(value), list.Out(), policies.Out());
    if (status != StatusOk) return status;
    PrintCertificateReferenceList<Form>(outline, list);
    if (policies != nullptr) PrintPolicyList(outline, policies);
    return StatusOk;
}

inline constexpr auto PrintCertificateReferences =
    PrintDecoded<OtherCertIDs, FreeOtherCertIDs, DecodeOtherCertIDs,
                 PrintCertificateReferenceList<OtherSigningCertificateForm>>;

// --- References to revocation data ---

inline void PrintCrlReference(Outline& outline, const CrlListIDs* list, uint32_t index) {
    Reference crl;
    Output number;
    X509Name* issuer = nullptr;
    LibraryTime issued = {};
    Status timeRead = StatusOk;
    const auto read = [&] {
        const Status status = GetCrlValidatedIdInformation(
            list, index, crl.hash.data, &crl.hash.length, crl.algorithm.data, &crl.algorithm.length,
            crl.parameters.data, &crl.parameters.length, &issuer, &issued, number.data, &number.length);
        // An ordinary UTCTime is refused when all that stands in front of it has been read.
        timeRead = status == StatusBadValue ? status : StatusOk;
        return status == StatusBadValue ? StatusOk : status;
    };
    const Status status = Fetch(read, crl.hash, crl.algorithm, crl.parameters, number);
    if (status != StatusOk) return outline.Failed("CRL", status);
    const Outline::Section section = outline.Open("CRL");
    PrintReferenceHash(outline, crl);
    if (issuer == nullptr) return;
    PrintName(outline, "issuer", issuer);
    if (timeRead != StatusOk) return outline.Failed("issued", timeRead);
    outline.Line("issued", ToText(issued));
    if (!number.bytes.empty()) outline.Hex("number", number.bytes);
}

inline void PrintOcspReference(Outline& outline, const OcspListIDs* list, uint32_t index) {
    Reference response;
    Output keyHash;
    void* responder = nullptr;
    LibraryTime producedAt = {};
    const auto read = [&] {
        return GetOcspResponseIdInformation(list, index, &responder, keyHash.data, &keyHash.length, &producedAt,
                                            response.hash.data, &response.hash.length, response.algorithm.data,
                                            &response.algorithm.length, response.parameters.data,
                                            &response.parameters.length);
    };
    const Status status = Fetch(read, keyHash, response.hash, response.algorithm, response.parameters);
    if (status != StatusOk) return outline.Failed("OCSP response", status);
    const Outline::Section section = outline.Open("OCSP response");
    if (responder != nullptr) {
        const Fetched name = Get(GetAsn1AnyValue, responder);
        PrintEncodedName(outline, "responder", name.bytes);
    } else {
        outline.Hex("responder key hash", keyHash.bytes);
    }
    outline.Line("produced at", ToText(producedAt));
    if (!response.hash.bytes.empty()) PrintReferenceHash(outline, response);
}

inline void PrintRevocationReference(Outline& outline, const CrlOcspRefs* list, uint32_t index) {
    CrlListIDs* crls = nullptr;
    OcspListIDs* responses = nullptr;
    Output otherOid, otherValue;
    const auto read = [&] {
        return GetCrlOcspRefInformation(list, index, &crls, &responses, otherOid.data, &otherOid.length,
                                        otherValue.data, &otherValue.length);
    };
    const Status status = Fetch(read, otherOid, otherValue);
    if (status != StatusOk) return outline.Failed("certificate", status);
    const Outline::Section section = outline.Open("certificate");
    if (crls != nullptr) {
        PrintMembersField(outline, "CRLs", GetCrlListIDsCount, crls,
                          [&](uint32_t i) { PrintCrlReference(outline, crls, i); });
    }
    if (responses != nullptr) {
        PrintMembersField(outline, "OCSP responses", GetOcspListIDsCount, responses,
                          [&](uint32_t i) { PrintOcspReference(outline, responses, i); });
    }
    PrintOtherPart(outline, otherOid, otherValue);
}

inline void PrintRevocationReferenceList(Outline& outline, const CrlOcspRefs* list) {
    PrintMembersField(outline, "Certificates", GetCrlOcspRefCount, list,
                      [&](uint32_t index) { PrintRevocationReference(outline, list, index); });
}

inline constexpr auto PrintRevocationReferences =
    PrintDecoded<CrlOcspRefs, FreeCrlOcspRefs, DecodeRsaAttributeCompleteRevocationRefs, PrintRevocationReferenceList>;

// --- Revocation data ---

inline Status PrintRevocationValues(Outline& outline, const Bytes& value) {
    Owned<X509Crls, FreeX509Crls> crls;
    Owned<OcspBasicResponses, FreeOcspBasicResponses> responses;
    Output otherOid, otherValue;
    const auto decode = [&] {
        return DecodeRsaAttributeRevocationValues(value.data(), Size(value), crls.Out(), responses.Out(), otherOid.data,
                                                  &otherOid.length, otherValue.data, &otherValue.length);
    };
    const Status status = Fetch(decode, otherOid, otherValue);
    if (status != StatusOk) return status;
    if (crls != nullptr) PrintLentMembers(outline, "CRLs", GetX509CrlsCount, GetX509CrlsCrl, crls, PrintCrl);
    if (responses != nullptr) {
        PrintLentMembers(outline, "OCSP responses", GetOcspBasicResponsesCount, GetOcspBasicResponsesResponse,
                         responses, PrintBasicResponse);
    }
    PrintOtherPart(outline, otherOid, otherValue);
    return StatusOk;
}

// --- Hashes of all that an archive's time-stamp covers ---

inline void PrintHashes(Outline& outline, const std::string& title, const OctetStrings* hashes) {
    PrintMembersField(outline, title, GetOctetStringsCount, hashes,
                      [&](uint32_t index) { outline.Hex("hash", Get(GetOctetStringsValue, hashes, index)); });
}

inline Status PrintHashIndex(Outline& outline, const Bytes& value) {
    Output algorithm, parameters;
    Owned<OctetStrings, FreeOctetStrings> certificates, crls, attributes;
    const auto decode = [&] {
        return DecodeRsaAttributeAtsHashIndex(value.data(), Size(value), algorithm.data, &algorithm.length,
                                              parameters.data, &parameters.length, certificates.Out(), crls.Out(),
                                              attributes.Out());
    };
    const Status status = Fetch(decode, algorithm, parameters);
    if (status != StatusOk) return status;
    PrintAlgorithm(outline, "hash algorithm", {StatusOk, algorithm.bytes, parameters.bytes});
    PrintHashes(outline, "Certificates", certificates);
    PrintHashes(outline, "CRLs", crls);
    PrintHashes(outline, "Attributes", attributes);
    return StatusOk;
}

}  // namespace examples
