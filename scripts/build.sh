#!/bin/sh
# Configures and builds Tessera into ./build (or $TESSERA_BUILD_DIR); only the
# targets of $TESSERA_BUILD_TARGETS (and what they need) when it is set.
set -eu
cd "$(dirname "$0")/.."
build="${TESSERA_BUILD_DIR:-build}"
scripts/install-dependencies.sh
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE="${TESSERA_BUILD_TYPE:-RelWithDebInfo}" "$@" >/dev/null
# shellcheck disable=SC2086 # one word per target
cmake --build "$build" ${TESSERA_BUILD_TARGETS:+--target $TESSERA_BUILD_TARGETS}
