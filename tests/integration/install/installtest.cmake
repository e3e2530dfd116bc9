# Installs a build tree, then builds against what was installed as a user would: each example by find_package, and a program
# of one file by pkg-config. The install is moved first, so that nothing may depend on where it was put.
cmake_minimum_required(VERSION 3.25)

# Runs a command; fails the test with its output when that fails. The output is left in the caller's commandOutput.
function(run_or_fail aPurpose)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result STREQUAL "0")
    message(FATAL_ERROR "${aPurpose} failed (${result}):\n${output}")
  endif()
  set(commandOutput "${output}" PARENT_SCOPE)
endfunction()

function(require_file aFile)
  if(NOT EXISTS "${aFile}")
    message(FATAL_ERROR "${aFile} was not installed.")
  endif()
endfunction()

set(prefix "${WORK_FOLDER}/moved/prefix")
set(sanitizeFlag "")
if(SANITIZE)
  set(sanitizeFlag "-fsanitize=${SANITIZE}")
endif()

file(REMOVE_RECURSE "${WORK_FOLDER}")
file(MAKE_DIRECTORY "${WORK_FOLDER}/moved")
run_or_fail("Installing" "${CMAKE_COMMAND}" --install "${BUILD_FOLDER}" --prefix "${WORK_FOLDER}/prefix")
file(RENAME "${WORK_FOLDER}/prefix" "${prefix}")

foreach(room IN ITEMS krbase/krresult.h krpersistence/krconfigurationwriter.h krbuffer/krbuffer.h
    krgenicam/ikrregisterport.h krsystem/krsystem.h
    krdevice/krdevice.h krserial/krdeviceserialport.h krclserial/clserkrg.h krtransport/krtransport.h krgui/krdisplaywnd.h)
  require_file("${prefix}/include/${room}")
endforeach()
# What programs load by its name, and by the link that managers look for.
foreach(library IN ITEMS libclserkrg.so clserkrg.so)
  require_file("${prefix}/${LIBRARY_FOLDER}/${library}")
endforeach()
# What runs drivers for CL Protocol cameras, and the driver for simulated ones.
require_file("${prefix}/${LIBEXEC_FOLDER}/krgui/krgui-clprotocol-host")
require_file("${prefix}/${LIBRARY_FOLDER}/krgui/clprotocol/${CLPROTOCOL_SYSTEM}/libkrsimulatedcl.so")
file(GLOB_RECURSE descriptions "${prefix}/*.cmake" "${prefix}/*.pc")
foreach(description IN LISTS descriptions)
  file(READ "${description}" text)
  foreach(internal IN ITEMS kr_options krguilogic GUILogic krclserial clserkrg "${BUILD_FOLDER}" "${EXAMPLES_FOLDER}")
    string(FIND "${text}" "${internal}" found)
    if(NOT found EQUAL -1)
      message(FATAL_ERROR "${description} shows ${internal}.")
    endif()
  endforeach()
endforeach()

foreach(example IN ITEMS feature_browser list_devices own_browser pick_camera serial_terminal set_parameters show_camera)
  set(folder "${WORK_FOLDER}/${example}")
  run_or_fail("Configuring ${example}" "${CMAKE_COMMAND}" -G "${GENERATOR}" -S "${EXAMPLES_FOLDER}/${example}" -B "${folder}"
    "-DCMAKE_PREFIX_PATH=${prefix}" "-DCMAKE_CXX_COMPILER=${COMPILER}" "-DCMAKE_CXX_FLAGS=${sanitizeFlag}")
  run_or_fail("Building ${example}" "${CMAKE_COMMAND}" --build "${folder}")
  require_file("${folder}/${example}")
endforeach()

set(ENV{PKG_CONFIG_PATH} "${prefix}/${LIBRARY_FOLDER}/pkgconfig")
run_or_fail("Asking pkg-config for the version" pkg-config --modversion krgui)
string(STRIP "${commandOutput}" found)
if(NOT found STREQUAL VERSION)
  message(FATAL_ERROR "pkg-config says version ${found} instead of ${VERSION}.")
endif()
run_or_fail("Asking pkg-config for the flags" pkg-config --cflags --libs krgui)
separate_arguments(flags UNIX_COMMAND "${commandOutput}")
run_or_fail("Building by pkg-config" "${COMPILER}" -std=c++20 ${sanitizeFlag} "${PROGRAM}" -o "${WORK_FOLDER}/oneprogram" ${flags})
run_or_fail("Running the program" "${WORK_FOLDER}/oneprogram")
message(STATUS "Installed, built and ran: ${commandOutput}")
