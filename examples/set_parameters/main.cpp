// Opens the first camera there is (simulated ones with --simulate), sets its exposure time, hears of the change, and
// saves its settings. What can go wrong is told, as a camera may lack any feature.

#include "krdevice/krdevice.h"
#include "krgenicam/krgeneventsink.h"
#include "krgenicam/krgenparameterarray.h"
#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"

#include <chrono>
#include <cstring>
#include <iostream>
#include <memory>
#include <semaphore>

namespace {

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
  bool WaitForCall() { return mCalled.try_acquire_for(std::chrono::seconds(2)); }

private:
  std::counting_semaphore<> mCalled{0};
};

// Cameras of some makers have the feature under an older name.
KrGenFloat* FindExposureTime(const KrGenParameterArray& aArray) {
  KrGenFloat* const exposureTime = aArray.GetFloat("ExposureTime");
  return exposureTime ? exposureTime : aArray.GetFloat("ExposureTimeAbs");
}

bool SetExposureTime(const KrGenParameterArray& aArray) {
  KrGenFloat* const exposureTime = FindExposureTime(aArray);
  if (!exposureTime) {
    std::cerr << "The camera has no exposure time that can be set.\n";
    return false;
  }
  ChangePrinter printer;
  double minimum = 0;
  double maximum = 0;
  if (!Check(exposureTime->RegisterEventSink(&printer)))
    return false;
  const bool isSet = Check(exposureTime->GetMin(minimum)) && Check(exposureTime->GetMax(maximum)) &&
                     Check(exposureTime->SetValue(minimum + (maximum - minimum) / 100));
  // Nobody is told where the camera had the value already.
  if (isSet && !printer.WaitForCall())
    std::cout << "The exposure time is as it was.\n";
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
  const bool simulate = argc > 1 && std::strcmp(argv[1], "--simulate") == 0;
  KrSystem system;
  if (!Check(KrInstallTransports({.gigEVision = true, .simulation = simulate})) || !Check(system.Find()))
    return 1;
  if (system.GetDeviceCount() == 0) {
    std::cerr << "There is no camera. Try --simulate.\n";
    return 1;
  }
  std::unique_ptr<KrDevice> device;
  KrGenParameterArray* array = nullptr;
  if (!Check(KrDevice::Open(*system.GetDeviceInfo(0), KrDeviceAccess::Control, device)) ||
      !Check(device->GetParameters(array)))
    return 1;
  std::cout << device->GetDisplayID().CStr() << ": " << array->GetCount() << " features\n";
  return SetExposureTime(*array) && SaveSettings(*array, "settings.txt") ? 0 : 1;
}
