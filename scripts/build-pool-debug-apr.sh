#!/bin/sh
# Builds Debian's APR with pool debugging into DIRECTORY (default
# build-asan/pool-debug-apr): every pool allocation becomes a malloc of its
# own and every cleared or destroyed pool frees them, so that AddressSanitizer
# sees a use of Subversion's memory after its pool went, which the pools'
# reuse of blocks otherwise hides. Run programs with
# LD_LIBRARY_PATH=DIRECTORY/lib to use it in place of the system's APR.
# Safe to run again: an existing build is kept.
set -eu
cd "$(dirname "$0")/.."
target="$(mkdir -p "${1:-build-asan/pool-debug-apr}" && cd "${1:-build-asan/pool-debug-apr}" && pwd)"
if [ -e "$target/lib/libapr-1.so.0" ]; then
  exit 0
fi

SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
# The sources of the archive the machine already takes its packages from,
# which images often list for binaries only.
if ! apt-get indextargets --format '$(CREATED_BY)' 2>/dev/null | grep -q '^Sources$'; then
  codename="$(. /etc/os-release && echo "$VERSION_CODENAME")"
  archive="$(apt-get indextargets --format '$(CREATED_BY) $(RELEASE) $(REPO_URI)' |
    awk -v release="$codename" '$1 == "Packages" && $2 == release { print $3; exit }')"
  printf 'Types: deb-src\nURIs: %s\nSuites: %s\nComponents: main\nSigned-By: /usr/share/keyrings/debian-archive-keyring.gpg\n' \
    "$archive" "$codename" | $SUDO tee /etc/apt/sources.list.d/debian-sources.sources >/dev/null
  $SUDO apt-get update -qq
fi

work="$target/source"
rm -rf "$work"
mkdir -p "$work"
# The same release as the installed libapr1, so that Subversion links
# against the very interface it was built for.
version="$(dpkg-query -W -f='${Version}' libapr1)"
(cd "$work" && apt-get source -qq --download-only "apr=$version" && dpkg-source -x --skip-patches apr_*.dsc apr >/dev/null)
cd "$work/apr"
./configure -q --prefix="$target" --enable-pool-debug=yes >/dev/null
make -s -j 2 >/dev/null
make -s install >/dev/null
rm -rf "$work"
