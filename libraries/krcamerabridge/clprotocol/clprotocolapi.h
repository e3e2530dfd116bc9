#pragma once
// What drivers of the GenICam CL Protocol standard, 1.0 to 1.2, export and are given, as it is on Linux. All that a
// driver has to include.

#include <cstdarg>
#include <cstdint>

using CLINT8 = char;
using CLINT32 = int;
using CLUINT32 = unsigned int;
using CLINT64 = std::int64_t;
using BOOL8 = char;

/// The serial line that the host gives to a driver. Read waits until all bytes are there, and takes none if they are
/// not in time. Sizes say how many bytes are wanted, and then how many were done. Rates are bits: 9600 is 1, 19200 is 2
/// and so on.
class ISerial {
public:
  virtual CLINT32 clSerialRead(CLINT8* aBuffer, CLUINT32* aSize, CLUINT32 aTimeoutMs) = 0;
  virtual CLINT32 clSerialWrite(CLINT8* aBuffer, CLUINT32* aSize, CLUINT32 aTimeoutMs) = 0;
  virtual CLINT32 clGetSupportedBaudRates(CLUINT32* aRates) = 0;
  virtual CLINT32 clSetBaudRate(CLUINT32 aRate) = 0;

protected:
  // The table of the four functions is part of the standard: nothing may be added to it.
  ~ISerial() = default;
};

constexpr CLINT32 CL_ERR_NO_ERR = 0;
constexpr CLINT32 CL_ERR_BUFFER_TOO_SMALL = -10001;
constexpr CLINT32 CL_ERR_TIMEOUT = -10004;
constexpr CLINT32 CL_ERR_INVALID_REFERENCE = -10006;
constexpr CLINT32 CL_ERR_ERROR_NOT_FOUND = -10007;
constexpr CLINT32 CL_ERR_BAUD_RATE_NOT_SUPPORTED = -10008;
constexpr CLINT32 CL_ERR_OUT_OF_MEMORY = -10009;
constexpr CLINT32 CL_ERR_INVALID_PTR = -10011;
constexpr CLINT32 CL_ERR_INVALID_DEVICEID = -20100;
constexpr CLINT32 CL_ERR_NO_DEVICE_FOUND = -20101;
constexpr CLINT32 CL_ERR_NO_XMLDESCRIPTION_FOUND = -20102;
constexpr CLINT32 CL_ERR_INVALID_COOKIE = -20103;
constexpr CLINT32 CL_ERR_GET_LAST_ERROR = -20104;
constexpr CLINT32 CL_ERR_PARAM_NOT_SUPPORTED = -20105;
constexpr CLINT32 CL_ERR_PARAM_DATA_SIZE = -20107;
constexpr CLINT32 CL_ERR_PENDING_WRITE = 20101;

constexpr CLINT32 CLP_STOP_PROBE_DEVICE = 3;
constexpr CLINT32 CLP_DEVICE_BAUDERATE = -1;
constexpr CLINT32 CLP_DEVICE_SUPPORTED_BAUDERATES = -2;

constexpr CLUINT32 CLP_LOG_ERROR = 300;
constexpr CLUINT32 CLP_LOG_WARN = 400;
constexpr CLUINT32 CLP_LOG_INFO = 600;

using CLLogger = void (*)(CLUINT32 aLevel, const char* aFormat, va_list aValues);

// Text parameters: *aSize is the buffer's size, and then that of the text with its terminating zero.
extern "C" {
using clpInitLib_t = CLINT32 (*)(CLLogger, CLUINT32 aLevel);
using clpCloseLib_t = CLINT32 (*)();
using clpGetCLProtocolVersion_t = CLINT32 (*)(CLUINT32* aMajor, CLUINT32* aMinor);
using clpGetShortDeviceIDTemplates_t = CLINT32 (*)(CLINT8* aTemplates, CLUINT32* aSize);
using clpProbeDevice_t = CLINT32 (*)(ISerial*, const CLINT8* aTemplate, CLINT8* aDeviceID, CLUINT32* aSize,
                                     CLUINT32* aCookie, CLUINT32 aTimeoutMs);
using clpGetXMLIDs_t = CLINT32 (*)(ISerial*, CLUINT32 aCookie, CLINT8* aXMLIDs, CLUINT32* aSize, CLUINT32 aTimeoutMs);
using clpGetXMLDescription_t = CLINT32 (*)(ISerial*, CLUINT32 aCookie, const CLINT8* aXMLID, CLINT8* aText,
                                           CLUINT32* aSize, CLUINT32 aTimeoutMs);
using clpReadRegister_t = CLINT32 (*)(ISerial*, CLUINT32 aCookie, CLINT64 aAddress, CLINT8* aBytes, CLINT64 aSize,
                                      CLUINT32 aTimeoutMs);
using clpWriteRegister_t = CLINT32 (*)(ISerial*, CLUINT32 aCookie, CLINT64 aAddress, const CLINT8* aBytes,
                                       CLINT64 aSize, CLUINT32 aTimeoutMs);
using clpContinueWriteRegister_t = CLINT32 (*)(ISerial*, CLUINT32 aCookie, BOOL8 aIsToContinue, CLUINT32 aTimeoutMs);
using clpGetErrorText_t = CLINT32 (*)(CLINT32 aCode, CLINT8* aText, CLUINT32* aSize, CLUINT32 aCookie);
using clpDisconnect_t = CLINT32 (*)(CLUINT32 aCookie);
using clpGetParam_t = CLINT32 (*)(ISerial*, CLINT32 aParam, CLUINT32 aCookie, CLINT8* aBuffer, CLINT64 aSize,
                                  CLUINT32 aTimeoutMs);
using clpSetParam_t = CLINT32 (*)(ISerial*, CLINT32 aParam, CLUINT32 aCookie, const CLINT8* aBuffer, CLINT64 aSize,
                                  CLUINT32 aTimeoutMs);
using clpIsParamSupported_t = CLINT32 (*)(CLINT32 aParam);
}
