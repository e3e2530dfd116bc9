#pragma once
// An open GigE Vision device: puts register port, buffer source and watch together and takes them apart in the right
// order.

#include "aravis/aravisbuffersource.h"
#include "aravis/channelregisterport.h"
#include "aravis/iothread.h"
#include "gigevision/gigevisiondevice.h"
#include "gigevision/linktarget.h"
#include "gigevision/linkwatch.h"
#include "krsystem/idevicelink.h"

#include <atomic>
#include <memory>

namespace krtransport {

/// Thread, ownership: as IDeviceLink. With a dead device destruction takes up to eight seconds, which are Aravis' own
/// tries: of the call that runs, of its heartbeat and of giving back control.
class GigEVisionLink final : public krsystem::IDeviceLink {
public:
  /// Opens the device that a target names. NotFound when it does not answer, or another one does at its address,
  /// AccessDenied when another application holds it in a way that the access wanted does not go with.
  static KrResult Open(const LinkTarget& aTarget, std::unique_ptr<krsystem::IDeviceLink>& aLink);
  ~GigEVisionLink() override;

  IKrRegisterPort& GetRegisterPort() override { return *mPort; }
  /// Channel 0 of a device under control. Aravis receives no other, and a monitor none.
  krsystem::IBufferSource* GetBufferSource(std::uint32_t aChannel) override;
  KrGenBootstrap GetBootstrap() const override { return KrGenBootstrap::GigEVision; }
  krsystem::HostFeatures ListFeatures() override;
  /// Takes up to two seconds with a device that answers, about half a second with one that does not.
  void GiveBackControl() override;
  bool IsConnected() const override { return mWatch.IsConnected(); }
  void SetSink(krsystem::IDeviceLinkSink* aSink) override { mWatch.SetSink(aSink); }

private:
  /// What is needed to make a link; the device is null for a monitor.
  struct Parts {
    explicit Parts(const LinkTarget& aTarget);

    std::unique_ptr<IoThread> ioThread;
    std::shared_ptr<GigEVisionDevice> device;
    std::shared_ptr<IRegisterChannel> channel;
    GvcpClient watchClient;
  };

  GigEVisionLink(const LinkTarget& aTarget, Parts aParts);
  static KrResult CheckAccess(const LinkTarget& aTarget, GvcpClient& aClient);
  static KrResult OpenChannel(const LinkTarget& aTarget, Parts& aParts);
  void OnLost(const KrResult& aReason);

  const LinkTarget mTarget;
  std::unique_ptr<IoThread> mIoThread;
  std::shared_ptr<GigEVisionDevice> mDevice;
  std::unique_ptr<AravisBufferSource> mSource;
  LinkWatch mWatch;
  std::unique_ptr<ChannelRegisterPort> mPort;
  std::atomic<bool> mIsGivenBack{false};
};

} // namespace krtransport
