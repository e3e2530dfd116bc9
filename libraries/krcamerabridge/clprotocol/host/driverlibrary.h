#pragma once
// The functions of a driver's library. What is asked of them is left to DriverCalls.

#include "clprotocol/clprotocolapi.h"

#include <string>

namespace krcamerabridge {

/// Thread: one at a time.
class DriverLibrary {
public:
  /// Loads a library and finds its functions; why it cannot be used, or nothing.
  std::string Load(const std::string& aPath);
  /// Unloads it, and forgets its functions.
  void Unload();

  clpGetCLProtocolVersion_t getVersion = nullptr;
  clpGetShortDeviceIDTemplates_t getTemplates = nullptr;
  clpProbeDevice_t probe = nullptr;
  clpGetXMLIDs_t getXMLIDs = nullptr;
  clpGetXMLDescription_t getXMLDescription = nullptr;
  clpReadRegister_t readRegister = nullptr;
  clpWriteRegister_t writeRegister = nullptr;
  clpContinueWriteRegister_t continueWrite = nullptr;
  clpGetErrorText_t getErrorText = nullptr;
  clpDisconnect_t disconnect = nullptr;
  // A driver of 1.0 has none of these.
  clpInitLib_t initLib = nullptr;
  clpCloseLib_t closeLib = nullptr;
  clpGetParam_t getParam = nullptr;
  clpSetParam_t setParam = nullptr;
  clpIsParamSupported_t isParamSupported = nullptr;

private:
  template <typename Function>
  void Find(const char* aName, Function& aFunction);
  template <typename Function>
  void Require(const char* aName, Function& aFunction);

  void* mLibrary = nullptr;
  std::string mMissing;
};

} // namespace krcamerabridge
