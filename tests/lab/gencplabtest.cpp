// The product's GenCP with the camera of the lab, over a frame grabber's port, its speed and all.

#include "clcamerafixture.h"

#include "gencp/gencpport.h"
#include "krgenicam/krgenparameterarray.h"
#include "line/deviceline.h"
#include "line/devicelinespeed.h"
#include "parametertext.h"

namespace {

using krcamerabridge::BorrowedDevice;
using krcamerabridge::DeviceLine;
using krcamerabridge::DeviceLineSpeed;
using krcamerabridge::GenCPPort;

class GenCPPortTest : public SerialLineTest {
protected:
  explicit GenCPPortTest(const std::string& aCameraKeys = "protocol: GenCP", const std::string& aPortKeys = {})
      : SerialLineTest(MakeGrabberLab(aCameraKeys, aPortKeys), std::make_shared<JumpingClock>()) {}
  void SetUp() override {
    ASSERT_TRUE(Open(kMonoMAC, mDevice).IsOK());
    mAdapter.emplace(*mDevice);
    mLine.emplace(std::make_unique<DeviceLineSpeed>(BorrowedDevice(mDevice.get()), KrDeviceSerial::Serial0));
    ASSERT_TRUE(mLine->Open(*mAdapter, KrDeviceSerial::Serial0).IsOK());
    mCamera.emplace(*mLine);
  }
  void TearDown() override {
    mArray.reset();
    mCamera.reset();
    mLine.reset();
  }

  void Connect() {
    KrStringList ids;
    KrResult result = mCamera->GetXMLIDs(ids, {});
    ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    ASSERT_GE(ids.GetCount(), 1u);
    KrGenDescription description;
    result = mCamera->Connect(ids[0], description, {});
    ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    result = KrGenParameterArray::Open(description, *mCamera, {GenCPPort::kAccessTimeoutMs}, mArray);
    ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  }
  void ExpectWidthCanBeSet() {
    KrGenInteger* const width = mArray->GetInteger("Width");
    ASSERT_NE(width, nullptr);
    std::int64_t value = 0;
    KrResult result = width->SetValue(256);
    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    mArray->InvalidateCache();
    result = width->GetValue(value);
    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    EXPECT_EQ(value, 256);
  }
  KrString GetRate() { return ReadText(GetArray(), "Uart0BaudRate"); }

  std::optional<KrDeviceAdapter> mAdapter;
  std::optional<DeviceLine> mLine;
  std::optional<GenCPPort> mCamera;
  std::unique_ptr<KrGenParameterArray> mArray;
};

class PendingGenCPPortTest : public GenCPPortTest {
protected:
  PendingGenCPPortTest() : GenCPPortTest("protocol: GenCP, pending: 500") {}
};

} // namespace

TEST_F(GenCPPortTest, Camera_IsConnectedAndItsParametersCanBeSet) {
  Connect();

  ExpectWidthCanBeSet();
  EXPECT_GT(mLine->GetBytesReceived(), mLine->GetBytesSent());
}

TEST_F(GenCPPortTest, Speed_IsRaisedForTheConnectionAndPutBackBehindIt) {
  const KrString before = GetRate();
  Connect();

  EXPECT_NE(GetRate(), before);

  mArray.reset();
  mCamera->Disconnect();

  EXPECT_EQ(GetRate(), before);
  Connect();
}

TEST_F(GenCPPortTest, LostDevice_IsConnectionLost) {
  Connect();
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  std::uint8_t byte = 0;

  EXPECT_EQ(mCamera->Read(0, &byte, 1, kGenerousLimitMs), KrResult::Code::ConnectionLost);
}

TEST_F(PendingGenCPPortTest, CameraThatNeedsTimeForItsWrites_IsGivenIt) {
  Connect();

  ExpectWidthCanBeSet();
}
