# Runs the example scripts in a copy of examples/ (the logger writes beside
# itself) and compares their output with the .out files here. Output is
# compared as a terminal shows it: a line redrawn after "\r" as it ends up.
# Called by CTest with -DDCSRUN= -DEMULATOR= -DEXAMPLES= -DEXPECTED= -DWORK=.

include(${CMAKE_CURRENT_LIST_DIR}/../support/ConsoleRun.cmake)

# run(<expected status> <args>...): sets out (rendered) and err.
function(run expected)
  run_program(${DCSRUN} ${expected} "" ${ARGN})
  string(REPLACE "\r\n" "\n" shown "${out}")
  string(REGEX REPLACE "[^\n]*\r" "" shown "${shown}")
  set(out "${shown}" PARENT_SCOPE)
  set(err "${err}" PARENT_SCOPE)
endfunction()

function(expect_output what actual name)
  file(READ ${EXPECTED}/${name} expected)
  if(NOT "${actual}" STREQUAL "${expected}")
    message(SEND_ERROR "${what}:\n  actual   [${actual}]\n  expected [${expected}]")
  endif()
endfunction()

file(REMOVE_RECURSE ${WORK})
file(COPY ${EXAMPLES}/ DESTINATION ${WORK} PATTERN "log_*.txt" EXCLUDE)  # a user's own logs

# Every example reads as a script (the flash needs its controller's variable).
run(0 --check --set FlashResult=dword:99 demo.dcs flash.dcs selftest.dcs logger.dcs)

run(0 demo.dcs)
expect_output("demo" "${out}" demo.out)

# The flash: rejected once, then verified; rejected twice; a file missing.
run(0 --sim-receive flash_answers.txt --set FlashResult=dword:99 --get FlashResult flash.dcs)
expect_output("flash" "${out}" flash.out)
expect_match("flash result" "${err}" "^FlashResult=dword:0\n$")
file(WRITE ${WORK}/rejects.txt "ERROR 17 checksum mismatch\r\nERROR 17 checksum mismatch\r\n")
run(0 --sim-receive rejects.txt --set FlashResult=dword:99 --get FlashResult flash.dcs)
expect_match("flash rejected" "${out}"
             "rejected, error 17 \\(checksum mismatch\\)\nattempt 2\n.*rejected, error 17 .*\nFAIL \\(2\\)\n$")
expect_match("flash rejected result" "${err}" "^FlashResult=dword:2\n$")
file(REMOVE ${WORK}/flash_firmware.bin)
run(0 --set FlashResult=dword:99 --get FlashResult flash.dcs)
expect_match("flash without firmware" "${out}"
             "transfer failed, device code 1003\nattempt 2\n.*transfer failed, device code 1003\nFAIL \\(1\\)\n$")
expect_match("flash without firmware result" "${err}" "^FlashResult=dword:1\n$")

# The self-test with a healthy device and with a poor one.
run(0 --sim-receive selftest_answers.txt selftest.dcs)
expect_output("self-test" "${out}" selftest.out)
file(WRITE ${WORK}/poor.txt "ID OND-100 1.9.3\r\nSERIAL 4711\r\nTEMP 83\r\nVOLT 3301\r\nSELFTEST 0012\r\n")
run(0 --sim-receive poor.txt selftest.dcs)
expect_output("self-test of a poor device" "${out}" selftest_poor.out)

# The logger: one piece of 5000 bytes into a file named by the time.
run(0 --sim-receive-bytes 5000 logger.dcs)
# (CMake's expressions have no {n}.)
string(REPEAT "[0-9]" 8 digits8)
string(REPEAT "[0-9]" 6 digits6)
set(name "log_${digits8}_${digits6}\\.txt")
expect_match("logger" "${out}"
             "^logging to ${name} for 1 s\n[0-9][0-9]:[0-9][0-9]:[0-9][0-9]  5000 bytes\n${name}: 5000 bytes in 1 pieces, file size 5051\n$")
file(GLOB logs ${WORK}/log_*.txt)
list(LENGTH logs count)
if(NOT count EQUAL 1)
  message(SEND_ERROR "logger: ${count} log files: ${logs}")
else()
  file(READ ${logs} log)
  expect_match("log file" "${log}" "^# started [0-9.]+ [0-9:]+\n[0-9:]+ 5000 bytes\n(0123456789)+\n$")
endif()
