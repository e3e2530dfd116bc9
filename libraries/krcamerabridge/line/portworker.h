#pragma once
// The register port of a camera behind a slow line. To use it, implement ILineDevice with calls that simply take their
// time, and make a PortWorker over it: that is the IKrRegisterPort, with limits, cancelling, silence and threads as its
// contract has them. The camera is asked on one thread alone. End comes before whatever the device stands on is closed.

#include "krbase/krresult.h"
#include "krbase/krwaitclock.h"
#include "krgenicam/ikrregisterport.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <stop_token>
#include <thread>
#include <vector>

namespace krcamerabridge {

/// Accesses to a camera, of any length up to 16 MiB, that take as long as the line needs.
///
/// Every call ends soon with Aborted when its token is stopped: whoever asked has left. What the camera still sends to
/// that, the next call has to bear with. TimeLimitExceeded says that the camera did not answer, ConnectionLost that it
/// cannot come back; other results are given to who asked.
///
/// Thread: the worker's alone. Ownership: outlives the worker.
class ILineDevice {
public:
  virtual ~ILineDevice() = default;

  virtual KrResult Read(std::uint64_t aAddress, std::span<std::uint8_t> aData, const std::stop_token& aStop) = 0;
  virtual KrResult Write(std::uint64_t aAddress, std::span<const std::uint8_t> aData, const std::stop_token& aStop) = 0;
  /// Asks for a sign of life, and sets up again what the camera has forgotten in between. Any result but
  /// TimeLimitExceeded says that the camera answers.
  virtual KrResult Probe(const std::stop_token& aStop) = 0;
};

/// How long a worker waits, in milliseconds.
struct PortWorkerTimes {
  std::uint32_t keepAliveMs = 0; ///< The camera is probed when nobody has asked it anything for so long; 0 for never.
  std::uint32_t pauseMs = 500;   ///< Between two probes of a camera that keeps silent.
};

/// Thread: any, but for destruction, which waits for the call that runs. Ownership: borrows the device.
class PortWorker final : public IKrRegisterPort {
public:
  explicit PortWorker(ILineDevice& aDevice, const PortWorkerTimes& aTimes = {},
                      std::shared_ptr<KrWaitClock> aClock = std::make_shared<KrWaitClock>());
  /// Ends it.
  ~PortWorker() override;
  PortWorker(const PortWorker&) = delete;
  PortWorker& operator=(const PortWorker&) = delete;

  /// The camera counts as silent when an access was not done in time that had at least half of its time for itself; one
  /// that waited longer for those before it fails alone.
  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel = {}) override;
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel = {}) override;

  /// Ends the accesses that wait, and all later ones, with Aborted. The device may be called until Stop or destruction.
  void End();
  /// The same, and waits for the call that runs: no other comes. Not from two threads at once.
  void Stop();

private:
  struct Access {
    bool isWrite;
    std::uint64_t address;
    std::vector<std::uint8_t> bytes;
    std::stop_source stop = {};
    std::optional<KrWaitClock::TimePoint> begun = {};
    bool isDone = false;
    KrResult result = {};
  };

  KrResult Run(const std::shared_ptr<Access>& aAccess, std::uint32_t aTimeoutMs, const std::stop_token& aCancel);
  KrResult GetRefusal() const;
  void FailWaiting(const KrResult& aResult);
  void Note(const KrResult& aResult);
  void Work();
  bool AwaitWork(std::unique_lock<std::mutex>& aLock);
  void Probe(std::unique_lock<std::mutex>& aLock);
  void DoNext(std::unique_lock<std::mutex>& aLock);

  ILineDevice& mDevice;
  const PortWorkerTimes mTimes;
  const std::shared_ptr<KrWaitClock> mClock;
  std::stop_source mEnd;

  std::mutex mMutex; // Guards the members from here on but the thread, and all but the bytes of every access.
  std::condition_variable_any mWork;
  std::condition_variable_any mDone;
  std::deque<std::shared_ptr<Access>> mWaiting;
  bool mIsSilent = false;
  KrResult mLoss; // Not OK once the camera is gone.

  std::thread mThread;
};

} // namespace krcamerabridge
