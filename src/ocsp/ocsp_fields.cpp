#include "ocsp/ocsp_fields.h"

namespace tlvforge {

Status ReadCertID(const Part<CertID>& field, Output hashOid, Output parameters, Output nameHash, Output keyHash,
                  Output serial) {
    if (!field || AnyNull(field->hashAlgorithm, field->issuerNameHash, field->issuerKeyHash, field->serialNumber)) {
        return field.Absent();
    }
    if (const Status status = GetAlgorithmIdentifierOid(field->hashAlgorithm, hashOid)) return status;
    return ReadOutputs(
        OutputRule::kPastSmallUntilFit,
        [&] { return GetAlgorithmIdentifierParameters(field->hashAlgorithm, parameters); },
        BytesInto(field->issuerNameHash, nameHash.buffer, nameHash.length),
        BytesInto(field->issuerKeyHash, keyHash.buffer, keyHash.length),
        BytesInto(field->serialNumber, serial.buffer, serial.length));
}

Status WriteCertID(const Part<CertID>& field, const uint8_t* hashOid, Bytes parameters, Bytes nameHash, Bytes keyHash,
                   Bytes serial) {
    if (!field) return field.Absent();
    const auto set = [](Asn1Value** cell, uint32_t kind, Bytes bytes) {
        return SetAsn1ValueField(cell, kind, bytes.data, bytes.length);
    };
    const auto algorithm = At<&CertID::hashAlgorithm>(field.node, field.place);
    if (const Status status = SetAlgorithm(algorithm, hashOid, parameters)) return status;
    if (const Status status = set(&field->issuerNameHash, Asn1KindOctetString, nameHash)) return status;
    if (const Status status = set(&field->issuerKeyHash, Asn1KindOctetString, keyHash)) return status;
    return set(&field->serialNumber, Asn1KindInteger, serial);
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
