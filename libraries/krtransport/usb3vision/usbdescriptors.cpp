#include "usb3vision/usbdescriptors.h"

#include <algorithm>
#include <iterator>

namespace krtransport {
namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint8_t kDeviceInfoSubType = 0x01;

std::uint16_t Read16(Bytes aBytes, std::size_t aAt) {
  return static_cast<std::uint16_t>(aBytes[aAt] | (aBytes[aAt + 1] << 8));
}

std::uint32_t Read32(Bytes aBytes, std::size_t aAt) {
  return Read16(aBytes, aAt) | (std::uint32_t{Read16(aBytes, aAt + 2)} << 16);
}

UsbClass ReadClass(Bytes aBytes, std::size_t aAt) {
  return {aBytes[aAt], aBytes[aAt + 1], aBytes[aAt + 2]};
}

void TakeDevice(Bytes aBytes, UsbDescriptors& aDescriptors) {
  aDescriptors.usbVersion = Read16(aBytes, 2);
  aDescriptors.usbClass = ReadClass(aBytes, 4);
  aDescriptors.vendorID = Read16(aBytes, 8);
  aDescriptors.productID = Read16(aBytes, 10);
  aDescriptors.deviceRelease = Read16(aBytes, 12);
}

void TakeConfiguration(Bytes aBytes, UsbDescriptors& aDescriptors) {
  UsbConfiguration configuration;
  configuration.value = aBytes[5];
  configuration.attributes = aBytes[7];
  configuration.maxPower = aBytes[8];
  aDescriptors.configurations.push_back(std::move(configuration));
}

void TakeInterface(Bytes aBytes, UsbDescriptors& aDescriptors) {
  if (aDescriptors.configurations.empty())
    return;
  aDescriptors.configurations.back().interfaces.push_back(
      {.number = aBytes[2], .alternateSetting = aBytes[3], .usbClass = ReadClass(aBytes, 5), .deviceInfo = {}});
}

void TakeFunction(Bytes aBytes, UsbDescriptors& aDescriptors) {
  if (aDescriptors.configurations.empty())
    return;
  aDescriptors.configurations.back().functions.push_back(
      {.firstInterface = aBytes[2], .interfaceCount = aBytes[3], .usbClass = ReadClass(aBytes, 4)});
}

// The class-specific descriptor behind an interface. The same numbers mean other things to other classes.
void TakeDeviceInfo(Bytes aBytes, UsbDescriptors& aDescriptors) {
  constexpr std::size_t kFirstTextIndex = 11;
  if (aDescriptors.configurations.empty() || aDescriptors.configurations.back().interfaces.empty())
    return;
  UsbInterfaceDescriptor& interface = aDescriptors.configurations.back().interfaces.back();
  if (interface.usbClass != kControlInterface || aBytes[2] != kDeviceInfoSubType || interface.deviceInfo)
    return;
  U3VDeviceInfo info;
  info.genCPVersion = Read32(aBytes, 3);
  info.u3vVersion = Read32(aBytes, 7);
  const Bytes indexes = aBytes.subspan(kFirstTextIndex, kU3VTextCount);
  std::ranges::copy(indexes, info.textIndexes.begin());
  info.speedSupport = aBytes[kFirstTextIndex + kU3VTextCount];
  interface.deviceInfo = info;
}

// What is understood of the descriptors behind the device's own; one that is shorter is passed over, more bytes are
// allowed, as later versions of the standards append fields.
struct DescriptorRow {
  std::uint8_t type;
  std::size_t minLength;
  void (*take)(Bytes aBytes, UsbDescriptors& aDescriptors);
};

constexpr DescriptorRow kRows[] = {
    {0x02, 9, TakeConfiguration},
    {0x04, 9, TakeInterface},
    {0x0B, 8, TakeFunction},
    {0x24, 20, TakeDeviceInfo},
};

} // namespace

KrResult ParseUsbDescriptors(std::span<const std::uint8_t> aBytes, UsbDescriptors& aDescriptors) {
  constexpr std::size_t kDeviceLength = 18;
  constexpr std::uint8_t kDeviceType = 0x01;
  Bytes rest = aBytes.first(std::min(aBytes.size(), kMaxDescriptors));
  if (rest.size() < kDeviceLength || rest[0] < kDeviceLength || rest[0] > rest.size() || rest[1] != kDeviceType)
    return {KrResult::Code::BadData, "The descriptors of a USB device do not begin with a device descriptor."};
  UsbDescriptors read;
  TakeDevice(rest, read);
  rest = rest.subspan(rest[0]);
  while (rest.size() >= 2 && rest[0] >= 2 && rest[0] <= rest.size()) {
    const Bytes descriptor = rest.first(rest[0]);
    const auto* row = std::ranges::find(kRows, descriptor[1], &DescriptorRow::type);
    if (row != std::end(kRows) && descriptor.size() >= row->minLength)
      row->take(descriptor, read);
    rest = rest.subspan(descriptor.size());
  }
  aDescriptors = std::move(read);
  return {};
}

const UsbInterfaceDescriptor* FindControlInterface(const UsbConfiguration& aConfiguration) {
  const auto found = std::ranges::find(aConfiguration.interfaces, kControlInterface, &UsbInterfaceDescriptor::usbClass);
  return found != aConfiguration.interfaces.end() ? &*found : nullptr;
}

bool IsUSB3Vision(const UsbDescriptors& aDescriptors) {
  return std::ranges::any_of(aDescriptors.configurations, [](const UsbConfiguration& aConfiguration) {
    return FindControlInterface(aConfiguration) != nullptr;
  });
}

} // namespace krtransport
