#include "serial/terminalsession.h"

#include "logic/serial/receiving.h"
#include "logic/serial/terminalmessages.h"
#include "serial/sendqueue.h"

#include <stop_token>
#include <system_error>
#include <thread>
#include <utility>

namespace krgui {

namespace {

template <typename Duration>
Duration GetTime() {
  return std::chrono::duration_cast<Duration>(std::chrono::steady_clock::now().time_since_epoch());
}

/// The port as the threads see it; its writes come one after the other, and each is cancelled by itself.
class PortLine : public ITerminalLine {
public:
  PortLine(KrDeviceSerialPort& aPort, MessageQueue& aQueue) : mPort(aPort), mQueue(aQueue) {}

  KrResult Read(std::uint8_t* aBuffer, std::uint32_t aSize, std::uint32_t& aRead, std::uint32_t aTimeoutMs) override {
    const KrResult result = mPort.Read(aBuffer, aSize, aRead, aTimeoutMs);
    if (result.GetCode() == KrResult::Code::ConnectionLost && !mIsLost.exchange(true))
      mQueue.Post({kPortLostMessage, 0, 0});
    return result;
  }
  KrResult Write(const std::uint8_t* aData, std::uint32_t aSize, std::uint32_t& aWritten,
                 const std::stop_token& aCancel) override {
    return mPort.Write(aData, aSize, aWritten, aCancel);
  }
  void Cancel() override { mPort.Cancel(); }

  /// The port is opened.
  void Begin() { mIsLost = false; }
  bool IsLost() const { return mIsLost; }

private:
  KrDeviceSerialPort& mPort;
  MessageQueue& mQueue;
  std::atomic<bool> mIsLost = false;
};

} // namespace

/// What there is from an opening to its closing. The threads come last: they end first.
struct TerminalSession::Opening {
  Opening(PortLine& aLine, TranscriptEncoder& aEncoder, LoopbackCheck& aCheck, std::function<bool()> aIsLoopbackOn,
          std::shared_ptr<MessageQueue> aQueue)
      : sendQueue(kSendLimit,
                  [queue = aQueue] {
                    queue->PostOnce({kLineTakesAgainMessage, 0, 0});
                  }),
        receiving(aLine, aEncoder, aCheck, std::move(aIsLoopbackOn), std::move(aQueue),
                  GetTime<std::chrono::milliseconds>) {}

  SendQueue sendQueue;
  Receiving receiving;
  std::unique_ptr<FileTransfer> transfer; ///< The last one begun; null before the first.
  std::jthread receiver;
  std::jthread writer;
  std::jthread sender;
};

struct TerminalSession::Body {
  Body(TranscriptEncoder& aEncoder, std::shared_ptr<MessageQueue> aQueue, const TerminalSessionTimes& aTimes)
      : encoder(aEncoder), queue(std::move(aQueue)), times(aTimes) {}

  TranscriptEncoder& encoder;
  const std::shared_ptr<MessageQueue> queue;
  const TerminalSessionTimes times;
  const std::shared_ptr<TransferMailbox> mailbox = std::make_shared<TransferMailbox>();
  LoopbackCheck check;
  KrDeviceSerialPort port;
  PortLine line{port, *queue};
  std::unique_ptr<Opening> opening; ///< Null while closed.
};

TerminalSession::TerminalSession(TranscriptEncoder& aEncoder, std::shared_ptr<MessageQueue> aQueue,
                                 const TerminalSessionTimes& aTimes)
    : mBody(std::make_unique<Body>(aEncoder, std::move(aQueue), aTimes)) {}

TerminalSession::~TerminalSession() {
  Close();
}

KrResult TerminalSession::Open(IKrDeviceAdapter* aAdapter, KrDeviceSerial aPort) {
  Close();
  if (KrResult result = mBody->port.Open(aAdapter, aPort); !result.IsOK())
    return result;
  mBody->line.Begin();
  mBody->opening = std::make_unique<Opening>(
      mBody->line, mBody->encoder, mBody->check, [this] { return mIsLoopbackOn.load(); }, mBody->queue);
  try {
    StartThreads();
  } catch (const std::system_error& error) {
    Close();
    return KrResult(KrResult::Code::SystemError,
                    KrString("The host has no thread for the serial port; end other programs: ") + error.what());
  }
  return {};
}

void TerminalSession::StartThreads() {
  Opening& opening = *mBody->opening;
  opening.receiver = std::jthread([&opening](const std::stop_token& aStop) { opening.receiving.Run(aStop); });
  opening.writer = std::jthread(
      [&opening, &line = mBody->line](const std::stop_token& aStop) { opening.sendQueue.Run(line, aStop); });
}

void TerminalSession::Close() {
  if (!mBody->opening)
    return;
  Opening& opening = *mBody->opening;
  opening.receiver.request_stop();
  opening.sender.request_stop();
  opening.sendQueue.AwaitEmpty(mBody->times.sendGrace);
  opening.writer.request_stop();
  mBody->line.Cancel();
  mBody->opening.reset(); // Joins.
  // Closing always succeeds.
  static_cast<void>(mBody->port.Close());
}

bool TerminalSession::IsOpen() const {
  return mBody->opening != nullptr;
}

bool TerminalSession::IsLost() const {
  return IsOpen() && mBody->line.IsLost();
}

bool TerminalSession::Send(std::vector<std::uint8_t> aMessage, const std::function<void()>& aBefore) {
  return mBody->opening && mBody->opening->sendQueue.Put(std::move(aMessage), aBefore);
}

bool TerminalSession::IsSending() const {
  return mBody->opening && !mBody->opening->sendQueue.IsEmpty();
}

void TerminalSession::SendFile(const TransferOrder& aOrder) {
  if (!IsOpen() || IsSendingFile())
    return;
  Opening& opening = *mBody->opening;
  opening.sender = {}; // The last file's thread has nothing more to do.
  opening.transfer = std::make_unique<FileTransfer>(mBody->line, mBody->check, mBody->queue, mBody->mailbox,
                                                    GetTime<std::chrono::nanoseconds>, mBody->times.loopbackWait);
  try {
    const std::uint64_t before = opening.sendQueue.CountPut();
    opening.sender = std::jthread([&opening, aOrder, before](const std::stop_token& aStop) {
      opening.sendQueue.AwaitWritten(before, aStop);
      opening.transfer->Run(aOrder, aStop);
    });
  } catch (const std::system_error&) {
    // The host has no thread to spare: a transfer that was stopped before it began.
    std::stop_source stopped;
    stopped.request_stop();
    opening.transfer->Run(aOrder, stopped.get_token());
  }
}

void TerminalSession::StopFile() {
  if (mBody->opening)
    mBody->opening->sender.request_stop();
}

bool TerminalSession::IsSendingFile() const {
  return mBody->opening && mBody->opening->transfer && !mBody->opening->transfer->HasEnded();
}

TransferMailbox& TerminalSession::GetMailbox() {
  return *mBody->mailbox;
}

} // namespace krgui
