#!/usr/bin/env bash
# The reading-command benchmarks, tessera against svn in one run:
#
#   scripts/bench-services.sh [TREE-DIR] [REPETITIONS]
#
# builds the tessera program into build-bench and takes the large
# working-copy fixture (scripts/make-large-working-copy.sh, under TREE-DIR,
# default $TMPDIR/tessera-large-wc). Each repetition, for each program in
# random order:
#
#   ls-R        list -R of the repository's whole tree (file://)
#   info-R      info -R of the working copy
#   cat-10M     cat of a 10 MB file of the repository
#   cat-100M    cat of a 100 MB file: the peak memory must not grow with
#               the file's size
#   export      export of the repository's tree at revision 1
#
# and prints the medians (wall, the child's processor time, its peak memory)
# and the ratios tessera / svn. Output goes to /dev/null. TESSERA_BENCH_FILES /
# TESSERA_BENCH_DIRS change the size of the tree.
set -euo pipefail

here=$(cd "$(dirname "$0")/.." && pwd)
tree=${1:-${TMPDIR:-/tmp}/tessera-large-wc}
repetitions=${2:-3}
build=$here/build-bench

if [[ ! -f $build/build.ninja ]]; then
    cmake -S "$here" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
fi
cmake --build "$build" --target tessera_cli tessera_backend_svn

"$here/scripts/make-large-working-copy.sh" "$tree" "${TESSERA_BENCH_FILES:-100000}" "${TESSERA_BENCH_DIRS:-2000}" >/dev/null
tree=$(cd "$tree" && pwd)

work=$(mktemp -d "$tree/bench-services.XXXXXX")
trap 'rm -rf "$work"' EXIT

python3 - "$build/bin/tessera" "$tree" "$work" "$repetitions" <<'EOF'
import os, random, shutil, statistics, subprocess, sys, time

tessera, tree, work, repetitions = sys.argv[1], sys.argv[2], sys.argv[3], int(sys.argv[4])
config = os.path.join(work, "config")
os.makedirs(config)
programs = {"svn": "svn", "tessera": tessera}

# The big files live in a repository of their own, so that the fixture's
# repository stays as the other benchmarks expect it.
big = os.path.join(work, "big")
subprocess.run(["svnadmin", "create", big], check=True)
seed = os.path.join(work, "seed")
subprocess.run(["svn", "--config-dir", config, "checkout", "-q", "file://" + big, seed], check=True)
for megabytes in (10, 100):
    with open(os.path.join(seed, f"{megabytes}M.bin"), "wb") as stream:
        block = os.urandom(1 << 20)
        for _ in range(megabytes):
            stream.write(block)
subprocess.run(["svn", "--config-dir", config, "add", "-q", os.path.join(seed, "10M.bin"),
                os.path.join(seed, "100M.bin")], check=True)
subprocess.run(["svn", "--config-dir", config, "commit", "-q", "-m", "big", seed], check=True)
shutil.rmtree(seed)

def run(name, args):
    """Runs the program; answers wall seconds, the child's processor seconds and peak KiB."""
    argv = [programs[name], "--config-dir", config, "--non-interactive"] + args
    start = time.monotonic()
    child = subprocess.Popen(argv, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(child.pid, 0)
    wall = time.monotonic() - start
    if os.waitstatus_to_exitcode(status) != 0:
        sys.exit(f"{name} {' '.join(args)} failed with {os.waitstatus_to_exitcode(status)}")
    return wall, usage.ru_utime + usage.ru_stime, usage.ru_maxrss

repository = "file://" + os.path.join(tree, "repo")
wc = os.path.join(tree, "wc")
steps = {
    "ls-R": lambda name: run(name, ["list", "-R", repository]),
    "info-R": lambda name: run(name, ["info", "-R", wc]),
    "cat-10M": lambda name: run(name, ["cat", "file://" + big + "/10M.bin"]),
    "cat-100M": lambda name: run(name, ["cat", "file://" + big + "/100M.bin"]),
}
def export(name):
    target = os.path.join(work, "export-" + name)
    measured = run(name, ["export", "-q", "-r", "1", repository, target])
    shutil.rmtree(target)
    return measured
steps["export"] = export
only = os.environ.get("TESSERA_BENCH_STEPS")
if only:
    steps = {step: steps[step] for step in only.split(",")}

results = {}
for round_ in range(repetitions):
    for step, measure in steps.items():
        order = list(programs)
        random.shuffle(order)
        for name in order:
            results.setdefault((name, step), []).append(measure(name))

def median(name, step, index):
    return statistics.median(v[index] for v in results[(name, step)])

print(f"\n{os.cpu_count()} cores, load {os.getloadavg()[0]:.2f}, medians of {repetitions} runs\n")
print("| step | program | wall | processor | peak memory |")
print("|---|---|---|---|---|")
for step in steps:
    for name in programs:
        print(f"| {step} | {name} | {median(name, step, 0):.2f} s | {median(name, step, 1):.2f} s | "
              f"{median(name, step, 2) / 1024:.1f} MiB |")
print("\n| ratio tessera / svn (of medians) | wall | processor | peak memory | target |")
print("|---|---|---|---|---|")
for step in steps:
    print(f"| {step} | {median('tessera', step, 0) / median('svn', step, 0):.2f} | "
          f"{median('tessera', step, 1) / median('svn', step, 1):.2f} | "
          f"{median('tessera', step, 2) / median('svn', step, 2):.2f} | <= 1.05 |")
EOF
