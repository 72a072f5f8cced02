#!/usr/bin/env bash
# Makes a branch to merge back, for the merge benchmark:
#
#   scripts/make-merge-fixture.sh DIR [REVISIONS]
#
# DIR/history/repo  the history of scripts/make-history-fixture.sh with
#                   REVISIONS (1000) changes after its import and no blamed
#                   file changes, its trunk then moved to branches/feature
#                   (so the branch holds the 100 files, REVISIONS revisions
#                   each changing one line of one of them, and a file copied
#                   every 100th revision), and trunk copied anew from the
#                   branch as it was imported
# DIR/wc            a checkout of that trunk, to merge the branch into
#
# A fixture that already exists with the same size is reused; delete DIR to
# rebuild it. Prints the URL of the branch on the last line.
set -euo pipefail

if [[ $# -lt 1 || $# -gt 2 ]]; then
    echo "usage: $0 DIR [REVISIONS]" >&2
    exit 2
fi
root=$1
revisions=${2:-1000}
if ! [[ $revisions =~ ^[0-9]+$ && $revisions -ge 1 ]]; then
    echo "$0: REVISIONS must be a positive number" >&2
    exit 2
fi

stamp="revisions=$revisions layout=1"
mkdir -p "$root"
root=$(cd "$root" && pwd)
url="file://$root/history/repo"
if [[ -f $root/complete && "$(cat "$root/complete")" == "$stamp" && -d $root/wc/.svn ]]; then
    echo "reusing $root ($stamp)" >&2
    echo "$url/branches/feature"
    exit 0
fi
rm -rf "$root/history" "$root/wc" "$root/complete"

"$(dirname "$0")/make-history-fixture.sh" "$root/history" $((revisions + 1)) 0 >/dev/null
svnmucc -U "$url" -m "The history becomes a branch" mkdir branches mv trunk branches/feature >/dev/null
svnmucc -U "$url" -m "Trunk from where the branch began" cp 1 trunk trunk >/dev/null
svn checkout -q "$url/trunk" "$root/wc"
echo "$stamp" >"$root/complete"
echo "$url/branches/feature"
