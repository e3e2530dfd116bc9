#pragma once
// One serial port of a simulated camera: its transmit and receive queues, the speed of its line, loopback, loss, and
// the thread that moves bytes between the queues and what is attached behind. Who may open it is left to its channels.

#include "krbase/krresult.h"
#include "krtransport/krsimulatedfaults.h"
#include "simulation/cameraclock.h"
#include "simulation/serial/bytequeue.h"
#include "simulation/serial/ilineend.h"
#include "simulation/serial/linefaults.h"
#include "simulation/serial/linepace.h"
#include "simulation/serial/serialsettings.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <thread>

namespace krtransport {

/// What a line is like for as long as the lab is there.
struct SerialLineTraits {
  KrString name; ///< For messages.
  bool isPaced = true;
  bool hasFlowControl = true;
};

/// Thread: any. Ownership: shared by the camera and the channels that were handed out. Holders are told apart by
/// address.
class SerialLine {
public:
  static constexpr std::size_t kTransmitBytes = 4096;
  static constexpr std::size_t kReceiveBytes = 16384;

  SerialLine(SerialLineTraits aTraits, const SerialSettings& aSettings, std::unique_ptr<ILineEnd> aFarEnd,
             std::shared_ptr<ICameraClock> aClock);
  ~SerialLine();

  /// Opens the port with empty queues; Busy while another holder has it open.
  KrResult Open(const void* aHolder);
  /// Closes it if this holder has it open; what was not sent yet is dropped. Waiting calls return Aborted.
  void Close(const void* aHolder);
  /// Results and time limits as IByteChannel.
  KrResult Read(const void* aHolder, std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead,
                std::uint32_t aTimeoutMs, const std::stop_token& aCancel);
  KrResult Write(const void* aHolder, const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten,
                 std::uint32_t aTimeoutMs, const std::stop_token& aCancel);
  /// The camera has gone for whoever has the port open: all that he does fails with this. Joins no thread.
  void End(const KrResult& aReason);

  void SetSettings(const SerialSettings& aSettings);
  /// What happens to every so many-th byte of a direction; 0 for none.
  void OrderEvery(KrSerialDirection aDirection, ByteOrder LineFaults::*aFault, std::uint32_t aEvery);
  /// What happens to the next bytes.
  void OrderNext(KrSerialDirection aDirection, ByteOrder LineFaults::*aFault, std::uint32_t aBytes);
  /// Whether what is behind is not heard.
  void Silence(bool aIsSilent);
  void EndFaults();
  KrSimulatedSerialCounts GetCounts() const;

private:
  using Lock = std::unique_lock<std::mutex>;

  LineFaults& GetFaults(KrSerialDirection aDirection);
  KrResult Check(const void* aHolder, std::uint64_t aOpening) const;
  KrResult MakeUnfinished(const char* aWhat, std::uint32_t aTimeoutMs, const std::stop_token& aCancel) const;
  template <typename Condition>
  KrResult Await(Lock& aLock, const void* aHolder, std::chrono::steady_clock::time_point aLimit,
                 const std::stop_token& aCancel, const Condition& aIsReady);
  void Wake();
  void StopThread();
  void Start(const void* aHolder, std::uint32_t aRate);

  void Run();
  void ApplySettings(Lock& aLock);
  bool MoveOut(Lock& aLock);
  bool MoveIn(Lock& aLock);
  bool Discard(Lock& aLock);
  std::size_t Fetch(Lock& aLock);
  bool Send(std::uint64_t aNowNs);
  void PutOnLine(std::uint8_t aByte);
  std::size_t Deliver(ByteQueue& aFrom, std::size_t aBytes);
  void Receive(std::uint8_t aByte);
  void ApplyPower(Lock& aLock);
  bool CanDeliver() const { return !mTraits.hasFlowControl || mReceive.GetRoom() > 0; }
  std::uint64_t GetNextByteNs() const;
  bool IsOnTime() const;
  void Sleep(Lock& aLock);

  const SerialLineTraits mTraits;
  const std::shared_ptr<ICameraClock> mClock;
  const std::unique_ptr<ILineEnd> mFarEnd; // The thread's, while there is one.

  std::mutex mOpenMutex;                // Keeps opening and closing in one order; taken before mMutex. Guards mThread.
  mutable std::mutex mMutex;            // Guards the members from here on.
  std::condition_variable mWork;        // The thread has something to do.
  std::condition_variable_any mChanged; // Whoever reads or writes may go on.
  const void* mHolder = nullptr;
  std::uint64_t mOpening = 0; // Counts openings, so that a call of one does not go on in the next.
  std::optional<KrResult> mEnd;
  bool mIsStopping = false;
  bool mIsWoken = false;
  bool mIsStalled = false; // Bytes wait for room in the receive queue.
  SerialSettings mSettings;
  std::uint32_t mAppliedRate = 0;
  bool mIsPowerApplied = true;
  bool mHasLostPower = false; // Since it was applied last, also where it is back.
  ByteQueue mTransmit{kTransmitBytes};
  ByteQueue mReceive{kReceiveBytes};
  ByteQueue mOutgoing; // Has passed the line, and is to be taken by the far end; each byte may be there twice.
  ByteQueue mIncoming; // Was given by the far end, and has not passed the line.
  LinePace mOutPace;
  LinePace mInPace;
  LineFaults mSentFaults;
  LineFaults mReceivedFaults;
  bool mIsSilenced = false;
  KrSimulatedSerialCounts mCounts;
  std::uint64_t mFarEndNextNs = ILineEnd::kNever;

  std::thread mThread;
};

} // namespace krtransport
