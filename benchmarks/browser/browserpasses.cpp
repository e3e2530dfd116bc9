#include "browserpasses.h"

#include "describedfeatures.h"
#include "figure.h"
#include "heartbeat.h"
#include "plainbrowser.h"
#include "shownbrowser.h"

#include <QScrollBar>

#include <cstdio>
#include <malloc.h>
#include <string>

namespace benchmarks {

namespace {

constexpr int kRuns = 5;
constexpr int kPaints = 51;
constexpr qint64 kLimitMs = 120'000;
// Searched in turn, so that each is a new search.
const QString kSearched[] = {QStringLiteral("eature1"), QStringLiteral("eature2")};

std::size_t GetHeapBytes() {
  return ::mallinfo2().uordblks;
}

void ScrollThrough(QTreeView& aView) {
  QScrollBar& bar = *aView.verticalScrollBar();
  for (int position = bar.minimum(); position < bar.maximum(); position += std::max(1, bar.pageStep())) {
    bar.setValue(position);
    aView.viewport()->repaint();
    QCoreApplication::processEvents();
  }
  bar.setValue(bar.minimum());
}

template <typename Search>
double MeasureSearch(QTreeView& aView, const Search& aSearch) {
  int turn = 0;
  return MeasureBestMs(kRuns, [&] {
    aSearch(kSearched[turn++ % 2]);
    aView.viewport()->repaint();
  });
}

class Passes {
public:
  explicit Passes(std::size_t aFeatures) : mFeatures(aFeatures), mName("browser_" + std::to_string(aFeatures) + "_") {}

  bool Measure(BrowserTimes& aTimes) {
    if (!mBrowser.IsUsable()) {
      std::fprintf(stderr, "The feature browser did not open.\n");
      return false;
    }
    aTimes.buildMs = MeasureBuild();
    if (!MeasureFirstPass(aTimes.passMs) || !MeasureMemory())
      return false;
    mPlain.Show(&mFeatures.GetArray());
    MeasurePage();
    MeasureScrolling();
    aTimes.searchMs = MeasureKey();
    mBrowser.Show(nullptr);
    mPlain.Show(nullptr);
    return true;
  }

private:
  void Print(const char* aWhat, double aValue, const char* aUnit, double aPlain) const {
    PrintFigure((mName + aWhat).c_str(), aValue, aUnit, "plain_tree_view", aPlain);
  }

  // Until SetGenParameterArray returns: wished for is less than 200 ms for 5,000.
  double MeasureBuild() {
    double plainMs = 0;
    double bestMs = 0;
    for (int run = 0; run < kRuns; ++run) {
      const double ms = MeasureBestMs(1, [&] { mBrowser.Show(&mFeatures.GetArray()); });
      mBrowser.Show(nullptr);
      const double plain = MeasureBestMs(1, [&] { mPlain.Show(&mFeatures.GetArray()); });
      mPlain.Show(nullptr);
      bestMs = run == 0 ? ms : std::min(bestMs, ms);
      plainMs = run == 0 ? plain : std::min(plainMs, plain);
    }
    Print("build", bestMs, "ms", plainMs);
    return bestMs;
  }

  // From the filling on until every value was read once.
  bool MeasureFirstPass(double& aMs) {
    mFeatures.GetArray().InvalidateCache();
    bool isRead = false;
    aMs = MeasureBestMs(1, [&] {
      mBrowser.Show(&mFeatures.GetArray());
      isRead = RunUntil([&] { return mBrowser.IsAllRead(); }, kLimitMs);
    });
    mBrowser.Show(nullptr);
    mFeatures.GetArray().InvalidateCache();
    const double plainMs = MeasureBestMs(1, [&] {
      mPlain.Show(&mFeatures.GetArray());
      mPlain.ReadAll();
    });
    mPlain.Show(nullptr);
    if (isRead)
      Print("automatic_pass", aMs, "ms", plainMs);
    else
      std::fprintf(stderr, "Not all features were read.\n");
    return isRead;
  }

  // Of the browser alone, with all values read; what the array remembers is there before.
  bool MeasureMemory() {
    mFeatures.ReadAll();
    const std::size_t before = GetHeapBytes();
    mBrowser.Show(&mFeatures.GetArray());
    const bool isRead = RunUntil([&] { return mBrowser.IsAllRead(); }, kLimitMs);
    const auto bytes = static_cast<double>(GetHeapBytes() - before);
    const auto shown = static_cast<double>(mBrowser.CountFeatures());
    const std::size_t beforePlain = GetHeapBytes();
    mPlain.Show(&mFeatures.GetArray());
    const auto plainBytes = static_cast<double>(GetHeapBytes() - beforePlain);
    Print("features_shown", shown, "1", static_cast<double>(mPlain.CountFeatures()));
    Print("memory_per_feature", bytes / shown, "B", plainBytes / shown);
    return isRead;
  }

  // Wished for is less than 5 ms.
  void MeasurePage() {
    const auto [ms, plainMs] = MeasureInTurnsMs(
        Timing::Thread, kPaints, [&] { mBrowser.GetView().viewport()->repaint(); },
        [&] { mPlain.GetView().viewport()->repaint(); });
    Print("page_painted", ms, "ms", plainMs);
  }

  void MeasureScrolling() {
    const double ms = MeasureBestMs(1, [&] { ScrollThrough(mBrowser.GetView()); });
    Print("scrolled_through", ms, "ms", MeasureBestMs(1, [&] { ScrollThrough(mPlain.GetView()); }));
  }

  // Wished for is less than 20 ms.
  double MeasureKey() {
    const double ms = MeasureSearch(mBrowser.GetView(), [&](const QString& aText) { mBrowser.Search(aText); });
    const double plainMs = MeasureSearch(mPlain.GetView(), [&](const QString& aText) { mPlain.Search(aText); });
    Print("search_key", ms, "ms", plainMs);
    return ms;
  }

  DescribedFeatures mFeatures;
  ShownBrowser mBrowser{KrGenRefresh::Automatic};
  PlainBrowser mPlain{mBrowser.IsUsable() ? mBrowser.GetGridSize() : QSize(600, 600)};
  const std::string mName;
};

} // namespace

bool MeasureBrowserPasses(std::size_t aFeatures, BrowserTimes& aTimes) {
  return Passes(aFeatures).Measure(aTimes);
}

} // namespace benchmarks
