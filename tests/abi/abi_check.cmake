# The ABI of libtarv.so against the baseline committed in abi/libtarv.abi.
#   check:  abidw describes the built library; abidiff compares it with the
#           baseline and the check fails on any difference, compatible or not.
#   update: writes the description as the new baseline (after a deliberate
#           change of the interface, reviewed with the diff this check shows).
# cmake -DMODE=check|update -DLIBRARY=<libtarv.so> -DBASELINE=<abi/libtarv.abi>
#       -DSOURCE_DIR=<source tree> -DWORK=<scratch file> -P abi_check.cmake
cmake_minimum_required(VERSION 3.25)
find_program(ABIDW abidw REQUIRED)
find_program(ABIDIFF abidiff REQUIRED)

# Only what the public header declares, reachable from the exported
# functions; no paths of the machine that built it.
execute_process(
  COMMAND ${ABIDW} --no-corpus-path --no-show-locs --no-comp-dir-path
          --headers-dir ${SOURCE_DIR}/include/tarv --drop-private-types
          --exported-interfaces-only --type-id-style hash
          --out-file ${WORK} ${LIBRARY}
  RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "abidw failed (${rc}) on ${LIBRARY}")
endif()
file(READ ${WORK} description)
string(REPLACE "path='${SOURCE_DIR}/" "path='" description "${description}")
file(WRITE ${WORK} "${description}")

if(MODE STREQUAL "update")
  file(WRITE ${BASELINE} "${description}")
  message(STATUS "ABI baseline written to ${BASELINE}")
  return()
endif()

execute_process(COMMAND ${ABIDIFF} ${BASELINE} ${WORK} RESULT_VARIABLE rc OUTPUT_VARIABLE report ERROR_VARIABLE report)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "libtarv.so differs from the ABI baseline (abidiff status ${rc}):\n${report}\n"
                      "If the change is deliberate: cmake --build <build dir> --target abi-baseline")
endif()
message(STATUS "libtarv.so matches the ABI baseline")
