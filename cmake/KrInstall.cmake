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

# Collects what users of the libraries of one kind must find, besides what those of the kind give each other.
function(kr_collect_package aLibraries)
  set(packageCalls "")
  set(pkgConfigModules "")
  foreach(library IN LISTS aLibraries)
    get_target_property(linked ${library} INTERFACE_LINK_LIBRARIES)
    if(NOT linked)
      continue()
    endif()
    # What is linked while building alone, and our own libraries, are no business of the user's.
    list(TRANSFORM linked REPLACE "^\\$<LINK_ONLY:(.+)>$" "\\1")
    list(FILTER linked EXCLUDE REGEX "^\\$<BUILD_INTERFACE:")
    list(REMOVE_ITEM linked ${aLibraries})
    foreach(target IN LISTS linked)
      kr_collect_foreign("${target}")
    endforeach()
  endforeach()
  list(REMOVE_DUPLICATES packageCalls)
  list(REMOVE_DUPLICATES pkgConfigModules)
  list(JOIN packageCalls "\n" packageCalls)
  list(JOIN pkgConfigModules " " pkgConfigModules)
  set(KR_PACKAGE_CALLS "${packageCalls}" PARENT_SCOPE)
  set(KR_MODULES "${pkgConfigModules}" PARENT_SCOPE)
endfunction()

# Installs the libraries and programs of one kind, static or shared, as a component for users and one for developers, which may
# be the same one. With EXCLUDE_FROM_ALL only who names the component gets them.
function(kr_install_kind aKind aRuntime aDevelopment)
  set(unlessNamed ${ARGN})
  get_property(names GLOBAL PROPERTY KR_LIBRARIES)
  get_property(programs GLOBAL PROPERTY KR_PROGRAMS)
  set(libraries ${names})
  if(aKind STREQUAL "shared")
    list(TRANSFORM libraries APPEND _shared)
    list(TRANSFORM programs APPEND _shared)
  endif()
  kr_collect_package("${libraries}")
  if(aDevelopment STREQUAL "development")
    string(REPLACE " " ";" modules "${KR_MODULES}")
    set_property(GLOBAL PROPERTY KR_PACKAGE_MODULES ${modules})
  endif()

  # A linker reads static libraries from left to right, so the ones that need others come first.
  list(REVERSE names)
  list(TRANSFORM names PREPEND "-l")
  list(JOIN names " " KR_LINK_FLAGS)
  set(packageDirectory "${CMAKE_INSTALL_LIBDIR}/cmake/KrGUI")
  set(moduleDirectory "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
  file(RELATIVE_PATH KR_PREFIX_FROM_MODULE "/prefix/${moduleDirectory}" "/prefix")
  string(REGEX REPLACE "/$" "" KR_PREFIX_FROM_MODULE "${KR_PREFIX_FROM_MODULE}")
  set(KR_KIND ${aKind})

  set(folder "${PROJECT_BINARY_DIR}/package/${aKind}")
  configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/KrGUIConfig.cmake.in" "${folder}/KrGUIConfig.cmake"
    INSTALL_DESTINATION "${packageDirectory}" NO_SET_AND_CHECK_MACRO)
  write_basic_package_version_file("${folder}/KrGUIConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
  configure_file("${PROJECT_SOURCE_DIR}/cmake/krgui.pc.in" "${folder}/krgui.pc" @ONLY)

  install(TARGETS ${libraries} EXPORT KrGUI-${aKind}
    LIBRARY COMPONENT ${aRuntime} NAMELINK_COMPONENT ${aDevelopment} ${unlessNamed}
    ARCHIVE COMPONENT ${aDevelopment} ${unlessNamed}
    FILE_SET HEADERS COMPONENT ${aDevelopment} ${unlessNamed})
  install(EXPORT KrGUI-${aKind} NAMESPACE Kr:: DESTINATION "${packageDirectory}" COMPONENT ${aDevelopment} ${unlessNamed})
  install(FILES "${folder}/KrGUIConfig.cmake" "${folder}/KrGUIConfigVersion.cmake"
    DESTINATION "${packageDirectory}" COMPONENT ${aDevelopment} ${unlessNamed})
  install(FILES "${folder}/krgui.pc" DESTINATION "${moduleDirectory}" COMPONENT ${aDevelopment} ${unlessNamed})
  if(programs)
    install(TARGETS ${programs} RUNTIME COMPONENT ${aRuntime} ${unlessNamed})
  endif()
endfunction()

get_property(libraries GLOBAL PROPERTY KR_LIBRARIES)
if(libraries AND BUILD_SHARED_LIBS)
  kr_install_kind(shared runtime development)
elseif(libraries)
  kr_install_kind(static runtime development)
  # cmake --install … --component shared gives the other kind of the same build.
  kr_install_kind(shared shared shared EXCLUDE_FROM_ALL)
endif()
