#pragma once
// What a file transfer's thread hands to the window with its messages. What becomes of it is left to the window.

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <stop_token>
#include <string>
#include <vector>

namespace krgui {

/// How far a transfer is.
struct TransferProgress {
  std::uint64_t written = 0;
  std::uint64_t fileSize = 0;
};

/// What the transfer's thread hands to the window, each under its own number: no message shows what belongs to another.
///
/// Thread: any. Ownership: shared by both.
class TransferMailbox {
public:
  /// So many chunks may wait; whoever puts more waits for room first.
  static constexpr std::size_t kChunkLimit = 4096;

  TransferMailbox();
  ~TransferMailbox();

  std::int64_t PutChunk(std::vector<std::uint8_t> aChunk);
  /// Empty where there is none of the number.
  std::vector<std::uint8_t> TakeChunk(std::int64_t aNumber);
  /// Waits until fewer than kChunkLimit chunks wait; false when none was taken in aLimit, or aStop is stopped.
  bool AwaitRoom(std::chrono::milliseconds aLimit, const std::stop_token& aStop);
  std::int64_t PutLine(std::u16string aLine);
  /// Empty where there is none of the number.
  std::u16string TakeLine(std::int64_t aNumber);
  void SetProgress(const TransferProgress& aProgress);
  TransferProgress GetProgress() const;

private:
  struct Body;
  std::unique_ptr<Body> mBody;
};

} // namespace krgui
