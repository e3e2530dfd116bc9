#pragma once
// The thread that takes frames from a camera and hands them to a display window, through loss and return of the camera.
// What the user sees beside the picture is left to the viewer.

#include "framemeter.h"
#include "krdevice/krdevice.h"
#include "krdevice/krdeviceadapter.h"
#include "krdevice/krstream.h"
#include "krgui/krdisplaywnd.h"
#include "lentdevice.h"
#include "loan.h"
#include "streamfigures.h"

#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

namespace krviewer {

enum class AcquisitionState {
  Connecting,
  Streaming,
  Lost,     ///< The camera vanished; it is awaited.
  Finished, ///< The number of frames asked for came, or it was stopped.
  Failed,   ///< It could not be opened or started, or was lost while a number of frames was asked for.
};

/// Who borrows the device.
enum class DeviceBorrower { Terminal, Bridges, CameraBridges };
inline constexpr std::size_t kDeviceBorrowers = 3;

/// A copy of what the thread has come to.
struct AcquisitionProgress {
  AcquisitionState state = AcquisitionState::Connecting;
  KrResult result;               ///< Why it was lost or failed.
  KrResult parameters;           ///< Why the camera's parameters cannot be had; OK while that is not known.
  std::uint64_t lastFrameID = 0; ///< Of the frame displayed last.
  krapps::StreamFigures figures;
  KrStreamStatistics statistics; ///< Of all connections together.
};

/// The text drawn over the picture: rates and losses.
KrString FormatOverlay(const FrameMeter& aMeter, const KrStreamStatistics& aStatistics);

/// A text with each sentence in a line of its own, as the window does not wrap lines.
KrString BreakIntoSentences(const KrString& aText);

/// Streams one camera into one window, and lends its parameters and the device itself. A lost camera's parameters are
/// lent until it is back, when they are taken back and those of the new connection lent; the device is taken back when
/// it is lost.
///
/// Thread: construction, destruction and Stop on one thread, with nothing borrowed there; GetProgress from any.
/// Ownership: borrows window and device information, which must outlive it.
class Acquisition : private KrDeviceEventSink {
public:
  /// aFrameLimit 0 streams until it is stopped.
  Acquisition(KrDisplayWnd& aWindow, const KrDeviceInfo& aDevice, std::uint64_t aFrameLimit);
  ~Acquisition() override;

  AcquisitionProgress GetProgress() const;
  Loan<KrGenParameterArray>& GetParameters() { return mParameters; }
  /// The device is lent to each borrower apart.
  Loan<LentDevice>& GetDevice(DeviceBorrower aBorrower) { return mLoans[static_cast<std::size_t>(aBorrower)]; }
  /// Ends the thread and gives the camera back.
  void Stop();

private:
  void OnDeviceLost(KrDevice* aDevice, const KrResult& aReason) override;
  void OnDeviceBack(KrDevice* aDevice) override;

  bool IsAwaited(const std::stop_token& aStop) const;
  void Run(std::stop_token aStop);
  KrResult ConnectAndStream(std::stop_token aStop);
  void CloseDevice();
  KrResult StreamOnce(std::stop_token aStop, KrDevice& aDevice);
  void LendDevice(KrDevice& aDevice, KrStream& aStream);
  void TakeBackDevice();
  void ShowReason(const KrBuffer* aBuffer, const KrResult& aReason);
  bool ShowFrame(KrStream& aStream, const KrBuffer& aBuffer);
  void AwaitReturn(std::stop_token aStop);
  void SetState(AcquisitionState aState, const KrResult& aResult);
  bool IsLimitReached() const;

  KrDisplayWnd& mWindow;
  const KrDeviceInfo& mDeviceInfo;
  const std::uint64_t mFrameLimit;
  Loan<KrGenParameterArray> mParameters;
  std::array<Loan<LentDevice>, kDeviceBorrowers> mLoans;

  // The thread's own while it runs.
  std::unique_ptr<KrDevice> mDevice;
  std::optional<KrStream> mStream; ///< Of mDevice; stays, stopped, as long as the device is lent.
  std::optional<KrDeviceAdapter> mAdapter;
  std::optional<LentDevice> mLent; ///< What is lent of them.
  bool mHasStreamed = false;
  KrStreamStatistics mEndedStreams; ///< The counters of the connections that are over.
  FrameMeter mMeter;

  mutable std::mutex mMutex; ///< Guards the progress and the return flag.
  std::condition_variable_any mReturned;
  AcquisitionProgress mProgress;
  bool mIsBack = false;
  std::jthread mThread; ///< Last, so that it ends before what it uses.
};

} // namespace krviewer
