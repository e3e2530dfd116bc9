#include "panels/intervaltable.h"

#include "krbase/kratomicfile.h"
#include "plaintext.h"

namespace krviewer {

namespace {

constexpr const char* kNames = "seconds,frames,arrival_min_ms,arrival_mean_ms,arrival_max_ms,camera_min_ms,"
                               "camera_mean_ms,camera_max_ms,incomplete,missing,discarded\n";

std::string FormatSummary(const IntervalSummary& aSummary) {
  if (aSummary.count == 0)
    return ",,";
  const auto format = [](double aNs) { return krapps::FormatFixed(aNs * 1e-6, 6); };
  return format(aSummary.leastNs) + "," + format(aSummary.meanNs) + "," + format(aSummary.greatestNs);
}

} // namespace

std::string FormatIntervalTable(const IntervalView& aView) {
  std::string table = kNames;
  for (const IntervalStep& step : aView.steps) {
    const double beginNs = static_cast<double>(step.index) * static_cast<double>(aView.stepNs);
    table += krapps::FormatFixed((beginNs - static_cast<double>(aView.endNs)) * 1e-9, 6) + "," +
             std::to_string(step.losses.frames) + "," + FormatSummary(step.arrivals) + "," +
             FormatSummary(step.camera) + "," + std::to_string(step.losses.incomplete) + "," +
             std::to_string(step.losses.missing) + "," + std::to_string(step.losses.discarded) + "\n";
  }
  return table;
}

KrResult SaveIntervalTable(const KrString& aFileName, const IntervalView& aView) {
  const std::string table = FormatIntervalTable(aView);
  KrAtomicFile file;
  KrResult result = file.Open(aFileName, KrAtomicFile::Existing::Replaced);
  if (result.IsOK())
    result = file.Write(table.data(), table.size());
  return result.IsOK() ? file.Commit() : result;
}

} // namespace krviewer
