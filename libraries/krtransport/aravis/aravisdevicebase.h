#pragma once
// What devices of every kind that Aravis holds under control have in common: their memory, the few features that
// streaming needs. Opening, control and the set-up of the stream channel are left to the kinds; which thread may call,
// and how long anybody waits, is arranged by the link.

#include "aravis/gobjectpointer.h"
#include "aravis/istreamdevice.h"
#include "aravis/registerchannel.h"

#include <mutex>
#include <string>
#include <utility>

namespace krtransport {

/// Thread: the link's I/O thread alone, construction and destruction too.
/// Ownership: owns Aravis' device; whoever runs jobs on the I/O thread shares this.
class AravisDeviceBase : public IRegisterChannel, public IStreamDevice {
public:
  AravisDeviceBase(const AravisDeviceBase&) = delete;
  AravisDeviceBase& operator=(const AravisDeviceBase&) = delete;

  KrResult Read(std::uint64_t aAddress, std::span<std::uint8_t> aData) override;
  KrResult Write(std::uint64_t aAddress, std::span<const std::uint8_t> aData) override;

  KrResult GetPayloadSize(std::uint64_t& aBytes) override;
  KrResult StartAcquisition() override;
  KrResult StopAcquisition() override;
  /// Frames without a buffer, for devices whose links lose no packets.
  PacketFigures GetPacketFigures(ArvStream& aStream) const override;

  /// For what else is done on the I/O thread. Borrowed.
  ArvDevice* GetArvDevice() const { return mDevice.get(); }

protected:
  explicit AravisDeviceBase(GObjectPointer<ArvDevice> aDevice) : mDevice(std::move(aDevice)) {}

  /// To be held while a device is opened: Aravis parses descriptions with state that all devices of a process share.
  static std::mutex& GetOpeningMutex();
  /// Lets go of Aravis' device, with which the connection ends. Afterwards only destruction is allowed.
  void ReleaseArvDevice() { mDevice.reset(); }
  /// Opens Aravis' stream, which emits signals from then on. aCallback hears of it on the receiving thread, with
  /// aUserData, which must live as long.
  KrResult OpenArvStream(StreamPointer& aStream, ArvStreamCallback aCallback = nullptr, void* aUserData = nullptr);
  /// Notes in the log what a device would not do and can do without.
  static void LogRefusal(const std::string& aText);

private:
  GObjectPointer<ArvDevice> mDevice;
};

} // namespace krtransport
