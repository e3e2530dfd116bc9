#pragma once
// One showing of the finder apart from its window: the nodes, the thread that looks for devices, and the locks between
// the two. Without a toolkit; what is on the screen is the window's business. A handler that runs a nested loop keeps
// its showing and asks it afterwards whether the window is still there.

#include "krbase/krresult.h"
#include "krbase/krstring.h"
#include "krsystem/krsystem.h"
#include "logic/finder/findermodel.h"
#include "logic/finder/findlock.h"
#include "logic/frame/messagequeue.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

namespace krgui {

/// Asks the application whether a device may be shown.
using DeviceFilter = std::function<bool(const KrDeviceInfo*)>;

/// Thread: user interface, but for Report, which comes on discovery's threads too.
/// Ownership: shared by the window and by its handlers that are on the stack. Borrows system and kinds, which it does
/// not touch any more once it has ended.
class FinderDiscovery {
public:
  static constexpr std::uint32_t kRefreshMessage = 0x2B01; ///< Posted: synchronise the tree with the nodes.
  static constexpr std::uint32_t kRebuildMessage = 0x2B02; ///< Sent: build the tree anew.

  FinderDiscovery(KrSystem& aSystem, const FinderKinds& aKinds, DeviceFilter aFilter,
                  std::shared_ptr<MessageQueue> aQueue);
  ~FinderDiscovery();
  FinderDiscovery(const FinderDiscovery&) = delete;
  FinderDiscovery& operator=(const FinderDiscovery&) = delete;

  FinderModel& GetModel() { return mModel; }

  /// Starts the thread. Where the system gives none, that is the failure.
  void Start();
  /// Ends the thread: at once but for what a round takes to be cancelled.
  void Stop();
  /// Stop, for good: the window is going.
  void End();
  /// The window has gone, and perhaps been deleted.
  bool IsOver() const { return mIsOver; }

  /// Whether devices are looked for, and shown, that this host cannot reach.
  void SetShowUnreachable(bool aShow) { mShowsUnreachable = aShow; }
  /// How many rounds have ended.
  std::uint32_t GetRoundCount() const { return mRoundCount; }
  /// Why devices are not looked for, and what to do; empty as long as they are. The window is told by a refresh.
  KrString GetFailure() const;

  /// One report: an interface alone, or a device behind one; asks the application, enters it and tells the window.
  void Report(const KrInterface* aInterface, const KrDeviceInfo* aDevice);
  /// Reports every device that the system knows. The application's code that is asked may end this showing.
  void Replay();

  /// Keeps discovery from running; waits for the round that runs, which is cancelled. For as long devices do not age.
  class FindHold {
  public:
    explicit FindHold(std::shared_ptr<FinderDiscovery> aDiscovery);
    ~FindHold();
    FindHold(const FindHold&) = delete;
    FindHold& operator=(const FindHold&) = delete;

  private:
    const std::shared_ptr<FinderDiscovery> mDiscovery;
  };

  /// Holds the data lock through a replay, unless that needs the find lock or ends the window: whoever waits for the
  /// thread gives up first what the thread may be waiting for.
  class DataHold {
  public:
    explicit DataHold(std::shared_ptr<FinderDiscovery> aDiscovery);
    ~DataHold();
    DataHold(const DataHold&) = delete;
    DataHold& operator=(const DataHold&) = delete;

  private:
    friend class FinderDiscovery;
    const std::shared_ptr<FinderDiscovery> mDiscovery;
    std::unique_lock<std::recursive_mutex> mLock;
  };

private:
  void ReleaseData();
  void LockFind();
  void UnlockFind();
  void Fail(const std::string& aText);
  void FailByFault(const char* aWhat);
  bool AskApplication(const KrDeviceInfo* aDevice) const;
  std::uint32_t GetClock() const;

  // On the discovery thread.
  void Run(const std::stop_token& aStop);
  void DoRounds(const std::stop_token& aStop);
  void DoRound(const std::stop_token& aStop);
  std::optional<KrResult> Find(const std::stop_token& aStop);
  void ReportInterfaces(const std::stop_token& aStop);

  KrSystem& mSystem;
  const DeviceFilter mFilter;
  const std::shared_ptr<MessageQueue> mQueue;
  const std::shared_ptr<WorkerTicket> mTicket = std::make_shared<WorkerTicket>();
  std::atomic<bool> mIsOver = false;
  std::atomic<bool> mShowsUnreachable = false;
  std::atomic<std::uint32_t> mRoundCount = 0;

  mutable std::mutex mFailureMutex; ///< Guards the one that follows.
  KrString mFailure;

  FindLock mFindLock;
  int mFindHolds = 0;
  mutable std::mutex mClockMutex;            ///< Guards the two that follow.
  std::optional<std::uint32_t> mHeldSinceMs; ///< Since when the window keeps discovery from running.
  std::uint32_t mHeldMs = 0;                 ///< How long it did so before, in all.
  FinderModel mModel;
  std::vector<DataHold*> mDataHolds;

  std::stop_source mStop;
  std::thread mThread;
};

} // namespace krgui
