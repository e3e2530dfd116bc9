#include "gigevision/packetsizesearch.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using krtransport::MakePacketSizeRange;
using krtransport::PacketSizeChoice;
using krtransport::PacketSizeRange;
using krtransport::SearchPacketSize;

struct RangeRow {
  const char* what;
  krtransport::StatedPacketSizes stated;
  std::uint32_t mtu;
  PacketSizeRange expected;
};

constexpr RangeRow kRanges[] = {
    {"a usual camera on a usual adapter", {576, 9000, 4}, 1500, {576, 1500, 4}},
    {"a usual camera with jumbo frames", {576, 9000, 4}, 9000, {576, 9000, 4}},
    {"a camera that ends before the adapter", {576, 8192, 4}, 9000, {576, 8192, 4}},
    {"an adapter beyond all cameras", {576, 65532, 4}, 65536, {576, 16384, 4}},
    {"steps that do not meet the MTU", {576, 9000, 64}, 1500, {576, 1472, 64}},
    {"a smallest size that is too small to be of use", {220, 16404, 4}, 1500, {576, 1500, 4}},
    {"such a size on a grid of its own", {100, 9000, 1000}, 9000, {1100, 8100, 1000}},
    {"a camera with one size", {1500, 1500, 4}, 9000, {1500, 1500, 4}},
    {"a smallest size beyond the MTU", {1500, 9000, 4}, 1400, {1500, 1500, 4}},
    {"nothing stated", {0, 0, 0}, 1500, {576, 1500, 4}},
    {"a step of 0", {576, 9000, 0}, 1500, {576, 1500, 4}},
    {"a largest size below the smallest", {9000, 576, 4}, 1500, {576, 1500, 4}},
    {"negative sizes", {-9223372036854775807, -1, 4}, 1500, {576, 1500, 4}},
    {"sizes beyond a packet", {576, 9223372036854775807, 4}, 1500, {576, 1500, 4}},
};

TEST(PacketSizeSearch, Range_StatedAndMtu_IsWhatBothAllow) {
  for (const RangeRow& row : kRanges) {
    const PacketSizeRange range = MakePacketSizeRange(row.stated, row.mtu);

    EXPECT_EQ(range.smallest, row.expected.smallest) << row.what;
    EXPECT_EQ(range.largest, row.expected.largest) << row.what;
    EXPECT_EQ(range.step, row.expected.step) << row.what;
  }
}

/// A way that lets packets through up to a size.
class Way {
public:
  explicit Way(std::uint32_t aLargest) : mLargest(aLargest) {}
  bool Try(std::uint32_t aBytes) {
    mTried.push_back(aBytes);
    return aBytes <= mLargest;
  }
  PacketSizeChoice Search(const PacketSizeRange& aRange, std::size_t aMostTrials = 100) {
    return SearchPacketSize(
        aRange, [this](std::uint32_t aBytes) { return Try(aBytes); },
        [this, aMostTrials] { return mTried.size() < aMostTrials; });
  }
  const std::vector<std::uint32_t>& GetTried() const { return mTried; }

private:
  const std::uint32_t mLargest;
  std::vector<std::uint32_t> mTried;
};

struct SearchRow {
  const char* what;
  PacketSizeRange range;
  std::uint32_t passing;
  std::uint32_t least;
  std::uint32_t most;
  bool isProven;
  std::size_t mostTrials;
};

constexpr SearchRow kSearches[] = {
    {"everything passes", {576, 9000, 4}, 65535, 9000, 9000, true, 2},
    {"nothing comes", {576, 9000, 4}, 0, 9000, 9000, false, 1},
    {"no jumbo frames", {576, 9000, 4}, 1500, 1500, 1500, true, 11},
    {"jumbo frames of another size", {576, 9000, 4}, 4000, 3936, 4000, true, 11},
    {"a tunnel below Ethernet", {576, 1500, 4}, 1400, 1336, 1400, true, 8},
    {"a device in large steps", {1000, 9000, 1000}, 5500, 5000, 5000, true, 8},
    {"the smallest alone", {576, 9000, 4}, 576, 576, 576, true, 12},
    {"one size", {1500, 1500, 4}, 9000, 1500, 1500, true, 1},
};

TEST(PacketSizeSearch, Search_WayOfALimit_FindsTheLargestInFewTrials) {
  for (const SearchRow& row : kSearches) {
    Way way(row.passing);

    const PacketSizeChoice choice = way.Search(row.range);

    EXPECT_GE(choice.bytes, row.least) << row.what;
    EXPECT_LE(choice.bytes, row.most) << row.what;
    EXPECT_EQ(choice.isProven, row.isProven) << row.what;
    EXPECT_LE(way.GetTried().size(), row.mostTrials) << row.what;
  }
}

TEST(PacketSizeSearch, Search_AnyWay_TriesSizesOfTheDeviceAlone) {
  constexpr PacketSizeRange kRange{600, 8800, 200};
  for (std::uint32_t limit = 600; limit <= 8800; limit += 50) {
    Way way(limit);

    const PacketSizeChoice choice = way.Search(kRange);

    EXPECT_EQ(choice.bytes, 600 + (limit - 600) / 200 * 200) << limit;
    for (const std::uint32_t tried : way.GetTried())
      EXPECT_EQ((tried - kRange.smallest) % kRange.step, 0u) << tried;
  }
}

TEST(PacketSizeSearch, Search_TimeIsUp_GivesTheLargestFoundByThen) {
  Way way(4000);

  const PacketSizeChoice choice = way.Search({576, 9000, 4}, 3);

  EXPECT_EQ(way.GetTried(), (std::vector<std::uint32_t>{576, 9000, 1500}));
  EXPECT_EQ(choice.bytes, 1500u);
  EXPECT_TRUE(choice.isProven);
}

} // namespace
