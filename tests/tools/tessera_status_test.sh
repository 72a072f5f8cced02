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
-u --depth=empty
-uv --depth=empty
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
  # The elements in svn's order: entries inside their target.
  skeleton() { grep -o -e '<status' -e '</status>' -e '<target' -e '</target>' -e '<entry' -e '<against' -e '<changelist' "$1" | tr '\n' ' '; }
  [ "$(skeleton "$work/svn.xml")" = "$(skeleton "$work/tessera.xml")" ] && pass || fail "--xml $options: element order"
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

# Moves of every kind, in a working copy of their own: a file, a directory,
# a move inside a moved directory, names with spaces, two files that swapped
# places, and broken moves (source replaced, destination deleted). The
# lines and attributes must be svn's from inside and outside the targets.
moves="$work/moves"
"$svnadmin" create "$moves-repo"
"$svn" mkdir -q -m tree --config-dir "$config" --parents "file://$moves-repo/a/b/c" "file://$moves-repo/d" \
  "file://$moves-repo/e f"
"$svn" checkout -q --config-dir "$config" "file://$moves-repo" "$moves"
for name in f1 f2 f3 "sp ace" gone back; do echo "$name" > "$moves/a/$name"; echo "$name" > "$moves/a/b/g $name"; done
"$svn" add -q --force --config-dir "$config" "$moves/a"
"$svn" commit -q -m files --config-dir "$config" "$moves"
"$svn" update -q --config-dir "$config" "$moves"
(
  cd "$moves"
  "$svn" move -q --config-dir "$config" a/f1 d/f1-moved                       # a file
  "$svn" move -q --config-dir "$config" a/b "e f/b moved"                     # a directory
  "$svn" move -q --config-dir "$config" "e f/b moved/g f2" "e f/b moved/c/g f2 x"  # inside the moved one
  "$svn" move -q --config-dir "$config" "a/sp ace" "d/sp ace 2"               # spaces
  "$svn" move -q --config-dir "$config" a/f2 a/tmp                            # swapped places
  "$svn" move -q --config-dir "$config" a/f3 a/f2
  "$svn" move -q --config-dir "$config" a/tmp a/f3
  "$svn" move -q --config-dir "$config" a/gone d/gone-moved                   # destination deleted
  "$svn" delete -q --force --config-dir "$config" d/gone-moved
  "$svn" move -q --config-dir "$config" a/back d/back-moved                   # source replaced
  echo new > a/back
  "$svn" add -q --config-dir "$config" a/back
)
for options in "" "-q" "--depth immediates" "-v" "-u" "-v -u"; do
  compare "$work" "$options" moves
  compare "$moves/d" "$options" ..
  compare "$moves/d" "$options" ../a
  compare "$moves/d" "$options"
  compare "$moves" "$options" "e f/b moved" d
  compare "$work" "$options" "$moves/a"
done
# Each entry's path and move attributes.
moved_attributes() {
  tr '\n' ' ' | sed -e 's/<entry/\n<entry/g' | grep '^<entry' | while IFS= read -r entry; do
    printf '%s\n' "$entry" | grep -o -e ' path="[^"]*"' -e 'moved-[a-z]*="[^"]*"' | LC_ALL=C sort | tr '\n' ' '; echo
  done | LC_ALL=C sort
}
for target in "$moves" "$moves/d" "$moves/e f" .; do
  (cd "$moves/d" && "$tessera" status --config-dir "$config" --xml "$target") > "$work/tessera.xml"
  (cd "$moves/d" && "$svn" status --config-dir "$config" --xml "$target") > "$work/svn.xml"
  moved_attributes < "$work/svn.xml" > "$work/expected"
  moved_attributes < "$work/tessera.xml" > "$work/actual"
  if grep -q moved- "$work/expected" && cmp -s "$work/expected" "$work/actual"; then pass; else
    fail "--xml $target: moved entries differ"
    diff -u "$work/expected" "$work/actual" | sed 's/^/    /' || true
  fi
done
json="$("$tessera" status --config-dir "$config" --json "$moves")"
moved() { printf '%s\n' "$json" | jq -r ".targets[0].nodes[] | select(.path.path == \"$moves/$1\") | .status.$2"; }
[ "$(moved d/f1-moved movedFromPath)" = "$moves/a/f1" ] && pass || fail "--json: movedFromPath $(moved d/f1-moved movedFromPath)"
[ "$(moved a/f1 movedToPath)" = "$moves/d/f1-moved" ] && pass || fail "--json: movedToPath $(moved a/f1 movedToPath)"

# Targets as svn takes them: missing, unversioned, outside any working copy,
# a versioned link to a directory and a file below it, ".", "..", "a/../a",
# each alone and beside a good target: the same output, svn's warnings with
# the program's name, and svn's exit status.
ln -s a "$moves/link"
"$svn" add -q --config-dir "$config" "$moves/link"
mkdir -p "$work/plain" "$moves/unversioned dir"  # $work/plain is used again below
echo plain > "$work/plain/file"
outputs() {
  dir="$1" program="$2"
  shift 2
  status=0
  (cd "$dir" && "$program" status --config-dir "$config" "$@") > "$work/out" 2> "$work/err" || status=$?
  # XML: the elements and their paths (the other attributes come in svn's
  # hash order and are compared above).
  [ "${1:-}" = --xml ] && grep -e '^</\{0,1\}status' -e '^</\{0,1\}target' -e '^<entry' -e '^   path=' "$work/out" > "$work/elements" && mv "$work/elements" "$work/out"
  printf '%s\n--- exit %s\n' "$(cat "$work/out")" "$status"
  sed 's/^svn: /tessera: /' "$work/err"
}
compare_targets() {
  dir="$1"
  shift
  expected="$(outputs "$dir" "$svn" "$@")"
  actual="$(outputs "$dir" "$tessera" "$@")"
  if [ "$expected" = "$actual" ]; then pass; else
    fail "targets $* (in $dir)"
    printf '%s\n' "$expected" > "$work/expected"
    printf '%s\n' "$actual" > "$work/actual"
    diff -u "$work/expected" "$work/actual" | sed 's/^/    /' || true
  fi
}
for target in nope "$work/nope" "$work/plain" "$work/plain/file" "$work/plain/nope" "unversioned dir/x" \
  link link/ link/f3 . .. a/../a a/f3 ./a/ ../moves/d "$moves/a/f2"; do
  compare_targets "$moves" "$target"
  compare_targets "$moves" "$target" d
  compare_targets "$moves" -q "$target"
  compare_targets "$moves" --xml "$target" "$work/plain" d
done

# Names with control characters: svn escapes line feeds and tabs in XML
# attributes; the text lines carry them as they are.
mkdir "$moves/ctl"
touch "$moves/ctl/tab	x" "$moves/ctl/line
feed" "$moves/ctl/amp&<q\">" "$moves/ctl/c$(printf '\001')z"
"$svn" add -q --depth empty --config-dir "$config" "$moves/ctl"
compare_targets "$moves" --xml ctl
compare_targets "$moves" ctl

# A write error on standard output is svn's error, and a failure.
for options in "" "--xml"; do
  for program in "$svn" "$tessera"; do
    status=0
    # shellcheck disable=SC2086
    (cd "$moves" && "$program" status --config-dir "$config" $options d) > /dev/full 2> "$work/err" || status=$?
    printf '%s\nexit %s\n' "$(sed 's/^svn: /tessera: /' "$work/err")" "$status" > "$work/$(basename "$program")"
  done
  mv "$work/svn" "$work/expected"
  mv "$work/tessera" "$work/actual"
  if cmp -s "$work/expected" "$work/actual" && ! grep -q "exit 0" "$work/actual"; then pass; else
    fail "status $options > /dev/full: $(cat "$work/actual")"
  fi
done

# --aggregates without -v: the target's line and each directory holding a
# change, unchanged as it is.
out="$(cd "$moves" && "$tessera" status --config-dir "$config" --aggregates)"
for line in ".  [" "        d  [added" "        e f  [added" "A  +    e f/b moved  ["; do
  case "$out" in *"$line"*) pass ;; *) fail "--aggregates: no line '$line' in: $out" ;; esac
done

# Arguments and targets that are not working copies.
status=0
"$tessera" status --depth sideways "$work/wc" >/dev/null 2>&1 || status=$?
[ "$status" -eq 1 ] && pass || fail "bad depth: exit $status"
status=0
"$tessera" status -x "$work/wc" >/dev/null 2>&1 || status=$?
[ "$status" -eq 1 ] && pass || fail "unknown option: exit $status"
if out="$("$tessera" status --config-dir "$config" "$work/plain" 2>&1)"; then
  case "$out" in *"W155007: '$work/plain' is not a working copy"*) pass ;; *) fail "plain directory: $out" ;; esac
else
  fail "plain directory: exit status (svn warns and exits 0)"
fi

echo "took $(( $(date +%s) - started )) s"
echo "$passes passed, $failures failed"
[ "$failures" -eq 0 ]
