#!/usr/bin/env bash
# Checks that includes point down the layers, builds every configuration and
# runs every test:
#   native (g++), sanitize (g++ with ASan+UBSan), windows (mingw-w64, tests
#   under Wine, headless), fuzz (clang + libFuzzer, each harness for FUZZ_SECONDS).
# Usage: tools/test.sh            (from the repository root)
# Environment: FUZZ_SECONDS (default 60), JOBS (default: number of cores).
set -eu
cd "$(dirname "${BASH_SOURCE[0]}")/.."
root=$(pwd)
bash tools/deps.sh

JOBS=${JOBS:-$(nproc)}
FUZZ_SECONDS=${FUZZ_SECONDS:-60}
fail=0

echo "== layers"
python3 tools/check-layers.py || fail=1

configure_build() {  # dir, cmake args...
    local dir=$1
    shift
    cmake -S . -B "$dir" -G Ninja "$@" >/dev/null
    cmake --build "$dir" -j "$JOBS"
}

run_ctest() {  # dir, label
    echo "== tests: $2"
    if ! ctest --test-dir "$1" --output-on-failure -j "$JOBS"; then
        fail=1
    fi
}

echo "== build: native"
configure_build build/native
run_ctest build/native native

echo "== build: sanitize"
configure_build build/sanitize -DOND_SANITIZE=ON -DCMAKE_BUILD_TYPE=Debug
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 run_ctest build/sanitize sanitize

echo "== build: windows"
configure_build build/windows -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64-x86_64.cmake"
bash tools/check-imports.sh build/windows/bin/OndDeviceClient.dll || fail=1
# Wine's desktop process binds to the display of the server's first program:
# start from no server, make the prefix once under the tests' own display (not
# in the first test that happens to run), then run the tests on that display.
export WINEPREFIX="$root/build/wineprefix"
wineserver -k >/dev/null 2>&1 || true
xvfb-run -a -s "-screen 0 1280x1024x24" bash -c '
    tools/wine-run.sh wineboot -i >/dev/null 2>&1
    # Xvfb runs no window manager, and Wine waits up to 2 s for one to withdraw
    # each managed window it hides (every closed message box): unmanaged
    # windows go at once.
    tools/wine-run.sh reg add "HKCU\Software\Wine\X11 Driver" /v Managed /d N /f >/dev/null 2>&1
    ctest --test-dir build/windows --output-on-failure -j "$1"' windows-tests "$JOBS" || fail=1
wineserver -k >/dev/null 2>&1 || true

echo "== build: fuzz"
configure_build build/fuzz -DOND_FUZZ=ON -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++
bash tools/fuzz.sh build/fuzz "$FUZZ_SECONDS" || fail=1

if [ $fail -ne 0 ]; then
    echo "== FAILED"
    exit 1
fi
echo "== all tests passed"
