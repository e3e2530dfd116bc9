# What every target of the project is compiled with, carried by one interface target.
option(KRGUI_WARNINGS_ARE_ERRORS "Treat compiler warnings as errors" OFF)
set(KRGUI_SANITIZE "" CACHE STRING "Sanitizers to build with, e.g. address,undefined or thread")

find_program(KRGUI_CCACHE ccache)
if(KRGUI_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # A precompiled header is only cached with these relaxations. The base folder lets several checked out trees share what
  # was compiled, as long as each builds inside itself.
  set(CMAKE_CXX_COMPILER_LAUNCHER
    "${CMAKE_COMMAND}" -E env
    CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
    "CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}" CCACHE_NOHASHDIR=1 "${KRGUI_CCACHE}")
endif()
find_program(KRGUI_MOLD mold)

add_library(kr_options INTERFACE)
target_compile_features(kr_options INTERFACE cxx_std_20)
target_compile_options(kr_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wformat=2 -Wvla
  $<$<BOOL:${KRGUI_WARNINGS_ARE_ERRORS}>:-Werror>)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # Optimising, GCC 12 finds these faults in std::string and std::vector where there are none.
  target_compile_options(kr_options INTERFACE -Wno-restrict -Wno-array-bounds -Wno-stringop-overflow -Wno-stringop-overread)
endif()
if(KRGUI_CCACHE AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(kr_options INTERFACE -fpch-preprocess)
endif()
if(KRGUI_MOLD)
  target_link_options(kr_options INTERFACE -fuse-ld=mold)
endif()
if(KRGUI_SANITIZE)
  target_compile_options(kr_options INTERFACE
    -fsanitize=${KRGUI_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # The checks added hide from the compiler what is always written before it is read, in std::variant for one.
    target_compile_options(kr_options INTERFACE -Wno-maybe-uninitialized)
  endif()
  target_link_options(kr_options INTERFACE -fsanitize=${KRGUI_SANITIZE})
  if(KRGUI_SANITIZE MATCHES "thread")
    # GCC warns that fences are not modelled; the fences meant are inside the standard library's headers.
    target_compile_options(kr_options INTERFACE -Wno-tsan)
    add_library(kr_tsan_clone OBJECT cmake/tsanclone.cpp)
  endif()
endif()

# What makes a fault in memory harder to use for somebody else. Sanitizers have checks of their own, which come in the way.
option(KRGUI_HARDEN "Compile and link with the compiler's and the linker's protections" ON)
if(KRGUI_HARDEN AND NOT KRGUI_SANITIZE AND NOT KRGUI_FUZZ)
  include(CheckCXXCompilerFlag)
  include(CheckCXXSourceCompiles)
  include(CheckPIESupported)
  check_pie_supported()
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
  foreach(flag IN ITEMS -fstack-protector-strong -fstack-clash-protection -fcf-protection)
    string(MAKE_C_IDENTIFIER "KRGUI_HAS${flag}" has)
    check_cxx_compiler_flag(${flag} ${has})
    if(${has})
      target_compile_options(kr_options INTERFACE ${flag})
    endif()
  endforeach()
  # The functions that are checked are inlined, so that it takes an optimising build.
  set(CMAKE_REQUIRED_FLAGS "-O2 -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3")
  check_cxx_source_compiles("#include <features.h>
    #if __USE_FORTIFY_LEVEL < 3
    #error The compiler or the C library knows less.
    #endif
    int main() {}" KRGUI_HAS_FORTIFY_3)
  unset(CMAKE_REQUIRED_FLAGS)
  set(fortify 2)
  if(KRGUI_HAS_FORTIFY_3)
    set(fortify 3)
  endif()
  target_compile_options(kr_options INTERFACE
    $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=${fortify}>)
  target_link_options(kr_options INTERFACE -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
endif()
