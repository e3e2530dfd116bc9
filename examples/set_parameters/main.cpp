// Sets the exposure time of a camera, hears of the change, and saves the camera's settings in settings.txt:
//
//     set_parameters [--simulate] CAMERA
//
// The camera is that of a user-defined name or unique ID; sim-mono is one of the simulated ones. Without it those that
// there are get listed, and none is changed.

#include "krdevice/krdevice.h"
#include "krgenicam/krgeneventsink.h"
#include "krgenicam/krgenparameterarray.h"
#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"

#include <chrono>
#include <iostream>
#include <memory>
#include <semaphore>
#include <set>
#include <string_view>

namespace {

constexpr const char* kUsage =
    "usage: set_parameters [--simulate] CAMERA\n  CAMERA  the unique ID or user-defined name of one that is found\n";

bool Check(const KrResult& aResult) {
  if (!aResult.IsOK())
    std::cerr << aResult.GetDescription().CStr() << '\n';
  return aResult.IsOK();
}

// Called on a thread of the array's own, whoever changed the parameter.
class ChangePrinter : public KrGenEventSink {
public:
  void OnParameterUpdate(KrGenParameter* aParameter) override {
    KrString text;
    const KrResult read = aParameter->ToString(text);
    std::cout << aParameter->GetName().CStr() << (read.IsOK() ? " is now " : " cannot be read: ")
              << (read.IsOK() ? text : read.GetDescription()).CStr() << std::endl;
    mCalled.release();
  }
  bool WaitForCall() { return mCalled.try_acquire_for(std::chrono::minutes(1)); }

private:
  std::counting_semaphore<> mCalled{0};
};

bool SetExposureTime(const KrGenParameterArray& aArray) {
  KrGenFloat* exposureTime = aArray.GetFloat("ExposureTime");
  if (!exposureTime) // Cameras of some makers have it under an older name.
    exposureTime = aArray.GetFloat("ExposureTimeAbs");
  if (!exposureTime) {
    std::cerr << "The camera has no exposure time that can be set.\n";
    return false;
  }
  ChangePrinter printer;
  double minimum = 0, maximum = 0, before = 0, after = 0;
  if (!Check(exposureTime->RegisterEventSink(&printer)))
    return false;
  const bool isSet = Check(exposureTime->GetMin(minimum)) && Check(exposureTime->GetMax(maximum)) &&
                     Check(exposureTime->GetValue(before)) &&
                     Check(exposureTime->SetValue(minimum + (maximum - minimum) / 100)) &&
                     Check(exposureTime->GetValue(after));
  if (isSet && after == before) // Nobody is told of what is no change.
    std::cout << "The exposure time was that already.\n";
  else if (isSet && !printer.WaitForCall())
    std::cerr << "The exposure time was set, but nobody was told of it within a minute.\n";
  return Check(exposureTime->UnregisterEventSink(&printer)) && isSet;
}

bool SaveSettings(KrGenParameterArray& aArray, const char* aFile) {
  KrGenSettings settings;
  KrStringList problems;
  const bool isStored = Check(aArray.StoreSettings(settings, problems));
  for (const KrString& problem : problems)
    std::cerr << problem.CStr() << '\n';
  return isStored && Check(settings.Save(aFile));
}

} // namespace

int main(int argc, char** argv) {
  const std::set<std::string_view> options(argv + 1, argv + argc);
  if (options.contains("--help") || options.contains("-h")) {
    std::cout << kUsage;
    return 0;
  }
  const bool simulate = argc > 1 && std::string_view(argv[1]) == "--simulate";
  const std::string_view name = argc == (simulate ? 3 : 2) ? argv[argc - 1] : "";
  KrSystem system;
  if (!Check(KrInstallTransports({.gigEVision = true, .simulation = simulate})) || !Check(system.Find()))
    return 1;
  std::unique_ptr<KrDevice> device;
  KrGenParameterArray* array = nullptr;
  for (std::size_t i = 0; i < system.GetDeviceCount() && !device; ++i) {
    const KrDeviceInfo& info = *system.GetDeviceInfo(i);
    if (name.empty() || (info.GetUserDefinedName() != name && info.GetUniqueID() != name))
      std::cerr << "Found: " << info.GetUniqueID().CStr() << ' ' << info.GetUserDefinedName().CStr() << '\n';
    else if (!Check(KrDevice::Open(info, KrDeviceAccess::Control, device)) || !Check(device->GetParameters(array)))
      return 1;
  }
  if (!array) {
    std::cerr << kUsage;
    return 2;
  }
  std::cout << device->GetDisplayID().CStr() << ": " << array->GetCount() << " features\n";
  return SetExposureTime(*array) && SaveSettings(*array, "settings.txt") ? 0 : 1;
}
