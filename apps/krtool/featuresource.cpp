#include "featuresource.h"

#include "camerasession.h"
#include "descriptionfile.h"
#include "featurewords.h"
#include "plaintext.h"

namespace krtool {

namespace {

void ApplyTimeout(KrSystem& aSystem, const CommandLine& aCommandLine) {
  // The limit of execute is the command's.
  if (aCommandLine.timeoutMs && aCommandLine.verb != Verb::Execute)
    aSystem.SetDetectionTimeout(*aCommandLine.timeoutMs);
}

KrResult ReadDescriptionOf(KrDevice& aDevice, KrGenDescription& aDescription) {
  return Explain("reading the description of " + krapps::MakeCell(aDevice.GetDisplayID()) + " failed",
                 aDevice.ReadDescription(aDescription));
}

} // namespace

KrResult ReadDescription(KrSystem& aSystem, const CommandLine& aCommandLine, KrGenDescription& aDescription) {
  if (krapps::IsDescriptionFile(aCommandLine.device))
    return KrGenDescription::ReadFromFile(aCommandLine.device, aDescription);
  ApplyTimeout(aSystem, aCommandLine);
  std::unique_ptr<KrDevice> device;
  if (KrResult opened = OpenNamedDevice(aSystem, aCommandLine.device, KrDeviceAccess::Monitor, device); !opened.IsOK())
    return opened;
  return ReadDescriptionOf(*device, aDescription);
}

// Of a stream alone that could be started there are parameters.
KrResult FeatureSource::OpenHostSide(KrSystem& aSystem, const CommandLine& aCommandLine) {
  if (krapps::IsDescriptionFile(aCommandLine.device))
    return {KrResult::Code::InvalidInput,
            "\"" + aCommandLine.device + "\" is a file; a device is wanted, which is connected to."};
  const bool isStream = aCommandLine.module == FeatureModule::Stream;
  const KrDeviceAccess access = isStream ? KrDeviceAccess::Control : KrDeviceAccess::Monitor;
  if (KrResult opened = OpenDevice(aSystem, aCommandLine, access); !opened.IsOK())
    return opened;
  if (!isStream)
    return Explain("reading the connection's features failed", mDevice->GetTransportParameters(mArray));
  mStream.emplace(*mDevice);
  return Explain("reading the stream's features failed", mStream->GetParameters(mArray));
}

KrResult FeatureSource::OpenToRead(KrSystem& aSystem, const CommandLine& aCommandLine) {
  if (aCommandLine.module != FeatureModule::Device)
    return OpenHostSide(aSystem, aCommandLine);
  if (krapps::IsDescriptionFile(aCommandLine.device)) {
    mName = krapps::MakeCell(aCommandLine.device);
    KrGenDescription description;
    KrResult read = KrGenDescription::ReadFromFile(aCommandLine.device, description);
    return read.IsOK() ? OpenOwnArray(description, mMemory) : read;
  }
  if (KrResult opened = OpenDevice(aSystem, aCommandLine, KrDeviceAccess::Monitor); !opened.IsOK())
    return opened;
  return OpenArrayOfDevice();
}

KrResult FeatureSource::OpenToWrite(KrSystem& aSystem, const CommandLine& aCommandLine) {
  if (KrResult opened = OpenDeviceToWrite(aSystem, aCommandLine); !opened.IsOK())
    return opened;
  return Explain("reading the features of " + mName + " failed", mDevice->GetParameters(mArray));
}

KrResult FeatureSource::OpenToStore(KrSystem& aSystem, const CommandLine& aCommandLine) {
  KrResult opened = OpenDeviceToWrite(aSystem, aCommandLine);
  return opened.IsOK() ? OpenArrayOfDevice() : opened;
}

KrResult FeatureSource::OpenDeviceToWrite(KrSystem& aSystem, const CommandLine& aCommandLine) {
  if (krapps::IsDescriptionFile(aCommandLine.device))
    return {KrResult::Code::InvalidInput,
            "\"" + aCommandLine.device + "\" is a file; a device is wanted, whose features can be changed."};
  return OpenDevice(aSystem, aCommandLine, KrDeviceAccess::Control);
}

KrResult FeatureSource::OpenDevice(KrSystem& aSystem, const CommandLine& aCommandLine, KrDeviceAccess aAccess) {
  ApplyTimeout(aSystem, aCommandLine);
  KrResult opened = OpenNamedDevice(aSystem, aCommandLine.device, aAccess, mDevice);
  if (opened.IsOK())
    mName = krapps::MakeCell(mDevice->GetDisplayID());
  return opened;
}

KrResult FeatureSource::OpenArrayOfDevice() {
  KrGenDescription description;
  KrResult read = ReadDescriptionOf(*mDevice, description);
  return read.IsOK() ? OpenOwnArray(description, mDevice->GetRegisterPort()) : read;
}

// A monitor's array of the device's own takes all for read-only. This one may write, though nothing is written: the
// access that is shown is what the camera allows.
KrResult FeatureSource::OpenOwnArray(const KrGenDescription& aDescription, IKrRegisterPort& aPort) {
  mWatch.emplace(aPort);
  KrResult opened = KrGenParameterArray::Open(aDescription, *mWatch, {}, mOwnArray);
  mArray = mOwnArray.get();
  return Explain("reading the features of " + mName + " failed", opened);
}

} // namespace krtool
