#include "acquisition/returnsearch.h"

#include "await.h"
#include "krsystem/ipv4address.h"
#include "scriptedtransport.h"

#include <gtest/gtest.h>

#include <future>

using krviewer::CameraInfo;

namespace {

constexpr const char* kAddress = "192.168.1.20";

// A camera that only its address leads to, and rounds that end when they are cancelled.
class ReturnSearchTest : public testing::Test {
protected:
  ReturnSearchTest() {
    mTransport->AddInterface(krsystem::NetworkAdapterFields());
    mTransport->SetAtAddress(*krsystem::ParseIPv4(kAddress), 0, MakeFields());
    mTransport->SetScript([this](ScriptedTransport::Point aPoint, const std::stop_token& aCancel) {
      if (aPoint == ScriptedTransport::Point::Begin)
        mRound.Wait(aCancel);
    });
    krsystem::RegisterTransport(mTransport);
  }
  ~ReturnSearchTest() override { krsystem::UnregisterTransport(mTransport); }

  static krsystem::GEVFields MakeFields() {
    krsystem::GEVFields fields;
    fields.uniqueID = fields.macAddress = "02:00:00:00:00:01";
    fields.ipAddress = kAddress;
    return fields;
  }
  std::future<CameraInfo> BeginLook() {
    return std::async(std::launch::async, [this] { return krviewer::LookForCamera(mCamera, mStop.get_token()); });
  }
  // Whether a look ends though nobody ends its round but a cancel; it is ended in any case.
  bool EndsByItself(const std::future<CameraInfo>& aLook) {
    const bool isOver = aLook.wait_for(krtest::GetGenerousLimit()) == std::future_status::ready;
    mRound.Open();
    return isOver;
  }

  const KrDeviceInfoGEV mCamera{MakeFields()};
  const std::shared_ptr<ScriptedTransport> mTransport = std::make_shared<ScriptedTransport>();
  Gate mRound;
  std::stop_source mStop;
};

} // namespace

TEST_F(ReturnSearchTest, CameraThatNoRoundHears_IsFoundAtItsFormerAddress) {
  mRound.Open();

  const CameraInfo found = BeginLook().get();

  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->GetUniqueID(), mCamera.GetUniqueID());
}

TEST_F(ReturnSearchTest, StopWhileTheRoundRuns_EndsItAndLeavesTheAddressOut) {
  std::future<CameraInfo> look = BeginLook();
  ASSERT_TRUE(mRound.AwaitReached());

  mStop.request_stop();

  EXPECT_TRUE(EndsByItself(look));
  EXPECT_EQ(look.get(), nullptr);
}

TEST_F(ReturnSearchTest, StopBeforeTheRoundBegins_EndsIt) {
  mStop.request_stop();

  std::future<CameraInfo> look = BeginLook();

  EXPECT_TRUE(EndsByItself(look));
  EXPECT_EQ(look.get(), nullptr);
}
