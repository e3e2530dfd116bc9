#pragma once
// A terminal session on lines that are the test's, and a window's queue of which the test takes the messages.

#include "await.h"
#include "logic/serial/terminalmessages.h"
#include "serial/terminalsession.h"
#include "serialadapter.h"
#include "temporaryfolder.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace krgui {

inline std::vector<std::uint8_t> ToBytes(const std::string& aText) {
  return {aText.begin(), aText.end()};
}

class TerminalSessionTest : public testing::Test, protected ITranscript {
protected:
  TerminalSessionTest() { mQueue->Open(); }

  /// After a file nothing is waited for, unless a test says so.
  std::unique_ptr<TerminalSession> MakeSession(TerminalSessionTimes aTimes) {
    if (aTimes.loopbackWait == FileTransfer::kLoopbackWait)
      aTimes.loopbackWait = std::chrono::milliseconds(0);
    return std::make_unique<TerminalSession>(mEncoder, mQueue, aTimes);
  }

  bool Open(KrDeviceSerial aPort = KrDeviceSerial::Serial0) { return mSession->Open(&mAdapter, aPort).IsOK(); }

  /// Takes messages as the window does until a condition holds; false when it never does.
  bool TakeUntil(const std::function<bool()>& aIsReached) {
    return aIsReached() || krtest::Await([&] {
             TakeAll();
             return aIsReached();
           });
  }

  void TakeAll() {
    while (std::optional<MessageQueue::Taken> taken = mQueue->Take())
      OnMessage(taken->Get());
  }

  std::string MakeFile(std::size_t aSize) {
    std::string bytes;
    for (std::size_t index = 0; index < aSize; ++index)
      bytes += static_cast<char>('A' + index % 23);
    TemporaryFolder::WriteFile(mFolder.GetFile("sent.bin"), bytes);
    return bytes;
  }

  TransferOrder MakeOrder(bool aValidates = false) {
    return {.path = mFolder.GetFile("sent.bin"), .validatesLoopback = aValidates, .echoes = {}};
  }

  bool AwaitEnds(int aCount) {
    return TakeUntil([this, aCount] { return mEnds >= aCount; });
  }

  TemporaryFolder mFolder;
  krtest::SerialAdapter mAdapter;
  std::shared_ptr<krtest::SerialLine> mLine = mAdapter.AddLine(0);
  TranscriptEncoder mEncoder;
  std::shared_ptr<MessageQueue> mQueue = std::make_shared<MessageQueue>();
  std::unique_ptr<TerminalSession> mSession = MakeSession({.sendGrace = krtest::GetGenerousLimit()});
  std::u16string mShown;
  std::vector<std::u16string> mStatistics;
  std::vector<std::u16string> mFailures;
  std::string mEcho;
  int mEnds = 0;

private:
  void OnMessage(const Message& aMessage) {
    switch (aMessage.number) {
    case kFlushTranscriptMessage:
      mEncoder.FlushPending(*this);
      break;
    case kTransferMessage:
      OnTransfer(aMessage);
      break;
    case kTransferFailedMessage:
      mFailures.push_back(mSession->GetMailbox().TakeLine(aMessage.second));
      break;
    case kTransferEndedMessage:
      ++mEnds;
      break;
    default:
      break;
    }
  }

  void OnTransfer(const Message& aMessage) {
    if (aMessage.first == kEchoChunk) {
      const std::vector<std::uint8_t> chunk = mSession->GetMailbox().TakeChunk(aMessage.second);
      mEcho.append(chunk.begin(), chunk.end());
    } else {
      mStatistics.push_back(mSession->GetMailbox().TakeLine(aMessage.second));
    }
  }

  void RemoveLastLine() override {}
  void Append(std::u16string_view aText) override { mShown += aText; }
  void SetEmpty() override { mShown.clear(); }
};

} // namespace krgui
