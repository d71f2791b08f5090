#!/usr/bin/env bash
# Installs what the build and the tests need, if it is missing (Debian 12).
set -eu
need=()
have_cmd() { command -v "$1" >/dev/null 2>&1; }
have_pkg() { dpkg-query -W -f='${Status}' "$1" 2>/dev/null | grep -q 'install ok installed'; }
for pkg in cmake ninja-build g++ clang libclang-rt-14-dev googletest libgtest-dev libgmock-dev \
           g++-mingw-w64-x86-64 wine64 xvfb xauth "$@"; do
    have_pkg "$pkg" || need+=("$pkg")
done
if [ ${#need[@]} -gt 0 ]; then
    echo "== installing: ${need[*]}"
    SUDO=
    [ "$(id -u)" -ne 0 ] && SUDO=sudo
    $SUDO apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${need[@]}" >/dev/null
fi
