# Command lines of inspect: the exit status, and what comes out on both streams.
cmake_minimum_required(VERSION 3.25)

# A response of OCSP, 30 03 0A 01 06; the same in PEM with a mere number behind it; and a time-stamp response whose text
# isn't UTF-8, ends a line and turns the direction of writing.
file(MAKE_DIRECTORY ${DIRECTORY})
string(ASCII 48 3 10 1 6 der)
file(WRITE ${DIRECTORY}/response.der "${der}")
file(WRITE ${DIRECTORY}/both.pem "-----BEGIN OCSP RESPONSE-----\nMAMKAQY=\n-----END OCSP RESPONSE-----\n"
    "-----BEGIN NUMBER-----\nMAMCAQE=\n-----END NUMBER-----\n")
file(WRITE ${DIRECTORY}/hostile.b64 "MBAwDgIBAjAJDAf/IlwK4oCu")
file(WRITE ${DIRECTORY}/notes "None of them")
file(WRITE ${DIRECTORY}/empty "")

# Standard input is the OCSP response.
function(expect status text)
    execute_process(COMMAND ${INSPECT} ${ARGN} WORKING_DIRECTORY ${DIRECTORY} INPUT_FILE ${DIRECTORY}/response.der
        RESULT_VARIABLE actual OUTPUT_VARIABLE said ERROR_VARIABLE said)
    string(FIND "${said}" "${text}" place)
    if(NOT actual EQUAL status OR place EQUAL -1)
        message(SEND_ERROR "inspect ${ARGN} gave ${actual}\n${said}instead of ${status}\n${text}")
    endif()
endfunction()

set(response "OCSP response\n  Response status: 6 unauthorized\n  Response: none\n")
expect(0 "Certificate\n  Version: 3\n  Serial number: 4993650A" --sample)
expect(0 "usage: inspect" --help)
expect(0 "${response}")
expect(0 "${response}" --kind ocsp-response --color=never -- response.der)
expect(0 "# response.der\n${response}\n# standard input\n${response}" response.der -)
expect(0 "# both.pem, block 1\n${response}" both.pem --pem 1)
expect(0 "# both.pem, block 1\n${response}" "--pem=OCSP RESPONSE" both.pem)
expect(1 "# both.pem, block 1\n${response}both.pem, block 2: not a known document
    status 302, StatusBadEncoding (malformed BER, or BER that doesn't match the schema) for every kind
    nearest to timestamp-request, but at byte 5, messageImprint: nothing instead of SEQUENCE
    in the block NUMBER of line 4\n" both.pem)
string(ASCII 27 escape)
string(REPLACE "ESC" "${escape}" coloured
    "ESC[1mOCSP responseESC[0m\nESC[2m│ ESC[0mESC[36mResponse statusESC[0m                       6 unauthorized\n")
expect(0 "${coloured}" --color response.der)

set(line [[{"file":"both.pem","block":1,"label":"OCSP RESPONSE","kind":"ocsp-response",]])
string(APPEND line [["outline":[{"name":"OCSP response","members":[]])
string(APPEND line [[{"name":"Response status","value":"6 unauthorized"},{"name":"Response","value":"none"}]}]}]] "\n")
expect(1 "${line}" --json both.pem)
expect(1 [["block":2,"label":"NUMBER","error":"not a known document; status 302, ]] --json both.pem)
expect(0 [["value":"\\xFF\"\\\\\\u{A}\\u{202E}"]] --json hostile.b64)

expect(1 "response.der: not of this kind\n" --kind crl response.der)
expect(1 "nearest to crl, but at byte 2, tbsCertList: ENUMERATED instead of SEQUENCE\n" --kind crl response.der)
expect(1 "notes: neither DER nor PEM
    status 319, StatusBadPem (not the armour or content that DecodePem requires)
    it begins with 4E6F6E65206F6620\n" notes)
expect(1 "empty: neither DER nor PEM
    status 32, StatusBadArgument (null pointer, index out of range, arguments that don't go together)
    empty\n" empty)
expect(1 "none: No such file or directory\n" none)
expect(1 ".: Is a directory\n" .)
expect(1 "both.pem: no block 3 of PEM, which has 2\n" both.pem --pem 3)
expect(1 "response.der: DER, and without blocks\n" --pem 1 response.der)
expect(1 "hostile.b64: no PEM, and without blocks\n" --pem 1 hostile.b64)
expect(1 "${response}" none response.der)
expect(2 "inspect: there is no kind picture\nusage:" --kind picture)
expect(2 "inspect: there is no option --bogus\nusage:" --bogus response.der)
expect(2 "inspect: there is no option -x\nusage:" -xy)
expect(2 "inspect: there is no option --json=no\nusage:" --json=no)
expect(2 "inspect: a value is missing behind --pem\nusage:" response.der --pem)
expect(2 "inspect: colours are always, never or auto, not pink\nusage:" --color=pink)
expect(2 "inspect: the sample is shown alone, without response.der\nusage:" --sample response.der)
