#pragma once
// One command and its answer at a time (GenCP 1.3.1, command cycle, timing and failures): waits as long as the camera
// may need, sends again what was lost or damaged. What a command means is left to DeviceMemory.

#include "gencp/packet.h"
#include "gencp/packetreceiver.h"
#include "krbase/krresult.h"
#include "line/icameraline.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace krcamerabridge {

/// How long a cycle waits, in milliseconds, beside what the standard says.
struct CycleTimes {
  std::uint32_t marginMs = 500;         ///< For what is between the camera and us.
  std::uint32_t gapMs = 300;            ///< A packet's bytes follow each other within this.
  std::uint32_t busyPauseMs = 50;       ///< Between two tries with a camera that says to be busy.
  std::uint32_t busyLimitMs = 5000;     ///< For all these tries.
  std::uint32_t pendingLimitMs = 60000; ///< For a camera that asks for more time again and again.
  std::uint32_t closeLimitMs = 5000;    ///< For all that is said at the end.
  std::uint32_t hurriedCloseMs = 1000;  ///< The same, when who asked has left.
};

/// A command, by what it carries and what answers it.
struct Command {
  std::uint16_t commandID = 0;
  std::vector<std::uint8_t> specific = {};
  std::size_t answerBytes = 0; ///< At most; by which it is known how long the answer takes.
  int tries = 4;               ///< It is sent once, and again as often as the standard says.
};

/// What a camera answered.
struct Answer {
  std::uint16_t status = 0;
  std::vector<std::uint8_t> specific = {};
};

/// Thread: one at a time; rate and response time can be asked for at any. Ownership: borrows the line.
class CommandCycle {
public:
  CommandCycle(ICameraLine& aLine, const CycleTimes& aTimes);

  /// How long the line takes for bytes; 9600 at first.
  void SetBaudRate(std::uint32_t aBaudRate) { mBaudRate = aBaudRate; }
  std::uint32_t GetBaudRate() const { return mBaudRate; }
  /// How long the camera takes for an answer, or to say that it takes longer; 300 milliseconds at first.
  void SetResponseTime(std::uint32_t aMilliseconds) { mResponseMs = aMilliseconds; }
  std::uint32_t GetResponseTime() const { return mResponseMs; }

  /// Carries a command out. OK for any answer to it, whatever its status; TimeLimitExceeded when none came,
  /// ProtocolError when all that came was damaged, Aborted by aStop. When one was given up its answer is
  /// awaited before the next command, as a camera takes one at a time.
  KrResult Run(const Command& aCommand, Answer& aAnswer, const std::stop_token& aStop);
  /// Reads the version register by a request that a camera never answers from memory; aTries limits how often it is
  /// sent. Results as of Run.
  KrResult Probe(int aTries, Answer& aAnswer, const std::stop_token& aStop);
  /// All that follows has to be done within so many milliseconds from now; later the camera counts as silent.
  void SetEnd(std::uint32_t aMilliseconds);
  bool IsOver() const { return Clock::now() >= mEnd; }
  /// Does not wait for the answer to what was given up.
  void ForgetAbandoned() { mAbandoned.reset(); }

private:
  using Clock = std::chrono::steady_clock;

  struct Pending {
    std::uint16_t requestID;
    std::uint16_t acknowledgeID;
    Clock::time_point until;            // Without an answer by then there is none.
    Clock::time_point lastByte;         // Of what came.
    std::chrono::milliseconds transfer; // On the line.
    bool hasAsked = false;              // For more time.
  };
  enum class Ending { Answered, Silent, Damaged, Failed };

  std::uint16_t TakeRequestID();
  Clock::time_point GetLimit(std::uint32_t aMilliseconds) const;
  std::chrono::milliseconds GetTransferTime(std::size_t aBytes) const;
  KrResult SendUntilAnswered(Packet& aPacket, std::size_t aAnswerBytes, int aTries, Answer& aAnswer,
                             const std::stop_token& aStop);
  KrResult Send(const Packet& aPacket);
  Ending Await(Pending& aPending, Clock::time_point aLimit, Answer& aAnswer, KrResult& aFailure,
               const std::stop_token& aStop);
  bool TakeAnswer(Pending& aPending, Clock::time_point aLimit, Answer& aAnswer);
  Ending ReadMore(Pending& aPending, Clock::time_point aUntil, KrResult& aFailure, const std::stop_token& aStop);
  KrResult AwaitAbandoned(const std::stop_token& aStop);

  ICameraLine& mLine;
  const CycleTimes mTimes;
  PacketReceiver mReceiver;
  std::atomic<std::uint32_t> mBaudRate{9600};
  std::atomic<std::uint32_t> mResponseMs{300};
  std::uint16_t mLastRequestID = 0;
  Clock::time_point mEnd = Clock::time_point::max();
  std::optional<Pending> mAbandoned; // The command that nobody waits for any more.
};

} // namespace krcamerabridge
