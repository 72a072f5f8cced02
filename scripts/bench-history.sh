#!/usr/bin/env bash
# The history benchmarks in one run:
#
#   scripts/bench-history.sh [FIXTURE-DIR] [REPETITIONS]
#
# builds the tessera program and bench/log_benchmark into build-bench (or
# $TESSERA_BENCH_BUILD), makes the history (scripts/make-history-fixture.sh
# under FIXTURE-DIR, default $TMPDIR/tessera-history; TESSERA_BENCH_REVISIONS
# and TESSERA_BENCH_BLAMED change its size), then runs side by side, each
# repetition in random order:
#
#   log -v          of the whole repository, output to /dev/null
#   log --xml -v    the same in XML
#   blame           of the file changed in BLAMED revisions, in the working copy
#   diff            of the 100,000-file working copy with its local edits
#                   (scripts/make-large-working-copy.sh under
#                   $TESSERA_BENCH_LARGE, default FIXTURE-DIR-large; about
#                   600 files edited, 100 with property changes, 100 added,
#                   100 deleted, 50 missing)
#
# with svn and with tessera, printing the medians (wall, the child's processor
# time, its peak memory) and the ratios tessera / svn; then log_benchmark: the
# library's log walk with changed paths against Subversion's log call with a
# receiver that copies each record.
set -euo pipefail

here=$(cd "$(dirname "$0")/.." && pwd)
fixture=${1:-${TMPDIR:-/tmp}/tessera-history}
repetitions=${2:-5}
build=${TESSERA_BENCH_BUILD:-$here/build-bench}

if [[ ! -f $build/build.ninja ]]; then
    cmake -S "$here" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
fi
cmake --build "$build" --target tessera_cli tessera_backend_svn log_benchmark

repository=$("$here/scripts/make-history-fixture.sh" "$fixture" "${TESSERA_BENCH_REVISIONS:-10000}" \
    "${TESSERA_BENCH_BLAMED:-1000}" | tail -1)
fixture=$(cd "$fixture" && pwd)
large=$("$here/scripts/make-large-working-copy.sh" "${TESSERA_BENCH_LARGE:-$fixture-large}" | tail -1)
config=$(mktemp -d)
trap 'rm -rf "$config"' EXIT

python3 - "$here/scripts" "$build/bin/tessera" "$repository" "$fixture/wc" "$config" "$repetitions" "$large" <<'EOF'
import sys

sys.path.insert(0, sys.argv[1])
from side_by_side import compare

tessera, repository, wc, config, repetitions, large = sys.argv[2:6] + [int(sys.argv[6]), sys.argv[7]]
url = "file://" + repository
compare({"svn": "svn", "tessera": tessera}, {
    "log -v": ["log", "-v", url],
    "log --xml -v": ["log", "--xml", "-v", url],
    "blame": ["blame", "blamed.txt"],
    "diff (100,000 files)": (["diff"], large),
}, repetitions, wc, config)
EOF

TESSERA_BENCH_REPOSITORY=$repository "$build/bin/log_benchmark" --benchmark_repetitions="$repetitions" \
    --benchmark_report_aggregates_only=true
