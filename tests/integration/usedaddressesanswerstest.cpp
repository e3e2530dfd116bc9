// Who counts as somebody at an address, by what comes from there: on the loopback adapter, where the kernel keeps no
// neighbours that would count besides.

#include "await.h"
#include "gvcpresponder.h"

#include "gigevision/usedaddresses.h"

#include <gmock/gmock.h>

#include <chrono>

namespace {

using namespace krtransport;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t kForeign = 0x7F000002;
constexpr std::uint32_t kCamera = 0x7F000003;
constexpr std::uint32_t kRefusing = 0x7F000004;
constexpr std::chrono::milliseconds kRound{300};

std::vector<std::uint8_t> MakeForeignAcknowledge(std::span<const std::uint8_t> aCommand) {
  auto answer = MakeDiscoveryAcknowledge(aCommand, kForeign, "foreign");
  answer[6] ^= 0x7F; // The high byte of the number: a change of the low one could give that of the next request.
  return answer;
}

std::vector<std::uint8_t> MakeRefusal(std::span<const std::uint8_t> aCommand) {
  return {0x80, 0x06, 0, 0x03, 0, 0, aCommand[6], aCommand[7]};
}

std::vector<std::uint32_t> FindOnLoopback(const std::vector<std::uint32_t>& aAddresses) {
  krsystem::NetworkAdapterFields adapter;
  adapter.name = "lo";
  adapter.addresses = {{"127.0.0.1", "255.0.0.0"}};
  std::vector<std::uint32_t> used;
  const KrResult result = FindUsedAddresses(adapter, aAddresses, kRound, {}, used);
  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  return used;
}

TEST(UsedAddressesAnswers, AcknowledgesOfAnotherNumber_AreNobodys) {
  const GvcpResponder foreign([](auto aCommand) { return Datagrams(16, MakeForeignAcknowledge(aCommand)); },
                              GvcpAnswers::Once, kForeign);
  const GvcpResponder camera([](auto aCommand) { return Datagrams{MakeDiscoveryAcknowledge(aCommand, kCamera, "c")}; },
                             GvcpAnswers::Once, kCamera);
  const GvcpResponder refusing([](auto aCommand) { return Datagrams{MakeRefusal(aCommand)}; }, GvcpAnswers::Once,
                               kRefusing);
  std::vector<std::uint32_t> used;

  // Who has to wait for a processor answers too late for a round, and is heard in another.
  EXPECT_TRUE(krtest::Await([&used] {
    used = FindOnLoopback({kForeign, kCamera, kRefusing});
    return used.size() >= 2;
  }));

  EXPECT_THAT(used, ElementsAre(kCamera, kRefusing));
}

TEST(UsedAddressesAnswers, Nobody_IsFoundWhereNobodyAnswers) {
  EXPECT_THAT(FindOnLoopback({kForeign, kCamera}), IsEmpty());
}

} // namespace
