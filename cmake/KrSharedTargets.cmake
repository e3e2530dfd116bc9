# The shared kind of our libraries and programs. It is linked of the objects of the static kind, so that nothing is compiled for
# it, and both kinds have the same in them. Where KIND is no library of ours, it is the same in both.
option(BUILD_SHARED_LIBS "Install shared libraries, and programs that need them, instead of static ones" OFF)

# The libraries that a shared one links in place of the given ones.
function(kr_get_shared aResult)
  get_property(libraries GLOBAL PROPERTY KR_LIBRARIES)
  set(shared "")
  foreach(item IN LISTS ARGN)
    if(item IN_LIST libraries)
      string(APPEND item _shared)
    endif()
    list(APPEND shared "${item}")
  endforeach()
  set(${aResult} "${shared}" PARENT_SCOPE)
endfunction()

# Called by kr_add_library, with its words; the headers with their whole paths, the objects as expressions.
function(kr_add_shared_library aName)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "ALIAS" "HEADERS;OBJECTS;DEPENDS;FOREIGN;SHOWN")
  kr_get_shared(depends ${arg_DEPENDS})
  kr_get_shared(foreign ${arg_FOREIGN})
  set(script "${PROJECT_SOURCE_DIR}/cmake/exports.map")
  add_library(${aName}_shared SHARED $<TARGET_OBJECTS:${aName}> ${arg_OBJECTS})
  target_sources(${aName}_shared PUBLIC FILE_SET HEADERS BASE_DIRS include FILES ${arg_HEADERS})
  target_link_libraries(${aName}_shared
    PUBLIC ${depends} ${arg_SHOWN} PRIVATE $<BUILD_INTERFACE:${foreign}> $<BUILD_INTERFACE:kr_options>)
  target_link_options(${aName}_shared PRIVATE "-Wl,--version-script=${script}" -Wl,-z,defs)
  target_compile_features(${aName}_shared PUBLIC cxx_std_20)
  # What may change while the first number is 0 is told by the second one.
  set_target_properties(${aName}_shared PROPERTIES
    LINKER_LANGUAGE CXX
    LINK_DEPENDS "${script}"
    OUTPUT_NAME ${aName}
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
    INSTALL_RPATH "$ORIGIN"
    VERIFY_INTERFACE_HEADER_SETS OFF
    EXPORT_NAME ${arg_ALIAS})
endfunction()

# kr_add_program(krtool SOURCES main.cpp
#   PARTS krtool_parts …             our archives that it is made of
#   DEPENDS krtransport …            rooms
#   FOREIGN PNG::PNG …)              other libraries that the parts need
# Installs the manual page NAME.1 of the folder. Gives the program that the tests start, on the static libraries, and, of the same objects, the one on the shared libraries.
function(kr_add_program aName)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;PARTS;DEPENDS;FOREIGN")
  kr_add_executable(${aName} SOURCES ${arg_SOURCES} DEPENDS ${arg_PARTS} ${arg_DEPENDS} ${arg_FOREIGN})
  target_compile_definitions(${aName} PRIVATE KRGUI_VERSION="${PROJECT_VERSION}")

  kr_get_shared(depends ${arg_DEPENDS})
  list(TRANSFORM arg_PARTS REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>" OUTPUT_VARIABLE objects)
  add_executable(${aName}_shared $<TARGET_OBJECTS:${aName}> ${objects})
  target_link_libraries(${aName}_shared PRIVATE ${depends} ${arg_FOREIGN} kr_options)
  set_target_properties(${aName}_shared PROPERTIES
    LINKER_LANGUAGE CXX
    OUTPUT_NAME ${aName}
    RUNTIME_OUTPUT_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}/shared"
    INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
  set_property(GLOBAL APPEND PROPERTY KR_PROGRAMS ${aName})

  # Without name and time, so that the same page gives the same file.
  set(page "${CMAKE_CURRENT_BINARY_DIR}/${aName}.1.gz")
  add_custom_command(OUTPUT "${page}" COMMAND gzip -9nc "${CMAKE_CURRENT_SOURCE_DIR}/${aName}.1" > "${page}"
    DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${aName}.1" VERBATIM)
  add_custom_target(${aName}_page ALL DEPENDS "${page}")
  install(FILES "${page}" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT runtime)
endfunction()
