#!/bin/sh
# Builds Tessera and runs every test: the plain build, then the whole suite
# again under AddressSanitizer, LeakSanitizer and UndefinedBehaviorSanitizer,
# the status tests once more over a pool-debugging APR, the fuzz targets, and
# the tests that use threads under ThreadSanitizer; also builds the API
# reference and checks that no public member lost its comment.
set -eu
cd "$(dirname "$0")/.."
scripts/build.sh
build="${TESSERA_BUILD_DIR:-build}"
ctest --test-dir "$build" --output-on-failure -j "$(nproc)"

echo "== API reference: no more undocumented public members than before"
TESSERA_API_DOCS_DIR="$build/api-docs" scripts/api-docs.sh

# The sanitized builds are unoptimised: that compiles three times faster under
# the sanitizers, the reports are exact, and the tests' time goes to
# Subversion and svn, which are optimised anyway.
echo "== under AddressSanitizer and UndefinedBehaviorSanitizer"
TESSERA_BUILD_TYPE=Debug TESSERA_BUILD_DIR="$build-asan" scripts/build.sh -DTESSERA_SANITIZE=address,undefined -DTESSERA_BUILD_BENCHMARKS=OFF
ASAN_OPTIONS="detect_leaks=1:fast_unwind_on_malloc=0" \
LSAN_OPTIONS="suppressions=$(pwd)/tests/lsan.supp:print_suppressions=0" \
UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1" \
  ctest --test-dir "$build-asan" --output-on-failure -j "$(nproc)"

echo "== status tests under AddressSanitizer, with APR's pool debugging"
# Every pool allocation is a malloc of its own there, so a use of Subversion's
# memory after its pool was cleared is a use after free that ASan reports.
scripts/build-pool-debug-apr.sh "$build-asan/pool-debug-apr"
LD_LIBRARY_PATH="$(pwd)/$build-asan/pool-debug-apr/lib" ASAN_OPTIONS="detect_leaks=0" \
UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1" \
  ctest --test-dir "$build-asan" --output-on-failure -j "$(nproc)" -L status

# 20 s a target here keeps the whole run short; scripts/fuzz.sh alone runs longer.
echo "== fuzz targets, ${FUZZ_SECONDS:-20} s each from their seed corpora"
FUZZ_SECONDS="${FUZZ_SECONDS:-20}" scripts/fuzz.sh

echo "== threaded tests under ThreadSanitizer"
# Only the test programs that hold the threaded tests (and what they
# need): the whole tree under ThreadSanitizer takes too long.
TESSERA_BUILD_TYPE=Debug TESSERA_BUILD_TARGETS="context_test frame_test auth_test" TESSERA_BUILD_DIR="$build-tsan" \
  scripts/build.sh -DTESSERA_SANITIZE=thread -DTESSERA_BUILD_BENCHMARKS=OFF
TSAN_OPTIONS="halt_on_error=1:second_deadlock_stack=1" \
  ctest --test-dir "$build-tsan" --output-on-failure -j "$(nproc)" \
    -R '^(LuSVNContextPoolTest|BundleStack)\.|\.(ConcurrentWritersAndReaders|RegistryReplacesRemovesAndWorksAcrossThreads|ThreadsShareTheProvidersOfThePoolsContexts|ThreadsShareOneCache|EightPooledContextsAuthenticateAtOnce)$'
