#pragma once
// An open device whose frames and loss a test decides.

#include "krsystem/idevicelink.h"
#include "krsystem/krdeviceinfo.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <mutex>

/// Fills no buffer by itself: Push hands the next queued one out.
class FakeBufferSource : public krsystem::IBufferSource {
public:
  std::uint64_t payloadBytes = 64;
  KrResult payloadResult;
  KrResult startResult;
  krsystem::SourceStatistics statistics;

  KrResult GetPayloadSize(std::uint64_t& aBytes) override {
    aBytes = payloadBytes;
    return payloadResult;
  }
  KrResult Queue(KrBuffer* aBuffer) override {
    const std::lock_guard lock(mMutex);
    if (mLost)
      return KrResult::Code::WrongState;
    mFree.push_back(aBuffer);
    return {};
  }
  KrResult Start() override {
    const std::lock_guard lock(mMutex);
    mRunning = startResult.IsOK();
    return startResult;
  }
  KrResult Retrieve(KrBuffer*& aBuffer, std::uint32_t aTimeoutMs, const std::stop_token& aCancel) override {
    std::unique_lock lock(mMutex);
    ++mWaiting;
    mChanged.notify_all();
    mChanged.wait_for(lock, aCancel, std::chrono::milliseconds(aTimeoutMs),
                      [this] { return mLost || !mRunning || !mFilled.empty(); });
    --mWaiting;
    if (mLost)
      return KrResult::Code::ConnectionLost;
    if (!mRunning)
      return KrResult::Code::Aborted;
    if (mFilled.empty())
      return aCancel.stop_requested() ? KrResult::Code::Aborted : KrResult::Code::TimeLimitExceeded;
    aBuffer = mFilled.front();
    mFilled.pop_front();
    return {};
  }
  void Stop() override {
    const std::lock_guard lock(mMutex);
    mRunning = false;
    mFree.clear();
    mFilled.clear();
    mChanged.notify_all();
  }
  krsystem::SourceStatistics GetStatistics() const override {
    const std::lock_guard lock(mMutex);
    return statistics;
  }

  /// Fills the next free buffer; false where there is none.
  bool Push(std::uint64_t aFrameID, KrBufferStatus aStatus = KrBufferStatus::Complete,
            KrPayloadType aType = KrPayloadType::Image) {
    const std::lock_guard lock(mMutex);
    if (mFree.empty())
      return false;
    mFree.front()->SetFrameID(aFrameID);
    mFree.front()->SetStatus(aStatus);
    mFree.front()->SetPayloadType(aType);
    mFilled.push_back(mFree.front());
    mFree.pop_front();
    ++statistics.received;
    mChanged.notify_all();
    return true;
  }
  /// Gives a buffer out that was not queued.
  void PushForeign(KrBuffer* aBuffer) {
    const std::lock_guard lock(mMutex);
    mFilled.push_back(aBuffer);
    mChanged.notify_all();
  }
  /// Drops a frame, as for want of a buffer.
  void Discard() {
    const std::lock_guard lock(mMutex);
    ++statistics.discarded;
  }
  void Lose() {
    const std::lock_guard lock(mMutex);
    mLost = true;
    mChanged.notify_all();
  }
  void WaitForWaiters(int aCount) {
    std::unique_lock lock(mMutex);
    mChanged.wait(lock, [&] { return mWaiting >= aCount; });
  }
  std::size_t CountHeldBuffers() const {
    const std::lock_guard lock(mMutex);
    return mFree.size() + mFilled.size();
  }
  std::size_t GetSmallestBuffer() const {
    const std::lock_guard lock(mMutex);
    std::size_t smallest = SIZE_MAX;
    for (const KrBuffer* buffer : mFree)
      smallest = std::min(smallest, buffer->GetSize());
    return smallest;
  }

private:
  mutable std::mutex mMutex; // Guards the members from here on.
  std::condition_variable_any mChanged;
  std::deque<KrBuffer*> mFree;
  std::deque<KrBuffer*> mFilled;
  bool mRunning = false;
  bool mLost = false;
  int mWaiting = 0;
};

/// Has the stream channel 0; reports loss and return from the thread of whoever orders them.
class FakeLink : public krsystem::IDeviceLink, public IKrRegisterPort {
public:
  explicit FakeLink(FakeBufferSource* aSource = nullptr) : mSource(aSource) {}

  IKrRegisterPort& GetRegisterPort() override { return *this; }
  krsystem::IBufferSource* GetBufferSource(std::uint32_t aChannel) override {
    return aChannel == 0 ? mSource : nullptr;
  }
  KrGenBootstrap GetBootstrap() const override { return KrGenBootstrap::GigEVision; }
  std::shared_ptr<krsystem::IByteChannel> GetByteChannel(std::uint32_t aNumber) override {
    const auto channel = byteChannels.find(aNumber);
    return channel == byteChannels.end() ? nullptr : channel->second;
  }
  void GiveBackControl() override {
    if (onGiveBack)
      onGiveBack();
  }
  bool IsConnected() const override { return connected; }
  void SetSink(krsystem::IDeviceLinkSink* aSink) override {
    if (onSetSink)
      onSetSink(aSink);
    sink = aSink;
  }
  KrResult Read(std::uint64_t, void*, std::size_t, std::uint32_t, const std::stop_token&) override {
    return KrResult::Code::NotSupported;
  }
  KrResult Write(std::uint64_t, const void*, std::size_t, std::uint32_t, const std::stop_token&) override {
    return KrResult::Code::NotSupported;
  }

  krsystem::IDeviceLinkSink* sink = nullptr;
  bool connected = true;
  std::map<std::uint32_t, std::shared_ptr<krsystem::IByteChannel>> byteChannels;
  std::function<void()> onGiveBack;
  std::function<void(krsystem::IDeviceLinkSink*)> onSetSink; // Called while the former sink is still there.

private:
  FakeBufferSource* mSource;
};

/// What is known of a device that no test looks for.
inline krsystem::DeviceFields MakeDeviceFields(const KrString& aModelName = "Model X") {
  krsystem::DeviceFields fields;
  fields.uniqueID = "00:11:22:33:44:55";
  fields.displayID = "Camera";
  fields.modelName = aModelName;
  return fields;
}
