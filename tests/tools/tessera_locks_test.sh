#!/bin/sh
# tessera lock and unlock against svn on twin repositories (twin.sh): paths of
# a working copy and URLs (file:// and svn://), names that need escaping,
# comments from -m and -F, bad input; then two users with two working copies
# through svnserve: a lock stolen with --force, broken with unlock --force,
# and the lock each working copy lost as status -u and update show it.
# usage: tessera_locks_test.sh TESSERA SVN SVNADMIN
set -eu
# shellcheck source=tests/tools/twin.sh
. "$(dirname "$0")/twin.sh"
twin_start "$1" "$2" "$3"
# Names beyond ASCII need a UTF-8 locale.
export LC_ALL=C.UTF-8

# One repository, twinned with its UUID: the warnings name it.
(
  cd "$work/svn"
  "$twin_svn" checkout -q "file://$work/svn/repo" seed
  cd seed
  for name in plain "with space" "é.txt" "hash#1" "per%cent" "at@2" other; do echo x >"$name"; done
  mkdir dir && echo y >dir/f
  "$twin_svn" add -q plain "with space" "é.txt" "hash#1" "per%cent" "at@2@" other dir
  "$twin_svn" commit -q -m files
)
rm -rf "$work/svn/seed"
twin_twin
twin_users="alice:wonder bob:builder" twin_serve
alice="--username alice --password wonder --no-auth-cache --non-interactive"
bob="--username bob --password builder --no-auth-cache --non-interactive"

twin_both '
  $svn checkout -q "$url" wc
  printf "first\r\nsecond\r\n" >crlf
  printf "first\r\nsecond\n" >mixed
  printf "a\000b" >nul
  printf "wc/other\nwc/dir/f\n" >targets'

# Paths of a working copy.
twin_step lock wc/plain
twin_step lock -m "a comment" "wc/with space" wc/é.txt
twin_step lock wc/plain wc/hash#1
twin_step lock -q wc/plain
twin_step unlock wc/plain "wc/with space" wc/é.txt wc/hash#1
twin_step lock --targets @ROOTDIR@/targets
twin_step unlock -q --targets @ROOTDIR@/targets
twin_step lock -F @ROOTDIR@/crlf wc/per%cent wc/at@2@
# The comment as stored: line ends made LF.
twin_both '$svn info wc/at@2@ | sed -n "/^Lock Comment/,\$p" >comment.out'
twin_same comment.out
twin_step unlock wc/per%cent wc/at@2@
twin_step lock -F @ROOTDIR@/mixed wc/plain
twin_step lock -F @ROOTDIR@/nul wc/plain
twin_step lock -F @ROOTDIR@/nothing wc/plain
twin_step lock -m wc/other wc/plain
twin_step lock -F wc/other wc/plain
twin_step lock -m x -F @ROOTDIR@/crlf wc/plain
twin_step lock --force-log -F wc/other wc/plain
twin_step unlock wc/plain wc/plain@
twin_step lock wc/plain@HEAD
twin_step lock wc/dir
twin_step lock wc/missing
twin_step lock
twin_step unlock
twin_step lock wc/plain @URL@/other
twin_step unlock wc/plain

# URLs: escaped as svn escapes them, locks that belong to no working copy.
twin_step lock "@URL@/with space" @URL@/é.txt @URL@/hash%231
twin_step lock @URL@/per%25cent @URL@/nothing
twin_step unlock @URL@/per%25cent @URL@/nothing
twin_step unlock "@URL@/with space" @URL@/é.txt @URL@/hash%231
twin_step lock @URL@/plain@5
twin_step lock @URL@/dir
twin_step status -u wc

# Two users, two working copies, through svnserve.
twin_step checkout -q $alice @SVNURL@ wc-alice
twin_step checkout -q $bob @SVNURL@ wc-bob
twin_step lock $alice @SVNURL@/plain
twin_step unlock $alice @SVNURL@/plain
twin_step lock $alice -m mine wc-alice/plain wc-alice/other
twin_step lock $bob wc-bob/plain
twin_step lock $bob --force -m stolen wc-bob/plain
twin_step status -u $alice wc-alice
twin_step status -u $bob wc-bob
twin_step unlock $alice wc-alice/plain
twin_step unlock $alice --force wc-alice/plain
twin_step status -u $bob wc-bob
twin_step status -v $bob wc-bob
twin_step unlock $bob @SVNURL@/other
twin_step unlock $bob --force @SVNURL@/other
twin_step status -u $alice wc-alice
twin_step update $bob wc-bob
twin_step unlock $alice wc-alice/other
twin_step update $alice wc-alice

twin_finish
