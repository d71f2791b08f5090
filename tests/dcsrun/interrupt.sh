#!/usr/bin/env bash
# An interrupt stops the running script the way "Stop script" does: the run
# ends with "Processing aborted" (status 21, the script failed) and --get
# still reports what the script left in its variables.
# Usage: interrupt.sh path/to/dcsrun
set -u
dcsrun=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
set -m  # background jobs keep SIGINT, as a program started from a terminal does
fail=0

# check <name> <signal> <script text> <stderr part>
check() {
    printf '%b' "$3" > "$work/$1.dcs"
    "$dcsrun" --set n=dword:0 --get n "$work/$1.dcs" > "$work/out" 2> "$work/err" &
    local pid=$!
    # The signal goes once the script runs: a stop before the run starts is reset by it.
    for _ in $(seq 100); do
        grep -q started "$work/out" 2>/dev/null && break
        sleep 0.1
    done
    kill "-$2" "$pid"
    # A run that does not end is a failure, not a hang.
    for _ in $(seq 200); do
        kill -0 "$pid" 2>/dev/null || break
        sleep 0.1
    done
    kill -KILL "$pid" 2>/dev/null
    wait "$pid"
    local status=$?
    if [ "$status" -ne 21 ] || ! grep -q '^Processing aborted near line ' "$work/out" ||
        ! grep -q "$4" "$work/err"; then
        echo "FAIL $1: status $status"
        echo "stdout: $(cat "$work/out")"
        echo "stderr: $(cat "$work/err")"
        fail=1
    fi
}

# A loop: the count it reached is kept (not 0, as before the loop).
check loop INT 'print("started\\n");\nwhile (1) {\n  n += 1;\n}\n' 'n=dword:[1-9]'
# A wait without end.
check wait TERM 'print("started\\n");\ndelay(4294967295);\n' 'n=dword:0'

[ $fail -eq 0 ] && echo "interrupts: ok"
exit $fail
