// A camera's serial port, a bridge on it and a Camera Link camera behind it, through faults of the device, of the line,
// of the host's port and of the camera's file, at each step or at as many as there is time for.
//
// Beside the cases here, programs at a bridge that stop or are killed are in serial/bridgefaultstest, Camera Link
// programs in cameralink/cameralinkhostiletest, CL Protocol drivers that hang or crash in lab/camerabridgeclfaultstest,
// and whole sessions over lines with random faults in lab/camerabridgefaultstest.

#include "await.h"
#include "faultlab.h"

#include "bridgehost.h"
#include "faultygrabber.h"
#include "krcamerabridge/krcamerabridge.h"
#include "krdevice/krdeviceadapter.h"
#include "krgenicam/krgeninteger.h"
#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"
#include "krserial/krdeviceserialport.h"
#include "krserial/krserialbridge.h"
#include "temporaryfolder.h"
#include "testclocks.h"

#include <atomic>
#include <cstdlib>
#include <filesystem>

namespace krtest {

namespace {

const std::string kQuestion = "*IDN?\r";
constexpr const char* kAnswerBegin = "Simulated Instrument,";

/// What goes wrong with the bytes of a line, once.
enum class LineFault { Loses, Repeats, Corrupts };

struct LineFaultRow {
  const char* name;
  LineFault fault;
  KrSerialDirection direction;
};

constexpr LineFaultRow kLineFaults[] = {
    {"LosesASentByte", LineFault::Loses, KrSerialDirection::Sent},
    {"LosesAReceivedByte", LineFault::Loses, KrSerialDirection::Received},
    {"RepeatsASentByte", LineFault::Repeats, KrSerialDirection::Sent},
    {"RepeatsAReceivedByte", LineFault::Repeats, KrSerialDirection::Received},
    {"ChangesASentByte", LineFault::Corrupts, KrSerialDirection::Sent},
    {"ChangesAReceivedByte", LineFault::Corrupts, KrSerialDirection::Received},
};

class FaultyLine : public FaultLab {
protected:
  explicit FaultyLine(const krtransport::Lab& aLab = krtransport::GetBuiltInLab())
      : FaultLab(std::make_shared<JumpingClock>(), aLab) {}

  StepFault MakeLineFault(const LineFaultRow& aRow, std::uint32_t aPort) {
    return {.cause = [this, aRow, aPort] {
      KrSimulatedFaults& faults = GetFaults();
      const KrResult ordered = aRow.fault == LineFault::Loses ? faults.LoseNextSerialBytes(aPort, aRow.direction, 1)
                               : aRow.fault == LineFault::Repeats
                                   ? faults.RepeatNextSerialBytes(aPort, aRow.direction, 1)
                                   : faults.CorruptNextSerialBytes(aPort, aRow.direction, 1);
      EXPECT_TRUE(ordered.IsOK()) << ordered.GetDescription().CStr();
    }};
  }

  /// A line goes on when the registers are silent.
  void TryLineAtEachStep(DeviceFault aFault, const Use& aUse, std::uint64_t aMostSteps = 48) {
    mAdvice = kDeviceAdvice;
    const bool isGone = aFault == DeviceFault::Vanishes || aFault == DeviceFault::LosesPower;
    TryAtEachStep(MakeFault(aFault), aUse, aMostSteps, isGone);
  }
  KrResult Talk();
  KrResult Bridge();
  KrResult AwaitAnswer(KrSerialBridge& aBridge);
  void RemovePortWhereWanted();

  BridgeHost mHost;
  bool mHasPort = false;
  std::atomic<bool> mIsPortToGo = false;
};

// A line of a port; the question is asked again where its bytes, or the answer's, were hurt.
KrResult ReadLine(KrDeviceSerialPort& aPort, std::string& aLine) {
  constexpr std::uint32_t kPatienceMs = 100;
  KrResult result;
  while (result.IsOK() && !aLine.ends_with("\r\n")) {
    std::uint8_t byte = 0;
    std::uint32_t read = 0;
    result = aPort.Read(&byte, 1, read, kPatienceMs);
    if (result.IsOK())
      aLine.push_back(static_cast<char>(byte));
  }
  return result;
}

KrResult Ask(KrDeviceSerialPort& aPort) {
  std::string line;
  std::uint32_t written = 0;
  KrResult result;
  const bool isAnswered = Await([&] {
    result = aPort.Write(reinterpret_cast<const std::uint8_t*>(kQuestion.data()),
                         static_cast<std::uint32_t>(kQuestion.size()), written);
    line.clear();
    while (result.IsOK() && !line.starts_with(kAnswerBegin)) {
      line.clear();
      result = ReadLine(aPort, line);
    }
    return result != KrResult::Code::TimeLimitExceeded;
  });
  EXPECT_TRUE(isAnswered);
  return result;
}

// What a terminal's session does.
KrResult FaultyLine::Talk() {
  std::unique_ptr<KrDevice> device;
  KrResult result = Open(device);
  if (!result.IsOK())
    return result;
  KrDeviceAdapter adapter(*device);
  KrDeviceSerialPort port;
  result = port.Open(&adapter, KrDeviceSerial::Serial0);
  for (int count = 0; result.IsOK() && count < 3; ++count)
    result = Ask(port);
  mSteps.NoteUsed();
  EXPECT_TRUE(port.Close().IsOK());
  return result;
}

void FaultyLine::RemovePortWhereWanted() {
  if (!mIsPortToGo || !mHasPort)
    return;
  mHost.RemovePort(3);
  mHasPort = false;
}

// Sends from the host until the instrument's answer is there, or the bridge tells what it waits for.
KrResult FaultyLine::AwaitAnswer(KrSerialBridge& aBridge) {
  std::string received;
  KrString trouble;
  std::uint64_t asked = 0;
  const bool isOver = Await([&] {
    RemovePortWhereWanted();
    trouble = aBridge.GetStateText();
    if (!trouble.IsEmpty() || !mHasPort)
      return !trouble.IsEmpty();
    // Asked again when a fault has come and all of the last question has gone: what was hurt of it is not answered.
    if (asked == 0 || (mSteps.HasFailed() && aBridge.GetBytesSentToDevice() >= asked)) {
      mHost.Send(3, kQuestion);
      asked += kQuestion.size();
    }
    received += mHost.Receive(3);
    return received.find(kAnswerBegin) != std::string::npos;
  });
  EXPECT_TRUE(isOver);
  return trouble.IsEmpty() ? KrResult() : KrResult(KrResult::Code::ConnectionLost, trouble);
}

KrResult FaultyLine::Bridge() {
  if (!mHasPort)
    mHost.AddPort(3);
  mHasPort = true;
  std::unique_ptr<KrDevice> device;
  KrResult result = Open(device);
  if (!result.IsOK())
    return result;
  KrDeviceAdapter adapter(*device);
  KrSerialBridge bridge;
  KrSerialPortConfiguration configuration;
  configuration.baudRate = 115200;
  result = bridge.Start("COM3", configuration, &adapter, KrDeviceSerial::Serial0);
  if (result.IsOK())
    result = AwaitAnswer(bridge);
  mSteps.NoteUsed();
  bridge.Stop();
  EXPECT_EQ(bridge.GetState(), KrSerialBridgeState::Stopped);
  return result;
}

class FaultyLineOfADevice : public FaultyLine, public testing::WithParamInterface<DeviceFaultRow> {};
class LineWithFaults : public FaultyLine, public testing::WithParamInterface<LineFaultRow> {};

} // namespace

TEST_P(FaultyLineOfADevice, InATerminalsSession_IsSaidAndTheNextSessionTalks) {
  TryLineAtEachStep(GetParam().fault, [this] { return Talk(); });
}

TEST_P(FaultyLineOfADevice, UnderABridge_IsSaidAndTheNextBridgeTalks) {
  TryLineAtEachStep(GetParam().fault, [this] { return Bridge(); });
}

INSTANTIATE_TEST_SUITE_P(Faults, FaultyLineOfADevice, testing::ValuesIn(kDeviceFaults), NameRow<DeviceFaultRow>);

TEST_P(LineWithFaults, InATerminalsSession_HurtsOneLineAlone) {
  TryAtEachStep(
      MakeLineFault(GetParam(), 0), [this] { return Talk(); }, 16);
}

TEST_P(LineWithFaults, UnderABridge_HurtsOneLineAlone) {
  TryAtEachStep(MakeLineFault(GetParam(), 0), [this] { return Bridge(); });
}

INSTANTIATE_TEST_SUITE_P(Faults, LineWithFaults, testing::ValuesIn(kLineFaults), NameRow<LineFaultRow>);

TEST_F(FaultyLine, HostsPortThatGoesUnderABridge_IsSaidAndTheNextBridgeTalks) {
  const StepFault fault = {.cause = [this] { mIsPortToGo = true; }};
  mNames = {"COM3"};

  TryAtEachStep(fault, [this] {
    const KrResult result = Bridge();
    mIsPortToGo = false;
    return result;
  });
}

namespace {

/// The cameras behind a frame grabber.
class FaultyGrabber : public FaultyLine {
protected:
  FaultyGrabber() : FaultyLine(MakeFaultyGrabberLab()) {
    WriteCameraFile();
    setenv("KRGUI_CLPROTOCOL_HOST", KR_TEST_HOST, 1);
    setenv("GENICAM_CLPROTOCOL", KR_TEST_DRIVERS, 1);
  }

  /// The file of the camera whose answers have checksums as well.
  void WriteCameraFile() {
    std::string text = TemporaryFolder::ReadFile(KR_CAMERA_FILES "/simulated-camera.yml");
    const std::string plain = "answerEnd: \"\\r\"";
    const std::size_t place = text.find(plain);
    EXPECT_NE(place, std::string::npos);
    TemporaryFolder::WriteFile(mFile, text.replace(place, plain.size(), "answerEnd: \"*{check}\\r\""));
  }
  void RemoveCameraFile() { EXPECT_TRUE(std::filesystem::remove(mFile)); }

  /// Connects, sets the camera, saves it, and disconnects.
  KrResult UseCamera(KrDeviceSerial aPort, const std::function<KrResult(KrCameraBridge&)>& aConnect) {
    std::unique_ptr<KrDevice> device;
    KrResult result = Open(device);
    if (!result.IsOK())
      return result;
    KrCameraBridge bridge(device.get(), aPort, nullptr);
    result = aConnect(bridge);
    KrConfigurationWriter writer;
    if (result.IsOK())
      result = SetAndSave(bridge, writer);
    mSteps.NoteUsed();
    bridge.Disconnect();
    EXPECT_FALSE(bridge.IsConnected());
    return result;
  }
  KrResult UseGenCP() {
    return UseCamera(KrDeviceSerial::Serial0, [](KrCameraBridge& aBridge) {
      KrStringList ids;
      KrResult result = aBridge.GetGenCPXMLIDs(ids);
      return result.IsOK() ? aBridge.ConnectGenCP(ids[0]) : result;
    });
  }
  KrResult UseCameraFile() {
    return UseCamera(KrDeviceSerial::Serial1,
                     [this](KrCameraBridge& aBridge) { return aBridge.ConnectTolvanCameraFile(mFile); });
  }

  KrResult UseCLProtocol() {
    return UseCamera(KrDeviceSerial::Bulk0, [](KrCameraBridge& aBridge) {
      KrStringList templates;
      KrResult result = KrCameraBridge::GetCLProtocolTemplates(templates);
      KrString camera;
      KrStringList ids;
      if (result.IsOK())
        result = aBridge.ProbeCLProtocol(templates[0], camera, ids);
      return result.IsOK() ? aBridge.ConnectCLProtocol(templates[0], ids[0]) : result;
    });
  }

  static KrResult SetAndSave(KrCameraBridge& aBridge, KrConfigurationWriter& aWriter) {
    KrGenInteger* const width = aBridge.GetParameters()->GetInteger("Width");
    KrResult result = width ? width->SetValue(256) : KrResult(KrResult::Code::NotFound, "There is no Width.");
    std::int64_t value = 0;
    if (result.IsOK())
      result = width->GetValue(value);
    if (result.IsOK()) {
      EXPECT_EQ(value, 256);
    }
    return result.IsOK() ? aBridge.Save(kSavedAs, aWriter) : result;
  }

  static constexpr const char* kSavedAs = "Camera";
  const TemporaryFolder mFolder;
  const std::string mFile = mFolder.GetFile("camera.yml");
};

class FaultyGrabberDevice : public FaultyGrabber, public testing::WithParamInterface<DeviceFaultRow> {};
class GrabberLineWithFaults : public FaultyGrabber, public testing::WithParamInterface<LineFaultRow> {};

// Of some hundreds. What is hurt on the line takes its time limits.
constexpr std::uint64_t kCameraSteps = 12;
constexpr std::uint64_t kCameraLineSteps = 3;

} // namespace

TEST_P(FaultyGrabberDevice, UnderAGenCPCamera_IsSaidAndTheCameraIsUsedAfterwards) {
  TryLineAtEachStep(
      GetParam().fault, [this] { return UseGenCP(); }, kCameraSteps);
}

TEST_P(FaultyGrabberDevice, UnderACameraOfAFile_IsSaidAndTheCameraIsUsedAfterwards) {
  TryLineAtEachStep(
      GetParam().fault, [this] { return UseCameraFile(); }, kCameraSteps);
}

TEST_P(FaultyGrabberDevice, UnderACameraOfADriver_IsSaidAndTheCameraIsUsedAfterwards) {
  TryLineAtEachStep(
      GetParam().fault, [this] { return UseCLProtocol(); }, kCameraSteps);
}

INSTANTIATE_TEST_SUITE_P(Faults, FaultyGrabberDevice, testing::ValuesIn(kDeviceFaults), NameRow<DeviceFaultRow>);

TEST_P(GrabberLineWithFaults, UnderAGenCPCamera_IsMadeUpForOrSaid) {
  TryAtEachStep(
      MakeLineFault(GetParam(), 0), [this] { return UseGenCP(); }, kCameraLineSteps);
}

TEST_P(GrabberLineWithFaults, UnderACameraOfAFile_IsMadeUpForOrSaid) {
  TryAtEachStep(
      MakeLineFault(GetParam(), 1), [this] { return UseCameraFile(); }, kCameraLineSteps);
}

INSTANTIATE_TEST_SUITE_P(Faults, GrabberLineWithFaults, testing::ValuesIn(kLineFaults), NameRow<LineFaultRow>);

TEST_F(FaultyGrabber, CameraFileThatDisappearsAtAnyStep_IsNamedOrWantedNoMore) {
  const StepFault fault = {.cause = [this] { RemoveCameraFile(); }};
  mNames = {mFile};

  TryAtEachStep(
      fault,
      [this] {
        const KrResult used = UseCameraFile();
        if (!used.IsOK()) {
          EXPECT_EQ(used, KrResult::Code::NotFound);
        }
        WriteCameraFile();
        return used;
      },
      kCameraSteps);
}

TEST_F(FaultyGrabber, CameraFileThatDisappearsUnderItsCamera_IsNamedByTheNextConnectionAndReadWhenItIsBack) {
  std::unique_ptr<KrDevice> device;
  ASSERT_TRUE(Open(device).IsOK());
  KrCameraBridge bridge(device.get(), KrDeviceSerial::Serial1, nullptr);
  ASSERT_TRUE(bridge.ConnectTolvanCameraFile(mFile).IsOK());
  RemoveCameraFile();

  KrConfigurationWriter writer;
  const KrResult used = SetAndSave(bridge, writer);
  const KrConfigurationReader saved(writer);
  KrStringList errors;
  const KrResult loaded = bridge.Load(kSavedAs, saved, errors);

  EXPECT_TRUE(used.IsOK()) << "who is connected wants the file no more: " << used.GetDescription().CStr();
  EXPECT_EQ(loaded, KrResult::Code::NotFound);
  EXPECT_THAT(loaded.GetDescription().ToUtf8(), testing::HasSubstr(mFile));
  EXPECT_EQ(errors.GetCount(), 1U);
  EXPECT_FALSE(bridge.IsConnected());
  WriteCameraFile();
  const KrResult again = bridge.Load(kSavedAs, saved, errors);
  EXPECT_TRUE(again.IsOK()) << again.GetDescription().CStr();
  EXPECT_TRUE(bridge.IsConnected());
}

} // namespace krtest
