#pragma once
// Looks for a camera that was lost, on all networks and buses and by who it is, for as long as it is not found: it may
// be back at another address. Opening it is left to the acquisition.

#include "acquisition/camerainfo.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <stop_token>
#include <thread>

namespace krviewer {

/// Where the camera answers now; null where it does not. One that answers in several ways is had where it can be
/// reached. Takes a second for all networks and, where it is not found there, another one for the address that it had.
/// Where aStop asks for the end, the former is cut short and the latter left out, but not once it has begun. Thread:
/// any.
CameraInfo LookForCamera(const KrDeviceInfo& aCamera, const std::stop_token& aStop);
/// Whether a camera that was found can be opened where it answers: where it was before, or where this host says so.
bool CanBeReached(const KrDeviceInfo& aFound, const KrDeviceInfo& aBefore);

/// One search after the other. Thread: one, but for what hears. Ownership: shares what it was given until it ends.
class ReturnSearch {
public:
  /// aSeen hears on the search's thread of the camera each time it answers, whether or not it can be reached there.
  explicit ReturnSearch(std::function<void(const CameraInfo&)> aSeen) : mSeen(std::move(aSeen)) {}
  ~ReturnSearch() { AwaitEnd(); }
  ReturnSearch(const ReturnSearch&) = delete;
  ReturnSearch& operator=(const ReturnSearch&) = delete;

  /// Looks for this camera every now and then. Nothing where one is looked for already.
  void Begin(const CameraInfo& aCamera);
  /// Looks no more, without waiting for the look that runs, which may be heard of still.
  void End();
  /// Ends, and waits for that.
  void AwaitEnd();

private:
  void Run(const std::stop_token& aStop, const KrDeviceInfo& aCamera);

  const std::function<void(const CameraInfo&)> mSeen;
  std::mutex mMutex;                  ///< Guards nothing but the pause.
  std::condition_variable_any mNever; ///< Ends a pause when the thread is to stop.
  std::jthread mThread;
};

} // namespace krviewer
