// What does a frame on the screen cost? Frames of a ring are put onto an X server as fast as they are taken, by the
// library's display and by its peers, each in a process of its own. Counted is the processor time of that process and
// of the X server, divided by the frames that were shown. The ways take turns; what is printed are their medians. The
// least that can be is a memcpy of the pixels that are seen. The growth is that of the cost of an image's pixel from
// the smallest image to the largest one.
//
// All show the whole image as large as the window allows, with its shape kept. Where bands remain, imshow, which knows
// none, is given a window of the image's size, and the other peers draw the image's pixels alone.
//
//   bench_display [FORMAT [SOURCE]]     e.g. bench_display BayerRG8 640x480

#include "display/displaycase.h"
#include "figure.h"
#include "growth.h"
#include "statistics.h"
#include "timing.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

constexpr const char* kFormats[] = {"BGRa8", "Mono8", "BayerRG8", "Mono12p"};
struct Sizes {
  const char* source;
  const char* window;
};
constexpr Sizes kSmallest = {"640x480", "1280x960"};
constexpr Sizes kLargest = {"4096x3000", "1600x900"};
constexpr Sizes kSizes[] = {{"1920x1080", "1280x720"}, kLargest, kSmallest};
/// The ways take turns, so that a disturbance meets them all.
constexpr int kRounds = 3;

struct Measured {
  double cpuMs = 0;
  double perSecond = 0;
};

struct Way {
  const char* name;
  const char* program;
  const char* option;
};
constexpr Way kWays[] = {{"copied", "display_kr", ""},
                         {"held", "display_kr", "held"},
                         {"drawimage", "display_drawimage", ""},
                         {"imshow", "display_imshow", ""},
                         {"gstreamer", "display_gstreamer", ""}};
constexpr std::size_t kOurs = 2; ///< So many of them are the library's.
constexpr std::size_t kGrowthPeer = 2;

std::filesystem::path GetFolder() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

bool IsBuilt(const Way& aWay) {
  return std::filesystem::exists(GetFolder() / aWay.program);
}

/// Runs one way once; nothing where it fails.
std::optional<Measured> Run(const Way& aWay, const std::string& aCase) {
  const std::string command = "'" + (GetFolder() / aWay.program).string() + "' " + aCase + " " + aWay.option;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> output(popen(command.c_str(), "r"), pclose);
  Measured measured;
  if (!output || std::fscanf(output.get(), "%lf %lf", &measured.cpuMs, &measured.perSecond) != 2) {
    std::fprintf(stderr, "%s %s failed.\n", aWay.program, aCase.c_str());
    return std::nullopt;
  }
  return measured;
}

benchmarks::FrameSize GetSourceSize(const std::string& aFormat, const Sizes& aSizes) {
  return benchmarks::ParseDisplayCase({aFormat, aSizes.source, aSizes.window})->source;
}

double MeasureCopyMs(const std::string& aFormat, const Sizes& aSizes) {
  const auto shown = benchmarks::ParseDisplayCase({aFormat, aSizes.source, aSizes.window})->GetShownSize();
  const std::vector<std::uint32_t> source(std::size_t(shown.width) * shown.height, 1);
  std::vector<std::uint32_t> destination(source.size());
  return benchmarks::MeasureBestMs(benchmarks::Timing::Thread, 50, [&] {
    std::memcpy(destination.data(), source.data(), source.size() * sizeof source[0]);
  });
}

std::string MakeName(std::size_t aOurs, std::string aFormat) {
  std::transform(aFormat.begin(), aFormat.end(), aFormat.begin(),
                 [](unsigned char aLetter) { return std::tolower(aLetter); });
  return (aOurs == 0 ? "display_" : "display_held_") + aFormat;
}

/// The medians of the ways that were built and did not fail.
using Medians = std::array<std::optional<Measured>, std::size(kWays)>;

bool gIsMeasured = true; ///< All that was built.

Medians TakeTurns(const std::string& aCase) {
  std::array<std::vector<Measured>, std::size(kWays)> turns;
  for (int round = 0; round < kRounds; ++round)
    for (std::size_t i = 0; i < turns.size(); ++i) {
      if (!IsBuilt(kWays[i]))
        continue;
      const std::optional<Measured> measured = Run(kWays[i], aCase);
      if (measured)
        turns[i].push_back(*measured);
      gIsMeasured = gIsMeasured && measured;
    }
  Medians medians;
  for (std::size_t i = 0; i < turns.size(); ++i)
    if (!turns[i].empty())
      medians[i] = {benchmarks::GetMedian(turns[i], &Measured::cpuMs),
                    benchmarks::GetMedian(turns[i], &Measured::perSecond)};
  return medians;
}

void Print(const std::string& aName, const Measured& aOurs, const char* aPeer, const Measured& aPeers) {
  benchmarks::PrintFigure({aName + "_cpu_per_frame", aOurs.cpuMs, "ms", benchmarks::Peer{aPeer, aPeers.cpuMs}});
  benchmarks::PrintFigure(
      {aName + "_frames_per_second", aOurs.perSecond, "1/s", benchmarks::Peer{aPeer, aPeers.perSecond}});
}

Medians MeasureCase(const std::string& aFormat, const Sizes& aSizes) {
  const Medians medians = TakeTurns(aFormat + " " + aSizes.source + " " + aSizes.window);
  const double copyMs = MeasureCopyMs(aFormat, aSizes);
  for (std::size_t ours = 0; ours < kOurs; ++ours) {
    if (!medians[ours])
      continue;
    const std::string name = MakeName(ours, aFormat) + "_" + aSizes.source + "_to_" + aSizes.window;
    for (std::size_t peer = kOurs; peer < medians.size(); ++peer)
      if (medians[peer])
        Print(name, *medians[ours], kWays[peer].name, *medians[peer]);
    Print(name, *medians[ours], "memcpy", {copyMs, 1000 / copyMs});
  }
  return medians;
}

void PrintGrowth(const std::string& aFormat, const Medians& aSmallest, const Medians& aLargest) {
  const auto getCost = [&](const Sizes& aSizes, const Medians& aMedians, std::size_t aOurs) {
    const benchmarks::FrameSize size = GetSourceSize(aFormat, aSizes);
    return benchmarks::SizedCost{static_cast<double>(size.width) * size.height, aMedians[aOurs]->cpuMs,
                                 aMedians[kGrowthPeer] ? aMedians[kGrowthPeer]->cpuMs : 0};
  };
  const bool hasPeer = aSmallest[kGrowthPeer] && aLargest[kGrowthPeer];
  for (std::size_t ours = 0; ours < kOurs; ++ours)
    if (aSmallest[ours] && aLargest[ours])
      benchmarks::PrintGrowth(MakeName(ours, aFormat) + "_cpu", getCost(kSmallest, aSmallest, ours),
                              getCost(kLargest, aLargest, ours),
                              hasPeer ? std::optional<std::string>(kWays[kGrowthPeer].name) : std::nullopt);
}

} // namespace

int main(int aArgumentCount, char** aArguments) {
  for (const Way& way : kWays)
    if (!IsBuilt(way))
      std::fprintf(stderr, "%s was not built: what it needs is not installed.\n", way.program);
  int cases = 0;
  for (const char* format : kFormats) {
    std::map<std::string, Medians> bySource;
    for (const Sizes& sizes : kSizes) {
      const bool isWanted = (aArgumentCount < 2 || std::strcmp(aArguments[1], format) == 0) &&
                            (aArgumentCount < 3 || std::strcmp(aArguments[2], sizes.source) == 0);
      if (!isWanted)
        continue;
      ++cases;
      bySource[sizes.source] = MeasureCase(format, sizes);
    }
    if (bySource.contains(kSmallest.source) && bySource.contains(kLargest.source))
      PrintGrowth(format, bySource[kSmallest.source], bySource[kLargest.source]);
  }
  return gIsMeasured && cases > 0 ? 0 : 1;
}
