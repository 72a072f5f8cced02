#!/usr/bin/env bash
# status -u round trips over HTTPS with cached credentials, tessera against
# svn:
#
#   scripts/bench-auth-status.sh [TESSERA] [ROUNDS]
#
# starts Apache httpd with mod_dav_svn on 127.0.0.1 (Basic authentication,
# a self-signed certificate the configuration directory trusts), checks out
# a small repository with each client into a shared configuration directory
# that then holds the password, runs `status -u` ROUNDS times (100) with
# each, interleaved, and prints the median wall times and their ratio.
# TESSERA defaults to build/bin/tessera.
set -euo pipefail

here=$(cd "$(dirname "$0")/.." && pwd)
tessera=${1:-$here/build/bin/tessera}
rounds=${2:-100}
svn=$(command -v svn)
svnadmin=$(command -v svnadmin)
apache=$(command -v apache2 || echo /usr/sbin/apache2)
modules=/usr/lib/apache2/modules

work=$(mktemp -d "${TMPDIR:-/tmp}/auth-bench.XXXXXX")
trap '[[ -s $work/httpd.pid ]] && kill "$(cat "$work/httpd.pid")" 2>/dev/null; rm -rf "$work"' EXIT
export HOME=$work/home
mkdir -p "$HOME" "$work/config"

openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 -keyout "$work/server.key" \
    -out "$work/server.pem" -subj /CN=127.0.0.1 -addext subjectAltName=IP:127.0.0.1 2>/dev/null
htpasswd -bc "$work/htpasswd" alice wonderland 2>/dev/null
"$svnadmin" create "$work/repo"
mkdir -p "$work/import/dir"
for n in $(seq 1 20); do echo "file $n" > "$work/import/dir/f$n.txt"; done
"$svn" import -q -m import "$work/import" "file://$work/repo"

port=$(python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
{
    printf 'ServerRoot %s\nServerName 127.0.0.1\nPidFile %s/httpd.pid\nDefaultRuntimeDir %s\n' "$work" "$work" "$work"
    printf 'Mutex file:%s default\nErrorLog %s/error.log\nLogLevel warn\n' "$work" "$work"
    for module in mpm_event authn_core authn_file authz_core authz_user auth_basic dav dav_svn ssl; do
        printf 'LoadModule %s_module %s/mod_%s.so\n' "$module" "$modules" "$module"
    done
    printf 'Listen 127.0.0.1:%s\n<VirtualHost 127.0.0.1:%s>\n  SSLEngine on\n' "$port" "$port"
    printf '  SSLCertificateFile %s/server.pem\n  SSLCertificateKeyFile %s/server.key\n' "$work" "$work"
    printf '  <Location /svn>\n    DAV svn\n    SVNPath %s/repo\n    AuthType Basic\n    AuthName Bench\n' "$work"
    printf '    AuthUserFile %s/htpasswd\n    Require valid-user\n  </Location>\n</VirtualHost>\n' "$work"
} > "$work/httpd.conf"
"$apache" -f "$work/httpd.conf" -k start
until [[ -s $work/httpd.pid ]]; do sleep 0.05; done
url=https://127.0.0.1:$port/svn

# The certificate is trusted and the password stored, so no run asks.
printf '[global]\nssl-authority-files = %s/server.pem\nstore-plaintext-passwords = yes\n' "$work" > "$work/config/servers"
"$svn" checkout -q --config-dir "$work/config" --non-interactive --username alice --password wonderland \
    "$url" "$work/wc-svn"
"$tessera" checkout -q --config-dir "$work/config" --non-interactive "$url" "$work/wc-tessera"

# Microseconds of one run, which must succeed.
run() {
    local start end
    start=$(date +%s%N)
    "$@" > /dev/null
    end=$(date +%s%N)
    echo $(((end - start) / 1000))
}
: > "$work/svn.times"
: > "$work/tessera.times"
for ((i = 0; i < rounds; i++)); do
    run "$svn" status -u --config-dir "$work/config" --non-interactive "$work/wc-svn" >> "$work/svn.times"
    run "$tessera" status -u --config-dir "$work/config" --non-interactive "$work/wc-tessera" >> "$work/tessera.times"
done

python3 - "$work/svn.times" "$work/tessera.times" "$rounds" <<'PY'
import statistics, sys
svn = statistics.median(int(line) for line in open(sys.argv[1])) / 1000
tessera = statistics.median(int(line) for line in open(sys.argv[2])) / 1000
print(f"status -u over HTTPS with cached credentials, medians of {sys.argv[3]} runs")
print(f"svn      {svn:8.1f} ms")
print(f"tessera  {tessera:8.1f} ms")
print(f"ratio    {tessera / svn:8.2f} (tessera / svn)")
PY
