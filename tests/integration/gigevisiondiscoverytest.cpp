#include "await.h"
#include "fakecamera.h"
#include "gvcpresponder.h"

#include "gigevision/gigevisiontransport.h"
#include "krbase/krlogger.h"
#include "krsystem/ipv4address.h"
#include "krsystem/krsystem.h"
#include "krsystem/transportregistry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <stop_token>
#include <thread>

namespace {

using krsystem::GEVFields;
using krsystem::NetworkAdapterFields;
using krtransport::GigEVisionTransport;

constexpr std::uint32_t kLoopback = 0x7F000001;
constexpr std::uint32_t kTimeoutMs = 500;
constexpr std::size_t kMacOffset = 8 + 0x0A; // In a discovery acknowledge.
const std::uint32_t kGenerousTimeoutMs = krtest::GetGenerousMs();

krsystem::DiscoveryRequest MakeRequest(bool aSubnetBroadcast = true) {
  return {.timeoutMs = kTimeoutMs, .subnetBroadcast = aSubnetBroadcast, .cancel = {}};
}

/// What one round of discovery on all adapters found.
struct Round {
  KrResult result;
  std::vector<NetworkAdapterFields> adapters;
  std::vector<GEVFields> devices;
};

Round DiscoverOnce(const krsystem::DiscoveryRequest& aRequest = MakeRequest()) {
  GigEVisionTransport transport;
  std::vector<krsystem::InterfaceFields> interfaces;
  Round round;
  round.result = transport.ListInterfaces(interfaces);
  if (round.result.IsOK())
    round.result = transport.Discover(interfaces, aRequest, [&](std::size_t aIndex, const auto& aDevice) {
      round.adapters.push_back(std::get<NetworkAdapterFields>(interfaces.at(aIndex)));
      round.devices.push_back(std::get<GEVFields>(aDevice));
    });
  return round;
}

/// The last of rounds until one finds so many devices, or more: one that has to wait for a processor answers too late
/// for a round, and is heard in another.
Round Discover(std::size_t aDevices = 1, const krsystem::DiscoveryRequest& aRequest = MakeRequest()) {
  Round round;
  EXPECT_TRUE(krtest::Await([&] {
    round = DiscoverOnce(aRequest);
    return !round.result.IsOK() || round.devices.size() >= aDevices;
  }));
  return round;
}

/// A round in which bad datagrams answer before a good one.
Round DiscoverAmong(Datagrams (*aMakeBad)(std::span<const std::uint8_t>)) {
  const GvcpResponder responder([aMakeBad](std::span<const std::uint8_t> aCommand) {
    auto answers = aMakeBad(aCommand);
    answers.push_back(MakeDiscoveryAcknowledge(aCommand, kLoopback, "good"));
    return answers;
  });
  return Discover();
}

std::vector<std::string> GetSerialNumbers(const Round& aRound) {
  std::vector<std::string> numbers;
  for (const GEVFields& device : aRound.devices)
    numbers.push_back(device.serialNumber.ToUtf8());
  return numbers;
}

bool HasRecord(const KrLogCapture& aLog, const std::string& aText) {
  const auto records = aLog.GetRecords();
  return std::ranges::any_of(
      records, [&](const KrLogRecord& aRecord) { return aRecord.text.ToUtf8().find(aText) != std::string::npos; });
}

void ExpectFakeCamera(const GEVFields& aDevice) {
  EXPECT_EQ(aDevice.vendorName, KrString("Aravis"));
  EXPECT_EQ(aDevice.modelName, KrString("Fake"));
  EXPECT_FALSE(aDevice.version.IsEmpty());
  EXPECT_EQ(aDevice.manufacturerInfo, KrString("none"));
  EXPECT_EQ(aDevice.serialNumber, KrString("GV07"));
  EXPECT_EQ(aDevice.userDefinedName, KrString(""));
  EXPECT_EQ(aDevice.macAddress, KrString("00:00:00:00:00:00"));
  EXPECT_EQ(aDevice.ipAddress, KrString("127.0.0.1"));
  EXPECT_EQ(aDevice.subnetMask, KrString("0.0.0.0"));
  EXPECT_EQ(aDevice.defaultGateway, KrString("0.0.0.0"));
  EXPECT_EQ(aDevice.uniqueID, KrString("127.0.0.1/GV07"));
  EXPECT_EQ(aDevice.displayID, KrString("Fake (127.0.0.1)"));
  EXPECT_EQ(aDevice.gevVersion, 0u);
  EXPECT_EQ(aDevice.deviceClass, 0u);
  EXPECT_EQ(aDevice.ipConfigOptions, 0u);
  EXPECT_EQ(aDevice.ipConfigCurrent, 0u);
  EXPECT_TRUE(aDevice.configurationValid);
}

TEST(GigEVisionDiscovery, ListInterfaces_LoopbackUp_ListsItWithItsAddress) {
  GigEVisionTransport transport;
  std::vector<krsystem::InterfaceFields> interfaces;

  const KrResult result = transport.ListInterfaces(interfaces);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  const auto loopback = std::find_if(interfaces.begin(), interfaces.end(), [](const auto& aInterface) {
    return std::get<NetworkAdapterFields>(aInterface).name == KrString("lo");
  });
  ASSERT_NE(loopback, interfaces.end());
  const auto& fields = std::get<NetworkAdapterFields>(*loopback);
  EXPECT_EQ(fields.uniqueID, KrString("/lo"));
  EXPECT_EQ(fields.displayID, KrString("lo 127.0.0.1"));
  EXPECT_EQ(fields.addresses, (std::vector<krsystem::AdapterAddress>{{"127.0.0.1", "255.0.0.0"}}));
}

class GigEVisionBroadcast : public testing::TestWithParam<bool> {};

TEST_P(GigEVisionBroadcast, Discover_CameraOnLoopback_IsFoundOnceWithAllFields) {
  const FakeCamera camera("GV07");

  const Round round = Discover(1, MakeRequest(GetParam()));

  ASSERT_TRUE(round.result.IsOK()) << round.result.GetDescription().CStr();
  ASSERT_EQ(round.devices.size(), 1u);
  EXPECT_EQ(round.adapters[0].name, KrString("lo"));
  ExpectFakeCamera(round.devices[0]);
}

INSTANTIATE_TEST_SUITE_P(BroadcastKinds, GigEVisionBroadcast, testing::Values(true, false),
                         [](const auto& aInfo) { return aInfo.param ? "Subnet" : "Limited"; });

TEST(GigEVisionDiscovery, Discover_NobodyThere_FindsNothingAndSucceeds) {
  const Round round = DiscoverOnce();

  EXPECT_TRUE(round.result.IsOK());
  EXPECT_TRUE(round.devices.empty());
}

TEST(GigEVisionDiscovery, Discover_CancelledFromAnotherThread_ReturnsAborted) {
  std::stop_source cancel;
  Round round;
  std::jthread finder(
      [&] { round = DiscoverOnce({.timeoutMs = 3600000, .subnetBroadcast = true, .cancel = cancel.get_token()}); });

  cancel.request_stop();
  finder.join();

  EXPECT_EQ(round.result, KrResult::Code::Aborted);
}

TEST(GigEVisionDiscovery, Discover_AdapterThatDoesNotExist_IsPassedOverAndLogged) {
  const FakeCamera camera("GV07");
  GigEVisionTransport transport;
  std::vector<krsystem::InterfaceFields> interfaces;
  ASSERT_TRUE(transport.ListInterfaces(interfaces).IsOK());
  NetworkAdapterFields absent;
  absent.name = "absent0";
  interfaces.insert(interfaces.begin(), absent);
  std::vector<std::size_t> indices;
  const KrLogCapture log;

  KrResult result;
  EXPECT_TRUE(krtest::Await([&] {
    result = transport.Discover(interfaces, MakeRequest(),
                                [&](std::size_t aIndex, const auto&) { indices.push_back(aIndex); });
    return !result.IsOK() || !indices.empty();
  }));

  EXPECT_TRUE(result.IsOK());
  ASSERT_EQ(indices.size(), 1u);
  EXPECT_GT(indices[0], 0u);
  EXPECT_TRUE(HasRecord(log, "absent0"));
}

struct BadAnswers {
  const char* name;
  Datagrams (*make)(std::span<const std::uint8_t> aCommand);
};

const BadAnswers kBadAnswers[] = {
    {"ThreeBytes",
     [](std::span<const std::uint8_t>) {
       return Datagrams{{1, 2, 3}};
     }},
    {"Empty", [](std::span<const std::uint8_t>) { return Datagrams{{}}; }},
    {"TenThousandBytes",
     [](std::span<const std::uint8_t> aCommand) {
       auto answer = MakeDiscoveryAcknowledge(aCommand, kLoopback, "long");
       answer.resize(10000);
       return Datagrams{answer};
     }},
    {"SomebodyElsesRequest",
     [](std::span<const std::uint8_t> aCommand) {
       auto answer = MakeDiscoveryAcknowledge(aCommand, kLoopback, "foreign");
       answer[7] ^= 0x01;
       return Datagrams{answer};
     }},
    {"AnotherMessage",
     [](std::span<const std::uint8_t> aCommand) {
       auto answer = MakeDiscoveryAcknowledge(aCommand, kLoopback, "message");
       answer[3] = 0x81;
       return Datagrams{answer};
     }},
    {"RefusingStatus",
     [](std::span<const std::uint8_t> aCommand) {
       auto answer = MakeDiscoveryAcknowledge(aCommand, kLoopback, "status");
       answer[0] = 0x80;
       answer[1] = 0x06;
       return Datagrams{answer};
     }},
};

class GigEVisionBadAnswers : public testing::TestWithParam<BadAnswers> {};

TEST_P(GigEVisionBadAnswers, Discover_BadAnswerBeforeAGoodOne_TakesTheGoodOneAlone) {
  const Round round = DiscoverAmong(GetParam().make);

  EXPECT_TRUE(round.result.IsOK());
  EXPECT_THAT(GetSerialNumbers(round), testing::ElementsAre("good"));
}

INSTANTIATE_TEST_SUITE_P(Datagrams, GigEVisionBadAnswers, testing::ValuesIn(kBadAnswers),
                         [](const auto& aInfo) { return aInfo.param.name; });

TEST(GigEVisionDiscovery, Discover_DatagramOfMoreThan2048Bytes_IsDroppedWithItsReason) {
  const KrLogCapture log;

  const Round round = DiscoverAmong([](std::span<const std::uint8_t> aCommand) {
    auto longest = MakeDiscoveryAcknowledge(aCommand, kLoopback, "longest");
    longest.resize(2048);
    auto tooLong = longest;
    tooLong.push_back(0);
    return Datagrams{tooLong, longest};
  });

  EXPECT_THAT(GetSerialNumbers(round), testing::ElementsAre("good"));
  EXPECT_TRUE(HasRecord(log, "lo: A datagram on the control channel was refused: its 2049 bytes are too many."));
  EXPECT_TRUE(HasRecord(log, "its header states 248 bytes of payload, 2040 came"));
  EXPECT_FALSE(HasRecord(log, "2048 bytes are too many"));
}

TEST(GigEVisionDiscovery, Discover_TextsThatFillTheirFields_EndWithTheField) {
  const std::string serialNumber(16, 'S');
  const std::string name(16, 'N');
  const GvcpResponder responder([&](std::span<const std::uint8_t> aCommand) {
    auto answer = MakeDiscoveryAcknowledge(aCommand, kLoopback, serialNumber);
    PutText(answer, 8 + 0xE8, name);
    return Datagrams{answer};
  });

  const Round round = Discover();

  ASSERT_EQ(round.devices.size(), 1u);
  EXPECT_EQ(round.devices[0].serialNumber, KrString(serialNumber));
  EXPECT_EQ(round.devices[0].userDefinedName, KrString(name));
}

TEST(GigEVisionDiscovery, Discover_TwoDevicesWithoutMac_AreKeptApart) {
  const GvcpResponder responder([](std::span<const std::uint8_t> aCommand) {
    return Datagrams{MakeDiscoveryAcknowledge(aCommand, kLoopback, "first"),
                     MakeDiscoveryAcknowledge(aCommand, kLoopback + 1, "second")};
  });

  const Round round = Discover(2);

  ASSERT_EQ(round.devices.size(), 2u);
  EXPECT_NE(round.devices[0].uniqueID, round.devices[1].uniqueID);
}

TEST(GigEVisionDiscovery, Discover_DeviceOfAForeignSubnet_HasAnInvalidConfiguration) {
  const GvcpResponder responder([](std::span<const std::uint8_t> aCommand) {
    return Datagrams{MakeDiscoveryAcknowledge(aCommand, 0xC0A80714, "foreign")};
  });

  const Round round = Discover();

  ASSERT_EQ(round.devices.size(), 1u);
  EXPECT_EQ(round.devices[0].ipAddress, KrString("192.168.7.20"));
  EXPECT_FALSE(round.devices[0].configurationValid);
}

TEST(GigEVisionDiscovery, Discover_EverNewDevicesWithoutEnd_AreTakenUpToTheLimit) {
  std::atomic<std::uint32_t> count{0};
  const GvcpResponder responder(
      [&](std::span<const std::uint8_t> aCommand) {
        auto answer = MakeDiscoveryAcknowledge(aCommand, kLoopback, "many");
        PutBigEndian32(answer, kMacOffset + 2, ++count);
        return Datagrams{answer};
      },
      GvcpAnswers::WithoutEnd);
  auto request = MakeRequest();
  request.timeoutMs = 10 * kTimeoutMs;

  const Round round = Discover(1024, request);

  EXPECT_TRUE(round.result.IsOK()) << round.result.GetDescription().CStr();
  EXPECT_EQ(round.devices.size(), 1024u);
}

TEST(GigEVisionDiscovery, FindAddress_CameraOnLoopback_GivesDeviceAndAdapter) {
  const FakeCamera camera("GV07");
  GigEVisionTransport transport;
  krsystem::InterfaceFields interface;
  krsystem::AnyDeviceFields device;

  const KrResult result = transport.FindAddress(kLoopback, kGenerousTimeoutMs, interface, device);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(std::get<NetworkAdapterFields>(interface).name, KrString("lo"));
  ExpectFakeCamera(std::get<GEVFields>(device));
}

TEST(GigEVisionDiscovery, FindAddress_DeviceThatSaysAnotherAddress_IsNotTheOneThatWasAskedFor) {
  const GvcpResponder responder([](std::span<const std::uint8_t> aCommand) {
    return Datagrams{MakeDiscoveryAcknowledge(aCommand, 0xC0A84D4D, "GV09")};
  });
  GigEVisionTransport transport;
  krsystem::InterfaceFields interface;
  krsystem::AnyDeviceFields device;

  // One that has to wait for a processor answers too late for one asking, and is heard in another.
  KrResult result;
  EXPECT_TRUE(krtest::Await([&] {
    result = transport.FindAddress(kLoopback, kTimeoutMs, interface, device);
    return result.IsOK() || result.GetDescription().ToUtf8().find("its address is") != std::string::npos;
  }));

  EXPECT_EQ(result, KrResult::Code::NotFound);
  EXPECT_THAT(result.GetDescription().ToUtf8(), testing::HasSubstr("its address is 192.168.77.77"));
}

TEST(GigEVisionDiscovery, FindAddress_NobodyThere_ReturnsNotFound) {
  GigEVisionTransport transport;
  krsystem::InterfaceFields interface;
  krsystem::AnyDeviceFields device;

  const KrResult onLoopback = transport.FindAddress(kLoopback, 100, interface, device);
  const KrResult withoutRoute = transport.FindAddress(0xC0A80714, 100, interface, device);

  EXPECT_EQ(onLoopback, KrResult::Code::NotFound);
  EXPECT_EQ(withoutRoute, KrResult::Code::NotFound);
}

TEST(GigEVisionDiscovery, Find_ThroughKrSystem_ListsTheCameraBehindLoopback) {
  const FakeCamera camera("GV07");
  const auto transport = std::make_shared<GigEVisionTransport>();
  krsystem::RegisterTransport(transport);
  KrSystem system;
  system.SetDetectionTimeout(kTimeoutMs);

  KrResult result;
  EXPECT_TRUE(krtest::Await([&] {
    result = system.Find();
    return !result.IsOK() || system.GetDeviceCount() > 0;
  }));

  krsystem::UnregisterTransport(transport);
  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  ASSERT_EQ(system.GetDeviceCount(), 1u);
  const auto* device = dynamic_cast<const KrDeviceInfoGEV*>(system.GetDeviceInfo(0));
  ASSERT_NE(device, nullptr);
  ExpectFakeCamera(device->GetFields());
  ASSERT_NE(device->GetInterface(), nullptr);
  EXPECT_EQ(device->GetInterface()->GetUniqueID(), KrString("/lo"));
}

TEST(GigEVisionDiscovery, FindDevice_ThroughKrSystem_GivesTheCamera) {
  const FakeCamera camera("GV07");
  const auto transport = std::make_shared<GigEVisionTransport>();
  krsystem::RegisterTransport(transport);
  KrSystem system;
  system.SetDetectionTimeout(kGenerousTimeoutMs);
  const KrDeviceInfo* device = nullptr;

  const KrResult result = system.FindDevice("127.0.0.1", &device);

  krsystem::UnregisterTransport(transport);
  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  ASSERT_NE(device, nullptr);
  EXPECT_EQ(device->GetSerialNumber(), KrString("GV07"));
}

/// A responder that keeps the ForceIP command it got and acknowledges with a status.
KrResult ConfigureWith(std::uint16_t aStatus, std::vector<std::uint8_t>& aCommandSeen) {
  const GvcpResponder responder([&](std::span<const std::uint8_t> aCommand) {
    aCommandSeen.assign(aCommand.begin(), aCommand.end());
    return Datagrams{{static_cast<std::uint8_t>(aStatus >> 8), static_cast<std::uint8_t>(aStatus), 0x00, 0x05, 0x00,
                      0x00, aCommand[6], aCommand[7]}};
  });
  return GigEVisionTransport().ConfigureIP("00:11:22:33:44:55", "10.0.0.7", "255.0.0.0", "10.0.0.1");
}

TEST(GigEVisionConfigureIP, ConfigureIP_Acknowledged_SendsMacAndAddresses) {
  std::vector<std::uint8_t> command;

  const KrResult result = ConfigureWith(0, command);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  ASSERT_EQ(command.size(), 64u);
  EXPECT_EQ(command[3], 0x04);
  EXPECT_EQ(std::vector<std::uint8_t>(command.begin() + 10, command.begin() + 16),
            (std::vector<std::uint8_t>{0x00, 0x11, 0x22, 0x33, 0x44, 0x55}));
  EXPECT_EQ(std::vector<std::uint8_t>(command.begin() + 28, command.begin() + 32),
            (std::vector<std::uint8_t>{10, 0, 0, 7}));
}

TEST(GigEVisionConfigureIP, ConfigureIP_Refused_TellsTheDevicesReason) {
  std::vector<std::uint8_t> command;

  const KrResult result = ConfigureWith(0x8006, command);

  EXPECT_EQ(result, KrResult::Code::AccessDenied);
  EXPECT_THAT(result.GetDescription().ToUtf8(), testing::HasSubstr("access denied"));
}

TEST(GigEVisionConfigureIP, ConfigureIP_NobodyAnswers_ReturnsNotFound) {
  const KrResult result = GigEVisionTransport().ConfigureIP("00:11:22:33:44:55", "10.0.0.7", "255.0.0.0", "10.0.0.1");

  EXPECT_EQ(result, KrResult::Code::NotFound);
}

TEST(GigEVisionConfigureIP, ConfigureIP_TextThatIsNoAddress_ReturnsInvalidInput) {
  GigEVisionTransport transport;

  EXPECT_EQ(transport.ConfigureIP("00:11:22:33:44", "10.0.0.7", "255.0.0.0", "10.0.0.1"), KrResult::Code::InvalidInput);
  EXPECT_EQ(transport.ConfigureIP("00:11:22:33:44:55", "10.0.0", "255.0.0.0", "10.0.0.1"),
            KrResult::Code::InvalidInput);
}

} // namespace
