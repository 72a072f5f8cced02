#!/bin/sh
# tessera's property commands against svn's, on twin repositories (twin.sh):
# propset, propdel, propget and proplist on working copies and on URLs
# (file:// and svn://), recursive and at revisions, with binary values,
# names with spaces, "#", "%", "@" and non-ASCII letters, svn:ignore and
# svn:externals values of every syntax, and bad input.
# usage: tessera_props_test.sh TESSERA SVN SVNADMIN
set -eu
# shellcheck source=tests/tools/twin.sh
. "$(dirname "$0")/twin.sh"
twin_start "$1" "$2" "$3"
# Non-ASCII names need a UTF-8 locale.
export LC_ALL=C.UTF-8

# The properties of each side's working copy, as svn reads them, agree.
props_same() {
  for side in svn tessera; do
    (cd "$work/$side" && "$twin_svn" proplist -v -R wc) | twin_mask >"$work/$side.props"
  done
  cmp -s "$work/svn.props" "$work/tessera.props" || {
    twin_fail "properties differ after: $1"
    diff -u "$work/svn.props" "$work/tessera.props" | sed 's/^/    /' || true
  }
}

twin_both '
  $svn mkdir -q -m "layout" "$url/trunk"
  $svn checkout -q "$url/trunk" wc
  mkdir -p "wc/dir/sub" "wc/sp ace" "wc/h#sh" "wc/pe%rc" "wc/at@sign" "wc/ünï"
  for d in dir dir/sub "sp ace" "h#sh" "pe%rc" "at@sign" "ünï"; do printf "x\n" > "wc/$d/f.txt"; done
  printf "a\n" > wc/a.txt
  printf "\377\000\376binary" > blob.bin
  printf "line one\r\nline two\r\n" > crlf.txt
  $svn add -q wc/a.txt wc/dir "wc/sp ace" "wc/h#sh" "wc/pe%rc" "wc/at@sign@" "wc/ünï"
  $svn commit -q -m "files" wc'

# Setting, on items of every kind of name.
twin_step propset color red wc/a.txt
twin_step ps color blue "wc/sp ace/f.txt" "wc/h#sh/f.txt" "wc/pe%rc/f.txt" "wc/ünï/f.txt"
twin_step ps color green "wc/at@sign/f.txt@"
twin_step ps -R mark x wc/dir
twin_step ps -q quiet y wc/a.txt
twin_step propset blob -F blob.bin wc/a.txt
twin_step propset multi "$(printf 'one\ntwo')" wc/a.txt
twin_step propset svn:ignore -F crlf.txt wc/dir
twin_step propset svn:eol-style sideways wc/a.txt
twin_step propset color red wc/missing.txt
twin_step propset color red
twin_step propset color red @URL@/trunk/a.txt
twin_step propset "bad name" red wc/a.txt
props_same propset

# Externals of every syntax; svn checks them when they are set.
twin_step propset svn:externals "$(printf '%s\n' \
  'old -r 1 http://example.invalid/repo/trunk/dir' \
  'old2 http://example.invalid/repo/trunk/dir' \
  '-r 1 ^/trunk/dir@2 new' \
  '../trunk/dir@HEAD rel' \
  '/repo/trunk/dir host-rel' \
  '//127.0.0.1/repo/trunk/dir scheme-rel' \
  '"^/trunk/sp ace" "quoted target"' \
  '^/trunk/sp\ ace escaped\ target' \
  '# a comment')" wc
twin_step propset svn:externals 'a b c d e' wc/dir/sub
props_same externals

# Reading, working copy.
twin_step propget color wc/a.txt
twin_step pg color "wc/sp ace/f.txt" "wc/h#sh/f.txt" "wc/ünï/f.txt"
twin_step pg -R mark wc
twin_step pg -v mark -R wc/dir
twin_step pg --no-newline multi wc/a.txt
twin_step pg --strict blob wc/a.txt
twin_step pg svn:externals wc
twin_step pg --xml color wc/a.txt
twin_step pg -R --xml mark wc/dir
twin_step pg nothing wc/a.txt
twin_step pg -v --xml color wc/a.txt
twin_step pg --no-newline mark -R wc
twin_step pg color wc/missing.txt
twin_step pg
twin_step proplist wc/a.txt
twin_step pl -v wc/a.txt wc/dir
twin_step pl -v -R wc
twin_step pl -q -R wc
twin_step pl --xml -R wc/dir
twin_step pl --xml -v wc/dir
twin_step pl wc/missing.txt wc/a.txt

# Editing: an editor that appends a line, one that changes nothing, one that fails.
printf '#!/bin/sh\nprintf "edited\\n" >> "$1"\n' >"$work/append.sh"
chmod +x "$work/append.sh"
export SVN_EDITOR="$work/append.sh"
twin_step propedit color wc/a.txt
twin_step pe fresh "wc/sp ace/f.txt" wc/dir
twin_step pe svn:ignore wc/dir
twin_step pe --editor-cmd true color wc/a.txt
twin_step pe color wc/missing.txt
twin_step pe color
twin_step pe "bad name" wc/a.txt
twin_step pe --editor-cmd false color wc/a.txt
unset SVN_EDITOR
props_same propedit

# Deleting.
twin_step propdel color wc/a.txt
twin_step pd color wc/a.txt
twin_step pd -R mark wc/dir
twin_step pd color wc/missing.txt
props_same propdel

# The repository: committed properties at revisions, peg revisions, svn://.
twin_both '
  $svn update -q --ignore-externals wc
  $svn commit -q -m "props" wc
  $svn update -q --ignore-externals wc'
twin_step pg color @URL@/trunk/a.txt
twin_step pg color @URL@/trunk/a.txt@2
twin_step pg -r 3 quiet @URL@/trunk/a.txt
twin_step pg -R mark @URL@/trunk
twin_step pg -r HEAD -v multi @URL@/trunk/a.txt
twin_step pg -r BASE quiet wc/a.txt
twin_step pg -r COMMITTED quiet wc/a.txt
twin_step pg -r PREV quiet wc/a.txt
twin_step pg -r xyz quiet wc/a.txt
twin_step pg color "@URL@/trunk/sp ace/f.txt" "@URL@/trunk/ünï/f.txt"
twin_step pg color "@URL@/trunk/at@sign/f.txt@"
twin_step pg color @URL@/trunk/nothing-here
# svn lists a repository's directories in hash order: one item each here.
twin_step pl -v -R "@URL@/trunk/ünï"
twin_step pl -v --xml -r 2 @URL@/trunk/a.txt
twin_step pl -R @URL@/trunk@1
twin_serve
twin_step pg -R mark @SVNURL@/trunk
twin_step pl -v @SVNURL@/trunk/a.txt
twin_step pl -v @SVNURL@/trunk/nothing

twin_finish
