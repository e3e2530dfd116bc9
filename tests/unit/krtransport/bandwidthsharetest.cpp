#include "gigevision/bandwidthshare.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using krtransport::BandwidthDemand;
using krtransport::CalculatePacketDelay;

constexpr std::uint64_t kGigabit = 1000000000;

struct ShareRow {
  const char* what;
  BandwidthDemand demand;
  std::uint32_t ticks;
};

// A packet of 8962 bytes, 9000 with Ethernet's own, takes 72 microseconds of a gigabit.
constexpr ShareRow kShares[] = {
    {"a camera alone", {kGigabit, 1, 8962, kGigabit}, 0},
    {"no camera", {kGigabit, 0, 8962, kGigabit}, 0},
    {"a link of unknown speed", {0, 2, 8962, kGigabit}, 0},
    {"a packet of unknown size", {kGigabit, 2, 0, kGigabit}, 0},
    {"a clock of unknown speed", {kGigabit, 2, 8962, 0}, 0},
    {"two cameras", {kGigabit, 2, 8962, kGigabit}, 88000},
    {"three cameras", {kGigabit, 3, 8962, kGigabit}, 168000},
    {"two cameras on ten gigabits", {10 * kGigabit, 2, 8962, kGigabit}, 8800},
    {"two cameras with a slow clock", {kGigabit, 2, 8962, 1000000}, 88},
    {"two cameras with a clock of 125 MHz", {kGigabit, 2, 8962, 125000000}, 11000},
    {"small packets", {kGigabit, 2, 1462, kGigabit}, 14667},
    {"more than the register holds",
     {10000000, 1000, 16384, 100 * kGigabit},
     std::numeric_limits<std::uint32_t>::max()},
};

TEST(BandwidthShare, PacketDelay_Demand_IsWorkedOut) {
  for (const ShareRow& row : kShares)
    EXPECT_EQ(CalculatePacketDelay(row.demand), row.ticks) << row.what;
}

TEST(BandwidthShare, PacketDelay_AnyNumberOfCameras_LeavesATenthOfTheLink) {
  constexpr std::uint32_t kPacketBytes = 1500;
  constexpr double kWireBits = (kPacketBytes + 38) * 8.0;
  for (std::uint32_t cameras = 2; cameras <= 64; ++cameras) {
    const std::uint32_t ticks = CalculatePacketDelay({kGigabit, cameras, kPacketBytes, kGigabit});

    const double roundSeconds = kWireBits / kGigabit + ticks / static_cast<double>(kGigabit);
    const double used = cameras * kWireBits / roundSeconds / kGigabit;
    EXPECT_LE(used, 0.9 + 1e-9) << cameras;
    EXPECT_GT(used, 0.89) << cameras;
  }
}

} // namespace
