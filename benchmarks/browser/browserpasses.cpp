#include "browserpasses.h"

#include "describedfeatures.h"
#include "failing.h"
#include "figure.h"
#include "heap.h"
#include "heartbeat.h"
#include "plainbrowser.h"
#include "shownbrowser.h"
#include "timing.h"

#include <QScrollBar>

#include <algorithm>
#include <limits>
#include <optional>
#include <string>

namespace benchmarks {

namespace {

constexpr int kTurns = 5;
constexpr int kPaints = 51;
constexpr qint64 kLimitMs = 120'000;
constexpr const char* kPeer = "plain_tree_view";
// What is wished for with the features that cameras have.
constexpr std::size_t kUsualFeatures = 5000;
constexpr double kBuildWishMs = 200;
constexpr double kPageWishMs = 5;
constexpr double kSearchWishMs = 20;
// Searched in turn, so that each is a new search.
const QString kSearched[] = {QStringLiteral("eature1"), QStringLiteral("eature2")};

void ScrollThrough(QTreeView& aView) {
  QScrollBar& bar = *aView.verticalScrollBar();
  for (int position = bar.minimum(); position < bar.maximum(); position += std::max(1, bar.pageStep())) {
    bar.setValue(position);
    aView.viewport()->repaint();
    QCoreApplication::processEvents();
  }
  bar.setValue(bar.minimum());
}

template <typename Browser>
void Search(Browser& aBrowser, int aTurn) {
  aBrowser.Search(kSearched[aTurn % 2]);
  aBrowser.GetView().viewport()->repaint();
}

class Passes {
public:
  explicit Passes(std::size_t aFeatures) : mFeatures(aFeatures), mCount(aFeatures) {}

  BrowserCosts Measure() {
    if (!mBrowser.IsUsable())
      Fail("the feature browser did not open.");
    BrowserCosts costs;
    costs.build = MeasureBuild();
    costs.pass = MeasureFirstPass();
    costs.memory = MeasureMemory();
    mPlain.Show(&mFeatures.GetArray());
    MeasurePage();
    costs.scrolling = MeasureScrolling();
    costs.search = MeasureSearch();
    mBrowser.Show(nullptr);
    mPlain.Show(nullptr);
    return costs;
  }

private:
  void Print(const char* aWhat, double aValue, const char* aUnit, double aPlain,
             std::optional<double> aWish = std::nullopt) const {
    Figure figure{"browser_" + std::to_string(mCount) + "_" + aWhat, aValue, aUnit, Peer{kPeer, aPlain}};
    if (aWish && mCount == kUsualFeatures)
      figure.limit = Limit{"wish", *aWish};
    PrintFigure(figure);
  }

  // The best times of turns of the browser and of the plain view.
  template <typename Ours, typename Plain>
  SizedCost TakeTurns(const Ours& aOurs, const Plain& aPlain) const {
    SizedCost cost{static_cast<double>(mCount), std::numeric_limits<double>::max(), std::numeric_limits<double>::max()};
    for (int turn = 0; turn < kTurns; ++turn) {
      cost.ours = std::min(cost.ours, aOurs(turn));
      cost.peers = std::min(cost.peers, aPlain(turn));
    }
    return cost;
  }

  // Until SetGenParameterArray returns.
  SizedCost MeasureBuild() {
    const auto build = [&](auto& aBrowser) {
      const double ms = MeasureMs(Timing::Wall, [&] { aBrowser.Show(&mFeatures.GetArray()); });
      aBrowser.Show(nullptr);
      return ms;
    };
    const SizedCost cost = TakeTurns([&](int) { return build(mBrowser); }, [&](int) { return build(mPlain); });
    Print("build", cost.ours, "ms", cost.peers, kBuildWishMs);
    return cost;
  }

  void AwaitAllRead() {
    if (!RunUntil([&] { return mBrowser.IsAllRead(); }, kLimitMs))
      Fail("not all features were read.");
  }

  // From the filling on until every value was read once.
  SizedCost MeasureFirstPass() {
    const auto read = [&](auto& aBrowser, const auto& aReadAll) {
      mFeatures.GetArray().InvalidateCache();
      const double ms = MeasureMs(Timing::Wall, [&] {
        aBrowser.Show(&mFeatures.GetArray());
        aReadAll();
      });
      aBrowser.Show(nullptr);
      return ms;
    };
    const SizedCost cost = TakeTurns([&](int) { return read(mBrowser, [&] { AwaitAllRead(); }); },
                                     [&](int) { return read(mPlain, [&] { mPlain.ReadAll(); }); });
    Print("automatic_pass", cost.ours, "ms", cost.peers);
    return cost;
  }

  // Of the browser alone, with all values read; what the array remembers is there before.
  SizedCost MeasureMemory() {
    mFeatures.ReadAll();
    const double before = GetHeapBytes();
    mBrowser.Show(&mFeatures.GetArray());
    AwaitAllRead();
    const double bytes = GetHeapBytes() - before;
    const auto shown = static_cast<double>(mBrowser.CountFeatures());
    const double beforePlain = GetHeapBytes();
    mPlain.Show(&mFeatures.GetArray());
    const double plainBytes = GetHeapBytes() - beforePlain;
    Print("features_shown", shown, "features", static_cast<double>(mPlain.CountFeatures()));
    Print("memory_per_feature", bytes / shown, "B", plainBytes / shown);
    return {shown, bytes, plainBytes};
  }

  void MeasurePage() {
    const auto [ms, plainMs] = MeasureInTurnsMs(
        Timing::Thread, kPaints, [&] { mBrowser.GetView().viewport()->repaint(); },
        [&] { mPlain.GetView().viewport()->repaint(); });
    Print("page_painted", ms, "ms", plainMs, kPageWishMs);
  }

  // As searching, in processor time of the thread: both wait for nobody.
  SizedCost MeasureScrolling() {
    const auto scroll = [](auto& aBrowser) {
      return MeasureMs(Timing::Thread, [&] { ScrollThrough(aBrowser.GetView()); });
    };
    const SizedCost cost = TakeTurns([&](int) { return scroll(mBrowser); }, [&](int) { return scroll(mPlain); });
    Print("scrolled_through", cost.ours, "ms", cost.peers);
    return cost;
  }

  SizedCost MeasureSearch() {
    const auto search = [](auto& aBrowser, int aTurn) {
      return MeasureMs(Timing::Thread, [&] { Search(aBrowser, aTurn); });
    };
    const SizedCost cost =
        TakeTurns([&](int aTurn) { return search(mBrowser, aTurn); }, [&](int aTurn) { return search(mPlain, aTurn); });
    Print("search_key", cost.ours, "ms", cost.peers, kSearchWishMs);
    return cost;
  }

  DescribedFeatures mFeatures;
  ShownBrowser mBrowser{KrGenRefresh::Automatic};
  PlainBrowser mPlain{mBrowser.IsUsable() ? mBrowser.GetGridSize() : QSize(600, 600)};
  const std::size_t mCount;
};

} // namespace

BrowserCosts MeasureBrowserPasses(std::size_t aFeatures) {
  return Passes(aFeatures).Measure();
}

void PrintBrowserGrowth(const BrowserCosts& aFew, const BrowserCosts& aMany) {
  PrintGrowth("browser_build", aFew.build, aMany.build, kPeer);
  PrintGrowth("browser_automatic_pass", aFew.pass, aMany.pass, kPeer);
  PrintGrowth("browser_scrolled_through", aFew.scrolling, aMany.scrolling, kPeer);
  PrintGrowth("browser_search_key", aFew.search, aMany.search, kPeer);
  PrintGrowth("browser_memory", aFew.memory, aMany.memory, kPeer);
}

} // namespace benchmarks
