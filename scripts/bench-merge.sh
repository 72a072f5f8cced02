#!/usr/bin/env bash
# The merge benchmarks in one run:
#
#   scripts/bench-merge.sh [FIXTURE-DIR] [REPETITIONS]
#
# builds the tessera program into build-bench (or $TESSERA_BENCH_BUILD), makes
# a branch of 1,000 revisions to merge back (scripts/make-merge-fixture.sh
# under FIXTURE-DIR, default $TMPDIR/tessera-merge; TESSERA_BENCH_REVISIONS
# changes its size), then runs side by side in a checkout of trunk, each
# repetition in random order:
#
#   merge                          of the branch into the working copy,
#                                  which is reverted (untimed) before each run
#   mergeinfo --show-revs eligible the branch's revisions not merged yet
#
# with svn and with tessera, printing the medians (wall, the child's processor
# time, its peak memory) and the ratios tessera / svn.
set -euo pipefail

here=$(cd "$(dirname "$0")/.." && pwd)
fixture=${1:-${TMPDIR:-/tmp}/tessera-merge}
repetitions=${2:-5}
build=${TESSERA_BENCH_BUILD:-$here/build-bench}

if [[ ! -f $build/build.ninja ]]; then
    cmake -S "$here" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
fi
cmake --build "$build" --target tessera_cli tessera_backend_svn

branch=$("$here/scripts/make-merge-fixture.sh" "$fixture" "${TESSERA_BENCH_REVISIONS:-1000}" | tail -1)
fixture=$(cd "$fixture" && pwd)
config=$(mktemp -d)
trap 'rm -rf "$config"' EXIT

python3 - "$here/scripts" "$build/bin/tessera" "$branch" "$fixture/wc" "$config" "$repetitions" <<'END'
import subprocess, sys

sys.path.insert(0, sys.argv[1])
from side_by_side import compare

tessera, branch, wc, config, repetitions = sys.argv[2:6] + [int(sys.argv[6])]


def revert(case):
    if case == "merge":
        subprocess.run(["svn", "--config-dir", config, "revert", "-q", "-R", "."], cwd=wc, check=True)
        # What the merge added stays behind as unversioned files.
        subprocess.run(["svn", "--config-dir", config, "cleanup", "-q", "--remove-unversioned"], cwd=wc, check=True)


compare({"svn": "svn", "tessera": tessera}, {
    "merge": ["merge", branch],
    "mergeinfo --show-revs eligible": ["mergeinfo", "--show-revs", "eligible", branch],
}, repetitions, wc, config, revert)
END
