#include "arrivals.h"

#include "failing.h"

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <string>

namespace benchmarks {

namespace {

constexpr double kHeaderBytes = 20 + 8 + 8; // IP, UDP, stream.
constexpr double kLeaderBytes = kHeaderBytes + 36;
constexpr double kTrailerBytes = kHeaderBytes + 8;
constexpr double kEthernetBytes = 14; // Loopback counts them, too.

double ReadReceivedBytes() {
  std::ifstream table("/proc/net/dev");
  std::string line;
  while (std::getline(table, line)) {
    const std::size_t name = line.find("lo:");
    if (name != std::string::npos)
      return std::atof(line.c_str() + name + 3);
  }
  Fail("there is no loopback adapter.");
}

} // namespace

double CountArrivals(const WireFrames& aFrames) {
  const double packets = std::ceil(aFrames.imageBytes / (aFrames.packetBytes - kHeaderBytes));
  const double bytes = aFrames.imageBytes + packets * (kHeaderBytes + kEthernetBytes) + kLeaderBytes + kTrailerBytes +
                       2 * kEthernetBytes;
  return ReadReceivedBytes() / bytes;
}

} // namespace benchmarks
