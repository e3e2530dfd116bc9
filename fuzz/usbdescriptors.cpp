// Whatever a USB device says of itself: its descriptors, its string descriptors, and the lines that the kernel makes of
// them. A text that cannot be shown as it is would be a fault as well as a crash.

#include "usb3vision/usbdescriptors.h"
#include "usb3vision/usbspeed.h"
#include "usb3vision/usbtext.h"

#include <cstdlib>
#include <string_view>

namespace {

void CheckText(const std::string& aText) {
  if (aText.size() > krtransport::kMaxUsbText || krtransport::CleanUsbText(aText) != aText)
    std::abort();
}

void CheckDescriptors(std::span<const std::uint8_t> aBytes) {
  krtransport::UsbDescriptors descriptors;
  if (!krtransport::ParseUsbDescriptors(aBytes, descriptors).IsOK())
    return;
  std::size_t interfaceCount = 0;
  bool hasControl = false;
  for (const krtransport::UsbConfiguration& configuration : descriptors.configurations) {
    interfaceCount += configuration.interfaces.size();
    hasControl = hasControl || krtransport::FindControlInterface(configuration) != nullptr;
  }
  // An interface takes nine bytes.
  if (interfaceCount > aBytes.size() / 9 || hasControl != krtransport::IsUSB3Vision(descriptors))
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  const std::span<const std::uint8_t> bytes(aData, aSize);
  const std::string_view line(reinterpret_cast<const char*>(aData), aSize);
  CheckDescriptors(bytes);
  CheckText(krtransport::ParseStringDescriptor(bytes));
  CheckText(krtransport::CleanUsbText(line));
  // Any number will do, as long as there is one.
  static_cast<void>(krtransport::ParseFirstLanguage(bytes));
  static_cast<void>(krtransport::ParseUsbSpeed(std::string(line)));
  return 0;
}
