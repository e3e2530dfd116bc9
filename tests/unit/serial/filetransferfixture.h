#pragma once
// A file transfer over a line and with a clock that are the test's, and what the window would hear of it, in words.

#include "logic/serial/filetransfer.h"

#include "logic/serial/terminalmessages.h"
#include "scriptedline.h"
#include "temporaryfolder.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace krgui {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;

/// Runs a transfer on this thread, over a line and with a clock that are the test's.
class FileTransferTest : public testing::Test {
protected:
  FileTransferTest() { mQueue->Open(); }

  std::string MakeFile(std::size_t aSize) {
    std::string bytes;
    for (std::size_t index = 0; index < aSize; ++index)
      bytes += static_cast<char>(index * 7 + index / 256);
    TemporaryFolder::WriteFile(mFolder.GetFile("sent.bin"), bytes);
    return bytes;
  }

  FileTransfer MakeTransfer(milliseconds aWait = milliseconds(0)) {
    return {mLine, mCheck, mQueue, mMailbox, [this] { return mNow; }, aWait};
  }

  void Run() { MakeTransfer().Run(mOrder, mStop.get_token()); }

  /// The messages but for those of progress, which come when they like.
  std::vector<Message> TakeMessages() {
    std::vector<Message> messages;
    while (std::optional<MessageQueue::Taken> taken = mQueue->Take()) {
      if (taken->Get().number != krgui::kTransferProgressMessage)
        messages.push_back(taken->Get());
    }
    return messages;
  }

  /// What the window would hear, in words.
  std::vector<std::string> TakeWords() {
    std::vector<std::string> words;
    for (const Message& message : TakeMessages())
      words.push_back(ToWords(message));
    return words;
  }

  std::vector<std::size_t> GetWriteSizes() const {
    std::vector<std::size_t> sizes;
    for (const std::string& bytes : mLine.writes)
      sizes.push_back(bytes.size());
    return sizes;
  }

  std::string GetSent() const {
    std::string sent;
    for (const std::string& bytes : mLine.writes)
      sent += bytes;
    return sent;
  }

  TemporaryFolder mFolder;
  TransferOrder mOrder{.path = mFolder.GetFile("sent.bin"), .validatesLoopback = false, .echoes = {}};
  krtest::ScriptedLine mLine;
  LoopbackCheck mCheck;
  std::shared_ptr<MessageQueue> mQueue = std::make_shared<MessageQueue>();
  std::shared_ptr<TransferMailbox> mMailbox = std::make_shared<TransferMailbox>();
  nanoseconds mNow = std::chrono::seconds(5);
  std::stop_source mStop;

private:
  std::string ToWords(const Message& aMessage) {
    switch (aMessage.number) {
    case krgui::kTransferMessage:
      if (aMessage.first == krgui::kEchoChunk) {
        const std::vector<std::uint8_t> chunk = mMailbox->TakeChunk(aMessage.second);
        return "echo " + std::string(chunk.begin(), chunk.end());
      }
      return "line " + std::to_string(aMessage.first) + ": " + KrString(mMailbox->TakeLine(aMessage.second)).ToUtf8();
    case krgui::kTranscriptPaceMessage:
      return "pace";
    case krgui::kTransferEndedMessage:
      return "ended";
    case krgui::kTransferFailedMessage:
      return "failed " + KrString(mMailbox->TakeLine(aMessage.second)).ToUtf8();
    default:
      return "unknown";
    }
  }
};

} // namespace krgui
