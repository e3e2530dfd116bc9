#pragma once
// An open USB3 Vision device: puts register port, buffer source and watch together and takes them apart in
// the right order.

#include "aravis/aravisbuffersource.h"
#include "aravis/channelregisterport.h"
#include "aravis/iothread.h"
#include "krsystem/idevicelink.h"
#include "krsystem/itransport.h"
#include "usb3vision/usb3visiondevice.h"
#include "usb3vision/usbwatch.h"

#include <atomic>
#include <functional>
#include <memory>

namespace krtransport {

/// Thread, ownership: as IDeviceLink. Destruction with a dead device takes up to some seconds, which are Aravis' own
/// tries.
class Usb3VisionLink final : public krsystem::IDeviceLink {
public:
  /// What a link is made of.
  struct Parts {
    explicit Parts(const UsbDevice& aDevice);

    std::unique_ptr<IoThread> ioThread; ///< Has the device's name.
    std::shared_ptr<IRegisterChannel> channel;
    std::shared_ptr<IStreamDevice> streamDevice; ///< Null for a monitor.
    std::function<void()> release; ///< Gives the device free, on the I/O thread; nothing of the above is used after.
  };

  /// Opens the device that names tell. USB knows no second reader: a monitor holds the device like everybody else, and
  /// only leaves it as it is.
  static KrResult Open(const Usb3VisionNames& aNames, UsbWatch::Subject aSubject, krsystem::DeviceAccess aAccess,
                       std::unique_ptr<krsystem::IDeviceLink>& aLink);
  Usb3VisionLink(UsbWatch::Subject aSubject, Parts aParts);
  ~Usb3VisionLink() override;

  IKrRegisterPort& GetRegisterPort() override { return *mPort; }
  /// Channel 0 of a device that is not only looked at. The standard has no other.
  krsystem::IBufferSource* GetBufferSource(std::uint32_t aChannel) override;
  KrGenBootstrap GetBootstrap() const override { return KrGenBootstrap::GenCP; }
  krsystem::HostFeatures ListFeatures() override;
  /// Takes up to two seconds. A monitor's device is given free too.
  void GiveBackControl() override;
  bool IsConnected() const override { return mWatch.IsConnected(); }
  void SetSink(krsystem::IDeviceLinkSink* aSink) override { mWatch.SetSink(aSink); }

private:
  KrResult Probe();
  void OnLost(const KrResult& aReason);

  const UsbDevice mUsbDevice;
  const std::shared_ptr<IRegisterChannel> mChannel;
  const std::shared_ptr<IStreamDevice> mStreamDevice;
  const std::function<void()> mRelease;
  std::unique_ptr<IoThread> mIoThread;
  std::unique_ptr<AravisBufferSource> mSource;
  UsbWatch mWatch;
  std::unique_ptr<ChannelRegisterPort> mPort;
  std::atomic<bool> mIsGivenBack{false};
};

} // namespace krtransport
