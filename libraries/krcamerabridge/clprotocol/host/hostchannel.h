#pragma once
// The driver process' end of the socket to the application: calls come in, answers and uses of the line go out. When
// the application is gone the process ends, whatever its driver does.

#include "clprotocol/driverwire.h"

#include <condition_variable>
#include <mutex>
#include <optional>

namespace krcamerabridge {

/// Thread: any, but for Listen. Ownership: borrows the socket, which waits.
class HostChannel {
public:
  explicit HostChannel(int aSocket) : mSocket(aSocket) {}

  /// Waits for the next call of the application.
  WireFrame AwaitCall();
  void Send(const WireFrame& aFrame);
  /// Has the application use the line, and waits for what came of it; one use at a time.
  WireFrame AskLine(const WireFrame& aUse);

  /// Takes what the application says, for ever. aStopProbe is called for its word to stop a probe.
  template <typename StopProbe>
  [[noreturn]] void Listen(StopProbe aStopProbe) {
    for (;;) {
      if (Hear() == WireKind::StopProbe)
        aStopProbe();
    }
  }

private:
  WireKind Hear();
  [[noreturn]] static void End();

  const int mSocket;
  WireReader mReader{WireSide::Application}; // The listener's alone.
  std::mutex mSending;                       // Held while a frame is written, so that frames do not mix.
  std::mutex mAsking;                        // Held while the line is used.
  std::mutex mMutex;                         // Guards the members from here on.
  std::condition_variable mChanged;
  std::optional<WireFrame> mCall;
  std::optional<WireFrame> mLineAnswer;
};

} // namespace krcamerabridge
