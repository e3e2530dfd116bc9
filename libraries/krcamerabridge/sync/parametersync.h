#pragma once
// Carries the camera's size, offsets and pixel format to the device whenever they change. How they are set is left to
// CarryImageFormat.

#include "krbase/krstring.h"
#include "krgenicam/krgeneventsink.h"
#include "krgenicam/krgenparameterarray.h"
#include "line/borroweddevice.h"

#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <thread>

class KrStream;

namespace krcamerabridge {

/// Works on a thread of its own while a camera is attached: neither who changes a parameter nor the camera's
/// notifications wait for the device.
///
/// Thread: any; Attach and Detach one at a time. Ownership: borrows device and stream, and the camera while it is
/// attached.
class ParameterSync final : public KrGenEventSink {
public:
  /// A null stream never runs.
  ParameterSync(const BorrowedDevice& aDevice, KrStream* aStream);
  /// Detaches.
  ~ParameterSync() override;
  ParameterSync(const ParameterSync&) = delete;
  ParameterSync& operator=(const ParameterSync&) = delete;

  /// A camera that has just been connected. SystemError where the host has no thread for it: it is detached then.
  KrResult Attach(KrGenParameterArray& aCamera);
  /// The camera ends: its parameters are closed, so that no access waits, and not touched any more. Without a camera
  /// it does nothing.
  void Detach();

  bool IsOn() const;
  void SetOn(bool aIsOn);
  /// The source of the device that the camera feeds; empty for the selected one.
  KrString GetSource() const;
  void SetSource(const KrString& aSource);
  /// What is being done or waited for, or could not be carried last time; empty where all is well.
  KrString GetText() const;

  void OnParameterUpdate(KrGenParameter* aParameter) override;

private:
  bool IsStreaming() const;
  void Work(const std::stop_token& aStop);
  void AwaitStreamEnd(std::unique_lock<std::mutex>& aLock, const std::stop_token& aStop);
  /// aIsDone is false where a stream came between.
  KrString Carry(const KrString& aSource, const std::stop_token& aStop, bool& aIsDone);

  const BorrowedDevice mDevice;
  KrStream* const mStream;
  KrGenParameterArray* mCamera = nullptr; // Set while the thread is none.

  mutable std::mutex mMutex; // Guards the members from here to the thread.
  std::condition_variable_any mChanged;
  bool mIsAttached = false;
  bool mIsOn = false;
  bool mIsDue = false;
  bool mIsAtWork = false;
  KrString mSource;
  KrString mText;

  std::jthread mThread; // None where the host had none.
};

} // namespace krcamerabridge
