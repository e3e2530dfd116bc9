#pragma once
// The serial functions of the Camera Link standard (version 1.1), as the library clserkrg.so exports them: for programs
// in C and C++ that talk to a device's serial port which a bridge publishes. Most programs load the library at run time
// and need no header.

#ifdef __cplusplus
extern "C" {
#endif

typedef int CLINT32;
typedef unsigned int CLUINT32;
typedef char CLINT8;
/// A session. Its value is never given to another; in a process forked later it is of no use.
typedef void* hSerRef;

/// What the functions return.
enum {
  CL_ERR_NO_ERR = 0,
  CL_ERR_BUFFER_TOO_SMALL = -10001,
  CL_ERR_MANU_DOES_NOT_EXIST = -10002,
  CL_ERR_PORT_IN_USE = -10003,
  CL_ERR_TIMEOUT = -10004,
  CL_ERR_INVALID_INDEX = -10005,
  CL_ERR_INVALID_REFERENCE = -10006,
  CL_ERR_ERROR_NOT_FOUND = -10007,
  CL_ERR_BAUD_RATE_NOT_SUPPORTED = -10008,
  CL_ERR_OUT_OF_MEMORY = -10009,
  CL_ERR_REGISTRY_KEY_NOT_FOUND = -10010,
  CL_ERR_INVALID_PTR = -10011,
  CL_ERR_IN_USE = -10012,
  CL_ERR_UNABLE_TO_LOAD_DLL = -10098,
  CL_ERR_FUNCTION_NOT_FOUND = -10099
};

/// The bits of the speeds, in baud.
enum {
  CL_BAUDRATE_9600 = 0x01,
  CL_BAUDRATE_19200 = 0x02,
  CL_BAUDRATE_38400 = 0x04,
  CL_BAUDRATE_57600 = 0x08,
  CL_BAUDRATE_115200 = 0x10,
  CL_BAUDRATE_230400 = 0x20,
  CL_BAUDRATE_460800 = 0x40,
  CL_BAUDRATE_921600 = 0x80
};

/// The version of the standard that clGetManufacturerInfo tells.
enum { CL_DLL_VERSION_1_1 = 3 };

// All functions may be called from any thread. Of one session, what receives (clSerialRead, clGetNumBytesAvail,
// clFlushPort, clGetSupportedBaudRates, clSetBaudRate) is done one after the other, and so is what sends
// (clSerialWrite, clSetBaudRate); both go on at the same time, and sessions do not wait for one another. Time limits
// are milliseconds, and count from the call, the wait for its turn included. Each function answers CL_ERR_INVALID_PTR
// to a null pointer, where nothing else is said, CL_ERR_OUT_OF_MEMORY when there is no memory, and those with a session
// CL_ERR_INVALID_REFERENCE to one that is closed, not of this process, or whose bridge has ended.
//
// Texts: *size is the size of the buffer, and then the bytes written, the zero at the end included. A buffer that is
// null or too small gets CL_ERR_BUFFER_TOO_SMALL, nothing is written, and *size is the size that is needed.

/// Counts the ports that are published now. The indexes of the other functions are those of the last count.
CLINT32 clGetNumSerialPorts(CLUINT32* count);
/// The name of a port, by which the same port is found again. CL_ERR_INVALID_INDEX for an index beyond the count.
CLINT32 clGetSerialPortIdentifier(CLUINT32 index, CLINT8* identifier, CLUINT32* size);
/// Opens a port, at 9600 baud if it has that speed. CL_ERR_INVALID_INDEX also for a port that has gone since the count,
/// CL_ERR_PORT_IN_USE for one that is open already, does not answer, or has not sent what the last program wrote.
CLINT32 clSerialInit(CLUINT32 index, hSerRef* reference);
/// Closes a port. Calls that wait return CL_ERR_INVALID_REFERENCE at once, and this one returns after them. What was
/// written still goes to the device.
void clSerialClose(hSerRef reference);

/// Reads *size bytes, all or none: CL_ERR_TIMEOUT when they are not there in time, and what is there stays to be read.
/// *size is left as it is.
CLINT32 clSerialRead(hSerRef reference, CLINT8* buffer, CLUINT32* size, CLUINT32 timeout);
/// Writes *size bytes. CL_ERR_TIMEOUT when not all were taken in time; *size is how many were, in both cases.
CLINT32 clSerialWrite(hSerRef reference, CLINT8* buffer, CLUINT32* size, CLUINT32 timeout);
/// Counts the bytes that can be read without waiting. What was received before a bridge ended counts, too.
CLINT32 clGetNumBytesAvail(hSerRef reference, CLUINT32* count);
/// Throws away what was received and not read, also what waits in the bridge and in the device. It is behind what was
/// written: CL_ERR_TIMEOUT when the device takes none of that, or the bridge does not answer; what waited here is
/// thrown away all the same.
CLINT32 clFlushPort(hSerRef reference);
/// The bits of the speeds that the port can be set to; 0 where the device's speed is not known.
CLINT32 clGetSupportedBaudRates(hSerRef reference, CLUINT32* baudRates);
/// Sets the speed, by one bit, once the device has what was written before. CL_ERR_BAUD_RATE_NOT_SUPPORTED for one that
/// the port does not have or take, CL_ERR_TIMEOUT when the device does not take that or answer, or its bridge does not.
CLINT32 clSetBaudRate(hSerRef reference, CLUINT32 baudRate);

/// The name of this library's maker, and CL_DLL_VERSION_1_1.
CLINT32 clGetManufacturerInfo(CLINT8* name, CLUINT32* size, CLUINT32* version);
/// A code as words, in English. CL_ERR_ERROR_NOT_FOUND for a code that is none.
CLINT32 clGetErrorText(CLINT32 code, CLINT8* text, CLUINT32* size);

#ifdef __cplusplus
}
#endif
