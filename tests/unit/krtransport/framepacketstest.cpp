#include "gigevision/framepackets.h"

#include <gmock/gmock.h>

#include <string>

namespace {

using namespace krtransport;
using testing::HasSubstr;

TEST(FramePackets, Count_IsLeaderPayloadAndTrailer) {
  EXPECT_EQ(CountPackets(0, 1500), 2u);
  EXPECT_EQ(CountPackets(1464, 1500), 3u);
  EXPECT_EQ(CountPackets(1465, 1500), 4u);
  EXPECT_EQ(CountPackets(640 * 480, 9000), 37u);
}

TEST(FramePackets, SizeWithoutRoom_IsRefusedButForOneThatIsNotKnown) {
  EXPECT_TRUE(CheckPackets(1000, 0).IsOK());
  EXPECT_TRUE(CheckPackets(1000, 37).IsOK());
  for (const std::uint32_t bytes : {1u, 35u, 36u}) {
    const KrResult result = CheckPackets(1000, bytes);
    EXPECT_EQ(result, KrResult::Code::BadData) << bytes;
    EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr(std::to_string(bytes) + " bytes, which their headers"));
  }
}

TEST(FramePackets, MorePacketsThanCanBeNumbered_AreRefused) {
  constexpr std::uint64_t kMostPayload = (1u << 24) - 2;

  EXPECT_TRUE(CheckPackets(kMostPayload, 37).IsOK());
  EXPECT_TRUE(CheckPackets(std::uint64_t{4} << 30, 576).IsOK());
  const KrResult result = CheckPackets(kMostPayload + 1, 37);

  EXPECT_EQ(result, KrResult::Code::BadData);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("a frame would take 16777217;"));
}

} // namespace
