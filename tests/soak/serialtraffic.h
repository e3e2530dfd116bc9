#pragma once
// Bytes that go to the end of a serial line and come back, again and again, and are compared. What the line is, is left
// to whoever exchanges a block.

#include "soakdice.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <stop_token>
#include <string>
#include <thread>

/// Thread: one; blocks are exchanged on a thread of its own.
class SerialTraffic {
public:
  /// Sends a block and gives what has come back, as many bytes; less when it was stopped, or none came for a minute.
  using Exchange = std::function<std::string(const std::string& aBlock, const std::stop_token& aStop)>;

  SerialTraffic(std::uint32_t aSeed, int aMostBytes, Exchange aExchange);
  ~SerialTraffic();

  void Start();
  /// Ends when the block that is under way has come back.
  void Finish();
  /// Ends at once; what is under way is lost.
  void Abandon();

  std::uint64_t GetBytes() const { return mBytes; }
  /// Blocks that did not come back as they were sent.
  int GetFailures() const { return mFailures; }

private:
  void Run(const std::stop_token& aStop);

  const int mMostBytes;
  const Exchange mExchange;
  SoakDice mDice; // The thread's while that runs.
  std::atomic<std::uint64_t> mBytes = 0;
  std::atomic<int> mFailures = 0;
  std::atomic<bool> mIsLast = false;
  std::jthread mThread;
};
