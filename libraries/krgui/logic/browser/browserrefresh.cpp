#include "logic/browser/browserrefresh.h"

#include "krbase/krlogger.h"
#include "krgenicam/krgenaccessstop.h"

#include <chrono>
#include <string>
#include <system_error>

namespace krgui {

namespace {

using Features = std::vector<std::unique_ptr<TreeItemData>>;

constexpr KrLogSite kStartSite = {"GenBrowserWnd::StartRefresh", "genbrowserwnd"};
constexpr KrLogSite kAutomaticSite = {"GenBrowserWnd::AutoRefreshThread", "genbrowserwnd"};
constexpr KrLogSite kPollingSite = {"GenBrowserWnd::PollingThread", "genbrowserwnd"};

void Log(KrLogLevel aLevel, const KrLogSite& aSite, const KrString& aText) {
  KrLogger("KrGUILib").Log(aLevel, aSite, aText);
}

/// Makes the array forget what it remembers without a word to the nodes, each of which is read next: they would have
/// the notification thread read all of them, too, beside this thread and in its way. Others who listen hear of it.
void ForgetUnheard(KrGenParameterArray& aArray, const Features& aFeatures) {
  for (const std::unique_ptr<TreeItemData>& feature : aFeatures) {
    feature->StopListening();
  }
  aArray.InvalidateCache();
  for (const std::unique_ptr<TreeItemData>& feature : aFeatures) {
    feature->ListenAgain();
  }
}

/// Tells of polling that fails: of the first failure in a row, and of its end.
class PollingReport {
public:
  void Note(const KrResult& aResult) {
    if (aResult.IsOK() == !mIsFailing) {
      return;
    }
    mIsFailing = !mIsFailing;
    if (mIsFailing) {
      Log(KrLogLevel::Warning, kPollingSite,
          "Polling the device failed and is tried again; values may be old meanwhile. " + aResult.GetDescription());
    } else {
      Log(KrLogLevel::Info, kPollingSite, "Polling the device works again.");
    }
  }

private:
  bool mIsFailing = false;
};

} // namespace

/// One walk over the features: what is on the screen or was never read, each once, in the list's order, but what the
/// user looks at and was never read before everything else.
class BrowserRefresh::AutomaticPass {
public:
  AutomaticPass(BrowserRefresh& aRefresh, const Features& aFeatures)
      : mRefresh(aRefresh), mFeatures(aFeatures), mIsDone(aFeatures.size(), false) {}

  void Run() {
    ReadEmptyRows();
    for (std::size_t i = 0; i < mFeatures.size() && !mRefresh.mIsStopping; ++i) {
      if (mScreenChanges != mRefresh.mScreenChanges) {
        ReadEmptyRows();
      }
      if (mFeatures[i]->IsOnScreen() || !mFeatures[i]->IsRead()) {
        Refresh(i);
      }
    }
  }

private:
  /// Rows on the screen that show nothing yet. Looks at all features, but only when the screen has changed.
  void ReadEmptyRows() {
    mScreenChanges = mRefresh.mScreenChanges;
    for (std::size_t i = 0; i < mFeatures.size() && !mRefresh.mIsStopping; ++i) {
      if (mFeatures[i]->IsOnScreen() && !mFeatures[i]->IsRead()) {
        Refresh(i);
      }
    }
  }
  void Refresh(std::size_t aIndex) {
    if (!mIsDone[aIndex] && !mRefresh.mIsStopping) {
      mIsDone[aIndex] = true;
      mRefresh.RefreshFeature(*mFeatures[aIndex]);
    }
  }

  BrowserRefresh& mRefresh;
  const Features& mFeatures;
  std::vector<bool> mIsDone;
  std::uint32_t mScreenChanges = 0;
};

BrowserRefresh::BrowserRefresh(RowNotifier aNotifier, const RefreshRhythm& aRhythm)
    : mNotifier(std::move(aNotifier)), mRhythm(aRhythm) {}

BrowserRefresh::~BrowserRefresh() {
  Stop();
}

void BrowserRefresh::Start(KrGenRefresh aMode, KrGenParameterArray& aArray, const BrowserTree& aTree) {
  {
    const std::lock_guard lock(mWakeMutex);
    mIsWoken = false;
  }
  mIsStopping = false;
  mAccessStop = std::stop_source();
  if (aMode == KrGenRefresh::Automatic) {
    RunThread(&BrowserRefresh::RunAutomatic, aArray, aTree);
  } else if (aMode == KrGenRefresh::Polling) {
    RunThread(&BrowserRefresh::RunPolling, aArray, aTree);
  } else {
    RefreshAll(aArray, aTree);
  }
}

void BrowserRefresh::RunThread(void (BrowserRefresh::*aRun)(KrGenParameterArray&, const BrowserTree&),
                               KrGenParameterArray& aArray, const BrowserTree& aTree) {
  try {
    mThread = std::thread([this, aRun, &aArray, &aTree] {
      const KrGenAccessStop end(mAccessStop.get_token());
      (this->*aRun)(aArray, aTree);
    });
  } catch (const std::system_error& error) {
    Log(KrLogLevel::Error, kStartSite,
        KrString(std::string("Values cannot be kept fresh: no thread could be started (") + error.what() +
                 "). Close other programs and choose the refresh mode again."));
  }
}

void BrowserRefresh::Stop() {
  if (!mThread.joinable()) {
    return;
  }
  {
    const std::lock_guard lock(mWakeMutex);
    mIsStopping = true;
  }
  mWake.notify_all();
  mAccessStop.request_stop();
  mThread.join();
}

void BrowserRefresh::WakeUp() {
  {
    const std::lock_guard lock(mWakeMutex);
    mIsWoken = true;
  }
  mWake.notify_all();
}

void BrowserRefresh::RefreshAll(KrGenParameterArray& aArray, const BrowserTree& aTree) {
  if (aArray.GetAccessMode() == KrGenArrayAccess::Open) {
    ForgetUnheard(aArray, aTree.GetFeatures());
  }
  for (const std::unique_ptr<TreeItemData>& feature : aTree.GetFeatures()) {
    feature->Refresh();
    mNotifier.TellRowChanged(feature->GetItem());
  }
}

void BrowserRefresh::RunAutomatic(KrGenParameterArray&, const BrowserTree& aTree) {
  Log(KrLogLevel::Info, kAutomaticSite, "GenICam browser thread (auto) started");
  while (!mIsStopping) {
    AutomaticPass(*this, aTree.GetFeatures()).Run();
    Wait(mRhythm.automaticMs);
  }
}

void BrowserRefresh::RunPolling(KrGenParameterArray& aArray, const BrowserTree& aTree) {
  Log(KrLogLevel::Info, kPollingSite, "GenICam browser thread (polling) started");
  for (const std::unique_ptr<TreeItemData>& feature : aTree.GetFeatures()) {
    if (mIsStopping) {
      return;
    }
    RefreshFeature(*feature);
  }
  PollingReport report;
  while (!mIsStopping) {
    const KrResult result = aArray.Poll(mAccessStop.get_token());
    // What was stopped is no failure of the device.
    if (!mIsStopping) {
      report.Note(result);
    }
    Wait(mRhythm.pollingMs);
  }
}

void BrowserRefresh::RefreshFeature(TreeItemData& aNode) {
  aNode.Refresh();
  if (!mIsStopping) {
    mNotifier.TellRowChanged(aNode.GetItem());
  }
}

void BrowserRefresh::Wait(std::uint32_t aTimeMs) {
  std::unique_lock lock(mWakeMutex);
  mWake.wait_for(lock, std::chrono::milliseconds(aTimeMs), [this] { return mIsWoken || mIsStopping; });
  mIsWoken = false;
}

} // namespace krgui
