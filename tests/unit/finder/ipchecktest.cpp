#include "logic/finder/ipcheck.h"

#include "krsystem/ipv4address.h"

#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <vector>

namespace krgui {

namespace {

constexpr const char* kMulticast = "IP addresses in the 224.*.*.* to 255.*.*.* range cannot be assigned to a device.";
constexpr const char* kOtherSubnet = "Device IP Address does not match Interface Subnet.";
constexpr const char* kEnding = "IP addresses ending by 0 or 255 are invalid.";
constexpr const char* kSame = "The IP Address cannot be the same as the Interface!";
constexpr const char* kTaken = "Another device has this IP Address.";
constexpr const char* kOtherMask = "Device Subnet Mask should match Interface Subnet Mask.";
constexpr const char* kBadMask = "Invalid subnet mask.";
constexpr const char* kOtherGateway = "Device Gateway does not match Interface Subnet.";

// Texts to numbers.

struct ParseCase {
  const char* name;
  const char* text;
  std::optional<std::uint32_t> expected;
};

class ParseDottedTest : public testing::TestWithParam<ParseCase> {};

TEST_P(ParseDottedTest, Text_GivesItsNumberOrNone) {
  EXPECT_EQ(ParseDotted(GetParam().text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ParseDottedTest,
    testing::Values(
        ParseCase{"Plain", "192.168.1.20", 0xC0A80114}, ParseCase{"Zero", "0.0.0.0", 0U},
        ParseCase{"AllOnes", "255.255.255.255", 0xFFFFFFFF}, ParseCase{"TextAfterwards", "10.0.0.1/24", 0x0A000001},
        ParseCase{"DotAfterwards", "10.0.0.1.2", 0x0A000001}, ParseCase{"Octal", "010.0.0.011", 0x08000009},
        ParseCase{"Hexadecimal", "0x10.0.0.0Xff", 0x100000FF}, ParseCase{"OctalWithTheDigit8", "10.0.0.08", 0x0A000000},
        ParseCase{"OctalWithTheDigit8Before", "08.0.0.1", std::nullopt},
        ParseCase{"BlanksBeforeFields", " 10. 0. 0. 1", 0x0A000001},
        ParseCase{"BlankBeforeADot", "10 .0.0.1", std::nullopt}, ParseCase{"FieldAbove255", "10.0.0.256", 0x0A000000},
        ParseCase{"FieldFarAbove255", "10.0.0.4097", 0x0A000001}, ParseCase{"NegativeField", "10.0.0.-1", 0x0A0000FF},
        ParseCase{"Plus", "+10.0.0.1", 0x0A000001}, ParseCase{"ThreeFields", "10.0.0", std::nullopt},
        ParseCase{"EmptyField", "10..0.1", std::nullopt}, ParseCase{"LastEmpty", "10.0.0.", std::nullopt},
        ParseCase{"Empty", "", std::nullopt}, ParseCase{"Words", "none", std::nullopt}),
    [](const auto& aInfo) { return aInfo.param.name; });

// The live check.

struct CheckCase {
  const char* name;
  const char* deviceAddress;
  const char* deviceMask = "255.255.255.0";
  const char* deviceGateway = "192.168.1.1";
  IPIndicators expected;
  const char* hardError = "";
  const char* adapterAddress = "192.168.1.10";
  const char* adapterMask = "255.255.255.0";
  std::vector<std::uint32_t> taken = {};
};

constexpr const char* kHardSame = "Cannot assign the same IP Address as the Interface!";
constexpr const char* kHardSubnet = "Cannot assign the device IP Address to be the same as its subnet!";

IPValues MakeValues(const CheckCase& aCase) {
  return {*ParseDotted(aCase.deviceAddress),
          *ParseDotted(aCase.deviceMask),
          *ParseDotted(aCase.deviceGateway),
          aCase.adapterAddress,
          aCase.adapterMask,
          aCase.taken};
}

class CheckIPValuesTest : public testing::TestWithParam<CheckCase> {};

TEST_P(CheckIPValuesTest, Values_GiveTheirIndicatorsAndTheirHardError) {
  const IPValues values = MakeValues(GetParam());

  const IPIndicators indicators = CheckIPValues(values);

  EXPECT_EQ(indicators.address, GetParam().expected.address);
  EXPECT_EQ(indicators.mask, GetParam().expected.mask);
  EXPECT_EQ(indicators.gateway, GetParam().expected.gateway);
  EXPECT_EQ(indicators.IsAnySet(), !(GetParam().expected == IPIndicators{}));
  EXPECT_EQ(FindHardIPError(values), GetParam().hardError);
}

const CheckCase kChecks[] = {
    {.name = "AllRight", .deviceAddress = "192.168.1.20", .expected = {}},
    {.name = "First224", .deviceAddress = "224.0.0.1", .expected = {kMulticast, "", ""}, .hardError = kMulticast},
    {.name = "First230", .deviceAddress = "230.1.1.1", .expected = {kMulticast, "", ""}, .hardError = kMulticast},
    {.name = "Broadcast",
     .deviceAddress = "255.255.255.255",
     .expected = {kMulticast, "", ""},
     .hardError = kMulticast},
    {.name = "First223", .deviceAddress = "223.1.1.1", .expected = {kOtherSubnet, "", ""}},
    {.name = "ForeignSubnet", .deviceAddress = "10.0.0.5", .expected = {kOtherSubnet, "", ""}},
    {.name = "ForeignSubnetComesBeforeTheEnding",
     .deviceAddress = "10.0.0.0",
     .expected = {kOtherSubnet, "", ""},
     .hardError = kHardSubnet},
    {.name = "Ending0", .deviceAddress = "192.168.1.0", .expected = {kEnding, "", ""}, .hardError = kHardSubnet},
    {.name = "Ending255", .deviceAddress = "192.168.1.255", .expected = {kEnding, "", ""}},
    {.name = "SameAsInterface", .deviceAddress = "192.168.1.10", .expected = {kSame, "", ""}, .hardError = kHardSame},
    {.name = "EndingComesBeforeSameAsInterface",
     .deviceAddress = "192.168.1.255",
     .expected = {kEnding, "", ""},
     .hardError = kHardSame,
     .adapterAddress = "192.168.1.255"},
    {.name = "HardSameComesBeforeFirst224",
     .deviceAddress = "224.0.0.1",
     .expected = {kMulticast, "", kOtherGateway},
     .hardError = kHardSame,
     .adapterAddress = "224.0.0.1"},
    {.name = "HardFirst224ComesBeforeItsSubnet",
     .deviceAddress = "224.0.0.0",
     .deviceMask = "255.0.0.0",
     .expected = {kMulticast, kOtherMask, ""},
     .hardError = kMulticast},
    {.name = "OtherMask",
     .deviceAddress = "192.168.1.20",
     .deviceMask = "255.255.0.0",
     .expected = {"", kOtherMask, ""}},
    {.name = "HolesInTheMaskAreNotReached",
     .deviceAddress = "192.168.1.20",
     .deviceMask = "255.0.255.0",
     .expected = {"", kOtherMask, ""}},
    {.name = "HolesInBothMasks",
     .deviceAddress = "192.168.1.20",
     .deviceMask = "255.0.255.0",
     .expected = {"", kBadMask, ""},
     .adapterMask = "255.0.255.0"},
    {.name = "NoMask", .deviceAddress = "192.168.1.20", .deviceMask = "0.0.0.0", .expected = {}},
    {.name = "NoMaskAndEnding0",
     .deviceAddress = "192.168.1.0",
     .deviceMask = "0.0.0.0",
     .expected = {kEnding, "", ""}},
    {.name = "NoMaskAndNoAddress",
     .deviceAddress = "0.0.0.0",
     .deviceMask = "0.0.0.0",
     .expected = {kOtherSubnet, "", ""},
     .hardError = kHardSubnet},
    {.name = "MaskOfOneHost",
     .deviceAddress = "192.168.1.20",
     .deviceMask = "255.255.255.255",
     .expected = {"", kOtherMask, ""},
     .hardError = kHardSubnet},
    {.name = "NoGateway", .deviceAddress = "192.168.1.20", .deviceGateway = "0.0.0.0", .expected = {}},
    {.name = "ForeignGateway",
     .deviceAddress = "192.168.1.20",
     .deviceGateway = "10.0.0.1",
     .expected = {"", "", kOtherGateway}},
    {.name = "AllThree",
     .deviceAddress = "10.0.0.5",
     .deviceMask = "255.0.0.0",
     .deviceGateway = "10.0.0.1",
     .expected = {kOtherSubnet, kOtherMask, kOtherGateway}},
    {.name = "TinySubnet",
     .deviceAddress = "192.168.1.9",
     .deviceMask = "255.255.255.252",
     .deviceGateway = "0.0.0.0",
     .expected = {},
     .adapterMask = "255.255.255.252"},
    {.name = "OutsideATinySubnet",
     .deviceAddress = "192.168.1.13",
     .deviceMask = "255.255.255.252",
     .deviceGateway = "192.168.1.14",
     .expected = {kOtherSubnet, "", kOtherGateway},
     .adapterMask = "255.255.255.252"},
    {.name = "AdapterWithoutAddress",
     .deviceAddress = "192.168.1.20",
     .deviceMask = "255.255.255.0",
     .deviceGateway = "10.0.0.1",
     .expected = {"", kOtherMask, ""},
     .adapterAddress = "0.0.0.0",
     .adapterMask = "0.0.0.0"},
    {.name = "AddressThatDoesNotParseCountsAsTheGateway",
     .deviceAddress = "192.168.1.1",
     .expected = {kSame, "", ""},
     .adapterAddress = ""},
    {.name = "MaskThatDoesNotParseCountsAsTheGateway",
     .deviceAddress = "192.168.1.20",
     .deviceMask = "192.168.1.1",
     .expected = {"", kBadMask, kOtherGateway},
     .adapterMask = "?"},
    {.name = "NothingParsesAndNoGateway",
     .deviceAddress = "10.0.0.5",
     .deviceMask = "0.0.0.0",
     .deviceGateway = "0.0.0.0",
     .expected = {},
     .adapterAddress = "",
     .adapterMask = ""},
    {.name = "SameNumberOtherTextIsNoHardError",
     .deviceAddress = "192.168.1.10",
     .expected = {kSame, "", ""},
     .adapterAddress = "192.168.001.10"},
    {.name = "AddressOfAnotherDevice",
     .deviceAddress = "192.168.1.20",
     .expected = {kTaken, "", ""},
     .taken = {0xC0A80115, 0xC0A80114}},
    {.name = "AddressesOfOtherDevicesAside",
     .deviceAddress = "192.168.1.20",
     .expected = {},
     .taken = {0xC0A80113, 0xC0A80115}},
    {.name = "AnotherDeviceOfAForeignSubnetComesAfterTheSubnet",
     .deviceAddress = "10.0.0.5",
     .expected = {kOtherSubnet, "", ""},
     .taken = {0x0A000005}},
    {.name = "AnotherDeviceAtTheEndComesAfterTheEnding",
     .deviceAddress = "192.168.1.255",
     .expected = {kEnding, "", ""},
     .taken = {0xC0A801FF}},
    {.name = "AnotherDeviceWithTheInterfacesAddressComesAfterTheInterface",
     .deviceAddress = "192.168.1.10",
     .expected = {kSame, "", ""},
     .hardError = kHardSame,
     .taken = {0xC0A8010A}},
};

void PrintTo(const CheckCase& aCase, std::ostream* aStream) {
  *aStream << aCase.name;
}

INSTANTIATE_TEST_SUITE_P(Rows, CheckIPValuesTest, testing::ValuesIn(kChecks),
                         [](const auto& aInfo) { return aInfo.param.name; });

TEST(CheckIPValues, EveryContiguousMaskThatTheAdapterHasToo_IsAccepted) {
  for (int bits = 0; bits <= 32; ++bits) {
    const std::uint32_t mask = bits == 0 ? 0 : 0xFFFFFFFFU << (32 - bits);

    const IPIndicators indicators = CheckIPValues({0xC0A80114, mask, 0, "192.168.1.10", krsystem::FormatIPv4(mask)});

    EXPECT_EQ(indicators.mask, "") << bits;
  }
}

// What the dialog starts with.

struct ProposalCase {
  const char* name;
  const char* address;
  const char* mask;
  const char* network;
  int emptyFields;
};

class ProposeIPAddressTest : public testing::TestWithParam<ProposalCase> {};

TEST_P(ProposeIPAddressTest, Adapter_GivesItsNetworkAndTheFieldsLeftEmpty) {
  const IPProposal proposal = ProposeIPAddress(GetParam().address, GetParam().mask);

  EXPECT_EQ(krsystem::FormatIPv4(proposal.network), GetParam().network);
  EXPECT_EQ(proposal.emptyFields, GetParam().emptyFields);
}

INSTANTIATE_TEST_SUITE_P(Rows, ProposeIPAddressTest,
                         testing::Values(ProposalCase{"Class24", "192.168.1.10", "255.255.255.0", "192.168.1.0", 1},
                                         ProposalCase{"Class16", "172.16.5.10", "255.255.0.0", "172.16.0.0", 2},
                                         ProposalCase{"Class8", "10.1.2.3", "255.0.0.0", "10.0.0.0", 3},
                                         ProposalCase{"NoAddress", "0.0.0.0", "0.0.0.0", "0.0.0.0", 4},
                                         ProposalCase{"Tiny", "192.168.1.10", "255.255.255.252", "192.168.1.8", 0},
                                         ProposalCase{"PartOfAField", "172.16.21.10", "255.255.240.0", "172.16.16.0",
                                                      1},
                                         ProposalCase{"HoleInTheMask", "10.1.2.3", "255.0.255.0", "10.0.2.0", 1},
                                         ProposalCase{"NoNumbers", "", "", "0.0.0.0", 4}),
                         [](const auto& aInfo) { return aInfo.param.name; });

} // namespace

} // namespace krgui
