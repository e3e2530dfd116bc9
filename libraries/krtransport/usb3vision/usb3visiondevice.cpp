#include "usb3vision/usb3visiondevice.h"

#include "aravis/araviserror.h"
#include "aravis/aravislog.h"

#include <algorithm>
#include <array>
#include <utility>

namespace krtransport {
namespace {

// Registers of the bootstrap tables (USB3 Vision, ABRM and SBRM), little-endian.
constexpr std::uint64_t kSbrmAddressRegister = 0x01D8;
constexpr std::uint64_t kMaxCommandOffset = 0x14;
constexpr std::size_t kTransferSizesLength = 8;

// What stands around the data: prefix and header, and in a command the address.
constexpr std::uint32_t kCommandOverhead = 20;
constexpr std::uint32_t kAcknowledgeOverhead = 12;
// The length of a read is told in 16 bits.
constexpr std::uint32_t kMaxRead = 0xFFFF;

std::uint64_t ReadLittleEndian(std::span<const std::uint8_t> aBytes) {
  std::uint64_t value = 0;
  for (std::size_t i = aBytes.size(); i > 0; --i)
    value = (value << 8) | aBytes[i - 1];
  return value;
}

// Aravis takes null for a text that does not matter.
const char* OrNull(const std::string& aText) {
  return aText.empty() ? nullptr : aText.c_str();
}

} // namespace

std::size_t GetMaxRegisterAccess(std::uint32_t aMaxCommand, std::uint32_t aMaxAcknowledge) {
  if (aMaxCommand <= kCommandOverhead || aMaxAcknowledge <= kAcknowledgeOverhead)
    return 0;
  return std::min({aMaxCommand - kCommandOverhead, aMaxAcknowledge - kAcknowledgeOverhead, kMaxRead});
}

KrResult Usb3VisionDevice::Open(const Usb3VisionNames& aNames, std::shared_ptr<Usb3VisionDevice>& aDevice) {
  InstallAravisLog();
  const std::string attempt = "Opening the device " + aNames.product + " " + aNames.serial;
  GErrorHolder error;
  GObjectPointer<ArvDevice> device;
  {
    const std::lock_guard lock(GetOpeningMutex());
    if (!aNames.guid.empty())
      device.reset(arv_uv_device_new_from_guid(aNames.guid.c_str(), error.Out()));
    else
      device.reset(
          arv_uv_device_new(OrNull(aNames.manufacturer), OrNull(aNames.product), OrNull(aNames.serial), error.Out()));
  }
  if (error.IsDeviceError(ARV_DEVICE_ERROR_NOT_FOUND) || error.IsDeviceError(ARV_DEVICE_ERROR_NOT_CONNECTED))
    return {KrResult::Code::NotFound, attempt +
                                          " failed: libusb could not find it, or not open it. Check its cable and "
                                          "the permission of its device file."};
  if (KrResult result = ToResult(error, attempt); !result.IsOK())
    return result;
  if (device == nullptr)
    return {KrResult::Code::ProtocolError, attempt + " failed."};
  std::shared_ptr<Usb3VisionDevice> opened(new Usb3VisionDevice(std::move(device)));
  if (KrResult result = opened->ReadLimits(); !result.IsOK())
    return result;
  aDevice = std::move(opened);
  return {};
}

Usb3VisionDevice::~Usb3VisionDevice() = default;

KrResult Usb3VisionDevice::ReadLimits() {
  std::array<std::uint8_t, 8> table{};
  if (KrResult result = Read(kSbrmAddressRegister, table); !result.IsOK())
    return result;
  std::array<std::uint8_t, kTransferSizesLength> sizes{};
  if (KrResult result = Read(ReadLittleEndian(table) + kMaxCommandOffset, sizes); !result.IsOK())
    return result;
  const auto maxCommand = static_cast<std::uint32_t>(ReadLittleEndian(std::span(sizes).first(4)));
  const auto maxAcknowledge = static_cast<std::uint32_t>(ReadLittleEndian(std::span(sizes).last(4)));
  mLimits.maxBytes = GetMaxRegisterAccess(maxCommand, maxAcknowledge);
  if (mLimits.maxBytes == 0)
    return {KrResult::Code::BadData, "The device states transfers of " + std::to_string(maxCommand) + " and " +
                                         std::to_string(maxAcknowledge) +
                                         " bytes, which are too short for any register."};
  return {};
}

KrResult Usb3VisionDevice::CreateStream(std::uint64_t, StreamPointer& aStream) {
  arv_uv_device_set_usb_mode(ARV_UV_DEVICE(GetArvDevice()),
                             mTransfers.IsAsynchronous() ? ARV_UV_USB_MODE_ASYNC : ARV_UV_USB_MODE_SYNC);
  return OpenArvStream(aStream);
}

} // namespace krtransport
