#!/bin/sh
# tessera status against svn status on a working copy with an item of every
# status kind (scripts/make-status-example.sh).
# usage: tessera_status_test.sh TESSERA SVN SVNADMIN EXAMPLE_SCRIPT
set -eu
tessera="$1" svn="$2" svnadmin="$3" example="$4"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
export HOME="$work/home" LC_ALL=C
mkdir -p "$HOME"
config="$work/config"
failures=0 passes=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
pass() { passes=$((passes + 1)); }

# The example script calls plain "svn"; make it the one under test.
mkdir -p "$work/bin"
ln -s "$svn" "$work/bin/svn"
ln -s "$svnadmin" "$work/bin/svnadmin"
PATH="$work/bin:$PATH"
sh "$example" "$work/repository" "$work/wc" "$config" >/dev/null


# Item lines of a status listing, sorted: everything but the section headers
# and the blank lines between them, whose order svn does not fix under -u.
items() { grep -v -e '^$' -e '^Performing status on external item' -e '^Status against revision' | LC_ALL=C sort; }

# One comparison: the options (one word list) and the paths, run from a
# directory. The pipeline runs in a subshell so that its cd stays there.
compare() {
  dir="$1" options="$2"
  shift 2
  # shellcheck disable=SC2086 # the options are one word list
  expected="$(cd "$dir" && "$svn" status --config-dir "$config" $options "$@" 2>&1 | items)"
  # shellcheck disable=SC2086
  actual="$(cd "$dir" && "$tessera" status --config-dir "$config" $options "$@" 2>&1 | items)"
  if [ "$expected" = "$actual" ]; then
    pass
  else
    fail "status $options $* (in $dir)"
    printf '%s\n' "$expected" > "$work/expected"
    printf '%s\n' "$actual" > "$work/actual"
    diff -u "$work/expected" "$work/actual" | sed 's/^/    /' || true
  fi
}

started="$(date +%s)"
# Every option set, on the root, a subdirectory, two paths, relative from
# the working copy's parent, absolute and from inside.
option_sets="
-
-v
-q
-u
-vu
-uq
--no-ignore
-v --no-ignore
--ignore-externals
-v --ignore-externals
-v --depth=empty
-v --depth files
-v --depth immediates
--depth files
-N
-vN
-vuq
-vq
-u --depth=immediates
"
echo "$option_sets" | while IFS= read -r options; do
  [ -n "$options" ] || continue
  [ "$options" = "-" ] && options=""
  compare "$work" "$options" wc
  compare "$work" "$options" wc/sub
  compare "$work" "$options" wc/ext wc/sparse
  compare "$work" "$options" "$work/wc"
  compare "$work/wc" "$options"
  compare "$work/wc" "$options" modified.txt ../wc/dir
  echo "$passes $failures" > "$work/counts"
done
read -r passes failures < "$work/counts"

# The whole output, not only its sorted lines, where svn's order is fixed
# (without -u): sections, headers, change lists and the conflict summary.
for options in "" "-v" "-q" "-vq" "--ignore-externals"; do
  # shellcheck disable=SC2086
  expected="$(cd "$work" && "$svn" status --config-dir "$config" $options wc)"
  # shellcheck disable=SC2086
  actual="$(cd "$work" && "$tessera" status --config-dir "$config" $options wc)"
  if [ "$expected" = "$actual" ]; then pass; else
    fail "whole output of status $options"
    printf '%s\n' "$expected" > "$work/expected"
    printf '%s\n' "$actual" > "$work/actual"
    diff -u "$work/expected" "$work/actual" | sed 's/^/    /' || true
  fi
done

# XML: well-formed, and the same entries with the same attributes and
# elements as svn's (attribute order is svn's hash order, so each entry is
# compared as sorted lines).
xml_entries() {
  tr '\n' ' ' | sed -e 's/<entry/\n<entry/g' -e 's/<\/entry>/<\/entry>\n/g' | grep '^<entry' |
    while IFS= read -r entry; do printf '%s\n' "$entry" | tr ' >' '\n\n' | grep -v -e '^$' -e '^/$' | LC_ALL=C sort | tr '\n' ' '; echo; done |
    LC_ALL=C sort
}
for options in "" "-v" "-u" "-vu --no-ignore" "-q"; do
  # shellcheck disable=SC2086
  "$tessera" status --config-dir "$config" --xml $options "$work/wc" > "$work/tessera.xml"
  # shellcheck disable=SC2086
  "$svn" status --config-dir "$config" --xml $options "$work/wc" > "$work/svn.xml"
  if command -v xmllint >/dev/null; then
    if xmllint --noout "$work/tessera.xml"; then pass; else fail "--xml $options: not well-formed"; fi
  fi
  xml_entries < "$work/svn.xml" > "$work/expected"
  xml_entries < "$work/tessera.xml" > "$work/actual"
  if cmp -s "$work/expected" "$work/actual"; then pass; else
    fail "--xml $options: entries differ"
    diff -u "$work/expected" "$work/actual" | sed 's/^/    /' || true
  fi
  for element in '<against' '<changelist' '<target'; do
    [ "$(grep -c "$element" "$work/svn.xml")" = "$(grep -c "$element" "$work/tessera.xml")" ] && pass ||
      fail "--xml $options: count of $element"
  done
done

# --aggregates: the root's words gather its descendants' kinds; a directory
# with only an added file below it says just that.
out="$("$tessera" status --config-dir "$config" --aggregates "$work/wc")"
root_line="$(printf '%s\n' "$out" | grep " $work/wc  \[")" || fail "--aggregates: no line for the root"
for word in modified conflicted added deleted missing unversioned obstructed; do
  case "$root_line" in *"[$word "* | *" $word "* | *" $word]"*) pass ;; *) fail "--aggregates: root lacks $word: $root_line" ;; esac
done
case "$(printf '%s\n' "$out" | grep " $work/wc/addeddir  \[")" in
  *"[added]") pass ;; *) fail "--aggregates: addeddir: $(printf '%s\n' "$out" | grep addeddir)" ;; esac
out="$("$tessera" status --config-dir "$config" -u --aggregates "$work/wc")"
case "$(printf '%s\n' "$out" | grep " $work/wc  \[")" in
  *"repository: "*modified*) pass ;; *) fail "--aggregates -u: root lacks the repository change" ;; esac

# --json: the whole records, by path.
json="$("$tessera" status --config-dir "$config" --json -u "$work/wc")"
record() { printf '%s\n' "$json" | jq -c ".targets[0].nodes[] | select(.path.path == \"$work/wc/$1\") | $2"; }
check_json() { [ "$(record "$1" "$2")" = "$3" ] && pass || fail "--json: $1 $2 is $(record "$1" "$2"), not $3"; }
check_json modified.txt .status.textStatus 64
check_json propconflict.txt .status.propertyStatus 256
check_json changelist.txt .status.changelist '"review"'
check_json locked.txt .lock.owner '"alice"'
check_json locked-elsewhere.txt .status.repositoryLock.owner '"bob"'
check_json outdated.txt .status.repositoryTextStatus 64
check_json treedel.txt .status.treeConflict.reason 2
[ "$(printf '%s\n' "$json" | jq '.targets[0].againstRevision')" = 4 ] && pass || fail "--json: againstRevision"

# Arguments and targets that are not working copies.
status=0
"$tessera" status --depth sideways "$work/wc" >/dev/null 2>&1 || status=$?
[ "$status" -eq 1 ] && pass || fail "bad depth: exit $status"
status=0
"$tessera" status -x "$work/wc" >/dev/null 2>&1 || status=$?
[ "$status" -eq 1 ] && pass || fail "unknown option: exit $status"
mkdir "$work/plain"
if out="$("$tessera" status --config-dir "$config" "$work/plain" 2>&1)"; then
  case "$out" in *"W155007: '$work/plain' is not a working copy"*) pass ;; *) fail "plain directory: $out" ;; esac
else
  fail "plain directory: exit status (svn warns and exits 0)"
fi

echo "took $(( $(date +%s) - started )) s"
echo "$passes passed, $failures failed"
[ "$failures" -eq 0 ]
