#pragma once
// An open port of the terminal with its threads: receiving, sending a file, and writing what the user sends, so that a
// line that takes nothing holds up no window. What is shown is left to the window.

#include "krserial/krdeviceserialport.h"
#include "logic/frame/messagequeue.h"
#include "logic/serial/filetransfer.h"
#include "logic/serial/loopbackcheck.h"
#include "logic/serial/transcriptencoder.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace krgui {

/// How long a session waits.
struct TerminalSessionTimes {
  /// For a line to take what was sent before Close.
  std::chrono::milliseconds sendGrace{200};
  /// After a file, for what still loops back.
  std::chrono::milliseconds loopbackWait = FileTransfer::kLoopbackWait;
};

/// For one opening of the window: what it posted and nobody has taken ends with it.
///
/// Thread: user interface. Ownership: borrows the encoder, which must outlive it; Close joins all threads.
class TerminalSession {
public:
  static constexpr std::size_t kSendLimit = 1 << 20;

  TerminalSession(TranscriptEncoder& aEncoder, std::shared_ptr<MessageQueue> aQueue,
                  const TerminalSessionTimes& aTimes = {});
  /// Closes.
  ~TerminalSession();

  /// Ends what runs, then opens a port and begins to receive. Results as KrDeviceSerialPort::Open's; SystemError when
  /// there is no thread to be had. The session is closed unless it is OK.
  KrResult Open(IKrDeviceAdapter* aAdapter, KrDeviceSerial aPort);
  /// Ends receiving and sending and closes the port; what was given to Send shortly before and goes out at once is
  /// still sent. A file that is being sent reports as one that has ended. Closing what is closed does nothing.
  void Close();
  bool IsOpen() const;
  /// Whether the device of the open port has gone, which kPortLostMessage tells.
  bool IsLost() const;

  /// Sends one message, in one write, after those before it. At most kSendLimit bytes wait; false when it does not fit,
  /// or no port is open. aBefore is called once it is known to fit, before any of it can be written. After a refusal
  /// kLineTakesAgainMessage tells when nothing waits any more.
  bool Send(std::vector<std::uint8_t> aMessage, const std::function<void()>& aBefore = {});
  /// Whether something of what was sent has not been written yet.
  bool IsSending() const;
  /// Begins to send a file, after the messages before it; the messages tell of it. Nothing while one is being sent or
  /// no port is open.
  void SendFile(const TransferOrder& aOrder);
  /// Ends the sending of a file, without waiting for it; it reports as one that has ended.
  void StopFile();
  /// From SendFile on until just before its kTransferEndedMessage is posted. When a message of an earlier file's end
  /// comes late, this says that another is being sent.
  bool IsSendingFile() const;

  void SetLoopbackOn(bool aIsOn) { mIsLoopbackOn = aIsOn; }
  TransferMailbox& GetMailbox();

private:
  struct Opening;
  struct Body;

  void StartThreads();
  std::atomic<bool> mIsLoopbackOn = false;
  std::unique_ptr<Body> mBody;
};

} // namespace krgui
