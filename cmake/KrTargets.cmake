# The functions by which every room of the project declares its targets.
include(GNUInstallDirs)
include(KrSharedTargets)

# The public headers of every library are compiled alone, as part of the build. A sanitizer has nothing to say about them.
if(NOT KRGUI_SANITIZE)
  set(CMAKE_VERIFY_INTERFACE_HEADER_SETS ON)
endif()

# kr_add_library(krbase ALIAS Base
#   HEADERS krbase/krresult.h …      public headers, relative to include/
#   SOURCES krresult.cpp …
#   OBJECTS krguilogic …             object libraries whose objects become part of it
#   DEPENDS krbuffer …               rooms whose headers appear in ours
#   FOREIGN pugixml::pugixml …       libraries that only our sources see
#   SHOWN Qt6::Widgets …             foreign libraries that appear in our headers
#   PLUGIN)                          shared, and loaded instead of linked: no part of the package's targets, and installed
#                                    by its own list
# Gives the static library, which the tests see whole, and, of the same objects, the shared one (krbase_shared).
function(kr_add_library aName)
  cmake_parse_arguments(PARSE_ARGV 1 arg "PLUGIN" "ALIAS" "HEADERS;SOURCES;OBJECTS;DEPENDS;FOREIGN;SHOWN")
  list(TRANSFORM arg_HEADERS PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/include/")
  list(TRANSFORM arg_OBJECTS REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>")
  set(kind STATIC)
  if(arg_PLUGIN)
    set(kind SHARED)
  endif()
  add_library(${aName} ${kind} ${arg_SOURCES} ${arg_OBJECTS})
  target_sources(${aName} PUBLIC FILE_SET HEADERS BASE_DIRS include FILES ${arg_HEADERS})
  target_include_directories(${aName} PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}")
  target_link_libraries(${aName}
    PUBLIC ${arg_DEPENDS} ${arg_SHOWN} PRIVATE ${arg_FOREIGN} $<BUILD_INTERFACE:kr_options>)
  target_compile_features(${aName} PUBLIC cxx_std_20)
  set_target_properties(${aName} PROPERTIES
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON
    POSITION_INDEPENDENT_CODE ON
    EXPORT_NAME ${arg_ALIAS})
  if(CMAKE_VERIFY_INTERFACE_HEADER_SETS)
    add_custom_target(${aName}_headers_alone ALL)
    add_dependencies(${aName}_headers_alone ${aName}_verify_interface_header_sets)
  endif()
  if(arg_PLUGIN)
    return()
  endif()

  set_property(GLOBAL APPEND PROPERTY KR_LIBRARIES ${aName})
  kr_add_shared_library(${aName} ALIAS ${arg_ALIAS} HEADERS ${arg_HEADERS} OBJECTS ${arg_OBJECTS}
    DEPENDS ${arg_DEPENDS} FOREIGN ${arg_FOREIGN} SHOWN ${arg_SHOWN})
  if(BUILD_SHARED_LIBS)
    add_library(Kr::${arg_ALIAS} ALIAS ${aName}_shared)
  else()
    add_library(Kr::${arg_ALIAS} ALIAS ${aName})
  endif()
endfunction()

function(kr_add_executable aName)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;DEPENDS")
  add_executable(${aName} ${arg_SOURCES})
  if(KRGUI_SANITIZE MATCHES "thread")
    target_sources(${aName} PRIVATE $<TARGET_OBJECTS:kr_tsan_clone>)
  endif()
  target_link_libraries(${aName} PRIVATE ${arg_DEPENDS} kr_options)
  target_include_directories(${aName} PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}")
endfunction()

# The modules of the toolkit whose headers the sources of a target see, by name; empty where there are none.
function(kr_get_toolkit aTarget aResult)
  # Found once for each target: libraries stand on one another, so that there are very many ways to the lowest.
  get_property(isKnown GLOBAL PROPERTY KR_TOOLKIT_OF_${aTarget} SET)
  if(isKnown)
    get_property(modules GLOBAL PROPERTY KR_TOOLKIT_OF_${aTarget})
    set(${aResult} "${modules}" PARENT_SCOPE)
    return()
  endif()
  set(modules "")
  foreach(property IN ITEMS LINK_LIBRARIES INTERFACE_LINK_LIBRARIES)
    get_target_property(linked ${aTarget} ${property})
    if(NOT linked)
      continue()
    endif()
    foreach(name IN LISTS linked)
      if(name MATCHES "^Qt6::(.+)")
        list(APPEND modules ${CMAKE_MATCH_1})
      elseif(name MATCHES "^(kr|test)" AND TARGET ${name})
        kr_get_toolkit(${name} more)
        list(APPEND modules ${more})
      endif()
    endforeach()
  endforeach()
  list(REMOVE_DUPLICATES modules)
  set_property(GLOBAL PROPERTY KR_TOOLKIT_OF_${aTarget} "${modules}")
  set(${aResult} "${modules}" PARENT_SCOPE)
endfunction()

# How tests are compiled: they run once, and optimising them takes longer than that. With a sanitizer not at all, as the
# libraries are looked at as they are used. A precompiled header is for threads or not, which some libraries ask for.
function(kr_set_test_options aTest)
  target_compile_options(${aTest} PRIVATE -pthread)
  if(KRGUI_SANITIZE)
    target_compile_options(${aTest} PRIVATE -O0)
  else()
    target_compile_options(${aTest} PRIVATE $<$<CONFIG:Release>:-O1>)
  endif()
endfunction()

# Half of the time that a test takes to compile is the frameworks' headers, which are compiled once for all.
function(kr_compile_quickly aTest)
  kr_set_test_options(${aTest})
  if(CMAKE_C_COMPILER_ID AND NOT CMAKE_C_COMPILER_ID STREQUAL CMAKE_CXX_COMPILER_ID)
    return() # Where C is compiled too, its compiler says how the file of a precompiled header is called.
  endif()
  kr_get_toolkit(${aTest} modules)
  if("Widgets" IN_LIST modules)
    target_precompile_headers(${aTest} REUSE_FROM kr_window_test_headers)
  elseif(NOT modules)
    target_precompile_headers(${aTest} REUSE_FROM kr_test_headers)
  endif()
endfunction()

# A sanitizer makes programs two to three times slower. Here, and nowhere else, the limits of tests are made longer for it;
# those within the programs (tests/support/await.h) read it in their environment.
set(KR_TEST_TIME_FACTOR 1)
if(KRGUI_SANITIZE)
  set(KR_TEST_TIME_FACTOR 3)
endif()

# kr_add_test_run(widget.bitmapstest_at_scale_2 COMMAND bitmapstest [TIMEOUT seconds] [ENVIRONMENT variable=value …] [URGENT])
# One run of a program, as a test. The kind, which is the first part of the name, is its label and settles the variables
# that the kind's programs need; a display and a network stand in the command. URGENT: goes before what runs beside it, as
# cameras and hosts that are other programs wait for nobody.
# The kinds that load X11 or fonts, and the integration tests, which come with both, run the sanitizers with suppressions for those libraries; the others with
# none. Qt's threads synchronise in code that is not instrumented, so the thread sanitizer is told in tests with windows to
# judge only what happens in ours.
function(kr_add_test_run aName)
  cmake_parse_arguments(PARSE_ARGV 1 arg "URGENT" "TIMEOUT" "COMMAND;ENVIRONMENT")
  string(REGEX MATCH "^[^.]+" kind "${aName}")
  # The settings of whoever runs the tests are neither read nor changed, nor those of a test that runs at the same time:
  # the toolkit's dialogs keep their last folder and view there.
  set(settings "${CMAKE_BINARY_DIR}/test-settings/${aName}")
  set(environment "XDG_CONFIG_HOME=${settings}/config" "XDG_DATA_HOME=${settings}/data"
    "KR_TEST_TIME_FACTOR=${KR_TEST_TIME_FACTOR}")
  if(kind STREQUAL "widget")
    list(APPEND environment QT_QPA_PLATFORM=offscreen)
  endif()
  if(kind MATCHES "^(widget|x11|integration|camera)$")
    list(APPEND environment
      "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/suppressions/lsan.supp:print_suppressions=0"
      "TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/suppressions/tsan.supp:ignore_noninstrumented_modules=1")
  endif()
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 900)
  endif()
  math(EXPR timeout "${arg_TIMEOUT} * ${KR_TEST_TIME_FACTOR}")

  list(POP_FRONT arg_COMMAND program)
  if(TARGET ${program}) # Which CMake itself replaces by the file only where it comes first.
    set(program "$<TARGET_FILE:${program}>")
  endif()
  set(urgency nice -n 10)
  if(arg_URGENT)
    set(urgency "")
  endif()
  add_test(NAME ${aName}
    COMMAND ${urgency} "${PROJECT_SOURCE_DIR}/scripts/with-empty-folder.sh" "${settings}" ${program} ${arg_COMMAND})
  set_tests_properties(${aName} PROPERTIES
    TIMEOUT ${timeout} LABELS ${kind} ENVIRONMENT "${environment};${arg_ENVIRONMENT}")
endfunction()

# kr_add_test(krresulttest KIND unit SOURCES krresulttest.cpp DEPENDS krbase [INCLUDES dir …] [TIMEOUT seconds]
#   [ENVIRONMENT variable=value …] [WRAPPER program] [STREAMS])
# KIND: unit (no toolkit, no display), lab (the simulated lab), widget (Qt, offscreen), x11 (Xvfb and a window manager),
# integration (independent programs in a network namespace), camera (both of the last two).
# WRAPPER starts the test, inside of what the kind needs. STREAMS: takes frames from an independent camera, which bursts them.
function(kr_add_test aName)
  cmake_parse_arguments(PARSE_ARGV 1 arg "STREAMS" "KIND;TIMEOUT;WRAPPER" "SOURCES;DEPENDS;INCLUDES;ENVIRONMENT")
  kr_add_executable(${aName} SOURCES ${arg_SOURCES} DEPENDS ${arg_DEPENDS} GTest::gmock)
  target_include_directories(${aName} PRIVATE "${PROJECT_SOURCE_DIR}/tests/support" ${arg_INCLUDES})
  kr_compile_quickly(${aName})

  set(command ${arg_WRAPPER} "$<TARGET_FILE:${aName}>")
  if(arg_KIND MATCHES "^(x11|camera)$")
    list(PREPEND command "${PROJECT_SOURCE_DIR}/scripts/with-display.sh")
  endif()
  if(arg_KIND MATCHES "^(integration|camera)$")
    list(PREPEND command "${PROJECT_SOURCE_DIR}/scripts/with-network.sh")
  endif()
  set(urgent "")
  if(arg_KIND MATCHES "^(integration|camera)$")
    set(urgent URGENT)
  endif()
  kr_add_test_run(${arg_KIND}.${aName} ${urgent}
    COMMAND ${command} TIMEOUT ${arg_TIMEOUT} ENVIRONMENT ${arg_ENVIRONMENT})
  if(arg_STREAMS)
    # Packets lost for want of a core are no finding: one at a time, and the longest row of tests is begun first.
    set_tests_properties(${arg_KIND}.${aName} PROPERTIES RESOURCE_LOCK streams COST 1000)
  endif()
endfunction()
