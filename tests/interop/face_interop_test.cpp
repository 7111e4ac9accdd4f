// Names on one line, beside OpenSSL's of the same certificates.
#include <gtest/gtest.h>
#include <openssl/x509.h>

#include "support.h"
#include "tlvforge/cpp/names.hpp"

namespace {

using namespace tlvforge;

// As RFC 2253, whose successor is RFC 4514, but with the characters of UTF-8 as they are.
std::string LineByOpenSsl(const X509_NAME* name) {
    const std::unique_ptr<BIO, int (*)(BIO*)> out(BIO_new(BIO_s_mem()), BIO_free);
    if (X509_NAME_print_ex(out.get(), name, 0, XN_FLAG_RFC2253 & ~static_cast<unsigned long>(ASN1_STRFLGS_ESC_MSB)) < 0)
        return "refused";
    const char* data = nullptr;
    const long size = BIO_get_mem_data(out.get(), &data);
    return std::string(data, static_cast<size_t>(size));
}

// Ours, with the one short name that OpenSSL writes otherwise. Empty where it knows a type by no name, and where an RDN
// has several entries, which it turns round as well.
std::string Comparable(std::string line) {
    if (line.find("INNLE=") != line.npos || line.find('+') != line.npos) return {};
    for (size_t at; (at = line.find("STREET=")) != line.npos;) line.replace(at, 6, "street");
    return line;
}

TEST(FaceInterop, NamesReadAsByOpenSsl) {
    SKIP_WITHOUT_CORPUS();
    size_t compared = 0;
    for (const auto& [file, der] : support::Corpus("cert")) {
        const uint8_t* at = der.data();
        const std::unique_ptr<X509, void (*)(X509*)> theirs(d2i_X509(nullptr, &at, static_cast<long>(der.size())),
                                                            X509_free);
        const auto ours = nothrow::Decode<Certificate>(der);
        if (!theirs || !ours) continue;
        const std::pair<X509Name*, const X509_NAME*> names[] = {
            {Get(GetCertificateSubject, *ours), X509_get_subject_name(theirs.get())},
            {Get(GetCertificateIssuer, *ours), X509_get_issuer_name(theirs.get())}};
        for (const auto& [name, peer] : names) {
            const std::string line = Comparable(ToText(name));
            if (line.empty()) continue;
            EXPECT_EQ(line, LineByOpenSsl(peer)) << file;
            ++compared;
        }
    }
    EXPECT_GT(compared, 100u);
}

}  // namespace
