#include "clprotocolfixture.h"

#include "await.h"
#include "krbase/krlogger.h"
#include "krgenicam/krgenparameterarray.h"

#include <csignal>
#include <future>

namespace krcamerabridge {
namespace {

using testing::HasSubstr;

std::vector<std::string> ToVector(const KrStringList& aTexts) {
  std::vector<std::string> texts;
  for (const KrString& text : aTexts)
    texts.push_back(text.ToUtf8());
  return texts;
}

TEST_F(CLProtocolTest, Templates_AreThoseOfAllDriversThatWork) {
  folder.Install("libgood.so");
  folder.InstallOldDriver("libold.so");
  folder.InstallNoDriver("libnone.so");
  folder.Write(KR_CLPROTOCOL_SYSTEM "/libtext.so", "no library");
  KrLogCapture log;
  KrStringList templates;

  const KrResult result = CLProtocolPort::GetTemplates(templates, kGenerousTimes);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_THAT(ToVector(templates),
              testing::ElementsAre(folder.GetTemplate("libgood.so"), folder.GetTemplate("libgood.so", "Maker#Other"),
                                   folder.GetTemplate("libold.so"), folder.GetTemplate("libold.so", "Maker#Other")));
  EXPECT_EQ(log.GetRecords().size(), 2u);
}

TEST_F(CLProtocolTest, Templates_OfDriversOfWhichNoneWorks_SayWhatIsWrongWithThem) {
  folder.InstallNoDriver("libnone.so");
  folder.Install("libcrash-clpInitLib.so");
  folder.Install("libnew-clpGetCLProtocolVersion.so");
  const KrLogCapture log;
  KrStringList templates;

  const KrResult result = CLProtocolPort::GetTemplates(templates, kGenerousTimes);

  EXPECT_EQ(result, KrResult::Code::SystemError);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("libnone.so cannot be used in being loaded: it is no CL "
                                                          "Protocol driver: it lacks clpGetCLProtocolVersion"));
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("libcrash-clpInitLib.so was ended by signal 6"));
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("version 2.2"));
}

TEST_F(CLProtocolTest, Connect_WithALibraryThatIsNoDriver_SaysWhatItLacks) {
  folder.InstallNoDriver("libnone.so");
  folder.Write(KR_CLPROTOCOL_SYSTEM "/libtext.so", "no library");

  const KrResult none = Connect(port, "libnone.so");
  const KrResult text = Connect(port, "libtext.so");

  EXPECT_EQ(none, KrResult::Code::SystemError);
  EXPECT_THAT(none.GetDescription().ToUtf8(), HasSubstr("libnone.so cannot be used in being loaded: it is no CL "
                                                        "Protocol driver: it lacks clpGetCLProtocolVersion"));
  EXPECT_EQ(text, KrResult::Code::SystemError);
  EXPECT_THAT(text.GetDescription().ToUtf8(), HasSubstr("libtext.so cannot be used in being loaded"));
  EXPECT_FALSE(port.IsConnected());
}

TEST_F(CLProtocolTest, Templates_WithoutDrivers_AreNone) {
  KrStringList templates;

  EXPECT_TRUE(CLProtocolPort::GetTemplates(templates).IsOK());
  EXPECT_TRUE(templates.IsEmpty());
}

TEST_F(CLProtocolTest, WithoutTheProgramForDrivers_TheMessageSaysOnceHowItIsFound) {
  folder.Install("libgood.so");
  folder.Install("libold.so");
  setenv("KRGUI_CLPROTOCOL_HOST", "/nowhere/host", 1);
  const KrLogCapture log;
  KrStringList templates;

  const KrResult result = CLProtocolPort::GetTemplates(templates);

  EXPECT_EQ(result, KrResult::Code::SystemError);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("/nowhere/host"));
  EXPECT_THAT(result.GetDescription().ToUtf8(), testing::Not(HasSubstr("\n")));
  EXPECT_EQ(log.GetRecords().size(), 1u);
}

TEST_F(CLProtocolTest, Probe_GivesTheCameraAndItsDescriptionsAndPutsTheLineBack) {
  folder.Install("libgood.so");
  folder.Write("SchemaVersion.1.1@Maker#Family#Model@XMLVersion.1.0.0.xml", MakeDescription(kNodes));
  KrString cameraID;
  KrStringList ids;

  const KrResult result = port.Probe(folder.GetTemplate("libgood.so"), cameraID, ids, {});

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(cameraID.ToUtf8(), folder.GetTemplate("libgood.so", "Maker#Family#Model#_1_0#SN7"));
  EXPECT_THAT(ToVector(ids), testing::ElementsAre("SchemaVersion.1.1@Maker#Family#Model@XMLVersion.1.0.0", kBestXMLID,
                                                  "SchemaVersion.1.1@Maker#Family@XMLVersion.1.0.0"));
  EXPECT_EQ(line.GetBaudRate(), 57600u);
  EXPECT_FALSE(port.IsConnected());
}

TEST_F(CLProtocolTest, Probe_WithACamerasIdentifier_FindsIt) {
  folder.Install("libgood.so");
  KrString cameraID;
  KrStringList ids;

  EXPECT_TRUE(port.Probe(folder.GetTemplate("libgood.so", "Maker#Family#Model#_1_0#SN7"), cameraID, ids, {}).IsOK());
  EXPECT_EQ(port.Probe(folder.GetTemplate("libgood.so", "Maker#Family#Model#_1_0#SN8"), cameraID, ids, {}),
            KrResult::Code::NotFound);
}

TEST_F(CLProtocolTest, Probe_WithTheTemplateOfAnotherDirectory_TakesTheDriverOfThatName) {
  folder.Install("libgood.so");
  KrString cameraID;
  KrStringList ids;

  EXPECT_TRUE(port.Probe("/elsewhere#libgood.so#Maker#Family", cameraID, ids, {}).IsOK());
  EXPECT_EQ(cameraID.ToUtf8(), folder.GetTemplate("libgood.so", "Maker#Family#Model#_1_0#SN7"));
}

TEST_F(CLProtocolTest, Probe_WithATemplateThatNoDriverHas_IsInvalidInput) {
  folder.Install("libgood.so");
  KrString cameraID;
  KrStringList ids;

  for (const std::string& text : {folder.GetTemplate("libgood.so", "Nobody"), folder.GetTemplate("libother.so"),
                                  folder.GetTemplate("libgood.so", "Maker"), std::string("nonsense")})
    EXPECT_EQ(port.Probe(text, cameraID, ids, {}), KrResult::Code::InvalidInput) << text;
}

TEST_F(CLProtocolTest, Probe_WithoutACamera_IsNotFoundInTheStandardsWords) {
  folder.Install("libgood.so");
  camera.SetSilent(true);
  KrString cameraID;
  KrStringList ids;

  const KrResult result = port.Probe(folder.GetTemplate("libgood.so"), cameraID, ids, {});

  EXPECT_EQ(result, KrResult::Code::NotFound);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("libgood.so: no camera was found (error -20101)"));
}

TEST_F(CLProtocolTest, Probe_OverALostLine_SaysThat) {
  folder.Install("libgood.so");
  camera.HangUp();
  KrString cameraID;
  KrStringList ids;

  const KrResult result = port.Probe(folder.GetTemplate("libgood.so"), cameraID, ids, {});

  EXPECT_EQ(result, KrResult::Code::ConnectionLost);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("The camera's end of the line is closed"));
}

TEST_F(CLProtocolTest, Probe_Cancelled_IsStoppedByTheDriverItself) {
  folder.Install("libloop-clpProbeDevice.so");
  KrLogCapture log;
  std::stop_source stop;
  auto probing = std::async(std::launch::async, [&] {
    KrString cameraID;
    KrStringList ids;
    return port.Probe(folder.GetTemplate("libloop-clpProbeDevice.so"), cameraID, ids, stop.get_token());
  });
  AwaitPending();

  stop.request_stop();

  EXPECT_EQ(probing.get(), KrResult::Code::Aborted);
  EXPECT_EQ(line.GetBaudRate(), 57600u);
}

TEST_F(CLProtocolTest, Parameters_AreReadAndWrittenThroughTheDriverAtTheBestRate) {
  ConnectGood();
  EXPECT_EQ(line.GetBaudRate(), 115200u);
  EXPECT_EQ(port.GetCameraID().ToUtf8(), folder.GetTemplate("libgood.so", "Maker#Family#Model#_1_0#SN7"));
  std::unique_ptr<KrGenParameterArray> array;
  ASSERT_TRUE(KrGenParameterArray::Open(description, port, {CLProtocolPort::kAccessTimeoutMs}, array).IsOK());

  ASSERT_TRUE(array->GetInteger("Gain")->SetValue(0x01020304).IsOK());

  std::uint32_t value = 0;
  ASSERT_TRUE(Read(0x100, value).IsOK());
  EXPECT_EQ(value, 0x04030201u);
  array.reset();
  port.Disconnect();
  EXPECT_EQ(line.GetBaudRate(), 57600u);
  EXPECT_EQ(Read(0x100, value), KrResult::Code::WrongState);
  EXPECT_TRUE(port.GetCameraID().IsEmpty());
}

TEST_F(CLProtocolTest, ADriverOf1_0_IsUsedWithoutWhatItLacks) {
  folder.InstallOldDriver("libold.so");

  const KrResult result = Connect(port, "libold.so");

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(line.GetBaudRate(), 9600u);
  std::uint32_t value = 0;
  EXPECT_TRUE(Read(0x100, value).IsOK());
}

TEST_F(CLProtocolTest, Description_OfAFile_IsReadFromThere) {
  folder.Install("libgood.so");
  folder.Write(KR_CLPROTOCOL_SYSTEM "/" + std::string(kBestXMLID) + ".xml", MakeDescription("<!-- of the file -->"));

  ASSERT_TRUE(Connect(port, "libgood.so").IsOK());

  EXPECT_THAT(std::string(description.GetText()), HasSubstr("of the file"));
}

TEST_F(CLProtocolTest, Connect_ToADescriptionThatThereIsNot_IsNotFound) {
  folder.Install("libgood.so");

  EXPECT_EQ(port.Connect(folder.GetTemplate("libgood.so"), "SchemaVersion.1.1@Maker@XMLVersion.9.0.0", description, {}),
            KrResult::Code::NotFound);
  EXPECT_FALSE(port.IsConnected());
}

TEST_F(CLProtocolTest, Connect_Twice_IsAWrongState) {
  ConnectGood();
  KrString cameraID;
  KrStringList ids;

  EXPECT_EQ(Connect(port, "libgood.so"), KrResult::Code::WrongState);
  EXPECT_EQ(port.Probe(folder.GetTemplate("libgood.so"), cameraID, ids, {}), KrResult::Code::WrongState);
}

TEST_F(CLProtocolTest, RefusedAccess_IsToldInTheDriversWordsAndLeavesTheCameraUsable) {
  ConnectGood();
  std::uint32_t value = 0;

  const KrResult result = Read(kRefused, value);

  EXPECT_EQ(result, KrResult::Code::ProtocolError);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("libgood.so: The lens cap is on (error -30001)."));
  EXPECT_TRUE(Read(0x100, value).IsOK());
}

TEST_F(CLProtocolTest, LargeAccesses_AreWhole) {
  ConnectGood();
  std::vector<std::uint8_t> bytes(60000);
  for (std::size_t i = 0; i < bytes.size(); ++i)
    bytes[i] = static_cast<std::uint8_t>(i * 7 + i / 256);
  std::vector<std::uint8_t> read(bytes.size());

  ASSERT_TRUE(port.Write(0, bytes.data(), bytes.size(), kGenerousMs).IsOK());
  ASSERT_TRUE(port.Read(0, read.data(), read.size(), kGenerousMs).IsOK());

  EXPECT_EQ(read, bytes);
}

TEST_F(CLProtocolTest, LongRegister_OfAnArray_IsWhole) {
  const std::string table = R"(
<Category Name="Root" NameSpace="Standard"><pFeature>Table</pFeature></Category>
<Register Name="Table"><Address>0x10</Address><Length>60000</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
</Register>)";
  folder.Install("libgood.so");
  krtest::CameraEnd tableCamera{krtest::TestCamera(MakeDescription(table))};
  krtest::RatedLine tableLine{tableCamera.GetLine()};
  CLProtocolPort tablePort(tableLine);
  ASSERT_TRUE(Connect(tablePort, "libgood.so").IsOK());
  std::unique_ptr<KrGenParameterArray> array;
  ASSERT_TRUE(KrGenParameterArray::Open(description, tablePort, {CLProtocolPort::kAccessTimeoutMs}, array).IsOK());
  std::vector<std::uint8_t> bytes(60000);
  for (std::size_t i = 0; i < bytes.size(); ++i)
    bytes[i] = static_cast<std::uint8_t>(i * 11 + i / 256);

  auto* const parameter = dynamic_cast<KrGenRegister*>(array->Get("Table"));
  ASSERT_NE(parameter, nullptr);

  const KrResult written = parameter->SetValue(bytes);
  array->InvalidateCache();
  std::vector<std::uint8_t> read;
  const KrResult result = parameter->GetValue(read);

  EXPECT_TRUE(written.IsOK()) << written.GetDescription().CStr();
  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(read, bytes);
}

TEST_F(CLProtocolTest, PendingWrite_IsContinuedUntilItIsDone) {
  ConnectGood();

  EXPECT_TRUE(WriteByte(kSlow, 20).IsOK());

  std::uint8_t cancelled = 1;
  ASSERT_TRUE(port.Read(kCancelled, &cancelled, 1, kGenerousMs).IsOK());
  EXPECT_EQ(cancelled, 0);
}

TEST_F(CLProtocolTest, PendingWrite_ThatIsCancelled_IsCancelledInTheDriver) {
  ConnectGood();
  std::stop_source stop;
  auto writing = std::async(std::launch::async, [&] { return WriteByte(kSlow, 127, stop.get_token()); });
  AwaitPending();

  stop.request_stop();

  EXPECT_EQ(writing.get(), KrResult::Code::Aborted);
  std::uint8_t cancelled = 0;
  const KrResult result = port.Read(kCancelled, &cancelled, 1, kGenerousMs);
  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(cancelled, 1);
}

TEST_F(CLProtocolTest, PendingWrite_BeyondTheCallersLimit_LeavesTheCameraUsable) {
  ConnectGood();
  const std::uint8_t forever = 127;

  EXPECT_EQ(port.Write(kSlow, &forever, 1, 100), KrResult::Code::TimeLimitExceeded);

  EXPECT_TRUE(ReadUntilAnswered().IsOK());
}

TEST_F(CLProtocolTest, PendingWrite_BeyondItsLimit_IsCancelledInTheDriver) {
  folder.Install("libgood.so");
  CLDriverTimes times = kGenerousTimes;
  times.pendingLimitMs = 200;
  CLProtocolPort impatient(line, times);
  ASSERT_TRUE(Connect(impatient, "libgood.so").IsOK());
  const std::uint8_t forever = 127;

  const KrResult result = impatient.Write(kSlow, &forever, 1, kGenerousMs);

  EXPECT_EQ(result, KrResult::Code::TimeLimitExceeded);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("not done with a write within 200 milliseconds"));
  std::uint8_t cancelled = 0;
  EXPECT_TRUE(krtest::Await([&] { return impatient.Read(kCancelled, &cancelled, 1, kGenerousMs).IsOK(); }));
  EXPECT_EQ(cancelled, 1);
}

TEST_F(CLProtocolTest, LongRegister_IsGivenTheTimeThatItNeedsOnTheLine) {
  folder.Install("libslow-clpReadRegister.so");
  folder.Install("libhang-clpReadRegister.so");
  CLDriverTimes times = kGenerousTimes;
  times.registerLimitMs = 200;
  CLProtocolPort slow(line, times);
  ASSERT_TRUE(Connect(slow, "libslow-clpReadRegister.so").IsOK());
  std::vector<std::uint8_t> bytes(60000, 1);

  const KrResult longRead = slow.Read(0, bytes.data(), bytes.size(), kGenerousMs);

  EXPECT_TRUE(longRead.IsOK()) << longRead.GetDescription().CStr();
  EXPECT_EQ(bytes, std::vector<std::uint8_t>(60000, 0));
  slow.Disconnect();
  // A driver that never comes back: one that is slow could be as fast as this process on a busy machine.
  CLProtocolPort hanging(line, times);
  ASSERT_TRUE(Connect(hanging, "libhang-clpReadRegister.so").IsOK());
  const KrResult shortRead = hanging.Read(0, bytes.data(), 4, kGenerousMs);
  EXPECT_EQ(shortRead, KrResult::Code::ConnectionLost);
  EXPECT_THAT(shortRead.GetDescription().ToUtf8(), HasSubstr("from clpReadRegister within 211 milliseconds"));
}

TEST_F(CLProtocolTest, SilentCamera_IsUsableAgainWhenItAnswers) {
  ConnectGood();
  std::uint32_t value = 0;
  ASSERT_TRUE(Read(0x100, value).IsOK());
  camera.SetSilent(true);
  EXPECT_EQ(Read(0x100, value), KrResult::Code::TimeLimitExceeded);

  camera.SetSilent(false);

  EXPECT_TRUE(ReadUntilAnswered().IsOK());
}

TEST_F(CLProtocolTest, CameraThatTheDriverHasForgotten_IsFoundAgainAtItsRate) {
  ConnectGood();
  std::uint32_t value = 0;
  EXPECT_EQ(Read(kForgetful, value), KrResult::Code::TimeLimitExceeded);

  EXPECT_TRUE(ReadUntilAnswered().IsOK());
  EXPECT_EQ(line.GetBaudRate(), 115200u);
}

TEST_F(CLProtocolTest, KilledProcess_IsAConnectionLostAndTheNextConnectionWorks) {
  ConnectGood();
  std::uint32_t process = 0;
  ASSERT_TRUE(Read(kProcessID, process).IsOK());
  ASSERT_NE(process, 0u);

  ASSERT_EQ(kill(static_cast<pid_t>(process), SIGKILL), 0);

  std::uint32_t value = 0;
  const KrResult result = Read(0x100, value);
  EXPECT_EQ(result, KrResult::Code::ConnectionLost);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("libgood.so was ended by signal 9 (Killed)"));
  EXPECT_EQ(Read(0x100, value), KrResult::Code::ConnectionLost);
  port.Disconnect();
  EXPECT_TRUE(Connect(port, "libgood.so").IsOK());
  EXPECT_TRUE(Read(0x100, value).IsOK());
}

TEST_F(CLProtocolTest, Disconnect_EndsTheProcess) {
  ConnectGood();
  std::uint32_t process = 0;
  ASSERT_TRUE(Read(kProcessID, process).IsOK());

  port.Disconnect();

  EXPECT_EQ(kill(static_cast<pid_t>(process), 0), -1);
}

class ChildProcessTest : public CLProtocolTest {
protected:
  void SetUp() override {
    folder.Install("libspawn-clpInitLib.so");
    const KrResult result = Connect(port, "libspawn-clpInitLib.so");
    ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    ASSERT_TRUE(Read(kChildID, mChild).IsOK());
    ASSERT_EQ(kill(static_cast<pid_t>(mChild), 0), 0);
  }

  std::uint32_t mChild = 0;
};

TEST_F(ChildProcessTest, OfASessionOfItsOwn_IsEndedByDisconnect) {
  port.Disconnect();

  EXPECT_EQ(kill(static_cast<pid_t>(mChild), 0), -1);
}

TEST_F(ChildProcessTest, OfASessionOfItsOwn_IsEndedWhenTheDriverDies) {
  std::uint32_t process = 0;
  ASSERT_TRUE(Read(kProcessID, process).IsOK());

  ASSERT_EQ(kill(static_cast<pid_t>(process), SIGKILL), 0);

  std::uint32_t value = 0;
  EXPECT_EQ(Read(0x100, value), KrResult::Code::ConnectionLost);
  EXPECT_EQ(kill(static_cast<pid_t>(mChild), 0), -1);
}

TEST_F(CLProtocolTest, End_EndsWhoWaits) {
  ConnectGood();
  auto writing = std::async(std::launch::async, [&] { return WriteByte(kSlow, 127); });
  AwaitPending();

  port.End();

  EXPECT_EQ(writing.get(), KrResult::Code::Aborted);
}

TEST_F(CLProtocolTest, AccessesOfManyThreads_AreAllRight) {
  ConnectGood();
  std::vector<std::future<bool>> threads;
  for (std::uint64_t i = 0; i < 8; ++i)
    threads.push_back(std::async(std::launch::async, [this, i] {
      for (std::uint32_t round = 0; round < 50; ++round) {
        const std::uint32_t own = static_cast<std::uint32_t>(i) << 24 | round;
        std::uint32_t read = 0;
        if (!port.Write(0x200 + 4 * i, &own, sizeof own, kGenerousMs).IsOK() || !Read(0x200 + 4 * i, read).IsOK() ||
            read != own)
          return false;
      }
      return true;
    }));

  for (auto& thread : threads)
    EXPECT_TRUE(thread.get());
}

TEST_F(CLProtocolTest, WhatADriverLogs_IsLogged) {
  KrLogCapture log;
  ConnectGood();

  EXPECT_TRUE(log.Contains(KrLogLevel::Info, "The CL Protocol driver libgood.so says: found a camera at 42"));
}

TEST_F(CLProtocolTest, WhatADriverPrints_IsLoggedUpToALimit) {
  folder.Install("libloud-clpInitLib.so");
  KrLogCapture log;

  EXPECT_TRUE(Connect(port, "libloud-clpInitLib.so").IsOK());

  EXPECT_TRUE(log.Contains(KrLogLevel::Warning, "The CL Protocol driver libloud-clpInitLib.so prints: the driver "
                                                "prints line 0 of what nobody wants to read"));
  EXPECT_LT(log.GetRecords().size(), 5000u);
}

} // namespace
} // namespace krcamerabridge
