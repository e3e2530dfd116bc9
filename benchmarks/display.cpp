// What does a frame on the screen cost? Frames of a ring are put onto an X server as fast as they are taken, by the
// library's display and by its peers, each in a process of its own. Counted is the processor time of that process and
// of the X server, divided by the frames that were shown. The limit is a memcpy of the pixels that are seen.
//
// All show the whole image as large as the window allows, with its shape kept. Where bands remain, imshow, which knows
// none, is given a window of the image's size, and the other peers draw the image's pixels alone.
//
//   bench_display [FORMAT [SOURCE]]     e.g. bench_display BayerRG8 640x480

#include "display/displaycase.h"
#include "figure.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <limits>
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
constexpr Sizes kSizes[] = {{"1920x1080", "1280x720"}, {"4096x3000", "1600x900"}, {"640x480", "1280x960"}};
/// The ways take turns, so that a disturbance meets them all.
constexpr int kRounds = 3;

struct Measured {
  double cpuMs = std::numeric_limits<double>::max();
  double perSecond = 0;
  bool IsThere() const { return perSecond > 0; }
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

std::filesystem::path GetFolder() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

/// Runs one way once; nothing where its program was not built or fails.
std::optional<Measured> Run(const Way& aWay, const std::string& aCase) {
  const std::filesystem::path program = GetFolder() / aWay.program;
  if (!std::filesystem::exists(program))
    return std::nullopt;
  const std::string command = "'" + program.string() + "' " + aCase + " " + aWay.option;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> output(popen(command.c_str(), "r"), pclose);
  Measured measured;
  if (!output || std::fscanf(output.get(), "%lf %lf", &measured.cpuMs, &measured.perSecond) != 2) {
    std::fprintf(stderr, "%s %s failed.\n", aWay.program, aCase.c_str());
    return std::nullopt;
  }
  return measured;
}

double MeasureCopyMs(const std::string& aFormat, const Sizes& aSizes) {
  const auto shown = benchmarks::ParseDisplayCase({aFormat, aSizes.source, aSizes.window})->GetShownSize();
  const std::vector<std::uint32_t> source(std::size_t(shown.width) * shown.height, 1);
  std::vector<std::uint32_t> destination(source.size());
  return benchmarks::MeasureBestProcessorMs(
      50, [&] { std::memcpy(destination.data(), source.data(), source.size() * sizeof source[0]); });
}

/// False where one of the library's ways could not be measured.
bool MeasureCase(const std::string& aFormat, const Sizes& aSizes) {
  const std::string words = aFormat + " " + aSizes.source + " " + aSizes.window;
  std::array<Measured, std::size(kWays)> best;
  for (int round = 0; round < kRounds; ++round)
    for (std::size_t i = 0; i < best.size(); ++i)
      if (const std::optional<Measured> measured = Run(kWays[i], words)) {
        best[i].cpuMs = std::min(best[i].cpuMs, measured->cpuMs);
        best[i].perSecond = std::max(best[i].perSecond, measured->perSecond);
      }

  std::string format = aFormat;
  std::transform(format.begin(), format.end(), format.begin(),
                 [](unsigned char aLetter) { return std::tolower(aLetter); });
  const double copyMs = MeasureCopyMs(aFormat, aSizes);
  for (std::size_t ours = 0; ours < kOurs; ++ours) {
    const std::string name =
        std::string(ours == 0 ? "display_" : "display_held_") + format + "_" + aSizes.source + "_to_" + aSizes.window;
    if (!best[ours].IsThere())
      return false;
    const auto print = [&](const char* aPeer, double aPeerCpuMs, double aPeerPerSecond) {
      benchmarks::PrintFigure((name + "_cpu_per_frame").c_str(), best[ours].cpuMs, "ms", aPeer, aPeerCpuMs);
      benchmarks::PrintFigure((name + "_frames_per_second").c_str(), best[ours].perSecond, "1/s", aPeer,
                              aPeerPerSecond);
    };
    for (std::size_t peer = kOurs; peer < best.size(); ++peer)
      if (best[peer].IsThere())
        print(kWays[peer].name, best[peer].cpuMs, best[peer].perSecond);
    print("memcpy", copyMs, 1000 / copyMs);
  }
  return true;
}

} // namespace

int main(int aArgumentCount, char** aArguments) {
  for (const Way& way : kWays)
    if (!std::filesystem::exists(GetFolder() / way.program))
      std::fprintf(stderr, "%s was not built: what it needs is not installed.\n", way.program);
  bool isMeasured = true;
  for (const char* format : kFormats)
    for (const Sizes& sizes : kSizes) {
      const bool isWanted = (aArgumentCount < 2 || std::strcmp(aArguments[1], format) == 0) &&
                            (aArgumentCount < 3 || std::strcmp(aArguments[2], sizes.source) == 0);
      isMeasured = (!isWanted || MeasureCase(format, sizes)) && isMeasured;
    }
  return isMeasured ? 0 : 1;
}
