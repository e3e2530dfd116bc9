#pragma once
// Keeps the features' values fresh: the thread of the automatic and of the polling mode, and the pass of the manual
// one. What a reading is, is left to the nodes.

#include "krgenicam/krgenparameterarray.h"
#include "krgui/krgenrefresh.h"
#include "logic/browser/browsertree.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

namespace krgui {

/// At most one thread at a time.
///
/// Thread: the user interface's. Ownership: borrows array and tree, neither of which may end or change while it runs.
class BrowserRefresh {
public:
  explicit BrowserRefresh(RowNotifier aNotifier);
  ~BrowserRefresh();
  BrowserRefresh(const BrowserRefresh&) = delete;
  BrowserRefresh& operator=(const BrowserRefresh&) = delete;

  /// Starts the thread of a mode; in manual mode reads everything here and now. Nothing may run.
  void Start(KrGenRefresh aMode, KrGenParameterArray& aArray, const BrowserTree& aTree);
  /// Asks the thread to end, wakes it and waits for its end, which may take as long as one reading. Nothing when none
  /// runs.
  void Stop();
  bool IsRunning() const { return mThread.joinable(); }
  /// Other rows came onto the screen: what of them was never read is read next, the rest of them soon. In polling mode
  /// nothing, as values come by themselves there.
  void WakeUp();

  /// A manual refresh: forgets what the array remembers, where it is open, and reads every feature, on this thread.
  void RefreshAll(KrGenParameterArray& aArray, const BrowserTree& aTree);

private:
  class AutomaticPass;

  void RunThread(void (BrowserRefresh::*aRun)(KrGenParameterArray&, const BrowserTree&), KrGenParameterArray& aArray,
                 const BrowserTree& aTree);
  void RunAutomatic(KrGenParameterArray& aArray, const BrowserTree& aTree);
  void RunPolling(KrGenParameterArray& aArray, const BrowserTree& aTree);
  void RefreshFeature(TreeItemData& aNode);
  /// Waits until it is woken or the time has passed.
  void Wait(std::uint32_t aTimeMs);

  const RowNotifier mNotifier;
  std::atomic<bool> mIsStopping = false;
  std::atomic<std::uint32_t> mScreenChanges = 0; ///< How often other rows came onto the screen.
  std::mutex mWakeMutex;                         ///< Guards mIsWoken.
  std::condition_variable mWake;
  bool mIsWoken = false;
  std::thread mThread;
};

} // namespace krgui
