# The openssl command encrypts a file, envelope rebuilds the message, and the openssl command decrypts the result.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/openssl_command.cmake)

function(write_content lines)
    string(REPEAT "The lunch is at noon.\n" ${lines} content)
    file(WRITE ${DIRECTORY}/content.txt "${content}")
endfunction()

# A key and a certificate for it, NAME.key and NAME.pem.
function(make_recipient name)
    run(${OPENSSL} req -x509 -newkey ${ARGN} -nodes -keyout ${name}.key -out ${name}.pem -subj /CN=${name} -days 2
        -addext subjectKeyIdentifier=hash)
endfunction()

# Once as DER, which has to come out as it was, and once in BER with the content in segments.
function(rebuild encryption)
    run(${OPENSSL} cms -encrypt -binary -in content.txt -outform DER -out der ${encryption})
    run(${ENVELOPE} der rebuilt-der)
    set(outline "${said}" PARENT_SCOPE)
    expect_same(der rebuilt-der)
    run(${OPENSSL} cms -encrypt -stream -binary -in content.txt -outform DER -out ber ${encryption})
    run(${ENVELOPE} ber rebuilt-ber)
endfunction()

# Whoever has one of the keys can open it. OpenSSL finds the recipient by the certificate.
function(decrypt)
    foreach(message rebuilt-der rebuilt-ber)
        run(${OPENSSL} cms -decrypt -inform DER -in ${message} -out decrypted ${ARGN})
        expect_same(decrypted content.txt)
    endforeach()
    string(JOIN " " with ${ARGN})
    message("The openssl command decrypted it with ${with}")
endfunction()

function(decrypt_by name)
    decrypt(-inkey ${name}.key -recip ${name}.pem)
endfunction()

function(expect_outline)
    foreach(text IN LISTS ARGN)
        string(FIND "${outline}" "${text}" place)
        if(place EQUAL -1)
            message(FATAL_ERROR "\"${text}\" is missing in\n${outline}")
        endif()
    endforeach()
    message("${outline}")
endfunction()

if(NOT OPENSSL)
    message("There is nothing to rebuild without the openssl command")
    return()
endif()
write_content(1000)

make_recipient(rsa rsa:2048)
make_recipient(ec ec -pkeyopt ec_paramgen_curve:P-256)
rebuild("-aes256;rsa.pem")
expect_outline("key transport by 1.2.840.113549.1.1.1, 256 bytes" "content encrypted by 2.16.840.1.101.3.4.1.42")
decrypt_by(rsa)
rebuild("-aes256;-keyid;rsa.pem;ec.pem")
expect_outline("key transport" "recipient of kind 2")
decrypt_by(rsa)
decrypt_by(ec)
set(secret -secretkey 000102030405060708090A0B0C0D0E0F -secretkeyid C0FFEE)
rebuild("-aes128;-pwri_password;noon;${secret}")
expect_outline("recipient of kind 3" "recipient of kind 4")
decrypt(${secret})
decrypt(-pwri_password noon)

if(NOT GOST)
    message("GOST is left out: the openssl command has no engine \"gost\"")
    return()
endif()
# With GOST 28147-89 the key travels in its own structure, which is rebuilt too.
foreach(algorithm gost2001=1.2.643.2.2.19 gost2012_256=1.2.643.7.1.1.1.1 gost2012_512=1.2.643.7.1.1.1.2)
    string(REPLACE "=" ";" algorithm ${algorithm})
    list(GET algorithm 0 name)
    list(GET algorithm 1 oid)
    make_recipient(${name} ${name} -pkeyopt paramset:A)
    rebuild("-gost89;${name}.pem;rsa.pem")
    expect_outline("key transport by ${oid}," "an ephemeral key, ${oid}," "content encrypted by 1.2.643.2.2.21"
        "initialization vector of 8 bytes, parameter set 1.2.643.7.1.2.5.1.1")
    decrypt_by(${name})
    decrypt_by(rsa)
endforeach()
# A message of this kind can't be opened without its unprotected attribute, the MAC. The engine opens none of its own
# from 4096 bytes on.
write_content(100)
rebuild("-kuznyechik-ctr-acpkm-omac;gost2012_256.pem")
expect_outline("key transport by 1.2.643.7.1.1.7.2.1," "unprotected attribute 1.2.643.7.1.0.6.1.1")
decrypt_by(gost2012_256)
