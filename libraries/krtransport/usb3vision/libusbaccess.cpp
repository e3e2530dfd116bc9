#include "usb3vision/libusbaccess.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <libusb.h>
#include <memory>
#include <system_error>
#include <unistd.h>

namespace krtransport {
namespace {

struct ContextRelease {
  void operator()(libusb_context* aContext) const { libusb_exit(aContext); }
};
struct ListRelease {
  void operator()(libusb_device** aList) const { libusb_free_device_list(aList, 1); }
};
struct HandleRelease {
  void operator()(libusb_device_handle* aHandle) const { libusb_close(aHandle); }
};
using ContextPointer = std::unique_ptr<libusb_context, ContextRelease>;
using ListPointer = std::unique_ptr<libusb_device*, ListRelease>;
using HandlePointer = std::unique_ptr<libusb_device_handle, HandleRelease>;

KrResult ToResult(int aStatus, const std::string& aAttempt) {
  const auto make = [&](KrResult::Code aCode) {
    return KrResult(aCode, aAttempt + " failed: " + libusb_error_name(aStatus) + ".");
  };
  switch (aStatus) {
  case LIBUSB_ERROR_ACCESS:
    return make(KrResult::Code::AccessDenied);
  case LIBUSB_ERROR_NO_DEVICE:
  case LIBUSB_ERROR_NOT_FOUND:
    return make(KrResult::Code::NotFound);
  case LIBUSB_ERROR_TIMEOUT:
    return make(KrResult::Code::TimeLimitExceeded);
  case LIBUSB_ERROR_PIPE:
    return make(KrResult::Code::ProtocolError);
  default:
    return aStatus < 0 ? make(KrResult::Code::SystemError) : KrResult();
  }
}

constexpr std::size_t kMaxDescriptorBytes = 255;

std::string NameDevice(std::uint32_t aBus, std::uint32_t aAddress) {
  return "the USB device " + std::to_string(aAddress) + " on bus " + std::to_string(aBus);
}

KrResult OpenDevice(libusb_context* aContext, std::uint32_t aBus, std::uint32_t aAddress, HandlePointer& aHandle) {
  const std::string attempt = "Opening " + NameDevice(aBus, aAddress);
  libusb_device** devices = nullptr;
  const ssize_t count = libusb_get_device_list(aContext, &devices);
  if (count < 0)
    return ToResult(static_cast<int>(count), attempt);
  const ListPointer owner(devices);
  for (ssize_t i = 0; i < count; ++i) {
    if (libusb_get_bus_number(devices[i]) != aBus || libusb_get_device_address(devices[i]) != aAddress)
      continue;
    libusb_device_handle* handle = nullptr;
    KrResult result = ToResult(libusb_open(devices[i], &handle), attempt);
    aHandle.reset(handle);
    return result;
  }
  return ToResult(LIBUSB_ERROR_NO_DEVICE, attempt);
}

// Asks for one string descriptor; a stall means that there is no such text.
KrResult ReadDescriptor(libusb_device_handle* aHandle, std::uint16_t aValue, std::uint16_t aLanguage,
                        std::chrono::milliseconds aLimit, const std::string& aAttempt,
                        std::vector<std::uint8_t>& aBytes) {
  aBytes.resize(kMaxDescriptorBytes);
  const int status = libusb_control_transfer(aHandle, LIBUSB_ENDPOINT_IN, LIBUSB_REQUEST_GET_DESCRIPTOR, aValue,
                                             aLanguage, aBytes.data(), static_cast<std::uint16_t>(aBytes.size()),
                                             static_cast<unsigned int>(aLimit.count()));
  aBytes.resize(static_cast<std::size_t>(std::max(status, 0)));
  return ToResult(status, aAttempt);
}

} // namespace

KrResult LibUsbAccess::CheckPermission(std::uint32_t aBus, std::uint32_t aAddress) {
  const std::filesystem::path file = GetDeviceFile(mRoots, aBus, aAddress);
  const int descriptor = ::open(file.c_str(), O_RDWR | O_CLOEXEC);
  if (descriptor >= 0) {
    ::close(descriptor);
    return {};
  }
  const int error = errno;
  const std::string text = "The device file " + file.string() +
                           " cannot be opened for reading and writing: " + std::generic_category().message(error) + ".";
  const bool isMissing = error == ENOENT || error == ENOTDIR || error == ENODEV || error == ENXIO;
  return {isMissing ? KrResult::Code::NotFound : KrResult::Code::AccessDenied, text};
}

KrResult LibUsbAccess::ReadStrings(std::uint32_t aBus, std::uint32_t aAddress, const UsbTextRequest& aRequest,
                                   std::vector<std::string>& aTexts) {
  if (KrResult result = CheckPermission(aBus, aAddress); !result.IsOK())
    return result;
  libusb_context* context = nullptr;
  if (KrResult result = ToResult(libusb_init(&context), "Starting libusb"); !result.IsOK())
    return result;
  const ContextPointer owner(context);
  HandlePointer handle;
  if (KrResult result = OpenDevice(context, aBus, aAddress, handle); !result.IsOK())
    return result;
  const std::string attempt = "Reading the texts of " + NameDevice(aBus, aAddress);
  const auto read = [&](std::uint8_t aIndex, std::uint16_t aLanguage, std::chrono::milliseconds aLimit,
                        std::vector<std::uint8_t>& aBytes) {
    const auto value = static_cast<std::uint16_t>((LIBUSB_DT_STRING << 8) | aIndex);
    return ReadDescriptor(handle.get(), value, aLanguage, aLimit, attempt, aBytes);
  };
  return ReadUsbTexts(aRequest, read, aTexts);
}

} // namespace krtransport
