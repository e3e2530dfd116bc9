#include "featuresource.h"

#include "camerasession.h"
#include "featurewords.h"
#include "plaintext.h"

#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace krtool {

namespace {

void ApplyTimeout(KrSystem& aSystem, const CommandLine& aCommandLine) {
  // The limit of execute is the command's.
  if (aCommandLine.timeoutMs && aCommandLine.verb != Verb::Execute)
    aSystem.SetDetectionTimeout(*aCommandLine.timeoutMs);
}

KrResult ReadDescriptionOf(KrDevice& aDevice, KrGenDescription& aDescription) {
  const KrGenBootstrap bootstrap =
      aDevice.GetType() == KrDeviceInfoType::U3V ? KrGenBootstrap::GenCP : KrGenBootstrap::GigEVision;
  return Explain("reading the description of " + krapps::MakeCell(aDevice.GetDisplayID()) + " failed",
                 KrGenDescription::ReadFromDevice(aDevice.GetRegisterPort(), bootstrap, aDescription));
}

} // namespace

bool IsDescriptionFile(const std::string& aName) {
  constexpr std::array<std::string_view, 2> kExtensions = {".xml", ".zip"};
  const std::string extension = aName.size() > 4 ? aName.substr(aName.size() - 4) : std::string();
  for (const std::string_view known : kExtensions)
    if (IsSameWord(extension, known))
      return true;
  std::error_code error;
  return std::filesystem::is_regular_file(aName, error);
}

KrResult ReadDescription(KrSystem& aSystem, const CommandLine& aCommandLine, KrGenDescription& aDescription) {
  if (IsDescriptionFile(aCommandLine.device))
    return KrGenDescription::ReadFromFile(aCommandLine.device, aDescription);
  ApplyTimeout(aSystem, aCommandLine);
  std::unique_ptr<KrDevice> device;
  if (KrResult opened = OpenNamedDevice(aSystem, aCommandLine.device, KrDeviceAccess::Monitor, device); !opened.IsOK())
    return opened;
  return ReadDescriptionOf(*device, aDescription);
}

KrResult FeatureSource::OpenToRead(KrSystem& aSystem, const CommandLine& aCommandLine) {
  if (!IsDescriptionFile(aCommandLine.device))
    return OpenDevice(aSystem, aCommandLine, KrDeviceAccess::Monitor);
  KrGenDescription description;
  mName = krapps::MakeCell(aCommandLine.device);
  if (KrResult read = KrGenDescription::ReadFromFile(aCommandLine.device, description); !read.IsOK())
    return read;
  return OpenArray(description, mMemory);
}

KrResult FeatureSource::OpenToWrite(KrSystem& aSystem, const CommandLine& aCommandLine) {
  if (!IsDescriptionFile(aCommandLine.device))
    return OpenDevice(aSystem, aCommandLine, KrDeviceAccess::Control);
  return {KrResult::Code::InvalidInput,
          "\"" + aCommandLine.device + "\" is a file; a device is wanted, whose features can be changed."};
}

KrResult FeatureSource::OpenDevice(KrSystem& aSystem, const CommandLine& aCommandLine, KrDeviceAccess aAccess) {
  ApplyTimeout(aSystem, aCommandLine);
  if (KrResult opened = OpenNamedDevice(aSystem, aCommandLine.device, aAccess, mDevice); !opened.IsOK())
    return opened;
  mName = krapps::MakeCell(mDevice->GetDisplayID());
  KrGenDescription description;
  if (KrResult read = ReadDescriptionOf(*mDevice, description); !read.IsOK())
    return read;
  return OpenArray(description, mDevice->GetRegisterPort());
}

// The array may write even where nothing will be: the access that is shown is then that of the camera itself.
KrResult FeatureSource::OpenArray(const KrGenDescription& aDescription, IKrRegisterPort& aPort) {
  return Explain("reading the features of " + mName + " failed",
                 KrGenParameterArray::Open(aDescription, aPort, {}, mArray));
}

} // namespace krtool
