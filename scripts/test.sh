#!/bin/sh
# Builds Tessera and runs every test: the plain build, then the whole suite
# again under AddressSanitizer, LeakSanitizer and UndefinedBehaviorSanitizer,
# the fuzz targets, and the tests that use threads under ThreadSanitizer.
set -eu
cd "$(dirname "$0")/.."
scripts/build.sh
build="${TESSERA_BUILD_DIR:-build}"
ctest --test-dir "$build" --output-on-failure -j "$(nproc)"

echo "== under AddressSanitizer and UndefinedBehaviorSanitizer"
TESSERA_BUILD_DIR="$build-asan" scripts/build.sh -DTESSERA_SANITIZE=address,undefined -DTESSERA_BUILD_BENCHMARKS=OFF
ASAN_OPTIONS="detect_leaks=1:fast_unwind_on_malloc=0" \
LSAN_OPTIONS="suppressions=$(pwd)/tests/lsan.supp:print_suppressions=0" \
UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1" \
  ctest --test-dir "$build-asan" --output-on-failure -j "$(nproc)"

echo "== fuzz targets, ${FUZZ_SECONDS:-30} s each from their seed corpora"
scripts/fuzz.sh

echo "== threaded tests under ThreadSanitizer"
# Only the two test programs that hold the threaded tests (and what they
# need): the whole tree under ThreadSanitizer takes too long.
TESSERA_BUILD_TARGETS="context_test frame_test" TESSERA_BUILD_DIR="$build-tsan" \
  scripts/build.sh -DTESSERA_SANITIZE=thread -DTESSERA_BUILD_BENCHMARKS=OFF
TSAN_OPTIONS="halt_on_error=1:second_deadlock_stack=1" \
  ctest --test-dir "$build-tsan" --output-on-failure -j "$(nproc)" \
    -R '^(LuSVNContextPoolTest|BundleStack)\.|\.(ConcurrentWritersAndReaders|RegistryReplacesRemovesAndWorksAcrossThreads|ThreadsShareTheProvidersOfThePoolsContexts)$'
