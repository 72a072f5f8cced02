#!/bin/sh
# Builds, with the svn client, a working copy holding an item of every status
# kind, for trying `tessera status` next to `svn status`.
#
# usage: make-status-example.sh REPOSITORY WC_DIR CONFIG_DIR
#   REPOSITORY  a URL of an empty repository, or a directory: an existing
#               repository there is used, else one is made with svnadmin
#   WC_DIR      the working copy to make (must not exist); a second one, from
#               which the "other user" commits and locks, is made beside it
#               as WC_DIR-other
#   CONFIG_DIR  the Subversion configuration directory for every svn call
#
# What the working copy holds (file names say what they are):
#   modified.txt  propmod.txt  added.txt  copied.txt (added with history)
#   deleted.txt  replaced.txt  missing.txt  obstructed.txt (now a directory)
#   unversioned.txt  unversioned-dir/  ignored.o  locked.txt (lock token here)
#   locked-elsewhere.txt (locked from the other working copy)
#   conflict.txt (text)  propconflict.txt (property)  treeedit.txt,
#   treedel.txt (tree conflicts)  outdated.txt, dir/outdated-in-dir.txt and a
#   file added in the repository (out of date)  changelist.txt (in
#   changelist "review")  sub/ (switched to the branch)  sparse/ (depth
#   empty)  addeddir/  deleteddir/ (three files)  ext/ (directory
#   external, with a change)  deep/ext2 (external below a directory it
#   makes)  extfile.txt (file external)
set -eu

if [ $# -ne 3 ]; then
  echo "usage: $0 REPOSITORY WC_DIR CONFIG_DIR" >&2
  exit 2
fi
repository="$1" wc="$2" config="$3"
other="$wc-other"

svn() { command svn --config-dir "$config" --non-interactive -q "$@"; }
absolute() { case "$1" in /*) echo "$1" ;; *) echo "$PWD/$1" ;; esac; }

case "$repository" in
  *://*) url="$repository" ;;
  *)
    [ -f "$repository/format" ] || svnadmin create "$repository"
    url="file://$(absolute "$repository")"
    ;;
esac
mkdir -p "$config"
# Author names in -v must not depend on who runs the script.
export LC_ALL=C

tree="$(mktemp -d)"
trap 'rm -rf "$tree"' EXIT
mkdir -p "$tree/trunk/sub" "$tree/trunk/sparse/inner" "$tree/trunk/deleteddir" "$tree/trunk/dir" \
         "$tree/trunk/treedir" "$tree/lib" "$tree/branch"
for name in normal modified propmod deleted replaced missing obstructed conflict propconflict \
            treeedit treedel locked locked-elsewhere outdated changelist; do
  echo "$name" > "$tree/trunk/$name.txt"
done
printf 'one\ntwo\nthree\n' > "$tree/trunk/conflict.txt"
echo sub > "$tree/trunk/sub/file.txt"
echo a > "$tree/trunk/sparse/a.txt"
echo b > "$tree/trunk/sparse/inner/b.txt"
for name in gone went left; do echo "$name" > "$tree/trunk/deleteddir/$name.txt"; done
echo in-dir > "$tree/trunk/dir/outdated-in-dir.txt"
echo lib > "$tree/lib/libfile.txt"
svn import --username alice -m "import" "$tree" "$url"
svn copy --username alice -m "make branch" "$url/trunk" "$url/branch/trunk"

svn checkout --username alice "$url/trunk" "$wc"
svn checkout --username bob "$url/trunk" "$other"

# The other user's changes that this working copy's update meets.
printf 'one\ntheirs\nthree\n' > "$other/conflict.txt"
svn propset colour theirs "$other/propconflict.txt"
svn rm "$other/treeedit.txt" "$other/treedel.txt"
svn propset svn:externals "^/lib ext
^/lib deep/ext2
^/lib/libfile.txt extfile.txt" "$other"
svn commit --username bob -m "their changes" "$other"

svn switch "^/branch/trunk/sub" "$wc/sub"
printf 'one\nmine\nthree\n' > "$wc/conflict.txt"
svn propset colour mine "$wc/propconflict.txt"
echo edited > "$wc/treeedit.txt"
svn rm "$wc/treedel.txt"
svn update --username alice --accept postpone "$wc"

# Local changes of every kind.
echo changed > "$wc/modified.txt"
svn propset colour blue "$wc/propmod.txt"
echo added > "$wc/added.txt"
svn add "$wc/added.txt"
mkdir "$wc/addeddir"
echo inside > "$wc/addeddir/inside.txt"
svn add "$wc/addeddir"
svn copy "$wc/normal.txt" "$wc/copied.txt"
svn rm "$wc/deleted.txt" "$wc/deleteddir"
svn rm "$wc/replaced.txt"
echo new > "$wc/replaced.txt"
svn add "$wc/replaced.txt"
rm "$wc/missing.txt"
rm "$wc/obstructed.txt"
mkdir "$wc/obstructed.txt"
echo unversioned > "$wc/unversioned.txt"
mkdir "$wc/unversioned-dir"
echo inside > "$wc/unversioned-dir/inside.txt"
svn propset svn:ignore "*.o" "$wc"
echo ignored > "$wc/ignored.o"
echo ignored > "$wc/sub/ignored-by-default.o~"
echo external-change > "$wc/ext/libfile.txt"
echo changed > "$wc/changelist.txt"
svn changelist review "$wc/changelist.txt"
svn lock --username alice -m "mine" "$wc/locked.txt"
svn update --set-depth empty "$wc/sparse"

# Changes that this working copy has not seen: a lock and commits.
echo newer > "$other/outdated.txt"
echo newer > "$other/dir/outdated-in-dir.txt"
echo new > "$other/new-in-repository.txt"
svn add "$other/new-in-repository.txt"
svn commit --username bob -m "newer changes" "$other"
# After the commit, which would release it.
svn lock --username bob -m "theirs" "$other/locked-elsewhere.txt"
