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
echo

echo "== a working copy with an item of every status kind (scripts/make-status-example.sh)"
scripts/make-status-example.sh "$url" "$work/example" "$work/config"
echo
echo "== tessera status --aggregates (a directory's trailing [words]: the kinds found below it)"
"$tessera" status --config-dir "$work/config" --aggregates "$work/example"
echo
echo "== tessera status -v"
"$tessera" status --config-dir "$work/config" -v "$work/example" | tee "$work/tessera-status"
echo
echo "== svn status -v"
svn status --config-dir "$work/config" -v "$work/example" | tee "$work/svn-status"
echo
if [ "$(LC_ALL=C sort "$work/tessera-status")" = "$(LC_ALL=C sort "$work/svn-status")" ]; then
  echo "tessera status -v and svn status -v print the same lines."
else
  echo "tessera status -v and svn status -v differ (sorted lines, - svn, + tessera):"
  diff -u "$(LC_ALL=C sort "$work/svn-status" > "$work/svn-sorted"; echo "$work/svn-sorted")" \
          "$(LC_ALL=C sort "$work/tessera-status" > "$work/tessera-sorted"; echo "$work/tessera-sorted")" || true
fi
