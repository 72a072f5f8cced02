#!/bin/sh
# tessera's commands that change working copies against svn's, on twin
# repositories (twin.sh): check-out, edits of every kind, add, commit,
# updates back and forth, switch, relocate, revert, resolve with each choice,
# changelists, clean-up after an interrupted operation, sparse depths.
# usage: tessera_twin_test.sh TESSERA SVN SVNADMIN
set -eu
# shellcheck source=tests/tools/twin.sh
. "$(dirname "$0")/twin.sh"
twin_start "$1" "$2" "$3"

# The repository: a trunk with files and a directory, a branch of it.
twin_both '
  $svn mkdir -q -m "layout" "$url/trunk" "$url/branches"
  $svn checkout -q "$url/trunk" seed
  printf "one\ntwo\nthree\n" > seed/a.txt
  printf "beta\n" > seed/b.txt
  mkdir -p seed/dir/sub && printf "deep\n" > seed/dir/sub/c.txt && printf "d\n" > seed/dir/d.txt
  $svn add -q seed/a.txt seed/b.txt seed/dir
  $svn commit -q -m "files" seed
  $svn copy -q -m "branch" "$url/trunk" "$url/branches/b1"
  rm -rf seed'

twin_step checkout @URL@/trunk wc
twin_step co -q @URL@/trunk@2 wc2
twin_step co @URL@/trunk wc-sparse --depth immediates
twin_step co -r 1 @URL@/trunk wc-old
twin_step checkout @URL@/nothing-here wc-none
twin_step checkout -r xyz @URL@/trunk wc-bad

# Edits of every kind, made the same way on both sides.
twin_both '
  printf "one\ntwo changed\nthree\n" > wc/a.txt
  $svn propset -q color blue wc/b.txt
  $svn propset -q svn:ignore "*.o" wc/dir
  mkdir wc/new && printf "n\n" > wc/new/n.txt && printf "f\n" > wc/file.txt && printf "o\n" > wc/new/x.o
  $svn delete -q wc/dir/d.txt
  $svn copy -q wc/dir/sub wc/sub-copy
  $svn move -q wc/b.txt wc/b-moved.txt'
twin_step add wc/new wc/file.txt
twin_step add wc/file.txt
twin_step add wc/missing.txt wc/a.txt
twin_both 'mkdir -p wc/p1/p2 && printf "p\n" > wc/p1/p2/p.txt'
twin_step add --parents wc/p1/p2/p.txt
twin_step add -q --no-ignore wc/new/x.o
twin_both 'mkdir -p wc/deep/inner && printf "1\n" > wc/deep/top.txt && printf "2\n" > wc/deep/inner/low.txt'
twin_step add --depth files wc/deep
twin_step add --depth immediates wc/deep/inner
twin_step commit -m "-edits of every kind" wc
twin_step commit -m "nothing" wc

# Updates back and forth, of several targets, at depths.
twin_step update wc2
twin_step up -r 2 wc
twin_step update wc
twin_step update -r PREV wc/a.txt
twin_step update -r '{2000-01-01}' wc-old
twin_step update wc-old wc2
twin_step update --set-depth files wc-sparse
twin_step update --set-depth infinity wc-sparse/dir
twin_step update --depth empty wc
twin_step update -r 1:2 wc
twin_step update --depth files --set-depth empty wc
twin_step update wc/not-there

# A text conflict for each choice of resolve, and one left for resolved.
for choice in base working mine-full theirs-full mine-conflict theirs-conflict; do
  twin_both "printf 'one\ntheirs $choice\nthree\n' > wc2/a.txt && \$svn commit -q -m theirs wc2
             printf 'one\nmine $choice\nthree\n' > wc/a.txt"
  twin_step update wc
  twin_step resolve --accept "$choice" wc/a.txt
  twin_same wc/a.txt
  twin_both '$svn revert -q wc/a.txt'
done
twin_step resolve --accept bogus wc/a.txt
twin_both 'printf "one\nlast\nthree\n" > wc2/a.txt && $svn commit -q -m last wc2 && printf "x\n" >> wc/a.txt'
twin_step update wc
twin_step resolved wc/a.txt
twin_step revert wc/a.txt wc/nothing.txt

# Reverts of every kind of change.
twin_both '
  printf "changed\n" >> wc/a.txt && $svn propset -q p v wc/dir && $svn delete -q wc/file.txt
  printf "u\n" > wc/unversioned.txt && $svn add -q wc/unversioned.txt'
twin_step revert -R wc
twin_step revert wc/dir/sub

# Changelists.
twin_both 'printf "m\n" >> wc/a.txt'
twin_step changelist feature wc/a.txt wc/dir/sub/c.txt
twin_step cl other wc/a.txt
twin_step changelist --remove wc/dir/sub/c.txt
twin_step changelist feature wc/nothing.txt wc/a.txt
twin_step changelist feature -R wc/dir
twin_step changelist --remove --depth infinity wc

# Switch to the branch and back, a sparse switch.
twin_step switch @URL@/branches/b1 wc
twin_step switch @URL@/trunk wc
twin_step sw --set-depth empty @URL@/branches/b1/dir wc/dir
twin_step switch not-a-url wc

# Relocation, both forms.
twin_both 'mv repo moved-repo'
twin_step relocate "file://@ROOTDIR@/repo" "file://@ROOTDIR@/moved-repo" wc
twin_both 'mv moved-repo repo'
twin_step relocate @URL@/trunk wc

# Clean-up after an interrupted operation: a working-copy lock left in the
# metadata, as an update stopped halfway leaves it.
twin_both 'sqlite3 wc/.svn/wc.db "INSERT INTO WC_LOCK (wc_id, local_dir_relpath, locked_levels) VALUES (1, \"\", -1)"'
twin_step update wc
twin_step cleanup wc
twin_step update wc

# Commits from an editor, with an answer when the message stays empty.
printf '#!/bin/sh\nprintf "from the editor\\n" > "$1"\n' > "$work/editor"
printf '#!/bin/sh\nexit 0\n' > "$work/lazy-editor"
chmod +x "$work/editor" "$work/lazy-editor"
twin_both 'printf "e\n" >> wc/a.txt'
twin_step commit --force-interactive --editor-cmd "$work/editor" wc
twin_both 'printf "f\n" >> wc/a.txt'
twin_step commit --force-interactive --editor-cmd "$work/lazy-editor" wc
twin_step commit --non-interactive wc
twin_step commit -m "x" -F "$work/editor" wc
twin_step commit -m "global options after the command" --non-interactive --username someone wc
twin_step --non-interactive -q commit -m "global options before it" wc

twin_finish
