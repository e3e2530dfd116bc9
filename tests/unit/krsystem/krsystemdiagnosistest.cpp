#include "krsystem/krsystem.h"

#include "krbase/krlogger.h"
#include "systemfixtures.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<KrFindingKind> ListKinds(const std::vector<KrFinding>& aFindings) {
  std::vector<KrFindingKind> kinds;
  for (const KrFinding& finding : aFindings)
    kinds.push_back(finding.kind);
  return kinds;
}

std::vector<KrFindingKind> Diagnose(KrSystem& aSystem) {
  std::vector<KrFinding> findings;
  EXPECT_TRUE(aSystem.Diagnose(findings).IsOK());
  return ListKinds(findings);
}

krsystem::GEVFields MakeForeign(const KrString& aID) {
  krsystem::GEVFields camera = MakeCamera(aID, "172.16.0.5");
  camera.configurationValid = false;
  return camera;
}

} // namespace

TEST(KrSystemDiagnosis, WithoutTransports_SaysSo) {
  KrSystem system;

  EXPECT_THAT(Diagnose(system), ElementsAre(KrFindingKind::NoTransport));
}

TEST(KrSystemDiagnosis, TransportThatReadsNothing_IsAskedForDevicesAlone) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  transport->answers = {{0, MakeCamera("a")}};
  KrSystem system;

  EXPECT_THAT(Diagnose(system), ElementsAre(KrFindingKind::NoAnswer)) << "nobody has looked";
  EXPECT_TRUE(system.Find().IsOK());
  EXPECT_THAT(Diagnose(system), IsEmpty());
}

TEST(KrSystemDiagnosis, SeveralTransports_AreJoined) {
  const RegisteredTransport network;
  const RegisteredTransport usb;
  network->readHost = [](krsystem::HostReadings& aReadings) {
    aReadings.hasNetworkTransport = true;
    aReadings.adapters.push_back({.uniqueID = "eth0", .name = "eth0", .isUp = false, .addresses = {}});
    return KrResult();
  };
  usb->readHost = [](krsystem::HostReadings& aReadings) {
    aReadings.hasUSBTransport = true;
    aReadings.usbDevices.push_back({.uniqueID = "u", .displayID = "U", .mayOpen = false});
    return KrResult();
  };
  KrSystem system;

  EXPECT_THAT(Diagnose(system), ElementsAre(KrFindingKind::USBPermission, KrFindingKind::AdapterDown));
}

TEST(KrSystemDiagnosis, OneTransportFails_AddsNothingAndIsLogged) {
  const KrLogCapture log;
  const RegisteredTransport failing;
  const RegisteredTransport working;
  failing->readHost = [](krsystem::HostReadings& aReadings) {
    aReadings.usbDevices.push_back({.uniqueID = "half read", .displayID = "", .mayOpen = false});
    return KrResult(KrResult::Code::SystemError, "no netlink");
  };
  working->readHost = [](krsystem::HostReadings& aReadings) {
    aReadings.adapters.push_back({.uniqueID = "eth0", .name = "eth0", .isUp = false, .addresses = {}});
    return KrResult();
  };
  KrSystem system;

  EXPECT_THAT(Diagnose(system), ElementsAre(KrFindingKind::AdapterDown));

  EXPECT_TRUE(log.Contains(KrLogLevel::Warning, "Reading the host by Fake failed: SystemError. no netlink"));
}

TEST(KrSystemDiagnosis, EveryTransportThrows_GivesTheFailureWithoutFindings) {
  const KrLogCapture log;
  const RegisteredTransport transport;
  KrSystem system;
  transport->throws = true;
  std::vector<KrFinding> findings(1);

  const KrResult result = system.Diagnose(findings);

  EXPECT_TRUE(result == KrResult::Code::SystemError);
  EXPECT_EQ(result.GetDescription(), "Reading the host was ended by an exception: the fake is broken");
  EXPECT_THAT(findings, IsEmpty());
}

TEST(KrSystemDiagnosis, DeviceOfTheLastRound_CountsAlsoWhereASinkIgnoredIt) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  transport->answers = {{0, MakeForeign("a")}};
  KrSystem system;
  RecordingSink sink;
  sink.onFound = [](const KrDeviceInfo&, bool& aIgnore) { aIgnore = true; };
  EXPECT_TRUE(system.RegisterEventSink(&sink).IsOK());

  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_THAT(Diagnose(system), ElementsAre(KrFindingKind::ForeignSubnet));
  transport->answers.clear();
  EXPECT_TRUE(system.Find().IsOK());
  EXPECT_THAT(Diagnose(system), ElementsAre(KrFindingKind::NoAnswer));
}

TEST(KrSystemDiagnosis, AdapterThatGotAnotherUniqueIDSinceTheRound_IsJoinedByItsName) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  transport->answers = {{0, MakeForeign("a")}};
  transport->readHost = [](krsystem::HostReadings& aReadings) {
    aReadings.adapters.push_back({.uniqueID = "another", .name = "eth0", .addresses = {{"10.0.0.1", "255.0.0.0"}}});
    return KrResult();
  };
  KrSystem system;
  EXPECT_TRUE(system.Find().IsOK());
  std::vector<KrFinding> findings;

  EXPECT_TRUE(system.Diagnose(findings).IsOK());

  ASSERT_EQ(findings.size(), 1u);
  EXPECT_THAT(findings[0].remedy.ToUtf8(), testing::HasSubstr("eth0 (10.0.0.1, mask 255.0.0.0)"));
}

TEST(KrSystemDiagnosis, CancelledRound_KeepsWhatHadAnsweredBefore) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  transport->answers = {{0, MakeForeign("a")}, {0, MakeForeign("b")}};
  KrSystem system;
  EXPECT_TRUE(system.Find().IsOK());
  RecordingSink sink;
  sink.onFound = [&system](const KrDeviceInfo&, bool&) { system.Cancel(); };
  EXPECT_TRUE(system.RegisterEventSink(&sink).IsOK());
  transport->answers = {{0, MakeCamera("b")}};
  transport->afterAnswers = WaitForCancel;

  EXPECT_TRUE(system.Find() == KrResult::Code::Aborted);

  EXPECT_THAT(Diagnose(system), ElementsAre(KrFindingKind::ForeignSubnet)) << "b was given a good address";
}

TEST(KrSystemDiagnosis, TwoDevicesWithOneMACAddress_AreBothKnown) {
  const RegisteredTransport transport;
  krsystem::GEVFields first = MakeCamera("a", "10.0.0.2");
  krsystem::GEVFields second = MakeCamera("a", "10.0.0.3");
  transport->interfaces = {MakeAdapter("eth0")};
  transport->answers = {{0, first}, {0, second}, {0, first}};
  KrSystem system;

  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_EQ(system.GetDeviceCount(), 1u);
  EXPECT_THAT(Diagnose(system), ElementsAre(KrFindingKind::SharedMAC));
}

TEST(KrSystemDiagnosis, WhileFindRuns_IsAnswered) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  transport->answers = {{0, MakeForeign("a")}};
  KrSystem system;
  EXPECT_TRUE(system.Find().IsOK());
  RecordingSink sink;
  std::vector<KrFindingKind> found;
  sink.onFound = [&](const KrDeviceInfo&, bool&) { found = Diagnose(system); };
  EXPECT_TRUE(system.RegisterEventSink(&sink).IsOK());
  transport->answers = {{0, MakeCamera("a")}};

  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_THAT(found, ElementsAre(KrFindingKind::ForeignSubnet));
  EXPECT_THAT(Diagnose(system), IsEmpty());
}
