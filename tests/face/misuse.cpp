// Calls that must not compile. The comment after each is what the compiler has to say.
#include "tlvforge/cpp/call.hpp"

using namespace tlvforge;

void Misuse(Handle<Certificates>& list, Handle<Certificate>& certificate, Handle<X509Name>& name) {
    Call(AddCertificateToCertificates, list, certificate);        // this call adopts the object
    (void)Get(GetCertificateSubject, name);                       // a handle of another type
    (void)Get(GetCertificateSerialNumber);                        // too few arguments
    (void)Get(GetCertificateExtensions, certificate, 1);          // too many arguments
    (void)Get<Bytes>(GetCertificateIssuerUniqueId, certificate);  // another number of outputs
    (void)Get(GetLastFileErrorAsn);                               // not a function that returns a Status
    (void)Handle<int>(new int);                                   // no Free function
    (void)Get(SetCertificateVersion, certificate, "2");           // an argument has the wrong type
    constexpr Oid oid("2.5.");                                    // NotAnObjectIdentifier
    (void)oid;
}
