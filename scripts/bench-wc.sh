#!/usr/bin/env bash
# The working-copy operation benchmarks, tessera against svn in one run:
#
#   scripts/bench-wc.sh [TREE-DIR] [REPETITIONS]
#
# builds the tessera program into build-bench, takes the repository of the
# large working-copy fixture (scripts/make-large-working-copy.sh, under
# TREE-DIR, default $TMPDIR/tessera-large-wc) and twins it, one copy per
# program, so that both work on equal histories. Each repetition, for each
# program in random order:
#
#   checkout          a file:// check-out of the whole tree into the same file system
#   update-nothing    an update of that working copy with nothing to do
#   commit-1000       a commit of 1,000 modified files
#   update-1000       an update bringing in 1,000 changed files (the working
#                     copy is first taken back one revision, not timed)
#   checkout-tty      tessera only: the check-out again with its output on a
#                     terminal, so that the progress line is drawn
#
# and prints the medians (wall, the child's processor time, its peak memory)
# and the ratios tessera / svn. TESSERA_BENCH_FILES / TESSERA_BENCH_DIRS
# change the size of the tree.
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

work=$(mktemp -d "$tree/bench-wc.XXXXXX")
trap 'rm -rf "$work"' EXIT

python3 - "$build/bin/tessera" "$tree/repo" "$work" "$repetitions" <<'EOF'
import os, pty, random, shutil, statistics, subprocess, sys, time

tessera, repository, work, repetitions = sys.argv[1], sys.argv[2], sys.argv[3], int(sys.argv[4])
config = os.path.join(work, "config")
os.makedirs(config)
programs = {"svn": "svn", "tessera": tessera}
repos = {}
for name in programs:
    repos[name] = os.path.join(work, "repo-" + name)
    shutil.copytree(repository, repos[name], symlinks=True)

def run(name, args, cwd=None, tty=False):
    """Runs the program; answers wall seconds, the child's processor seconds and peak KiB."""
    argv = [programs[name], "--config-dir", config, "--non-interactive"] + args
    start = time.monotonic()
    if tty:
        # The child's standard error is a terminal: tessera draws its progress line.
        master, slave = pty.openpty()
        child = subprocess.Popen(argv, cwd=cwd, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=slave)
        os.close(slave)
        while True:
            try:
                if not os.read(master, 65536):
                    break
            except OSError:
                break
        os.close(master)
    else:
        child = subprocess.Popen(argv, cwd=cwd, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(child.pid, 0)
    child.returncode = os.waitstatus_to_exitcode(status)
    wall = time.monotonic() - start
    if child.returncode != 0:
        sys.exit(f"{name} {' '.join(args)} failed with {child.returncode}")
    return wall, usage.ru_utime + usage.ru_stime, usage.ru_maxrss

def modify(wc, count, round_):
    """Appends a line to the first `count` files of the tree, in path order."""
    changed = 0
    for directory, subdirectories, files in os.walk(wc):
        subdirectories[:] = sorted(d for d in subdirectories if d != ".svn")
        for file in sorted(files):
            with open(os.path.join(directory, file), "a") as stream:
                stream.write(f"round {round_}\n")
            changed += 1
            if changed == count:
                return

results = {}
def record(name, step, measured):
    results.setdefault((name, step), []).append(measured)

for round_ in range(repetitions):
    order = list(programs)
    random.shuffle(order)
    for name in order:
        url = "file://" + repos[name]
        wc = os.path.join(work, f"wc-{name}")
        record(name, "checkout", run(name, ["checkout", url, wc]))
        record(name, "update-nothing", run(name, ["update", wc]))
        modify(wc, 1000, round_)
        before = subprocess.run(["svnlook", "youngest", repos[name]], check=True, capture_output=True,
                                text=True).stdout.strip()
        record(name, "commit-1000", run(name, ["commit", "-m", f"round {round_}", wc]))
        run(name, ["update", "-r", before, wc])
        record(name, "update-1000", run(name, ["update", wc]))
        shutil.rmtree(wc)
        if name == "tessera":
            record(name, "checkout-tty", run(name, ["checkout", url, wc], tty=True))
            shutil.rmtree(wc)

def median(name, step, index):
    values = results.get((name, step))
    return statistics.median(v[index] for v in values) if values else None

print(f"\n{os.cpu_count()} cores, load {os.getloadavg()[0]:.2f}, medians of {repetitions} runs\n")
print("| step | program | wall | processor | peak memory |")
print("|---|---|---|---|---|")
steps = ["checkout", "update-nothing", "commit-1000", "update-1000", "checkout-tty"]
for step in steps:
    for name in programs:
        if (name, step) in results:
            print(f"| {step} | {name} | {median(name, step, 0):.2f} s | {median(name, step, 1):.2f} s | "
                  f"{median(name, step, 2) / 1024:.1f} MiB |")
print("\n| ratio tessera / svn (of medians) | wall | processor | target |")
print("|---|---|---|---|")
for step in steps:
    mine = "checkout-tty" if step == "checkout-tty" else step
    base = "checkout" if step == "checkout-tty" else step
    if ("tessera", mine) in results:
        print(f"| {step} | {median('tessera', mine, 0) / median('svn', base, 0):.2f} | "
              f"{median('tessera', mine, 1) / median('svn', base, 1):.2f} | <= 1.05 |")
EOF
