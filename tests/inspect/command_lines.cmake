# Command lines of inspect: the exit status, and what is written to both streams.
cmake_minimum_required(VERSION 3.25)

# A response of OCSP, 30 03 0A 01 06; the same in PEM with a mere number after it; and a time-stamp response whose text
# isn't UTF-8, ends a line and turns the direction of writing.
file(MAKE_DIRECTORY ${DIRECTORY})
string(ASCII 48 3 10 1 6 der)
file(WRITE ${DIRECTORY}/response.der "${der}")
file(WRITE ${DIRECTORY}/both.pem "-----BEGIN OCSP RESPONSE-----\nMAMKAQY=\n-----END OCSP RESPONSE-----\n"
    "-----BEGIN NUMBER-----\nMAMCAQE=\n-----END NUMBER-----\n")
file(WRITE ${DIRECTORY}/hostile.b64 "MBAwDgIBAjAJDAf/IlwK4oCu")
# A response of OCSP whose octets are segments inside of segments, 60000 deep, of indefinite length: 24 80.
string(REPEAT "JIAkgCSA" 20000 segments)
string(REPEAT "AAAAAAAA" 20000 ends)
file(WRITE ${DIRECTORY}/deep.b64 "MIMDqZAKAQaggwOpiDCDA6mDBgEq${segments}${ends}")
file(WRITE ${DIRECTORY}/notes "None of them")
file(WRITE ${DIRECTORY}/empty "")
file(WRITE ${DIRECTORY}/two.der "${der}${der}")
file(WRITE ${DIRECTORY}/tail.der "${der}tail")
file(WRITE ${DIRECTORY}/headed.pem "Some text\n-----BEGIN OCSP RESPONSE-----\nComment: a\n  b\n\n\tMA\tM KAQY=\t\n"
    "-----END OCSP RESPONSE-----\n")
file(WRITE ${DIRECTORY}/bad.pem "-----BEGIN OCSP RESPONSE-----\nMAM\nKA!Y=\n-----END OCSP RESPONSE-----\n")
file(WRITE ${DIRECTORY}/short.pem "-----BEGIN OCSP RESPONSE-----\nMAMKA\n-----END OCSP RESPONSE-----\n")
file(WRITE ${DIRECTORY}/after.pem "-----BEGIN OCSP RESPONSE-----\nMAMKAQY=QQ==\n-----END OCSP RESPONSE-----\n")
execute_process(COMMAND truncate -s 5G ${DIRECTORY}/large COMMAND_ERROR_IS_FATAL ANY)

# Standard input is the OCSP response.
function(expect status text)
    execute_process(COMMAND ${INSPECT} ${ARGN} WORKING_DIRECTORY ${DIRECTORY} INPUT_FILE ${DIRECTORY}/response.der
        RESULT_VARIABLE actual OUTPUT_VARIABLE said ERROR_VARIABLE said)
    string(FIND "${said}" "${text}" place)
    if(NOT actual EQUAL status OR place EQUAL -1)
        message(SEND_ERROR "tlvforge-inspect ${ARGN} gave ${actual}\n${said}instead of ${status}\n${text}")
    endif()
endfunction()

set(response "OCSP response\n  Response status: 6 unauthorized\n")
expect(0 "Certificate\n  Version: 3\n  Serial number: 4993650A" --sample)
expect(0 "usage: tlvforge-inspect" --help)
expect(0 "usage: tlvforge-inspect" -h)
expect(0 "${response}")
expect(0 "${response}" --kind ocsp-response --color=never -- response.der)
expect(0 "# response.der\n${response}\n# standard input\n${response}" response.der -)
expect(0 "# both.pem, block 1\n${response}" both.pem --pem 1)
expect(0 "# both.pem, block 1\n${response}" "--pem=OCSP RESPONSE" both.pem)
expect(1 "# both.pem, block 1\n${response}both.pem, block 2: not a known document
    status 302, the bytes aren't well-formed BER, or not the structure that was expected, for every kind
    nearest to timestamp-request, but at byte 5, messageImprint: nothing instead of SEQUENCE
    in the block NUMBER of line 4\n" both.pem)
expect(0 "${response}" headed.pem)
expect(0 "# two.der, document 1\n${response}\n# two.der, document 2\n${response}" two.der)
expect(0 "${response}After the document: 7461696C\n" tail.der)
string(ASCII 27 escape)
string(REPLACE "ESC" "${escape}" coloured
    "ESC[1mOCSP responseESC[0m\nESC[2m│ ESC[0mESC[36mResponse statusESC[0m                       6 unauthorized\n")
expect(0 "${coloured}" --color response.der)

set(line [[{"file":"both.pem","block":1,"label":"OCSP RESPONSE","kind":"ocsp-response",]])
string(APPEND line [["outline":[{"name":"OCSP response","members":[]])
string(APPEND line [[{"name":"Response status","value":"6 unauthorized"}]}]}]] "\n")
expect(1 "${line}" --json both.pem)
expect(1 [["block":2,"label":"NUMBER","error":"not a known document; status 302, ]] --json both.pem)
expect(0 [["value":"\\xFF\"\\\\\\u{A}\\u{202E}"]] --json hostile.b64)
expect(0 "    Content type: 1.2\n" --limit 8 deep.b64)

expect(1 "response.der: not of this kind\n" --kind crl response.der)
expect(1 "nearest to crl, but at byte 2, tbsCertList: ENUMERATED instead of SEQUENCE\n" --kind crl response.der)
expect(1 "notes: neither DER nor PEM
    it begins with 4E6F6E65206F6620
    as Base64, line 1, column 12: the Base64 ends inside of a group of four\n" notes)
expect(1 "empty: empty\n" empty)
expect(1 "large: 5368709120 bytes, more than the 4294967295 bytes that the library reads\n" large)
expect(1 "bad.pem: no PEM that can be read\n    line 3, column 3: '!' is no character of Base64\n" bad.pem)
expect(1 "short.pem: no PEM that can be read\n    line 3, column 0: the Base64 ends inside" short.pem)
expect(1 "after.pem: no PEM that can be read\n    line 2, column 9: 'Q' after the end of the Base64\n" after.pem)
expect(1 "none: No such file or directory\n" none)
expect(1 ".: Is a directory\n" .)
expect(1 "both.pem: no block 3 of PEM, which has 2\n" both.pem --pem 3)
expect(1 "response.der: DER, and without blocks\n" --pem 1 response.der)
expect(1 "hostile.b64: no PEM, and without blocks\n" --pem 1 hostile.b64)
expect(1 "${response}" none response.der)
expect(2 "tlvforge-inspect: there is no kind picture\nusage:" --kind picture)
expect(2 "tlvforge-inspect: there is no option --bogus\nusage:" --bogus response.der)
expect(2 "tlvforge-inspect: there is no option -x\nusage:" -xy)
expect(2 "tlvforge-inspect: there is no option --json=no\nusage:" --json=no)
expect(2 "tlvforge-inspect: a value is missing after --pem\nusage:" response.der --pem)
expect(2 "tlvforge-inspect: a limit is a number, not x\nusage:" --limit=x)
expect(2 "tlvforge-inspect: colours are always, never or auto, not pink\nusage:" --color=pink)
expect(2 "tlvforge-inspect: the sample is shown alone, without response.der\nusage:" --sample response.der)

# What isn't a document of the library is said by name, and no secret is shown.
find_program(OPENSSL openssl)
if(NOT OPENSSL)
    message("keys are not tested: there is no openssl command")
    return()
endif()
function(make file)
    execute_process(COMMAND ${OPENSSL} ${ARGN} WORKING_DIRECTORY ${DIRECTORY} OUTPUT_FILE ${DIRECTORY}/${file}
        ERROR_QUIET COMMAND_ERROR_IS_FATAL ANY)
endfunction()
make(rsa.pem genpkey -algorithm RSA -pkeyopt rsa_keygen_bits:1024)
make(rsa1.pem rsa -in rsa.pem -traditional)
make(encrypted.der pkcs8 -topk8 -in rsa.pem -passout pass:x -outform DER)
make(ec.pem genpkey -algorithm EC -pkeyopt ec_paramgen_curve:P-521)
make(ec1.pem ec -in ec.pem)
make(ec1.enc.pem ec -in ec.pem -aes128 -passout pass:x)
make(public.der pkey -in ec.pem -pubout -outform DER)
make(public.pem pkey -in rsa.pem -pubout)
make(parameters.pem ecparam -name P-384)
make(root.pem req -x509 -key rsa.pem -subj /CN=Root -days 1000)
make(store.p12 pkcs12 -export -in root.pem -inkey rsa.pem -passout pass:x)
foreach(row
        "rsa.pem|Private key, PKCS#8\n  Version: 0\n" "rsa1.pem|RSA private key, PKCS#1\n" "ec.pem|Private key, PKCS#8\n"
        "encrypted.der|Encrypted private key, PKCS#8\n  Encryption algorithm: PBES2 " "ec1.pem|EC private key, SEC 1\n"
        "public.der|Public key\n  Algorithm: ecPublicKey (1.2.840.10045.2.1)\n    Parameters: P-521 (1.3.132.0.35)\n  Size: 521 bits\n"
        "public.pem|  Size: 1024 bits\n" "public.pem|  Public exponent: 65537\n"
        "parameters.pem|EC parameters: P-384 (1.3.132.0.34)\n" "store.p12|PKCS#12 store of keys and certificates\n")
    string(REPLACE "|" ";" row "${row}")
    list(GET row 0 file)
    list(GET row 1 text)
    expect(0 "${text}" ${file})
endforeach()
expect(1 "ec1.enc.pem: encrypted: EC PRIVATE KEY\n" ec1.enc.pem)
expect(0 " bytes, secret, not shown\n" --kind private-key rsa.pem)

# Fingerprints and summaries against the openssl command.
make(fingerprint x509 -in root.pem -noout -fingerprint -sha256)
file(READ ${DIRECTORY}/fingerprint fingerprint)
string(REGEX REPLACE ".*=|[:\n]" "" fingerprint "${fingerprint}")
expect(0 "    SHA-256: ${fingerprint}\n" root.pem)
make(signed.der cms -sign -binary -nodetach -in notes -signer root.pem -inkey rsa.pem -outform DER)
expect(0 "  Certificates: 1\n    CN=Root\n      Issuer: CN=Root\n" signed.der)
expect(0 "      SHA-256: ${fingerprint}\n" --certificates signed.der)
expect(0 "    Content: None of them\n" signed.der)
expect(0 "\n    and 33 bytes more\n" --limit 96 public.pem)

# Values that are beyond the library are shown as they stand, and what it refuses as raw elements, with the reason.
function(make_der file)
    list(JOIN ARGN "\n" text)
    file(WRITE ${DIRECTORY}/${file}.cnf "${text}\n")
    make(${file}.txt asn1parse -genconf ${file}.cnf -noout -out ${file})
endfunction()
set(imprint "[imprint]" "algorithm=SEQUENCE:algorithm" "hash=FORMAT:HEX,OCTETSTRING:0102" "[algorithm]" "oid=OID:1.2.3.4")
make_der(info.der "asn1=SEQUENCE:info" "[info]" "version=INTEGER:1" "policy=OID:1.2.3" "imprint=SEQUENCE:imprint"
    "number=INTEGER:5" "time=GENTIME:99991231235959Z" "nonce=INTEGER:-300" "more=UTF8:unheard of" ${imprint})
set(remark "beyond the years that the library converts")
expect(0 "  Gen time: 99991231235959Z (${remark})\n" info.der)
expect(0 "{\"name\":\"Gen time\",\"value\":\"99991231235959Z\",\"remark\":\"${remark}\"}" --json info.der)
expect(0 "  Nonce: -012C\n" info.der)
expect(0 "  Fields that the library passes over\n    UTF8String: unheard of\n" info.der)
make_der(crls.der "asn1=SEQUENCE:info" "[info]" "type=OID:1.2.840.113549.1.7.2" "content=EXPLICIT:0,SEQUENCE:signed"
    "[signed]" "version=INTEGER:1" "digests=SET:none" "content=SEQUENCE:content" "crls=IMPLICIT:1,SET:crls"
    "signers=SET:none" "[content]" "type=OID:1.2.840.113549.1.7.1" "[crls]" "crl=SEQUENCE:crl" "[crl]" "a=INTEGER:7" "[none]")
expect(0 "expected (the library doesn't read messages with CRLs)\n    SEQUENCE\n      INTEGER: 1\n      SET\n" crls.der)
make(extensions.pem req -x509 -key rsa.pem -subj /CN=Root -addext subjectAltName=IP:2001:db8:0:0:1:0:0:1
    -addext policyConstraints=requireExplicitPolicy:3 "-addext" "nameConstraints=permitted\;IP:10.0.0.0/255.0.0.0")
expect(0 "      IP address: 2001:db8::1:0:0:1\n" extensions.pem)
expect(0 "      Require explicit policy: 3\n" extensions.pem)
expect(0 "          IP address: 10.0.0.0/255.0.0.0\n" extensions.pem)
