#include "aravis/aravisdevicebase.h"

#include "aravis/araviserror.h"
#include "aravis/valuechains.h"
#include "krbase/krlogger.h"

#include <cinttypes>
#include <cstdio>

// The features below are read and written through Aravis' own evaluator, which opening a device and its stream needs
// anyway; everything that a user sees goes through the parameter array instead.

namespace krtransport {
namespace {

constexpr std::uint64_t kMaxPayload = std::uint64_t{1} << 32;
// What Aravis evaluates for us, or by itself, while it streams.
constexpr std::initializer_list<const char*> kEvaluated = {"PayloadSize",
                                                           "AcquisitionStart",
                                                           "AcquisitionStop",
                                                           "TLParamsLocked",
                                                           "Width",
                                                           "Height",
                                                           "PixelFormat",
                                                           "GevSCPSPacketSize",
                                                           "GevSCPHostPort",
                                                           "GevSCDA",
                                                           "GevSCSP",
                                                           "GevStreamChannelSelector",
                                                           "GevSCPSDoNotFragment",
                                                           "GevSCPSFireTestPacket",
                                                           "GevTimestampTickFrequency",
                                                           "GevStreamChannelCount",
                                                           "DeviceStreamChannelCount",
                                                           "GevGVSPExtendedIDMode"};

std::string NameMemory(const char* aVerb, std::uint64_t aAddress, std::size_t aLength) {
  char text[80];
  std::snprintf(text, sizeof(text), "%s %zu bytes at 0x%" PRIX64, aVerb, aLength, aAddress);
  return text;
}

} // namespace

std::mutex& AravisDeviceBase::GetOpeningMutex() {
  static std::mutex mutex;
  return mutex;
}

KrResult AravisDeviceBase::Read(std::uint64_t aAddress, std::span<std::uint8_t> aData) {
  GErrorHolder error;
  arv_device_read_memory(mDevice.get(), aAddress, static_cast<guint32>(aData.size()), aData.data(), error.Out());
  return ToResult(error, NameMemory("Reading", aAddress, aData.size()));
}

KrResult AravisDeviceBase::Write(std::uint64_t aAddress, std::span<const std::uint8_t> aData) {
  GErrorHolder error;
  // The parameter lacks its const in Aravis' interface; the bytes are only copied into the command.
  arv_device_write_memory(mDevice.get(), aAddress, static_cast<guint32>(aData.size()),
                          const_cast<std::uint8_t*>(aData.data()), error.Out());
  return ToResult(error, NameMemory("Writing", aAddress, aData.size()));
}

KrResult AravisDeviceBase::GetPayloadSize(std::uint64_t& aBytes) {
  // Before anything of a stream is asked of Aravis.
  if (ArvGc* const description = arv_device_get_genicam(mDevice.get()); description != nullptr)
    if (KrResult result = CheckValueChains(*description, kEvaluated); !result.IsOK())
      return result;
  GErrorHolder error;
  const gint64 bytes = arv_device_get_integer_feature_value(mDevice.get(), "PayloadSize", error.Out());
  if (KrResult result = ToResult(error, "Reading the device's PayloadSize"); !result.IsOK())
    return result;
  if (bytes <= 0 || static_cast<std::uint64_t>(bytes) > kMaxPayload)
    return {KrResult::Code::BadData, "The device states a payload of " + std::to_string(bytes) + " bytes."};
  aBytes = static_cast<std::uint64_t>(bytes);
  return {};
}

KrResult AravisDeviceBase::OpenArvStream(StreamPointer& aStream, ArvStreamCallback aCallback, void* aUserData) {
  // An application that was cut off from the device may have left it acquiring, for a destination that it keeps until
  // it is started anew. One that does not acquire may refuse the command.
  static_cast<void>(StopAcquisition());
  GErrorHolder error;
  StreamPointer stream(arv_device_create_stream(mDevice.get(), aCallback, aUserData, error.Out()));
  if (KrResult result = ToResult(error, "Opening the device's stream channel"); !result.IsOK())
    return result;
  if (stream == nullptr)
    return {KrResult::Code::ProtocolError, "Opening the device's stream channel failed."};
  g_object_set(stream.get(), "emit-signals", TRUE, nullptr);
  aStream = std::move(stream);
  return {};
}

KrResult AravisDeviceBase::StartAcquisition() {
  GErrorHolder error;
  arv_device_execute_command(mDevice.get(), "AcquisitionStart", error.Out());
  return ToResult(error, "Starting acquisition");
}

KrResult AravisDeviceBase::StopAcquisition() {
  GErrorHolder error;
  arv_device_execute_command(mDevice.get(), "AcquisitionStop", error.Out());
  return ToResult(error, "Stopping acquisition");
}

PacketFigures AravisDeviceBase::GetPacketFigures(ArvStream& aStream) const {
  return {.missingPackets = 0,
          .resentPackets = 0,
          .droppedFrames = arv_stream_get_info_uint64_by_name(&aStream, "n_underruns")};
}

void AravisDeviceBase::LogRefusal(const std::string& aText) {
  KrLogger("Transport").Log(KrLogLevel::Info, {"AravisDeviceBase::LogRefusal", "aravisdevicebase"}, aText);
}

} // namespace krtransport
