#include "krsystem/krsystem.h"

#include "krbase/krlogger.h"
#include "systemfixtures.h"

#include <future>
#include <thread>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

krsystem::NetworkAdapterFields MakeLoopback(const KrString& aDescription = "loopback") {
  krsystem::NetworkAdapterFields fields = MakeAdapter("lo", "127.0.0.1");
  fields.description = aDescription;
  fields.isLoopback = true;
  return fields;
}

// Reads everything that is listed, and says whether the interfaces were all there.
bool ReadLists(const KrSystem& aSystem, std::size_t aInterfaces) {
  bool areAllThere = aSystem.GetInterfaceCount() == aInterfaces;
  for (std::size_t i = 0; i < aInterfaces; ++i) {
    const KrInterface* const interface = aSystem.GetInterface(i);
    areAllThere = areAllThere && interface;
    for (std::size_t d = 0; interface && d <= interface->GetDeviceCount(); ++d) {
      const KrDeviceInfo* const device = interface->GetDeviceInfo(d);
      EXPECT_TRUE(!device || device->GetInterface() == interface);
    }
  }
  for (std::size_t i = 0; i <= aSystem.GetDeviceCount(); ++i) {
    const KrDeviceInfo* const device = aSystem.GetDeviceInfo(i);
    EXPECT_TRUE(!device || !device->GetUniqueID().IsEmpty());
  }
  return areAllThere;
}

} // namespace

TEST(KrSystemLists, ReadWhileDiscoveryRuns_InterfacesAreThereAsAWhole) {
  constexpr int kRounds = 200;
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0", "10.0.0.1"), MakeAdapter("eth1", "10.0.1.1"), MakeAdapter("eth2")};
  transport->answers = {{0, MakeCamera("a")}, {1, MakeCamera("b")}, {1, MakeCamera("c")}};
  transport->findResult = {};
  transport->foundInterface = MakeAdapter("eth2");
  transport->foundDevice = MakeCamera("d");
  KrSystem system;
  std::atomic<int> incomplete = 0;
  std::jthread reader([&](const std::stop_token& aStop) {
    while (!aStop.stop_requested())
      incomplete += ReadLists(system, 3) ? 0 : 1;
  });

  for (int round = 0; round < kRounds; ++round) {
    transport->interfaces[0] = MakeAdapter("eth0", round % 2 ? "10.0.0.1" : "10.0.0.2");
    const KrDeviceInfo* found = nullptr;
    ASSERT_TRUE(system.Find().IsOK());
    ASSERT_TRUE(system.FindDevice("10.0.0.9", &found).IsOK());
  }
  reader.request_stop();
  reader.join();

  EXPECT_EQ(incomplete, 0);
  EXPECT_THAT(ListDevices(system), ElementsAre("a", "b", "c", "d"));
}

TEST(KrSystemLists, AskWhileDiscoveryRuns_DiagnosisAndFreeAddressAreGiven) {
  constexpr int kRounds = 200;
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0", "10.0.0.1"), MakeLoopback()};
  transport->answers = {{0, MakeCamera("a")}, {1, MakeCamera("b")}};
  transport->findUsed = [](const auto&, const auto&, auto&) { return KrResult(); };
  KrSystem system;
  std::atomic<int> failures = 0;
  std::jthread asker([&](const std::stop_token& aStop) {
    std::vector<KrFinding> findings;
    KrString address;
    while (!aStop.stop_requested()) {
      const auto* const adapter = dynamic_cast<const KrNetworkAdapter*>(system.GetInterface(0));
      const bool isFound = adapter && system.FindFreeAddress(*adapter, 0, aStop, address).IsOK();
      failures += system.Diagnose(findings).IsOK() && (isFound || aStop.stop_requested()) ? 0 : 1;
    }
  });

  for (int round = 0; round < kRounds; ++round)
    ASSERT_TRUE(system.Find().IsOK());
  asker.request_stop();
  asker.join();

  EXPECT_EQ(failures, 0);
}

TEST(KrSystemLists, Find_SinkIsCalled_ItsInterfaceIsListed) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0"), MakeLoopback()};
  transport->answers = {{0, MakeCamera("a")}, {1, MakeCamera("b")}};
  KrSystem system;
  RecordingSink sink;
  std::vector<std::vector<KrString>> listed;
  sink.onFound = [&](const KrDeviceInfo& aDevice, bool&) {
    listed.push_back(ListInterfaces(system));
    EXPECT_THAT(listed.back(), testing::Contains(aDevice.GetInterface()->GetUniqueID()));
  };
  EXPECT_TRUE(system.RegisterEventSink(&sink).IsOK());

  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_THAT(listed, ElementsAre(ElementsAre("eth0"), ElementsAre("eth0", "lo")));
}

TEST(KrSystemLists, Find_DeviceAnswersNoMore_StaysListedUntilTheRoundIsOver) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  transport->answers = {{0, MakeCamera("a")}, {0, MakeCamera("b")}};
  KrSystem system;
  EXPECT_TRUE(system.Find().IsOK());
  RecordingSink sink;
  std::vector<KrString> during;
  sink.onFound = [&](const KrDeviceInfo&, bool&) { during = ListDevices(system); };
  EXPECT_TRUE(system.RegisterEventSink(&sink).IsOK());
  transport->answers = {{0, MakeCamera("b")}};

  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_THAT(during, ElementsAre("a", "b"));
  EXPECT_THAT(ListDevices(system), ElementsAre("b"));
  EXPECT_EQ(system.GetInterface(0)->GetDeviceCount(), 1u);
}

TEST(KrSystemLists, Find_IsCancelled_KeepsWhatHadAnsweredBefore) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0"), MakeAdapter("eth1")};
  transport->answers = {{0, MakeCamera("a")}, {1, MakeCamera("b")}};
  KrSystem system;
  EXPECT_TRUE(system.Find().IsOK());
  RecordingSink sink;
  sink.onFound = [&system](const KrDeviceInfo&, bool&) { system.Cancel(); };
  EXPECT_TRUE(system.RegisterEventSink(&sink).IsOK());
  transport->answers = {{0, MakeCamera("c")}};
  transport->afterAnswers = WaitForCancel;

  EXPECT_TRUE(system.Find() == KrResult::Code::Aborted);

  EXPECT_THAT(ListDevices(system), ElementsAre("a", "c", "b"));
}

TEST(KrSystemLists, Find_SinkIgnoresAListedDevice_LeavesTheLists) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  transport->answers = {{0, MakeCamera("a")}};
  KrSystem system;
  EXPECT_TRUE(system.Find().IsOK());
  RecordingSink sink;
  sink.onFound = [&system](const KrDeviceInfo&, bool& aIgnore) {
    aIgnore = true;
    system.Cancel();
  };
  EXPECT_TRUE(system.RegisterEventSink(&sink).IsOK());
  transport->afterAnswers = WaitForCancel;

  EXPECT_TRUE(system.Find() == KrResult::Code::Aborted);

  EXPECT_THAT(ListDevices(system), IsEmpty());
  EXPECT_EQ(system.GetInterface(0)->GetDeviceCount(), 0u);
}

TEST(KrSystemLists, Find_TransportCannotListForAMoment_KeepsWhatItListedBefore) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0"), MakeAdapter("eth1")};
  transport->answers = {{1, MakeCamera("a")}};
  KrSystem system;
  ASSERT_TRUE(system.Find().IsOK());
  transport->interfaces = {MakeAdapter("eth0")};
  transport->listResult = {KrResult::Code::SystemError, "interrupted"};
  const KrLogCapture log;

  EXPECT_TRUE(system.Find().IsOK());
  const std::size_t interfacesThen = system.GetInterfaceCount();
  const std::size_t devicesThen = system.GetDeviceCount();
  transport->listResult = {};
  transport->answers.clear();
  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_EQ(interfacesThen, 2u);
  EXPECT_EQ(devicesThen, 1u);
  EXPECT_EQ(system.GetInterfaceCount(), 1u);
}

TEST(KrSystemLists, Loopback_WithoutAnAnswer_IsNotListed) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeLoopback(), MakeAdapter("eth0")};
  transport->answers = {{1, MakeCamera("a")}};
  KrSystem system;
  EXPECT_THAT(ListInterfaces(system), ElementsAre("eth0"));

  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_THAT(ListInterfaces(system), ElementsAre("eth0"));
}

TEST(KrSystemLists, Loopback_DeviceAnswered_StaysListedInItsPlace) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeLoopback(), MakeAdapter("eth0")};
  transport->answers = {{0, MakeCamera("a")}};
  KrSystem system;
  EXPECT_TRUE(system.Find().IsOK());
  EXPECT_THAT(ListInterfaces(system), ElementsAre("lo", "eth0"));
  transport->interfaces[0] = MakeLoopback("with other fields");
  transport->answers.clear();

  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_THAT(ListInterfaces(system), ElementsAre("lo", "eth0"));
  EXPECT_THAT(ListDevices(system), IsEmpty());
}

TEST(KrSystemLists, Loopback_IgnoredDeviceAnswered_IsListed) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeLoopback()};
  transport->answers = {{0, MakeCamera("a")}};
  KrSystem system;
  RecordingSink sink;
  sink.onFound = [](const KrDeviceInfo&, bool& aIgnore) { aIgnore = true; };
  EXPECT_TRUE(system.RegisterEventSink(&sink).IsOK());

  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_THAT(ListInterfaces(system), ElementsAre("lo"));
}

TEST(KrSystemLists, Loopback_TransportListsItNoMore_WaitsForAnAnswerAgain) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeLoopback()};
  transport->answers = {{0, MakeCamera("a")}};
  KrSystem system;
  EXPECT_TRUE(system.Find().IsOK());
  transport->interfaces.clear();
  transport->answers.clear();
  EXPECT_TRUE(system.Find().IsOK());
  EXPECT_THAT(ListInterfaces(system), IsEmpty());
  transport->interfaces = {MakeLoopback()};

  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_THAT(ListInterfaces(system), IsEmpty());
}

TEST(KrSystemLists, Loopback_AddressAnswersThere_IsListedFromThenOn) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeLoopback(), MakeAdapter("eth0")};
  transport->findResult = {};
  transport->foundInterface = MakeLoopback();
  transport->foundDevice = MakeCamera("a");
  KrSystem system;
  const KrDeviceInfo* device = nullptr;

  EXPECT_TRUE(system.FindDevice("127.0.0.1", &device).IsOK());

  EXPECT_THAT(ListInterfaces(system), ElementsAre("lo", "eth0"));
  EXPECT_TRUE(system.Find().IsOK());
  EXPECT_THAT(ListInterfaces(system), ElementsAre("lo", "eth0"));
}

TEST(KrSystemLists, Find_TextsAsForeignAsCanBe_AreKeptAsTheyAre) {
  const KrString text = "\x01\x1B[31m<b>&amp;\n\xF0\x9F\x93\xB7 \xE2\x80\xAE";
  const RegisteredTransport transport;
  krsystem::GEVFields camera = MakeCamera("a");
  camera.displayID = text;
  camera.userDefinedName = text;
  camera.modelName = text;
  transport->interfaces = {MakeAdapter("eth0")};
  transport->answers = {{0, camera}};
  KrSystem system;

  EXPECT_TRUE(system.Find().IsOK());

  ASSERT_EQ(system.GetDeviceCount(), 1u);
  EXPECT_EQ(system.GetDeviceInfo(0)->GetDisplayID(), text);
  EXPECT_EQ(system.GetDeviceInfo(0)->GetUserDefinedName(), text);
  EXPECT_EQ(system.GetDeviceInfo(0)->GetModelName(), text);
}
