#include "finder/finderdiscovery.h"

#include "krbase/krlogger.h"
#include "krbase/rest.h"
#include "platform/tickcount.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <string>
#include <system_error>
#include <utility>

namespace krgui {

namespace {

constexpr KrLogSite kThreadSite = {"DeviceFinderWnd::DiscoveryThread", "devicefinderwnd"};
constexpr KrLogSite kReportSite = {"DeviceFinderWnd::OnDeviceFound", "devicefinderwnd"};

void Log(KrLogLevel aLevel, const KrLogSite& aSite, const KrString& aText) {
  KrLogger("KrGUILib").Log(aLevel, aSite, aText);
}

} // namespace

FinderDiscovery::FinderDiscovery(KrSystem& aSystem, const FinderKinds& aKinds, DeviceFilter aFilter,
                                 std::shared_ptr<MessageQueue> aQueue)
    : mSystem(aSystem), mFilter(std::move(aFilter)), mQueue(std::move(aQueue)),
      mModel(aSystem, aKinds, [this] { return GetClock(); }) {}

FinderDiscovery::~FinderDiscovery() = default;

/// Stands still while the window keeps discovery from running: nobody could be reported meanwhile.
std::uint32_t FinderDiscovery::GetClock() const {
  const std::lock_guard lock(mClockMutex);
  return mHeldSinceMs.value_or(GetTickCount()) - mHeldMs;
}

void FinderDiscovery::Start() {
  try {
    mThread = std::thread([this, stop = mStop.get_token()] { Run(stop); });
  } catch (const std::system_error& error) {
    Fail(std::string("Devices cannot be looked for: no thread could be started (") + error.what() +
         "). Close other programs and open the window again.");
  }
}

void FinderDiscovery::Fail(const std::string& aText) {
  {
    const std::lock_guard lock(mFailureMutex);
    mFailure = KrString(aText);
  }
  Log(KrLogLevel::Error, kThreadSite, KrString(aText));
  mQueue->PostOnce({kRefreshMessage, 0, 0});
}

KrString FinderDiscovery::GetFailure() const {
  const std::lock_guard lock(mFailureMutex);
  return mFailure;
}

void FinderDiscovery::Stop() {
  ReleaseData();
  if (!mThread.joinable())
    return;
  if (mThread.get_id() == std::this_thread::get_id()) {
    // The application ends the process in OnFound: a thread cannot wait for itself.
    mStop.request_stop();
    mThread.detach();
    return;
  }
  LockFind();
  mStop.request_stop();
  mQueue->CancelSends(mTicket);
  UnlockFind();
  mThread.join();
}

void FinderDiscovery::End() {
  mIsOver = true;
  Stop();
}

void FinderDiscovery::ReleaseData() {
  for (DataHold* hold : mDataHolds)
    hold->mLock.unlock();
  mDataHolds.clear();
}

void FinderDiscovery::LockFind() {
  // A round that runs may be waiting for the data lock.
  ReleaseData();
  mFindLock.LockByWindow([this] { mSystem.Cancel(); });
  const std::lock_guard lock(mClockMutex);
  if (mFindHolds++ == 0)
    mHeldSinceMs = GetTickCount();
}

void FinderDiscovery::UnlockFind() {
  {
    const std::lock_guard lock(mClockMutex);
    if (--mFindHolds == 0)
      mHeldMs += GetTickCount() - *std::exchange(mHeldSinceMs, std::nullopt);
  }
  mFindLock.UnlockByWindow();
}

void FinderDiscovery::Report(const KrInterface* aInterface, const KrDeviceInfo* aDevice) {
  if (aDevice && !AskApplication(aDevice))
    return;
  if (mIsOver)
    return;
  switch (mModel.TakeReport(aInterface, aDevice)) {
  case FinderModel::Next::Nothing:
    break;
  case FinderModel::Next::Refresh:
    mQueue->PostOnce({kRefreshMessage, 0, 0});
    break;
  case FinderModel::Next::Rebuild:
    // Waits for the handler, unless the thread is being joined; what it answers does not matter.
    (void)mQueue->Send(mTicket, {kRebuildMessage, 0, 0});
    break;
  }
}

bool FinderDiscovery::AskApplication(const KrDeviceInfo* aDevice) const {
  try {
    return mFilter(aDevice);
  } catch (const std::exception& error) {
    Log(KrLogLevel::Error, kReportSite,
        KrString(std::string("OnFound threw an exception; the device is shown: ") + error.what()));
  } catch (...) {
    Log(KrLogLevel::Error, kReportSite, "OnFound threw an exception; the device is shown.");
  }
  return true;
}

void FinderDiscovery::Replay() {
  for (std::size_t i = 0; !mIsOver && i < mSystem.GetDeviceCount(); ++i) {
    if (const KrDeviceInfo* device = mSystem.GetDeviceInfo(i))
      Report(device->GetInterface(), device);
  }
}

void FinderDiscovery::Run(const std::stop_token& aStop) {
  try {
    return DoRounds(aStop);
  } catch (const std::exception& error) {
    FailByFault(error.what());
  } catch (...) {
    FailByFault("an exception of an unknown kind");
  }
}

void FinderDiscovery::FailByFault(const char* aWhat) {
  Fail(std::string("Devices are no longer looked for, because of a fault (") + aWhat +
       "). Close this window and open it again.");
}

void FinderDiscovery::DoRounds(const std::stop_token& aStop) {
  Log(KrLogLevel::Info, kThreadSite, "Device finder window thread started");
  do
    DoRound(aStop);
  while (!aStop.stop_requested());
}

void FinderDiscovery::DoRound(const std::stop_token& aStop) {
  const auto begin = std::chrono::steady_clock::now();
  const std::optional<KrResult> found = Find(aStop);
  if (!found)
    return;
  ReportInterfaces(aStop);
  ++mRoundCount;
  // Devices age, and hints change, also where there is no interface to report.
  mQueue->PostOnce({kRefreshMessage, 0, 0});
  // Only a waiting window cancels a round; what else ends one early (nothing to ask, a failure) must not make this a
  // loop without rest.
  if (*found != KrResult::Code::Aborted)
    (void)krbase::Rest(
        begin + std::chrono::milliseconds(mSystem.GetDetectionTimeout()) - std::chrono::steady_clock::now(), aStop);
}

/// Nothing where it is not the thread's turn.
std::optional<KrResult> FinderDiscovery::Find(const std::stop_token& aStop) {
  const FindLock::Try turn(mFindLock);
  // Under the lock, where the stop was asked for: a round that began behind it would be cancelled by nobody.
  if (!turn.IsLocked() || aStop.stop_requested())
    return std::nullopt;
  mSystem.SetSubnetBroadcastEnabled(!mShowsUnreachable);
  return mSystem.Find();
}

void FinderDiscovery::ReportInterfaces(const std::stop_token& aStop) {
  for (std::size_t i = 0; !aStop.stop_requested() && i < mSystem.GetInterfaceCount(); ++i) {
    if (const KrInterface* interface = mSystem.GetInterface(i))
      Report(interface, nullptr);
  }
  if (!aStop.stop_requested() && mModel.HasLostInterface())
    (void)mQueue->Send(mTicket, {kRebuildMessage, 0, 0});
}

FinderDiscovery::FindHold::FindHold(std::shared_ptr<FinderDiscovery> aDiscovery) : mDiscovery(std::move(aDiscovery)) {
  mDiscovery->LockFind();
}

FinderDiscovery::FindHold::~FindHold() {
  mDiscovery->UnlockFind();
}

FinderDiscovery::DataHold::DataHold(std::shared_ptr<FinderDiscovery> aDiscovery)
    : mDiscovery(std::move(aDiscovery)), mLock(mDiscovery->mModel.GetDataLock()) {
  mDiscovery->mDataHolds.push_back(this);
}

FinderDiscovery::DataHold::~DataHold() {
  std::erase(mDiscovery->mDataHolds, this);
}

} // namespace krgui
