#include "browserheartbeat.h"

#include "describedfeatures.h"
#include "failing.h"
#include "figure.h"
#include "heartbeat.h"
#include "plainbrowser.h"
#include "shownbrowser.h"
#include "statistics.h"

#include <QScrollBar>

#include <string>
#include <vector>

namespace benchmarks {

namespace {

/// How a user scrolls.
struct Scrolling {
  int rowsAtOnce;
  int intervalMs;
  int times;
};

struct Situation {
  const char* name;
  std::size_t features;
  std::uint32_t registerMs; ///< What each access takes.
  bool isReadBefore;        ///< All values, before it scrolls.
  Scrolling scrolling;
  double wishMs;
};

// As fast as a wheel that is spun.
constexpr Situation kFast = {"browser_scrolling_10000", 10'000, 0, true, {10, 5, 1000}, 16};
// Through a few pages, with time to read them.
constexpr Situation kSlow = {"browser_slow_registers", 500, 20, false, {20, 500, 16}, 50};
constexpr int kTurns = 3;
constexpr qint64 kLimitMs = 120'000;

Gaps ScrollAndMeasure(QTreeView& aView, const Scrolling& aScrolling) {
  int steps = 0;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, [&] {
    QScrollBar& bar = *aView.verticalScrollBar();
    bar.setValue(bar.value() + aScrolling.rowsAtOnce);
    ++steps;
  });
  aView.verticalScrollBar()->setValue(0);
  timer.start(aScrolling.intervalMs);
  return MeasureLargestGaps([&] { return steps >= aScrolling.times; });
}

Gaps MeasureBrowser(DescribedFeatures& aFeatures, const Situation& aSituation) {
  ShownBrowser browser(KrGenRefresh::Automatic);
  if (!browser.IsUsable())
    Fail("the feature browser did not open.");
  aFeatures.GetPort().SetDelay(aSituation.registerMs);
  browser.Show(&aFeatures.GetArray());
  // The worker goes on with its passes.
  if (aSituation.isReadBefore && !RunUntil([&] { return browser.IsAllRead(); }, kLimitMs))
    Fail("not all features were read.");
  const Gaps gaps = ScrollAndMeasure(browser.GetView(), aSituation.scrolling);
  aFeatures.GetArray().Cancel();
  browser.Show(nullptr);
  return gaps;
}

Gaps MeasurePlain(DescribedFeatures& aFeatures, const Situation& aSituation) {
  PlainBrowser plain({600, 600});
  plain.Show(&aFeatures.GetArray());
  return ScrollAndMeasure(plain.GetView(), aSituation.scrolling);
}

void Measure(const Situation& aSituation) {
  DescribedFeatures features(aSituation.features);
  std::vector<Gaps> ours;
  std::vector<Gaps> plain;
  for (int turn = 0; turn < kTurns; ++turn) {
    features.GetArray().InvalidateCache();
    ours.push_back(MeasureBrowser(features, aSituation));
    if (!aSituation.isReadBefore)
      features.GetArray().InvalidateCache();
    plain.push_back(MeasurePlain(features, aSituation));
  }
  const auto print = [&](const char* aWhat, double Gaps::*aGap) {
    PrintFigure({std::string(aSituation.name) + aWhat, GetMedian(ours, aGap), "ms",
                 Peer{"plain_tree_view", GetMedian(plain, aGap)}, Limit{"wish", aSituation.wishMs}});
  };
  print("_largest_gap", &Gaps::wallMs);
  print("_largest_busy", &Gaps::busyMs);
}

} // namespace

void MeasureBrowserHeartbeat() {
  Measure(kFast);
  Measure(kSlow);
}

} // namespace benchmarks
