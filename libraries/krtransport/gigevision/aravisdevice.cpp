#include "gigevision/aravisdevice.h"

#include "aravis/araviserror.h"
#include "aravis/aravislog.h"
#include "gigevision/gvcppacket.h"
#include "krbase/krlogger.h"
#include "krsystem/ipv4address.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <limits>
#include <mutex>

// The features below are read and written through Aravis' own evaluator, which opening a device and its stream needs
// anyway; everything that a user sees goes through the system's node map instead.

namespace krtransport {
namespace {

// Guards the opening of devices in the whole process: Aravis parses descriptions with state that all devices share.
std::mutex& GetOpeningMutex() {
  static std::mutex mutex;
  return mutex;
}

constexpr std::uint64_t kMaxPayload = std::uint64_t{1} << 32;

std::string NameMemory(const char* aVerb, std::uint32_t aAddress, std::size_t aLength) {
  char text[80];
  std::snprintf(text, sizeof(text), "%s %zu bytes at 0x%" PRIX32, aVerb, aLength, aAddress);
  return text;
}

GObjectPointer<GInetAddress> MakeInetAddress(std::uint32_t aAddress) {
  return GObjectPointer<GInetAddress>(g_inet_address_new_from_string(krsystem::FormatIPv4(aAddress).CStr()));
}

} // namespace

KrResult AravisDevice::Open(const LinkTarget& aTarget, std::shared_ptr<AravisDevice>& aDevice) {
  InstallAravisLog();
  const std::string attempt = "Opening the device at " + krsystem::FormatIPv4(aTarget.deviceAddress).ToUtf8();
  const auto local = MakeInetAddress(aTarget.localAddress);
  const auto remote = MakeInetAddress(aTarget.deviceAddress);
  GErrorHolder error;
  GObjectPointer<ArvDevice> device;
  {
    const std::lock_guard lock(GetOpeningMutex());
    device.reset(arv_gv_device_new(local.get(), remote.get(), error.Out()));
  }
  if (KrResult result = ToResult(error, attempt); !result.IsOK())
    return result;
  if (device == nullptr)
    return {KrResult::Code::ProtocolError, attempt + " failed."};
  std::shared_ptr<AravisDevice> opened(new AravisDevice(std::move(device)));
  if (KrResult result = opened->TakeControl(aTarget.access); !result.IsOK())
    return result;
  aDevice = std::move(opened);
  return {};
}

AravisDevice::~AravisDevice() = default;

KrResult AravisDevice::TakeControl(krsystem::DeviceAccess aAccess) {
  if (!HoldsControl())
    return {KrResult::Code::AccessDenied,
            "The device did not give control: another application has it. Close the device "
            "there, or open it for reading only."};
  arv_gv_device_set_packet_size_adjustment(ARV_GV_DEVICE(mDevice.get()), ARV_GV_PACKET_SIZE_ADJUSTMENT_NEVER);
  if (aAccess != krsystem::DeviceAccess::Exclusive)
    return {};
  GErrorHolder error;
  arv_device_write_register(mDevice.get(), kControlPrivilegeRegister, kExclusiveBit, error.Out());
  return ToResult(error, "Taking exclusive control of the device");
}

KrResult AravisDevice::Read(std::uint32_t aAddress, std::span<std::uint8_t> aData) {
  GErrorHolder error;
  arv_device_read_memory(mDevice.get(), aAddress, static_cast<guint32>(aData.size()), aData.data(), error.Out());
  return ToResult(error, NameMemory("Reading", aAddress, aData.size()));
}

KrResult AravisDevice::Write(std::uint32_t aAddress, std::span<const std::uint8_t> aData) {
  GErrorHolder error;
  // The parameter lacks its const in Aravis' interface; the bytes are only copied into the datagram.
  arv_device_write_memory(mDevice.get(), aAddress, static_cast<guint32>(aData.size()),
                          const_cast<std::uint8_t*>(aData.data()), error.Out());
  return ToResult(error, NameMemory("Writing", aAddress, aData.size()));
}

bool AravisDevice::HoldsControl() const {
  return arv_gv_device_is_controller(ARV_GV_DEVICE(mDevice.get())) != FALSE;
}

KrResult AravisDevice::GetPayloadSize(std::uint64_t& aBytes) {
  GErrorHolder error;
  const gint64 bytes = arv_device_get_integer_feature_value(mDevice.get(), "PayloadSize", error.Out());
  if (KrResult result = ToResult(error, "Reading the device's PayloadSize"); !result.IsOK())
    return result;
  if (bytes <= 0 || static_cast<std::uint64_t>(bytes) > kMaxPayload)
    return {KrResult::Code::BadData, "The device states a payload of " + std::to_string(bytes) + " bytes."};
  aBytes = static_cast<std::uint64_t>(bytes);
  return {};
}

void AravisDevice::SetPacketSize(std::uint32_t aBytes) {
  GErrorHolder error;
  arv_gv_device_set_packet_size(ARV_GV_DEVICE(mDevice.get()), static_cast<gint>(aBytes), error.Out());
  if (error.IsSet())
    KrLogger("GigEVision")
        .Log(KrLogLevel::Info, {"AravisDevice::SetPacketSize", "aravisdevice"},
             "The device keeps its packet size: " + error.GetText());
}

KrResult AravisDevice::CreateStream(std::uint32_t aSocketBufferBytes, StreamPointer& aStream) {
  GErrorHolder error;
  StreamPointer stream(arv_device_create_stream(mDevice.get(), nullptr, nullptr, error.Out()));
  if (KrResult result = ToResult(error, "Opening the device's stream channel"); !result.IsOK())
    return result;
  if (stream == nullptr)
    return {KrResult::Code::ProtocolError, "Opening the device's stream channel failed."};
  const auto size = std::min<std::uint32_t>(aSocketBufferBytes, std::numeric_limits<gint>::max());
  g_object_set(stream.get(), "socket-buffer", ARV_GV_STREAM_SOCKET_BUFFER_FIXED, "socket-buffer-size",
               static_cast<gint>(size), "emit-signals", TRUE, nullptr);
  aStream = std::move(stream);
  return {};
}

KrResult AravisDevice::StartAcquisition() {
  LockParameters(true);
  GErrorHolder error;
  arv_device_execute_command(mDevice.get(), "AcquisitionStart", error.Out());
  KrResult result = ToResult(error, "Starting acquisition");
  if (!result.IsOK())
    LockParameters(false);
  return result;
}

KrResult AravisDevice::StopAcquisition() {
  GErrorHolder error;
  arv_device_execute_command(mDevice.get(), "AcquisitionStop", error.Out());
  LockParameters(false);
  return ToResult(error, "Stopping acquisition");
}

void AravisDevice::LockParameters(bool aLocked) {
  if (arv_device_get_feature(mDevice.get(), "TLParamsLocked") == nullptr)
    return;
  GErrorHolder error;
  arv_device_set_integer_feature_value(mDevice.get(), "TLParamsLocked", aLocked ? 1 : 0, error.Out());
  if (error.IsSet())
    KrLogger("GigEVision")
        .Log(KrLogLevel::Info, {"AravisDevice::LockParameters", "aravisdevice"},
             "TLParamsLocked could not be written: " + error.GetText());
}

} // namespace krtransport
