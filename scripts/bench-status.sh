#!/usr/bin/env bash
# The status benchmarks, start to end:
#
#   scripts/bench-status.sh [TREE-DIR] [REPETITIONS]
#
# builds status_benchmark (and the tessera program when it exists) into
# build-bench (RelWithDebInfo), makes the large working copy under TREE-DIR
# (default: $TMPDIR/tessera-large-wc; reused when it is there), runs every
# benchmark REPETITIONS times (5) and prints the medians and the ratios that
# count: walk against the raw copying loop, tessera status against svn status.
#
# Repetitions of the benchmarks are interleaved at random, so that a change
# of load on a shared machine does not favour one side of a ratio. Each
# ratio is given for wall time and for processor time (the benchmark
# thread's, or the child process's); the latter is steadier when other work
# competes for the cores.
#
# TESSERA_BENCH_FILES / TESSERA_BENCH_DIRS change the size of the tree;
# TESSERA_BENCH_FILTER limits the benchmarks (a Google Benchmark regex).
set -euo pipefail

here=$(cd "$(dirname "$0")/.." && pwd)
tree=${1:-${TMPDIR:-/tmp}/tessera-large-wc}
repetitions=${2:-5}
build=$here/build-bench

if [[ ! -f $build/build.ninja ]]; then
    cmake -S "$here" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
fi
targets=(status_benchmark tessera_backend_svn)
if [[ -f $here/tools/tessera/StatusCommand.cpp ]]; then
    targets+=(tessera_cli)
fi
cmake --build "$build" --target "${targets[@]}"

wc=$("$here/scripts/make-large-working-copy.sh" "$tree" "${TESSERA_BENCH_FILES:-100000}" "${TESSERA_BENCH_DIRS:-2000}" | tail -n 1)

tessera=$build/bin/tessera
[[ -x $tessera ]] || tessera=""

json=$(mktemp "${TMPDIR:-/tmp}/status-benchmark.XXXXXX.json")
trap 'rm -f "$json"' EXIT
TESSERA_BENCH_WC=$wc TESSERA_BENCH_TESSERA=$tessera "$build/bin/status_benchmark" \
    --benchmark_repetitions="$repetitions" --benchmark_enable_random_interleaving=true \
    --benchmark_filter="${TESSERA_BENCH_FILTER:-.}" \
    --benchmark_out="$json" --benchmark_out_format=json >&2

python3 - "$json" "$repetitions" <<'EOF'
import json, statistics, sys

data = json.load(open(sys.argv[1]))
runs = {}
for b in data["benchmarks"]:
    if b.get("run_type") != "iteration" or b.get("error_occurred"):
        continue
    name = b["run_name"].replace("/real_time", "").replace("/iterations:1", "")
    runs.setdefault(name, []).append(b)

def median(name, key="real_time"):
    values = [r[key] for r in runs.get(name, []) if key in r]
    return statistics.median(values) if values else None

def ms(value):
    return "-" if value is None else f"{value:.1f} ms"

print(f"\n{data['context'].get('num_cpus')} cores, load {data['context'].get('load_avg')}, medians of {sys.argv[2]} runs\n")
print("| benchmark | wall | processor | peak memory | items |")
print("|---|---|---|---|---|")
order = ["Raw/all", "Walk/all", "Raw/changed", "Walk/changed", "Process/svn-status", "Process/tessera-status",
         "Process/svn-status-v", "Process/tessera-status-v", "Process/svn-status-5000-files",
         "Process/tessera-status-5000-files"]
for name in sorted(runs, key=lambda n: order.index(n) if n in order else len(order)):
    if name.startswith("Memory/"):
        continue
    items = median(name, "items")
    # In-process: the benchmark thread's time; programs: the child's.
    cpu = median(name, "child_cpu_ms") if name.startswith("Process/") else median(name, "cpu_time")
    peak = median(name, "child_peak_kib")
    print(f"| {name} | {ms(median(name))} | {ms(cpu)} | {'' if peak is None else f'{peak / 1024:.1f} MiB'} | "
          f"{'' if items is None else int(items)} |")

def ratio(a, b):
    x, y = median(a), median(b)
    if name_is_process(a):
        cx, cy = median(a, "child_cpu_ms"), median(b, "child_cpu_ms")
    else:
        cx, cy = median(a, "cpu_time"), median(b, "cpu_time")
    if x is None or y is None:
        return "- | -"
    return f"{x / y:.2f} | {cx / cy:.2f}" if cx and cy else f"{x / y:.2f} | -"

def name_is_process(name):
    return name.startswith("Process/")

print("\n| ratio (of medians) | wall | processor | target |")
print("|---|---|---|---|")
print(f"| walk / raw (all, propagated) | {ratio('Walk/all', 'Raw/all')} | <= 1.15 |")
print(f"| walk / raw (changed) | {ratio('Walk/changed', 'Raw/changed')} | <= 1.15 |")
print(f"| tessera status / svn status | {ratio('Process/tessera-status', 'Process/svn-status')} | <= 1.00 |")
print(f"| tessera status -v / svn status -v | {ratio('Process/tessera-status-v', 'Process/svn-status-v')} | <= 1.00 |")
print(f"| 5,000 file targets, tessera / svn | {ratio('Process/tessera-status-5000-files', 'Process/svn-status-5000-files')} | <= 1.50 |")
peaks = [median(n, "child_peak_kib") for n in ("Process/tessera-status-5000-files", "Process/svn-status-5000-files")]
if None not in peaks:
    print(f"| 5,000 file targets, peak memory tessera / svn | {peaks[0] / peaks[1]:.2f} | | <= 2.00 |")
peaks = [median(n, "child_peak_kib") for n in ("Process/tessera-status-v", "Process/svn-status-v")]
if None not in peaks:
    print(f"| status -v, peak memory tessera / svn | {peaks[0] / peaks[1]:.2f} | | |")

print("\n| memory held while the result lives (all items) | bytes per node |")
print("|---|---|")
heap, rss, copied = median("Memory/walk", "heap_per_node"), median("Memory/walk", "rss_per_node"), median("Memory/raw", "copied_per_node")
if heap is not None:
    print(f"| walk result, heap (resident) | {heap:.0f} ({rss:.0f}) |")
if copied is not None:
    print(f"| raw copies, bytes copied | {copied:.0f} |")
if heap is not None and copied is not None:
    print(f"| walk / raw | {heap / copied:.2f} |")
EOF
