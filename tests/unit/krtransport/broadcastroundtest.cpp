#include "gigevision/broadcastround.h"

#include "krbase/krlogger.h"

#include <gtest/gtest.h>

namespace {

using namespace krtransport;

krsystem::NetworkAdapterFields MakeAdapter(const char* aName) {
  krsystem::NetworkAdapterFields fields;
  fields.name = aName;
  return fields;
}

void RunOnce(const std::vector<krsystem::NetworkAdapterFields>& aAdapters) {
  const BroadcastRound round = {.command = {0}, .timeout = std::chrono::milliseconds(1), .cancel = {}};
  const KrResult result = RunBroadcastRound(aAdapters, round, [](std::size_t, auto) { return true; });
  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
}

TEST(BroadcastRound, Adapter_ThatIsPassedOverAgainAndAgain_IsSaidOnce) {
  const KrLogCapture log;

  for (int round = 0; round < 3; ++round)
    RunOnce({MakeAdapter("gone0"), MakeAdapter("gone1")});

  ASSERT_EQ(log.GetRecords().size(), 2u);
  EXPECT_NE(log.GetRecords()[0].text.ToUtf8().find("gone0 is passed over"), std::string::npos);
  EXPECT_NE(log.GetRecords()[1].text.ToUtf8().find("gone1 is passed over"), std::string::npos);
}

} // namespace
