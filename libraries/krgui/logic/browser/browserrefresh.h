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
#include <stop_token>
#include <thread>

namespace krgui {

/// How long the threads wait between two passes.
struct RefreshRhythm {
  std::uint32_t automaticMs = 2000;
  std::uint32_t pollingMs = 100;
};

/// At most one thread at a time.
///
/// Thread: the user interface's. Ownership: borrows array and tree, neither of which may end or change while it runs.
class BrowserRefresh {
public:
  explicit BrowserRefresh(RowNotifier aNotifier, const RefreshRhythm& aRhythm = {});
  ~BrowserRefresh();
  BrowserRefresh(const BrowserRefresh&) = delete;
  BrowserRefresh& operator=(const BrowserRefresh&) = delete;

  /// Starts the thread of a mode; in manual mode reads everything here and now. Nothing may run.
  void Start(KrGenRefresh aMode, KrGenParameterArray& aArray, const BrowserTree& aTree);
  /// Asks the thread to end, wakes it, ends the access to the device that it waits for, and waits for its end. Accesses
  /// of others are let alone: where it waits for its turn, that takes as long as theirs. Nothing when none runs.
  void Stop();
  bool IsRunning() const { return mThread.joinable(); }
  /// Other rows came onto the screen: what of them was never read is read next. What was read before is read again in
  /// the next pass, however much the user scrolls. In polling mode nothing, as values come by themselves there.
  void NoteScreenChange() { ++mScreenChanges; }
  /// Much has changed in the device: the next pass begins as soon as the present one has ended.
  void WakeUp();

  /// A manual refresh: forgets what the array remembers, where it is open, and reads every feature, on this thread
  /// and on no other. What changes meanwhile is heard of as ever.
  void RefreshAll(KrGenParameterArray& aArray, const BrowserTree& aTree);

private:
  class AutomaticPass;

  void RunThread(void (BrowserRefresh::*aRun)(KrGenParameterArray&, const BrowserTree&), KrGenParameterArray& aArray,
                 const BrowserTree& aTree);
  void RunAutomatic(KrGenParameterArray& aArray, const BrowserTree& aTree);
  void RunPolling(KrGenParameterArray& aArray, const BrowserTree& aTree);
  void RefreshFeature(TreeItemData& aNode);
  /// Waits until it is woken, is to end or the time has passed. Rows that come onto the screen meanwhile have all been
  /// read before.
  void Wait(std::uint32_t aTimeMs);

  const RowNotifier mNotifier;
  const RefreshRhythm mRhythm;
  std::atomic<bool> mIsStopping = false;
  std::atomic<std::uint32_t> mScreenChanges = 0; ///< How often other rows came onto the screen.
  std::mutex mWakeMutex; ///< Guards mIsWoken; held while mIsStopping is set, too, so that no wait misses it.
  std::condition_variable mWake;
  bool mIsWoken = false;
  std::stop_source mAccessStop; ///< Set before the thread begins. Ends its accesses.
  std::thread mThread;
};

} // namespace krgui
