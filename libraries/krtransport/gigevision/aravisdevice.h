#pragma once
// A device that Aravis holds under control: its opening, its memory, the few features that streaming needs.
// Which thread may call, and how long anybody waits, is arranged by the link.

#include "aravis/gobjectpointer.h"
#include "aravis/registerchannel.h"
#include "gigevision/linktarget.h"
#include "krbase/krresult.h"

#include <cstdint>
#include <memory>

namespace krtransport {

/// Thread: the link's I/O thread alone, opening and destruction too. Destruction gives control back; with a device that
/// is dead it takes up to about ten seconds.
/// Ownership: whoever runs jobs on the I/O thread shares it.
class AravisDevice final : public IRegisterChannel {
public:
  /// Opens a device and takes control as the target says. AccessDenied when another application has it.
  static KrResult Open(const LinkTarget& aTarget, std::shared_ptr<AravisDevice>& aDevice);
  ~AravisDevice() override;
  AravisDevice(const AravisDevice&) = delete;
  AravisDevice& operator=(const AravisDevice&) = delete;

  KrResult Read(std::uint32_t aAddress, std::span<std::uint8_t> aData) override;
  KrResult Write(std::uint32_t aAddress, std::span<const std::uint8_t> aData) override;

  /// False once Aravis' heartbeat found control lost. Any thread. The signal that tells the same is not used: while it
  /// is emitted, the heartbeat's thread holds a reference, and would have to wait for itself were that the last one.
  bool HoldsControl() const;

  KrResult GetPayloadSize(std::uint64_t& aBytes);
  /// Sets the size of the stream's packets, headers included; a device that refuses keeps its own.
  void SetPacketSize(std::uint32_t aBytes);
  /// Opens the stream channel; the device's socket buffer holds at least aSocketBufferBytes.
  KrResult CreateStream(std::uint32_t aSocketBufferBytes, StreamPointer& aStream);
  KrResult StartAcquisition();
  KrResult StopAcquisition();

private:
  explicit AravisDevice(GObjectPointer<ArvDevice> aDevice) : mDevice(std::move(aDevice)) {}
  KrResult TakeControl(krsystem::DeviceAccess aAccess);
  void LockParameters(bool aLocked);

  GObjectPointer<ArvDevice> mDevice;
};

} // namespace krtransport
