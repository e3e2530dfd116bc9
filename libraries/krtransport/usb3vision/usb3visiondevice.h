#pragma once
// A USB3 Vision device that Aravis holds: its opening and the sizes of its transfers. What devices of every kind have
// in common is in the base.

#include "aravis/aravisdevicebase.h"
#include "usb3vision/usbfeatures.h"

#include <cstdint>
#include <memory>
#include <string>

namespace krtransport {

/// How Aravis tells devices apart: by the GUID that the device gave, or else by the texts of its USB descriptors.
struct Usb3VisionNames {
  std::string guid; ///< Empty where it was not read.
  std::string manufacturer;
  std::string product;
  std::string serial;
};

/// The most bytes of one register access, by the longest command and acknowledge that a device takes and gives in one
/// transfer; 0 where these have no room for any.
std::size_t GetMaxRegisterAccess(std::uint32_t aMaxCommand, std::uint32_t aMaxAcknowledge);

/// Thread: the link's I/O thread alone, opening and destruction too. Destruction gives the device free; with a device
/// that is dead it takes some seconds.
/// Ownership: whoever runs jobs on the I/O thread shares it.
class Usb3VisionDevice final : public AravisDeviceBase {
public:
  /// Opens a device and claims its interfaces, which nobody else can do meanwhile.
  static KrResult Open(const Usb3VisionNames& aNames, std::shared_ptr<Usb3VisionDevice>& aDevice);
  ~Usb3VisionDevice() override;

  /// Any address of 64 bits, byte by byte, as many bytes as one transfer of the control channel carries.
  RegisterLimits GetLimits() const override { return mLimits; }

  KrResult CreateStream(std::uint64_t aPayloadBytes, StreamPointer& aStream) override;

  krsystem::HostFeatures ListStreamFeatures(IStreamUse& aStream) override { return mTransfers.List(aStream); }
  void OnStreamEnding(ArvStream& aStream) override { mTransfers.OnStreamEnding(aStream); }

  /// Gives the device free, as destruction does. Afterwards only destruction is allowed.
  void Release() { ReleaseArvDevice(); }

private:
  explicit Usb3VisionDevice(GObjectPointer<ArvDevice> aDevice) : AravisDeviceBase(std::move(aDevice)) {}
  KrResult ReadLimits();

  UsbTransferSettings mTransfers;
  RegisterLimits mLimits{.lastAddress = UINT64_MAX, .alignment = 1, .maxBytes = 0};
};

} // namespace krtransport
