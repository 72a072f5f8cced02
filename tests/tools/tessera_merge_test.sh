#!/bin/sh
# tessera merge and mergeinfo against svn's, on twin repositories (twin.sh):
# a sync merge from trunk to a branch, a cherry-pick, a reverse merge, a
# record-only merge, a dry run, conflicts resolved with each --accept and a
# reintegration. After
# each merge the working copies' status, merge info and diff agree, and the
# repositories after the commits.
# usage: tessera_merge_test.sh TESSERA SVN SVNADMIN
set -eu
# shellcheck source=tests/tools/twin.sh
. "$(dirname "$0")/twin.sh"
twin_start "$1" "$2" "$3"

# merge_compare [WC]: what a merge leaves besides the status, the merge info
# and the changes of the working copy (default wc), agree.
merge_compare() {
  for side in svn tessera; do
    (cd "$work/$side" && "$twin_svn" propget svn:mergeinfo -R "${1:-wc}" && "$twin_svn" diff "${1:-wc}") 2>&1 |
      twin_mask >"$work/$side/merged.txt"
  done
  twin_same merged.txt
}

# trunk r2 holds the files; the branch is copied at r3; trunk changes in r4 to r7.
twin_both '
  $svn mkdir -q -m "layout" "$url/trunk" "$url/branches"
  $svn checkout -q "$url/trunk" seed
  printf "one\ntwo\nthree\n" > seed/a.txt
  printf "beta\n" > seed/b.txt
  mkdir seed/dir && printf "d\n" > seed/dir/d.txt
  $svn add -q seed/a.txt seed/b.txt seed/dir
  $svn commit -q -m "files" seed
  $svn copy -q -m "branch" "$url/trunk" "$url/branches/b1"
  printf "one\ntwo\nthree\nfour\n" > seed/a.txt && $svn commit -q -m "r4" seed
  printf "beta\ngamma\n" > seed/b.txt && $svn commit -q -m "r5" seed
  printf "e\n" > seed/dir/e.txt && $svn add -q seed/dir/e.txt && $svn commit -q -m "r6" seed
  $svn propset -q color red seed/b.txt && $svn commit -q -m "r7" seed
  rm -rf seed
  $svn checkout -q "$url/branches/b1" wc'

twin_step mergeinfo --show-revs eligible @URL@/trunk wc
twin_step merge --dry-run @URL@/trunk wc
twin_step merge -x -b -c 4 @URL@/trunk/a.txt wc/a.txt
twin_both '$svn revert -q -R wc'
twin_step merge -c 5 @URL@/trunk wc
merge_compare
twin_step mergeinfo --show-revs merged @URL@/trunk wc
twin_step merge -r 5:7 @URL@/trunk wc
merge_compare
twin_step merge -c -6 @URL@/trunk wc
merge_compare
twin_step merge --record-only -c 4 @URL@/trunk wc
merge_compare
twin_step merge @URL@/trunk wc
merge_compare
twin_step mergeinfo --show-revs eligible @URL@/trunk wc
twin_step commit -m "sync" wc
twin_both '$svn update -q wc'

# The same line changed on both lines of development, a property set both
# ways, a file deleted on trunk and changed on the branch: conflicts of text,
# property and tree.
twin_both '
  $svn checkout -q "$url/trunk" trunk-seed
  printf "ONE\ntwo\nthree\nfour\n" > trunk-seed/a.txt
  $svn propset -q color green trunk-seed/b.txt && $svn delete -q trunk-seed/dir/d.txt
  $svn commit -q -m "trunk edit" trunk-seed
  rm -rf trunk-seed
  printf "uno\ntwo\nthree\nfour\n" > wc/a.txt && $svn propset -q color blue wc/b.txt
  printf "d2\n" > wc/dir/d.txt
  $svn commit -q -m "branch edit" wc && $svn update -q wc'
# Without --accept svn 1.14 also looks for the details of the tree conflict
# in the repository, which tessera does not: postponing is asked for.
twin_step merge --accept postpone @URL@/trunk wc
merge_compare
# Each --accept resolves the conflicts after the merge; a tree conflict takes
# only "working", and the others end with Subversion's refusal.
for accept in working tf mine-full theirs-conflict mc base; do
  twin_both '$svn revert -q -R wc && rm -f wc/a.txt.* wc/*.prej'
  twin_step merge --accept "$accept" @URL@/trunk wc
  merge_compare
done
twin_step merge --accept launch @URL@/trunk wc
twin_step merge --accept bogus @URL@/trunk wc
# Trunk's side of every conflict, then a change of the branch's own.
twin_both '
  $svn revert -q -R wc && rm -f wc/a.txt.* wc/*.prej && $svn update -q wc
  $svn merge -q --accept theirs-full "$url/trunk" wc >/dev/null 2>&1 || true
  $svn resolve -q -R --accept working wc && $svn commit -q -m "synchronised" wc
  printf "new\n" > wc/new.txt && $svn add -q wc/new.txt && $svn commit -q -m "branch file" wc
  $svn checkout -q "$url/trunk" wc-trunk'

# The branch goes back into trunk.
twin_step merge --reintegrate @URL@/branches/b1 wc-trunk
merge_compare wc-trunk
twin_step commit -m "reintegrate" wc-trunk

# The merging summary of a second branch before and after a sync merge and
# of the branch back into trunk, of two sibling branches, of a target at a
# revision and by URL, and svn's refusals of the form.
twin_both '
  $svn update -q wc-trunk
  $svn copy -q -m "branch two" "$url/trunk" "$url/branches/b2"
  $svn checkout -q "$url/branches/b2" wc2
  printf "t\n" > wc-trunk/t.txt && $svn add -q wc-trunk/t.txt && $svn commit -q -m "trunk file" wc-trunk'
twin_step mergeinfo @URL@/trunk wc2
twin_both '
  $svn merge -q "$url/trunk" wc2 && $svn commit -q -m "sync two" wc2
  printf "b2\n" > wc2/b2.txt && $svn add -q wc2/b2.txt && $svn commit -q -m "branch two file" wc2
  $svn update -q wc2 wc-trunk'
twin_step mergeinfo @URL@/trunk wc2
twin_step mergeinfo @URL@/branches/b2 wc-trunk
twin_step mergeinfo @URL@/branches/b1 @URL@/branches/b2
twin_step mergeinfo @URL@/trunk@12 wc2@13
twin_step mergeinfo @URL@/trunk wc2@HEAD
twin_step mergeinfo -R @URL@/trunk wc2
twin_step mergeinfo
twin_finish
