# dcsterm run as a user runs it in a pipe, against the simulated device (whose
# loopback answers every line with the line itself). Called by CTest with
# -DDCSTERM=program -DEMULATOR=wrapper-or-empty -DWORK=folder.

include(${CMAKE_CURRENT_LIST_DIR}/../support/ConsoleRun.cmake)

# run(<expected status> <input> <args>...): sets out, err.
function(run expected input)
  file(WRITE ${WORK}/input.txt "${input}")
  run_program(${DCSTERM} ${expected} ${WORK}/input.txt ${ARGN})
  set(out "${out}" PARENT_SCOPE)
  set(err "${err}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})

# Under Wine every run costs seconds: there the command line's parsing (the
# same code) is left to the native run.
if(NOT EMULATOR)
  run(0 "" --help)
  expect_contains("--help" "${out}" "usage: dcsterm [options]")
  expect_contains("--help" "${out}" "--device serial:PORT[:BAUD]")
  run(2 "" --colour)
  expect_contains("unknown option" "${err}" "unknown option '--colour'")
  run(2 "" --idle soon)
  expect_contains("bad idle" "${err}" "bad time 'soon' for --idle")
  run(2 "" --device tape)
  expect_contains("bad device" "${err}" "unknown device 'tape'")
  run(2 "" --device serial:COM1 --sim-talk 0)
  expect_contains("talk needs sim" "${err}" "need the simulated device")
endif()
run(7 "x\n" --device serial:/no/such/port)
expect_contains("no port" "${err}" "dcsterm: serial port: cannot open /no/such/port")

# Lines with escapes, each with its CR; received lines as the window shows them.
run(0 "hello\\(33)\nA\\(x42)\\tC\nnext\\nline\n" --idle 200)
expect_equal("lines" "${out}" "hello!\nAB\tC\nnext\nline\n")
# A zero byte ends what is sent; a line with CR LF from a Windows file.
run(0 "ab\\(0)cd\r\nlast\r\n" --idle 200)
expect_equal("zero byte" "${out}" "ab\nlast\n")
if(NOT EMULATOR)
  # Without CR nothing ends the lines: one unfinished line, shown as it is.
  run(0 "x\ny\\r\\nz\n" --no-cr --idle 200)
  expect_equal("--no-cr" "${out}" "xy\nz")
  # What the simulated device holds is printed even without input.
  run(0 "" --sim-receive-bytes 25 --idle 100)
  expect_equal("preload" "${out}" "0123456789012345678901234")
endif()

# A bad escape: the parser's message, that line and the rest not sent.
run(1 "first\nbad\\q\nafter\n" --idle 200)
expect_equal("bad line output" "${out}" "first\n")
expect_contains("bad line message" "${err}" "dcsterm: line 2: Invalid ESC sequence \"\\q\".")

# Timestamps and the hex dump.
run(0 "hello\n" --timestamps --idle 200)
expect_match("--timestamps" "${out}" "^[0-2][0-9]:[0-5][0-9]:[0-5][0-9]\\.[0-9][0-9][0-9] hello\n$")
run(0 "AB\\(xff)\\0zz\n" --hex --idle 200)
expect_equal("--hex" "${out}"
  "00000000  41 42 ff 0d                                       |AB..|\n")
if(NOT EMULATOR)
  run(0 "0123456789abcdefXY\n" --hex --idle 200)
  expect_equal("--hex rows" "${out}"
    "00000000  30 31 32 33 34 35 36 37  38 39 61 62 63 64 65 66  |0123456789abcdef|\n00000010  58 59 0d                                          |XY.|\n")
endif()

# The log: both directions, appended, escaped, one record per line.
run(0 "ping \\(1)\nsecond\n" --log ${WORK}/session.log --idle 200)
run(0 "third\n" --log ${WORK}/session.log --idle 200)
file(READ ${WORK}/session.log log)
string(REGEX REPLACE "[0-9][0-9][0-9][0-9]-[0-9][0-9]-[0-9][0-9] [0-9][0-9]:[0-9][0-9]:[0-9][0-9]\\.[0-9][0-9][0-9] " "T " plain "${log}")
# Sent and received records interleave as the timing has it; each direction
# keeps its order.
string(REGEX MATCHALL "T > [^\n]*\n" sent "${plain}")
string(REGEX MATCHALL "T < [^\n]*\n" received "${plain}")
string(REGEX MATCHALL "[^\n]*\n" records "${plain}")
list(LENGTH records count)
expect_equal("log records" "${count}" "6")
expect_equal("log sent" "${sent}" "T > ping \\(1)\\r\n;T > second\\r\n;T > third\\r\n")
expect_equal("log received" "${received}" "T < ping \\(1)\n;T < second\n;T < third\n")

if(CMAKE_SCRIPT_MODE_FILE AND NOT DEFINED ENV{OND_KEEP_WORK})
  file(REMOVE_RECURSE ${WORK})
endif()
