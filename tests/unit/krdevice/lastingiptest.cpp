// How a device's lasting IP configuration is read, checked, written and put back, over registers in memory.

#include "fakelink.h"

#include "krdevice/krdevicegev.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <map>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

constexpr std::uint64_t kOptions = 0x0010;
constexpr std::uint64_t kCurrent = 0x0014;
constexpr std::uint64_t kAddress = 0x064C;
constexpr std::uint64_t kMask = 0x065C;
constexpr std::uint64_t kGateway = 0x066C;
constexpr std::uint32_t kFlowControl = 0xC0000000;

using Registers = std::map<std::uint64_t, std::uint32_t>;
using Writes = std::vector<std::pair<std::uint64_t, std::uint32_t>>;

/// Has the registers that it is given, most significant byte first, and no others.
class RegisterLink : public FakeLink {
public:
  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t,
                const std::stop_token&) override {
    const std::lock_guard lock(mMutex);
    const auto found = registers.find(aAddress);
    if (found == registers.end() || aLength != 4)
      return {KrResult::Code::ProtocolError, "invalid address"};
    for (unsigned i = 0; i < 4; ++i)
      static_cast<std::uint8_t*>(aData)[i] = static_cast<std::uint8_t>(found->second >> (24 - 8 * i));
    return {};
  }
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t,
                 const std::stop_token&) override {
    std::this_thread::yield(); // Another caller has its chance.
    const std::lock_guard lock(mMutex);
    if (!registers.contains(aAddress) || aLength != 4)
      return {KrResult::Code::ProtocolError, "invalid address"};
    std::uint32_t value = 0;
    for (unsigned i = 0; i < 4; ++i)
      value = value << 8 | static_cast<const std::uint8_t*>(aData)[i];
    writes.emplace_back(aAddress, value);
    if (refusedWrites.contains(aAddress) && refusedWrites[aAddress]-- > 0)
      return refusal;
    registers[aAddress] = value | (aAddress == kCurrent ? stuckWays : 0);
    return {};
  }

  Registers registers = {{kOptions, 7 | kFlowControl},
                         {kCurrent, 6 | kFlowControl},
                         {kAddress, 0x0A000002},
                         {kMask, 0xFF000000},
                         {kGateway, 0x0A000001}};
  Writes writes;
  std::map<std::uint64_t, int> refusedWrites;                      ///< How many of the next writes fail, by register.
  KrResult refusal{KrResult::Code::AccessDenied, "access denied"}; ///< What they fail with.
  std::uint32_t stuckWays = 0;

private:
  std::mutex mMutex; // Guards the registers and what is written down.
};

class LastingIP : public testing::Test {
protected:
  static std::unique_ptr<KrDeviceGEV> MakeDevice(RegisterLink*& aLink) {
    auto link = std::make_unique<RegisterLink>();
    aLink = link.get();
    return std::make_unique<KrDeviceGEV>(std::move(link), MakeDeviceFields());
  }

  RegisterLink* mLink = nullptr;
  const std::unique_ptr<KrDeviceGEV> mDevice = MakeDevice(mLink);
};

KrLastingIPConfiguration MakeConfiguration() {
  return {.persistent = true,
          .dhcp = false,
          .linkLocal = true,
          .address = "192.168.1.20",
          .subnetMask = "255.255.255.0",
          .gateway = "192.168.1.1"};
}

TEST_F(LastingIP, Get_Registers_AreTakenMostSignificantByteFirst) {
  KrLastingIPConfiguration configuration;

  const KrResult result = mDevice->GetLastingIPConfiguration(configuration);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(configuration, (KrLastingIPConfiguration{.persistent = false,
                                                     .dhcp = true,
                                                     .linkLocal = true,
                                                     .address = "10.0.0.2",
                                                     .subnetMask = "255.0.0.0",
                                                     .gateway = "10.0.0.1"}));
}

TEST_F(LastingIP, Get_DeviceThatKeepsNoAddress_IsNotAskedForOne) {
  mLink->registers = {{kOptions, 6}, {kCurrent, 4}};
  KrLastingIPConfiguration configuration;

  const KrResult result = mDevice->GetLastingIPConfiguration(configuration);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(configuration, (KrLastingIPConfiguration{.persistent = false, .dhcp = false, .linkLocal = true}));
}

TEST_F(LastingIP, Get_RegisterThatCannotBeRead_FailsAndLeavesTheConfiguration) {
  mLink->registers.erase(kMask);
  KrLastingIPConfiguration configuration = MakeConfiguration();

  const KrResult result = mDevice->GetLastingIPConfiguration(configuration);

  EXPECT_EQ(result, KrResult::Code::ProtocolError);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("invalid address"));
  EXPECT_EQ(configuration, MakeConfiguration());
}

TEST_F(LastingIP, Set_AnotherConfiguration_WritesTheAddressesAndThenTheWays) {
  const KrResult result = mDevice->SetLastingIPConfiguration(MakeConfiguration());

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_THAT(mLink->writes, ElementsAre(Pair(kAddress, 0xC0A80114), Pair(kMask, 0xFFFFFF00),
                                         Pair(kGateway, 0xC0A80101), Pair(kCurrent, 5 | kFlowControl)));
}

TEST_F(LastingIP, Set_WhatTheDeviceHolds_WritesNothing) {
  KrLastingIPConfiguration configuration;
  ASSERT_TRUE(mDevice->GetLastingIPConfiguration(configuration).IsOK());

  const KrResult result = mDevice->SetLastingIPConfiguration(configuration);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_THAT(mLink->writes, IsEmpty());
}

struct RefusedRow {
  const char* what;
  std::uint32_t options;
  KrLastingIPConfiguration configuration;
  KrResult::Code code;
};

KrLastingIPConfiguration Keep(const char* aAddress, const char* aMask = "255.255.255.0",
                              const char* aGateway = "0.0.0.0") {
  return {.persistent = true, .address = aAddress, .subnetMask = aMask, .gateway = aGateway};
}

const RefusedRow kRefused[] = {
    {"AddressThatDoesNotParse", 7, {.address = "10.0.0"}, KrResult::Code::InvalidInput},
    {"MaskThatDoesNotParse", 7, {.subnetMask = ""}, KrResult::Code::InvalidInput},
    {"GatewayThatDoesNotParse", 7, {.gateway = "none"}, KrResult::Code::InvalidInput},
    {"PersistentNotOffered", 6, {.persistent = true}, KrResult::Code::NotSupported},
    {"DhcpNotOffered", 5, {.dhcp = true}, KrResult::Code::NotSupported},
    {"LinkLocalNotOffered", 3, {.linkLocal = true}, KrResult::Code::NotSupported},
    {"AddressOfADeviceThatKeepsNone", 6, {.address = "10.0.0.2"}, KrResult::Code::NotSupported},
    {"PersistentWithoutAddress", 7, Keep("0.0.0.0"), KrResult::Code::InvalidInput},
    {"ThisNetwork", 7, Keep("0.0.0.5"), KrResult::Code::InvalidInput},
    {"Loopback", 7, Keep("127.0.0.1"), KrResult::Code::InvalidInput},
    {"Multicast", 7, Keep("224.0.0.5"), KrResult::Code::InvalidInput},
    {"Reserved", 7, Keep("240.0.0.5"), KrResult::Code::InvalidInput},
    {"LimitedBroadcast", 7, Keep("255.255.255.255"), KrResult::Code::InvalidInput},
    {"SubnetItself", 7, Keep("192.168.1.0"), KrResult::Code::InvalidInput},
    {"SubnetsBroadcast", 7, Keep("192.168.1.255"), KrResult::Code::InvalidInput},
    {"SubnetItselfOfOddSize", 7, Keep("192.168.1.8", "255.255.255.248"), KrResult::Code::InvalidInput},
    {"MaskWithAGap", 7, Keep("192.168.1.20", "255.255.0.255"), KrResult::Code::InvalidInput},
    {"MulticastGateway", 7, Keep("192.168.1.20", "255.255.255.0", "224.0.0.1"), KrResult::Code::InvalidInput},
    {"LoopbackGateway", 7, Keep("192.168.1.20", "255.255.255.0", "127.0.0.1"), KrResult::Code::InvalidInput},
    {"MulticastThatDoesNotCountYet", 7, {.address = "224.0.0.5"}, KrResult::Code::InvalidInput},
};

class LastingIPRefused : public LastingIP, public testing::WithParamInterface<RefusedRow> {};

TEST_P(LastingIPRefused, Set_WhatCannotBe_IsRefusedBeforeAnythingIsWritten) {
  mLink->registers[kOptions] = GetParam().options;

  const KrResult result = mDevice->SetLastingIPConfiguration(GetParam().configuration);

  EXPECT_EQ(result, GetParam().code);
  EXPECT_FALSE(result.GetDescription().IsEmpty());
  EXPECT_THAT(mLink->writes, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Configurations, LastingIPRefused, testing::ValuesIn(kRefused),
                         [](const auto& aInfo) { return aInfo.param.what; });

class LastingIPAccepted : public LastingIP, public testing::WithParamInterface<RefusedRow> {};

const RefusedRow kAccepted[] = {
    {"OrdinaryAddress", 7, Keep("192.168.1.20"), KrResult::Code::OK},
    {"EndsByZeroInALargerSubnet", 7, Keep("10.0.1.0", "255.0.0.0"), KrResult::Code::OK},
    {"FirstOfASubnetOfTwo", 7, Keep("192.168.1.20", "255.255.255.254"), KrResult::Code::OK},
    {"LastOfASubnetOfTwo", 7, Keep("192.168.1.21", "255.255.255.254"), KrResult::Code::OK},
    {"SubnetOfOne", 7, Keep("192.168.1.20", "255.255.255.255"), KrResult::Code::OK},
    {"WithoutMask", 7, Keep("192.168.1.20", "0.0.0.0"), KrResult::Code::OK},
    {"NoneThatCounts", 7, {.persistent = false}, KrResult::Code::OK},
};

TEST_P(LastingIPAccepted, Set_WhatCanBe_IsWritten) {
  const KrResult result = mDevice->SetLastingIPConfiguration(GetParam().configuration);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  KrLastingIPConfiguration kept;
  ASSERT_TRUE(mDevice->GetLastingIPConfiguration(kept).IsOK());
  EXPECT_EQ(kept, GetParam().configuration);
}

INSTANTIATE_TEST_SUITE_P(Configurations, LastingIPAccepted, testing::ValuesIn(kAccepted),
                         [](const auto& aInfo) { return aInfo.param.what; });

TEST_F(LastingIP, Set_NonsenseThatTheDeviceHoldsAndDoesNotUse_StaysAsItIs) {
  mLink->registers[kAddress] = mLink->registers[kMask] = mLink->registers[kGateway] = 0xFFFFFFFF;
  KrLastingIPConfiguration configuration;
  ASSERT_TRUE(mDevice->GetLastingIPConfiguration(configuration).IsOK());
  configuration.dhcp = false;

  const KrResult result = mDevice->SetLastingIPConfiguration(configuration);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_THAT(mLink->writes, ElementsAre(Pair(kCurrent, 4 | kFlowControl)));
}

struct BrokenRow {
  const char* what;
  KrResult::Code code;
  std::uint64_t firstThatFails;
};

constexpr BrokenRow kBroken[] = {
    {"MaskRefused", KrResult::Code::AccessDenied, kMask},
    {"GatewayRefused", KrResult::Code::AccessDenied, kGateway},
    {"WaysRefused", KrResult::Code::AccessDenied, kCurrent},
    {"AddressUnanswered", KrResult::Code::TimeLimitExceeded, kAddress},
    {"MaskUnanswered", KrResult::Code::TimeLimitExceeded, kMask},
    {"WaysUnanswered", KrResult::Code::TimeLimitExceeded, kCurrent},
};

class LastingIPBroken : public LastingIP, public testing::WithParamInterface<BrokenRow> {};

TEST_P(LastingIPBroken, Set_WriteThatFailsMidway_PutsBackWhatWasWritten) {
  const Registers before = mLink->registers;
  mLink->refusal = {GetParam().code, "because"};
  mLink->refusedWrites[GetParam().firstThatFails] = 1;

  const KrResult result = mDevice->SetLastingIPConfiguration(MakeConfiguration());

  EXPECT_EQ(result, GetParam().code);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("because"));
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("was put back"));
  EXPECT_EQ(mLink->registers, before);
}

INSTANTIATE_TEST_SUITE_P(Registers, LastingIPBroken, testing::ValuesIn(kBroken),
                         [](const auto& aInfo) { return aInfo.param.what; });

TEST_F(LastingIP, Set_WriteThatIsRefused_IsNotWrittenAgain) {
  mLink->refusedWrites[kMask] = 1;

  EXPECT_EQ(mDevice->SetLastingIPConfiguration(MakeConfiguration()), KrResult::Code::AccessDenied);

  EXPECT_THAT(mLink->writes,
              ElementsAre(Pair(kAddress, 0xC0A80114), Pair(kMask, 0xFFFFFF00), Pair(kAddress, 0x0A000002)));
}

TEST_F(LastingIP, Set_FirstWriteIsRefused_SaysNothingOfPuttingBack) {
  mLink->refusedWrites[kAddress] = 1;

  const KrResult result = mDevice->SetLastingIPConfiguration(MakeConfiguration());

  EXPECT_EQ(result, KrResult::Code::AccessDenied);
  EXPECT_EQ(result.GetDescription(), "Writing how the device gets its address failed. access denied");
  EXPECT_THAT(mLink->writes, ElementsAre(Pair(kAddress, 0xC0A80114)));
}

TEST_F(LastingIP, Set_WhatCannotBePutBackEither_SaysSo) {
  mLink->refusal = {KrResult::Code::TimeLimitExceeded, "silence"};
  mLink->refusedWrites[kMask] = 2;

  const KrResult result = mDevice->SetLastingIPConfiguration(MakeConfiguration());

  EXPECT_EQ(result, KrResult::Code::TimeLimitExceeded);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("could not all be put back"));
}

TEST_F(LastingIP, Set_DeviceThatKeepsSomethingElse_IsAProtocolErrorAndPutBack) {
  const Registers before = mLink->registers;
  mLink->stuckWays = 4;
  KrLastingIPConfiguration configuration = MakeConfiguration();
  configuration.linkLocal = false;

  const KrResult result = mDevice->SetLastingIPConfiguration(configuration);

  EXPECT_EQ(result, KrResult::Code::ProtocolError);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("keeps something else"));
  EXPECT_EQ(mLink->registers, before);
}

TEST_F(LastingIP, Set_DeviceThatKeepsNoAddress_IsSwitchedBetweenItsOtherWays) {
  mLink->registers = {{kOptions, 6}, {kCurrent, 6}};

  const KrResult result = mDevice->SetLastingIPConfiguration({.persistent = false, .dhcp = false, .linkLocal = true});

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_THAT(mLink->writes, ElementsAre(Pair(kCurrent, 4u)));
}

// Each finds what it has written when it compares, so that none sees the other's registers.
TEST_F(LastingIP, Set_FromTwoThreads_WritesOneConfigurationAfterTheOther) {
  const auto writeManyTimes = [this](const char* aAddress, const char* aMask) {
    KrLastingIPConfiguration configuration = MakeConfiguration();
    configuration.address = aAddress;
    configuration.subnetMask = aMask;
    KrLastingIPConfiguration other = configuration;
    other.address = "192.168.1.99";
    int failures = 0;
    for (int i = 0; i < 200; ++i)
      failures += mDevice->SetLastingIPConfiguration(i % 2 == 0 ? configuration : other).IsOK() ? 0 : 1;
    return failures;
  };

  std::future<int> first = std::async(std::launch::async, writeManyTimes, "192.168.1.20", "255.255.255.0");
  std::future<int> second = std::async(std::launch::async, writeManyTimes, "192.168.1.30", "255.255.0.0");

  EXPECT_EQ(first.get(), 0);
  EXPECT_EQ(second.get(), 0);
}

} // namespace
