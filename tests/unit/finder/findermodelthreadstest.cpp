#include "logic/finder/findermodel.h"

#include "findermodelfixture.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

using krgui::FinderModel;

namespace {

// Rounds of discovery on a thread of their own, whose devices come and go and whose adapter changes its address.
class DiscoveryThread : private KrSystemEventSink {
public:
  DiscoveryThread(FinderBench& aBench, int aRounds) : mBench(aBench) {
    EXPECT_TRUE(mBench.found.Get().RegisterEventSink(this).IsOK());
    mThread = std::jthread([this, aRounds] { Work(aRounds); });
  }
  ~DiscoveryThread() override {
    mThread.join();
    EXPECT_TRUE(mBench.found.Get().UnregisterEventSink(this).IsOK());
  }
  bool IsOver() const { return mIsOver; }

private:
  void OnDeviceFound(const KrInterface* aInterface, const KrDeviceInfo* aDevice, bool&) override {
    mBench.model.TakeReport(aInterface, aDevice);
  }
  void Work(int aRounds) {
    FakeTransport& transport = mBench.found.GetTransport();
    for (int round = 1; round <= aRounds; ++round) {
      transport.interfaces = {MakeNumberedAdapter(0, round % 2 == 0 ? "10.0.0.1" : "10.0.0.2")};
      transport.answers.clear();
      for (int i = 0; i <= round % 7; ++i)
        transport.answers.emplace_back(0, MakeCamera(KrString(std::to_string(i))));
      EXPECT_TRUE(mBench.found.Get().Find().IsOK());
      EXPECT_EQ(mBench.model.TakeReport(mBench.found.GetInterface(0), nullptr), FinderModel::Next::Refresh);
      EXPECT_FALSE(mBench.model.HasLostInterface());
    }
    mIsOver = true;
  }

  FinderBench& mBench;
  std::atomic<bool> mIsOver = false;
  std::jthread mThread;
};

constexpr int kRounds = 200;

} // namespace

TEST(FinderModelThreads, ReportsDuringPasses_LeaveATreeThatFitsTheMaps) {
  FinderBench bench({MakeNumberedAdapter(0)});
  bench.Build();
  {
    DiscoveryThread discovery(bench, kRounds);
    while (!discovery.IsOver())
      bench.Refresh();
  }

  bench.Refresh();

  EXPECT_EQ(bench.tree.items.size(), 8U) << "the adapter and the seven devices that were ever reported";
  for (const auto& item : bench.tree.items)
    EXPECT_TRUE(bench.model.FindKey(item->info).has_value());
}

TEST(FinderModelThreads, SelectionLookedUpDuringReports_IsTheAdapterInEveryState) {
  FinderBench bench({MakeNumberedAdapter(0)});
  bench.Build();
  DiscoveryThread discovery(bench, kRounds);

  while (!discovery.IsOver()) {
    const krgui::FinderSelection selection =
        krgui::FindSelection(bench.found.Get(), bench.model, *bench.tree.items.front()->info);
    ASSERT_NE(selection.interface, nullptr);
    EXPECT_EQ(selection.interface->GetUniqueID(), KrString("eth0"));
  }
}
