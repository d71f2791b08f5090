# dcsfm run as a user runs it, against the simulated device preloaded from a
# folder (--sim-files) and written out afterwards (--sim-save), with injected
# faults for the failure paths. Called by CTest with -DDCSFM=program
# -DEMULATOR=wrapper-or-empty -DWORK=folder.

include(${CMAKE_CURRENT_LIST_DIR}/../support/ConsoleRun.cmake)

# run(<expected status> <args>...): sets out, err. Standard input is a file:
# not a terminal.
function(run expected)
  run_program(${DCSFM} ${expected} ${WORK}/empty.txt ${ARGN})
  set(out "${out}" PARENT_SCOPE)
  set(err "${err}" PARENT_SCOPE)
endfunction()

# expect_folder(<what> <folder> <name=hex>...): exactly these files, with these bytes.
function(expect_folder what folder)
  file(GLOB names RELATIVE ${WORK}/${folder} ${WORK}/${folder}/*)
  list(SORT names)
  set(found)
  foreach(name ${names})
    file(READ ${WORK}/${folder}/${name} bytes HEX)
    list(APPEND found "${name}=${bytes}")
  endforeach()
  expect_equal("${what}" "${found}" "${ARGN}")
endfunction()

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK}/dev ${WORK}/jobs)
file(WRITE ${WORK}/empty.txt "")
file(WRITE ${WORK}/dev/3-1.bin "three")
string(REPEAT "c" 5000 config)
file(WRITE ${WORK}/dev/7-2-config.bin "${config}")
file(WRITE ${WORK}/dev/program.bin "image")
file(WRITE ${WORK}/a.bin "alpha")
file(WRITE ${WORK}/b.bin "bravo")
file(WRITE ${WORK}/c.rbf "charlie")
# Paths as the File Manager shows them: full, with backslashes; on Linux below
# Z:\, as under Wine.
string(REPLACE "/" "\\" here "Z:${WORK}")
string(HEX "three" three)
string(HEX "${config}" config)
string(HEX "image" image)
string(HEX "alpha" alpha)
string(HEX "charlie" charlie)

# ls: the window's list and summary.
run(0 --sim-files dev ls)
expect_equal("ls" "${out}" "File ID  File type   File size
      3          1           5
      7          2        5000

5005 bytes in 2 files
require 12288 bytes on disk
1036288 bytes free
")

# put: the properties apply to the files after them; .rbf goes to the program
# slot; the second file fails, the third is still copied (continue on error),
# the report names the failure, and the save shows what the device holds.
run(1 --sim-files dev --sim-save s1 --sim-fault TransmitFile:2 put --id 10 a.bin --id 11 b.bin c.rbf)
expect_equal("put lines" "${out}" "0 files of 3 copied so far...
Currently copying ${here}\\a.bin
1 file of 3 copied so far...
Currently copying ${here}\\b.bin
2 files of 3 copied so far...
Currently copying ${here}\\c.rbf
")
expect_equal("put report" "${err}" "Error during copying ${here}\\b.bin: Simulated device fault\n")
expect_folder("put saved" s1 "003-1.bin=${three};007-2.bin=${config};010-1.bin=${alpha};program.bin=${charlie}")

# rm stops at the first failure; the files deleted before it stay deleted.
run(1 --sim-files dev --sim-save s2 --sim-fault DeleteDeviceFile:2 rm --yes 3 7)
expect_equal("rm failure" "${err}" "Could not delete file with ID 7: Simulated device fault\n")
expect_folder("rm saved" s2 "007-2.bin=${config};program.bin=${image}")

# format: --yes formats every block (the program slot too), --used-only only
# the blocks marked as used (the program slot stays).
run(0 --sim-files dev --sim-save s3 format --yes --used-only)
expect_folder("format used" s3 "program.bin=${image}")
run(0 --sim-files dev --sim-save s4 format --yes)
expect_folder("format all" s4 "")

# job make writes the job file as the window saves it (paths relative to the
# job's folder); job run copies its entries.
run(0 job make jobs/j.dcj --id 20 --type 4 a.bin --id 21 --mode bit-reverse b.bin)
file(READ ${WORK}/jobs/j.dcj job)
expect_equal("job file" "${job}" "..\\a.bin\t20\t4\tnormal\n..\\b.bin\t21\t4\tbit reverse\n")
run(0 --sim-save s5 job run jobs/j.dcj)
expect_folder("job run saved" s5 "020-4.bin=${alpha};021-4.bin=464e866ef6")  # "bravo" bit-reversed

# A directory that cannot be read: the window's summary text, for programs too.
run(1 --sim-fault ReadDirectory:1 ls --json)
expect_equal("ls --json failure" "${out}"
  "{\n  \"files\": [],\n  \"error\": \"Could not read device directory:\\nSimulated device fault\"\n}\n")
expect_equal("ls failure message" "${err}" "Could not read device directory:\nSimulated device fault\n")

run(7 --device serial:/no/such/port ls)
expect_contains("no port" "${err}" "dcsfm: serial port: cannot open /no/such/port")
run(2 --sim-files dev rm 3)
expect_equal("rm without --yes" "${err}"
  "dcsfm: rm asks first: give --yes when standard input is not a terminal\n")

# Under Wine every run costs seconds: the rest (the same code) runs natively.
if(NOT EMULATOR)
  run(0 --help)
  expect_contains("--help" "${out}" "usage: dcsfm [device options] COMMAND [arguments]")
  run(2 put a.bin --id 3)
  expect_equal("bad command line" "${err}"
    "dcsfm: --id applies to the files named after it, and none follows\n(dcsfm --help shows the options)\n")
  run(2 format)
  expect_contains("format without --yes" "${err}" "format asks first")

  run(0 ls)
  expect_contains("empty device" "${out}" "0 bytes in 0 files\nrequire 0 bytes on disk\n1048576 bytes free\n")
  run(1 --sim-fault Lock:1:1009 ls)
  expect_equal("locked" "${err}" "Communication device is locked\n")
  expect_equal("locked list" "${out}" "File ID  File type   File size\n")
  run(1 --sim-fault FormatDevice:1 format --yes)
  expect_equal("format failure" "${err}" "Could not format device: Simulated device fault\n")
  run(1 --sim-save s6 --sim-fault TransmitFile:1 put --stop-on-error a.bin b.bin)
  expect_equal("stop on error" "${out}" "0 files of 2 copied so far...\nCurrently copying ${here}\\a.bin\n")
  expect_folder("stop on error saved" s6 "")
  run(1 put missing.bin)
  expect_equal("missing local file" "${err}"
    "Error during copying ${here}\\missing.bin: Local file cannot be opened or read\n")

  file(WRITE ${WORK}/jobs/empty.dcj "")
  run(1 job run jobs/empty.dcj)
  expect_equal("empty job" "${err}" "No files present to copy!\n")
  run(2 job run jobs/none.dcj)
  expect_equal("no job" "${err}" "Could not open list file: jobs/none.dcj\n")
  run(2 job make no/such/folder/x.dcj a.bin)
  expect_equal("job not made" "${err}" "Could not create list file: no/such/folder/x.dcj\n")

  file(MAKE_DIRECTORY ${WORK}/bad)
  file(WRITE ${WORK}/bad/readme.txt "")
  run(2 --sim-files bad ls)
  expect_equal("bad sim folder" "${err}"
    "dcsfm: bad: readme.txt is not named as a device file (ID-TYPE, e.g. 3-1.bin, or program.bin)\n")
  run(2 --sim-save a.bin/below ls)
  expect_contains("sim-save fails" "${err}" "dcsfm: --sim-save: ")
  expect_contains("sim-save fails after the listing" "${out}" "bytes free")
endif()

if(CMAKE_SCRIPT_MODE_FILE AND NOT DEFINED ENV{OND_KEEP_WORK})
  file(REMOVE_RECURSE ${WORK})
endif()
