#!/bin/sh
# The tessera program against a working copy made by the svn client.
# usage: tessera_cli_test.sh TESSERA SVN SVNADMIN
set -eu
tessera="$1" svn="$2" svnadmin="$3"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
export HOME="$work/home"
mkdir -p "$HOME"
fail() { echo "FAIL: $*"; exit 1; }

"$svnadmin" create "$work/repository"
"$svn" --config-dir "$work/config" --non-interactive checkout -q "file://$work/repository" "$work/wc"

out="$("$tessera" backends)"
echo "$out"
echo "$out" | grep -Eq '^1\.[0-9]+\.[0-9]+ +31 +121 of 127 ' || fail "backends: no 1.x backend reading format 31 with 121 slots"

out="$("$tessera" wc "$work/wc")"
echo "$out"
echo "$out" | grep -q '^format:  31$' || fail "wc: format"
echo "$out" | grep -q "^admin:   $work/wc/.svn\$" || fail "wc: admin directory"

# Errors: a message naming the path's last component, exit status 1.
if out="$("$tessera" wc "$work" 2>&1)"; then fail "wc accepted a plain directory"; fi
echo "$out" | grep -q "is not a working copy" || fail "wc: $out"
if "$tessera" nonsense >/dev/null 2>&1; then fail "unknown command accepted"; fi
