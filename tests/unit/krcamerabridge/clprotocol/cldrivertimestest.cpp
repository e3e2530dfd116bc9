#include "clprotocol/cldrivertimes.h"

#include "clprotocol/clprotocolport.h"

#include <gtest/gtest.h>

namespace krcamerabridge {
namespace {

struct Row {
  const char* name;
  std::size_t bytes;
  std::uint32_t baudRate;
  std::uint32_t limitMs;
};

// Of each byte two milliseconds, and eighty bits on the line.
constexpr Row kRows[] = {
    {"AFeatureAtTheSlowestSpeed", 4, 9600, 10000 + 8 + 34},
    {"AKilobyteAtTheSlowestSpeed", 1024, 9600, 10000 + 2048 + 8534},
    {"ATableAtTheUsualSpeed", 65536, 115200, 10000 + 131072 + 45512},
    {"ATableAtTheHighestSpeed", 65536, 921600, 10000 + 131072 + 5689},
    {"TheLargestAtTheSlowestSpeed", 16 << 20, 9600, 10000 + 33554432 + 139810134},
};

class RegisterLimitTest : public testing::TestWithParam<Row> {};

TEST_P(RegisterLimitTest, GrowsWithTheLengthAndTheSlownessOfTheLine) {
  EXPECT_EQ(GetRegisterLimitMs({}, GetParam().bytes, GetParam().baudRate), GetParam().limitMs);
}

INSTANTIATE_TEST_SUITE_P(CLDriverTimes, RegisterLimitTest, testing::ValuesIn(kRows),
                         [](const auto& aInfo) { return std::string(aInfo.param.name); });

TEST(CLDriverTimes, RegisterLimit_BeyondAllNumbers_IsTheLongest) {
  EXPECT_EQ(GetRegisterLimitMs({}, SIZE_MAX, 0), UINT32_MAX);
}

TEST(CLDriverTimes, PendingWrite_IsWaitedForByWhoeverAskedForIt) {
  const CLDriverTimes times;

  EXPECT_GT(CLProtocolPort::kAccessTimeoutMs,
            times.registerLimitMs + times.pendingLimitMs + times.callLimitMs + times.cancelLimitMs);
}

} // namespace
} // namespace krcamerabridge
