// A CL Protocol driver for the test's camera (testcamera.h), which misbehaves as its file's name says:
// lib<what>-<function>.so, where what is hang, crash, exit, throw, spawn, slow, lie, loud, show or greedy; any other
// name behaves well. Compiled with KR_TEST_DRIVER_1_0 it has none of the functions that came later.

#include "clprotocol/clprotocolapi.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

#define KR_CLP_FUNCTION extern "C" __attribute__((visibility("default"))) CLINT32

namespace {

constexpr CLUINT32 kCookie = 77;
constexpr CLUINT32 kRates = 0x11; // 9600 and 115200.
constexpr CLINT32 kOwnError = -30001;
constexpr CLINT64 kProcessID = 0xFFFF0000; // A register with the number of the driver's process.
constexpr CLINT64 kRefused = 0xFFFF0010;
constexpr CLINT64 kForgetful = 0xFFFF0020;
constexpr CLINT64 kSlow = 0xFFFF0030;      // Is pending as often as is written to it.
constexpr CLINT64 kCancelled = 0xFFFF0040; // How often a pending write was cancelled.
constexpr unsigned kSlowUs = 700000;
constexpr int kMostDescriptors = 1024;     // Of which one is looked for.
constexpr CLINT64 kContinued = 0xFFFF0060; // How often a pending write was continued.
constexpr CLINT64 kChildID = 0xFFFF0050;   // The number of the process that the driver has started.

char thePending = 0;
char theCancelled = 0;
std::uint32_t theContinued = 0;
bool theKnowsCamera = false;
pid_t theChild = 0;
CLLogger theLogger = nullptr;
std::atomic<bool> theIsStopped{false};
std::atomic<int> theStops{0}; // Calls that stop a probe and have not come back.

std::string GetBehaviour() {
  Dl_info info{};
  dladdr(reinterpret_cast<const void*>(&GetBehaviour), &info);
  const std::string path = info.dli_fname;
  return path.substr(path.rfind('/') + 4);
}

void Log(const char* aFormat, ...) {
  va_list values;
  va_start(values, aFormat);
  if (theLogger != nullptr)
    theLogger(CLP_LOG_INFO, aFormat, values);
  va_end(values);
}

bool Does(std::string_view aWhat, std::string_view aFunction) {
  return GetBehaviour() == std::string(aWhat) + '-' + std::string(aFunction) + ".so";
}

// Starts a process that stays, in a session of its own, and with another parent.
void Spawn() {
  int pipes[2];
  if (pipe(pipes) != 0)
    std::abort();
  const pid_t between = fork();
  if (between == 0) {
    setsid();
    if (fork() != 0)
      _exit(0);
    const pid_t own = getpid();
    [[maybe_unused]] const ssize_t written = write(pipes[1], &own, sizeof own);
    for (;;)
      pause();
  }
  waitpid(between, nullptr, 0);
  if (read(pipes[0], &theChild, sizeof theChild) != sizeof theChild)
    std::abort();
}

void Misbehave(std::string_view aFunction) {
  if (Does("hang", aFunction)) {
    Log("hangs");
    for (;;)
      pause();
  }
  if (Does("crash", aFunction))
    std::abort();
  if (Does("exit", aFunction))
    _exit(7);
  if (Does("throw", aFunction))
    throw std::runtime_error("thrown by the driver");
  if (Does("spawn", aFunction))
    Spawn();
  if (Does("slow", aFunction))
    usleep(kSlowUs);
}

CLINT32 GiveText(std::string_view aFunction, const std::string& aText, CLINT8* aBuffer, CLUINT32* aSize) {
  const CLUINT32 room = *aSize;
  *aSize = static_cast<CLUINT32>(aText.size() + 1);
  if (Does("greedy", aFunction)) {
    *aSize = room + 1;
    return CL_ERR_BUFFER_TOO_SMALL;
  }
  if (aBuffer == nullptr || room < *aSize)
    return CL_ERR_BUFFER_TOO_SMALL;
  std::memcpy(aBuffer, aText.c_str(), *aSize);
  if (Does("lie", aFunction))
    *aSize = room + 1;
  return CL_ERR_NO_ERR;
}

// Sends a command of the test's camera and waits for so many bytes.
CLINT32 Ask(ISerial* aSerial, const std::string& aCommand, CLINT8* aAnswer, CLUINT32 aSize, CLUINT32 aTimeoutMs) {
  std::string command = aCommand;
  auto size = static_cast<CLUINT32>(command.size());
  const CLINT32 code = aSerial->clSerialWrite(command.data(), &size, aTimeoutMs);
  return code < 0 ? code : aSerial->clSerialRead(aAnswer, &aSize, aTimeoutMs);
}

std::string MakeAccess(char aCommand, CLINT64 aAddress, CLINT64 aSize) {
  char text[32];
  std::snprintf(text, sizeof text, "%c%08llx%08llx", aCommand, static_cast<unsigned long long>(aAddress),
                static_cast<unsigned long long>(aSize));
  return text;
}

CLINT32 CheckCookie(CLUINT32 aCookie) {
  return aCookie == kCookie && theKnowsCamera ? CL_ERR_NO_ERR : CL_ERR_INVALID_COOKIE;
}

} // namespace

KR_CLP_FUNCTION clpGetCLProtocolVersion(CLUINT32* aMajor, CLUINT32* aMinor) {
  Misbehave("clpGetCLProtocolVersion");
  *aMajor = Does("new", "clpGetCLProtocolVersion") ? 2 : 1;
#ifdef KR_TEST_DRIVER_1_0
  *aMinor = 0;
#else
  *aMinor = 2;
#endif
  return CL_ERR_NO_ERR;
}

KR_CLP_FUNCTION clpGetShortDeviceIDTemplates(CLINT8* aTemplates, CLUINT32* aSize) {
  Misbehave("clpGetShortDeviceIDTemplates");
  return GiveText("clpGetShortDeviceIDTemplates", "Maker#Family\tMaker#Other\tbad\x01name", aTemplates, aSize);
}

KR_CLP_FUNCTION clpProbeDevice(ISerial* aSerial, const CLINT8*, CLINT8* aDeviceID, CLUINT32* aSize, CLUINT32* aCookie,
                               CLUINT32 aTimeoutMs) {
  Misbehave("clpProbeDevice");
  if (Does("loop", "clpProbeDevice") || Does("crash", "stopping") || Does("slow", "stopped")) {
    char byte = 0;
    for (CLUINT32 one = 1; !theIsStopped; one = 1)
      static_cast<void>(aSerial->clSerialRead(&byte, &one, 10));
    Log("the probe was stopped");
    return CL_ERR_TIMEOUT;
  }
  char answer[5];
  if (Ask(aSerial, "P", answer, sizeof answer, aTimeoutMs) < 0)
    return CL_ERR_NO_DEVICE_FOUND;
  Log("found %s at %d", "a camera", 42);
  theKnowsCamera = true;
  *aCookie = kCookie;
  return GiveText("clpProbeDevice", "Maker#Family#Model#_1_0#SN7", aDeviceID, aSize);
}

KR_CLP_FUNCTION clpGetXMLIDs(ISerial*, CLUINT32 aCookie, CLINT8* aXMLIDs, CLUINT32* aSize, CLUINT32) {
  Misbehave("clpGetXMLIDs");
  if (const CLINT32 code = CheckCookie(aCookie); code < 0)
    return code;
  return GiveText("clpGetXMLIDs",
                  "SchemaVersion.1.1@Maker#Family@XMLVersion.1.0.0\tSchemaVersion.1.1@Maker#Family@XMLVersion.1.2.0\t"
                  "SchemaVersion.2.0@Maker#Family@XMLVersion.1.0.0\tSchemaVersion.1.1@Maker#Other@XMLVersion.1.0.0",
                  aXMLIDs, aSize);
}

KR_CLP_FUNCTION clpGetXMLDescription(ISerial* aSerial, CLUINT32 aCookie, const CLINT8*, CLINT8* aText, CLUINT32* aSize,
                                     CLUINT32 aTimeoutMs) {
  Misbehave("clpGetXMLDescription");
  if (const CLINT32 code = CheckCookie(aCookie); code < 0)
    return code;
  char digits[9] = {};
  if (const CLINT32 code = Ask(aSerial, "L", digits, 8, aTimeoutMs); code < 0)
    return code;
  std::string text(std::strtoul(digits, nullptr, 16), '\0');
  if (const CLINT32 code = Ask(aSerial, "X", text.data(), static_cast<CLUINT32>(text.size()), aTimeoutMs); code < 0)
    return code;
  return GiveText("clpGetXMLDescription", text, aText, aSize);
}

KR_CLP_FUNCTION clpReadRegister(ISerial* aSerial, CLUINT32 aCookie, CLINT64 aAddress, CLINT8* aBytes, CLINT64 aSize,
                                CLUINT32 aTimeoutMs) {
  Misbehave("clpReadRegister");
  if (const CLINT32 code = CheckCookie(aCookie); code < 0)
    return code;
  if (aAddress == kProcessID || aAddress == kChildID) {
    const int id = aAddress == kChildID ? theChild : getpid();
    std::memcpy(aBytes, &id, std::min<std::size_t>(sizeof id, static_cast<std::size_t>(aSize)));
    return CL_ERR_NO_ERR;
  }
  if (aAddress == kRefused)
    return kOwnError;
  if (aAddress == kContinued) {
    std::memcpy(aBytes, &theContinued, std::min<std::size_t>(sizeof theContinued, static_cast<std::size_t>(aSize)));
    return CL_ERR_NO_ERR;
  }
  if (aAddress == kCancelled) {
    aBytes[0] = theCancelled;
    return CL_ERR_NO_ERR;
  }
  if (aAddress == kForgetful) {
    theKnowsCamera = false;
    return CL_ERR_INVALID_COOKIE;
  }
  return Ask(aSerial, MakeAccess('R', aAddress, aSize), aBytes, static_cast<CLUINT32>(aSize), aTimeoutMs);
}

KR_CLP_FUNCTION clpWriteRegister(ISerial* aSerial, CLUINT32 aCookie, CLINT64 aAddress, const CLINT8* aBytes,
                                 CLINT64 aSize, CLUINT32 aTimeoutMs) {
  Misbehave("clpWriteRegister");
  if (const CLINT32 code = CheckCookie(aCookie); code < 0)
    return code;
  if (aAddress == kSlow) {
    thePending = aBytes[0];
    return CL_ERR_PENDING_WRITE;
  }
  char answer = 0;
  return Ask(aSerial, MakeAccess('W', aAddress, aSize) + std::string(aBytes, static_cast<std::size_t>(aSize)), &answer,
             1, aTimeoutMs);
}

KR_CLP_FUNCTION clpContinueWriteRegister(ISerial* aSerial, CLUINT32, BOOL8 aIsToContinue, CLUINT32) {
  Misbehave("clpContinueWriteRegister");
  if (aIsToContinue == 0) {
    ++theCancelled;
    return CL_ERR_NO_ERR;
  }
  ++theContinued;
  // 127 is for ever, 126 too, without waiting.
  if (thePending == 0)
    return CL_ERR_NO_ERR;
  if (thePending == 126)
    return CL_ERR_PENDING_WRITE;
  if (thePending != 127)
    --thePending;
  char byte = 0;
  CLUINT32 size = 1;
  static_cast<void>(aSerial->clSerialRead(&byte, &size, 10));
  return CL_ERR_PENDING_WRITE;
}

KR_CLP_FUNCTION clpGetErrorText(CLINT32 aCode, CLINT8* aText, CLUINT32* aSize, CLUINT32) {
  Misbehave("clpGetErrorText");
  return aCode == kOwnError ? GiveText("clpGetErrorText", "The lens cap is on\n", aText, aSize)
                            : CL_ERR_ERROR_NOT_FOUND;
}

KR_CLP_FUNCTION clpDisconnect(CLUINT32 aCookie) {
  Misbehave("clpDisconnect");
  Misbehave("closing");
  const CLINT32 code = CheckCookie(aCookie);
  theKnowsCamera = false;
  return code;
}

#ifndef KR_TEST_DRIVER_1_0
KR_CLP_FUNCTION clpInitLib(CLLogger aLogger, CLUINT32) {
  Misbehave("clpInitLib");
  theLogger = aLogger;
  if (Does("loud", "clpInitLib")) {
    for (int i = 0; i < 10000; ++i)
      std::fprintf(stderr, "the driver prints line %d of what nobody wants to read\n", i);
  }
  for (int descriptor = 0; Does("show", "clpInitLib") && descriptor < kMostDescriptors; ++descriptor)
    if (fcntl(descriptor, F_GETFD) >= 0)
      std::fprintf(stderr, "the driver has descriptor %d\n", descriptor);
  return CL_ERR_NO_ERR;
}

KR_CLP_FUNCTION clpCloseLib() {
  Misbehave("clpCloseLib");
  Misbehave("closing");
  if (theStops != 0)
    std::abort();
  return CL_ERR_NO_ERR;
}

KR_CLP_FUNCTION clpIsParamSupported(CLINT32 aParam) {
  Misbehave("clpIsParamSupported");
  return aParam < 0 || aParam == CLP_STOP_PROBE_DEVICE ? CL_ERR_NO_ERR : CL_ERR_PARAM_NOT_SUPPORTED;
}

KR_CLP_FUNCTION clpGetParam(ISerial*, CLINT32, CLUINT32, CLINT8* aBuffer, CLINT64, CLUINT32) {
  Misbehave("clpGetParam");
  std::memcpy(aBuffer, &kRates, sizeof kRates);
  return CL_ERR_NO_ERR;
}

KR_CLP_FUNCTION clpSetParam(ISerial* aSerial, CLINT32 aParam, CLUINT32, const CLINT8* aBuffer, CLINT64, CLUINT32) {
  if (aParam == CLP_STOP_PROBE_DEVICE) {
    Misbehave("stopping");
    ++theStops;
    theIsStopped = true;
    Misbehave("stopped");
    --theStops;
    return CL_ERR_NO_ERR;
  }
  Misbehave("clpSetParam");
  CLUINT32 rate = 0;
  std::memcpy(&rate, aBuffer, sizeof rate);
  return aSerial->clSetBaudRate(rate);
}
#endif
