// Camera bridges that end their connection while other threads use the camera's parameters.

#include "camerabridgefixture.h"

#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"
#include "temporaryfolder.h"

#include <future>
#include <ostream>
#include <string>
#include <vector>

namespace {

struct Way {
  const char* name;
  KrDeviceSerial port;
  std::uint32_t line;
  KrResult (*connect)(KrCameraBridge& aBridge);
};

void PrintTo(const Way& aWay, std::ostream* aStream) {
  *aStream << aWay.name;
}

KrResult ConnectFile(KrCameraBridge& aBridge) {
  return aBridge.ConnectTolvanCameraFile(kTextCameraFile);
}

class CameraBridgeThreadsTest : public testing::TestWithParam<Way> {
protected:
  void SetUp() override { ASSERT_TRUE(IsFine(GetParam().connect(mBridge))); }

  // Threads of which one waits for the camera, which keeps silent, and the others for their turn.
  std::vector<std::future<KrResult>> StartAccesses() {
    KrGenParameterArray& camera = *mBridge.GetParameters();
    EXPECT_TRUE(mLab.GetFaults()->SilenceSerialPort(GetParam().line, true).IsOK());
    const std::uint64_t before = mLab.CountSent(GetParam().line);
    std::atomic<int> begun = 0;
    std::vector<std::future<KrResult>> accesses;
    for (const char* const name : {"Width", "Height", "OffsetX", "OffsetY"})
      accesses.push_back(std::async(std::launch::async, [parameter = camera.Get(name), &begun] {
        ++begun;
        return parameter->FromString("128");
      }));
    EXPECT_TRUE(WaitUntil([&] { return begun == 4 && mLab.CountSent(GetParam().line) > before; }));
    return accesses;
  }
  static void ExpectEnded(std::vector<std::future<KrResult>>& aAccesses) {
    for (std::future<KrResult>& access : aAccesses) {
      const KrResult result = access.get();
      EXPECT_TRUE(result == KrResult::Code::Aborted || result == KrResult::Code::ConnectionLost)
          << result.GetCodeString().CStr();
      EXPECT_FALSE(result.GetDescription().IsEmpty());
    }
  }

  BridgeLab mLab;
  KrCameraBridge mBridge{mLab.GetDevice(), GetParam().port, nullptr};
};

} // namespace

TEST_P(CameraBridgeThreadsTest, Disconnect_EndsTheAccessesOfOtherThreads) {
  std::vector<std::future<KrResult>> accesses = StartAccesses();

  mBridge.Disconnect();

  ExpectEnded(accesses);
  EXPECT_FALSE(mBridge.IsConnected());
  ASSERT_TRUE(mLab.GetFaults()->SilenceSerialPort(GetParam().line, false).IsOK());
  EXPECT_TRUE(IsFine(GetParam().connect(mBridge)));
}

TEST_P(CameraBridgeThreadsTest, Load_EndsTheAccessesOfOtherThreadsAndConnectsAnew) {
  const TemporaryFolder folder;
  KrConfigurationWriter writer;
  ASSERT_TRUE(IsFine(SetText(*mBridge.GetParameters(), "Width", "320")));
  ASSERT_TRUE(IsFine(mBridge.Save("Camera", writer)));
  ASSERT_TRUE(IsFine(writer.Save(folder.GetFile("settings.xml"))));
  KrConfigurationReader reader;
  ASSERT_TRUE(IsFine(reader.Load(folder.GetFile("settings.xml"))));
  std::vector<std::future<KrResult>> accesses = StartAccesses();

  KrStringList errors;
  std::future<KrResult> loading =
      std::async(std::launch::async, [&] { return mBridge.Load("Camera", reader, errors); });
  ExpectEnded(accesses);
  ASSERT_TRUE(mLab.GetFaults()->SilenceSerialPort(GetParam().line, false).IsOK());
  const KrResult loaded = loading.get();
  // The camera may still have been silent when it was looked for.
  if (!loaded.IsOK()) {
    ASSERT_TRUE(IsFine(mBridge.Load("Camera", reader, errors)));
  }

  EXPECT_TRUE(mBridge.IsConnected());
  EXPECT_EQ(GetText(*mBridge.GetParameters(), "Width"), "320");
}

TEST_P(CameraBridgeThreadsTest, Load_OfABridgeThatCannotConnectAgain_EndsTheAccessesOfOtherThreadsAndTellsWhy) {
  KrPropertyList list;
  list.Add({"Way", "TolvanCameraFile"});
  list.Add({"Path", "/nowhere/camera.yml"});
  list.Add({"Source", ""});
  list.Add({"ParametersSync", "0"});
  const TemporaryFolder folder;
  KrConfigurationWriter writer;
  ASSERT_TRUE(IsFine(writer.Store("Camera", list)));
  ASSERT_TRUE(IsFine(writer.Save(folder.GetFile("settings.xml"))));
  KrConfigurationReader reader;
  ASSERT_TRUE(IsFine(reader.Load(folder.GetFile("settings.xml"))));
  std::vector<std::future<KrResult>> accesses = StartAccesses();
  KrStringList errors;

  EXPECT_EQ(mBridge.Load("Camera", reader, errors), KrResult::Code::NotFound);

  ExpectEnded(accesses);
  EXPECT_EQ(errors.GetCount(), 1u);
  EXPECT_FALSE(mBridge.IsConnected());
  EXPECT_EQ(mBridge.GetParameters(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(CameraBridge, CameraBridgeThreadsTest,
                         testing::Values(Way{"GenCP", KrDeviceSerial::Serial0, 0, ConnectGenCP},
                                         Way{"CameraFile", KrDeviceSerial::Serial1, 1, ConnectFile}),
                         [](const testing::TestParamInfo<Way>& aInfo) { return aInfo.param.name; });
