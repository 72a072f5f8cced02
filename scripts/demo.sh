#!/bin/sh
# The main job: builds Tessera, makes a local repository and a working copy in
# a temporary directory and shows what the library sees; then checks out a
# second working copy, changes it and commits with tessera, and updates the
# first one, showing the progress line's final figures and tessera status
# before and after.
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

# A command run on a terminal (script(1) gives it one), so that tessera draws
# its progress line; prints the command's own lines and then the line's last
# figures, which the terminal shows only while the transfer runs.
on_terminal() {
  script -qec "$*" /dev/null > "$work/terminal"
  tr '\r' '\n' < "$work/terminal" | sed 's/\x1b\[K//g' | grep -Ev 'B(/s)?, [0-9]+ items?$' | grep -v '^$' || true
  figure="$(tr '\r' '\n' < "$work/terminal" | sed 's/\x1b\[K//g' | grep -E 'B(/s)?, [0-9]+ items?$' | tail -n 1)"
  echo "(progress line, final figure: ${figure:-none drawn})"
}
config="--config-dir $work/config"

echo
echo "== tessera checkout of the repository's trunk into a second working copy (last lines)"
on_terminal "$tessera" checkout $config "$url/trunk" "$work/demo" | tail -n 6
echo
echo "== a change: one file edited, one added"
echo "a line from the demo" >> "$work/demo/modified.txt"
echo "new" > "$work/demo/new.txt"
"$tessera" add $config "$work/demo/new.txt"
echo
echo "== tessera status before the commit"
"$tessera" status $config "$work/demo"
echo
echo "== tessera commit"
on_terminal "$tessera" commit $config -m "'A change from the demo'" "$work/demo"
echo
echo "== tessera status after the commit"
"$tessera" status $config "$work/demo"
echo "(nothing left to commit)"
echo
echo "== the first working copy, before its update: tessera status -u"
"$tessera" status $config -u "$work/working-copy" | tail -n 5
echo
echo "== tessera update of the first working copy"
on_terminal "$tessera" update $config "$work/working-copy" | tail -n 8
echo
echo "== the first working copy after its update: tessera status -u"
"$tessera" status $config -u "$work/working-copy"
echo
echo "== the repository read back: tessera info, list and cat of the change"
"$tessera" info $config "$url/trunk/new.txt"
"$tessera" list $config -v "$url/trunk" | tail -n 4
"$tessera" cat $config "$url/trunk/modified.txt" | tail -n 1
echo
echo "== a property, a lock and a branch"
"$tessera" propset $config demo:reviewed yes "$work/demo/modified.txt"
"$tessera" commit $config -q -m "'Reviewed'" "$work/demo"
"$tessera" proplist $config -v "$work/demo/modified.txt"
"$tessera" lock $config -m "'Held by the demo'" "$work/demo/modified.txt"
"$tessera" status $config -u "$work/demo"
"$tessera" unlock $config "$work/demo/modified.txt"
"$tessera" copy $config -m "'A branch'" "$url/trunk" "$url/demo-branch"
"$tessera" log $config -q -l 3 "$url"
