#!/usr/bin/env bash
# with_server.sh COMMAND [ARGUMENT...]
# Runs a command beside a tolvan-server of its own, on ports that the system picks, and ends with
# the command's exit code. The command finds in its environment:
#
#   TOLVAN_TEST_HTTP, TOLVAN_TEST_HTTPS            base addresses, ending in a slash
#   TOLVAN_TEST_HTTPS_WRONG_NAME, ..._EXPIRED,     the same with a certificate that is wrong in
#   ..._UNKNOWN_ISSUER, ..._SELF_SIGNED            just this way
#   TOLVAN_TEST_CONTROL                            base address of the server's control
#   TOLVAN_PROBE_URL                               the plain address: this machine is online
#   TOLVAN_TEST_TREE                               the folder that is served, empty at first
#   TOLVAN_TEST_SERVER_LOG                         the server's log
#   TOLVAN_CA_FILE, TOLVAN_TEST_CA                 the authority behind TOLVAN_TEST_HTTPS
#
# The server is a program of the host build, also for tests of a Windows build: TOLVAN_HOST_BIN
# names its folder, build/host/bin by default.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
server=${TOLVAN_HOST_BIN:-$root/build/host/bin}/tolvan-server
if [ ! -x "$server" ]; then
    echo "with_server.sh: $server is missing; build it: cmake --build --preset host" >&2
    exit 1
fi

work=$(mktemp -d "${TMPDIR:-/tmp}/tolvan-server.XXXXXX")
pid=
finish() {
    [ -z "$pid" ] || { kill "$pid" && wait "$pid"; } 2>/dev/null || true
    rm -rf "$work"
}
trap finish EXIT
trap 'exit 143' INT TERM HUP

# Certificates are made once for a build and then shared; whoever comes first puts them there.
certificates=$(dirname "$server")/../test_certificates
if [ ! -e "$certificates/ca.pem" ]; then
    "$root/tools/server/make_certificates.sh" "$work/certificates"
    mv -T "$work/certificates" "$certificates" 2>/dev/null || [ -e "$certificates/ca.pem" ]
fi

mkdir "$work/tree"
# The server goes with this script, also when the script is killed.
setpriv --pdeathsig TERM "$server" "$work/tree" --http 0 --certificates "$certificates" \
    --https good --https wrong_name --https expired --https unknown_issuer --https self_signed \
    --log "$work/log" --ports-file "$work/ports" > "$work/output" 2>&1 &
pid=$!
while [ ! -e "$work/ports" ]; do
    kill -0 "$pid" 2>/dev/null || { cat "$work/output" >&2; exit 1; }
    sleep 0.02
done

port() { sed -n "s/.*\"$1\":\([0-9]*\).*/\1/p" "$work/ports"; }
export TOLVAN_TEST_HTTP=http://localhost:$(port http)/
export TOLVAN_TEST_HTTPS=https://localhost:$(port https)/
for name in wrong_name expired unknown_issuer self_signed; do
    export "TOLVAN_TEST_HTTPS_${name^^}=https://localhost:$(port "https-$name")/"
done
export TOLVAN_PROBE_URL=$TOLVAN_TEST_HTTP
export TOLVAN_TEST_CONTROL=http://localhost:$(port control)/.control/
export TOLVAN_TEST_TREE=$work/tree
export TOLVAN_TEST_SERVER_LOG=$work/log
export TOLVAN_CA_FILE=$(realpath "$certificates/ca.pem")
export TOLVAN_TEST_CA=$TOLVAN_CA_FILE

code=0
"$@" || code=$?
exit "$code"
