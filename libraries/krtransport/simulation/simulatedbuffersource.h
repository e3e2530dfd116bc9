#pragma once
// The stream channel of a simulated camera: makes frames at the camera's frame rate into the buffers that are free.

#include "krsystem/idevicelink.h"
#include "simulation/framewriter.h"
#include "simulation/simulatedcamera.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>

namespace krtransport {

/// Threads and ownership as IBufferSource; frames are made in one thread, from Start to Stop.
class SimulatedBufferSource final : public krsystem::IBufferSource {
public:
  /// aOwner is the link that is attached to the camera.
  SimulatedBufferSource(SimulatedCamera& aCamera, const ICameraListener& aOwner);
  ~SimulatedBufferSource() override;

  KrResult GetPayloadSize(std::uint64_t& aBytes) override;
  KrResult Queue(KrBuffer* aBuffer) override;
  KrResult Start() override;
  KrResult Retrieve(KrBuffer*& aBuffer, std::uint32_t aTimeoutMs, const std::stop_token& aCancel) override;
  void Stop() override;
  krsystem::SourceStatistics GetStatistics() const override;
  krsystem::SourceBuffers CountBuffers() const override;
  /// A receiver's resend and retention, for packets that are ordered to be late, and what was ordered to be lost.
  krsystem::HostFeatures ListFeatures() override;

  /// The camera is lost for good as far as this source goes, which tells the reason from now on. Any thread.
  void SetLost(const KrResult& aReason);
  /// The camera's registers changed. Any thread.
  void SetChanged();

private:
  void StopFrames();
  void MakeFrames();
  /// What changed up to here is seen when the next exposure is asked for. False when no more frames are to be made.
  bool AcknowledgeChanges();
  bool WaitUntilExposed(const std::optional<Exposure>& aExposure);
  void WaitForResend(std::uint64_t aUntilNs);
  void MakeFrame(const FrameSettings& aSettings, std::uint64_t aFrameID);
  KrBuffer* TakeFree();
  std::optional<PacketFault> TakePacketFault();
  void Deliver(KrBuffer* aBuffer, const PacketCounts& aPackets);

  SimulatedCamera& mCamera;
  const ICameraListener& mOwner;
  std::atomic<bool> mIsResendEnabled = true;
  std::atomic<std::uint32_t> mRetentionUs = 60'000'000;
  std::atomic<std::uint64_t> mDropped = 0; // Frames of the running stream, or the last one, that orders dropped.
  std::mutex mStartStopMutex; // Keeps starting and stopping in one order; control may be given back on another thread.
  FrameWriter mWriter;        // Used by the thread alone.

  mutable std::mutex mMutex;                  // Guards the members from here to mStatistics.
  std::condition_variable mWake;              // For the thread: stop, loss, changed registers.
  std::condition_variable_any mFilledOrEnded; // For those who wait for a frame.
  std::deque<KrBuffer*> mFree;
  std::deque<KrBuffer*> mFilled;
  bool mRunning = false;
  bool mStopping = false;
  std::optional<KrResult> mLost; ///< Why the camera is gone, if it is.
  bool mChanged = false;
  krsystem::SourceStatistics mStatistics;
  std::thread mThread; // Guarded by mStartStopMutex.
};

} // namespace krtransport
