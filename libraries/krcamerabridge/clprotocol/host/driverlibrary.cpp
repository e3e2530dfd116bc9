#include "clprotocol/host/driverlibrary.h"

#include <dlfcn.h>

namespace krcamerabridge {

template <typename Function>
void DriverLibrary::Find(const char* aName, Function& aFunction) {
  aFunction = reinterpret_cast<Function>(dlsym(mLibrary, aName));
}

template <typename Function>
void DriverLibrary::Require(const char* aName, Function& aFunction) {
  Find(aName, aFunction);
  if (aFunction == nullptr)
    mMissing += (mMissing.empty() ? "" : ", ") + std::string(aName);
}

std::string DriverLibrary::Load(const std::string& aPath) {
  if (mLibrary != nullptr)
    return "it is loaded already";
  mLibrary = dlopen(aPath.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (mLibrary == nullptr) {
    const char* const error = dlerror();
    return error != nullptr ? error : "the system does not say why";
  }
  Require("clpGetCLProtocolVersion", getVersion);
  Require("clpGetShortDeviceIDTemplates", getTemplates);
  Require("clpProbeDevice", probe);
  Require("clpGetXMLIDs", getXMLIDs);
  Require("clpGetXMLDescription", getXMLDescription);
  Require("clpReadRegister", readRegister);
  Require("clpWriteRegister", writeRegister);
  Require("clpContinueWriteRegister", continueWrite);
  Require("clpGetErrorText", getErrorText);
  Require("clpDisconnect", disconnect);
  Find("clpInitLib", initLib);
  Find("clpCloseLib", closeLib);
  Find("clpGetParam", getParam);
  Find("clpSetParam", setParam);
  Find("clpIsParamSupported", isParamSupported);
  return mMissing.empty() ? "" : "it is no CL Protocol driver: it lacks " + mMissing;
}

void DriverLibrary::Unload() {
  void* const library = mLibrary;
  *this = {};
  if (library != nullptr)
    static_cast<void>(dlclose(library));
}

} // namespace krcamerabridge
