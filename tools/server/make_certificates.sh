#!/usr/bin/env bash
# make_certificates.sh FOLDER
# Makes the certificates that tests and rehearsals serve on localhost, each as NAME.pem (the leaf,
# then its intermediate) and NAME.key:
#
#   good            a valid chain: leaf, intermediate; the issuer is ca.pem
#   wrong_name      from the same issuer, for another host
#   expired         from the same issuer, for localhost, until yesterday
#   unknown_issuer  a valid chain from an issuer that nobody is told about
#   self_signed     its own issuer
#
# Whoever trusts ca.pem accepts "good". The keys protect nothing: they never leave this machine.
set -euo pipefail

if [ $# -ne 1 ] || [[ $1 == -* ]]; then
    sed -n '2,/^set/{/^set/d;s/^# \{0,1\}//;p}' "$0"
    [ "${1:-}" = --help ]
    exit
fi
mkdir -p "$1"
cd "$1"
work=$(mktemp -d ./making.XXXXXX)
trap 'rm -rf "$work"' EXIT

key() { openssl ecparam -name prime256v1 -genkey -noout -out "$1"; }

# authority NAME COMMON-NAME [ISSUER]: a certificate that may issue others. It signs by RSA: Wine
# finds one in some hundred signatures by an elliptic curve wrong, those with a short number in them.
authority() {
    openssl genrsa -out "$work/$1.key" 2048
    openssl req -new -key "$work/$1.key" -subj "/O=Tolvan test/CN=$2" -out "$work/$1.csr"
    printf '%s\n' 'basicConstraints=critical,CA:TRUE' 'keyUsage=critical,keyCertSign,cRLSign' \
        'subjectKeyIdentifier=hash' > "$work/authority.ext"
    sign "$1" "${3:-}" "$work/authority.ext" -days 3650
}

# sign NAME ISSUER EXTENSIONS OPTION...: without an issuer it signs itself
sign() {
    local name=$1 issuer=$2 extensions=$3 signer
    shift 3
    if [ -n "$issuer" ]; then
        signer=(-CA "$work/$issuer.crt" -CAkey "$work/$issuer.key" -CAcreateserial)
    else
        signer=(-signkey "$work/$name.key")
    fi
    openssl x509 -req -in "$work/$name.csr" "${signer[@]}" -extfile "$extensions" "$@" \
        -out "$work/$name.crt" 2> "$work/output" || { cat "$work/output" >&2; exit 1; }
}

# leaf NAME ISSUER HOST NAMES OPTION...
leaf() {
    local name=$1 issuer=$2 host=$3 names=$4
    shift 4
    key "$work/$name.key"
    openssl req -new -key "$work/$name.key" -subj "/O=Tolvan test/CN=$host" -out "$work/$name.csr"
    printf '%s\n' 'basicConstraints=critical,CA:FALSE' 'keyUsage=critical,digitalSignature' \
        'extendedKeyUsage=serverAuth' "subjectAltName=$names" > "$work/leaf.ext"
    sign "$name" "$issuer" "$work/leaf.ext" "$@"
    cat "$work/$name.crt" ${issuer:+"$work/$issuer.crt"} > "$name.pem"
    mv "$work/$name.key" "$name.key"
}

# end_yesterday NAME ISSUER: replaces the leaf by one that was valid for a month, until yesterday;
# only the "ca" command can date a certificate back
end_yesterday() {
    mkdir "$work/ca"
    : > "$work/ca/database"
    printf '%s\n' '[ca]' 'default_ca=test' '[test]' "database=$work/ca/database" \
        "new_certs_dir=$work/ca" 'rand_serial=yes' 'default_md=sha256' 'policy=any' \
        '[any]' 'organizationName=optional' 'commonName=supplied' > "$work/ca/config"
    openssl ca -batch -notext -config "$work/ca/config" -in "$work/$1.csr" \
        -cert "$work/$2.crt" -keyfile "$work/$2.key" -extfile "$work/leaf.ext" \
        -startdate "$(date -u -d '31 days ago' +%Y%m%d%H%M%SZ)" \
        -enddate "$(date -u -d '1 day ago' +%Y%m%d%H%M%SZ)" -out "$work/$1.crt" \
        2> "$work/output" || { cat "$work/output" >&2; exit 1; }
    cat "$work/$1.crt" "$work/$2.crt" > "$1.pem"
}

here='DNS:localhost,IP:127.0.0.1,IP:::1'
authority root 'Tolvan test root'
authority intermediate 'Tolvan test intermediate' root
authority stranger 'Unknown test root'
authority stranger_intermediate 'Unknown test intermediate' stranger

leaf good intermediate localhost "$here" -days 3650
leaf wrong_name intermediate elsewhere.tolvan.example 'DNS:elsewhere.tolvan.example' -days 3650
leaf expired intermediate localhost "$here" -days 3650
end_yesterday expired intermediate
leaf unknown_issuer stranger_intermediate localhost "$here" -days 3650
leaf self_signed '' localhost "$here" -days 3650
cp "$work/root.crt" ca.pem
