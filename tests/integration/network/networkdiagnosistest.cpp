// Why a device is not found or not usable, read from real networks.

#include "networkfixture.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using testing::Contains;
using testing::Not;

/// A finding's kind and what it is about.
using Cause = std::pair<KrFindingKind, std::string>;

class OnANetworkDiagnosis : public OnANetwork {
protected:
  /// One round, and what is found out about it.
  std::vector<Cause> Diagnose() {
    Find(mSystem);
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
  const TestDevice device(mHost, "port0");

  const auto kinds = GetKinds(Diagnose());

  for (const KrFindingKind kind :
       {KrFindingKind::NoTransport, KrFindingKind::AdapterDown, KrFindingKind::NoCarrier, KrFindingKind::NoAddress,
        KrFindingKind::ForeignSubnet, KrFindingKind::ReversePathFilter, KrFindingKind::AddressConflict,
        KrFindingKind::SharedMAC, KrFindingKind::SubnetNotUnique})
    EXPECT_THAT(kinds, Not(Contains(kind)));
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
  const TestDevice device(mHost, "port0", {.address = "10.1.2.3"});

  EXPECT_THAT(GetKinds(Diagnose()), Contains(KrFindingKind::ForeignSubnet));
}

TEST_F(OnANetworkDiagnosis, Diagnose_StrictReversePathFilter_IsNamed) {
  mLab.SetReversePathFilter("eth0", 1);

  EXPECT_THAT(Diagnose(), Contains(Cause(KrFindingKind::ReversePathFilter, "eth0")));
}

TEST_F(OnANetworkDiagnosis, Diagnose_TwoDevicesWithOneAddress_IsNamed) {
  const TestDevice first(mHost, "port0", {.mac = "02:00:00:00:00:01", .serialNumber = "first"});
  const TestDevice second(mHost, "port0", {.mac = "02:00:00:00:00:02", .serialNumber = "second"});

  EXPECT_THAT(GetKinds(Diagnose()), Contains(KrFindingKind::AddressConflict));
}

TEST_F(OnANetworkDiagnosis, Diagnose_TwoDevicesWithOneMac_IsNamed) {
  const TestDevice first(mHost, "port0", {.address = "192.168.1.20", .serialNumber = "first"});
  const TestDevice second(mHost, "port0", {.address = "192.168.1.21", .serialNumber = "second"});

  EXPECT_THAT(GetKinds(Diagnose()), Contains(KrFindingKind::SharedMAC));
}

TEST_F(OnANetworkDiagnosis, Diagnose_TwoAdaptersInOneSubnet_IsNamed) {
  mLab.Connect("eth1", mHost, "port1");
  mLab.SetAddress("eth1", "192.168.1.11/24");

  EXPECT_THAT(GetKinds(Diagnose()), Contains(KrFindingKind::SubnetNotUnique));
}

} // namespace
