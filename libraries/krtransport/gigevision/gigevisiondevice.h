#pragma once
// A GigE Vision device that Aravis holds under control: its opening, its privilege, its stream channel on a network
// adapter. What devices of every kind have in common is in the base.

#include "aravis/aravisdevicebase.h"
#include "aravis/iothread.h"
#include "gigevision/adaptermembership.h"
#include "gigevision/bootstrapregisters.h"
#include "gigevision/linkfeatures.h"
#include "gigevision/linktarget.h"
#include "gigevision/packetcount.h"
#include "gigevision/packetpacing.h"
#include "gigevision/packetsizesearch.h"
#include "gigevision/receiversettings.h"

#include <cstdint>
#include <memory>

namespace krtransport {

/// Thread: the link's I/O thread alone, opening and destruction too. Destruction gives control back; with a device that
/// is dead it takes up to five seconds.
/// Ownership: whoever runs jobs on the I/O thread shares it; borrows that thread, to hear there of other cameras.
class GigEVisionDevice final : public AravisDeviceBase,
                               private IBootstrapRegisters,
                               public std::enable_shared_from_this<GigEVisionDevice> {
public:
  /// Opens a device and takes control as the target says. AccessDenied when another application has it.
  static KrResult Open(const LinkTarget& aTarget, IoThread& aIoThread, std::shared_ptr<GigEVisionDevice>& aDevice);
  ~GigEVisionDevice() override;

  /// Words of 4 bytes below 4 GiB, as many as one READMEM carries.
  RegisterLimits GetLimits() const override;

  /// False once Aravis' heartbeat found control lost. Any thread. The signal that tells the same is not used: while it
  /// is emitted, the heartbeat's thread holds a reference, and would have to wait for itself were that the last one.
  bool HoldsControl() const;

  bool Answers() override;
  KrByteOrder GetChunkByteOrder() const override { return KrByteOrder::BigEndian; }
  PacketFigures GetPacketFigures(ArvStream& aStream) const override;
  /// Gives up control, for good, and what a stream that nobody took over left set. Another application can take it at
  /// once.
  KrResult GiveBackControl();

  /// Sets packets to the size that the settings want, found by trial once in an opening, and the socket as they want
  /// it; takes a share of the adapter's link.
  KrResult CreateStream(std::uint64_t aPayloadBytes, StreamPointer& aStream) override;
  /// Gives up the share and puts back the device's own pause between packets.
  void OnStreamReleased(bool aIsLost) override;

  krsystem::HostFeatures ListStreamFeatures(IStreamUse& aStream) override { return mReceiver.List(aStream); }
  void OnStreamOpened(ArvStream& aStream) override { mReceiver.OnStreamOpened(aStream); }
  void OnStreamEnding(ArvStream& aStream) override { mReceiver.OnStreamEnding(aStream); }
  /// How packets are sized. Any thread.
  const std::shared_ptr<PacketSizeSettings>& GetPacketSizes() const { return mPacketSizes; }

private:
  GigEVisionDevice(GObjectPointer<ArvDevice> aDevice, const LinkTarget& aTarget, IoThread& aIoThread);
  KrResult TakeControl();
  KrResult ReadRegister(std::uint32_t aAddress, std::uint32_t& aValue) override;
  KrResult WriteRegister(std::uint32_t aAddress, std::uint32_t aValue) override;
  PacketSizeRange GetPacketSizeRange();
  /// Finds the size of the stream's packets, headers included.
  std::uint32_t NegotiatePacketSize(const PacketSizeRange& aRange);
  /// The size that the device is to be set to; 0 to leave it as it is.
  std::uint32_t ChoosePacketSize();
  /// Sets it; a device that refuses or rounds it is believed.
  void SetPacketSize();
  /// BadData for a size that Aravis is not to be let work with.
  KrResult CheckPacketSize(std::uint64_t aPayloadBytes);
  void ShareAdapter();

  const LinkTarget mTarget;
  IoThread& mIoThread;
  std::uint32_t mPacketBytes = 0;     // As the device has it set.
  std::uint32_t mNegotiatedBytes = 0; // 0 until it was negotiated.
  std::uint32_t mNegotiatedMtu = 0;   // The adapter's, for which it was.
  ReceiverSettings mReceiver;
  const std::shared_ptr<PacketSizeSettings> mPacketSizes = std::make_shared<PacketSizeSettings>();
  PacketPacing mPacing;
  std::unique_ptr<PacketCount> mPacketCount;      // Of the last stream.
  std::unique_ptr<AdapterMembership> mMembership; // While a stream is open. Ends first: it calls the I/O thread.
};

} // namespace krtransport
