#!/bin/sh
# tessera log, blame and diff against svn on a repository with copies, moves,
# a replacement, property changes, non-ASCII names and messages, a revision
# without author and one with an empty message, and then merges (for -g): the
# same output, errors and exit statuses. The attributes of XML elements are
# compared in one order (svn prints them in hash order).
# usage: tessera_history_test.sh TESSERA SVN SVNADMIN
set -eu
tessera="$1" svn="$2" svnadmin="$3"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
export HOME="$work/home" LC_ALL=C.UTF-8
mkdir -p "$HOME"
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
svn() { "$svn" --config-dir "$work/config" --non-interactive "$@"; }

repository="file://$work/repository"
"$svnadmin" create "$work/repository"
svn checkout -q "$repository" "$work/wc"
cd "$work/wc"
mkdir -p trunk/dir
printf 'one\ntwo\n' > trunk/a
printf 'x\n' > trunk/dir/f
svn add -q trunk
svn commit -q -m "Initial import
with a second line"
svn copy -q trunk/a trunk/b
printf 'three\n' >> trunk/a
svn propset -q colour blue trunk/dir
svn commit -q -m "Copy a to b & edit <a>"
svn update -q
svn move -q trunk/dir trunk/moved
printf 'caf\303\251\n' > "trunk/gr\303\274n.txt"
svn add -q "trunk/gr\303\274n.txt"
svn commit -q -m "$(printf 'Gr\303\274\303\237e\n\n& <tag> "q" \001\n')"
svn delete -q trunk/b
svn commit -q -m ""
svn update -q
svn copy -q trunk/moved/f trunk/b
svn commit -q -m "Replace b"
svn copy -q "$repository/trunk" "$repository/branch" -m "Branch"
svn update -q
printf 'branch\n' >> branch/a
svn commit -q -m "On the branch"
"$svnadmin" delrevprop "$work/repository" -r 5 svn:author
svn update -q

# Runs svn and tessera (with $tessera_only after it) with the same arguments in the working copy and
# compares standard output, standard error (program names aside) and exit
# status; `normalise` filters both outputs first.
normalise=cat tessera_only=""
same() {
  expected_status=0; svn "$@" >"$work/svn.out" 2>"$work/svn.err" || expected_status=$?
  actual_status=0
  # shellcheck disable=SC2086 # options of tessera's own, one word each
  "$tessera" --config-dir "$work/config" "$@" $tessera_only >"$work/tessera.out" 2>"$work/tessera.err" ||
    actual_status=$?
  $normalise <"$work/svn.out" >"$work/expected.out"
  $normalise <"$work/tessera.out" >"$work/actual.out"
  sed -e "s/^svn: /tessera: /" -e "s/'svn help/'tessera help/" "$work/svn.err" >"$work/expected.err"
  if ! cmp -s "$work/expected.out" "$work/actual.out" || ! cmp -s "$work/expected.err" "$work/tessera.err" ||
    [ "$expected_status" -ne "$actual_status" ]; then
    fail "$* $tessera_only: exit $actual_status (svn $expected_status)"
    diff -u "$work/expected.out" "$work/actual.out" | head -40 | sed 's/^/    /' || true
    diff -u "$work/expected.err" "$work/tessera.err" | sed 's/^/    /' || true
  fi
}

# Each open tag with attributes on one line, its attributes sorted, and the
# <path> elements of each <paths> sorted.
xml_sorted() {
  awk '
    function sort(a, n,   i, j, t) {
      for (i = 2; i <= n; i++) for (j = i; j > 1 && a[j - 1] > a[j]; j--) { t = a[j]; a[j] = a[j - 1]; a[j - 1] = t }
    }
    /^<[a-z-]+$/ { tag = $0; n = 0; next }
    tag != "" {
      a = substr($0, 4); rest = ""; at = index(a, "\">")
      if (at > 0) { rest = substr(a, at + 1); a = substr(a, 1, at) }
      attribute[++n] = a
      if (rest == "") next
      sort(attribute, n)
      line = tag
      for (i = 1; i <= n; i++) line = line " " attribute[i]
      if (tag == "<path") path[++paths] = line rest; else print line rest
      tag = ""
      next
    }
    /^<\/paths>$/ { sort(path, paths); for (i = 1; i <= paths; i++) print path[i]; paths = 0 }
    { print }'
}

for zone in UTC Asia/Kolkata America/St_Johns; do
  export TZ="$zone"
  same log
  same log -v "$repository/trunk"
  same log -q
  same log -q -v
  same log -v -l 2
  same log -v trunk/b
  same log -v --stop-on-copy trunk/b
  same log -v branch/a
  same log -v --stop-on-copy "$repository/branch"
done
export TZ=Asia/Kolkata
for range in 2:4 4:2 3 HEAD:1 r2:BASE "{2000-01-01}:HEAD" PREV; do
  same log -v -r "$range"
done
same log -c 3
same log -c -3
same log -v "$repository/trunk/gr%C3%BCn.txt"
same log "$repository/trunk/a@3"
same log -v -r 1:HEAD "$repository/trunk/b@6"
same log --search IMPORT
same log --search "c?py*b"
same log -v --search /trunk/moved
same log --search /trunk/moved
same log --search copy --search-and edit
same log --search copy --search branch
same log --search 2[0-9][0-9][0-9]-
same log --incremental -r 2:3
same log --xml
same log --xml -q
same log --xml -r 3 --incremental
# Each revision's changes after its message.
same log --diff
same log --diff -r 2:4 trunk
same log --diff -l 3 "$repository/trunk"
same log --diff -x -w -c 3
same log --diff trunk/a
# Followed back through copies: the branch's file before the branch was made,
# and a file copied from another.
same log --diff branch/a
same log --diff "$repository/branch/a"
same log --diff trunk/b
normalise=xml_sorted
same log --xml -v
same log --xml -v -q "$repository/branch"
normalise=cat
same log -l 0
same log -l x
same log -r 1:x
same log -c x
same log -c 0
same log -r 1 -c 2
same log no-such-file
same log "$repository/no-such-file"
same log -r 99
same log a b

# Blame of a working file edited at its start, middle and end, of a file
# with a change in white space only, of a replaced and a non-ASCII file.
printf 'zero\none\nTWO\nthree\nfour\n' > trunk/a
printf 'one\ntwo \nthree\nbranch\n' > branch/a
svn commit -q -m "Spaces" branch/a
printf 'line\r\nlast without break' > trunk/moved/f
for options in "" -v --xml "--xml --incremental" "-x -w" "-x --ignore-eol-style" "-r 2:BASE" "-r BASE" "-r 6" \
  "-r 3:HEAD" "-r {2000-01-01}:PREV"; do
  # shellcheck disable=SC2086 # one word list
  same blame $options trunk/a trunk/b branch/a "trunk/gr\303\274n.txt" trunk/moved/f
done
# Local edits laid over the committed blame by the library's diff agree
# with svn's own walk over the working file.
for options in "" -v "-x -b"; do
  # shellcheck disable=SC2086
  tessera_only=--local same blame $options trunk/a branch/a trunk/moved/f
done
same blame
same blame -v "$repository/trunk/a"
same blame --xml "$repository/trunk/b@6" "$repository/branch/a@7"
same blame -r 2:4 "$repository/trunk/moved/f"
same blame "$repository/trunk/a@2" trunk/a@3
same blame --xml -v trunk/a
same blame --incremental trunk/a
same blame -x --nonsense trunk/a
same blame no-such-file
same praise trunk/b
same annotate -v branch/a

# Diff of the working copy's edits and between revisions, of paths and URLs,
# with a replaced file compared with what it replaced or (--notice-ancestry)
# as a deletion and an addition.
for ancestry in "" --notice-ancestry; do
  for options in "" "-x -w" "-x -b" "-x --ignore-eol-style" "-r 2" "-r 1:4" "-c 3" "-c -3" "-r 2:HEAD" -N; do
    # shellcheck disable=SC2086
    same diff $ancestry $options
    # shellcheck disable=SC2086
    same diff $ancestry $options trunk/a
  done
  for options in "-r 1:4" "-c 3" "-c 6" "-r 6:5"; do
    # shellcheck disable=SC2086
    same diff $ancestry $options "$repository/trunk"
  done
done
same diff --no-diff-deleted -r 1:4
same diff --no-diff-deleted -c 4 "$repository/trunk"
# One target against another.
same diff --old=trunk/a --new=branch/a
same diff --old=trunk/a
same diff --old=trunk --new=branch
same diff -r 1:HEAD --old=trunk --new=branch a dir
same diff -r 2:HEAD --old=trunk --new=branch
same diff --old="$repository/trunk@2" --new="$repository/branch"
same diff "$repository/trunk/a@2" "$repository/branch/a"
same diff "$repository/trunk@1" "$repository/trunk@HEAD"
same diff -r 1:x
same diff -r 1 -c 2
same log -c 2 -r 1
same diff -c x
same diff -x --nonsense
same diff no-such-file

# Summaries (their XML compared with attributes and paths sorted),
# git's format, property changes alone and copies as additions, of local
# edits with an added, a deleted and a copied file and a property change, and
# between revisions of URLs.
svn revert -q -R .
svn copy -q trunk/b trunk/c
printf 'new\n' > trunk/new
svn add -q trunk/new
svn delete -q "trunk/gr\303\274n.txt"
svn propset -q colour red trunk/a
printf 'edited\n' >> trunk/b
for options in "" "-r 1:4" "-c 3" "-c 6" "--notice-ancestry -c 6" -N; do
  # shellcheck disable=SC2086
  same diff --summarize $options
done
same diff --summarize trunk
same diff --summarize "$work/wc/trunk"
same diff --summarize -r 1:HEAD "$repository/trunk"
same diff --summarize -c 3 "$repository"
same diff --summarize "$repository/trunk@1" "$repository/branch"
normalise=xml_sorted
same diff --summarize --xml
same diff --summarize --xml -r 1:HEAD "$repository/trunk"
normalise=cat
same diff --xml
same diff --summarize --git
for options in --git --properties-only "--git --properties-only" --show-copies-as-adds "--git --show-copies-as-adds"; do
  # shellcheck disable=SC2086
  same diff $options
  # shellcheck disable=SC2086
  same diff $options -r 1:HEAD "$repository/trunk"
  # shellcheck disable=SC2086
  same diff $options -c 3 trunk
done

# Merged history (-g): the branch merged into trunk by an author with a long
# name, and one of its revisions merged back out, in a working copy of their
# own.
svn checkout -q "$repository" "$work/merges"
cd "$work/merges"
svn merge -q "$repository/branch" trunk
svn commit -q --username merging-author -m "Merge the branch"
svn update -q
svn merge -q -c -7 "$repository/branch" trunk
svn commit -q -m "Merge r7 back out"
svn update -q
for options in "" -q -v "-q -v" "-l 2" "-v --search Spaces" "-r 9:7"; do
  # shellcheck disable=SC2086
  same log -g $options trunk
done
same log -g -v "$repository/trunk/a"
same log -g -v "$repository"
# An author longer than svn's column.
same blame trunk/a
same blame -v trunk/a
for options in "" -v -r9; do
  # shellcheck disable=SC2086
  same blame -g $options trunk/a "$repository/trunk/a"
done
normalise=xml_sorted
for options in "" -v -q "-v --search Spaces" "-r 9 --incremental"; do
  # shellcheck disable=SC2086
  same log --xml -g $options trunk
done
same blame --xml -g trunk/a "$repository/trunk/a@9"
normalise=cat

[ "$failures" -eq 0 ] || { echo "$failures failure(s)"; exit 1; }
echo "all history commands agree with svn"
