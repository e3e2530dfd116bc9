// What a serial bridge moves in a second, and what it adds to the time of a byte, beside socat between the same
// pseudo-terminals, and a bare pseudo-terminal, the physical limit.

#include "figure.h"
#include "statistics.h"
#include "traffic.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace {

using benchmarks::Line;

constexpr std::size_t kBytes = 4'000'000;
constexpr int kLatencies = 1000;
constexpr int kRounds = 7;

/// What a way of bytes has come to over the rounds: the best rates, and the times of all single bytes.
struct Score {
  double toDevice = 0;
  double fromDevice = 0;
  double bothWays = 0;
  std::vector<double> latencies = {};
};

struct Way {
  const char* name;
  std::unique_ptr<Line> line;
  Score score = {};
};

void TakeTurn(Way& aWay) {
  Score& score = aWay.score;
  const int host = aWay.line->GetHostEnd();
  const int device = aWay.line->GetDeviceEnd();
  score.toDevice = std::max(score.toDevice, benchmarks::MeasureOneWay(host, device, kBytes));
  score.fromDevice = std::max(score.fromDevice, benchmarks::MeasureOneWay(device, host, kBytes));
  score.bothWays = std::max(score.bothWays, benchmarks::MeasureBothWays(*aWay.line, kBytes));
  const std::vector<double> latencies = benchmarks::MeasureLatencies(*aWay.line, kLatencies);
  score.latencies.insert(score.latencies.end(), latencies.begin(), latencies.end());
}

void PrintBeside(const Way& aWay, const Way& aPeer) {
  const auto print = [&](const char* aFigure, const char* aUnit, double aValue, double aPeerValue) {
    benchmarks::PrintFigure(
        {std::string(aWay.name) + "_" + aFigure, aValue, aUnit, benchmarks::Peer{aPeer.name, aPeerValue}});
  };
  const Score& own = aWay.score;
  const Score& peer = aPeer.score;
  print("to_device", "MB/s", own.toDevice, peer.toDevice);
  print("from_device", "MB/s", own.fromDevice, peer.fromDevice);
  print("both_ways", "MB/s", own.bothWays, peer.bothWays);
  print("latency_median", "us", benchmarks::GetQuantile(own.latencies, 0.5),
        benchmarks::GetQuantile(peer.latencies, 0.5));
  print("latency_99_percent", "us", benchmarks::GetQuantile(own.latencies, 0.99),
        benchmarks::GetQuantile(peer.latencies, 0.99));
}

} // namespace

int main() {
  Way bridge{.name = "bridge", .line = benchmarks::MakeBridgeLine()};
  Way made{.name = "bridge_of_made_port", .line = benchmarks::MakeBridgeLineOfMadePort()};
  Way socat{.name = "socat", .line = benchmarks::MakeSocatLine()};
  Way bare{.name = "pty", .line = benchmarks::MakeBareLine()};
  // In turns, so that what disturbs one of them disturbs the others too.
  for (int round = 0; round < kRounds; ++round)
    for (Way* const way : {&bridge, &made, &socat, &bare})
      TakeTurn(*way);
  for (const Way* const way : {&bridge, &made}) {
    PrintBeside(*way, socat);
    PrintBeside(*way, bare);
  }
  return 0;
}
