#include "logic/serial/filetransfer.h"

#include "krbase/rest.h"
#include "logic/serial/sentfile.h"
#include "logic/serial/terminalmessages.h"
#include "logic/serial/transferstatistics.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace krgui {

namespace {

/// How long a transfer waits for the window to take echoes before it asks whether there is a window still.
constexpr std::chrono::milliseconds kEchoWait{100};

/// Whether every later write would fail in the same way.
bool IsFinal(const KrResult& aResult) {
  return aResult == KrResult::Code::ConnectionLost || aResult == KrResult::Code::Aborted;
}

} // namespace

FileTransfer::FileTransfer(ITerminalLine& aLine, LoopbackCheck& aCheck, std::shared_ptr<MessageQueue> aQueue,
                           std::shared_ptr<TransferMailbox> aMailbox, Clock aClock, std::chrono::milliseconds aWait)
    : mLine(aLine), mCheck(aCheck), mQueue(std::move(aQueue)), mMailbox(std::move(aMailbox)), mClock(std::move(aClock)),
      mWait(aWait) {}

void FileTransfer::Run(const TransferOrder& aOrder, const std::stop_token& aStop) {
  if (std::optional<SentFile> file = SentFile::Open(aOrder.path)) {
    mCheck.Begin();
    const std::chrono::nanoseconds begin = mClock();
    Send(*file, aOrder, aStop);
    const std::chrono::nanoseconds taken = mClock() - begin;
    mQueue->Post({kTranscriptPaceMessage, 0, 0});
    (void)krbase::Rest(mWait, aStop);
    TellStatistics(aOrder, file->GetSize(), taken);
    mCheck.End();
  } else {
    mQueue->Post({kTransferFailedMessage, 0, mMailbox->PutLine(aOrder.path.ToWide())});
    mQueue->Post({kTranscriptPaceMessage, 0, 0});
  }
  mHasEnded = true;
  mQueue->Post({kTransferEndedMessage, 0, 0});
}

void FileTransfer::Send(SentFile& aFile, const TransferOrder& aOrder, const std::stop_token& aStop) {
  std::vector<std::uint8_t> chunk(static_cast<std::size_t>(std::min(aFile.GetSize(), kChunkSize)));
  TellProgress(aFile.GetSize());
  while (!aStop.stop_requested()) {
    const std::size_t count = aFile.Read(chunk);
    if (count == 0 || !SendChunk(std::span(chunk).first(count), aOrder, aStop))
      break;
    mMailbox->SetProgress({mWritten, aFile.GetSize()});
    if (mClock() - mProgressTime >= kProgressPeriod)
      TellProgress(aFile.GetSize());
  }
  TellProgress(aFile.GetSize());
}

bool FileTransfer::SendChunk(std::span<const std::uint8_t> aChunk, const TransferOrder& aOrder,
                             const std::stop_token& aStop) {
  if (aOrder.echoes && aOrder.echoes())
    Echo(aChunk, aStop);
  if (aOrder.validatesLoopback)
    mCheck.Expect(aChunk);
  std::uint32_t written = 0;
  const KrResult result = mLine.Write(aChunk.data(), static_cast<std::uint32_t>(aChunk.size()), written, aStop);
  mCheck.AddWritten(written);
  mWritten += written;
  return !IsFinal(result);
}

void FileTransfer::Echo(std::span<const std::uint8_t> aChunk, const std::stop_token& aStop) {
  while (!mMailbox->AwaitRoom(kEchoWait, aStop)) {
    if (aStop.stop_requested() || !mQueue->IsOpen())
      return;
  }
  const std::int64_t number = mMailbox->PutChunk({aChunk.begin(), aChunk.end()});
  if (!mQueue->Post({kTransferMessage, kEchoChunk, number}))
    mMailbox->TakeChunk(number);
}

void FileTransfer::TellProgress(std::uint64_t aFileSize) {
  mProgressTime = mClock();
  mMailbox->SetProgress({mWritten, aFileSize});
  mQueue->PostOnce({kTransferProgressMessage, 0, 0});
}

void FileTransfer::TellStatistics(const TransferOrder& aOrder, std::uint64_t aFileSize,
                                  std::chrono::nanoseconds aTaken) {
  const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(aTaken).count();
  PostLine(1, FormatTransferTime(static_cast<std::uint64_t>(milliseconds), aOrder.path));
  PostLine(2, FormatTransferred(mWritten, aFileSize));
  if (aOrder.validatesLoopback)
    PostLine(3, FormatReturned(mWritten, mCheck.GetOutstanding()));
}

void FileTransfer::PostLine(std::uint64_t aNumber, std::u16string aLine) {
  const std::int64_t number = mMailbox->PutLine(std::move(aLine));
  if (!mQueue->Post({kTransferMessage, aNumber, number}))
    mMailbox->TakeLine(number);
}

} // namespace krgui
