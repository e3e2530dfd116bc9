#include "gigevision/receivelimit.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using namespace krtransport;

constexpr std::uint64_t kMiB = std::uint64_t{1} << 20;

TEST(ReceiveLimit, SocketBuffer_HoldsTwoFramesWithinItsBounds) {
  const struct {
    const char* name;
    std::uint64_t payload;
    std::uint64_t buffer;
  } rows[] = {
      {"no frame", 0, 4 * kMiB},
      {"small frames", kMiB, 4 * kMiB},
      {"frames", 10 * kMiB, 20 * kMiB},
      {"as much as there is", 512 * kMiB, 1024 * kMiB},
      {"more than there is", 513 * kMiB, 1024 * kMiB},
      {"a device that states anything", UINT64_MAX, 1024 * kMiB},
  };

  for (const auto& row : rows)
    EXPECT_EQ(GetSocketBufferSize(row.payload), row.buffer) << row.name;
}

} // namespace
