#!/bin/sh
# Builds the fuzz targets with clang (libFuzzer, AddressSanitizer and
# UndefinedBehaviorSanitizer) in a build directory of their own and runs each
# for FUZZ_SECONDS seconds (default 30), FUZZ_JOBS of them at a time (default:
# the number of processors). Each run starts from a copy of its seed corpus
# fuzz/corpus/<name>/; the committed corpus is never written. Prints one line
# per target and fails when any target crashed.
#
#   FUZZ_SECONDS=60 scripts/fuzz.sh            all targets
#   scripts/fuzz.sh property_split             only the named targets
#
# TESSERA_FUZZ_BUILD_DIR chooses the build directory (default build-fuzz).
set -eu
cd "$(dirname "$0")/.."
build="${TESSERA_FUZZ_BUILD_DIR:-build-fuzz}"
seconds="${FUZZ_SECONDS:-30}"
jobs="${FUZZ_JOBS:-$(nproc)}"

CC=clang CXX=clang++ cmake -G Ninja -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DTESSERA_BUILD_FUZZERS=ON -DTESSERA_BUILD_TESTS=OFF -DTESSERA_BUILD_BENCHMARKS=OFF >/dev/null
cmake --build "$build" --target fuzzers

if [ $# -eq 0 ]; then
  for source in fuzz/*_fuzzer.cpp; do
    name=$(basename "$source" _fuzzer.cpp)
    set -- "$@" "$name"
  done
fi

runs="$build/fuzz-runs"

# One run: the corpus copy grows with what the fuzzer finds; crashing inputs
# land in artifacts/.
run_target() {
  name=$1
  work="$runs/$name"
  rm -rf "$work"
  mkdir -p "$work/corpus" "$work/artifacts"
  if [ -d "fuzz/corpus/$name" ]; then
    cp -R "fuzz/corpus/$name/." "$work/corpus/"
  fi
  # -timeout turns a hanging input into a reported failure instead of a run
  # that never ends.
  if "$build/bin/${name}_fuzzer" -max_total_time="$seconds" -timeout=10 -print_final_stats=1 \
       -artifact_prefix="$work/artifacts/" "$work/corpus" >"$work/log" 2>&1; then
    echo ok >"$work/status"
  else
    echo failed >"$work/status"
  fi
}

for name in "$@"; do
  if [ ! -x "$build/bin/${name}_fuzzer" ]; then
    echo "no fuzz target named $name" >&2
    exit 2
  fi
done

# Runs FUZZ_JOBS targets at a time.
running=0
for name in "$@"; do
  run_target "$name" &
  running=$((running + 1))
  if [ "$running" -ge "$jobs" ]; then
    wait
    running=0
  fi
done
wait

failures=0
for name in "$@"; do
  work="$runs/$name"
  executed=$(sed -n 's/^stat::number_of_executed_units: *//p' "$work/log" | tail -n 1)
  coverage=$(sed -n 's/^#[0-9]*[[:space:]]*DONE[[:space:]]*cov: \([0-9]*\).*/\1/p' "$work/log" | tail -n 1)
  inputs=$(find "$work/corpus" -type f | wc -l)
  if [ "$(cat "$work/status")" = ok ]; then
    echo "$name: ok, ${executed:-?} runs in ${seconds} s, coverage ${coverage:-?}, corpus $inputs inputs"
  else
    failures=$((failures + 1))
    artifact=$(find "$work/artifacts" -type f | head -n 1)
    echo "$name: FAILED after ${executed:-?} runs, input ${artifact:-none}, log $work/log"
  fi
done
[ "$failures" -eq 0 ]
