#pragma once
// The sending of a file, as the thread of its own that the terminal has for it: chunks, echo, what is expected back,
// progress and statistics. Buttons and boxes are left to the window, which hears by messages.

#include "krbase/krresult.h"
#include "krbase/krstring.h"
#include "logic/frame/messagequeue.h"
#include "logic/serial/iterminalline.h"
#include "logic/serial/loopbackcheck.h"
#include "logic/serial/transfermailbox.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <stop_token>
#include <string>

namespace krgui {

class SentFile;

/// What a transfer is asked to do.
struct TransferOrder {
  KrString path;
  bool validatesLoopback = false;
  /// Asked before each chunk, on the transfer's thread.
  std::function<bool()> echoes;
};

/// Sends one file, once, and returns when it is sent, when aStop is stopped, or when it cannot be opened. Messages, in
/// order: kTransferFailedMessage with the path as a line, or echoes, kTranscriptPaceMessage and statistics;
/// kTranscriptPaceMessage after a failure too; kTransferEndedMessage. Chunks have 256 bytes at most.
///
/// What the file grows by after it was opened is not sent; one that shrinks ends where it ends. Failures of the line
/// are not told, but for the count of bytes that it took: the next chunk is tried. Only when the device is gone, or
/// the line was cancelled, is nothing more tried, as that cannot succeed.
///
/// Thread: the transfer's own; HasEnded from any. A blocked write ends by aStop or by the line's Cancel, the waits for
/// what loops back and for a window that takes no echo by aStop.
class FileTransfer {
public:
  using Clock = std::function<std::chrono::nanoseconds()>;
  static constexpr std::chrono::milliseconds kLoopbackWait{1000};
  static constexpr std::uint64_t kChunkSize = 256;
  /// Progress is told at the begin, at the end and in between not more often than this.
  static constexpr std::chrono::milliseconds kProgressPeriod{200};

  FileTransfer(ITerminalLine& aLine, LoopbackCheck& aCheck, std::shared_ptr<MessageQueue> aQueue,
               std::shared_ptr<TransferMailbox> aMailbox, Clock aClock,
               std::chrono::milliseconds aWait = kLoopbackWait);

  void Run(const TransferOrder& aOrder, const std::stop_token& aStop);
  /// From just before kTransferEndedMessage is posted on.
  bool HasEnded() const { return mHasEnded; }

private:
  void Send(SentFile& aFile, const TransferOrder& aOrder, const std::stop_token& aStop);
  /// False when nothing more can be sent.
  bool SendChunk(std::span<const std::uint8_t> aChunk, const TransferOrder& aOrder, const std::stop_token& aStop);
  void Echo(std::span<const std::uint8_t> aChunk, const std::stop_token& aStop);
  void TellProgress(std::uint64_t aFileSize);
  void TellStatistics(const TransferOrder& aOrder, std::uint64_t aFileSize, std::chrono::nanoseconds aTaken);
  void PostLine(std::uint64_t aNumber, std::u16string aLine);

  ITerminalLine& mLine;
  LoopbackCheck& mCheck;
  const std::shared_ptr<MessageQueue> mQueue;
  const std::shared_ptr<TransferMailbox> mMailbox;
  const Clock mClock;
  const std::chrono::milliseconds mWait;
  std::uint64_t mWritten = 0;
  std::chrono::nanoseconds mProgressTime{};
  std::atomic<bool> mHasEnded = false;
};

} // namespace krgui
