#!/bin/sh
# Installs the build into a temporary prefix and builds a program against it,
# once with find_package(Tessera) and once with pkg-config, neither naming a
# language level: the package has to carry C++20. Checks that the SONAME follows
# the package's version rule.
# usage: install_test.sh BUILD_DIR SOURCE_DIR
set -eu
build="$1" source="$2"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
export HOME="$work/home"
mkdir -p "$HOME"

cmake --install "$build" --prefix "$work/prefix" >/dev/null
test ! -e "$work/prefix/include/tessera/LuSVNBackendFrame.h" || { echo "FAIL: private header installed"; exit 1; }

cmake -S "$source/tests/install/consumer" -B "$work/consumer" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
cmake --build "$work/consumer" >/dev/null
out="$(LD_LIBRARY_PATH= "$work/consumer/consumer")"
echo "$out"
echo "$out" | grep -q '^backend 1\.[0-9.]*: "/" is not a working copy$' || { echo "FAIL: consumer"; exit 1; }

library="$(find "$work/prefix" -name 'libtessera.so.*.*.*')"
cmake -DLIBRARY="$library" -DVERSION_FILE="$(find "$work/prefix" -name TesseraConfigVersion.cmake)" \
  -P "$source/tests/install/CheckVersionRule.cmake"

libdir="$(dirname "$(find "$work/prefix" -name tessera.pc)")"
PKG_CONFIG_PATH="$libdir" c++ "$source/tests/install/consumer/consumer.cpp" -o "$work/pc-consumer" \
  $(PKG_CONFIG_PATH="$libdir" pkg-config --cflags --libs tessera) -Wl,-rpath,"$work/prefix/lib"
LD_LIBRARY_PATH="$(dirname "$libdir")" "$work/pc-consumer" | grep -q 'is not a working copy' || { echo "FAIL: pkg-config consumer"; exit 1; }
