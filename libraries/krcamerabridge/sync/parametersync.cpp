#include "sync/parametersync.h"

#include "krbase/krlogger.h"
#include "krbase/krnamedmutexes.h"
#include "krdevice/krdevice.h"
#include "krdevice/krstream.h"
#include "krgenicam/krgenaccessstop.h"
#include "sync/imageformat.h"

#include <chrono>
#include <memory>
#include <system_error>

namespace krcamerabridge {

namespace {

// How often a stream is asked whether it runs still, which nobody tells.
constexpr std::chrono::milliseconds kStreamPeriod{100};

KrString Join(const KrStringList& aLines) {
  KrString text;
  for (const KrString& line : aLines)
    text += text.IsEmpty() ? line : " " + line;
  return text;
}

// The cameras of several bridges may feed one device, whose selector serves one at a time.
std::shared_ptr<std::mutex> FindSelectorTurn(const KrDevice& aDevice) {
  // Never destroyed: threads may still ask while the process ends.
  static KrNamedMutexes& mutexes = *new KrNamedMutexes;
  return mutexes.Of(aDevice.GetUniqueID().ToUtf8());
}

} // namespace

ParameterSync::ParameterSync(const BorrowedDevice& aDevice, KrStream* aStream) : mDevice(aDevice), mStream(aStream) {}

ParameterSync::~ParameterSync() {
  Detach();
}

KrResult ParameterSync::Attach(KrGenParameterArray& aCamera) {
  mCamera = &aCamera;
  {
    const std::lock_guard lock(mMutex);
    mIsAttached = true;
    mIsDue = true;
    mText = {};
  }
  KrResult result;
  try {
    mThread = std::jthread([this](const std::stop_token& aStop) { Work(aStop); });
  } catch (const std::system_error& error) {
    result = {KrResult::Code::SystemError,
              KrString("The host has no thread for the camera; end other programs: ") + error.what()};
  }
  for (const char* const name : kCarriedFeatures)
    if (KrGenParameter* const parameter = aCamera.Get(name); parameter && result.IsOK())
      result = parameter->RegisterEventSink(this);
  if (!result.IsOK())
    Detach();
  return result;
}

void ParameterSync::Detach() {
  if (!mCamera)
    return;
  for (const char* const name : kCarriedFeatures)
    if (KrGenParameter* const parameter = mCamera->Get(name))
      (void)parameter->UnregisterEventSink(this); // It is registered since Attach, unless that failed.
  mThread.request_stop();
  mCamera->Close();
  if (mThread.joinable())
    mThread.join();
  mCamera = nullptr;
  const std::lock_guard lock(mMutex);
  mIsAttached = false;
  mText = {};
}

bool ParameterSync::IsOn() const {
  const std::lock_guard lock(mMutex);
  return mIsOn;
}

void ParameterSync::SetOn(bool aIsOn) {
  const std::lock_guard lock(mMutex);
  mIsDue = mIsDue || (aIsOn && !mIsOn);
  mIsOn = aIsOn;
  if (!aIsOn)
    mText = {};
  mChanged.notify_all();
}

KrString ParameterSync::GetSource() const {
  const std::lock_guard lock(mMutex);
  return mSource;
}

void ParameterSync::SetSource(const KrString& aSource) {
  const std::lock_guard lock(mMutex);
  mIsDue = mIsDue || aSource != mSource;
  mSource = aSource;
  mChanged.notify_all();
}

KrString ParameterSync::GetText() const {
  const std::lock_guard lock(mMutex);
  const bool isUnderWay = mIsAttached && mIsOn && (mIsDue || mIsAtWork);
  return isUnderWay && mText.IsEmpty() ? "The camera's size and pixel format are being set on the device." : mText;
}

void ParameterSync::OnParameterUpdate(KrGenParameter*) {
  const std::lock_guard lock(mMutex);
  mIsDue = true;
  mChanged.notify_all();
}

bool ParameterSync::IsStreaming() const {
  return mStream && mStream->IsRunning();
}

void ParameterSync::Work(const std::stop_token& aStop) {
  std::unique_lock lock(mMutex);
  while (mChanged.wait(lock, aStop, [this] { return mIsOn && mIsDue; }) && !aStop.stop_requested()) {
    AwaitStreamEnd(lock, aStop);
    if (aStop.stop_requested() || !mIsOn)
      continue;
    mIsDue = false;
    mIsAtWork = true;
    const KrString source = mSource;
    lock.unlock();
    bool isDone = true;
    const KrString text = Carry(source, aStop, isDone);
    // What a stream has locked in between, or was left alone for it, is done when it stops.
    const bool isLocked = !isDone || (!text.IsEmpty() && IsStreaming());
    if (!text.IsEmpty())
      KrLogger("KrCameraBridge").Log(KrLogLevel::Warning, {"ParameterSync::Work", "parametersync"}, text);
    lock.lock();
    mIsAtWork = false;
    mIsDue = mIsDue || isLocked;
    mText = mIsOn ? text : KrString();
  }
}

void ParameterSync::AwaitStreamEnd(std::unique_lock<std::mutex>& aLock, const std::stop_token& aStop) {
  while (mIsOn && !aStop.stop_requested()) {
    aLock.unlock();
    const bool isStreaming = IsStreaming();
    aLock.lock();
    if (!isStreaming)
      return;
    if (mIsOn)
      mText = "The camera's size and pixel format are set on the device when its stream has stopped.";
    (void)mChanged.wait_for(aLock, aStop, kStreamPeriod, [this] { return !mIsOn; });
  }
}

KrString ParameterSync::Carry(const KrString& aSource, const std::stop_token& aStop, bool& aIsDone) {
  // Neither camera nor device is waited for when this is to end.
  const KrGenAccessStop end(aStop);
  ImageFormat format;
  const KrResult read = ReadImageFormat(*mCamera, format);
  if (aStop.stop_requested())
    return {};
  if (!read.IsOK())
    return "The camera's size and pixel format could not be read: " + read.GetDescription();
  KrStringList problems;
  const KrResult result = mDevice.Use([&](KrDevice& aDevice) -> KrResult {
    KrGenParameterArray* parameters = nullptr;
    if (KrResult got = aDevice.GetParameters(parameters); !got.IsOK())
      return got;
    const std::shared_ptr<std::mutex> turn = FindSelectorTurn(aDevice);
    const std::lock_guard lock(*turn);
    // A stream may have been started while the camera was asked.
    aIsDone = CarryImageFormat(
        format, *parameters, aSource, [&] { return !aStop.stop_requested() && !IsStreaming(); }, problems);
    return {};
  });
  if (aStop.stop_requested())
    return {};
  if (!result.IsOK())
    problems.Add("The camera's size and pixel format could not be set on the device: " + result.GetDescription());
  return Join(problems);
}

} // namespace krcamerabridge
