// The product's CL Protocol, with its own driver, and the camera of the lab, over a frame grabber's port, its speed and
// all.

#include "clcamerafixture.h"

#include "clprotocol/cldriverlist.h"
#include "clprotocol/clprotocolport.h"
#include "krgenicam/krgenparameterarray.h"
#include "line/deviceline.h"
#include "line/devicelinespeed.h"
#include "parametertext.h"

#include <gmock/gmock.h>

#include <cstdlib>

using testing::HasSubstr;

namespace {

using krcamerabridge::BorrowedDevice;
using krcamerabridge::CLProtocolPort;
using krcamerabridge::DeviceLine;
using krcamerabridge::DeviceLineSpeed;

class CLProtocolPortTest : public SerialLineTest {
protected:
  explicit CLProtocolPortTest(const std::string& aCameraKeys = "protocol: CLProtocol")
      : SerialLineTest(MakeGrabberLab(aCameraKeys), std::make_shared<JumpingClock>()) {
    setenv("KRGUI_CLPROTOCOL_HOST", KR_TEST_HOST, 1);
    unsetenv("GENICAM_CLPROTOCOL");
    krcamerabridge::SetCLDriverDirectories({KR_TEST_DRIVERS});
  }
  void SetUp() override {
    ASSERT_TRUE(Open(kMonoMAC, mDevice).IsOK());
    mAdapter.emplace(*mDevice);
    mLine.emplace(std::make_unique<DeviceLineSpeed>(BorrowedDevice(mDevice.get()), KrDeviceSerial::Serial0));
    ASSERT_TRUE(mLine->Open(*mAdapter, KrDeviceSerial::Serial0).IsOK());
    mCamera.emplace(*mLine);
    ASSERT_TRUE(CLProtocolPort::GetTemplates(mTemplates).IsOK());
    ASSERT_EQ(mTemplates.GetCount(), 1u);
  }
  void TearDown() override {
    mArray.reset();
    mCamera.reset();
    mLine.reset();
  }

  KrResult Probe() { return mCamera->Probe(mTemplates[0], mCameraID, mXMLIDs, {}); }
  // Probes, and connects with one of the descriptions.
  void Connect(std::size_t aXMLID = 0) {
    KrResult result = Probe();
    ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    ASSERT_GT(mXMLIDs.GetCount(), aXMLID);
    KrGenDescription description;
    result = mCamera->Connect(mTemplates[0], mXMLIDs[aXMLID], description, {});
    ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    result = KrGenParameterArray::Open(description, *mCamera, {CLProtocolPort::kAccessTimeoutMs}, mArray);
    ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  }
  std::int64_t GetWidth() {
    std::int64_t width = 0;
    mArray->InvalidateCache();
    const KrResult result = mArray->GetInteger("Width")->GetValue(width);
    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    return width;
  }
  KrString GetRate() { return ReadText(GetArray(), "Uart0BaudRate"); }

  std::optional<KrDeviceAdapter> mAdapter;
  std::optional<DeviceLine> mLine;
  std::optional<CLProtocolPort> mCamera;
  std::unique_ptr<KrGenParameterArray> mArray;
  KrStringList mTemplates;
  KrString mCameraID;
  KrStringList mXMLIDs;
};

class PendingCLProtocolPortTest : public CLProtocolPortTest {
protected:
  PendingCLProtocolPortTest() : CLProtocolPortTest("protocol: CLProtocol, pending: 500") {}
};

class OtherCameraTest : public CLProtocolPortTest {
protected:
  OtherCameraTest() : CLProtocolPortTest("protocol: GenCP") {}
};

} // namespace

TEST_F(CLProtocolPortTest, Probe_FindsTheCameraAndItsDescriptionsTheNewestFirst) {
  const KrResult result = Probe();

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_THAT(mTemplates[0].ToUtf8(), HasSubstr("#libkrsimulatedcl.so#KrGUI#Simulated"));
  EXPECT_EQ(mCameraID, mTemplates[0] + "#Model#_1_0#SN7");
  ASSERT_EQ(mXMLIDs.GetCount(), 2u);
  EXPECT_EQ(mXMLIDs[0], KrString("SchemaVersion.1.1@KrGUI#Simulated#Model@XMLVersion.1.1.0"));
  EXPECT_EQ(mXMLIDs[1], KrString("SchemaVersion.1.1@KrGUI#Simulated#Model@XMLVersion.1.0.0"));
}

TEST_F(CLProtocolPortTest, Camera_IsConnectedWithEachDescriptionAndItsParametersCanBeSet) {
  for (std::size_t i = 0; i < 2; ++i) {
    SCOPED_TRACE(i);
    ASSERT_NO_FATAL_FAILURE(Connect(i));

    const auto width = static_cast<std::int64_t>(256 + 64 * i);
    const KrResult result = mArray->GetInteger("Width")->SetValue(width);

    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    EXPECT_EQ(GetWidth(), width);
    mArray.reset();
    mCamera->Disconnect();
  }
}

TEST_F(CLProtocolPortTest, Speed_IsRaisedForTheConnectionAndPutBackBehindIt) {
  const KrString before = GetRate();
  ASSERT_NO_FATAL_FAILURE(Connect());
  EXPECT_NE(GetRate(), before);

  mArray.reset();
  mCamera->Disconnect();

  EXPECT_EQ(GetRate(), before);
  EXPECT_TRUE(Probe().IsOK());
}

TEST_F(CLProtocolPortTest, CameraThatWasLeftAtAnotherSpeed_IsFound) {
  // The host is told 115200 and the line left at 9600, as by a program that was killed.
  const std::string change = FromHex("a5 42 04 00 00 04 10 00 01 c2 00 0b 53");
  ASSERT_TRUE(
      mLine->Write(reinterpret_cast<const std::uint8_t*>(change.data()), change.size(), kGenerousLimitMs, {}).IsOK());
  std::uint8_t answer[9];
  for (std::size_t done = 0, read = 0; done < sizeof answer; done += read)
    ASSERT_TRUE(mLine->Read(answer + done, sizeof answer - done, read, kGenerousLimitMs, {}).IsOK());

  const KrResult result = Probe();

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
}

TEST_F(CLProtocolPortTest, RefusedAccess_IsToldInTheDriversWords) {
  ASSERT_NO_FATAL_FAILURE(Connect());
  std::uint32_t value = 0;

  const KrResult result = mCamera->Read(0x9000, &value, sizeof value, kGenerousLimitMs);

  EXPECT_EQ(result, KrResult::Code::ProtocolError);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("The camera has no register there"));
}

TEST_F(CLProtocolPortTest, BytesThatAreDamaged_AreAskedForAgain) {
  ASSERT_NO_FATAL_FAILURE(Connect());
  ASSERT_TRUE(mLab->GetFaults(kMonoMAC)->CorruptNextSerialBytes(0, KrSerialDirection::Received, 3).IsOK());

  EXPECT_EQ(GetWidth(), 640);
}

TEST_F(CLProtocolPortTest, LostDevice_IsConnectionLost) {
  ASSERT_NO_FATAL_FAILURE(Connect());
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  std::uint8_t byte = 0;

  EXPECT_EQ(mCamera->Read(0x10008, &byte, 1, kGenerousLimitMs), KrResult::Code::ConnectionLost);
}

TEST_F(PendingCLProtocolPortTest, CameraThatNeedsTimeForItsWrites_IsGivenIt) {
  ASSERT_NO_FATAL_FAILURE(Connect());

  const KrResult result = mArray->GetInteger("Width")->SetValue(256);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(GetWidth(), 256);
}

TEST_F(OtherCameraTest, CameraOfAnotherProtocol_IsNotFound) {
  const KrResult result = Probe();

  EXPECT_EQ(result, KrResult::Code::NotFound) << result.GetDescription().CStr();
}
