#!/usr/bin/env bash
# Makes a long history for the history benchmarks:
#
#   scripts/make-history-fixture.sh DIR [REVISIONS] [BLAMED]
#
# DIR/repo   an FSFS repository of REVISIONS revisions (10000): revision 1
#            adds trunk/ with 100 files and trunk/blamed.txt (1,000 lines);
#            each later revision changes one line of one of the 100 files,
#            by one of five authors, and BLAMED of them (1000, spread evenly)
#            change a line of trunk/blamed.txt instead; every 100th revision
#            also copies a file, so that changed paths carry copy sources
# DIR/wc     a checkout of trunk
#
# Committing revision by revision is far too slow, so the history is a
# synthesized dump stream loaded with svnadmin load (not flushed to disk
# revision by revision). A fixture that already
# exists with the same sizes is reused; delete DIR to rebuild it. Prints the
# path of the repository on the last line.
set -euo pipefail

if [[ $# -lt 1 || $# -gt 3 ]]; then
    echo "usage: $0 DIR [REVISIONS] [BLAMED]" >&2
    exit 2
fi
root=$1
revisions=${2:-10000}
blamed=${3:-1000}
if ! [[ $revisions =~ ^[0-9]+$ && $blamed =~ ^[0-9]+$ && $revisions -ge 2 && $blamed -lt $revisions ]]; then
    echo "$0: REVISIONS must be at least 2 and BLAMED below it" >&2
    exit 2
fi

stamp="revisions=$revisions blamed=$blamed layout=1"
if [[ -f $root/complete && "$(cat "$root/complete")" == "$stamp" && -d $root/wc/.svn ]]; then
    echo "reusing $root ($stamp)" >&2
    echo "$root/repo"
    exit 0
fi
rm -rf "$root"
mkdir -p "$root"
root=$(cd "$root" && pwd)

svnadmin create "$root/repo"
python3 - "$revisions" "$blamed" <<'EOF' | svnadmin load -q --no-flush-to-disk "$root/repo"
import sys

revisions, blamed = int(sys.argv[1]), int(sys.argv[2])
out = sys.stdout.buffer
authors = ["alice", "bob", "carol", "dave", "erin"]
files = {f"trunk/f{n:03}.txt": [f"file {n} line {k}" for k in range(20)] for n in range(100)}
blame = [f"blamed line {k}" for k in range(1000)]

def properties(pairs):
    text = b""
    for key, value in pairs:
        k, v = key.encode(), value.encode()
        text += b"K %d\n%s\nV %d\n%s\n" % (len(k), k, len(v), v)
    return text + b"PROPS-END\n"

def revision(number, author, message):
    props = properties([("svn:author", author), ("svn:date", "2020-01-01T00:00:00.000000Z".replace(
        "00:00:00", f"{number // 3600 % 24:02}:{number // 60 % 60:02}:{number % 60:02}")), ("svn:log", message)])
    out.write(b"Revision-number: %d\nProp-content-length: %d\nContent-length: %d\n\n%s\n"
              % (number, len(props), len(props), props))

def node(path, action, kind=None, lines=None, copy=None):
    head = b"Node-path: %s\n" % path.encode()
    if kind:
        head += b"Node-kind: %s\n" % kind.encode()
    head += b"Node-action: %s\n" % action.encode()
    if copy:
        head += b"Node-copyfrom-rev: %d\nNode-copyfrom-path: %s\n" % (copy[1], copy[0].encode())
    if lines is None:
        out.write(head + b"\n")
        return
    text = "".join(line + "\n" for line in lines).encode()
    out.write(head + b"Text-content-length: %d\nContent-length: %d\n\n%s\n\n" % (len(text), len(text), text))

out.write(b"SVN-fs-dump-format-version: 2\n\n")
revision(1, authors[0], "Import")
node("trunk", "add", "dir")
for path, lines in sorted(files.items()):
    node(path, "add", "file", lines)
node("trunk/blamed.txt", "add", "file", blame)
every = (revisions - 1) / blamed if blamed else 0
next_blamed = 2.0
for number in range(2, revisions + 1):
    author = authors[number % len(authors)]
    if blamed and number >= next_blamed and next_blamed < revisions + 1:
        next_blamed += every
        blame[number * 7 % len(blame)] = f"blamed line {number * 7 % len(blame)} changed in r{number}"
        revision(number, author, f"Change the blamed file in r{number}\n\nA second paragraph.")
        node("trunk/blamed.txt", "change", lines=blame)
        continue
    path = f"trunk/f{number % 100:03}.txt"
    files[path][number % 20] = f"line changed in r{number}"
    revision(number, author, f"Change {path} in r{number}")
    node(path, "change", lines=files[path])
    if number % 100 == 0:
        node(f"trunk/copy{number}.txt", "add", "file", copy=(path, number - 1))
out.flush()
EOF
svn checkout -q "file://$root/repo/trunk" "$root/wc"
echo "$stamp" >"$root/complete"
echo "$root/repo"
