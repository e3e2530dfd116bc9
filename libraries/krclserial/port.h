#pragma once
// One session at a published port: what came from its bridge, and how to wait for it and send to it. Which sessions
// there are is left to Sessions.

#include "krbase/filedescriptor.h"
#include "krbase/krclsockets.h"
#include "krbase/krclwire.h"
#include "krbase/krturnmutex.h"
#include "krclserial/clserkrg.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>

namespace krclserial {

/// Thread: any. Receiving and sending each take turns, and do not wait for one another.
class Port {
public:
  /// Opens a session. As of clSerialInit.
  static CLINT32 Open(const KrCLPort& aPort, std::shared_ptr<Port>& aOpened);

  /// As the functions of the standard.
  CLINT32 Read(char* aBytes, std::size_t aSize, std::chrono::milliseconds aLimit);
  CLINT32 Write(const char* aBytes, CLUINT32& aSize, std::chrono::milliseconds aLimit);
  CLINT32 CountAvailable(CLUINT32& aCount);
  CLINT32 Flush();
  CLINT32 GetSpeeds(CLUINT32& aBits);
  CLINT32 SetSpeed(CLUINT32 aBit);
  /// Ends what waits, and returns after it.
  void Close();
  /// Lets go of the session in a process that was forked, where nobody can have a turn.
  void LeaveToParent() { mSocket.Close(); }

private:
  using Clock = std::chrono::steady_clock;

  explicit Port(krbase::FileDescriptor aSocket) : mSocket(std::move(aSocket)) {}

  /// Receives what there is until this many bytes of the line are there.
  void Receive(std::size_t aMost);
  void Understand(const KrCLMessage& aMessage);
  CLINT32 AwaitWelcome(const std::string& aName);
  CLINT32 AwaitSpeedSet(Clock::time_point aEnd);
  CLINT32 AwaitFlushed(Clock::time_point aEnd);

  enum class Sent { All, Late, Lost };
  Sent Send(const KrCLMessage& aMessage, Clock::time_point aEnd);
  /// Waits until the socket can be used so; false when the time has come.
  bool Wait(short aEvents, Clock::time_point aEnd) const;

  krbase::FileDescriptor mSocket; ///< Open until a Close that has both turns.

  KrTurnMutex mReceiving; ///< Guards what follows; had before mSending by who needs both.
  std::deque<char> mReceived;
  std::array<std::uint8_t, kKrCLMostMessage> mPacket = {};
  bool mIsLost = false; ///< The bridge has ended, or does not speak our language.
  bool mIsWelcome = false;
  bool mHasSpeeds = false;
  KrCLAnswer mWelcome = KrCLAnswer::Failed;
  std::string mName;
  std::uint32_t mSpeeds = 0;
  KrCLAnswer mSpeedSet = KrCLAnswer::Failed;
  std::uint64_t mSpeedsAsked = 0;
  std::uint64_t mSpeedsAnswered = 0;
  std::uint64_t mFlushesAsked = 0;
  std::uint64_t mFlushesAnswered = 0;
  bool mIsFlushing = false; ///< What comes before the answer is thrown away.

  KrTurnMutex mSending; ///< Had by who sends.
};

} // namespace krclserial
