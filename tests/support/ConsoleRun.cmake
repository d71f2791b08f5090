# Shared by the scripts that run a console program as a user does (CTest runs
# them with cmake -P): the run itself and the checks of what it printed.

# run_program(<program> <expected status> <input file or ""> <args>...): runs
# it in WORK (through EMULATOR, Wine, for the Windows build); sets out and err
# in the caller. Without an input file it reads the script's own input.
function(run_program program expected input)
  set(stdin)
  if(NOT input STREQUAL "")
    set(stdin INPUT_FILE ${input})
  endif()
  execute_process(COMMAND ${EMULATOR} ${program} ${ARGN} ${stdin}
                  RESULT_VARIABLE status OUTPUT_VARIABLE stdout ERROR_VARIABLE stderr
                  WORKING_DIRECTORY ${WORK})
  set(out "${stdout}" PARENT_SCOPE)
  set(err "${stderr}" PARENT_SCOPE)
  if(NOT "${status}" STREQUAL "${expected}")
    get_filename_component(name ${program} NAME_WE)
    message(SEND_ERROR "${name} ${ARGN}: status ${status}, expected ${expected}\nstdout: ${stdout}\nstderr: ${stderr}")
  endif()
endfunction()

function(expect_equal what actual expected)
  if(NOT "${actual}" STREQUAL "${expected}")
    message(SEND_ERROR "${what}:\n  actual   [${actual}]\n  expected [${expected}]")
  endif()
endfunction()

function(expect_contains what text part)
  string(FIND "${text}" "${part}" at)
  if(at EQUAL -1)
    message(SEND_ERROR "${what}: [${part}] not in [${text}]")
  endif()
endfunction()

function(expect_match what text regex)
  if(NOT "${text}" MATCHES "${regex}")
    message(SEND_ERROR "${what}: [${text}] does not match [${regex}]")
  endif()
endfunction()
