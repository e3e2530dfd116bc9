// The functions of the CL Protocol standard, 1.2, for simulated cameras.

#include "clprotocol/clprotocolapi.h"
#include "clprotocol/simulateddriver/simulatedcamera.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <map>
#include <mutex>
#include <string>

#define KR_CLP_FUNCTION extern "C" __attribute__((visibility("default"))) CLINT32

namespace {

using krsimulatedcl::kFirstError;
using krsimulatedcl::kTemplate;
using krsimulatedcl::SimulatedCamera;

std::mutex theMutex; // Held during each call for a camera; guards the members up to the stop.
std::map<CLUINT32, SimulatedCamera> theCameras;
CLUINT32 theLastCookie = 0;
std::atomic<bool> theIsToStop{false};

struct ErrorRow {
  CLINT32 status;
  const char* words;
};
constexpr ErrorRow kErrors[] = {
    {0x80, "The camera does not know the command"},   {0x81, "The camera has no register there"},
    {0x82, "The camera's register can only be read"}, {0x83, "The camera's register can only be written"},
    {0x84, "The camera does not accept the value"},   {0x85, "The camera was sent a wrong number of bytes"},
};

CLINT32 GiveText(const std::string& aText, CLINT8* aBuffer, CLUINT32* aSize) {
  if (aSize == nullptr)
    return CL_ERR_INVALID_PTR;
  const auto needed = static_cast<CLUINT32>(aText.size() + 1);
  const bool isFit = aBuffer != nullptr && *aSize >= needed;
  *aSize = needed;
  if (isFit)
    std::memcpy(aBuffer, aText.c_str(), needed);
  return isFit ? CL_ERR_NO_ERR : CL_ERR_BUFFER_TOO_SMALL;
}

// Does something with the camera of a cookie, over the line of this call.
template <typename Use>
CLINT32 WithCamera(ISerial* aSerial, CLUINT32 aCookie, CLUINT32 aTimeoutMs, Use aUse) {
  if (aSerial == nullptr)
    return CL_ERR_INVALID_PTR;
  const std::lock_guard lock(theMutex);
  const auto camera = theCameras.find(aCookie);
  if (camera == theCameras.end())
    return CL_ERR_INVALID_COOKIE;
  camera->second.GetTalk().Use(*aSerial, aTimeoutMs);
  return aUse(camera->second);
}

// A full identifier, or one that begins with all names of the other.
bool IsLike(const std::string& aID, const std::string& aTemplate) {
  return aID == aTemplate || aID.starts_with(aTemplate + '#');
}

} // namespace

KR_CLP_FUNCTION clpInitLib(CLLogger, CLUINT32) {
  return CL_ERR_NO_ERR;
}

KR_CLP_FUNCTION clpCloseLib() {
  const std::lock_guard lock(theMutex);
  theCameras.clear();
  return CL_ERR_NO_ERR;
}

KR_CLP_FUNCTION clpGetCLProtocolVersion(CLUINT32* aMajor, CLUINT32* aMinor) {
  if (aMajor == nullptr || aMinor == nullptr)
    return CL_ERR_INVALID_PTR;
  *aMajor = 1;
  *aMinor = 2;
  return CL_ERR_NO_ERR;
}

KR_CLP_FUNCTION clpGetShortDeviceIDTemplates(CLINT8* aTemplates, CLUINT32* aSize) {
  return GiveText(kTemplate, aTemplates, aSize);
}

KR_CLP_FUNCTION clpProbeDevice(ISerial* aSerial, const CLINT8* aTemplate, CLINT8* aDeviceID, CLUINT32* aSize,
                               CLUINT32* aCookie, CLUINT32 aTimeoutMs) {
  if (aSerial == nullptr || aTemplate == nullptr || aCookie == nullptr)
    return CL_ERR_INVALID_PTR;
  if (!IsLike(aTemplate, kTemplate))
    return CL_ERR_INVALID_DEVICEID;
  theIsToStop = false;
  const std::lock_guard lock(theMutex);
  SimulatedCamera camera;
  camera.GetTalk().Use(*aSerial, aTimeoutMs);
  if (const CLINT32 code = camera.Find(aTimeoutMs, theIsToStop); code < 0)
    return code;
  if (!IsLike(camera.GetID(), aTemplate))
    return CL_ERR_NO_DEVICE_FOUND;
  if (const CLINT32 code = GiveText(camera.GetID(), aDeviceID, aSize); code < 0)
    return code;
  *aCookie = ++theLastCookie;
  theCameras[*aCookie] = camera;
  return CL_ERR_NO_ERR;
}

KR_CLP_FUNCTION clpGetXMLIDs(ISerial* aSerial, CLUINT32 aCookie, CLINT8* aXMLIDs, CLUINT32* aSize,
                             CLUINT32 aTimeoutMs) {
  return WithCamera(aSerial, aCookie, aTimeoutMs, [&](SimulatedCamera& aCamera) {
    std::string ids;
    const CLINT32 code = aCamera.GetXMLIDs(ids);
    return code < 0 ? code : GiveText(ids, aXMLIDs, aSize);
  });
}

KR_CLP_FUNCTION clpGetXMLDescription(ISerial* aSerial, CLUINT32 aCookie, const CLINT8* aXMLID, CLINT8* aText,
                                     CLUINT32* aSize, CLUINT32 aTimeoutMs) {
  if (aXMLID == nullptr || aSize == nullptr)
    return CL_ERR_INVALID_PTR;
  return WithCamera(aSerial, aCookie, aTimeoutMs, [&](SimulatedCamera& aCamera) {
    CLUINT32 index = 0;
    CLUINT32 bytes = 0;
    if (const CLINT32 code = aCamera.FindDescription(aXMLID, index, bytes); code < 0)
      return code;
    const CLUINT32 room = *aSize;
    *aSize = bytes + 1;
    if (aText == nullptr)
      return CL_ERR_NO_ERR;
    if (room <= bytes)
      return CL_ERR_BUFFER_TOO_SMALL;
    aText[bytes] = '\0';
    return aCamera.ReadDescription(index, bytes, aText);
  });
}

KR_CLP_FUNCTION clpReadRegister(ISerial* aSerial, CLUINT32 aCookie, CLINT64 aAddress, CLINT8* aBytes, CLINT64 aSize,
                                CLUINT32 aTimeoutMs) {
  if (aBytes == nullptr || aSize < 0 || aSize > UINT32_MAX || aAddress < 0 || aAddress > UINT32_MAX - aSize)
    return kFirstError - kErrors[1].status;
  return WithCamera(aSerial, aCookie, aTimeoutMs, [&](SimulatedCamera& aCamera) {
    return aCamera.Read(static_cast<std::uint32_t>(aAddress), aBytes, static_cast<std::uint32_t>(aSize));
  });
}

KR_CLP_FUNCTION clpWriteRegister(ISerial* aSerial, CLUINT32 aCookie, CLINT64 aAddress, const CLINT8* aBytes,
                                 CLINT64 aSize, CLUINT32 aTimeoutMs) {
  if (aBytes == nullptr || aSize < 0 || aSize > UINT32_MAX || aAddress < 0 || aAddress > UINT32_MAX - aSize)
    return kFirstError - kErrors[1].status;
  return WithCamera(aSerial, aCookie, aTimeoutMs, [&](SimulatedCamera& aCamera) {
    return aCamera.Write(static_cast<std::uint32_t>(aAddress), std::string(aBytes, static_cast<std::size_t>(aSize)));
  });
}

// A write cannot be taken back: who does not want to wait for it finds the camera busy for a while.
KR_CLP_FUNCTION clpContinueWriteRegister(ISerial* aSerial, CLUINT32 aCookie, BOOL8 aIsToContinue, CLUINT32 aTimeoutMs) {
  return WithCamera(aSerial, aCookie, aTimeoutMs, [&](SimulatedCamera& aCamera) {
    return aIsToContinue != 0 ? aCamera.ContinueWrite() : CL_ERR_NO_ERR;
  });
}

KR_CLP_FUNCTION clpGetErrorText(CLINT32 aCode, CLINT8* aText, CLUINT32* aSize, CLUINT32) {
  const auto* const row = std::ranges::find(kErrors, kFirstError - aCode, &ErrorRow::status);
  return row == std::end(kErrors) ? CL_ERR_ERROR_NOT_FOUND : GiveText(row->words, aText, aSize);
}

KR_CLP_FUNCTION clpDisconnect(CLUINT32 aCookie) {
  const std::lock_guard lock(theMutex);
  return theCameras.erase(aCookie) > 0 ? CL_ERR_NO_ERR : CL_ERR_INVALID_COOKIE;
}

KR_CLP_FUNCTION clpIsParamSupported(CLINT32 aParam) {
  const bool isKnown =
      aParam == CLP_STOP_PROBE_DEVICE || aParam == CLP_DEVICE_BAUDERATE || aParam == CLP_DEVICE_SUPPORTED_BAUDERATES;
  return isKnown ? CL_ERR_NO_ERR : CL_ERR_PARAM_NOT_SUPPORTED;
}

KR_CLP_FUNCTION clpGetParam(ISerial* aSerial, CLINT32 aParam, CLUINT32 aCookie, CLINT8* aBuffer, CLINT64 aSize,
                            CLUINT32 aTimeoutMs) {
  if (aParam != CLP_DEVICE_BAUDERATE && aParam != CLP_DEVICE_SUPPORTED_BAUDERATES)
    return CL_ERR_PARAM_NOT_SUPPORTED;
  if (aBuffer == nullptr || aSize != sizeof(CLUINT32))
    return CL_ERR_PARAM_DATA_SIZE;
  return WithCamera(aSerial, aCookie, aTimeoutMs, [&](SimulatedCamera& aCamera) {
    CLUINT32 current = 0;
    CLUINT32 supported = 0;
    const CLINT32 code = aCamera.GetRates(current, supported);
    if (code >= 0)
      std::memcpy(aBuffer, aParam == CLP_DEVICE_BAUDERATE ? &current : &supported, sizeof(CLUINT32));
    return code;
  });
}

KR_CLP_FUNCTION clpSetParam(ISerial* aSerial, CLINT32 aParam, CLUINT32 aCookie, const CLINT8* aBuffer, CLINT64 aSize,
                            CLUINT32 aTimeoutMs) {
  if (aParam == CLP_STOP_PROBE_DEVICE) {
    theIsToStop = true;
    return CL_ERR_NO_ERR;
  }
  if (aParam != CLP_DEVICE_BAUDERATE)
    return CL_ERR_PARAM_NOT_SUPPORTED;
  if (aBuffer == nullptr || aSize != sizeof(CLUINT32))
    return CL_ERR_PARAM_DATA_SIZE;
  CLUINT32 rate = 0;
  std::memcpy(&rate, aBuffer, sizeof rate);
  return WithCamera(aSerial, aCookie, aTimeoutMs, [&](SimulatedCamera& aCamera) { return aCamera.SetRate(rate); });
}

KR_CLP_FUNCTION clpGetEventData(CLUINT32, CLINT8*, CLUINT32*) {
  return CL_ERR_TIMEOUT;
}
