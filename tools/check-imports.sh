#!/usr/bin/env bash
# The DLL must import system DLLs only: its C and C++ runtimes are linked in.
set -eu
dll=$1
imports=$(x86_64-w64-mingw32-objdump -p "$dll" | awk '/DLL Name:/ { print $3 }')
echo "== imports of $(basename "$dll"): $(echo $imports)"
bad=$(echo "$imports" | grep -i -E 'libstdc|libgcc|libwinpthread|mingw' || true)
if [ -n "$bad" ]; then
    echo "error: $dll imports runtime DLLs: $bad" >&2
    exit 1
fi
