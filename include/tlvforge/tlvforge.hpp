/*
 * The interface for C++17 and later: the functions of the C headers with owners, ranges, times and texts of C++, and
 * with exceptions, or without in the namespace tlvforge::nothrow. All of it is compiled into the program; the library
 * exports the C functions alone. docs/cpp.md shows it at work.
 *
 *     using namespace tlvforge;
 *     Handle<Certificate> certificate = Decode<Certificate>(ReadFile("certificate.der"));
 *     printf("%s\n", ToText(Get(GetCertificateSubject, certificate)).c_str());
 *     for (auto& extension : Extensions(certificate)) printf("%s\n", extension.oid.text().c_str());
 *
 * Every function of tlvforge that can fail throws Error and stands in tlvforge::nothrow too, where it returns a Result.
 * Compiled without exceptions, that is all there is. A Handle, a Result and a range belong to one thread at a time.
 */
#ifndef TLVFORGE_TLVFORGE_HPP
#define TLVFORGE_TLVFORGE_HPP

#if __cplusplus < 201703L
#error "tlvforge.hpp needs C++17 or later: -std=c++17"
#endif

#include "tlvforge/cpp/bytes.hpp"
#include "tlvforge/cpp/call.hpp"
#include "tlvforge/cpp/handle.hpp"
#include "tlvforge/cpp/lists.hpp"
#include "tlvforge/cpp/messages.hpp"
#include "tlvforge/cpp/names.hpp"
#include "tlvforge/cpp/pem.hpp"
#include "tlvforge/cpp/result.hpp"
#include "tlvforge/cpp/time.hpp"

#endif
