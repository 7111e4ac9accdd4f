#include "tlvforge/certificate.h"

#include "engine/access.h"
#include "x509/certificate.schema.h"

using namespace tlvforge;

Status CreateCertificate(Certificate** certificate) { return CreateTree(certificate); }

Status CreateCertificateCopy(const Certificate* certificate, Certificate** copy) { return CopyTree(certificate, copy); }

Status DecodeCertificate(const uint8_t* bytes, uint32_t length, Certificate** certificate) {
    return DecodeTree(bytes, length, certificate);
}

Status EncodeCertificate(const Certificate* certificate, uint8_t* buffer, uint32_t* length) {
    return EncodeTree(certificate, buffer, length);
}

Status FreeCertificate(Certificate* certificate) { return FreeTree(certificate); }

Status CreateCertificates(Certificates** certificates) { return CreateTree(certificates); }

Status CreateCertificatesCopy(const Certificates* source, Certificates** copy) { return CopyTree(source, copy); }

Status DecodeCertificates(const uint8_t* bytes, uint32_t length, Certificates** certificates) {
    return DecodeTree(bytes, length, certificates);
}

Status EncodeCertificates(const Certificates* certificates, uint8_t* buffer, uint32_t* length) {
    return EncodeTree(certificates, buffer, length);
}

Status FreeCertificates(Certificates* certificates) { return FreeTree(certificates); }

Status AddCertificateToCertificates(Certificates* certificates, Certificate* certificate) {
    if (AnyNull(certificates, certificate)) return Fail(StatusBadArgument);
    return AddMember(certificates, certificate);
}

Status GetCertificatesCount(const Certificates* certificates, uint32_t* count) {
    return GetListCount(certificates, count);
}

Status GetCertificatesCertificate(const Certificates* certificates, uint32_t index, Certificate** certificate) {
    if (AnyNull(certificate) || !HasIndex(certificates, index)) return Fail(StatusBadArgument);
    return Borrow(MemberAt(certificates, index), certificate);
}

Status GetCertificateToBeSignedPart(const Certificate* certificate, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(certificate, length)) return Fail(StatusBadArgument);
    return Encode(At<&Certificate::tbsCertificate>(certificate), buffer, length);
}
