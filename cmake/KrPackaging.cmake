# Debian packages by CPack (scripts/package.sh): krgui with the programs and what they run on, libkrgui-dev for developers. Their
# libraries are of the kind that BUILD_SHARED_LIBS says.
get_property(libraries GLOBAL PROPERTY KR_LIBRARIES)
get_property(programs GLOBAL PROPERTY KR_PROGRAMS)
if(NOT libraries OR NOT programs)
  return()
endif()

# What is built before anything is installed.
add_custom_target(install_files)
add_dependencies(install_files ${libraries} ${programs} krclserial krgui-clprotocol-host krsimulatedcl)
list(TRANSFORM libraries APPEND _shared OUTPUT_VARIABLE sharedLibraries)
list(TRANSFORM programs APPEND _shared OUTPUT_VARIABLE sharedPrograms)
list(TRANSFORM programs APPEND _page OUTPUT_VARIABLE pages)
add_dependencies(install_files ${sharedLibraries} ${sharedPrograms} ${pages})

# The packages of the headers and libraries that users of ours compile with: MODULE|PACKAGE, where MODULE is what krgui.pc names.
set(developmentPackages
  "Qt6Widgets|qt6-base-dev" "spdlog|libspdlog-dev" "pugixml|libpugixml-dev" "yaml-cpp|libyaml-cpp-dev" "libhwy|libhwy-dev"
  "libzip|libzip-dev" "aravis-0.8|libaravis-dev" "libnl-3.0|libnl-3-dev" "libnl-route-3.0|libnl-route-3-dev"
  "libusb-1.0|libusb-1.0-0-dev" "glib-2.0|libglib2.0-dev"
  "xcb|libxcb1-dev" "xcb-shm|libxcb-shm0-dev")
get_property(modules GLOBAL PROPERTY KR_PACKAGE_MODULES)
set(developmentDepends "krgui (= ${PROJECT_VERSION}), pkg-config")
foreach(module IN LISTS modules)
  set(rows ${developmentPackages})
  list(FILTER rows INCLUDE REGEX "^${module}\\|")
  if(NOT rows)
    message(FATAL_ERROR "The Debian package that has ${module} is not known: add it to developmentPackages.")
  endif()
  string(REGEX REPLACE "^.*\\|" ", " row "${rows}")
  string(APPEND developmentDepends "${row}")
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME krgui)
set(CPACK_PACKAGE_CONTACT "KrGUI developers <krgui@example.invalid>" CACHE STRING "Who maintains the Debian packages")
# Each package has a first line of its own.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS OFF)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME krgui)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
# Loaded at run time, so that nobody computes it: without it there are no windows on X11.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "qt6-qpa-plugins")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "viewer and command line for machine-vision cameras
krviewer shows a GigE Vision or USB3 Vision camera live, with its features
beside the picture. krtool lists cameras, repairs their addresses, takes
frames from them and reads and sets their features.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libkrgui-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${developmentDepends}")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "windows for machine-vision cameras: headers and libraries
Headers, libraries and what CMake and pkg-config need to compile applications
with the windows that KrGUI has ready: display, device finder, feature browser,
serial terminal and bridges.")
if(BUILD_SHARED_LIBS)
  # Others see in which version they must have ours, and which ones we need of each other is no business of theirs.
  foreach(library IN LISTS libraries)
    get_target_property(folder ${library} BINARY_DIR)
    list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${folder}")
  endforeach()
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
endif()
include(CPack)
