#pragma once
// The thread that takes frames from a camera and hands them to a display window and to whoever hears of them, through
// loss and return of the camera, as it is asked to. What the user sees beside the picture is left to the viewer.

#include "acquisition/acquisitionprogress.h"
#include "acquisition/camerainfo.h"
#include "acquisition/devicelending.h"
#include "acquisition/frameintake.h"
#include "acquisition/requestqueue.h"
#include "acquisition/returnsearch.h"
#include "krdevice/krdevice.h"
#include "krgui/krdisplaywnd.h"

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace krviewer {

struct AcquisitionOptions {
  std::uint64_t frameLimit = 0;       ///< Ends after so many frames, or when the camera is lost before; 0 never.
  bool startsAtOnce = true;           ///< Whether the camera streams as soon as it is open.
  bool hasTextOverlay = true;         ///< Whether rates, and why the camera was lost, are drawn over the picture.
  HostSettings hostSettings = {};     ///< What the host's side of the camera is set to before it streams.
  FrameSink* sink = nullptr;          ///< Hears of all from the first start on.
  NewestFrame* newestFrame = nullptr; ///< Keeps the whole frame that came last, and outlives the acquisition.
};

/// Streams one camera into one window, and lends its parameters and the device itself, whether it streams or not. A
/// camera that does not answer where it was found is looked for at other addresses. A lost camera is looked for until
/// it is back, wherever that is: nothing else that answers at its address is taken for it. Its parameters are lent
/// until then, when they are taken back and those of the new connection lent; the device is taken back when it is lost.
/// A camera that is back is set as it was, where it is not, and streams as it did, or as was asked meanwhile. A stream
/// whose frames have outgrown its buffers is stopped and started again.
///
/// What is asked for is carried out in its order, between two frames, and what ends a request is called by LookAgain.
/// A request that finds the camera lost, or ended, ends with ConnectionLost.
///
/// Thread: user interface, but for Stop, which may be called on any other while nothing else is asked; nothing is
/// borrowed by then, nor at destruction. GetProgress and GetFrames from any.
/// Ownership: borrows the window, which must outlive it; shares device information.
class Acquisition : private KrDeviceEventSink {
public:
  Acquisition(KrDisplayWnd& aWindow, CameraInfo aCamera, const AcquisitionOptions& aOptions = {});
  ~Acquisition() override;

  AcquisitionProgress GetProgress() const;
  /// Who hears of each frame, of starts and ends.
  FrameSinks& GetFrames() { return mIntake.GetSinks(); }
  /// The parameters are lent to each borrower apart.
  Loan<KrGenParameterArray>& GetParameters(ParameterBorrower aBorrower) { return mLending.Get(aBorrower); }
  /// The parameters of the camera's stream and of the connection to it; lent as long as the camera's own.
  Loan<KrGenParameterArray>& GetParameters(HostSide aSide) { return mLending.Get(aSide); }
  /// The device is lent to each borrower apart.
  Loan<LentDevice>& GetDevice(DeviceBorrower aBorrower) { return mLending.Get(aBorrower); }

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
  /// why the stream could not be started again after it. What it has set is among GetSettings then, but for what the
  /// parameters do not remember, which is read soon.
  void Do(DeviceWork aWork);
  /// What the camera is set to, as far as is known, in the description's order; what it was set to while it is lost.
  /// Thread: any.
  std::vector<KeptSetting> GetSettings() const { return mLending.GetSettings().Get(); }
  /// What was set of the host's side when it was given up the last time: all of it once Stop has returned.
  /// Thread: any.
  HostSettings GetHostSettings() const { return mLending.GetHostSettings(); }
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
  void OnCameraSeen(const CameraInfo& aCamera);

  // The thread's way from one connection to the next.
  void Run(std::stop_token aStop);
  KrResult ServeConnection(std::stop_token aStop);
  KrResult BeginConnection(std::stop_token aStop);
  KrResult OpenDevice(std::stop_token aStop);
  KrResult OpenAt(const CameraInfo& aCamera);
  void CloseDevice();
  KrResult ReturnSettings(std::stop_token aStop);
  KrResult Serve(std::stop_token aStop);
  bool IsAwaited(const std::stop_token& aStop) const;
  void Pause(std::stop_token aStop);
  void AwaitReturn(const KrResult& aLoss, std::stop_token aStop);
  KrResult AwaitRequest(std::stop_token aStop);
  void LendDevice();

  // What it is asked to do.
  void Ask(AcquisitionRequest aRequest);
  void CarryOutRequests();
  KrResult CarryOut(const AcquisitionRequest& aRequest);
  KrResult Want(Wanted aWanted);
  KrResult DoWork(const DeviceWork& aWork);

  KrResult StartStream();
  void RestartWhereFramesHaveGrown();
  KrResult TakeFrame();
  KrString GetName() const;
  void SetState(AcquisitionState aState, const KrResult& aResult);
  bool IsLimitReached() const;

  const AcquisitionOptions mOptions;
  RequestQueue mRequests;
  FrameIntake mIntake;

  // The thread's own while it runs.
  std::unique_ptr<KrDevice> mDevice;
  DeviceLending mLending;
  Wanted mWanted;
  bool mIsServing = false; ///< Whether requests can be carried out on the device.
  bool mHasServed = false; ///< Whether there was ever a connection.
  bool mIsRefused = false; ///< Whether the device was had the last time and could not be started.

  mutable std::mutex mMutex; ///< Guards the progress, loss and return.
  std::condition_variable_any mChanged;
  AcquisitionProgress mProgress; ///< Without what is asked for when it is copied.
  bool mIsBack = false;
  CameraInfo mSeen;              ///< Where a lost camera was found since it was tried last.
  std::optional<KrResult> mLoss; ///< Why the device of the connection was lost.

  ReturnSearch mSearch;
  std::jthread mThread; ///< Last, so that it ends before what it uses.
};

} // namespace krviewer
