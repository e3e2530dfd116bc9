#pragma once
// Moves the bytes of a bridge, each direction on a thread of its own that reads at one side and writes at the other.
// How a side comes back that was lost is left to it: IHostEnd and DeviceLine.

#include "bridge/backoff.h"
#include "bridge/bridgestatus.h"
#include "bridge/deviceline.h"
#include "bridge/dropqueue.h"
#include "bridge/ihostend.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <stop_token>
#include <thread>
#include <vector>

namespace krserial {

/// What a direction holds is one block; what the device sends while the host's port is lost is held as far as it fits
/// into another.
///
/// Thread: construction and destruction on any, one at a time. Ownership: borrows the sides.
class Pump {
public:
  static constexpr std::size_t kBlockSize = std::size_t{64} * 1024;

  /// Starts the threads; std::system_error where the system has none. When the host's port is back, aPrepare is called
  /// on one of them before anything is moved.
  Pump(IHostEnd& aEnd, DeviceLine& aLine, BridgeStatus& aStatus, std::function<void()> aPrepare);
  /// Ends them at once: what they hold is dropped.
  ~Pump();
  /// Begins that, and does not wait. Thread: any.
  void RequestStop();
  Pump(const Pump&) = delete;
  Pump& operator=(const Pump&) = delete;

private:
  // Bytes from the host that the device has not taken yet.
  struct Block {
    std::vector<std::uint8_t> bytes = std::vector<std::uint8_t>(kBlockSize);
    std::size_t begin = 0;
    std::size_t end = 0;
  };

  void MoveToDevice(const std::stop_token& aStop);
  void MoveRound(Block& aBlock, const std::stop_token& aRound);
  void MoveToHost(const std::stop_token& aStop);
  void GiveWaiting(std::vector<std::uint8_t>& aBuffer, const std::stop_token& aRound);
  std::size_t Give(const std::uint8_t* aBytes, std::size_t aSize, const std::stop_token& aRound);

  std::stop_token GetRound() const;
  void EndRound(const std::stop_token& aRound, const KrResult& aLoss);
  void RecoverPort(const std::stop_token& aStop);
  void Stop();

  IHostEnd& mEnd;
  DeviceLine& mLine;
  BridgeStatus& mStatus;
  const std::function<void()> mPrepare;
  Backoff mBackoff;
  DropQueue mWaiting{kBlockSize}; // From the device, for a port that is lost. Of the thread to the host.

  mutable std::mutex mMutex; // Guards the members from here on.
  std::stop_source mRound;   // Lasts from having the host's port to its loss, which both threads hear of by it.
  bool mIsOver = false;

  std::jthread mToDevice;
  std::jthread mToHost;
};

} // namespace krserial
