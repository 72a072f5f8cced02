#!/bin/sh
# The tessera program against a working copy made by the svn client.
# usage: tessera_cli_test.sh TESSERA SVN SVNADMIN LIBRARY BROKEN_BUNDLES
set -eu
tessera="$1" svn="$2" svnadmin="$3" library="$4" broken="$5"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
export HOME="$work/home"
mkdir -p "$HOME"
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

"$svnadmin" create "$work/repository"
"$svn" --config-dir "$work/config" --non-interactive checkout -q "file://$work/repository" "$work/wc"

out="$("$tessera" backends)"
echo "$out"
echo "$out" | grep -Eq '^1\.[0-9]+\.[0-9]+ +31 +125 of 127 ' || fail "backends: no 1.x backend reading format 31 with 125 slots"

# Broken bundles beside the good one, in a copy of the library's
# installation: each is listed with why it failed and logged, and the good one
# still serves.
installed="$work/installed/lib"
mkdir -p "$installed/tessera/backends"
cp -P "$(dirname "$library")"/libtessera.so* "$installed/"
ln -s "$(dirname "$library")"/tessera/backends/*.bundle "$installed/tessera/backends/"
ln -s "$broken"/*.bundle "$installed/tessera/backends/"
out="$(LD_LIBRARY_PATH="$installed" "$tessera" backends 2>"$work/log")" || fail "backends beside broken bundles failed"
echo "$out"
echo "$out" | grep -Eq '^1\.[0-9]+\.[0-9]+ +31 +125 of 127 ' || fail "backends beside broken bundles: no good one"
for bundle in broken invalid-json interface-2 missing-executable; do
  echo "$out" | grep -q "^broken .* $installed/tessera/backends/$bundle.bundle (..*)$" ||
    fail "backends: $bundle not listed as broken"
  grep -q "Skipping svn bundle at $installed/tessera/backends/$bundle.bundle: " "$work/log" ||
    fail "backends: $bundle skipped without a warning"
done
echo "$out" | grep "interface-2" | grep -q "expected 1, found 2" || fail "backends: no reason for interface-2"
LD_LIBRARY_PATH="$installed" "$tessera" wc "$work/wc" 2>/dev/null | grep -q '^format:  31$' ||
  fail "wc beside broken bundles"

out="$("$tessera" wc "$work/wc")"
echo "$out"
echo "$out" | grep -q '^format:  31$' || fail "wc: format"
echo "$out" | grep -q "^admin:   $work/wc/.svn\$" || fail "wc: admin directory"

# A subdirectory and a file answer for their working copy: its root's
# administrative directory.
mkdir -p "$work/wc/sub/deeper"
echo text > "$work/wc/sub/file"
"$svn" --config-dir "$work/config" add -q "$work/wc/sub"
for path in "$work/wc/sub/deeper" "$work/wc/sub/file"; do
  out="$("$tessera" wc "$path")"
  echo "$out" | grep -q '^format:  31$' || fail "wc $path: format: $out"
  echo "$out" | grep -q "^admin:   $work/wc/.svn\$" || fail "wc $path: admin directory: $out"
done

# Errors, warnings and the answers to bad arguments are svn's, word for word
# ("svn" read as "tessera"), with svn's exit status. Each case: the svn
# arguments, then tessera's.
same_diagnostics() {
  svn_args="$1" tessera_args="$2"
  # shellcheck disable=SC2086 # each is one word list
  expected_status=0; "$svn" $svn_args >"$work/svn.out" 2>"$work/svn.err" || expected_status=$?
  # shellcheck disable=SC2086
  actual_status=0; "$tessera" $tessera_args >"$work/tessera.out" 2>"$work/tessera.err" || actual_status=$?
  sed -e "s/^svn: /tessera: /" -e "s/'svn help/'tessera help/" "$work/svn.err" > "$work/expected.err"
  if ! cmp -s "$work/expected.err" "$work/tessera.err" || [ "$expected_status" -ne "$actual_status" ]; then
    fail "tessera $tessera_args: exit $actual_status (svn $expected_status)"
    diff -u "$work/expected.err" "$work/tessera.err" | sed 's/^/    /' || true
  fi
}
svnadmin_diagnostics() {
  svnadmin_args="$1" tessera_args="$2"
  # shellcheck disable=SC2086
  "$svnadmin" $svnadmin_args 2>&1 >/dev/null | sed "s/^svnadmin: /tessera: /" > "$work/expected.err" || true
  # shellcheck disable=SC2086
  "$tessera" $tessera_args 2>"$work/tessera.err" >/dev/null || true
  cmp -s "$work/expected.err" "$work/tessera.err" || {
    fail "tessera $tessera_args"
    diff -u "$work/expected.err" "$work/tessera.err" | sed 's/^/    /' || true
  }
}
mkdir "$work/plain"
"$svnadmin" create "$work/gone"
"$svn" --config-dir "$work/config" --non-interactive checkout -q "file://$work/gone" "$work/orphan"
mv "$work/gone" "$work/gone-elsewhere"
same_diagnostics "info $work/plain" "wc $work/plain"
same_diagnostics "status -u $work/orphan" "status -u $work/orphan"
same_diagnostics "status --depth bogus $work/wc" "status --depth bogus $work/wc"
same_diagnostics "status --depth= $work/wc" "status --depth= $work/wc"
same_diagnostics "status --depth" "status --depth"
same_diagnostics "status --bogus $work/wc" "status --bogus $work/wc"
same_diagnostics "--bogus status $work/wc" "--bogus status $work/wc"
same_diagnostics "status -vZ $work/wc" "status -vZ $work/wc"
same_diagnostics "status --verbose=x $work/wc" "status --verbose=x $work/wc"
same_diagnostics "status --verbose= $work/wc" "status --verbose= $work/wc"
same_diagnostics "nonsense" "nonsense"
same_diagnostics "" ""
same_diagnostics "help nonsense" "help nonsense"
echo not a directory > "$work/config-file"
same_diagnostics "status --config-dir $work/config-file $work/wc" "status --config-dir $work/config-file $work/wc"
cmp -s "$work/svn.out" "$work/tessera.out" || fail "status with a file as --config-dir: not svn's listing"
svnadmin_diagnostics "create --compatible-version one $work/bad" "mkrepo --compatible-version one $work/bad"
[ ! -e "$work/bad" ] || fail "mkrepo with a bad version made a repository"

# Arguments a command cannot take, in svn's words.
expect_error() {
  expected="$1"
  shift
  status=0
  "$tessera" "$@" >/dev/null 2>"$work/tessera.err" || status=$?
  printf '%s\n' "$expected" | cmp -s - "$work/tessera.err" && [ "$status" -eq 1 ] ||
    fail "tessera $*: exit $status, $(cat "$work/tessera.err")"
}
expect_error "Subcommand 'wc' doesn't accept option '--depth ARG'
Type 'tessera help wc' for usage." wc --depth empty "$work/wc"
expect_error "tessera: E205001: Try 'tessera help wc' for more information
tessera: E205001: Not enough arguments provided" wc
expect_error "tessera: E205000: Try 'tessera help wc' for more information
tessera: E205000: Too many arguments given" wc "$work/wc" "$work/wc"
expect_error "tessera: E205000: Try 'tessera help backends' for more information
tessera: E205000: Too many arguments given" backends extra

# Help: every command has it, three ways, in svn's layout; the options that
# svn has too are described in svn's own lines.
"$tessera" help >"$work/help" || fail "help: exit status"
[ "$("$tessera" --help)" = "$(cat "$work/help")" ] || fail "--help is not help"
commands="$(sed -n 's/^   \([a-z]*\).*/\1/p' "$work/help")"
[ "$(echo $commands)" = "add backends blame changelist checkout cleanup commit diff help log mkrepo propdel propedit propget proplist propset relocate resolve resolved revert status switch update upgrade wc" ] || fail "help lists: $(echo $commands)"
for command in $commands; do
  out="$("$tessera" help "$command")" || fail "help $command: exit status"
  echo "$out" | head -1 | grep -q "^$command\( ([^)]*)\)\?: [A-Z]" || fail "help $command: $(echo "$out" | head -1)"
  echo "$out" | sed -n 2p | grep -q "^usage: \(1\. \)\?$command" || fail "help $command: no usage line"
  [ "$("$tessera" "$command" --help)" = "$out" ] || fail "$command --help differs from help $command"
  [ "$("$tessera" "$command" -h)" = "$out" ] || fail "$command -h differs from help $command"
  [ "$("$tessera" --help "$command")" = "$out" ] || fail "--help $command differs from help $command"
done
[ "$("$tessera" help st)" = "$("$tessera" help status)" ] || fail "help by alias"
"$svn" help -v status > "$work/svn-help"
"$tessera" help status > "$work/tessera-help"
# An option's line and its continuation lines.
option_lines() { awk -v o="  $1" 'index($0, o) == 1 { p = 1; print; next } p && /^                             [^ ]/ { print; next } { p = 0 }' "$2"; }
for option in '-u [' '-v [' '-N [' '--depth ' '-q [' '--xml ' '--ignore-externals' '--no-ignore' '--config-dir'; do
  option_lines "$option" "$work/svn-help" > "$work/svn-lines"
  option_lines "$option" "$work/tessera-help" > "$work/tessera-lines"
  [ -s "$work/svn-lines" ] && cmp -s "$work/svn-lines" "$work/tessera-lines" || {
    fail "help status: the lines of $option"
    diff -u "$work/svn-lines" "$work/tessera-lines" | sed 's/^/    /' || true
  }
done

# mkrepo: a repository that svnadmin verifies and the client commits to, at
# the URL printed; a relative path is taken from the current directory.
out="$("$tessera" mkrepo "$work/made")"
[ "$out" = "file://$work/made" ] || fail "mkrepo printed $out"
"$svnadmin" verify -q "$work/made" || fail "mkrepo: verify"
"$svnadmin" create "$work/made-by-svnadmin"
cmp -s "$work/made/db/format" "$work/made-by-svnadmin/db/format" || fail "mkrepo: not the format svnadmin create writes"
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
svnadmin_diagnostics "create $work/made" "mkrepo $work/made"

[ "$failures" -eq 0 ] || { echo "$failures failed"; exit 1; }
echo "all passed"
