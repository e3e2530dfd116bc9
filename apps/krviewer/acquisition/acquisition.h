#pragma once
// The thread that takes frames from a camera and hands them to a display window and to whoever hears of them, through
// loss and return of the camera, as it is asked to. What the user sees beside the picture is left to the viewer.

#include "acquisition/acquisitionprogress.h"
#include "acquisition/devicethermometer.h"
#include "acquisition/framemeter.h"
#include "acquisition/framepicture.h"
#include "acquisition/framesink.h"
#include "acquisition/hostparameters.h"
#include "acquisition/keptsettings.h"
#include "acquisition/lentdevice.h"
#include "acquisition/loan.h"
#include "acquisition/payloadwatch.h"
#include "acquisition/requestqueue.h"
#include "krdevice/krdevice.h"
#include "krdevice/krdeviceadapter.h"
#include "krdevice/krstream.h"
#include "krgui/krdisplaywnd.h"

#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace krviewer {

/// Who borrows the device.
enum class DeviceBorrower { Terminal, Bridges, CameraBridges };
inline constexpr std::size_t kDeviceBorrowers = 3;

/// Who borrows the camera's parameters.
enum class ParameterBorrower { Browser, Region, Control };
inline constexpr std::size_t kParameterBorrowers = 3;

struct AcquisitionOptions {
  std::uint64_t frameLimit = 0;       ///< Ends after so many frames, or when the camera is lost before; 0 never.
  bool startsAtOnce = true;           ///< Whether the camera streams as soon as it is open.
  bool hasTextOverlay = true;         ///< Whether rates, and why the camera was lost, are drawn over the picture.
  FrameSink* sink = nullptr;          ///< Hears of all from the first start on.
  NewestFrame* newestFrame = nullptr; ///< Keeps the whole frame that came last, and outlives the acquisition.
};

/// Streams one camera into one window, and lends its parameters and the device itself, whether it streams or not. A
/// lost camera's parameters are lent until it is back, when they are taken back and those of the new connection lent;
/// the device is taken back when it is lost. A camera that is back is set as it was, where it is not, and streams as it
/// did, or as was asked meanwhile. A stream whose frames have outgrown its buffers is stopped and started again.
///
/// What is asked for is carried out in its order, between two frames, and what ends a request is called by LookAgain.
/// A request that finds the camera lost, or ended, ends with ConnectionLost.
///
/// Thread: user interface, but for Stop, which may be called on any other while nothing else is asked; nothing is
/// borrowed by then, nor at destruction. GetProgress and GetFrames from any.
/// Ownership: borrows window and device information, which must outlive it.
class Acquisition : private KrDeviceEventSink {
public:
  Acquisition(KrDisplayWnd& aWindow, const KrDeviceInfo& aDevice, const AcquisitionOptions& aOptions = {});
  ~Acquisition() override;

  AcquisitionProgress GetProgress() const;
  /// Who hears of each frame, of starts and ends.
  FrameSinks& GetFrames() { return mFrames; }
  /// The parameters are lent to each borrower apart.
  Loan<KrGenParameterArray>& GetParameters(ParameterBorrower aBorrower) {
    return mParameters[static_cast<std::size_t>(aBorrower)];
  }
  /// The parameters of the camera's stream and of the connection to it; lent as long as the camera's own.
  Loan<KrGenParameterArray>& GetParameters(HostSide aSide) { return mHostParameters.Get(aSide); }
  /// The device is lent to each borrower apart.
  Loan<LentDevice>& GetDevice(DeviceBorrower aBorrower) { return mLoans[static_cast<std::size_t>(aBorrower)]; }

  /// Streams until it is stopped. One that streams already goes on, beyond the frame that StartSingle asked for. What
  /// a lost camera does when it is back is as this, StartSingle or StopStreaming said last.
  void Start(const RequestEnd& aThen = {});
  /// Streams until a whole frame has come. One that streams already ends with its next whole frame.
  void StartSingle(const RequestEnd& aThen = {});
  /// The camera sends no more, and stays open and lent. What does not stream stays as it is.
  void StopStreaming(const RequestEnd& aThen = {});
  /// Executes the camera's TriggerSoftware. NotSupported for a camera that has none.
  void Trigger(const RequestEnd& aThen = {});
  /// Has something done with the camera's parameters. It ends with what the work returned or, where that is OK, with
  /// why the stream could not be started again after it.
  void Do(DeviceWork aWork);
  /// What the camera is set to, as far as is known, in the description's order; what it was set to while it is lost.
  /// Thread: any.
  std::vector<KeptSetting> GetSettings() const { return mKept.Get(); }
  /// Frames are not displayed while the window cannot be seen; all else goes on. When it can be seen again it shows
  /// the latest one. They are wanted at first.
  void SetPictureWanted(bool aIsWanted);
  /// Calls whoever is to hear how a request ended; to be called often.
  void LookAgain();

  /// Ends the thread and gives the camera back.
  void Stop();

private:
  /// What the camera is to do, now or when it is back.
  enum class Wanted { Nothing, Frames, SingleFrame };

  void OnDeviceLost(KrDevice* aDevice, const KrResult& aReason) override;
  void OnDeviceBack(KrDevice* aDevice) override;

  // The thread's way from one connection to the next.
  void Run(std::stop_token aStop);
  KrResult ServeConnection(std::stop_token aStop);
  KrResult OpenDevice();
  void CloseDevice();
  KrResult ReturnSettings(std::stop_token aStop);
  KrResult Serve(std::stop_token aStop);
  bool IsAwaited(const std::stop_token& aStop) const;
  void Pause(std::stop_token aStop);
  void AwaitReturn(std::stop_token aStop);
  KrResult AwaitRequest(std::stop_token aStop);
  void LendDevice(KrDevice& aDevice, KrStream& aStream);
  void TakeBackDevice();

  // What it is asked to do.
  void Ask(AcquisitionRequest aRequest);
  void WakeStream();
  void CarryOutRequests();
  KrResult CarryOut(const AcquisitionRequest& aRequest);
  KrResult Want(Wanted aWanted);
  KrResult DoWork(const DeviceWork& aWork);

  // The stream and its frames.
  KrResult StartStream();
  void RestartWhereFramesHaveGrown();
  void StopStream(const KrResult& aReason);
  KrResult TakeFrame();
  void PassOn(KrBuffer& aFrame);
  FrameMeter GetMeter() const;
  KrStreamStatistics CountStatistics() const;
  void SetState(AcquisitionState aState, const KrResult& aResult);
  bool IsLimitReached() const;

  const KrDeviceInfo& mDeviceInfo;
  const AcquisitionOptions mOptions;
  std::array<Loan<KrGenParameterArray>, kParameterBorrowers> mParameters;
  std::array<Loan<LentDevice>, kDeviceBorrowers> mLoans;
  HostParameters mHostParameters;
  FrameSinks mFrames;
  RequestQueue mRequests;
  FramePicture mPicture;

  // The thread's own while it runs.
  std::unique_ptr<KrDevice> mDevice;
  std::optional<KrStream> mStream; ///< Of mDevice; stays, running or not, as long as the device is lent.
  std::optional<KrDeviceAdapter> mAdapter;
  std::optional<LentDevice> mLent; ///< What is lent of them.
  KeptSettings mKept;
  DeviceThermometer mThermometer;
  PayloadWatch mPayload;
  Wanted mWanted;
  bool mIsServing = false;          ///< Whether requests can be carried out on the device.
  bool mHasServed = false;          ///< Whether there was ever a connection.
  KrStreamStatistics mEndedStreams; ///< The counters of the streams that are over.

  std::mutex mWakeMutex;      ///< Guards mWoken, and is held while that is woken, which waits for nothing.
  KrStream* mWoken = nullptr; ///< The stream whose waits a request ends.

  mutable std::mutex mMutex; ///< Guards the progress, the rates, loss and return.
  std::condition_variable_any mChanged;
  AcquisitionProgress mProgress; ///< Without what is asked for when it is copied.
  FrameMeter mMeter;
  bool mIsBack = false;
  std::optional<KrResult> mLoss; ///< Why the device of the connection was lost.
  std::jthread mThread;          ///< Last, so that it ends before what it uses.
};

} // namespace krviewer
