// Connects to the Camera Link camera behind a serial port of a device, sets one of its features, and lists them:
//
//     camera_bridge [--simulate] [--file camera.yml] DEVICE PORT [FEATURE VALUE]
//
// By GenCP, or, with --file, by a camera file. The device is that of a user-defined name. Of the simulated lab:
//
//     camera_bridge --simulate sim-grabber Serial0 Gain 6
//     camera_bridge --simulate --file docs/camera-files/simulated-camera.yml sim-grabber Serial1

#include "krcamerabridge/krcamerabridge.h"
#include "krdevice/krdevice.h"
#include "krgenicam/krgenparameterarray.h"
#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"

#include <iostream>
#include <memory>
#include <string_view>
#include <vector>

namespace {

constexpr const char* kUsage =
    "usage: camera_bridge [--simulate] [--file camera.yml] DEVICE Serial0…Bulk7 [FEATURE VALUE]\n";

bool Check(const KrResult& aResult) {
  if (!aResult.IsOK())
    std::cerr << aResult.GetDescription().CStr() << '\n';
  return aResult.IsOK();
}

std::unique_ptr<KrDevice> OpenDevice(const KrString& aName) {
  KrSystem system;
  std::unique_ptr<KrDevice> device;
  if (!Check(system.Find()))
    return nullptr;
  for (std::size_t i = 0; i < system.GetDeviceCount(); ++i)
    if (system.GetDeviceInfo(i)->GetUserDefinedName() == aName) {
      (void)Check(KrDevice::Open(*system.GetDeviceInfo(i), KrDeviceAccess::Control, device));
      return device;
    }
  std::cerr << "There is no device of the name " << aName.CStr() << ".\n";
  return nullptr;
}

KrResult Connect(KrCameraBridge& aBridge, const KrString& aFile) {
  if (!aFile.IsEmpty()) {
    KrResult result = aBridge.ConnectTolvanCameraFile(aFile);
    for (const KrString& mistake : aBridge.GetTolvanCameraFileParserErrors())
      std::cerr << aFile.CStr() << ':' << mistake.CStr() << '\n';
    return result;
  }
  KrStringList ids;
  KrResult result = aBridge.GetGenCPXMLIDs(ids);
  return result.IsOK() ? aBridge.ConnectGenCP(ids[0]) : result;
}

void ListFeatures(const KrGenParameterArray& aArray) {
  for (std::size_t i = 0; i < aArray.GetCount(); ++i) {
    KrString value;
    const KrResult read = aArray[i]->ToString(value);
    if (read != KrResult::Code::InvalidInput) // Commands have none.
      std::cout << aArray[i]->GetName().CStr() << ": " << (read.IsOK() ? value : read.GetDescription()).CStr() << '\n';
  }
}

bool SetFeature(const KrGenParameterArray& aArray, const KrString& aName, const KrString& aValue) {
  KrGenParameter* const feature = aArray.Get(aName);
  if (!feature)
    std::cerr << "The camera has no feature " << aName.CStr() << ".\n";
  return feature && Check(feature->FromString(aValue));
}

} // namespace

int main(int argc, char** argv) {
  std::vector<KrString> words;
  KrString file;
  bool simulate = false;
  for (int i = 1; i < argc; ++i) {
    const std::string_view word = argv[i];
    if (word == "--help" || word == "-h") {
      std::cout << kUsage;
      return 0;
    }
    if (word == "--simulate")
      simulate = true;
    else if (word == "--file" && i + 1 < argc)
      file = argv[++i];
    else
      words.emplace_back(word);
  }
  if ((words.size() != 2 && words.size() != 4) || FindPort(words[1]) == KrDeviceSerial::Invalid) {
    std::cerr << kUsage;
    return 2;
  }
  if (!Check(KrInstallTransports({.gigEVision = true, .simulation = simulate})))
    return 1;
  const std::unique_ptr<KrDevice> device = OpenDevice(words[0]); // Ends after the bridge.
  KrCameraBridge bridge(device.get(), FindPort(words[1]), nullptr);
  if (!device || !Check(Connect(bridge, file)))
    return 1;
  const bool isDone = words.size() == 2 || SetFeature(*bridge.GetParameters(), words[2], words[3]);
  ListFeatures(*bridge.GetParameters());
  return isDone ? 0 : 1;
}
