#!/bin/sh
# tessera's commands that change repositories and working-copy trees against
# svn's, on twin repositories (twin.sh): mkdir, delete, copy, move and import
# on working copies, file:// and svn:// URLs, names with spaces, non-ASCII
# characters, '#', '%' and '@', and bad input.
# usage: tessera_write_test.sh TESSERA SVN SVNADMIN
set -eu
# shellcheck source=tests/tools/twin.sh
. "$(dirname "$0")/twin.sh"
twin_start "$1" "$2" "$3"
# Names beyond ASCII need a UTF-8 locale, for svn as for tessera.
export LC_ALL=C.UTF-8
twin_serve

# Making directories: URLs, parents, odd names, then a working copy.
twin_step mkdir -m "layout" @URL@/trunk @URL@/branches
twin_step mkdir -m "deep" @URL@/trunk/a/b
twin_step mkdir --parents -m "deep" @URL@/trunk/a/b
twin_step mkdir -m "odd names" "@URL@/trunk/with space" "@URL@/trunk/caf%C3%A9" "@URL@/trunk/h%23sh"
twin_step mkdir -m "served" @SVNURL@/tags
twin_step mkdir -q -m "quiet" @URL@/quiet
twin_step co -q @URL@/trunk wc
twin_step mkdir "wc/new dir" wc/ünï
twin_step mkdir wc/x/y
twin_step mkdir --parents wc/x/y
twin_step mkdir wc/z @URL@/z
twin_step mkdir -m "local" wc/z
twin_step mkdir
# A message that names a path, or a message file under version control, is
# refused as a likely mistake unless --force-log.
twin_step mkdir -m wc @URL@/forced
twin_step mkdir --force-log -m wc @URL@/forced
twin_both '
  printf "one\n" > wc/one.txt && printf "two\n" > "wc/two words.txt" && printf "p\n" > "wc/per%cent#.txt"
  printf "at\n" > "wc/at@sign.txt"
  $svn add -q wc/one.txt "wc/two words.txt" "wc/per%cent#.txt" "wc/at@sign.txt@"
  $svn commit -q -m "files" wc'
twin_step commit -F wc/one.txt wc

# Copies: WC to WC, into a directory, several sources, peg and -r, URL to
# URL, URL to WC, WC to URL, with parents; and refusals.
twin_step copy wc/one.txt wc/one-copy.txt
twin_step cp "wc/two words.txt" "wc/new dir"
twin_step cp wc/one.txt "wc/per%cent#.txt" wc/x
twin_step cp --parents wc/one.txt wc/p/q/one.txt
twin_step cp -m "branch" @URL@/trunk @URL@/branches/b1
twin_step cp -m "branch at 1" -r 1 @URL@/trunk @URL@/branches/b0
twin_step cp -m "branch by peg" @URL@/trunk@2 @SVNURL@/branches/peg
twin_step cp @URL@/trunk/one.txt@4 wc/from-repo.txt
twin_step cp -m "from wc" wc/one.txt @URL@/branches/from-wc.txt
twin_step cp wc/one.txt @URL@/trunk/one.txt wc/mixed
twin_step cp wc/one.txt wc/missing.txt wc/nowhere
twin_step cp wc/nothing.txt wc/else.txt
twin_step cp wc/one.txt
twin_step cp -m "local" wc/one.txt wc/one-m.txt
twin_step cp -r HEAD wc/one.txt wc/one-head.txt
twin_step cp wc/one.txt@COMMITTED wc/one-committed.txt
twin_step cp -r BASE wc/one.txt wc/one-base.txt
twin_step cp -m "dated" "@URL@/trunk@{2200-01-01}" @URL@/branches/dated
twin_step cp -m "bad date" -r "{not a date}" @URL@/trunk @URL@/branches/undated
twin_step cp -r xyz wc/one.txt wc/bad-rev.txt
twin_both 'mkdir plain'
twin_step cp wc/one.txt plain/one.txt

# Moves: in the working copy, into a directory, forced, repository moves.
twin_step move wc/one-copy.txt wc/renamed.txt
twin_step mv "wc/at@sign.txt@" "wc/new dir"
twin_step mv wc/from-repo.txt wc/p wc/x
twin_step mv --parents wc/renamed.txt wc/r/s/renamed.txt
twin_step mv -m "rename branch" @URL@/branches/b1 @URL@/branches/b2
twin_step mv -m "served rename" @SVNURL@/branches/peg @SVNURL@/branches/peg2
twin_step mv wc/ünï @URL@/branches/u
twin_step mv wc/gone.txt wc/here.txt
twin_both 'printf "changed\n" > "wc/two words.txt"'
twin_step mv --force "wc/two words.txt" wc/three.txt
twin_step commit -q -m "copies and moves" wc

# Deletes: versioned, unversioned with and without force, kept on disk,
# URLs, and refusals.
twin_both 'printf "loose\n" > wc/loose.txt'
twin_step delete wc/loose.txt
twin_step rm wc/loose.txt wc/three.txt
twin_step rm --force wc/loose.txt
twin_step rm --keep-local "wc/per%cent#.txt"
twin_same "wc/per%cent#.txt"
twin_step rm wc/x
twin_step rm -m "drop branch" @URL@/branches/b2 @URL@/branches/b0
twin_step rm -m "drop served" @SVNURL@/branches/peg2
twin_step rm -m "nothing" @URL@/branches/none
twin_step rm wc/a @URL@/trunk/a
twin_step rm
twin_step rm -m "local" wc/three.txt
twin_step commit -q -m "deletes" wc

# Import: a tree, files only, ignores, odd names, bad input.
twin_both '
  mkdir -p "imp/sub dir/deeper" && printf "i\n" > imp/i.txt && printf "o\n" > imp/i.o
  printf "d\n" > "imp/sub dir/deeper/d#.txt" && printf "é\n" > "imp/sub dir/é.txt"'
twin_step import -m "import" imp @URL@/imported
twin_step import -m "files only" -N imp @URL@/flat
twin_step import -m "no ignores" --no-ignore imp "@SVNURL@/all of it"
twin_step import -m "depth" --depth files imp @URL@/depth
twin_step import -m "again" imp/i.txt @URL@/imported/i.txt
twin_step import -m "bad" imp
twin_step import -m "bad" imp nothing-url
twin_step import
twin_step import -m "bad" imp @URL@/x @URL@/y
twin_step import -m "gone" nothing-here @URL@/gone
twin_step update -q wc

twin_finish
