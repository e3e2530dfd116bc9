#include "addresscheck.h"

#include "krsystem/ipv4address.h"

#include <gmock/gmock.h>

namespace krtool {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

std::uint32_t Parse(const char* aText) {
  const auto address = krsystem::ParseIPv4(aText);
  EXPECT_TRUE(address) << aText;
  return address.value_or(0);
}

const std::vector<AdapterSubnet>& GetAdapter() {
  static const std::vector<AdapterSubnet> kSubnets = {{Parse("192.168.1.10"), Parse("255.255.255.0")},
                                                      {Parse("172.16.0.1"), Parse("255.255.0.0")}};
  return kSubnets;
}

struct Plan {
  const char* name;
  const char* address;
  const char* mask;
  const char* gateway;
  const char* says; // A part of the refusal or of one doubt.
};

AddressVerdict Check(const Plan& aPlan, const std::vector<AdapterSubnet>& aSubnets = GetAdapter()) {
  return CheckAddress({Parse(aPlan.address), Parse(aPlan.mask), Parse(aPlan.gateway)}, aSubnets,
                      {Parse("192.168.1.30")});
}

std::string GetName(const testing::TestParamInfo<Plan>& aInfo) {
  return aInfo.param.name;
}

class RefusedAddress : public testing::TestWithParam<Plan> {};

TEST_P(RefusedAddress, IsSaid) {
  EXPECT_THAT(Check(GetParam()).refusal, HasSubstr(GetParam().says));
}

INSTANTIATE_TEST_SUITE_P(
    Plans, RefusedAddress,
    testing::Values(Plan{"TheAdapters", "192.168.1.10", "255.255.255.0", "0.0.0.0", "the adapter's own"},
                    Plan{"TheAdaptersSecond", "172.16.0.1", "255.255.0.0", "0.0.0.0", "the adapter's own"},
                    Plan{"FirstMulticast", "224.0.0.0", "255.255.255.0", "0.0.0.0", "224.0.0.0 on"},
                    Plan{"Broadcast", "255.255.255.255", "0.0.0.0", "0.0.0.0", "224.0.0.0 on"},
                    Plan{"Loopback", "127.0.0.1", "255.255.255.0", "0.0.0.0", "127.0.0.1 cannot be a device's"},
                    Plan{"LastLoopback", "127.255.255.254", "255.0.0.0", "0.0.0.0", "127.*.*.* are for other purposes"},
                    Plan{"OfThisNetwork", "0.0.0.5", "255.255.255.0", "0.0.0.0", "0.*.*.* and 127.*.*.*"},
                    Plan{"TheSubnet", "192.168.1.0", "255.255.255.0", "0.0.0.0", "the subnet itself"},
                    Plan{"NoHostBits", "192.168.1.20", "255.255.255.255", "0.0.0.0", "the subnet itself"},
                    Plan{"SubnetBroadcast", "192.168.1.255", "255.255.255.0", "0.0.0.0", "the subnet's broadcast"},
                    Plan{"SmallSubnetBroadcast", "192.168.1.63", "255.255.255.192", "0.0.0.0", "subnet's broadcast"},
                    Plan{"LargeSubnetBroadcast", "10.255.255.255", "255.0.0.0", "0.0.0.0", "the subnet's broadcast"},
                    Plan{"None", "0.0.0.0", "0.0.0.0", "0.0.0.0", "0.0.0.0 cannot be a device's"}),
    GetName);

class DoubtfulAddress : public testing::TestWithParam<Plan> {};

TEST_P(DoubtfulAddress, IsTakenWithADoubt) {
  const AddressVerdict verdict = Check(GetParam());

  EXPECT_EQ(verdict.refusal, "");
  EXPECT_THAT(verdict.doubts, testing::Contains(HasSubstr(GetParam().says)));
}

INSTANTIATE_TEST_SUITE_P(
    Plans, DoubtfulAddress,
    testing::Values(Plan{"ForeignSubnet", "10.0.0.5", "255.255.255.0", "0.0.0.0", "10.0.0.5 is in no subnet"},
                    Plan{"LastMulticastButOne", "223.255.255.1", "255.255.255.0", "0.0.0.0", "is in no subnet"},
                    Plan{"AnotherMask", "192.168.1.20", "255.255.0.0", "0.0.0.0", "The mask 255.255.0.0 is not"},
                    Plan{"NoMask", "192.168.1.20", "0.0.0.0", "0.0.0.0", "The mask 0.0.0.0 is not"},
                    Plan{"MaskWithAGap", "192.168.1.20", "255.0.255.0", "0.0.0.0", "has a gap"},
                    Plan{"LastFieldZero", "172.16.1.0", "255.255.0.0", "0.0.0.0", "end by 0 or 255"},
                    Plan{"LastField255", "172.16.1.255", "255.255.0.0", "0.0.0.0", "end by 0 or 255"},
                    Plan{"ForeignGateway", "192.168.1.20", "255.255.255.0", "10.0.0.1", "The gateway 10.0.0.1 is in"},
                    Plan{"ItselfAsGateway", "192.168.1.20", "255.255.255.0", "192.168.1.20", "the device's own"},
                    Plan{"AnotherDevices", "192.168.1.30", "255.255.255.0", "0.0.0.0", "Another device has"}),
    GetName);

TEST(AddressCheck, OrdinaryAddresses_HaveNoDoubts) {
  for (const Plan& plan : {Plan{"BesideLoopback", "192.168.1.127", "255.255.255.0", "0.0.0.0", ""},
                           Plan{"First", "192.168.1.20", "255.255.255.0", "0.0.0.0", ""},
                           Plan{"FirstWithGateway", "192.168.1.20", "255.255.255.0", "192.168.1.1", ""},
                           Plan{"OfTheAdaptersSecond", "172.16.5.20", "255.255.0.0", "172.16.0.9", ""}}) {
    const AddressVerdict verdict = Check(plan);

    EXPECT_EQ(verdict.refusal, "") << plan.name;
    EXPECT_THAT(verdict.doubts, IsEmpty()) << plan.name;
  }
}

TEST(AddressCheck, AdapterWithoutAddress_IsADoubt) {
  const AddressVerdict verdict = Check({"", "192.168.1.20", "255.255.255.0", "0.0.0.0", ""}, {});

  EXPECT_EQ(verdict.refusal, "");
  EXPECT_THAT(verdict.doubts, testing::ElementsAre(HasSubstr("The adapter has no address")));
}

TEST(AddressCheck, SubnetsOfAnAdapter_LeaveOutWhatIsNoAddress) {
  krsystem::NetworkAdapterFields fields;
  fields.addresses = {{"0.0.0.0", "0.0.0.0"}, {"10.0.0.1", "255.0.0.0"}};

  const std::vector<AdapterSubnet> subnets = GetSubnets(KrNetworkAdapter(fields));

  ASSERT_EQ(subnets.size(), 1U);
  EXPECT_EQ(subnets[0].address, Parse("10.0.0.1"));
  EXPECT_EQ(subnets[0].mask, Parse("255.0.0.0"));
}

} // namespace
} // namespace krtool
