// Calls that must not compile; CASE selects one. The comment in each is what the compiler has to say.
#include "tlvforge/tlvforge.hpp"

using namespace tlvforge;

void Misuse(Handle<Certificates>& list, Handle<Certificate>& certificate, Handle<X509Name>& name) {
#if CASE == 0
    Call(AddCertificateToCertificates, list, certificate.get());  // compiles
    (void)Get(GetCertificateSubject, certificate);
#elif CASE == 1
    Call(AddCertificateToCertificates, list, certificate);  // this call adopts the object
#elif CASE == 2
    (void)Get(GetCertificateSubject, name);  // a handle of another type
#elif CASE == 3
    (void)Get(GetCertificateSerialNumber);  // too few arguments
#elif CASE == 4
    (void)Get(GetCertificateSerialNumber, certificate, nullptr, nullptr);  // too many arguments
#elif CASE == 5
    (void)Get<Bytes>(GetCertificateSignatureAlgorithmOidAndParameters, certificate);  // another number of outputs
#elif CASE == 6
    (void)Get(GetLastFileErrorAsn);  // not a function that returns a Status
#elif CASE == 7
    (void)Handle<int>(new int);  // no Free function
#elif CASE == 8
    constexpr Oid oid("2.5.");  // NotAnObjectIdentifier
    (void)oid;
#elif CASE == 9
    (void)Get(SetCertificateVersion, certificate, "2");  // an argument has the wrong type
#endif
}
