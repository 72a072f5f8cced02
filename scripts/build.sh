#!/bin/sh
# Configures and builds Tessera into ./build (or $TESSERA_BUILD_DIR).
set -eu
cd "$(dirname "$0")/.."
build="${TESSERA_BUILD_DIR:-build}"
scripts/install-dependencies.sh
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE="${TESSERA_BUILD_TYPE:-RelWithDebInfo}" "$@" >/dev/null
cmake --build "$build"
