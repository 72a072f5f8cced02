#!/bin/sh
# The main job: builds Tessera, makes a local repository and a working copy in
# a temporary directory and shows what the library sees.
set -eu
cd "$(dirname "$0")/.."
scripts/build.sh
build="${TESSERA_BUILD_DIR:-build}"
tessera="$build/bin/tessera"

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
echo "== tessera mkrepo"
url="$("$tessera" mkrepo "$work/repository")"
echo "$url"
svn --config-dir "$work/config" --non-interactive checkout -q "$url" "$work/working-copy"
echo

echo "== tessera backends"
"$tessera" backends
echo
echo "== tessera wc (a working copy made by svn)"
"$tessera" wc "$work/working-copy"
