// Why a device is not found or not usable, read from real networks.

#include "networkfixture.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using testing::AllOf;
using testing::AnyOf;
using testing::Contains;
using testing::Field;
using testing::HasSubstr;
using testing::Not;

/// A finding's kind and what it is about.
using Cause = std::pair<KrFindingKind, std::string>;

class OnANetworkDiagnosis : public OnANetwork {
protected:
  /// Rounds until these devices are found, one at least, and what is found out about the last.
  std::vector<Cause> Diagnose(const std::vector<std::string>& aSerialNumbers) {
    FindThese(mSystem, aSerialNumbers);
    return DiagnoseLastRound();
  }
  /// One round, and what is found out about it.
  std::vector<Cause> Diagnose() {
    Find(mSystem);
    return DiagnoseLastRound();
  }
  std::vector<Cause> DiagnoseLastRound() {
    std::vector<KrFinding> findings;
    const KrResult result = mSystem.Diagnose(findings);
    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    std::vector<Cause> causes;
    for (const KrFinding& finding : findings) {
      EXPECT_FALSE(finding.text.IsEmpty());
      EXPECT_FALSE(finding.remedy.IsEmpty()) << finding.text.CStr();
      causes.emplace_back(finding.kind, finding.subject.ToUtf8());
    }
    return causes;
  }
  static std::vector<KrFindingKind> GetKinds(const std::vector<Cause>& aCauses) {
    std::vector<KrFindingKind> kinds;
    for (const Cause& cause : aCauses)
      kinds.push_back(cause.first);
    return kinds;
  }

  KrSystem mSystem;
};

TEST_F(OnANetworkDiagnosis, Diagnose_AllIsWell_NamesNoCauseOfTheNetwork) {
  const TestDevice device(mHost, "port0", {.serialNumber = "well"});

  const auto kinds = GetKinds(Diagnose({"well"}));

  for (const KrFindingKind kind :
       {KrFindingKind::NoTransport, KrFindingKind::AdapterDown, KrFindingKind::NoCarrier, KrFindingKind::NoAddress,
        KrFindingKind::ForeignSubnet, KrFindingKind::ReversePathFilter, KrFindingKind::AddressConflict,
        KrFindingKind::SharedMAC, KrFindingKind::SubnetNotUnique, KrFindingKind::NoAdapter, KrFindingKind::NoAnswer})
    EXPECT_THAT(kinds, Not(Contains(kind)));
}

TEST_F(OnANetworkDiagnosis, Diagnose_NobodyAnswers_IsNamedAsTheLast) {
  const auto kinds = GetKinds(Diagnose());

  ASSERT_FALSE(kinds.empty());
  EXPECT_EQ(kinds.back(), KrFindingKind::NoAnswer);
}

TEST_F(OnANetworkDiagnosis, Diagnose_NoAdapterButLoopback_IsNamedAndNothingElseOfTheNetwork) {
  mLab.DeleteAdapter("eth0");

  EXPECT_THAT(GetKinds(Diagnose()), testing::ElementsAre(KrFindingKind::NoAdapter));
}

TEST_F(OnANetworkDiagnosis, Diagnose_AdapterDown_IsNamed) {
  mLab.SetDown("eth0");

  EXPECT_THAT(Diagnose(), Contains(Cause(KrFindingKind::AdapterDown, "eth0")));
}

TEST_F(OnANetworkDiagnosis, Diagnose_CablePulled_IsNamed) {
  mLab.Unplug("eth0");

  EXPECT_THAT(Diagnose(), Contains(Cause(KrFindingKind::NoCarrier, "eth0")));
}

TEST_F(OnANetworkDiagnosis, Diagnose_AdapterWithoutAddress_IsNamed) {
  mLab.RemoveAddress("eth0", "192.168.1.10/24");

  EXPECT_THAT(Diagnose(), Contains(Cause(KrFindingKind::NoAddress, "eth0")));
}

TEST_F(OnANetworkDiagnosis, Diagnose_DeviceOfAForeignSubnet_IsNamed) {
  const TestDevice device(mHost, "port0", {.address = "10.1.2.3", .serialNumber = "foreign"});

  EXPECT_THAT(Diagnose({"foreign"}), Contains(AllOf(Field(&Cause::first, KrFindingKind::ForeignSubnet),
                                                    Field(&Cause::second, HasSubstr("(10.1.2.3)")))));
}

/// A second adapter "eth1" with 10.1.0.10/16 on the switch that eth0's cable leads to.
class OnOneSwitch : public OnANetworkDiagnosis {
protected:
  OnOneSwitch() {
    mLab.Connect("eth1", mHost, "port1");
    mLab.SetAddress("eth1", "10.1.0.10/16");
    mLab.SetReversePathFilter("eth1", 0);
    mHost.RunIp({"link", "add", "switch", "type", "bridge"});
    for (const char* port : {"port0", "port1"})
      mHost.RunIp({"link", "set", port, "master", "switch"});
    mHost.SetUp("switch");
  }
};

TEST_F(OnOneSwitch, Diagnose_DeviceOfTheOtherAdaptersSubnet_IsWell) {
  const TestDevice device(mHost, "switch", {.address = "10.1.2.3", .mask = "255.255.0.0", .serialNumber = "shared"});
  FindUntil(
      mSystem, [&] { return GetSerialNumbers(mSystem).size() == 2; }, "the device on both adapters");

  const auto kinds = GetKinds(DiagnoseLastRound());

  EXPECT_THAT(kinds, Not(Contains(KrFindingKind::ForeignSubnet)));
  EXPECT_THAT(kinds, Not(Contains(KrFindingKind::SharedMAC)));
}

TEST_F(OnOneSwitch, Diagnose_DeviceOfNeitherSubnet_IsNamed) {
  const TestDevice device(mHost, "switch", {.address = "172.16.2.3", .serialNumber = "foreign"});
  FindUntil(
      mSystem, [&] { return GetSerialNumbers(mSystem).size() == 2; }, "the device on both adapters");

  EXPECT_THAT(GetKinds(DiagnoseLastRound()), Contains(KrFindingKind::ForeignSubnet));
}

TEST_F(OnANetworkDiagnosis, Diagnose_BridgeWithPorts_TellsOfTheBridgeAlone) {
  mLab.Connect("eth1", mHost, "port1");
  mLab.RemoveAddress("eth0", "192.168.1.10/24");
  mLab.AddBridge("br0", {"eth0", "eth1"});
  mLab.Unplug("eth1");

  const auto bare = Diagnose();
  mLab.SetAddress("br0", "192.168.1.10/24");
  const auto addressed = Diagnose();
  mLab.Unplug("eth0");
  const auto unplugged = Diagnose();

  EXPECT_THAT(bare, Contains(Cause(KrFindingKind::NoAddress, "br0")));
  for (const char* port : {"eth0", "eth1"}) {
    EXPECT_THAT(bare, Not(Contains(Field(&Cause::second, std::string(port)))));
    EXPECT_THAT(addressed, Not(Contains(Field(&Cause::second, std::string(port)))));
    EXPECT_THAT(unplugged, Not(Contains(Field(&Cause::second, std::string(port)))));
  }
  EXPECT_THAT(addressed, Not(Contains(Field(&Cause::second, std::string("br0")))));
  EXPECT_THAT(unplugged, Contains(Cause(KrFindingKind::NoCarrier, "br0")));
}

TEST_F(OnANetworkDiagnosis, Diagnose_BridgeWithoutPorts_IsNotTalkedOf) {
  mLab.AddBridge("docker0", {});
  mLab.SetAddress("docker0", "172.17.0.1/16");

  EXPECT_THAT(Diagnose(), Not(Contains(Field(&Cause::second, std::string("docker0")))));
}

TEST_F(OnANetworkDiagnosis, Diagnose_AdapterUnderAMacvlan_NeedsNoAddress) {
  mLab.RemoveAddress("eth0", "192.168.1.10/24");
  mLab.AddMacvlan("mv0", "eth0", "bridge");

  const auto bare = Diagnose();
  mLab.SetAddress("mv0", "192.168.1.10/24");
  const auto addressed = Diagnose();

  EXPECT_THAT(bare, Contains(Cause(KrFindingKind::NoAddress, "mv0")));
  EXPECT_THAT(bare, Not(Contains(Cause(KrFindingKind::NoAddress, "eth0"))));
  EXPECT_THAT(GetKinds(addressed), Not(Contains(KrFindingKind::NoAddress)));
}

/// Whether a filter drops what a device of a foreign subnet says is the kernel's to decide, and the diagnosis says so.
struct FilterCase {
  const char* name;
  int filter;
  const char* routeBy; ///< The adapter of the default route; empty for none.
  bool isHeard;
};

constexpr FilterCase kFilterCases[] = {
    {"Off", 0, "", true},
    {"StrictWithoutRoute", 1, "", false},
    {"StrictWithARouteElsewhere", 1, "eth1", false},
    {"StrictWithTheRoute", 1, "eth0", true},
    {"LooseWithoutRoute", 2, "", false},
    {"LooseWithARouteElsewhere", 2, "eth1", true},
    {"LooseWithTheRoute", 2, "eth0", true},
};

class OnANetworkFilters : public OnANetworkDiagnosis, public testing::WithParamInterface<FilterCase> {};

TEST_P(OnANetworkFilters, Diagnose_Filter_IsNamedWhereAForeignDeviceIsNotHeard) {
  mLab.Connect("eth1", mHost, "port1");
  mLab.SetAddress("eth1", "10.0.0.10/24");
  mLab.SetReversePathFilter("eth1", 0);
  mLab.SetReversePathFilter("eth0", GetParam().filter);
  if (GetParam().routeBy == std::string("eth0"))
    mLab.SetGateway("eth0", "192.168.1.1");
  else if (GetParam().routeBy == std::string("eth1"))
    mLab.SetGateway("eth1", "10.0.0.1");
  const TestDevice foreign(mHost, "port0",
                           {.mac = "02:00:00:00:00:02", .address = "172.16.2.3", .serialNumber = "foreign"});
  const TestDevice near(mHost, "port0", {.serialNumber = "near"});

  const auto causes =
      Diagnose(GetParam().isHeard ? std::vector<std::string>{"foreign", "near"} : std::vector<std::string>{"near"});

  const Cause filter(KrFindingKind::ReversePathFilter, "eth0");
  if (GetParam().isHeard)
    EXPECT_THAT(causes, Not(Contains(filter)));
  else
    EXPECT_THAT(causes, Contains(filter));
}

INSTANTIATE_TEST_SUITE_P(Filters, OnANetworkFilters, testing::ValuesIn(kFilterCases),
                         [](const auto& aInfo) { return aInfo.param.name; });

TEST_F(OnANetworkDiagnosis, Diagnose_TwoDevicesWithOneAddress_IsNamed) {
  const TestDevice first(mHost, "port0", {.mac = "02:00:00:00:00:01", .model = "first", .serialNumber = "1"});
  const TestDevice second(mHost, "port0", {.mac = "02:00:00:00:00:02", .model = "second", .serialNumber = "2"});

  EXPECT_THAT(Diagnose({"1", "2"}),
              Contains(AllOf(Field(&Cause::first, KrFindingKind::AddressConflict),
                             Field(&Cause::second, AnyOf(HasSubstr("first"), HasSubstr("second"))))));
}

TEST_F(OnANetworkDiagnosis, Diagnose_TwoDevicesWithOneMac_IsNamed) {
  const TestDevice first(mHost, "port0", {.address = "192.168.1.20", .model = "first"});
  const TestDevice second(mHost, "port0", {.address = "192.168.1.21", .model = "second"});

  // One of them is listed; the other's answer may come too late for a round.
  std::vector<Cause> causes;
  FindUntil(
      mSystem,
      [&] {
        causes = DiagnoseLastRound();
        return testing::Value(GetKinds(causes), Contains(KrFindingKind::SharedMAC));
      },
      "both devices");
  EXPECT_THAT(causes, Contains(AllOf(Field(&Cause::first, KrFindingKind::SharedMAC),
                                     Field(&Cause::second, AnyOf(HasSubstr("first"), HasSubstr("second"))))));
}

TEST_F(OnANetworkDiagnosis, Diagnose_TwoAdaptersInOneSubnet_IsNamed) {
  mLab.Connect("eth1", mHost, "port1");
  mLab.SetAddress("eth1", "192.168.1.11/24");

  EXPECT_THAT(Diagnose(), Contains(Cause(KrFindingKind::SubnetNotUnique, "eth1")));
}

} // namespace
