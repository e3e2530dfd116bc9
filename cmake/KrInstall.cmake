# The installed package: find_package(KrGUI) gives the targets Kr::Base … Kr::GUI, pkg-config knows them as krgui.
include(CMakePackageConfigHelpers)

# How a user of the package finds what our libraries link: TARGET|CALL|MODULE, where CALL finds the target and MODULE is
# its pkg-config name. PkgConfig:: and Qt6:: targets follow rules of their own.
set(KR_FOREIGN_TARGETS
  "spdlog::spdlog|find_dependency(spdlog)|spdlog"
  "pugixml::pugixml|find_dependency(pugixml)|pugixml"
  "yaml-cpp|find_dependency(yaml-cpp)|yaml-cpp")

# Appends to the caller's packageCalls and pkgConfigModules what finds a linked target.
function(kr_collect_foreign aTarget)
  if(aTarget STREQUAL "Threads::Threads")
    list(APPEND packageCalls "find_dependency(Threads)")
  elseif(aTarget MATCHES "^Qt6::(.+)$")
    list(APPEND packageCalls "find_dependency(Qt6 ${Qt6_VERSION_MAJOR}.4 COMPONENTS ${CMAKE_MATCH_1})")
    list(APPEND pkgConfigModules "Qt6${CMAKE_MATCH_1}")
  elseif(aTarget MATCHES "^PkgConfig::(.+)$")
    set(module "${${CMAKE_MATCH_1}_MODULE_NAME}")
    list(APPEND packageCalls "kr_find_module(${CMAKE_MATCH_1} ${module})")
    list(APPEND pkgConfigModules "${module}")
  else()
    set(rows "${KR_FOREIGN_TARGETS}")
    list(FILTER rows INCLUDE REGEX "^${aTarget}\\|")
    if(NOT rows)
      message(FATAL_ERROR "The package does not know how to find ${aTarget}: add a row to KR_FOREIGN_TARGETS.")
    endif()
    string(REPLACE "|" ";" row "${rows}")
    list(GET row 1 call)
    list(GET row 2 module)
    list(APPEND packageCalls "${call}")
    list(APPEND pkgConfigModules "${module}")
  endif()
  set(packageCalls "${packageCalls}" PARENT_SCOPE)
  set(pkgConfigModules "${pkgConfigModules}" PARENT_SCOPE)
endfunction()

function(kr_install_package)
  get_property(libraries GLOBAL PROPERTY KR_LIBRARIES)
  if(NOT libraries)
    return()
  endif()
  set(packageCalls "")
  set(pkgConfigModules "")
  foreach(library IN LISTS libraries)
    get_target_property(linked ${library} LINK_LIBRARIES)
    # What is linked while building alone, and our own libraries, are no business of the user's.
    list(FILTER linked EXCLUDE REGEX "^\\$<BUILD_INTERFACE:")
    list(REMOVE_ITEM linked ${libraries})
    foreach(target IN LISTS linked)
      kr_collect_foreign("${target}")
    endforeach()
  endforeach()
  list(REMOVE_DUPLICATES packageCalls)
  list(REMOVE_DUPLICATES pkgConfigModules)
  list(JOIN packageCalls "\n" KR_PACKAGE_CALLS)
  list(JOIN pkgConfigModules " " KR_MODULES)

  # A linker reads static libraries from left to right, so the ones that need others come first.
  list(REVERSE libraries)
  list(TRANSFORM libraries PREPEND "-l" OUTPUT_VARIABLE linkFlags)
  list(JOIN linkFlags " " KR_LINK_FLAGS)
  set(packageDirectory "${CMAKE_INSTALL_LIBDIR}/cmake/KrGUI")
  set(moduleDirectory "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
  file(RELATIVE_PATH KR_PREFIX_FROM_MODULE "/prefix/${moduleDirectory}" "/prefix")
  string(REGEX REPLACE "/$" "" KR_PREFIX_FROM_MODULE "${KR_PREFIX_FROM_MODULE}")

  configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/KrGUIConfig.cmake.in" "${PROJECT_BINARY_DIR}/KrGUIConfig.cmake"
    INSTALL_DESTINATION "${packageDirectory}" NO_SET_AND_CHECK_MACRO)
  write_basic_package_version_file("${PROJECT_BINARY_DIR}/KrGUIConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
  configure_file("${PROJECT_SOURCE_DIR}/cmake/krgui.pc.in" "${PROJECT_BINARY_DIR}/krgui.pc" @ONLY)

  install(TARGETS ${libraries} EXPORT KrGUITargets ARCHIVE LIBRARY RUNTIME FILE_SET HEADERS)
  install(EXPORT KrGUITargets NAMESPACE Kr:: DESTINATION "${packageDirectory}")
  install(FILES "${PROJECT_BINARY_DIR}/KrGUIConfig.cmake" "${PROJECT_BINARY_DIR}/KrGUIConfigVersion.cmake"
    DESTINATION "${packageDirectory}")
  install(FILES "${PROJECT_BINARY_DIR}/krgui.pc" DESTINATION "${moduleDirectory}")
endfunction()

kr_install_package()
