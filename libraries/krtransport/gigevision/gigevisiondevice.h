#pragma once
// A GigE Vision device that Aravis holds under control: its opening, its privilege, its stream channel on a network
// adapter. What devices of every kind have in common is in the base.

#include "aravis/aravisdevicebase.h"
#include "gigevision/linktarget.h"

#include <cstdint>
#include <memory>

namespace krtransport {

/// Thread: the link's I/O thread alone, opening and destruction too. Destruction gives control back; with a device that
/// is dead it takes up to about ten seconds.
/// Ownership: whoever runs jobs on the I/O thread shares it.
class GigEVisionDevice final : public AravisDeviceBase {
public:
  /// Opens a device and takes control as the target says. AccessDenied when another application has it.
  static KrResult Open(const LinkTarget& aTarget, std::shared_ptr<GigEVisionDevice>& aDevice);
  ~GigEVisionDevice() override;

  /// Words of 4 bytes below 4 GiB, as many as one READMEM carries.
  RegisterLimits GetLimits() const override;

  /// False once Aravis' heartbeat found control lost. Any thread. The signal that tells the same is not used: while it
  /// is emitted, the heartbeat's thread holds a reference, and would have to wait for itself were that the last one.
  bool HoldsControl() const;

  bool Answers() override;
  /// Gives up control, for good. Another application can take it at once.
  KrResult GiveBackControl();

  /// Sets packets to what the adapter takes, and the socket's buffer to two frames.
  KrResult CreateStream(std::uint64_t aPayloadBytes, StreamPointer& aStream) override;

private:
  GigEVisionDevice(GObjectPointer<ArvDevice> aDevice, const LinkTarget& aTarget);
  KrResult TakeControl();
  /// Sets the size of the stream's packets, headers included; a device that refuses keeps its own.
  void SetPacketSize(std::uint32_t aBytes);

  const LinkTarget mTarget;
};

} // namespace krtransport
