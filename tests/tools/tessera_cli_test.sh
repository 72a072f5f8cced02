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

# mkrepo: a repository that svnadmin verifies and the client commits to, at
# the URL printed; a relative path is taken from the current directory.
out="$("$tessera" mkrepo "$work/made")"
[ "$out" = "file://$work/made" ] || fail "mkrepo printed $out"
"$svnadmin" verify -q "$work/made" || fail "mkrepo: verify"
"$svn" --config-dir "$work/config" --non-interactive mkdir -q -m "first" "$out/trunk" || fail "mkrepo: commit"
out="$(cd "$work" && "$tessera" mkrepo old --compatible-version 1.5)"
[ "$out" = "file://$work/old" ] || fail "mkrepo of a relative path printed $out"
"$svnadmin" verify -q "$work/old" || fail "mkrepo --compatible-version: verify"
"$svnadmin" create --compatible-version 1.5 "$work/old-by-svnadmin"
cmp -s "$work/old/db/format" "$work/old-by-svnadmin/db/format" || fail "mkrepo: not the format svnadmin makes for 1.5"
# The URL is escaped as svn escapes it, "#" and "?" included.
out="$("$tessera" mkrepo "$work/h#sh ?")"
[ "$out" = "$("$svn" --config-dir "$work/config" info --show-item url "$out@")" ] || fail "mkrepo printed $out"

# An existing non-empty directory is refused (exit 1) and left as it was.
status=0
"$tessera" mkrepo "$work/wc" >/dev/null 2>&1 || status=$?
[ "$status" -eq 1 ] || fail "mkrepo into a non-empty directory: exit $status"
[ ! -e "$work/wc/db" ] && "$tessera" wc "$work/wc" >/dev/null || fail "mkrepo changed a non-empty directory"
status=0
"$tessera" mkrepo "$work/bad" --compatible-version one >/dev/null 2>&1 || status=$?
[ "$status" -eq 2 ] && [ ! -e "$work/bad" ] || fail "mkrepo with a bad version: exit $status"
