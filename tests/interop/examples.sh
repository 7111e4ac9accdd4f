#!/usr/bin/env bash
# examples.sh PROGRAMS DIRECTORY: runs the examples one after the other on what those before made, has the openssl command
# verify all of it, and answers it where the examples are clients. PROGRAMS is the folder of the built examples; DIRECTORY
# is replaced.
set -euo pipefail
programs=$1
rm -rf "$2"
mkdir -p "$2"
cd "$2"

fail() {
    echo "FAILED: $*" >&2
    exit 1
}

# Prints what a command says, which has to have a text in it; `refused` likewise, for a command that has to fail.
says() {
    local said
    said=$("${@:2}" 2>&1) || fail "${*:2} ended with $?: $said"
    [[ $said == *"$1"* ]] || fail "${*:2} said \"$said\" and not \"$1\""
}
refused() {
    local said
    if said=$("${@:2}" 2>&1); then fail "${*:2} should have failed"; fi
    [[ $said == *"$1"* ]] || fail "${*:2} said \"$said\" and not \"$1\""
}

"$programs/request" www.example.org .
"$programs/issue" .
echo "I owe you a lunch." >content.txt
cat >tsa.cnf <<'END'
[tsa]
default_tsa = stamps
[stamps]
serial = serial.txt
signer_digest = sha256
default_policy = 1.3.6.1.4.1.32473.1
digests = sha256
ess_cert_id_alg = sha256
END

# $1: the prefix of the files; what follows it are options of the openssl command for GOST.
suite() {
    local prefix=$1 verify
    shift
    verify=(openssl verify "$@" -x509_strict -crl_check -CAfile "${prefix}root.pem" -CRLfile "${prefix}crl.pem")
    says "verify OK" openssl req "$@" -in "${prefix}request.pem" -noout -verify
    # The signature of the list is verified with the certificates below.
    says "end.pem: OK" "${verify[@]}" -purpose sslserver -verify_hostname www.example.org "${prefix}end.pem"
    refused "certificate revoked" "${verify[@]}" "${prefix}revoked.pem"
    says "host www.example.org" "$programs/read_certificate" "${prefix}end.pem"
    # A request that was signed with another key, or changed.
    mkdir -p "changed$prefix"
    openssl req "$@" -in "${prefix}request.pem" -outform DER | LC_ALL=C sed 's/www\.example/xxx.example/g' |
        openssl req "$@" -inform DER -out "changed$prefix/request.pem"
    refused "doesn't have the key" "$programs/issue" "changed$prefix"

    local cms=(openssl cms "$@" -verify -binary -inform DER -CAfile "${prefix}root.pem")
    "$programs/sign_file" "${prefix}anna.key" "${prefix}anna.pem" content.txt .
    for message in attached bare cades; do says "a lunch" "${cms[@]}" -in "$prefix$message.p7m"; done
    says "a lunch" "${cms[@]}" -in "${prefix}detached.p7s" -content content.txt
    "$programs/signers" add "${prefix}boris.key" "${prefix}boris.pem" "${prefix}cades.p7m" "${prefix}two.p7m"
    says "a lunch" "${cms[@]}" -in "${prefix}two.p7m"
    says "CN=Борис" "$programs/signers" list "${prefix}two.p7m"
    "$programs/signers" remove "${prefix}boris.pem" "${prefix}two.p7m" "${prefix}one.p7m"
    says "CN=Анна" "$programs/signers" list "${prefix}one.p7m"
    "$programs/signers" add "${prefix}boris.key" "${prefix}boris.pem" "${prefix}detached.p7s" "${prefix}two.p7s" content.txt
    says "a lunch" "${cms[@]}" -in "${prefix}two.p7s" -content content.txt
    for message in bare two; do
        says "signed by CN=Анна" "$programs/verify" "${prefix}root.pem" "${prefix}crl.pem" "$prefix$message.p7m"
        LC_ALL=C sed 's/a lunch/A lunch/' "$prefix$message.p7m" >changed.p7m
        refused "another content" "$programs/verify" "${prefix}root.pem" "${prefix}crl.pem" changed.p7m
    done
}

suite ""
if [ -e gost-request.pem ]; then suite gost- -engine gost; fi
refused "isn't the root's" "$programs/verify" anna.pem crl.pem attached.p7m

# Enveloped messages, in both directions, to two recipients.
for name in carla diego; do
    openssl req -x509 -newkey rsa:2048 -nodes -keyout $name.key -out $name.pem -subj "/CN=$name" -days 2 2>/dev/null
done
"$programs/envelope" seal content.txt sealed.p7m carla.pem diego.pem
for name in carla diego; do
    says "a lunch" openssl cms -decrypt -inform DER -in sealed.p7m -inkey $name.key -recip $name.pem
    "$programs/envelope" open $name.key sealed.p7m opened.txt
    cmp content.txt opened.txt
done
openssl cms -encrypt -binary -aes-256-cbc -in content.txt -outform DER -out theirs.p7m diego.pem
"$programs/envelope" open diego.key theirs.p7m opened.txt
cmp content.txt opened.txt
refused "no recipient" "$programs/envelope" open carla.key theirs.p7m opened.txt
if [ -e gost-anna.pem ]; then
    openssl cms -engine gost -encrypt -binary -gost89 -in content.txt -outform DER -out gost.p7m gost-anna.pem 2>engine.log
    says "user keying material" "$programs/envelope" show gost.p7m
fi

# The openssl command is the responder.
serial() { openssl x509 -in "$1" -noout -serial | cut -d= -f2; }
printf 'V\t400101000000Z\t\t%s\tunknown\t/CN=end\n' "$(serial end.pem)" >index.txt
printf 'R\t400101000000Z\t250101000000Z,keyCompromise\t%s\tunknown\t/CN=revoked\n' "$(serial revoked.pem)" >>index.txt
for name in end revoked; do
    "$programs/ocsp" ask root.pem $name.pem $name.orq
    openssl ocsp -index index.txt -CA root.pem -rsigner root.pem -rkey root.key -reqin $name.orq -respout $name.ors -ndays 1
done
says ": good" "$programs/ocsp" read root.pem end.orq end.ors
says "revoked at 2025-01-01T00:00:00Z, reason 1" "$programs/ocsp" read root.pem revoked.orq revoked.ors
refused "another nonce" "$programs/ocsp" read root.pem end.orq revoked.ors
refused "not signed by the issuer" "$programs/ocsp" read anna.pem end.orq end.ors

# And the authority of time-stamps.
echo 1000 >serial.txt
"$programs/timestamp" ask cades.p7m request.tsq
openssl ts -reply -config tsa.cnf -signer stamps.pem -inkey stamps.key -queryfile request.tsq -out response.tsr 2>ts.log
says "time-stamp 1001 of 20" "$programs/timestamp" put stamps.pem cades.p7m request.tsq response.tsr stamped.p7m
says "a lunch" openssl cms -verify -binary -inform DER -CAfile root.pem -in stamped.p7m
says "with a time-stamp" "$programs/signers" list stamped.p7m
"$programs/timestamp" ask bare.p7m other.tsq
refused "of other bytes" "$programs/timestamp" put stamps.pem bare.p7m other.tsq response.tsr refused.p7m
refused "not signed by the authority" "$programs/timestamp" put anna.pem cades.p7m request.tsq response.tsr refused.p7m
