#include "browserheartbeat.h"

#include "describedfeatures.h"
#include "figure.h"
#include "heartbeat.h"
#include "plainbrowser.h"
#include "shownbrowser.h"

#include <QScrollBar>

#include <cstdio>
#include <optional>
#include <string>

namespace benchmarks {

namespace {

/// How a user scrolls.
struct Scrolling {
  int rowsAtOnce;
  int intervalMs;
  int times;
};

// Through ten thousand rows, as fast as a wheel that is spun.
constexpr std::size_t kManyFeatures = 10'000;
constexpr Scrolling kFast = {10, 5, 1000};
constexpr double kFastWishMs = 16;
// Through a few pages, with time to read them.
constexpr std::size_t kFewFeatures = 500;
constexpr Scrolling kSlow = {20, 500, 16};
constexpr std::uint32_t kSlowRegisterMs = 20;
constexpr double kSlowWishMs = 50;
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

void Print(const std::string& aName, const Gaps& aGaps, const Gaps& aPlain, double aWishMs) {
  PrintFigure((aName + "_largest_gap").c_str(), aGaps.wallMs, "ms", "plain_tree_view", aPlain.wallMs);
  PrintFigure((aName + "_largest_gap_wish").c_str(), aGaps.wallMs, "ms", "wish", aWishMs);
  PrintFigure((aName + "_largest_busy").c_str(), aGaps.busyMs, "ms", "plain_tree_view", aPlain.busyMs);
}

bool MeasureFastScrolling() {
  DescribedFeatures features(kManyFeatures);
  Gaps gaps;
  {
    ShownBrowser browser(KrGenRefresh::Automatic);
    if (!browser.IsUsable())
      return false;
    browser.Show(&features.GetArray());
    // The worker goes on with its passes.
    if (!RunUntil([&] { return browser.IsAllRead(); }, kLimitMs))
      return false;
    gaps = ScrollAndMeasure(browser.GetView(), kFast);
    browser.Show(nullptr);
  }
  PlainBrowser plain({600, 600});
  plain.Show(&features.GetArray());
  Print("browser_scrolling_10000", gaps, ScrollAndMeasure(plain.GetView(), kFast), kFastWishMs);
  return true;
}

bool MeasureSlowRegisters() {
  DescribedFeatures features(kFewFeatures);
  Gaps gaps;
  {
    ShownBrowser browser(KrGenRefresh::Automatic);
    if (!browser.IsUsable())
      return false;
    features.GetPort().SetDelay(kSlowRegisterMs);
    browser.Show(&features.GetArray());
    gaps = ScrollAndMeasure(browser.GetView(), kSlow);
    features.GetArray().Cancel();
    browser.Show(nullptr);
  }
  features.GetArray().InvalidateCache();
  PlainBrowser plain({600, 600});
  plain.Show(&features.GetArray());
  Print("browser_slow_registers", gaps, ScrollAndMeasure(plain.GetView(), kSlow), kSlowWishMs);
  return true;
}

} // namespace

bool MeasureBrowserHeartbeat() {
  if (MeasureFastScrolling() && MeasureSlowRegisters())
    return true;
  std::fprintf(stderr, "The feature browser did not open, or did not read its features.\n");
  return false;
}

} // namespace benchmarks
