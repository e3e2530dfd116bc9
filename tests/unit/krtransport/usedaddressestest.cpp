#include "gigevision/usedaddresses.h"

#include <gtest/gtest.h>

#include <linux/neighbour.h>

namespace {

using namespace krtransport;

struct NeighbourRow {
  const char* what;
  std::uint32_t state;
  bool hasLinkAddress;
  bool isUsed;
};

constexpr NeighbourRow kNeighbours[] = {
    {"Answered", NUD_REACHABLE, true, true},   {"KnownFromEarlier", NUD_STALE, true, true},
    {"JustSentTo", NUD_DELAY, true, true},     {"AskedAgain", NUD_PROBE, true, true},
    {"SetByHand", NUD_PERMANENT, true, true},  {"NotAnsweredYet", NUD_INCOMPLETE, false, false},
    {"NotAnswered", NUD_FAILED, false, false}, {"NotAnsweredAnyMore", NUD_FAILED, true, false},
    {"NobodyIsAsked", NUD_NOARP, true, false}, {"WithoutLinkAddress", NUD_REACHABLE, false, false},
};

class UsedAddressesState : public testing::TestWithParam<NeighbourRow> {};

TEST_P(UsedAddressesState, IsUsed_NeighboursState_SpeaksForSomebodyOrNot) {
  KernelNeighbour neighbour;
  neighbour.state = GetParam().state;
  neighbour.hasLinkAddress = GetParam().hasLinkAddress;

  EXPECT_EQ(IsUsed(neighbour), GetParam().isUsed);
}

INSTANTIATE_TEST_SUITE_P(States, UsedAddressesState, testing::ValuesIn(kNeighbours),
                         [](const auto& aInfo) { return aInfo.param.what; });

TEST(UsedAddresses, Adapter_WithoutAddress_IsNotSupported) {
  krsystem::NetworkAdapterFields adapter;
  std::vector<std::uint32_t> used;

  EXPECT_EQ(FindUsedAddresses(adapter, {0x0A000002}, std::chrono::milliseconds(1), {}, used),
            KrResult::Code::NotSupported);
}

} // namespace
