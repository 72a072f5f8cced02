#!/bin/sh
# tessera's reading commands against svn's on twin repositories (twin.sh):
# cat, list and export of working copies and URLs (file:// and svn://), at
# revisions and peg revisions, with names holding spaces, "#", "%", "@" and
# non-ASCII letters, keywords and native line ends, and bad input.
# usage: tessera_read_test.sh TESSERA SVN SVNADMIN
set -eu
# shellcheck source=tests/tools/twin.sh
. "$(dirname "$0")/twin.sh"
twin_start "$1" "$2" "$3"
export LC_ALL=C.UTF-8

# One history, loaded into both sides: listings and XML show its dates.
(cd "$work/svn" && svn="$twin_svn" url="file://$work/svn/repo" sh -c '
  $svn mkdir -q -m "layout" "$url/trunk"
  $svn checkout -q "$url/trunk" seed
  printf "one\n\$Revision\$\n" > seed/a.txt
  mkdir -p "seed/dir/sub" && printf "deep\n" > "seed/dir/sub/deep.txt"
  printf "s\n" > "seed/dir/with space.txt"
  printf "h\n" > "seed/dir/hash#pct%%.txt"
  printf "at\n" > "seed/dir/at@sign.txt"
  green="$(printf "gr\303\274n.txt")"
  printf "gr\n" > "seed/$green"
  $svn add -q seed/a.txt seed/dir "seed/$green"
  $svn propset -q svn:keywords Revision seed/a.txt
  $svn propset -q svn:eol-style native seed/a.txt
  $svn commit -q -m "files" seed
  printf "two\n\$Revision\$\n" > seed/a.txt
  $svn commit -q -m "second" seed
  rm -rf seed')
twin_twin
twin_both '$svn checkout -q "$url/trunk" wc && printf "local change\n" >> wc/a.txt'
twin_serve

for base in @URL@ @SVNURL@; do
  twin_step cat "$base/trunk/a.txt"
  twin_step cat -r 2 "$base/trunk/a.txt"
  twin_step cat "$base/trunk/a.txt@2"
  twin_step cat "$base/trunk/dir/with%20space.txt" "$base/trunk/dir/hash%23pct%25.txt" "$base/trunk/dir/at@sign.txt@"
  twin_step cat "$base/trunk/gr%C3%BCn.txt"
  twin_step cat "$base/trunk/nothing" "$base/trunk/a.txt" "$base/trunk/dir"
  twin_step cat -r 99 "$base/trunk/a.txt"

  twin_step list "$base/trunk"
  twin_step ls -R "$base/trunk"
  twin_step ls -v "$base/trunk" "$base/trunk/a.txt"
  twin_step ls -v -R -r 2 "$base/trunk"
  twin_step ls --depth files "$base/trunk"
  twin_step ls --depth empty "$base/trunk"
  twin_step ls --xml -R "$base/trunk"
  twin_step ls --xml --incremental "$base/trunk/dir"
  twin_step ls "$base/trunk/dir@2"
  twin_step ls "$base/trunk/nothing" "$base/trunk/dir"
  twin_step ls -r HEAD:1 "$base/trunk"
done

twin_step cat wc/a.txt
twin_step cat -r 2 wc/a.txt
twin_step cat wc/a.txt@BASE "wc/dir/at@sign.txt@" "wc/gr$(printf '\303\274')n.txt"
twin_step cat -r PREV wc/a.txt
twin_step cat -r COMMITTED wc/a.txt
twin_step cat wc/missing.txt wc/dir
twin_step cat
twin_step ls wc
twin_step ls -v -R wc/dir
twin_step ls --xml wc
twin_step ls wc/missing

# info: the working files' times differ between the sides, and svn writes
# the attributes of an XML element in hash order, and the entries of a
# repository directory too (sorted with $sort_entries set).
twin_info_step() {
  twin_run svn "$twin_svn" "$@"
  twin_run tessera "$twin_tessera" "$@"
  for side in svn tessera; do
    python3 -c 'import re, sys
text = sys.stdin.read()
attributes = lambda m: "".join("\n" + line for line in sorted(m.group(1).split("\n")[1:])) + ">"
text = re.sub(r"((?:\n   [\w-]+=\"[^\"]*\")+)>", attributes, text)
sys.stdout.write("\n\n".join(sorted(text.split("\n\n"))) if "'"${sort_entries:-}"'" else text)' \
      <"$work/$side.out" |
      sed -e 's/^Text Last Updated: .*/Text Last Updated: @TIME@/' \
          -e 's|^<text-updated>.*</text-updated>$|<text-updated>@TIME@</text-updated>|' >"$work/$side.sorted"
    mv "$work/$side.sorted" "$work/$side.out"
  done
  twin_compare "$*"
}
twin_both '$svn propset -q colour blue wc/dir && $svn changelist -q list1 "wc/dir/with space.txt"'
twin_info_step info wc
twin_info_step info -R wc
twin_info_step info wc/a.txt "wc/dir/at@sign.txt@" wc/missing @URL@/trunk/missing wc/dir
twin_info_step info --depth immediates wc
twin_info_step info @URL@/trunk @SVNURL@/trunk/a.txt
sort_entries=1
twin_info_step info -R "@URL@/trunk/dir@2"
sort_entries=
twin_info_step info -r 1 @URL@/trunk
twin_info_step info --show-item revision wc
twin_info_step info --show-item kind -R wc
twin_info_step info --show-item url --no-newline "wc/dir/with space.txt"
twin_info_step info --show-item changelist -R wc/dir
twin_info_step info --show-item bogus wc
twin_info_step info --show-item last-changed-date @URL@/trunk/a.txt
twin_info_step info --xml -R wc
twin_info_step info --xml @URL@/trunk/a.txt @SVNURL@/trunk
twin_info_step info --xml --incremental wc/a.txt
twin_info_step info -r xyz wc

twin_step export @URL@/trunk out1
twin_same out1/a.txt "out1/dir/with space.txt"
twin_step export @URL@/trunk out1
twin_step export --force -q @URL@/trunk out1
twin_step export -r 2 --native-eol CRLF @URL@/trunk/a.txt out-crlf.txt
twin_same out-crlf.txt
twin_step export --depth immediates "@SVNURL@/trunk@2" out2
twin_step export @URL@/trunk/dir
twin_step export wc out-wc
twin_same out-wc/a.txt
twin_step export -r BASE wc out-base
twin_same out-base/a.txt
twin_step export --native-eol XX @URL@/trunk out3
twin_step export @URL@/trunk/nothing out4
twin_step export
twin_step export --ignore-externals @URL@/trunk "out five"

# A full disk: svn's write error and exit status, even for output that
# fits in the buffer until the end.
twin_output=/dev/full
twin_step info wc
twin_step list -R @URL@
twin_step cat @URL@/trunk/a.txt
twin_output=

twin_finish
