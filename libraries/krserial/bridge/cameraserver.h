#pragma once
// Serves a published Camera Link port: takes one program at a time and moves its bytes to and from two bounded queues.
// The other end of the queues is the bridge's, through CameraLinkEnd.

#include "bridge/camerasession.h"
#include "bridge/ihostend.h"
#include "krbase/krclsockets.h"
#include "krbase/wakeevent.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string>

namespace krserial {

/// Thread: Serve on one; Take, Give and the rest on any.
class CameraServer {
public:
  CameraServer(std::unique_ptr<KrCLPublication> aPublication, krbase::WakeEvent aWake, bool aHasPort);

  const KrString& GetName() const { return mPublication->GetName(); }

  /// Serves programs until it is stopped. No program is served before the first Take.
  void Serve(const std::stop_token& aStop);

  /// Read and Write of IHostEnd.
  KrResult Take(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aTaken, const std::stop_token& aStop);
  KrResult Give(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aGiven, const std::stop_token& aStop);

  /// As of IHostEnd.
  bool AsksForEmptiness() const;
  void TellEmpty();
  void SetSpeedRequest(IHostEnd::SpeedRequest aRequest);
  void TellSpeed(const DevicePortSpeed& aSpeed);

private:
  using Clock = std::chrono::steady_clock;
  /// What a program waits for until the line is ready for it; nothing else is done for it before.
  enum class Awaited { Nothing, Opening, Speed, Flush };

  void Wake() const;
  /// Waits for something to do; false when the system does not let it wait.
  bool Wait();
  int GetWaitMs();
  short GetSessionEvents();
  bool AcceptsPrograms();

  void Accept();
  bool IsRefused();
  void OpenSession(krbase::FileDescriptor aSocket);
  /// Ends the session; what the program sent before it went still goes to the device.
  void EndSession();

  enum class Amount { WhileThereIsRoom, All };
  /// Takes what the program has sent; false when it has gone.
  bool ReceiveFrom(Amount aAmount);
  bool TakesMore();
  void Understand(const KrCLMessage& aMessage);
  void Await(Awaited aAwaited, std::uint32_t aBaudRate);
  /// Does what the program waits for, if the line is ready or it has waited long enough.
  void Continue();
  bool IsReadyForSpeed() const;
  void FinishOpening(bool aIsReady);
  void DropOld();
  void SendTo();
  bool SendBytes();
  KrCLAnswer SetSpeed(std::uint32_t aBaudRate);
  std::uint32_t GetSpeedBits();

  const std::unique_ptr<KrCLPublication> mPublication;
  const krbase::WakeEvent mWake; ///< An event that ends a wait.
  const bool mHasPort;

  std::unique_ptr<CameraSession> mSession; ///< Serve's alone, as what follows.
  bool mHasNoDescriptors = false;          ///< Accepting would fail at once, again and again.
  std::uint32_t mAwaitedBaudRate = 0;
  Clock::time_point mAwaitedUntil;

  mutable std::mutex mMutex; ///< Guards what follows; not held while the request for a speed runs.
  std::condition_variable_any mChanged;
  Awaited mAwaited = Awaited::Nothing; ///< Changed by Serve alone.
  bool mIsTaken = false;               ///< Somebody takes what programs send,
  bool mIsTaking = false;              ///< and waits for it, having brought the device what was taken.
  bool mIsEmpty = true;                ///< The device has sent nothing that was not given.
  bool mIsDropping = false;            ///< What the device has sent until now is for nobody.
  bool mHasProgram = false;            ///< Bytes of the device have somewhere to go.
  std::deque<std::uint8_t> mFromProgram;
  std::deque<std::uint8_t> mToProgram;
  IHostEnd::SpeedRequest mRequest;
  DevicePortSpeed mSpeed;
  bool mHasNewSpeed = false; ///< That the program was not told of.
  KrResult mFailure;         ///< Why nothing is served any more.
};

} // namespace krserial
