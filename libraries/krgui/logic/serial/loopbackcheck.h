#pragma once
// What a file transfer expects to come back, and what came.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <span>

namespace krgui {

/// The validation of a loopback. Outstanding is counted by two threads without a common lock on purpose: it is
/// advisory.
///
/// Thread: any.
class LoopbackCheck {
public:
  /// Of a file that nothing comes back of no more is kept; what is beyond it stays outstanding.
  static constexpr std::size_t kMostExpected = std::size_t{4} << 20;

  /// A transfer begins: nothing is outstanding. What is expected stays.
  void Begin() { mOutstanding = 0; }
  void Expect(std::span<const std::uint8_t> aBytes);
  /// Bytes went out.
  void AddWritten(std::uint64_t aBytes) { mOutstanding += aBytes; }
  /// Matches received bytes with what is expected, in order: each expected byte is taken off, and where it equals the
  /// received one less is outstanding and the next received byte is taken.
  void Match(std::span<const std::uint8_t> aReceived);
  /// A transfer has ended: nothing is outstanding nor expected.
  void End();
  std::uint64_t GetOutstanding() const { return mOutstanding; }

private:
  std::mutex mMutex; // Guards mExpected.
  std::deque<std::uint8_t> mExpected;
  std::atomic<std::uint64_t> mOutstanding = 0;
};

} // namespace krgui
