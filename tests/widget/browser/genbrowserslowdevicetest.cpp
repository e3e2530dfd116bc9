// Editing in the feature browser's window on a device that becomes slow, or falls silent.

#include "browserfixture.h"
#include "duringmodalloop.h"

#include <QLineEdit>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace krgui {

namespace {

class SlowDevice : public GenBrowserTest {
protected:
  SlowDevice() { mCamera.Poke(kWidthAddress, {64, 0, 0, 0}); }

  void OpenEditorOfWidth() {
    Open();
    ASSERT_TRUE(AwaitValue("Width", "64"));
    mWindow.GetGrid().Select(mWindow.FindRow("Width"));
    ASSERT_TRUE(WaitFor([this] { return FindEditor() != nullptr && FindEditor()->text() == "64"; }));
  }
  QLineEdit* FindEditor() const {
    for (QLineEdit* each : mWindow.GetGrid().viewport()->findChildren<QLineEdit*>()) {
      if (each->isVisible())
        return each;
    }
    return nullptr;
  }
  void TypeAndEnter(const char* aText) {
    FindEditor()->setFocus();
    FindEditor()->selectAll();
    QTest::keyClicks(FindEditor(), QLatin1String(aText));
    QTest::keyClick(FindEditor(), Qt::Key_Return);
  }
  /// From now on a register takes 20 ms; who asks from this thread is counted.
  void BecomeSlow() {
    mCamera.port.SetFault([this, here = std::this_thread::get_id()](const RegisterAccessRecord&) {
      mAccessesHere += std::this_thread::get_id() == here ? 1 : 0;
      std::unique_lock lock(mMutex);
      mNever.wait_for(lock, std::chrono::milliseconds(20));
      return KrResult();
    });
  }
  /// Every access ends with the time limit.
  void FallSilent() {
    mCamera.port.SetFault([](const RegisterAccessRecord&) {
      return KrResult(KrResult::Code::TimeLimitExceeded, "The device did not answer in time.");
    });
  }

  std::atomic<int> mAccessesHere = 0;
  std::mutex mMutex; ///< Guards nothing: what is waited for never comes.
  std::condition_variable mNever;
};

} // namespace

TEST_F(SlowDevice, ValuesThatChange_ReachTheOpenEditorWithoutTheWindowAskingTheDevice) {
  OpenEditorOfWidth();
  BecomeSlow();

  for (const std::uint8_t value : {65, 66}) {
    mCamera.Poke(kWidthAddress, {value, 0, 0, 0});
    EXPECT_TRUE(WaitFor([&] { return FindEditor() != nullptr && FindEditor()->text() == QString::number(value); }));
  }

  EXPECT_EQ(mAccessesHere, 0);
  EXPECT_TRUE(mWindow.Close().IsOK());
}

TEST_F(SlowDevice, EditInTheMiddle_IsKeptAndWrittenAllTheSame) {
  OpenEditorOfWidth();
  BecomeSlow();
  FindEditor()->setFocus();
  FindEditor()->selectAll();
  QTest::keyClicks(FindEditor(), "70");
  mCamera.Poke(kWidthAddress, {65, 0, 0, 0});
  ASSERT_TRUE(AwaitValue("Width", "65"));
  EXPECT_EQ(FindEditor()->text(), "70");

  QTest::keyClick(FindEditor(), Qt::Key_Return);

  EXPECT_TRUE(WaitFor([this] { return mCamera.Peek(kWidthAddress, 1).front() == 70; }));
  EXPECT_TRUE(AwaitValue("Width", "70"));
}

TEST_F(SlowDevice, WriteToASilentDevice_EndsAndShowsWhy) {
  OpenEditorOfWidth();
  FallSilent();
  QString message;
  DuringNextModalLoop([&](QWidget& aBox) {
    message = aBox.findChild<QLabel*>(QStringLiteral("text"))->text();
    QTest::keyClick(&aBox, Qt::Key_Escape);
  });

  TypeAndEnter("70");

  EXPECT_TRUE(WaitFor([&] { return !message.isEmpty(); }));
  EXPECT_TRUE(message.startsWith("Error writing value:\n")) << message.toStdString();
  EXPECT_TRUE(message.contains("The device did not answer in time.")) << message.toStdString();
  EXPECT_FALSE(mWindow.HasChanged());
  const TreeItemData& node = *mWindow.GetGrid().GetTree().FindFeature(mWindow.FindRow("Width"));
  EXPECT_TRUE(WaitFor([&] { return node.HasError(); }));
  EXPECT_TRUE(mWindow.Close().IsOK());
}

TEST_F(SlowDevice, WindowOfASilentDevice_ClosesInTheMiddleOfAnEdit) {
  OpenEditorOfWidth();
  FindEditor()->setFocus();
  QTest::keyClicks(FindEditor(), "70");
  FallSilent();
  (void)mCamera.port.TakeRecords();

  EXPECT_TRUE(mWindow.Close().IsOK());

  EXPECT_FALSE(mWindow.IsOpen());
  EXPECT_EQ(mCamera.port.CountWrites(), 0U);
}

} // namespace krgui
