#!/usr/bin/env bash
# Installs the Debian packages bsn builds with. Safe to run again: it only
# asks apt for what is missing.
set -euo pipefail

packages=(cmake ninja-build g++ libboost-dev nlohmann-json3-dev libcli11-dev libfmt-dev libgtest-dev libbenchmark-dev libeigen3-dev libtinyxml2-dev libxml2-dev)
# The install check builds the embedding example through pkg-config and compares numbers with python3.
packages+=(pkgconf python3)
# `scripts/setup.sh --fuzz` also installs clang and libFuzzer for scripts/fuzz.sh
# (not needed by the build, the tests or CI).
[ "${1:-}" = "--fuzz" ] && packages+=(clang libfuzzer-14-dev)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  SUDO=""
  [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq "${missing[@]}"
fi
