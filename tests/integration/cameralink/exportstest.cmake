# The library shows the standard's twelve functions, and nothing of what it is made of.
cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND "${NM}" --dynamic --defined-only --format=posix "${LIBRARY}"
  OUTPUT_VARIABLE listed COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" lines "${listed}")
list(TRANSFORM lines REPLACE " .*" "")
list(SORT lines)
set(expected
  clFlushPort clGetErrorText clGetManufacturerInfo clGetNumBytesAvail clGetNumSerialPorts clGetSerialPortIdentifier
  clGetSupportedBaudRates clSerialClose clSerialInit clSerialRead clSerialWrite clSetBaudRate)
if(NOT lines STREQUAL expected)
  message(FATAL_ERROR "${LIBRARY} shows ${lines} instead of ${expected}.")
endif()
