#!/bin/sh
# Installs everything Tessera needs to build and test on Debian 12. Safe to run
# again: packages already present are left as they are.
set -eu

packages="
  build-essential cmake ninja-build pkg-config git
  subversion libsvn-dev libapr1-dev libaprutil1-dev
  apache2 libapache2-mod-svn apache2-utils openssl
  nlohmann-json3-dev liburiparser-dev libicu-dev libcli11-dev
  libglib2.0-dev shared-mime-info netbase
  clang libclang-rt-14-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  binutils libxml2-utils jq tmux sqlite3
  doxygen
"

missing=""
for package in $packages; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
    missing="$missing $package"
  fi
done

if [ -n "$missing" ]; then
  SUDO=""
  if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
  echo "Installing:$missing"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends $missing
fi
