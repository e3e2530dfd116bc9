#include "camerabridge/grabberquestions.h"

#include "krcamerabridge/krcamerabridge.h"
#include "krdevice/krdevice.h"
#include "krdevice/krdeviceadapter.h"
#include "krdevice/krdevicelifetime.h"
#include "krgenicam/krgenparameterarray.h"
#include "krserial/krdeviceserialport.h"

#include <cstddef>

namespace krgui {

namespace {

constexpr const char* kSourceSelector = "SourceSelector";

} // namespace

GrabberQuestions::GrabberQuestions(KrDevice& aDevice) : mDevice(&aDevice), mLifetime(aDevice.GetLifetime()) {}

std::optional<std::vector<KrDeviceSerial>> GrabberQuestions::FindPorts(const KrGenProgress& aProgress) const {
  std::vector<KrDeviceSerial> ports;
  const KrDeviceLifetime::Use use(*mLifetime);
  if (!use.IsGranted())
    return ports;
  KrDeviceAdapter adapter(*mDevice);
  for (const KrDeviceSerial port : kDeviceSerialPorts) {
    // How many ports are still to come says nothing about how long that takes.
    if (!aProgress(0, 0))
      return std::nullopt;
    if (KrDeviceSerialPort::IsSupported(&adapter, port))
      ports.push_back(port);
  }
  return ports;
}

std::optional<KrStringList> GrabberQuestions::ListSources(const KrGenProgress& aProgress) const {
  KrStringList names;
  const KrDeviceLifetime::Use use(*mLifetime);
  KrGenParameterArray* const parameters = use.IsGranted() ? mDevice->GetParameters() : nullptr;
  KrGenEnum* const sources = parameters ? parameters->GetEnum(kSourceSelector) : nullptr;
  std::size_t count = 0;
  if (!sources || !sources->GetEntriesCount(count).IsOK())
    return names;
  for (std::size_t index = 0; index < count; ++index) {
    if (!aProgress(0, 0))
      return std::nullopt;
    KrGenEnumEntry* entry = nullptr;
    if (sources->GetEntryByIndex(index, entry).IsOK() && entry->IsAvailable())
      names.Add(entry->GetName());
  }
  // A grabber has sources where it has a choice of them: one that names none has not answered.
  if (names.IsEmpty() && count > 0)
    return std::nullopt;
  return names;
}

PoCLState GrabberQuestions::GetPoCL() const {
  const KrDeviceLifetime::Use use(*mLifetime);
  if (!use.IsGranted())
    return {};
  return {.isSupported = KrCameraBridge::IsPoCLSupported(mDevice), .isOn = KrCameraBridge::IsPoCLEnabled(mDevice)};
}

KrResult GrabberQuestions::SetPoCL(bool aIsOn) const {
  const KrDeviceLifetime::Use use(*mLifetime);
  if (!use.IsGranted())
    return {KrResult::Code::ConnectionLost, "Switching Power over Camera Link: the device has been closed."};
  return KrCameraBridge::SetPoCLEnabled(mDevice, aIsOn);
}

} // namespace krgui
