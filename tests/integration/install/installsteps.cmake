# What the tests of installed packages share.

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

# Installs into PREFIX, which is moved once, so that nothing may depend on where it was put. Arguments go to cmake --install.
function(install_and_move aPrefix)
  file(REMOVE_RECURSE "${WORK_FOLDER}")
  file(MAKE_DIRECTORY "${WORK_FOLDER}/moved")
  run_or_fail("Installing" "${CMAKE_COMMAND}" --install "${BUILD_FOLDER}" --prefix "${WORK_FOLDER}/prefix" ${ARGN})
  file(RENAME "${WORK_FOLDER}/prefix" "${aPrefix}")
endfunction()

# Fails the test where the files by which users find the package name what is none of their business.
function(require_no_mention aPrefix)
  file(GLOB_RECURSE descriptions "${aPrefix}/*.cmake" "${aPrefix}/*.pc")
  if(NOT descriptions)
    message(FATAL_ERROR "Nothing in ${aPrefix} says how the package is found.")
  endif()
  foreach(description IN LISTS descriptions)
    file(READ "${description}" text)
    foreach(internal IN LISTS ARGN)
      string(FIND "${text}" "${internal}" found)
      if(NOT found EQUAL -1)
        message(FATAL_ERROR "${description} shows ${internal}.")
      endif()
    endforeach()
  endforeach()
endfunction()

# Builds an example as a project of its own, against the package in a prefix.
function(build_example aExample aPrefix)
  set(folder "${WORK_FOLDER}/${aExample}")
  run_or_fail("Configuring ${aExample}" "${CMAKE_COMMAND}" -G "${GENERATOR}" -S "${EXAMPLES_FOLDER}/${aExample}" -B "${folder}"
    "-DCMAKE_PREFIX_PATH=${aPrefix}" "-DCMAKE_CXX_COMPILER=${COMPILER}" "-DCMAKE_CXX_FLAGS=${sanitizeFlag}")
  run_or_fail("Building ${aExample}" "${CMAKE_COMMAND}" --build "${folder}")
  require_file("${folder}/${aExample}")
endfunction()

# Builds and runs the program of one file by what pkg-config says.
function(build_by_pkg_config aPrefix)
  set(ENV{PKG_CONFIG_PATH} "${aPrefix}/${LIBRARY_FOLDER}/pkgconfig")
  run_or_fail("Asking pkg-config for the version" pkg-config --modversion krgui)
  string(STRIP "${commandOutput}" found)
  if(NOT found STREQUAL VERSION)
    message(FATAL_ERROR "pkg-config says version ${found} instead of ${VERSION}.")
  endif()
  run_or_fail("Asking pkg-config for the flags" pkg-config --cflags --libs krgui)
  separate_arguments(flags UNIX_COMMAND "${commandOutput}")
  run_or_fail("Building by pkg-config"
    "${COMPILER}" -std=c++20 ${sanitizeFlag} "${PROGRAM}" -o "${WORK_FOLDER}/oneprogram" ${flags})
  run_or_fail("Running the program" "${WORK_FOLDER}/oneprogram")
  message(STATUS "Installed, built and ran: ${commandOutput}")
endfunction()

# Compiles the README's code against the installed headers.
function(compile_readme aPrefix)
  set(ENV{PKG_CONFIG_PATH} "${aPrefix}/${LIBRARY_FOLDER}/pkgconfig")
  run_or_fail("Asking pkg-config for the headers" pkg-config --cflags krgui)
  separate_arguments(flags UNIX_COMMAND "${commandOutput}")
  execute_process(COMMAND awk "/^```cpp/ { inside = 1; next } /^```/ { inside = 0 } inside" "${README}"
    OUTPUT_FILE "${WORK_FOLDER}/readmeblocks.h" COMMAND_ERROR_IS_FATAL ANY)
  file(STRINGS "${WORK_FOLDER}/readmeblocks.h" lines)
  list(LENGTH lines count)
  if(count LESS 30)
    message(FATAL_ERROR "${README} shows too little code.")
  endif()
  # What a block shows may be used by the reader alone.
  run_or_fail("Compiling the README's code" "${COMPILER}" -std=c++20 -Wall -Wextra -Werror -Wno-unused-variable
    -fsyntax-only "-I${WORK_FOLDER}" ${flags} "${CMAKE_CURRENT_LIST_DIR}/readmeprogram.cpp")
endfunction()

set(sanitizeFlag "")
if(SANITIZE)
  set(sanitizeFlag "-fsanitize=${SANITIZE}")
endif()
