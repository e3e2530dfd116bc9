# Installs a build tree, then builds against what was installed as a user would: each example by find_package, a program of one
# file by pkg-config, and what the README shows.
cmake_minimum_required(VERSION 3.25)
include("${CMAKE_CURRENT_LIST_DIR}/installsteps.cmake")

set(prefix "${WORK_FOLDER}/moved/prefix")
install_and_move("${prefix}")

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
# What a desktop, man and udev look for.
foreach(file IN ITEMS share/applications/krviewer.desktop share/icons/hicolor/scalable/apps/krviewer.svg
    share/icons/hicolor/48x48/apps/krviewer.png share/man/man1/krviewer.1.gz share/man/man1/krtool.1.gz
    lib/udev/rules.d/70-krgui-usb3vision.rules share/krgui/lab.yaml share/krgui/serial-features.yaml
    share/krgui/doc/guide.md share/krgui/doc/viewer.md share/krgui/doc/pictures/krviewer.png bin/krviewer bin/krtool)
  require_file("${prefix}/${file}")
endforeach()
run_or_fail("Checking the desktop file" desktop-file-validate "${prefix}/share/applications/krviewer.desktop")
require_no_mention("${prefix}"
  kr_options krguilogic GUILogic krclserial clserkrg "${BUILD_FOLDER}" "${EXAMPLES_FOLDER}")

if(IS_SHARED)
  set(ENV{LD_LIBRARY_PATH} "${prefix}/${LIBRARY_FOLDER}")
endif()
file(GLOB examples RELATIVE "${EXAMPLES_FOLDER}" "${EXAMPLES_FOLDER}/*/CMakeLists.txt")
list(LENGTH examples count)
if(count LESS 10)
  message(FATAL_ERROR "${EXAMPLES_FOLDER} has too few examples: ${examples}")
endif()
list(TRANSFORM examples REPLACE "/CMakeLists.txt$" "")
foreach(example IN LISTS examples)
  build_example(${example} "${prefix}")
endforeach()
run_or_fail("An application's own tests" "${CMAKE_CTEST_COMMAND}" --test-dir "${WORK_FOLDER}/test_on_lab" --output-on-failure)
if(NOT commandOutput MATCHES "100% tests passed, 0 tests failed out of 1")
  message(FATAL_ERROR "The tests of test_on_lab did not run:\n${commandOutput}")
endif()
build_by_pkg_config("${prefix}")
compile_readme("${prefix}")
