# dcsrun's command line, run as a user runs it. Called by CTest with
# -DDCSRUN=program -DEMULATOR=wrapper-or-empty -DSCRIPTS=folder -DWORK=folder.
set(failures 0)

include(${CMAKE_CURRENT_LIST_DIR}/../support/ConsoleRun.cmake)

# run(<expected status> <args>...): sets out, err.
function(run expected)
  run_program(${DCSRUN} ${expected} "" ${ARGN})
  set(out "${out}" PARENT_SCOPE)
  set(err "${err}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})

# Help and bad command lines.
run(0 --help)
expect_contains("--help" "${out}" "usage: dcsrun [options] SCRIPT.dcs")
expect_contains("--help" "${out}" "NAME=TYPE:VALUE")
run(2 --bogus ${SCRIPTS}/variables.dcs)
expect_contains("bad option" "${err}" "unknown option '--bogus'")
run(2)
expect_contains("no script" "${err}" "no script given")
run(2 --set Count=float:1 ${SCRIPTS}/variables.dcs)
expect_contains("bad type" "${err}" "unknown type 'float'")
run(2 --set Count=dword:4294967296 ${SCRIPTS}/variables.dcs)
expect_contains("dword range" "${err}" "is not a dword value")
run(2 --device tape ${SCRIPTS}/variables.dcs)
expect_contains("bad device" "${err}" "unknown device 'tape'")
run(2 --device serial:COM1 --sim-receive-bytes 5 ${SCRIPTS}/variables.dcs)
expect_contains("receive needs sim" "${err}" "need the simulated device")

# Scripts that cannot be had, a port that cannot be opened.
run(8 ${WORK}/missing.dcs)
expect_contains("missing script" "${err}" "cannot open the script file (result 8)")
expect_equal("missing script output" "${out}" "")
run(8 ${SCRIPTS})
run(7 --device serial:/no/such/port ${SCRIPTS}/variables.dcs)
expect_contains("serial" "${err}" "dcsrun: serial port: cannot open /no/such/port")

# A failing script: its diagnostic on standard output, status 21.
run(21 ${SCRIPTS}/fails.dcs)
expect_equal("failing script" "${out}"
             "before\nDivision by 0 error near line 2/column 12 (offset 30) during executing\n")

# The script thread's stack: 10,000 calls deep, and far deeper a clean failure.
run(0 --set Depth=dword:10000 ${SCRIPTS}/deep.dcs)
expect_equal("deep recursion" "${out}" "10000\n")
run(21 --set Depth=dword:1000000 ${SCRIPTS}/deep.dcs)
string(FIND "${out}" "out of memory error near line 2/column " at)
if(NOT at EQUAL 0)
  message(SEND_ERROR "too deep a recursion: [${out}]")
endif()

# exit() is a success.
run(0 ${SCRIPTS}/exits.dcs)
expect_equal("exit" "${out}" "leaving\n")

# Transfers on the script thread, their progress lines as drawn, a preloaded device.
run(0 --sim-receive-bytes 100000 ${SCRIPTS}/transfer.dcs)
string(REPLACE "\r" "<CR>" shown "${out}")
expect_contains("progress" "${shown}" "<CR>transfer.dcs #.......")
expect_contains("file done" "${shown}" "<CR>transfer.dcs ######################################## -> OK\n")
expect_contains("string done" "${shown}" "<CR>######################################## -> OK\n")
expect_contains("preloaded" "${out}" "received 100000 bytes ending in 789\n")
file(WRITE ${WORK}/queued.bin "abc\n")
run(0 --sim-receive ${WORK}/queued.bin ${SCRIPTS}/transfer.dcs)
expect_contains("preloaded file" "${out}" "received 4 bytes ending in bc\n\n")
if(NOT EMULATOR)
  # A pipe, which has no size, is read to its end.
  execute_process(COMMAND cat ${WORK}/queued.bin
                  COMMAND ${DCSRUN} --sim-receive /dev/stdin ${SCRIPTS}/transfer.dcs
                  OUTPUT_VARIABLE piped WORKING_DIRECTORY ${WORK})
  expect_contains("preloaded from a pipe" "${piped}" "received 4 bytes ending in bc\n\n")
  # --check parses on the script thread's stack as a run does, not on a
  # small main thread's.
  string(REPEAT "(" 20000 open)
  string(REPEAT ")" 20000 close)
  file(WRITE ${WORK}/deep_parens.dcs "var dword x;\nx = ${open}1${close};\n")
  execute_process(COMMAND sh -c "ulimit -s 1024 && exec \"$0\" --check \"$1\""
                          ${DCSRUN} ${WORK}/deep_parens.dcs
                  RESULT_VARIABLE status OUTPUT_VARIABLE stdout ERROR_VARIABLE stderr)
  expect_equal("deep check on a small main stack" "${status}:${stderr}" "0:")
endif()

# The operator's questions in batch mode.
run(0 --batch ${SCRIPTS}/asks.dcs)
expect_equal("batch answers" "${out}" "50 0 -1 0\n")
expect_contains("batch note" "${err}" "userinputdword \"Serial number\": no operator (batch), answered Cancel")

# Variables in and out; the string read back goes in again unchanged.
run(0 --set Count=dword:41 "--set=Name=string:a\\tb\\(0)" --set Big=int64:-9000000000
    --get count --get Name --get=Big --get Missing ${SCRIPTS}/variables.dcs)
expect_equal("variables output" "${out}" "in: 41 a\tb\\0\n")
expect_equal("--get lines" "${err}"
             "count=dword:42\nName=string:a\\tb\\(0)!\nBig=int64:-9000000001\nMissing: not set\n")
run(2 --set Count=0xFFFFFFFF ${SCRIPTS}/variables.dcs)
expect_contains("no type" "${err}" "expected NAME=TYPE:VALUE")
run(0 --set Count=dword:0xFFFFFFFF "--set=Name=string:a\\tb\\(0)!" --set Big=int64:0 --get Name
    --get COUNT ${SCRIPTS}/variables.dcs)
expect_equal("round trip" "${err}" "Name=string:a\\tb\\(0)!!\nCOUNT=dword:0\n")

# --check: scripts are read, never run (good.dcs would loop for ever), and
# the sub-scripts they name by a literal are read too, each once.
file(COPY ${SCRIPTS}/check/ DESTINATION ${WORK})
run(0 --check --set Count=dword:1 good.dcs)
expect_equal("check good" "${out}" "")
run(21 --check good.dcs)
expect_equal("check without --set" "${out}"
             "good.dcs: Unknown identifier near line 5/column 53 (offset 171) during parsing\n")
run(21 --check --set Count=dword:1 bad.dcs lib/helper.dcs good.dcs)
expect_equal("check bad" "${out}"
             "bad.dcs: Syntax error near line 2/column 6 (offset 18) during parsing\nbad_sub.dcs: Unknown identifier near line 3/column 7 (offset 102) during parsing\n")
run(8 --check --set Count=dword:1 good.dcs missing.dcs)
expect_contains("check missing" "${err}" "dcsrun: missing.dcs: cannot open the script file (result 8)")
run(21 --check bad.dcs missing.dcs)
run(2 good.dcs bad.dcs)
expect_contains("two scripts without --check" "${err}" "more than one script given")

# The simulated device from and into a folder: what a script sent is in the
# saved folder, beside the preloaded file.
file(MAKE_DIRECTORY ${WORK}/dev)
file(WRITE ${WORK}/dev/3-1.bin "three")
file(WRITE ${WORK}/send.dcs "transmitfilefromstring(\"speed\", 9, 4, 0);\n")
run(0 --sim-files dev --sim-save saved send.dcs)
file(GLOB saved RELATIVE ${WORK}/saved ${WORK}/saved/*)
list(SORT saved)
expect_equal("saved folder" "${saved}" "003-1.bin;009-4.bin")
file(READ ${WORK}/saved/009-4.bin sent)
expect_equal("sent file" "${sent}" "speed")
