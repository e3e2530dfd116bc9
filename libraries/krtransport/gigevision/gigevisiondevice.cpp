#include "gigevision/gigevisiondevice.h"

#include "aravis/araviserror.h"
#include "aravis/aravislog.h"
#include "gigevision/gvcpclient.h"
#include "gigevision/gvcppacket.h"
#include "gigevision/networkadapters.h"
#include "gigevision/receivelimit.h"
#include "krsystem/ipv4address.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace krtransport {
namespace {

constexpr std::uint32_t kMaxPacketSize = 9000;

GObjectPointer<GInetAddress> MakeInetAddress(std::uint32_t aAddress) {
  return GObjectPointer<GInetAddress>(g_inet_address_new_from_string(krsystem::FormatIPv4(aAddress).CStr()));
}

} // namespace

KrResult GigEVisionDevice::Open(const LinkTarget& aTarget, std::shared_ptr<GigEVisionDevice>& aDevice) {
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
  std::shared_ptr<GigEVisionDevice> opened(new GigEVisionDevice(std::move(device), aTarget));
  if (KrResult result = opened->TakeControl(); !result.IsOK())
    return result;
  aDevice = std::move(opened);
  return {};
}

GigEVisionDevice::GigEVisionDevice(GObjectPointer<ArvDevice> aDevice, const LinkTarget& aTarget)
    : AravisDeviceBase(std::move(aDevice)), mTarget(aTarget) {}

GigEVisionDevice::~GigEVisionDevice() = default;

KrResult GigEVisionDevice::TakeControl() {
  if (!HoldsControl())
    return {KrResult::Code::AccessDenied,
            "The device did not give control: another application has it. Close the device "
            "there, or open it for reading only."};
  arv_gv_device_set_packet_size_adjustment(ARV_GV_DEVICE(GetArvDevice()), ARV_GV_PACKET_SIZE_ADJUSTMENT_NEVER);
  if (mTarget.access != krsystem::DeviceAccess::Exclusive)
    return {};
  GErrorHolder error;
  arv_device_write_register(GetArvDevice(), kControlPrivilegeRegister, kExclusiveBit, error.Out());
  return ToResult(error, "Taking exclusive control of the device");
}

RegisterLimits GigEVisionDevice::GetLimits() const {
  return kGvcpRegisterLimits;
}

bool GigEVisionDevice::HoldsControl() const {
  return arv_gv_device_is_controller(ARV_GV_DEVICE(GetArvDevice())) != FALSE;
}

bool GigEVisionDevice::Answers() {
  GvcpClient client;
  if (!GvcpClient::Connect(mTarget.deviceAddress, mTarget.localAddress, client).IsOK())
    return false;
  // A device that refuses, because it is held exclusively, answers too.
  std::uint32_t privilege = 0;
  const KrResult read = client.ReadRegister(kControlPrivilegeRegister, privilege, {std::chrono::milliseconds(250), 2});
  return read.IsOK() || read == KrResult::Code::ProtocolError;
}

KrResult GigEVisionDevice::GiveBackControl() {
  GErrorHolder error;
  arv_gv_device_leave_control(ARV_GV_DEVICE(GetArvDevice()), error.Out());
  return ToResult(error, "Giving back control of the device");
}

KrResult GigEVisionDevice::CreateStream(std::uint64_t aPayloadBytes, StreamPointer& aStream) {
  const std::uint32_t socketBytes = GetSocketBufferSize(aPayloadBytes);
  WarnOfReceiveLimit(socketBytes);
  SetPacketSize(std::min(GetMtu(mTarget.adapterName), kMaxPacketSize) & ~3u);
  StreamPointer stream;
  if (KrResult result = OpenArvStream(stream); !result.IsOK())
    return result;
  const auto size = std::min<std::uint32_t>(socketBytes, std::numeric_limits<gint>::max());
  g_object_set(stream.get(), "socket-buffer", ARV_GV_STREAM_SOCKET_BUFFER_FIXED, "socket-buffer-size",
               static_cast<gint>(size), nullptr);
  aStream = std::move(stream);
  return {};
}

void GigEVisionDevice::SetPacketSize(std::uint32_t aBytes) {
  GErrorHolder error;
  arv_gv_device_set_packet_size(ARV_GV_DEVICE(GetArvDevice()), static_cast<gint>(aBytes), error.Out());
  if (error.IsSet())
    LogRefusal("The device keeps its packet size: " + error.GetText());
}

} // namespace krtransport
