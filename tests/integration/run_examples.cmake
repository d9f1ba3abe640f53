# Runs the example clients as real processes on a private copy of the data
# region: tarv-client must fail while the region is missing, then list what
# kelm-seed wrote. Arguments: -DSEED=<kelm-seed> -DCLIENT=<tarv-client>, and
# -DEMULATOR=<command|args> that runs target programs in cross builds.
string(REPLACE "|" ";" EMULATOR "${EMULATOR}")
set(SEED ${EMULATOR} ${SEED})
set(CLIENT ${EMULATOR} ${CLIENT})
string(RANDOM LENGTH 10 ALPHABET 0123456789abcdef tag)
set(ENV{TARV_SHM_PREFIX} "ex${tag}-")
set(problems "")

execute_process(COMMAND ${CLIENT} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(NOT rc EQUAL 1)
  list(APPEND problems "tarv-client without a region exited ${rc}, not 1")
endif()
if(NOT err MATCHES "tarv L1 Tarv__Open code=12 data/swch/api-tarv:[0-9]+: KELM_SHARED_DATA\n")
  list(APPEND problems "tarv-client without a region traced:\n${err}")
endif()

execute_process(COMMAND ${SEED} RESULT_VARIABLE rc OUTPUT_VARIABLE seeded ERROR_VARIABLE err)
if(NOT rc EQUAL 0)
  list(APPEND problems "kelm-seed exited ${rc}: ${err}")
endif()

execute_process(COMMAND ${CLIENT} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
execute_process(COMMAND ${SEED} --remove OUTPUT_QUIET RESULT_VARIABLE removed)

if(NOT rc EQUAL 0)
  list(APPEND problems "tarv-client exited ${rc}: ${err}")
endif()
if(NOT err STREQUAL "")
  list(APPEND problems "tarv-client wrote to stderr: ${err}")
endif()
set(expected
  "MEP Md 1 MaNet 1 Mep 1: MEP id 101, slot/port 1/3, VLAN 100, Down\n"
  "MEP Md 1 MaNet 1 Mep 2: MEP id 102, slot/port 2/5 (LAG), VLAN 100, Up\n"
  "MEP Md 2 MaNet 2 Mep 3: MEP id 201, slot/port 4/2, VLAN 200, Down\n"
  "3 MEPs\n"
  "MD 1: \"Customer\", level code 6\n"
  "MD 2: \"Provider\", level code 4\n"
  "2 MDs\n")
string(JOIN "" expected ${expected})
if(NOT out STREQUAL expected)
  list(APPEND problems "tarv-client printed:\n${out}\ninstead of:\n${expected}")
endif()
if(NOT removed EQUAL 0)
  list(APPEND problems "kelm-seed --remove exited ${removed}")
endif()

if(problems)
  string(JOIN "\n" message ${problems})
  message(FATAL_ERROR "${message}")
endif()
message(STATUS "${seeded}${out}")
