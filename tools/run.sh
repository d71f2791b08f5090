#!/usr/bin/env bash
# The demo in one command: installs what the native build needs if it is
# missing (Debian 12), builds dcsrun in build/native and runs
# examples/demo.dcs on the simulated device.
# Usage: tools/run.sh [dcsrun options]     (from anywhere)
# Environment: BUILD (default build/native), the build folder to use.
set -eu
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# The native build only; tools/deps.sh installs the rest (mingw-w64, Wine, clang).
need=()
for pkg in cmake ninja-build g++ googletest libgtest-dev libgmock-dev; do
    dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q 'install ok installed' || need+=("$pkg")
done
if [ ${#need[@]} -gt 0 ]; then
    echo "== installing: ${need[*]}"
    SUDO=
    [ "$(id -u)" -ne 0 ] && SUDO=sudo
    $SUDO apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${need[@]}" >/dev/null
fi

BUILD=${BUILD:-build/native}
build() {
    [ -f "$BUILD/CMakeCache.txt" ] || cmake -S . -B "$BUILD" -G Ninja
    cmake --build "$BUILD" --target dcsrun -j "$(nproc)"
}
echo "== building dcsrun ($BUILD)"
mkdir -p "$BUILD"
if ! build >"$BUILD/run-build.log" 2>&1; then
    cat "$BUILD/run-build.log"
    echo "== build failed"
    exit 1
fi
echo "== $BUILD/bin/dcsrun $* examples/demo.dcs"
exec "$BUILD/bin/dcsrun" "$@" examples/demo.dcs
