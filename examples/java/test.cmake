# What the programs print of documents that are known, and what the openssl command says of a file that Java signed.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/../openssl_command.cmake)

function(expect_said expected)
    if(NOT said STREQUAL expected)
        message(FATAL_ERROR "printed was\n${said}instead of\n${expected}")
    endif()
endfunction()

run(${JAVA} ListCrl ${SEEDS}/crl/full)
expect_said("Issuer       CN=root, C=RU
This update  2026-11-21T10:14:53Z
Next update  2026-12-21T10:14:53Z
  1  2025-01-01T00:00:00Z
  2  2025-01-01T00:00:00Z  key compromise
  4  2025-01-01T00:00:00Z  on hold
  300  2025-01-01T00:00:00Z  CA compromise
4 revoked
")
run_refused("StatusBadEncoding: the bytes" ${JAVA} ListCrl ${SEEDS}/certificate/plain)

set(plain "Certificate 5051158e6ae4ee706eaace8856824053f8448db1
  subject    CN=a
  issuer     CN=a
  valid      2026-11-21T09:27:39Z to 2036-11-18T09:27:39Z
  key        1.3.101.112
")
run(${JAVA} ReadCertificates ${SEEDS}/certificate/plain)
expect_said("${plain}")

if(NOT OPENSSL)
    message("Bundles and signatures are left out: there is no openssl command")
    return()
endif()
run(${OPENSSL} req -x509 -newkey rsa:2048 -nodes -keyout key.pem -out certificate.pem -utf8 -subj "/CN=Анна"
    -set_serial 0x1F2E -addext keyUsage=critical,digitalSignature)
run(${OPENSSL} x509 -inform DER -in ${SEEDS}/certificate/plain -out plain.pem)
file(WRITE ${DIRECTORY}/bundle.pem "several\n")
foreach(part plain key certificate)
    file(READ ${DIRECTORY}/${part}.pem pem)
    file(APPEND ${DIRECTORY}/bundle.pem "${pem}")
endforeach()
run(${JAVA} ReadCertificates bundle.pem)
string(REGEX REPLACE "  extension  2.5.29.(14|35|19),[^\n]*\n" "" said "${said}") # which come by themselves
string(REGEX REPLACE "(  valid      )[^\n]*(\n  key        1.2.840)" "\\1some days\\2" said "${said}")
expect_said("${plain}Certificate 1f2e
  subject    CN=Анна
  issuer     CN=Анна
  valid      some days
  key        1.2.840.113549.1.1.1
  extension  2.5.29.15, critical, 4 bytes
")

file(SIZE ${DIRECTORY}/bundle.pem size)
run(${JAVA} SignFile bundle.pem certificate.pem key.pem signed.p7m)
if(NOT said MATCHES "^signed at [-0-9]+T[:0-9]+Z, ${size} bytes inside\n$")
    message(FATAL_ERROR "SignFile printed ${said}")
endif()
set(verify ${OPENSSL} cms -verify -binary -inform DER -CAfile certificate.pem)
run(${verify} -in signed.p7m -out content)
expect_same(content bundle.pem)
run(${verify} -in signed.p7m.p7s -content bundle.pem -out content)
run_refused("Verification failure" ${verify} -in signed.p7m.p7s -content key.pem -out content)
