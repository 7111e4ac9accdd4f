#include "tlvforge/certificate.h"

#include "engine/nodes.h"
#include "x509/certificate.schema.h"

using namespace tlvforge;

Status CreateCertificate(Certificate** certificate) {
    return CreateAsn1Object(&schema::Certificate, Untyped(certificate), 1);
}

Status CreateCertificateCopy(const Certificate* certificate, Certificate** copy) {
    return CopyTree(schema::Certificate, certificate, copy);
}

Status DecodeCertificate(const uint8_t* bytes, uint32_t length, Certificate** certificate) {
    return DecodeTree(schema::Certificate, bytes, length, certificate);
}

Status EncodeCertificate(const Certificate* certificate, uint8_t* buffer, uint32_t* length) {
    return GetAsn1EncodedValue(certificate, &schema::Certificate, buffer, length);
}

Status FreeCertificate(Certificate* certificate) { return FreeAsn1Object(&schema::Certificate, certificate); }

Status CreateCertificates(Certificates** certificates) {
    return CreateAsn1Object(&schema::Certificates, Untyped(certificates), 0);
}

Status CreateCertificatesCopy(const Certificates* certificates, Certificates** copy) {
    return CopyTree(schema::Certificates, certificates, copy);
}

Status DecodeCertificates(const uint8_t* bytes, uint32_t length, Certificates** certificates) {
    return DecodeTree(schema::Certificates, bytes, length, certificates);
}

Status EncodeCertificates(const Certificates* certificates, uint8_t* buffer, uint32_t* length) {
    return GetAsn1EncodedValue(certificates, &schema::Certificates, buffer, length);
}

Status FreeCertificates(Certificates* certificates) { return FreeAsn1Object(&schema::Certificates, certificates); }

Status AddCertificateToCertificates(Certificates* certificates, Certificate* certificate) {
    if (AnyNull(certificates, certificate)) return Fail(StatusBadArgument);
    return AddAsn1ListItem(certificates, schema::Certificate, certificate);
}

Status GetCertificatesCount(const Certificates* certificates, uint32_t* count) {
    return GetListCount(certificates, count);
}

Status GetCertificatesCertificate(const Certificates* certificates, uint32_t index, Certificate** certificate) {
    return GetListMember(certificates, index, certificate);
}

Status GetCertificateToBeSignedPart(const Certificate* certificate, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(certificate, length)) return Fail(StatusBadArgument);
    if (certificate->tbsCertificate == nullptr) return Fail(StatusAbsent);
    return GetAsn1EncodedValue(certificate->tbsCertificate, &schema::TBSCertificate, buffer, length);
}
