# A program or library has the protections that the build asks for. READELF, OBJDUMP, FILE and OBJECTS (what it is made of)
# are given, IS_PROGRAM, CALLS_CHECKING and LARGE_FRAMES (whether a function of it certainly calls a checking one, or has more
# than a page on the stack), PROBES_STACK and MARKS_TARGETS (whether the compiler can).
cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND "${READELF}" --wide --file-header --program-headers --dynamic --dyn-syms "${FILE}"
  OUTPUT_VARIABLE shown COMMAND_ERROR_IS_FATAL ANY)

function(expect aPattern aMissing)
  if(NOT shown MATCHES "${aPattern}")
    message(SEND_ERROR "${FILE} ${aMissing}.")
  endif()
endfunction()
function(expect_none aPattern aFault)
  if(shown MATCHES "${aPattern}")
    message(SEND_ERROR "${FILE} ${aFault}.")
  endif()
endfunction()

expect("Type: +DYN" "is not of code that runs wherever it is loaded")
if(IS_PROGRAM)
  expect("Flags:[^\n]* PIE" "is no program that runs wherever it is loaded")
endif()
expect("GNU_RELRO" "lets addresses of functions be changed after it was loaded: there is no relro")
expect("Flags: NOW" "finds functions when they are called first: it is not linked with now")
expect("GNU_STACK[^\n]* RW " "does not say that its stack holds no code")
expect_none("GNU_STACK[^\n]* RWE" "asks for a stack that holds code")
expect_none("LOAD[^\n]* RWE" "has memory that is written and run")
expect_none("TEXTREL" "has code that is changed when it is loaded")
expect("__stack_chk_fail" "does not look whether its stack was overwritten")
if(CALLS_CHECKING)
  expect("__[a-z]+_chk@" "calls none of the functions that check sizes")
endif()

# Each page of the stack is touched in turn, so that no function steps over the one that guards it.
if(PROBES_STACK)
  execute_process(
    COMMAND "${OBJDUMP}" --disassemble --no-show-raw-insn "${FILE}"
    COMMAND grep -E "[[:space:]](sub +[$]0x[0-9a-f]+,%rsp|or[lq] +[$]0x0,[0-9a-fx]*[(]%rsp[)])"
    OUTPUT_VARIABLE steps)
  # A negative number gives memory back.
  string(REGEX REPLACE "sub +[$]0x(1000|[0-9a-f]?[0-9a-f]?[0-9a-f]|f[0-9a-f]+),%rsp" "" large "${steps}")
  if(large MATCHES "sub +[$]0x[0-9a-f]+,%rsp")
    message(SEND_ERROR "${FILE} takes more than a page of the stack in one step: ${CMAKE_MATCH_0}.")
  endif()
  if(LARGE_FRAMES AND NOT steps MATCHES "or[lq] +[$]0x0,")
    message(SEND_ERROR "${FILE} touches no page of the stack that it takes.")
  endif()
endif()

# What is called or jumped to through a pointer says so in the code: each object of ours.
if(MARKS_TARGETS)
  # Headers that were compiled before are among them.
  list(FILTER OBJECTS INCLUDE REGEX "\\.o$")
  foreach(object IN LISTS OBJECTS)
    execute_process(COMMAND "${READELF}" --notes "${object}" OUTPUT_VARIABLE notes COMMAND_ERROR_IS_FATAL ANY)
    if(NOT notes MATCHES "IBT, SHSTK")
      message(SEND_ERROR "${object} is compiled without -fcf-protection.")
    endif()
  endforeach()
  if(NOT OBJECTS)
    message(SEND_ERROR "${FILE} is made of nothing.")
  endif()
endif()
