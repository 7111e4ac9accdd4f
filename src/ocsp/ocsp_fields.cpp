#include "ocsp/ocsp_fields.h"

namespace tlvforge {

Status ReadCertID(const Part<CertID>& field, const CertIDOutputs& out) {
    if (!field || AnyNull(field->hashAlgorithm, field->issuerNameHash, field->issuerKeyHash, field->serialNumber)) {
        return field.Absent();
    }
    if (const Status status = GetAlgorithmIdentifierOid(field->hashAlgorithm, out.hashOid)) return status;
    return ReadOutputs(
        OutputRule::kPastSmallUntilFit,
        [&] { return GetAlgorithmIdentifierParameters(field->hashAlgorithm, out.parameters); },
        [&] { return GetAsn1Value(field->issuerNameHash, out.nameHash.buffer, out.nameHash.length); },
        [&] { return GetAsn1Value(field->issuerKeyHash, out.keyHash.buffer, out.keyHash.length); },
        [&] { return GetAsn1Value(field->serialNumber, out.serial.buffer, out.serial.length); });
}

Status WriteCertID(const Part<CertID>& field, const CertIDParts& parts) {
    if (!field) return field.Absent();
    const auto set = [](Asn1Value** cell, uint32_t kind, Bytes bytes) {
        return SetAsn1ValueField(cell, kind, bytes.data, bytes.length);
    };
    const auto algorithm = At<&CertID::hashAlgorithm>(field.node, field.place);
    if (const Status status = SetAlgorithm(algorithm, parts.hashOid, parts.parameters)) return status;
    if (const Status status = set(&field->issuerNameHash, Asn1KindOctetString, parts.nameHash)) return status;
    if (const Status status = set(&field->issuerKeyHash, Asn1KindOctetString, parts.keyHash)) return status;
    return set(&field->serialNumber, Asn1KindInteger, parts.serial);
}

Status ReadAlgorithm(const Part<AlgorithmIdentifier>& field, Output oid, Output parameters) {
    if (!field || field->algorithm == nullptr) return field.Absent();
    return ReadOutputs(
        OutputRule::kAllSmallLast, [&] { return GetAlgorithmIdentifierOid(field.node, oid); },
        [&] { return GetAlgorithmIdentifierParameters(field.node, parameters); });
}

Status AddCertificate(Certificates** certs, Certificate* certificate, Place place) {
    if (const Status status = EnsureList(certs, place)) return status;
    return AddMember(*certs, certificate);
}

}  // namespace tlvforge
