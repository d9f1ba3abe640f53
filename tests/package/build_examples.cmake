# Installs the build tree into WORK/prefix, builds examples/ against it with
# find_package(tarv) and with pkg-config, runs both builds' kelm-seed and
# tarv-client on a private region, and the installed tarvctl on it.
# Arguments: BUILD_DIR SOURCE_DIR WORK LIBDIR GENERATOR CC FLAGS PKG_CONFIG
# WITH_TARVCTL.
set(prefix ${WORK}/prefix)
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK}/pkg-config)

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    string(JOIN " " command ${ARGN})
    message(FATAL_ERROR "${command}\nexited ${rc}\n${out}${err}")
  endif()
  set(out "${out}" PARENT_SCOPE)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})

# find_package(tarv): targets tarv::tarv and tarv::host.
run(${CMAKE_COMMAND} -S ${SOURCE_DIR}/examples -B ${WORK}/find-package -G ${GENERATOR}
    -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_C_COMPILER=${CC} "-DCMAKE_C_FLAGS=${FLAGS}"
    "-DCMAKE_EXE_LINKER_FLAGS=${FLAGS}")
run(${CMAKE_COMMAND} --build ${WORK}/find-package)

# pkg-config: tarv-host requires tarv.
set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBDIR}/pkgconfig)
run(${PKG_CONFIG} --cflags --libs tarv-host)
string(STRIP "${out}" pc_flags)
separate_arguments(pc_flags UNIX_COMMAND "${pc_flags}")
separate_arguments(flags UNIX_COMMAND "${FLAGS}")
foreach(example kelm-seed tarv-client)
  string(REPLACE "-" "_" source ${example})
  run(${CC} ${flags} ${SOURCE_DIR}/examples/${source}.c ${pc_flags} -o ${WORK}/pkg-config/${example})
endforeach()

# Both builds work against the installed libraries, on a private region.
string(RANDOM LENGTH 10 ALPHABET 0123456789abcdef tag)
set(ENV{TARV_SHM_PREFIX} "pk${tag}-")
set(ENV{LD_LIBRARY_PATH} ${prefix}/${LIBDIR})
foreach(build find-package pkg-config)
  run(${WORK}/${build}/kelm-seed)
  run(${WORK}/${build}/tarv-client)
  if(NOT out MATCHES "3 MEPs\n.*2 MDs\n")
    set(problem "tarv-client of the ${build} build printed:\n${out}")
  endif()
  if(WITH_TARVCTL AND NOT problem)
    run(${prefix}/bin/tarvctl show mds)
    if(NOT out MATCHES "1 +Customer +5 +1 +2\n")
      set(problem "the installed tarvctl printed:\n${out}")
    endif()
  endif()
  run(${WORK}/${build}/kelm-seed --remove)
  if(problem)
    message(FATAL_ERROR "${problem}")
  endif()
endforeach()
if(WITH_TARVCTL AND NOT EXISTS ${prefix}/share/man/man1/tarvctl.1)
  message(FATAL_ERROR "the man page of tarvctl is not installed")
endif()
