// What a camera's page says of a camera that cannot be had or sends nothing, and what its buttons do about it.

#include "krtransport/krsimulatedfaults.h"
#include "page/messagebar.h"
#include "viewerfixture.h"

#include <QLabel>
#include <QVBoxLayout>

#include <functional>
#include <utility>

using krviewer::AcquisitionState;

namespace {

constexpr const char* kBusyMAC = "02:4b:52:00:78:10";
constexpr const char* kForbiddenGUID = "4B5200000103";

// Takes a second of the camera's clock, in which nobody takes its frames.
KrResult WaitForCamera(KrGenParameterArray& aParameters) {
  constexpr std::int64_t kLongNs = 1'000'000'000;
  std::int64_t begin = 0;
  std::int64_t now = 0;
  KrResult read;
  while (read.IsOK() && now - begin < kLongNs) {
    read = aParameters.GetCommand("TimestampLatch")->Execute();
    if (read.IsOK())
      read = aParameters.Invalidate("TimestampLatchValue");
    if (read.IsOK())
      read = aParameters.GetInteger("TimestampLatchValue")->GetValue(now);
    begin = begin == 0 ? now : begin;
  }
  return read;
}

class CameraMessagesTest : public ViewerTest {
protected:
  void SetUp() override { Begin(); }
  bool AwaitMessage(const char* aPart) {
    return Await([=, this] { return GetPage() && GetMessage(*GetPage()).contains(QString::fromUtf8(aPart)); });
  }
  std::string GetText() { return GetMessage(*GetPage()).toStdString(); }
  /// Sets an enumeration of the camera as its features would.
  void Set(const char* aName, const char* aEntry) {
    Change([=](KrGenParameterArray& aParameters) { return aParameters.GetEnum(aName)->SetEntry(aEntry); });
  }
  /// As many as a computer takes that has much else to do.
  void SendFewFrames() {
    Change([](KrGenParameterArray& aParameters) { return aParameters.GetFloat("AcquisitionFrameRate")->SetValue(2); });
  }

private:
  void Change(std::function<KrResult(KrGenParameterArray&)> aChange) {
    std::optional<KrResult> end;
    GetPage()->Do({.run = std::move(aChange), .then = [&](const KrResult& aResult) { end = aResult; }});
    ASSERT_TRUE(Await([&] { return end.has_value(); }) && end->IsOK());
  }
};

} // namespace

TEST_F(CameraMessagesTest, MessageOfSeveralLines_HasRoomForThemAtOnce) {
  QWidget page;
  auto* const bar = new krviewer::MessageBar(&page);
  auto* const layout = new QVBoxLayout(&page);
  layout->addWidget(bar);
  layout->addStretch(1);
  page.resize(500, 300);
  page.show();

  bar->Say({.text = QStringLiteral("word ").repeated(60)});

  const auto& label = *bar->findChild<QLabel*>(QStringLiteral("message"));
  EXPECT_GT(label.heightForWidth(label.width()), 2 * label.fontMetrics().height());
  EXPECT_GE(label.height(), label.heightForWidth(label.width()));
}

TEST_F(CameraMessagesTest, CameraThatWaitsForASoftwareTrigger_IsTriggeredByTheButton) {
  OpenStreaming();
  Set("TriggerSource", "Software");
  Set("TriggerMode", "On");
  ASSERT_TRUE(AwaitMessage("waits for a trigger (Software)")) << GetText();
  const std::uint64_t frames = GetPage()->GetProgress().figures.GetFrames();

  ASSERT_TRUE(Click(*GetPage(), "Tri&gger"));

  EXPECT_TRUE(Await([&] { return GetPage()->GetProgress().figures.GetFrames() > frames; }));
  EXPECT_TRUE(Await([this] { return GetMessage(*GetPage()).isEmpty(); })) << GetText();
}

TEST_F(CameraMessagesTest, TriggerOfAnotherSource_IsSaidWhenItIsAskedForByItsKey) {
  OpenStreaming();
  Set("TriggerSource", "Line1");
  ASSERT_TRUE(Await([this] { return IsOffered("trigger"); }));

  Press(Qt::Key_F7);

  EXPECT_TRUE(AwaitMessage("TriggerSource is Line1")) << GetText();
}

TEST_F(CameraMessagesTest, CameraOfAForeignSubnet_CanBeGivenAnAddress) {
  Open(kForeignMAC);
  int asked = 0;
  QObject::connect(GetPage(), &krviewer::CameraPage::AddressWanted, GetPage(), [&] { ++asked; });

  EXPECT_TRUE(AwaitMessage("another subnet")) << GetText();
  ASSERT_TRUE(Click(*GetPage(), "Set &Address…"));

  EXPECT_EQ(asked, 1);
}

TEST_F(CameraMessagesTest, CameraThatAnotherControls_SaysSoWithoutAdviceThatNobodyCanFollow) {
  Open(kBusyMAC);

  EXPECT_TRUE(AwaitMessage("another application controls it")) << GetText();
  EXPECT_TRUE(AwaitMessage("another program")) << GetText();
  EXPECT_FALSE(GetMessage(*GetPage()).contains("reading only")) << GetText();
}

TEST_F(CameraMessagesTest, CameraWhoseDescriptionCannotBeRead_StreamsAndIsAskedForItAgain) {
  const std::shared_ptr<KrSimulatedFaults> faults = mLab->GetFaults(kMonoMAC);
  for (const std::uint64_t place : {krtransport::cameraregister::kFirstURL, krtransport::cameraregister::kSecondURL})
    faults->SilenceRegister(place);
  OpenStreaming();
  EXPECT_TRUE(AwaitMessage("features cannot be shown")) << GetText();
  faults->EndRegisterFaults();

  ASSERT_TRUE(Click(*GetPage(), "Tr&y Again"));

  EXPECT_TRUE(Await([this] { return GetPage()->IsStreaming() && GetMessage(*GetPage()).isEmpty(); })) << GetText();
}

TEST_F(CameraMessagesTest, FramesThatNobodyTakesInTime_AreSaidToBeDiscardedUntilTheyAreNot) {
  OpenStreaming();
  bool isStalled = false;

  const bool isSaid = Await([&] {
    if (!std::exchange(isStalled, true))
      GetPage()->Do({.run = WaitForCamera, .then = [&](const KrResult&) { isStalled = false; }});
    return GetMessage(*GetPage()).contains("the camera sends faster than this computer takes them");
  });
  EXPECT_TRUE(isSaid) << GetText();
  ASSERT_TRUE(Await([&] { return !isStalled; }));

  SendFewFrames();
  EXPECT_TRUE(Await([this] { return GetMessage(*GetPage()).isEmpty(); })) << GetText();
}

TEST_F(CameraMessagesTest, CameraThatBecomesSlow_IsSaidToBeUntilItIsPrompt) {
  OpenStreaming();
  SendFewFrames();
  const std::shared_ptr<KrSimulatedFaults> faults = mLab->GetFaults(kMonoMAC);

  faults->SlowRegisters(300);
  EXPECT_TRUE(AwaitMessage("slow to answer")) << GetText();
  faults->EndRegisterFaults();

  EXPECT_TRUE(Await([this] { return GetMessage(*GetPage()).isEmpty(); })) << GetText();
}

TEST_F(CameraMessagesTest, USBCameraWithoutPermission_NamesTheRule) {
  Open(kForbiddenGUID);

  EXPECT_TRUE(AwaitMessage("udev rule")) << GetText();
}

TEST_F(CameraMessagesTest, LostCamera_IsAwaitedWhereverItComesBackAndCanBeLookedForByHand) {
  OpenStreaming();
  int asked = 0;
  QObject::connect(GetPage(), &krviewer::CameraPage::FindWanted, GetPage(), [&] { ++asked; });

  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  EXPECT_TRUE(AwaitMessage("also with another address")) << GetText();
  ASSERT_TRUE(Click(*GetPage(), "Fi&nd a Camera…"));

  EXPECT_EQ(asked, 1);
  ASSERT_TRUE(mLab->Restore(kMonoMAC).IsOK());
}
