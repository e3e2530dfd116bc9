#include "gigevision/forceip.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using krsystem::NetworkAdapterFields;

NetworkAdapterFields MakeAdapter(const char* aAddress) {
  NetworkAdapterFields fields;
  fields.addresses = {{aAddress, "255.255.255.0"}};
  return fields;
}

const std::vector<NetworkAdapterFields> kAdapters = {MakeAdapter("192.168.1.10"), MakeAdapter("192.168.2.10"),
                                                     MakeAdapter("0.0.0.0"), MakeAdapter("192.168.2.11")};
constexpr std::uint32_t kOfSecondSubnet = 0xC0A80214;
constexpr std::uint32_t kOfNoSubnet = 0x0A000002;

struct ChoiceRow {
  const char* what;
  std::set<std::size_t> answered;
  std::uint32_t newAddress;
  std::vector<std::size_t> chosen;
};

const ChoiceRow kChoices[] = {
    {"AnsweredNowhere", {}, kOfSecondSubnet, {0, 1, 2, 3}},
    {"AnsweredOnOne", {2}, kOfSecondSubnet, {2}},
    {"AnsweredOnTheSubnetsOwnToo", {0, 1}, kOfSecondSubnet, {1}},
    {"AnsweredOnTwoOfTheSubnet", {3, 1}, kOfSecondSubnet, {1}},
    {"NewAddressOfNoSubnet", {1, 3}, kOfNoSubnet, {1}},
    {"NewAddressOfZeros", {1, 2}, 0, {1}},
};

class ForceIPChoice : public testing::TestWithParam<ChoiceRow> {};

TEST_P(ForceIPChoice, ChooseAdapters_WhereTheDeviceAnswered_PrefersTheNewAddressesSubnet) {
  EXPECT_EQ(krtransport::ChooseAdapters(kAdapters, GetParam().answered, GetParam().newAddress), GetParam().chosen);
}

INSTANTIATE_TEST_SUITE_P(Choices, ForceIPChoice, testing::ValuesIn(kChoices),
                         [](const auto& aInfo) { return aInfo.param.what; });

} // namespace
