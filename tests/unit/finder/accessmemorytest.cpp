// Devices that do not say who controls them: they are not asked at every look, and asked again in time.

#include "logic/finder/accessmemory.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace krgui {

namespace {

using std::chrono::milliseconds;

class AccessMemoryTest : public testing::Test {
protected:
  static constexpr std::int32_t kControlled = 2;

  std::optional<std::int32_t> answer;
  std::vector<std::string> asked;
  milliseconds waits{0}; ///< What each asking takes.
  AccessMemory::Clock::time_point now{milliseconds(1000000)};
  AccessMemory memory{[this](const KrString& aAddress) {
                        asked.push_back(aAddress.ToUtf8());
                        now += waits;
                        return answer;
                      },
                      [this] { return now; }};
};

TEST_F(AccessMemoryTest, DeviceThatSays_IsAskedEachTime) {
  answer = kControlled;

  EXPECT_EQ(memory.Query("192.168.1.20"), kControlled);
  answer = 1;

  EXPECT_EQ(memory.Query("192.168.1.20"), 1);
  EXPECT_EQ(asked.size(), 2U);
}

TEST_F(AccessMemoryTest, SilentDevice_IsUnknownWithoutBeingAskedAgain) {
  for (int look = 0; look < 5; ++look) {
    EXPECT_EQ(memory.Query("192.168.1.20"), AccessMemory::kUnknown);
    now += milliseconds(1000);
  }

  EXPECT_EQ(asked.size(), 1U);
}

TEST_F(AccessMemoryTest, SilentDeviceAfterTenSeconds_IsAskedAgain) {
  (void)memory.Query("192.168.1.20");
  now += milliseconds(9999);
  (void)memory.Query("192.168.1.20");
  ASSERT_EQ(asked.size(), 1U);
  answer = kControlled;
  now += milliseconds(1);

  EXPECT_EQ(memory.Query("192.168.1.20"), kControlled);

  answer.reset();
  EXPECT_EQ(memory.Query("192.168.1.20"), AccessMemory::kUnknown) << "what it said once is not kept";
  EXPECT_EQ(asked.size(), 3U);
}

TEST_F(AccessMemoryTest, TimeOfAskingItself_CountsNotAsSilence) {
  waits = milliseconds(200);
  (void)memory.Query("192.168.1.20");
  now += milliseconds(9999);

  (void)memory.Query("192.168.1.20");

  EXPECT_EQ(asked.size(), 1U);
}

TEST_F(AccessMemoryTest, OtherDevices_AreAskedAllTheSame) {
  (void)memory.Query("192.168.1.20");
  answer = kControlled;

  EXPECT_EQ(memory.Query("192.168.1.21"), kControlled);

  EXPECT_THAT(asked, testing::ElementsAre("192.168.1.20", "192.168.1.21"));
}

TEST_F(AccessMemoryTest, Forget_HasTheDeviceAskedAtOnce) {
  (void)memory.Query("192.168.1.20");
  answer = kControlled;

  memory.Forget();

  EXPECT_EQ(memory.Query("192.168.1.20"), kControlled);
}

} // namespace

} // namespace krgui
