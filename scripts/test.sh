#!/bin/sh
# Builds Tessera and runs every test.
set -eu
cd "$(dirname "$0")/.."
scripts/build.sh
build="${TESSERA_BUILD_DIR:-build}"
ctest --test-dir "$build" --output-on-failure -j "$(nproc)"
