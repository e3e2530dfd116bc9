#include "gencp/gencpport.h"

#include "../krgenicam/description/ziparchive.h"
#include "await.h"
#include "describedcamera.h"
#include "gencpfixture.h"
#include "krgenicam/krgenparameterarray.h"

#include <future>
#include <string>

namespace krcamerabridge {
namespace {

using krtest::GenCPCamera;

constexpr std::uint64_t kPrivilege = 0x204;
constexpr const char* kXMLID = "SchemaVersion.1.1@XMLVersion.1.2.3";

constexpr const char* kNodes = R"(
<Category Name="Root" NameSpace="Standard"><pFeature>Gain</pFeature><pFeature>Name</pFeature><pFeature>Mode</pFeature>
  <pFeature>Exposure</pFeature></Category>
<IntReg Name="Gain"><Address>0x80000000</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Endianess>BigEndian</Endianess></IntReg>
<StringReg Name="Name"><Address>0x80000010</Address><Length>16</Length><AccessMode>RW</AccessMode>
  <pPort>Device</pPort></StringReg>
<Enumeration Name="Mode"><EnumEntry Name="Off"><Value>0</Value></EnumEntry><EnumEntry Name="On"><Value>1</Value></EnumEntry>
  <pValue>ModeReg</pValue></Enumeration>
<IntReg Name="ModeReg"><Address>0x80000020</Address><Length>2</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Endianess>LittleEndian</Endianess></IntReg>
<FloatReg Name="Exposure"><Address>0x80000030</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Endianess>BigEndian</Endianess></FloatReg>)";

class PortOnLine : public GenCPOnLine {
protected:
  explicit PortOnLine(const CycleTimes& aTimes = kPatientTimes) : port(line, aTimes) {
    camera.AddFile(0x01020003, 0x01010000, MakeDescription(kNodes));
  }

  void Connect() {
    const KrResult result = port.Connect(kXMLID, description, {});
    ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  }
  KrResult Read(std::uint32_t aTimeoutMs = kGenerousMs, const std::stop_token& aCancel = {}) {
    std::array<std::uint8_t, 4> bytes;
    return port.Read(kFeatures, bytes.data(), bytes.size(), aTimeoutMs, aCancel);
  }
  // Reads until the camera answers again.
  KrResult ReadUntilAnswered() {
    KrResult result;
    EXPECT_TRUE(krtest::Await([&] {
      result = Read();
      return result != KrResult::Code::TimeLimitExceeded;
    }));
    return result;
  }

  GenCPPort port;
  KrGenDescription description;
};

// A silent camera is given up soon.
class HastyPortOnLine : public PortOnLine {
protected:
  HastyPortOnLine() : PortOnLine(kQuickTimes) {}
};

TEST_F(PortOnLine, XMLIDs_AreThoseOfTheCameraWhichIsLeftAsItWas) {
  camera.AddFile(0x01000000, 0x01000000, MakeDescription(""));
  KrStringList ids;

  ASSERT_TRUE(port.GetXMLIDs(ids, {}).IsOK());

  ASSERT_EQ(ids.GetCount(), 2u);
  EXPECT_EQ(ids[0], KrString(kXMLID));
  EXPECT_EQ(ids[1], KrString("SchemaVersion.1.0@XMLVersion.1.0.0"));
  EXPECT_FALSE(port.IsConnected());
  EXPECT_EQ(camera.PeekNumber(kPrivilege, 4), 0u);
}

TEST_F(HastyPortOnLine, XMLIDs_WithoutACamera_AreNotFound) {
  camera.SetFaults({.isSilent = true});
  KrStringList ids;

  EXPECT_EQ(port.GetXMLIDs(ids, {}), KrResult::Code::NotFound);
}

TEST_F(PortOnLine, Connect_ToADescriptionThatTheCameraLacks_IsNotFound) {
  EXPECT_EQ(port.Connect("SchemaVersion.1.1@XMLVersion.9.9.9", description, {}), KrResult::Code::NotFound);
  EXPECT_FALSE(port.IsConnected());
}

TEST_F(PortOnLine, Connect_Twice_IsAWrongState) {
  Connect();
  KrStringList ids;

  EXPECT_EQ(port.Connect(kXMLID, description, {}), KrResult::Code::WrongState);
  EXPECT_EQ(port.GetXMLIDs(ids, {}), KrResult::Code::WrongState);
}

TEST_F(PortOnLine, Connect_Cancelled_EndsAndGivesTheCameraFree) {
  camera.SetFaults({.pendingAnswers = 1000, .pendingMs = 50});
  std::stop_source stop;
  auto connecting = std::async(std::launch::async, [&] { return port.Connect(kXMLID, description, stop.get_token()); });
  ASSERT_TRUE(camera.AwaitHeard(1));

  stop.request_stop();

  EXPECT_EQ(connecting.get(), KrResult::Code::Aborted);
  EXPECT_FALSE(port.IsConnected());
}

TEST_F(PortOnLine, Connect_CancelledWhileControlIsGiven_GivesItBack) {
  CycleTimes times = kPatientTimes;
  times.hurriedCloseMs = kGenerousMs; // As long as the camera needs.
  GenCPPort patient(line, times);
  camera.SetFaults({.pendingAnswers = 4, .pendingMs = 50, .pendingFrom = kPrivilege, .pendingTo = kPrivilege});
  std::stop_source stop;
  auto connecting =
      std::async(std::launch::async, [&] { return patient.Connect(kXMLID, description, stop.get_token()); });
  ASSERT_TRUE(camera.AwaitWritesTo(kPrivilege, 1));

  stop.request_stop();

  EXPECT_EQ(connecting.get(), KrResult::Code::Aborted);
  EXPECT_TRUE(camera.AwaitWritesTo(kPrivilege, 2));
  EXPECT_EQ(camera.PeekNumber(kPrivilege, 4), 0u);
}

TEST_F(PortOnLine, Access_WithoutAConnection_IsAWrongState) {
  EXPECT_EQ(Read(), KrResult::Code::WrongState);

  Connect();
  port.Disconnect();

  EXPECT_EQ(Read(), KrResult::Code::WrongState);
}

TEST_F(PortOnLine, Disconnect_GivesTheCameraFreeAndItCanBeConnectedAgain) {
  camera.PokeNumber(GenCPCamera::kSerialMap, 4, 0xFF);
  Connect();
  EXPECT_TRUE(camera.GetWire()->AwaitCameraRate(115200u));
  EXPECT_EQ(camera.PeekNumber(kPrivilege, 4), 1u);

  port.Disconnect();

  EXPECT_TRUE(camera.GetWire()->AwaitCameraRate(9600u));
  EXPECT_EQ(camera.GetWire()->hostRate, 9600u);
  EXPECT_EQ(camera.PeekNumber(kPrivilege, 4), 0u);
  Connect();
  EXPECT_TRUE(Read().IsOK());
}

// Many seconds: what is left of it shows who has not waited for them.
constexpr krtest::CameraFaults kLongPending{.pendingAnswers = 100, .pendingMs = 50};

TEST_F(PortOnLine, Disconnect_OfACameraThatAsksForTimeAgainAndAgain_EndsAtItsLimit) {
  CycleTimes times = kPatientTimes;
  times.closeLimitMs = 300;
  GenCPPort impatient(line, times);
  ASSERT_TRUE(impatient.Connect(kXMLID, description, {}).IsOK());
  camera.SetFaults(kLongPending);

  impatient.Disconnect();

  EXPECT_GT(camera.GetFaults().pendingAnswers, 0);
  camera.SetFaults({});
}

TEST_F(PortOnLine, Disconnect_OfACameraThatIsBusyAgainAndAgain_EndsAtItsLimit) {
  CycleTimes times = kPatientTimes;
  times.closeLimitMs = 300;
  GenCPPort impatient(line, times);
  ASSERT_TRUE(impatient.Connect(kXMLID, description, {}).IsOK());
  camera.SetFaults({.busyAnswers = 2000});

  impatient.Disconnect();

  EXPECT_GT(camera.GetFaults().busyAnswers, 0);
}

TEST_F(PortOnLine, Disconnect_OfWhoLeaves_EndsAtOnce) {
  CycleTimes times = kPatientTimes;
  times.closeLimitMs = kGenerousMs;
  GenCPPort patient(line, times);
  ASSERT_TRUE(patient.Connect(kXMLID, description, {}).IsOK());
  camera.TakeHeard();
  camera.SetFaults(kLongPending);
  std::stop_source stop;
  auto disconnecting = std::async(std::launch::async, [&] { patient.Disconnect(stop.get_token()); });
  ASSERT_TRUE(camera.AwaitHeard(1));

  stop.request_stop();
  disconnecting.get();

  EXPECT_GT(camera.GetFaults().pendingAnswers, 0);
  EXPECT_FALSE(patient.IsConnected());
  camera.SetFaults({});
}

TEST_F(PortOnLine, Disconnect_OfWhoHasLeft_GivesTheCameraFreeAllTheSame) {
  Connect();
  std::stop_source stop;
  stop.request_stop();

  port.Disconnect(stop.get_token());

  EXPECT_EQ(camera.PeekNumber(kPrivilege, 4), 0u);
}

TEST_F(PortOnLine, XMLIDs_Cancelled_DoNotWaitForTheWayBackToTheCamerasRate) {
  CycleTimes times = kQuickTimes;
  times.marginMs = 2000; // It is asked only once at each rate.
  GenCPPort patient(line, times);
  camera.PokeNumber(GenCPCamera::kSerialMap, 4, 0xFF);
  camera.GetWire()->cameraRate = 57600;
  krtest::CameraFaults faults = kLongPending;
  faults.pendingFrom = GenCPCamera::kSerialMap + 4; // The order of a rate.
  faults.deafFrom = GenCPCamera::kManifest;
  camera.SetFaults(faults);
  std::stop_source stop;
  KrStringList ids;
  auto asking = std::async(std::launch::async, [&] { return patient.GetXMLIDs(ids, stop.get_token()); });
  ASSERT_TRUE(camera.AwaitReadsOf(GenCPCamera::kManifest, 1));

  stop.request_stop();

  EXPECT_EQ(asking.get(), KrResult::Code::Aborted);
  EXPECT_TRUE(camera.AwaitWritesTo(GenCPCamera::kSerialMap + 4, 1));
  EXPECT_GT(camera.GetFaults().pendingAnswers, 0);
  EXPECT_EQ(camera.GetWire()->hostRate, 9600u);
  camera.SetFaults({});
}

TEST_F(PortOnLine, Parameters_AreThoseOfTheCamera) {
  camera.PokeNumber(kFeatures, 4, 17);
  camera.Poke(kFeatures + 0x10, {'C', 'a', 'm', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
  camera.Poke(kFeatures + 0x20, {0, 0});
  Connect();
  std::unique_ptr<KrGenParameterArray> array;
  ASSERT_TRUE(KrGenParameterArray::Open(description, port, {GenCPPort::kAccessTimeoutMs}, array).IsOK());
  std::int64_t gain = 0;
  KrString name;

  EXPECT_EQ(array->GetCount(), 4u);
  ASSERT_TRUE(array->GetInteger("Gain")->GetValue(gain).IsOK());
  ASSERT_TRUE(array->GetString("Name")->GetValue(name).IsOK());
  EXPECT_EQ(gain, 17);
  EXPECT_EQ(name, KrString("Cam"));

  EXPECT_TRUE(array->GetInteger("Gain")->SetValue(0x01020304).IsOK());
  EXPECT_TRUE(array->GetString("Name")->SetValue("Other").IsOK());
  EXPECT_TRUE(array->GetEnum("Mode")->SetValue(1).IsOK());
  EXPECT_TRUE(array->GetFloat("Exposure")->SetValue(1.5).IsOK());

  EXPECT_EQ(camera.Peek(kFeatures, 4), (std::vector<std::uint8_t>{1, 2, 3, 4}));
  EXPECT_EQ(camera.Peek(kFeatures + 0x10, 6), (std::vector<std::uint8_t>{'O', 't', 'h', 'e', 'r', 0}));
  EXPECT_EQ(camera.Peek(kFeatures + 0x20, 2), (std::vector<std::uint8_t>{1, 0}));
  EXPECT_EQ(camera.PeekNumber(kFeatures + 0x30, 8), 0x3FF8000000000000u);
}

TEST_F(PortOnLine, ZippedDescription_IsUnpacked) {
  camera.AddFile(0x01020004, 0x01010400, MakeZip({{"camera.xml", MakeDescription(kNodes)}}));

  ASSERT_TRUE(port.Connect("SchemaVersion.1.1@XMLVersion.1.2.4", description, {}).IsOK());

  EXPECT_EQ(description.GetText(), MakeDescription(kNodes));
}

TEST_F(PortOnLine, RefusedAccess_IsAProtocolErrorAndLeavesTheCameraUsable) {
  Connect();
  std::array<std::uint8_t, 4> bytes{};

  EXPECT_EQ(port.Read(0x12345678, bytes.data(), bytes.size(), kGenerousMs), KrResult::Code::ProtocolError);
  EXPECT_EQ(port.Write(0x44, bytes.data(), bytes.size(), kGenerousMs), KrResult::Code::ProtocolError);

  EXPECT_TRUE(Read().IsOK());
}

TEST_F(HastyPortOnLine, SilentCamera_IsUsableAgainWhenItAnswers) {
  Connect();
  camera.SetFaults({.isSilent = true});
  EXPECT_EQ(Read(), KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(Read(), KrResult::Code::TimeLimitExceeded);

  camera.SetFaults({});

  EXPECT_TRUE(ReadUntilAnswered().IsOK());
}

TEST_F(HastyPortOnLine, CameraThatWasSwitchedOffAndOn_IsControlledAgainAtItsRate) {
  camera.PokeNumber(GenCPCamera::kSerialMap, 4, 0xFF);
  Connect();
  camera.Forget();
  EXPECT_EQ(Read(), KrResult::Code::TimeLimitExceeded);

  EXPECT_TRUE(ReadUntilAnswered().IsOK());

  EXPECT_EQ(camera.PeekNumber(kPrivilege, 4), 1u);
  EXPECT_TRUE(camera.GetWire()->AwaitCameraRate(115200u));
}

TEST_F(PortOnLine, LimitOfTheCaller_CountsForAPendingCameraToo) {
  Connect();
  camera.SetFaults({.pendingAnswers = 1000, .pendingMs = 50});

  EXPECT_EQ(Read(100), KrResult::Code::TimeLimitExceeded);

  camera.SetFaults({});
  EXPECT_TRUE(ReadUntilAnswered().IsOK());
}

TEST_F(PortOnLine, Cancel_EndsAnAccessToAPendingCamera) {
  Connect();
  camera.TakeHeard();
  camera.SetFaults({.pendingAnswers = 1000, .pendingMs = 50});
  std::stop_source stop;
  auto reading = std::async(std::launch::async, [&] { return Read(kGenerousMs, stop.get_token()); });
  ASSERT_TRUE(camera.AwaitHeard(1));

  stop.request_stop();

  EXPECT_EQ(reading.get(), KrResult::Code::Aborted);
  camera.SetFaults({});
  EXPECT_TRUE(Read().IsOK());
}

TEST_F(PortOnLine, End_EndsWhoWaits) {
  Connect();
  camera.TakeHeard();
  camera.SetFaults({.pendingAnswers = 1000, .pendingMs = 50});
  auto reading = std::async(std::launch::async, [&] { return Read(); });
  ASSERT_TRUE(camera.AwaitHeard(1));

  port.End();

  EXPECT_EQ(reading.get(), KrResult::Code::Aborted);
  camera.SetFaults({});
}

TEST_F(PortOnLine, Heartbeat_IsKeptByQuestionsOfItsOwn) {
  camera.PokeNumber(0x1E8, 4, 30);
  Connect();
  camera.TakeHeard();

  EXPECT_TRUE(camera.AwaitReadsOf(kPrivilege, 3));
}

TEST_F(PortOnLine, AccessesOfManyThreads_AreAllRight) {
  camera.PokeNumber(kFeatures, 4, 0xCAFE);
  Connect();
  std::vector<std::future<bool>> threads;
  for (std::uint64_t i = 0; i < 8; ++i) {
    threads.push_back(std::async(std::launch::async, [this, i] {
      const std::vector<std::uint8_t> own = MakeBytes(50, static_cast<std::uint32_t>(i));
      const std::uint64_t address = kFeatures + 100 + 50 * i;
      std::vector<std::uint8_t> read(50);
      return port.Write(address, own.data(), own.size(), kGenerousMs).IsOK() &&
             port.Read(address, read.data(), read.size(), kGenerousMs).IsOK() && read == own;
    }));
  }

  for (auto& thread : threads)
    EXPECT_TRUE(thread.get());
}

} // namespace
} // namespace krcamerabridge
