// The interface for C++ as a program without exceptions and run-time types uses it: issues nothing, reads what it made.
#include "tlvforge/tlvforge.hpp"

namespace {

using namespace tlvforge::nothrow;

bool Run() {
    constexpr Oid kCommonName("2.5.4.3"), kKeyUsage("2.5.29.15");
    const auto certificate = Create<Certificate>();
    if (!certificate) return false;
    const auto subject = Get(GetCertificateSubject, *certificate);
    const auto extensions = Get(GetCertificateExtensions, *certificate);
    if (!AddEntry(*subject, kCommonName, "Anna")) return false;
    if (!Call(AddX509ExtensionsExtension, *extensions, kKeyUsage, false, "value")) return false;
    if (Encode(*certificate).status() != StatusAbsent) return false;

    size_t count = 0;
    auto list = Extensions(*certificate);
    for (auto& extension : list) count += extension.oid == kKeyUsage;
    const auto copy = Copy(*certificate);  // refused without an issuer
    return count == 1 && list.status() == StatusOk && copy.status() == StatusBadArgument &&
           *ToText(*subject) == "CN=Anna" && *Find(GetCertificateExtensionValue, *certificate, kKeyUsage);
}

}  // namespace

int main() { return Run() ? 0 : 1; }
