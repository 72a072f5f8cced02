#!/bin/sh
# Builds Tessera and runs every test: the plain build, then the whole suite
# again under AddressSanitizer, LeakSanitizer and UndefinedBehaviorSanitizer.
set -eu
cd "$(dirname "$0")/.."
scripts/build.sh
build="${TESSERA_BUILD_DIR:-build}"
ctest --test-dir "$build" --output-on-failure -j "$(nproc)"

echo "== under AddressSanitizer and UndefinedBehaviorSanitizer"
TESSERA_BUILD_DIR="$build-asan" scripts/build.sh -DTESSERA_SANITIZE=address,undefined -DTESSERA_BUILD_BENCHMARKS=OFF
ASAN_OPTIONS="detect_leaks=1:fast_unwind_on_malloc=0" \
LSAN_OPTIONS="suppressions=$(pwd)/tests/lsan.supp" \
UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1" \
  ctest --test-dir "$build-asan" --output-on-failure -j "$(nproc)"

echo "== fuzz targets, ${FUZZ_SECONDS:-30} s each from their seed corpora"
scripts/fuzz.sh
