#include "gigevision/gigevisiondevice.h"

#include "aravis/araviserror.h"
#include "aravis/aravislog.h"
#include "gigevision/deviceprobe.h"
#include "gigevision/framepackets.h"
#include "gigevision/gvcppacket.h"
#include "gigevision/linkquery.h"
#include "gigevision/receivelimit.h"
#include "gigevision/testpackets.h"
#include "krbase/krlogger.h"
#include "krsystem/ipv4address.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>

namespace krtransport {
namespace {

// How long the search for the packets' size may go on.
constexpr std::chrono::milliseconds kSearchLimit{1000};

GObjectPointer<GInetAddress> MakeInetAddress(std::uint32_t aAddress) {
  return GObjectPointer<GInetAddress>(g_inet_address_new_from_string(krsystem::FormatIPv4(aAddress).CStr()));
}

} // namespace

KrResult GigEVisionDevice::Open(const LinkTarget& aTarget, IoThread& aIoThread,
                                std::shared_ptr<GigEVisionDevice>& aDevice) {
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
  std::shared_ptr<GigEVisionDevice> opened(new GigEVisionDevice(std::move(device), aTarget, aIoThread));
  if (KrResult result = opened->TakeControl(); !result.IsOK())
    return result;
  aDevice = std::move(opened);
  return {};
}

GigEVisionDevice::GigEVisionDevice(GObjectPointer<ArvDevice> aDevice, const LinkTarget& aTarget, IoThread& aIoThread)
    : AravisDeviceBase(std::move(aDevice)), mTarget(aTarget), mIoThread(aIoThread),
      mPacing(*this, aTarget.adapterName, aTarget.readLinkSpeed) {}

GigEVisionDevice::~GigEVisionDevice() = default;

KrResult GigEVisionDevice::TakeControl() {
  // Control is not had either when the device falls silent just then, which is nobody else's doing.
  if (!HoldsControl() && !Answers())
    return {KrResult::Code::TimeLimitExceeded,
            "The device at " + krsystem::FormatIPv4(mTarget.deviceAddress).ToUtf8() +
                " stopped answering while it was opened. Check its cable and power."};
  if (!HoldsControl())
    return {KrResult::Code::AccessDenied,
            "The device did not give control: another application has it. Close it there first."};
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
  return ProbeDevice(client) != ProbeFinding::Silent;
}

KrResult GigEVisionDevice::GiveBackControl() {
  if (mMembership != nullptr)
    OnStreamReleased(false);
  GErrorHolder error;
  arv_gv_device_leave_control(ARV_GV_DEVICE(GetArvDevice()), error.Out());
  return ToResult(error, "Giving back control of the device");
}

KrResult GigEVisionDevice::CreateStream(std::uint64_t aPayloadBytes, StreamPointer& aStream) {
  const std::uint32_t socketBytes = mReceiver.GetSocketBytes(aPayloadBytes);
  WarnOfReceiveLimit(socketBytes);
  arv_gv_device_set_stream_options(ARV_GV_DEVICE(GetArvDevice()), mReceiver.IsPacketSocketEnabled()
                                                                      ? ARV_GV_STREAM_OPTION_NONE
                                                                      : ARV_GV_STREAM_OPTION_PACKET_SOCKET_DISABLED);
  SetPacketSize();
  if (KrResult result = CheckPacketSize(aPayloadBytes); !result.IsOK())
    return result;
  mPacketCount = std::make_unique<PacketCount>(CountPackets(aPayloadBytes, mPacketBytes));
  StreamPointer stream;
  if (KrResult result = OpenArvStream(stream, PacketCount::OnStreamEvent, mPacketCount.get()); !result.IsOK())
    return result;
  mPacketCount->Watch(stream.get());
  const auto size = std::min<std::uint32_t>(socketBytes, std::numeric_limits<gint>::max());
  g_object_set(stream.get(), "socket-buffer", ARV_GV_STREAM_SOCKET_BUFFER_FIXED, "socket-buffer-size",
               static_cast<gint>(size), nullptr);
  ShareAdapter();
  aStream = std::move(stream);
  return {};
}

PacketFigures GigEVisionDevice::GetPacketFigures(ArvStream& aStream) const {
  return mPacketCount->GetFigures(aStream);
}

void GigEVisionDevice::OnStreamReleased(bool aIsLost) {
  mMembership.reset();
  if (!aIsLost)
    mPacing.Restore();
}

KrResult GigEVisionDevice::ReadRegister(std::uint32_t aAddress, std::uint32_t& aValue) {
  GErrorHolder error;
  arv_device_read_register(GetArvDevice(), aAddress, &aValue, error.Out());
  return ToResult(error, "Reading a register");
}

KrResult GigEVisionDevice::WriteRegister(std::uint32_t aAddress, std::uint32_t aValue) {
  GErrorHolder error;
  arv_device_write_register(GetArvDevice(), aAddress, aValue, error.Out());
  return ToResult(error, "Writing a register");
}

PacketSizeRange GigEVisionDevice::GetPacketSizeRange() {
  constexpr const char* kFeature = "GevSCPSPacketSize";
  gint64 smallest = 0;
  gint64 largest = 0;
  // A device that does not say gets the usual range.
  GErrorHolder boundsError;
  arv_device_get_integer_feature_bounds(GetArvDevice(), kFeature, &smallest, &largest, boundsError.Out());
  GErrorHolder stepError;
  const gint64 step = arv_device_get_integer_feature_increment(GetArvDevice(), kFeature, stepError.Out());
  return MakePacketSizeRange({smallest, largest, step}, GetMtu(mTarget.adapterName));
}

std::uint32_t GigEVisionDevice::NegotiatePacketSize(const PacketSizeRange& aRange) {
  TestPackets packets(*this);
  if (const KrResult result = packets.Prepare(mTarget.localAddress); !result.IsOK()) {
    LogRefusal("No packets are sent for trial. " + result.GetDescription().ToUtf8());
    return aRange.largest;
  }
  const auto until = std::chrono::steady_clock::now() + kSearchLimit;
  const PacketSizeChoice choice = SearchPacketSize(
      aRange, [&packets](std::uint32_t aBytes) { return packets.ComesThrough(aBytes); },
      [&] { return packets.IsDeviceAnswering() && std::chrono::steady_clock::now() < until; });
  const std::string bytes = std::to_string(choice.bytes);
  KrLogger("GigEVision")
      .Log(KrLogLevel::Info, {"GigEVisionDevice::NegotiatePacketSize", "gigevisiondevice"},
           choice.isProven ? "Stream packets of " + bytes + " bytes come through from the device."
                           : "The device sent no packets for trial; its stream packets get the " + bytes +
                                 " bytes that the network adapter takes.");
  return choice.bytes;
}

std::uint32_t GigEVisionDevice::ChoosePacketSize() {
  const PacketSizeMode mode = mPacketSizes->mode;
  if (mode == PacketSizeMode::Fixed)
    return mPacketSizes->fixedBytes;
  if (mode == PacketSizeMode::Device)
    return 0;
  if (const std::uint32_t mtu = GetMtu(mTarget.adapterName); mNegotiatedBytes == 0 || mtu != mNegotiatedMtu) {
    mNegotiatedBytes = NegotiatePacketSize(GetPacketSizeRange());
    mNegotiatedMtu = mtu;
  }
  return mNegotiatedBytes;
}

void GigEVisionDevice::SetPacketSize() {
  const std::uint32_t wanted = ChoosePacketSize();
  std::uint32_t setting = 0;
  KrResult result = ReadRegister(kStreamPacketSizeRegister, setting);
  if (result.IsOK() && wanted != 0)
    result = WriteRegister(kStreamPacketSizeRegister, (setting & ~(kFireTestPacketBit | kPacketSizeMask)) | wanted);
  if (!result.IsOK())
    LogRefusal("The device keeps its packet size. " + result.GetDescription().ToUtf8());
  // Packets are counted and paced by what the device made of it.
  const KrResult read = ReadRegister(kStreamPacketSizeRegister, setting);
  const std::uint32_t set = setting & kPacketSizeMask;
  mPacketBytes = read.IsOK() && set != 0 ? set : wanted;
  mPacketSizes->usedBytes = mPacketBytes;
}

KrResult GigEVisionDevice::CheckPacketSize(std::uint64_t aPayloadBytes) {
  if (KrResult result = CheckPackets(aPayloadBytes, mPacketBytes); !result.IsOK())
    return result;
  // Aravis goes by what the description says, which may mean another place than the register, and falls over none.
  GErrorHolder error;
  const guint said = arv_gv_device_get_packet_size(ARV_GV_DEVICE(GetArvDevice()), error.Out());
  if (KrResult asked = ToResult(error, "Asking the device for the size of its stream packets"); !asked.IsOK())
    return asked;
  if (said == 0)
    return {KrResult::Code::BadData, "Starting a stream: the device does not say how large its packets are."};
  return CheckPackets(aPayloadBytes, said);
}

void GigEVisionDevice::ShareAdapter() {
  const auto tellDevice = [device = weak_from_this(), &ioThread = mIoThread] {
    ioThread.Post([device](const std::atomic<bool>&) {
      if (const auto self = device.lock(); self != nullptr && self->mMembership != nullptr)
        self->mPacing.Apply(self->mMembership->CountCameras(), self->mPacketBytes);
      return KrResult();
    });
  };
  mMembership = std::make_unique<AdapterMembership>(mTarget.adapterName, tellDevice);
  mPacing.Apply(mMembership->CountCameras(), mPacketBytes);
}

} // namespace krtransport
