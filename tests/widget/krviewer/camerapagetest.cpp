// A camera's page: what its state makes of entries, title and message.

#include "viewerfixture.h"

using krviewer::AcquisitionState;

namespace {

constexpr const char* kBusyMAC = "02:4b:52:00:78:10";

class CameraPageTest : public ViewerTest {
protected:
  void SetUp() override { Begin(); }
  bool AwaitState(AcquisitionState aState) {
    return Await([=, this] { return GetPage() && GetPage()->GetProgress().state == aState; });
  }
};

} // namespace

TEST_F(CameraPageTest, StopAndStart_ByTheirKeys) {
  OpenStreaming();
  ASSERT_TRUE(Await([this] { return IsOffered("stop"); }));
  EXPECT_FALSE(IsOffered("start"));

  Press(Qt::Key_F5, Qt::ShiftModifier);
  EXPECT_TRUE(AwaitState(AcquisitionState::Connected));
  EXPECT_TRUE(Await([this] { return IsOffered("start") && !IsOffered("stop"); }));
  EXPECT_TRUE(Await([this] { return GetWindow().windowTitle().endsWith("stopped"); }));

  Press(Qt::Key_F5);
  EXPECT_TRUE(AwaitState(AcquisitionState::Streaming));
}

TEST_F(CameraPageTest, SingleFrame_IsOneMore) {
  OpenStreaming();
  ASSERT_TRUE(Choose("stop"));
  ASSERT_TRUE(AwaitState(AcquisitionState::Connected));
  const std::uint64_t frames = GetPage()->GetProgress().figures.GetFrames();

  ASSERT_TRUE(Choose("single"));

  EXPECT_TRUE(Await([&] {
    return GetPage()->GetProgress().figures.GetFrames() == frames + 1 &&
           GetPage()->GetProgress().state == AcquisitionState::Connected;
  }));
}

TEST_F(CameraPageTest, Disconnected_IsFreeForOthersUntilConnected) {
  OpenStreaming();

  ASSERT_TRUE(Choose("disconnect"));

  EXPECT_TRUE(GetMessage(*GetPage()).contains("is disconnected")) << GetMessage(*GetPage()).toStdString();
  EXPECT_TRUE(Await([this] { return GetWindow().windowTitle().endsWith("disconnected"); }));
  {
    std::unique_ptr<KrDevice> device;
    EXPECT_TRUE(LabTest::Open(kMonoMAC, device).IsOK());
  }
  ASSERT_TRUE(Choose("connect"));
  EXPECT_TRUE(AwaitState(AcquisitionState::Streaming));
  EXPECT_TRUE(Await([this] { return GetMessage(*GetPage()).isEmpty(); }));
}

TEST_F(CameraPageTest, CameraLost_IsSaidSoUntilItIsBack) {
  OpenStreaming();

  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  EXPECT_TRUE(Await([this] { return GetMessage(*GetPage()).contains("lost"); }));
  EXPECT_TRUE(Await([this] { return GetWindow().windowTitle().contains("camera lost"); }));

  ASSERT_TRUE(mLab->Restore(kMonoMAC).IsOK());
  EXPECT_TRUE(AwaitState(AcquisitionState::Streaming));
  EXPECT_TRUE(Await([this] { return GetMessage(*GetPage()).isEmpty(); }));
}

TEST_F(CameraPageTest, LostCameraDisconnected_IsNotWaitedFor) {
  OpenStreaming();
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  ASSERT_TRUE(Await([this] { return GetMessage(*GetPage()).contains("lost"); }));

  ASSERT_TRUE(Click(*GetPage(), "&Disconnect"));

  EXPECT_TRUE(GetPage()->IsDisconnected());
  EXPECT_TRUE(GetMessage(*GetPage()).contains("is disconnected"));
}

TEST_F(CameraPageTest, CameraThatCannotBeHad_SaysWhyAndIsTriedAgain) {
  Open(kForeignMAC);

  EXPECT_TRUE(AwaitState(AcquisitionState::Failed));
  EXPECT_TRUE(Await([this] { return GetMessage(*GetPage()).contains("subnet"); }))
      << GetMessage(*GetPage()).toStdString();
  ASSERT_TRUE(Click(*GetPage(), "&Try Again"));
  EXPECT_TRUE(AwaitState(AcquisitionState::Failed));
}

TEST_F(CameraPageTest, CameraOfAnotherHost_SaysWhyAndOffersTheFinder) {
  Open(kBusyMAC);

  EXPECT_TRUE(Await([this] { return GetMessage(*GetPage()).contains("cannot be shown"); }));

  EXPECT_TRUE(Click(*GetPage(), "&Find a Camera…"));
}

TEST_F(CameraPageTest, ClosedInEachState_EndsAndFreesTheCamera) {
  struct Row {
    const char* name;
    std::function<void()> prepare;
  };
  for (const Row& row :
       {Row{"connecting", [] {}}, Row{"streaming", [this] { EXPECT_TRUE(AwaitState(AcquisitionState::Streaming)); }},
        Row{"stopped", [this] { EXPECT_TRUE(Choose("stop")); }},
        Row{"lost",
            [this] {
              EXPECT_TRUE(AwaitState(AcquisitionState::Streaming));
              EXPECT_TRUE(mLab->Lose(kMonoMAC).IsOK());
              EXPECT_TRUE(AwaitState(AcquisitionState::Lost));
            }},
        Row{"disconnected", [this] { EXPECT_TRUE(Choose("disconnect")); }}}) {
    SCOPED_TRACE(row.name);
    Open(kMonoMAC);
    row.prepare();

    ASSERT_TRUE(Choose("closeCamera"));

    EXPECT_TRUE(IsFirstPageShown());
    if (row.name == std::string("lost")) {
      EXPECT_TRUE(mLab->Restore(kMonoMAC).IsOK());
    }
    std::unique_ptr<KrDevice> device;
    EXPECT_TRUE(LabTest::Open(kMonoMAC, device).IsOK());
  }
}
