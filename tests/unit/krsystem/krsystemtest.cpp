#include "krsystem/krsystem.h"

#include "krbase/krlogger.h"
#include "systemfixtures.h"

#include <future>
#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

TEST(KrSystem, Construction_WithTransports_ListsTheirInterfaces) {
  const RegisteredTransport first;
  const RegisteredTransport second;
  first->interfaces = {MakeAdapter("eth0"), MakeAdapter("eth1")};
  second->interfaces = {krsystem::USBHostControllerFields{.uniqueID = "usb0", .displayID = "USB"}};

  const KrSystem system;

  ASSERT_EQ(system.GetInterfaceCount(), 3u);
  EXPECT_EQ(system.GetInterface(0)->GetUniqueID(), "eth0");
  EXPECT_EQ(system.GetInterface(1)->GetUniqueID(), "eth1");
  EXPECT_EQ(system.GetInterface(2)->GetType(), KrInterfaceType::USBHostController);
  EXPECT_EQ(system.GetInterface(3), nullptr);
  EXPECT_EQ(system.GetDeviceCount(), 0u);
  EXPECT_EQ(system.GetDeviceInfo(0), nullptr);
}

TEST(KrSystem, Find_WithoutTransports_FindsNothing) {
  KrSystem system;

  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_EQ(system.GetInterfaceCount(), 0u);
  EXPECT_EQ(system.GetDeviceCount(), 0u);
}

TEST(KrSystem, Find_SeveralTransports_MergesWhatTheyFind) {
  const RegisteredTransport first;
  const RegisteredTransport second;
  first->interfaces = {MakeAdapter("eth0"), MakeAdapter("eth1")};
  first->answers = {{1, MakeCamera("a")}};
  second->interfaces = {krsystem::USBHostControllerFields{.uniqueID = "usb0", .displayID = "USB"}};
  krsystem::U3VFields u3v;
  u3v.uniqueID = "b";
  second->answers = {{0, u3v}};
  KrSystem system;

  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_THAT(ListDevices(system), testing::UnorderedElementsAre("a", "b"));
  EXPECT_EQ(system.GetInterface(0)->GetDeviceCount(), 0u);
  ASSERT_EQ(system.GetInterface(1)->GetDeviceCount(), 1u);
  const KrDeviceInfo* const camera = system.GetInterface(1)->GetDeviceInfo(0);
  EXPECT_EQ(camera->GetInterface(), system.GetInterface(1));
  EXPECT_EQ(camera->GetTransport(), first.Get());
  EXPECT_NE(dynamic_cast<const KrDeviceInfoGEV*>(camera), nullptr);
  EXPECT_NE(dynamic_cast<const KrDeviceInfoU3V*>(system.GetInterface(2)->GetDeviceInfo(0)), nullptr);
}

TEST(KrSystem, Find_Settings_ReachTheTransport) {
  const RegisteredTransport transport;
  KrSystem system;
  system.SetDetectionTimeout(0);
  system.SetSubnetBroadcastEnabled(false);

  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_EQ(system.GetDetectionTimeout(), 1u);
  ASSERT_EQ(transport->requests.size(), 1u);
  EXPECT_EQ(transport->requests[0].timeoutMs, 1u);
  EXPECT_FALSE(transport->requests[0].subnetBroadcast);
}

TEST(KrSystem, Find_NothingChanged_KeepsObjects) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  transport->answers = {{0, MakeCamera("a")}};
  KrSystem system;
  EXPECT_TRUE(system.Find().IsOK());
  const KrInterface* const interface = system.GetInterface(0);
  const KrDeviceInfo* const device = system.GetDeviceInfo(0);

  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_EQ(system.GetInterface(0), interface);
  ASSERT_EQ(system.GetDeviceCount(), 1u);
  EXPECT_EQ(system.GetDeviceInfo(0), device);
}

TEST(KrSystem, Find_DeviceChangedAndChangedBack_KeepsAndReusesTheFormerObject) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  transport->answers = {{0, MakeCamera("a", "10.0.0.2")}};
  KrSystem system;
  EXPECT_TRUE(system.Find().IsOK());
  const auto* const former = dynamic_cast<const KrDeviceInfoGEV*>(system.GetDeviceInfo(0));
  transport->answers = {{0, MakeCamera("a", "10.0.0.3")}};

  EXPECT_TRUE(system.Find().IsOK());

  ASSERT_EQ(system.GetDeviceCount(), 1u);
  EXPECT_NE(system.GetDeviceInfo(0), former);
  EXPECT_EQ(former->GetIPAddress(), "10.0.0.2");
  transport->answers = {{0, MakeCamera("a", "10.0.0.2")}};
  EXPECT_TRUE(system.Find().IsOK());
  EXPECT_EQ(system.GetDeviceInfo(0), former);
}

TEST(KrSystem, Find_InterfaceChanged_MakesNewObjectsForItAndItsDevices) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0", "10.0.0.1")};
  transport->answers = {{0, MakeCamera("a")}};
  KrSystem system;
  EXPECT_TRUE(system.Find().IsOK());
  const KrInterface* const formerInterface = system.GetInterface(0);
  const KrDeviceInfo* const formerDevice = system.GetDeviceInfo(0);
  transport->interfaces = {MakeAdapter("eth0", "10.0.0.9")};

  EXPECT_TRUE(system.Find().IsOK());

  ASSERT_EQ(system.GetInterfaceCount(), 1u);
  EXPECT_NE(system.GetInterface(0), formerInterface);
  EXPECT_EQ(system.GetDeviceInfo(0)->GetInterface(), system.GetInterface(0));
  EXPECT_EQ(formerDevice->GetInterface(), formerInterface);
  EXPECT_EQ(formerInterface->GetDeviceCount(), 0u);
}

TEST(KrSystem, Find_DeviceAnswersTwice_IsReportedOnce) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0"), MakeAdapter("eth1")};
  transport->answers = {{0, MakeCamera("a")}, {0, MakeCamera("a")}, {1, MakeCamera("a")}};
  KrSystem system;
  RecordingSink sink;
  EXPECT_TRUE(system.RegisterEventSink(&sink).IsOK());

  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_THAT(sink.GetIDs(), ElementsAre("a", "a")) << "once for each adapter";
  EXPECT_EQ(system.GetDeviceCount(), 2u);
}

TEST(KrSystem, Find_SecondRound_ReportsAgain) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  transport->answers = {{0, MakeCamera("a")}};
  KrSystem system;
  RecordingSink sink;
  EXPECT_TRUE(system.RegisterEventSink(&sink).IsOK());

  EXPECT_TRUE(system.Find().IsOK());
  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_THAT(sink.GetIDs(), ElementsAre("a", "a"));
}

TEST(KrSystem, Find_SinkIgnoresDevice_DeviceEntersNoList) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  transport->answers = {{0, MakeCamera("a")}, {0, MakeCamera("b")}, {0, MakeCamera("a")}};
  KrSystem system;
  RecordingSink sink;
  sink.onFound = [](const KrDeviceInfo& aDevice, bool& aIgnore) { aIgnore = aDevice.GetUniqueID() == "a"; };
  RecordingSink indifferentSink;
  EXPECT_TRUE(system.RegisterEventSink(&sink).IsOK());
  EXPECT_TRUE(system.RegisterEventSink(&indifferentSink).IsOK());

  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_THAT(ListDevices(system), ElementsAre("b"));
  EXPECT_EQ(system.GetInterface(0)->GetDeviceCount(), 1u);
  EXPECT_THAT(sink.GetIDs(), ElementsAre("a", "b"));
  EXPECT_THAT(indifferentSink.GetIDs(), ElementsAre("a", "b"));
}

TEST(KrSystem, Find_ManyTransportsReportAtOnce_SinkIsCalledOneAtATime) {
  constexpr std::size_t kTransports = 4;
  constexpr std::size_t kDevices = 100;
  const RegisteredTransport transports[kTransports];
  for (std::size_t t = 0; t < kTransports; ++t) {
    transports[t]->interfaces = {MakeAdapter("eth" + KrString(std::to_string(t)))};
    for (std::size_t d = 0; d < kDevices; ++d)
      transports[t]->answers.push_back({0, MakeCamera(std::to_string(t * kDevices + d))});
  }
  KrSystem system;
  RecordingSink sink;
  EXPECT_TRUE(system.RegisterEventSink(&sink).IsOK());

  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_EQ(sink.GetIDs().size(), kTransports * kDevices);
  EXPECT_EQ(system.GetDeviceCount(), kTransports * kDevices);
}

TEST(KrSystem, Find_OneTransportFails_OthersStillCountAndFailureIsLogged) {
  const KrLogCapture log;
  const RegisteredTransport failing;
  const RegisteredTransport working;
  failing->discoverResult = {KrResult::Code::SystemError, "no socket"};
  working->interfaces = {MakeAdapter("eth0")};
  working->answers = {{0, MakeCamera("a")}};
  KrSystem system;

  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_THAT(ListDevices(system), ElementsAre("a"));
  EXPECT_TRUE(log.Contains(KrLogLevel::Warning, "Looking for devices by Fake failed: SystemError. no socket"));
}

TEST(KrSystem, Find_OneTransportThrows_OthersStillCountAndFailureIsLogged) {
  const KrLogCapture log;
  const RegisteredTransport throwing;
  const RegisteredTransport working;
  working->interfaces = {MakeAdapter("eth0")};
  working->answers = {{0, MakeCamera("a")}};
  throwing->throws = true;
  KrSystem system;

  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_THAT(ListDevices(system), ElementsAre("a"));
  EXPECT_TRUE(log.Contains(
      KrLogLevel::Warning,
      "Looking for devices by Fake failed: SystemError. Discovery was ended by an exception: the fake is broken"));
}

TEST(KrSystem, Find_EveryTransportFails_GivesTheFirstFailure) {
  const KrLogCapture log;
  const RegisteredTransport transport;
  transport->discoverResult = {KrResult::Code::SystemError, "no socket"};
  KrSystem system;

  const KrResult result = system.Find();

  EXPECT_TRUE(result == KrResult::Code::SystemError);
  EXPECT_EQ(result.GetDescription(), "no socket");
}

TEST(KrSystem, Find_SinkThrows_DeviceIsListedAndFailureIsLogged) {
  const KrLogCapture log;
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  transport->answers = {{0, MakeCamera("a")}};
  KrSystem system;
  RecordingSink sink;
  sink.onFound = [](const KrDeviceInfo&, bool&) { throw std::runtime_error("the sink is broken"); };
  EXPECT_TRUE(system.RegisterEventSink(&sink).IsOK());

  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_EQ(system.GetDeviceCount(), 1u);
  EXPECT_TRUE(log.Contains(KrLogLevel::Error, "An event sink was ended by an exception: the sink is broken"));
}

TEST(KrSystem, Cancel_FromAnotherThread_EndsFind) {
  const RegisteredTransport transport;
  std::promise<void> asked;
  transport->afterAnswers = [&](const krsystem::DiscoveryRequest& aRequest) {
    asked.set_value();
    return WaitForCancel(aRequest);
  };
  KrSystem system;
  std::future<KrResult> found = std::async(std::launch::async, [&] { return system.Find(); });
  asked.get_future().wait();

  system.Cancel();

  EXPECT_TRUE(found.get() == KrResult::Code::Aborted);
}

TEST(KrSystem, Cancel_FromTheSink_EndsFindAndKeepsWhatAnswered) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  transport->answers = {{0, MakeCamera("a")}, {0, MakeCamera("b")}};
  transport->afterAnswers = WaitForCancel;
  KrSystem system;
  RecordingSink sink;
  sink.onFound = [&system](const KrDeviceInfo&, bool&) { system.Cancel(); };
  EXPECT_TRUE(system.RegisterEventSink(&sink).IsOK());

  EXPECT_TRUE(system.Find() == KrResult::Code::Aborted);

  EXPECT_THAT(sink.GetIDs(), ElementsAre("a"));
  EXPECT_THAT(ListDevices(system), ElementsAre("a"));
}

TEST(KrSystem, Cancel_WhileNothingRuns_DoesNotTouchTheNextFind) {
  const RegisteredTransport transport;
  KrSystem system;

  system.Cancel();

  EXPECT_TRUE(system.Find().IsOK());
}

TEST(KrSystem, RegisterEventSink_NullOrTwice_IsInvalidInput) {
  KrSystem system;
  RecordingSink sink;

  EXPECT_TRUE(system.RegisterEventSink(nullptr) == KrResult::Code::InvalidInput);
  EXPECT_TRUE(system.RegisterEventSink(&sink).IsOK());
  EXPECT_TRUE(system.RegisterEventSink(&sink) == KrResult::Code::InvalidInput);
  EXPECT_TRUE(system.UnregisterEventSink(&sink).IsOK());
  EXPECT_TRUE(system.UnregisterEventSink(&sink) == KrResult::Code::InvalidInput);
}

TEST(KrSystem, UnregisterEventSink_ThenFind_SinkHearsNothing) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  transport->answers = {{0, MakeCamera("a")}};
  KrSystem system;
  RecordingSink sink;
  EXPECT_TRUE(system.RegisterEventSink(&sink).IsOK());
  EXPECT_TRUE(system.UnregisterEventSink(&sink).IsOK());

  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_THAT(sink.GetIDs(), IsEmpty());
}

TEST(KrSystem, FindDevice_AddressAnswers_EntersDeviceAndUnknownInterface) {
  const RegisteredTransport silent;
  const RegisteredTransport answering;
  answering->findResult = {};
  answering->foundInterface = MakeAdapter("eth0");
  answering->foundDevice = MakeCamera("a");
  KrSystem system;
  const KrDeviceInfo* device = nullptr;

  EXPECT_TRUE(system.FindDevice("10.0.0.2", &device).IsOK());

  ASSERT_NE(device, nullptr);
  EXPECT_EQ(device->GetTransport(), answering.Get());
  ASSERT_EQ(system.GetInterfaceCount(), 1u);
  EXPECT_EQ(device->GetInterface(), system.GetInterface(0));
  EXPECT_EQ(system.GetInterface(0)->GetDeviceInfo(0), device);
  EXPECT_EQ(system.GetDeviceInfo(0), device);
}

TEST(KrSystem, FindDevice_DeviceIsKnown_GivesItsObject) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  transport->answers = {{0, MakeCamera("a")}};
  transport->findResult = {};
  transport->foundInterface = MakeAdapter("eth0");
  transport->foundDevice = MakeCamera("a");
  KrSystem system;
  EXPECT_TRUE(system.Find().IsOK());
  const KrDeviceInfo* device = nullptr;

  EXPECT_TRUE(system.FindDevice("10.0.0.2", &device).IsOK());

  EXPECT_EQ(device, system.GetDeviceInfo(0));
  EXPECT_EQ(system.GetDeviceCount(), 1u);
  EXPECT_EQ(system.GetInterface(0)->GetDeviceCount(), 1u);
}

TEST(KrSystem, FindDevice_DeviceChanged_ReplacesItInTheLists) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  transport->answers = {{0, MakeCamera("a", "10.0.0.2")}};
  transport->findResult = {};
  transport->foundInterface = MakeAdapter("eth0");
  transport->foundDevice = MakeCamera("a", "10.0.0.3");
  KrSystem system;
  EXPECT_TRUE(system.Find().IsOK());
  const KrDeviceInfo* device = nullptr;

  EXPECT_TRUE(system.FindDevice("10.0.0.3", &device).IsOK());

  ASSERT_EQ(system.GetDeviceCount(), 1u);
  EXPECT_EQ(system.GetDeviceInfo(0), device);
  ASSERT_EQ(system.GetInterface(0)->GetDeviceCount(), 1u);
  EXPECT_EQ(system.GetInterface(0)->GetDeviceInfo(0), device);
}

TEST(KrSystem, FindDevice_InterfaceChanged_ReplacesItInTheLists) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0", "10.0.0.1"), MakeAdapter("eth1")};
  transport->answers = {{0, MakeCamera("a", "10.0.0.2")}};
  transport->findResult = {};
  transport->foundInterface = MakeAdapter("eth0", "10.0.0.9");
  transport->foundDevice = MakeCamera("a", "10.0.0.2");
  KrSystem system;
  EXPECT_TRUE(system.Find().IsOK());
  const KrDeviceInfo* device = nullptr;

  EXPECT_TRUE(system.FindDevice("10.0.0.2", &device).IsOK());

  EXPECT_THAT(ListInterfaces(system), ElementsAre("eth0", "eth1"));
  ASSERT_EQ(system.GetDeviceCount(), 1u);
  EXPECT_EQ(system.GetDeviceInfo(0), device);
  EXPECT_EQ(device->GetInterface(), system.GetInterface(0));
  EXPECT_EQ(system.GetInterface(0)->GetDisplayID(), "eth0 10.0.0.9");
}

TEST(KrSystem, FindDevice_NoAdapterCanBeTold_DeviceHasNoInterface) {
  const RegisteredTransport transport;
  transport->findResult = {};
  transport->foundDevice = MakeCamera("a");
  KrSystem system;
  const KrDeviceInfo* device = nullptr;

  EXPECT_TRUE(system.FindDevice("10.0.0.2", &device).IsOK());

  ASSERT_NE(device, nullptr);
  EXPECT_EQ(device->GetInterface(), nullptr);
  EXPECT_EQ(system.GetInterfaceCount(), 0u);
}

TEST(KrSystem, FindDevice_NothingAnswers_IsNotFoundAndLeavesPointer) {
  const KrLogCapture log;
  const RegisteredTransport silent;
  const RegisteredTransport throwing;
  KrSystem system;
  throwing->throws = true;
  const KrDeviceInfo* device = nullptr;

  EXPECT_TRUE(system.FindDevice("10.0.0.2", &device) == KrResult::Code::NotFound);

  EXPECT_EQ(device, nullptr);
  EXPECT_EQ(system.GetDeviceCount(), 0u);
  EXPECT_EQ(log.GetRecords().size(), 1u) << "one transport failed";
}

TEST(KrSystem, FindDevice_TextIsNoAddressOrPointerIsNull_IsInvalidInput) {
  KrSystem system;
  const KrDeviceInfo* device = nullptr;

  EXPECT_TRUE(system.FindDevice("10.0.0.2 ", &device) == KrResult::Code::InvalidInput);
  EXPECT_TRUE(system.FindDevice("10.0.0", &device) == KrResult::Code::InvalidInput);
  EXPECT_TRUE(system.FindDevice("10.0.0.2", nullptr) == KrResult::Code::InvalidInput);
}

TEST(KrSystem, FindDevice_AddressOfNoSingleDevice_IsInvalidInputAndAsksNobody) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  KrSystem system;
  const KrDeviceInfo* device = nullptr;

  for (const char* const address : {"0.0.0.0", "0.1.2.3", "224.0.0.1", "239.255.255.255", "255.255.255.255"})
    EXPECT_EQ(system.FindDevice(address, &device), KrResult::Code::InvalidInput) << address;

  EXPECT_EQ(device, nullptr);
}

TEST(KrSystem, MoreDevicesThanTheLimit_NewOnesAreLeftOutAndThatIsLoggedOnce) {
  constexpr std::size_t kLimit = 16'384;
  const KrLogCapture log;
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  for (std::size_t number = 0; number < kLimit + 2; ++number)
    transport->answers.emplace_back(0, MakeCamera(std::to_string(number)));
  transport->findResult = {};
  transport->foundInterface = MakeAdapter("eth0");
  transport->foundDevice = MakeCamera("another");
  RecordingSink ignoring;
  ignoring.onFound = [](const KrDeviceInfo&, bool& aIgnore) { aIgnore = true; };
  KrSystem system;
  EXPECT_TRUE(system.RegisterEventSink(&ignoring).IsOK());

  EXPECT_TRUE(system.Find().IsOK()) << "takes the first half";
  EXPECT_TRUE(system.Find().IsOK());
  const KrDeviceInfo* found = nullptr;
  const KrResult asked = system.FindDevice("10.0.0.2", &found);

  EXPECT_EQ(ignoring.GetIDs().size(), kLimit / 2 + kLimit);
  EXPECT_EQ(asked.GetCode(), KrResult::Code::SystemError);
  EXPECT_EQ(found, nullptr);
  EXPECT_EQ(log.GetRecords().size(), 2U) << "the other one is of the first half";
  EXPECT_TRUE(log.Contains(KrLogLevel::Warning,
                           "16384 different devices have answered, and new ones are left out from now on. Look who "
                           "answers in this network, and make a new KrSystem."));
}
