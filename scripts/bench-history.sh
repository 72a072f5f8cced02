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

python3 - "$build/bin/tessera" "$repository" "$fixture/wc" "$config" "$repetitions" "$large" <<'EOF'
import os, random, statistics, subprocess, sys, time

tessera, repository, wc, config, repetitions, large = sys.argv[1:5] + [int(sys.argv[5]), sys.argv[6]]
url = "file://" + repository
programs = {"svn": "svn", "tessera": tessera}
# Each case: its arguments and the directory it runs in.
cases = {
    "log -v": (["log", "-v", url], wc),
    "log --xml -v": (["log", "--xml", "-v", url], wc),
    "blame": (["blame", "blamed.txt"], wc),
    "diff (100,000 files)": (["diff"], large),
}
times = {(case, name): [] for case in cases for name in programs}
for _ in range(repetitions):
    runs = [(case, name) for case in cases for name in programs]
    random.shuffle(runs)
    for case, name in runs:
        start = time.monotonic()
        arguments, directory = cases[case]
        child = subprocess.Popen([programs[name], "--config-dir", config, "--non-interactive"] + arguments,
                                 cwd=directory, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
        _, status, usage = os.wait4(child.pid, 0)
        if os.waitstatus_to_exitcode(status) != 0:
            sys.exit(f"{name} {' '.join(arguments)} failed")
        times[case, name].append((time.monotonic() - start, usage.ru_utime + usage.ru_stime, usage.ru_maxrss))

print(f"medians of {repetitions}: wall s, cpu s, peak KiB; ratio tessera / svn (wall, cpu)")
for case in cases:
    medians = {name: [statistics.median(run[i] for run in times[case, name]) for i in range(3)] for name in programs}
    svn, ours = medians["svn"], medians["tessera"]
    print(f"{case:20} svn {svn[0]:7.3f} {svn[1]:7.3f} {svn[2]:8.0f}   tessera {ours[0]:7.3f} {ours[1]:7.3f} "
          f"{ours[2]:8.0f}   ratio {ours[0] / svn[0]:.2f} {ours[1] / svn[1]:.2f}")
EOF

TESSERA_BENCH_REPOSITORY=$repository "$build/bin/log_benchmark" --benchmark_repetitions="$repetitions" \
    --benchmark_report_aggregates_only=true
