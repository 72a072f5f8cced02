#!/usr/bin/env bash
# Makes a large working copy for the status benchmarks:
#
#   scripts/make-large-working-copy.sh DIR [FILES] [DIRS]
#
# DIR/repo   an FSFS repository holding FILES files (100000) in DIRS
#            directories (2000) in revision 1, and a revision 2 changing a few
#            of them (committed from the working copy, so revisions are mixed)
# DIR/wc     its checkout, with about 1% of the files changed: modified text,
#            property changes, added, unversioned, deleted and missing files
#
# Importing file by file is far too slow (svn import of 3,000 files takes
# over half a minute), so revision 1 is a synthesized dump stream loaded with
# svnadmin load, and the working copy comes from one svn checkout.
#
# A tree that already exists with the same FILES and DIRS is reused; delete
# DIR to rebuild it. Prints the path of the working copy on the last line.
set -euo pipefail

if [[ $# -lt 1 || $# -gt 3 ]]; then
    echo "usage: $0 DIR [FILES] [DIRS]" >&2
    exit 2
fi

root=$1
files=${2:-100000}
dirs=${3:-2000}
if ! [[ $files =~ ^[0-9]+$ && $dirs =~ ^[0-9]+$ && $files -ge 100 && $dirs -ge 1 ]]; then
    echo "$0: FILES must be a number of at least 100 and DIRS at least 1" >&2
    exit 2
fi

stamp="files=$files dirs=$dirs layout=1"
if [[ -f $root/complete && "$(cat "$root/complete")" == "$stamp" && -d $root/wc/.svn ]]; then
    echo "reusing $root/wc ($stamp)" >&2
    echo "$root/wc"
    exit 0
fi

for tool in svn svnadmin python3; do
    command -v "$tool" >/dev/null || { echo "$0: $tool is missing" >&2; exit 1; }
done

start=$(date +%s.%N)
rm -rf "$root"
mkdir -p "$root"
root=$(cd "$root" && pwd)
config=$root/config          # never the user's ~/.subversion
svnq() { svn --config-dir "$config" --non-interactive -q "$@"; }
elapsed() { python3 -c "import sys; print(f'{float(sys.argv[2]) - float(sys.argv[1]):.1f}')" "$1" "$(date +%s.%N)"; }

mkdir -p "$config"
svn --config-dir "$config" --version --quiet >/dev/null   # writes the default configuration files

# The load writes dozens of small files per node into the transaction, so it
# runs on a memory file system when there is one (five times faster here) and
# the finished repository is moved beside the working copy. Representation
# sharing would cost an SQLite insert per file and saves nothing here.
stage=$root
if [[ -d /dev/shm && -w /dev/shm ]]; then
    stage=$(mktemp -d /dev/shm/tessera-large-wc.XXXXXX)
    trap 'rm -rf "$stage"' EXIT
fi
svnadmin create --fs-type fsfs "$stage/repo"
sed -i 's/^# enable-rep-sharing = true/enable-rep-sharing = false/' "$stage/repo/db/fsfs.conf"

# Revision 1: the whole tree, written as a dump stream. Directories form a
# tree of fan-out 12 (breadth first), the files are spread evenly over them.
# Contents are small text files of varied length; a few files carry
# properties so that the property columns are not all blank.
python3 - "$files" "$dirs" >"$root/tree.dump" <<'EOF'
import sys

files, dirs = int(sys.argv[1]), int(sys.argv[2])
out = sys.stdout.buffer

def props(pairs):
    text = b"".join(b"K %d\n%s\nV %d\n%s\n" % (len(k), k, len(v), v) for k, v in pairs)
    return text + b"PROPS-END\n"

def header(**fields):
    return b"".join(b"%s: %s\n" % (k.replace("_", "-").encode(), str(v).encode()) for k, v in fields.items())

out.write(b"SVN-fs-dump-format-version: 2\n\nUUID: 6b0c2e4a-5f1d-4c55-9c1e-2d1f0a7b3c11\n\n")
revprops = props([(b"svn:log", b"Large tree for the status benchmarks"),
                  (b"svn:author", b"bench"),
                  (b"svn:date", b"2024-01-01T00:00:00.000000Z")])
out.write(header(Revision_number=1, Prop_content_length=len(revprops), Content_length=len(revprops)))
out.write(b"\n" + revprops + b"\n")

# Breadth-first directory names: d00, d01, ..., d00/d00, ...
paths = []
queue = [""]
while len(paths) < dirs:
    parent = queue.pop(0)
    for i in range(12):
        if len(paths) == dirs:
            break
        path = (parent + "/" if parent else "") + "d%02d" % i
        paths.append(path)
        queue.append(path)

empty = props([])
for path in paths:
    out.write(header(Node_path=path, Node_kind="dir", Node_action="add",
                     Prop_content_length=len(empty), Content_length=len(empty)))
    out.write(b"\n" + empty + b"\n\n")

line = b"The quick brown fox jumps over the lazy dog; status must stay fast.\n"
for n in range(files):
    directory = paths[n % dirs]
    name = "%s/f%06d.%s" % (directory, n, ("c", "h", "txt", "md")[n % 4])
    body = b"file %d\n" % n + line * (1 + n % 17)
    pairs = []
    if n % 50 == 0:
        pairs.append((b"svn:eol-style", b"native"))
    if n % 200 == 0:
        pairs.append((b"tessera:owner", b"bench"))
    p = props(pairs)
    out.write(header(Node_path=name, Node_kind="file", Node_action="add",
                     Prop_content_length=len(p), Text_content_length=len(body),
                     Content_length=len(p) + len(body)))
    out.write(b"\n" + p + body + b"\n\n")
EOF

t=$(date +%s.%N)
svnadmin load -q --bypass-prop-validation --no-flush-to-disk "$stage/repo" <"$root/tree.dump"
rm -f "$root/tree.dump"
[[ $stage == "$root" ]] || mv "$stage/repo" "$root/repo"
echo "loaded $files files in $dirs directories: $(elapsed "$t") s" >&2

url="file://$root/repo"

t=$(date +%s.%N)
# One exclusive SQLite lock for the whole checkout instead of one per
# transaction; the configuration that status runs with stays the default.
svnq checkout --config-option config:working-copy:exclusive-locking=true "$url" "$root/wc"
echo "checked out: $(elapsed "$t") s" >&2

# Revision 2: a few files committed from the working copy, which leaves it at
# mixed revisions as a real one usually is.
t=$(date +%s.%N)
cd "$root/wc"
for d in d00 d01 d02; do
    for f in "$d"/f*; do echo "second revision" >>"$f"; done
done
svnq commit -m "Second revision" --username bench
cd - >/dev/null
echo "committed revision 2: $(elapsed "$t") s" >&2

# About 1% of the files changed; picked with fixed strides so runs are
# identical. Every step that goes through svn names many targets at once.
t=$(date +%s.%N)
cd "$root/wc"
python3 - "$files" "$dirs" <<'EOF'
import os, sys

files, dirs = int(sys.argv[1]), int(sys.argv[2])
paths = []
queue = [""]
while len(paths) < dirs:
    parent = queue.pop(0)
    for i in range(12):
        if len(paths) == dirs:
            break
        path = (parent + "/" if parent else "") + "d%02d" % i
        paths.append(path)
        queue.append(path)

def name(n):
    return "%s/f%06d.%s" % (paths[n % dirs], n, ("c", "h", "txt", "md")[n % 4])

count = lambda share: max(1, files * share // 10000)   # share in 1/100 of a percent
picks = list(range(7, files, files // count(100)))       # ~1% of the files, spread out
# 60% modified text, 10% property changes, 10% deleted, 5% missing, 10% added, 5% unversioned
cut = lambda share: len(picks) * share // 100
modified = picks[:cut(60)]
props = picks[cut(60):cut(70)]
deleted = picks[cut(70):cut(80)]
missing = picks[cut(80):cut(85)]
added = picks[cut(85):cut(95)]
unversioned = picks[cut(95):]

for n in modified:
    with open(name(n), "ab") as f:
        f.write(b"a local change\n")
for n in missing:
    os.remove(name(n))
def write_list(path, items):
    with open(path, "w") as f:
        f.write("".join(item + "\n" for item in items))
write_list("../props.txt", [name(n) for n in props])
write_list("../deleted.txt", [name(n) for n in deleted])
new = []
for n in added:
    new_name = name(n) + ".new"
    with open(new_name, "wb") as f:
        f.write(b"an added file\n")
    new.append(new_name)
for n in unversioned:
    with open(name(n) + ".tmp", "wb") as f:
        f.write(b"an unversioned file\n")
# A few added directories with files, and ignored build products.
for i in range(max(1, len(added) // 20)):
    d = paths[(i * 37) % dirs] + "/added%02d" % i
    os.mkdir(d)
    for j in range(3):
        with open("%s/new%d.c" % (d, j), "wb") as f:
            f.write(b"int x;\n")
    new.append(d)
for n in unversioned[: max(1, len(unversioned) // 2)]:
    with open(name(n) + ".o", "wb") as f:
        f.write(b"\0object\0")
write_list("../added.txt", new)
EOF
svnq propset tessera:reviewed yes --targets ../props.txt
svnq delete --targets ../deleted.txt
svnq add --targets ../added.txt
rm -f ../props.txt ../deleted.txt ../added.txt
cd - >/dev/null
echo "changed about 1% of the files: $(elapsed "$t") s" >&2

echo "$stamp" >"$root/complete"
echo "made $root in $(elapsed "$start") s" >&2
echo "$root/wc"
