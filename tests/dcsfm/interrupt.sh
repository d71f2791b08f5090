#!/usr/bin/env bash
# Ctrl+C during a slow copy stops it as the window's Abort does: the file
# being sent is aborted and reported, the file before it stays on the device,
# no further file starts, and dcsfm ends with status 19. For dcsfm.exe under
# Wine, which turns SIGINT into the console's Ctrl+C event (natively the
# pseudo-terminal test sends the same).
# Usage: interrupt.sh path/to/dcsfm [emulator]
set -u
dcsfm=$1
emulator=${2:-}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
set -m  # background jobs keep SIGINT, as a program started from a terminal does
for f in a b c; do printf '%s' "$f" > "$f.bin"; done

# The emulator execs the program: $! is the program itself.
$emulator "$dcsfm" --sim-delay 10 --sim-save out put --id 1 a.bin --id 2 b.bin --id 3 c.bin \
    > stdout 2> stderr < /dev/null &
pid=$!
for _ in $(seq 300); do
    grep -q 'b\.bin' stdout 2>/dev/null && break
    sleep 0.05
done
sleep 0.3  # inside the second file's second
kill -INT "$pid"
for _ in $(seq 200); do
    kill -0 "$pid" 2>/dev/null || break
    sleep 0.05
done
kill -KILL "$pid" 2>/dev/null
wait "$pid"
status=$?

fail=0
b=$(grep -o 'Z:.*b\.bin' stdout | head -1)
[ "$status" -eq 19 ] || { echo "status $status, expected 19"; fail=1; }
[ "$(cat stderr)" = "Error during copying $b: Transfer aborted" ] || { echo "report: $(cat stderr)"; fail=1; }
grep -q 'c\.bin' stdout && { echo "c.bin was started"; fail=1; }
[ "$(ls out)" = "001-1.bin" ] || { echo "saved: $(ls out)"; fail=1; }
[ $fail -eq 0 ] && echo "interrupt: ok" || cat stdout
exit $fail
