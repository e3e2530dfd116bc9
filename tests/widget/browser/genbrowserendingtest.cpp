// The feature browser's window at its end: keys, close box, the program, a parent, deletion, and what is left of it.

#include "browserfixture.h"
#include "duringmodalloop.h"
#include "windowwait.h"

#include <QLineEdit>
#include <QTimer>
#include <QVBoxLayout>

#include <functional>

namespace krgui {

namespace {

class Ending : public GenBrowserTest {
protected:
  /// Types a value that the device refuses, ends the window while the message box says so, and finds out whether that
  /// ended the box.
  [[nodiscard]] bool EndsItsMessageBox(const std::function<void()>& aEnd) {
    mCamera.port.SetFault([](const RegisterAccessRecord& aRecord) {
      return aRecord.isWrite ? KrResult(KrResult::Code::TimeLimitExceeded, "The device did not answer.") : KrResult();
    });
    bool hasEnded = false;
    DuringNextModalLoop([&](QWidget& aBox) {
      const QPointer<QWidget> box(&aBox);
      aEnd();
      hasEnded = box.isNull() || !box->isVisible();
      if (!hasEnded)
        QTest::keyClick(box, Qt::Key_Escape);
    });
    QLineEdit* editor = OpenEditor("Width");
    if (editor == nullptr)
      return false;
    QTest::keyClicks(editor, "3");
    QTest::keyClick(editor, Qt::Key_Return);
    return WaitFor([&] { return hasEnded; });
  }
  /// The edit box of a row, with the focus and all of its text selected; null where none comes.
  QLineEdit* OpenEditor(const char* aName) {
    if (!WaitFor([&] { return mWindow.GetValue(aName) == "0"; }))
      return nullptr;
    mWindow.GetGrid().Select(mWindow.FindRow(aName));
    QLineEdit* editor = nullptr;
    (void)WaitFor([&] {
      for (QLineEdit* each : mWindow.GetGrid().viewport()->findChildren<QLineEdit*>()) {
        if (each->isVisible())
          editor = each;
      }
      return editor != nullptr;
    });
    if (editor != nullptr) {
      editor->setFocus();
      editor->selectAll();
    }
    return editor;
  }
};

struct Host {
  Host() : widget(std::make_unique<QWidget>()) {
    auto* layout = new QVBoxLayout(widget.get());
    layout->setContentsMargins(0, 0, 0, 0);
    widget->resize(400, 500);
  }
  void Take(TestBrowserWnd& aWindow) const {
    ASSERT_TRUE(aWindow.CreateIn(widget.get()).IsOK());
    widget->layout()->addWidget(aWindow.GetWidget());
    widget->show();
    ASSERT_TRUE(krtest::AwaitExposed(widget.get()));
    ASSERT_TRUE(krtest::AwaitActive(widget.get()));
  }
  std::unique_ptr<QWidget> widget;
};

} // namespace

TEST_F(Ending, EnterKey_OfAModelessWindow_ClosesNothing) {
  Open();

  Press(Qt::Key_Return);
  QTest::keyClick(mWindow.GetWidget(), Qt::Key_Return);

  EXPECT_TRUE(mWindow.IsOpen());
}

TEST_F(Ending, EnterKey_OfAModalWindow_ClosesNothing) {
  mWindow.SetGenParameterArray(mCamera.array.get());
  bool isStillOpen = false;
  DuringNextModalLoop([&](QWidget& aDialog) {
    QTest::keyClick(&aDialog, Qt::Key_Return);
    Press(Qt::Key_Enter);
    isStillOpen = mWindow.IsOpen() && aDialog.isVisible();
    QTest::keyClick(&aDialog, Qt::Key_Escape);
  });

  EXPECT_EQ(mWindow.ShowModal(0).GetCode(), KrResult::Code::Cancelled);

  EXPECT_TRUE(isStillOpen);
}

TEST_F(Ending, EscapeKey_OfAModelessWindow_ClosesIt) {
  Open();

  QTest::keyClick(mWindow.GetWidget(), Qt::Key_Escape);

  EXPECT_FALSE(mWindow.IsOpen());
}

TEST_F(Ending, CloseBox_OfAModelessWindow_ClosesIt) {
  Open();

  mWindow.GetWidget()->close();

  EXPECT_FALSE(mWindow.IsOpen());
}

TEST_F(Ending, CloseBoxOfAModalWindow_IsCancelAndCloseIsOK) {
  mWindow.SetGenParameterArray(mCamera.array.get());

  QTimer::singleShot(0, qApp, [this] { mWindow.GetWidget()->close(); });
  EXPECT_EQ(mWindow.ShowModal(0).GetCode(), KrResult::Code::Cancelled);
  QTimer::singleShot(0, qApp, [this] { (void)mWindow.Close(); });
  EXPECT_TRUE(mWindow.ShowModal(0).IsOK());
}

TEST_F(Ending, Close_TakesTheRowsAwayBeforeItReturns) {
  Open();
  ASSERT_TRUE(AwaitValue("Gain", "1.5"));

  ASSERT_TRUE(mWindow.Close().IsOK());
  mCamera.array.reset();
  DeleteWhatIsLeft();

  EXPECT_FALSE(mWindow.IsOpen());
}

TEST_F(Ending, ChangedFlag_SurvivesClosingAndReopeningUntilItIsReset) {
  Open();
  mWindow.GetGrid().SetChanged(true);
  ASSERT_TRUE(mWindow.Close().IsOK());
  EXPECT_TRUE(mWindow.HasChanged());

  Open();
  EXPECT_TRUE(mWindow.HasChanged());
  mWindow.ResetChanged();
  EXPECT_FALSE(mWindow.HasChanged());

  ASSERT_TRUE(mWindow.Close().IsOK());
  EXPECT_FALSE(mWindow.HasChanged());
}

TEST_F(Ending, ValueThatTheUserWrites_SetsTheChangedFlag) {
  Open();
  QLineEdit* editor = OpenEditor("DigitalGainSelector");
  ASSERT_NE(editor, nullptr);

  QTest::keyClicks(editor, "3");
  QTest::keyClick(editor, Qt::Key_Return);

  EXPECT_TRUE(WaitFor([this] { return mWindow.HasChanged(); }));
  std::int64_t value = 0;
  EXPECT_TRUE(mCamera.Integer("DigitalGainSelector").GetValue(value).IsOK());
  EXPECT_EQ(value, 3);
}

TEST_F(Ending, MessageBoxOfAnEmbeddedWindow_EndsWithIt) {
  const Host host;
  mWindow.SetGenParameterArray(mCamera.array.get());
  host.Take(mWindow);

  EXPECT_TRUE(EndsItsMessageBox([this] { (void)mWindow.Close(); }));

  EXPECT_TRUE(host.widget->isVisible());
  EXPECT_FALSE(mWindow.IsOpen());
}

TEST_F(Ending, MessageBoxOfAnEmbeddedWindow_EndsWithTheHost) {
  Host host;
  mWindow.SetGenParameterArray(mCamera.array.get());
  host.Take(mWindow);

  EXPECT_TRUE(EndsItsMessageBox([&] { host.widget.reset(); }));

  EXPECT_FALSE(mWindow.IsOpen());
}

TEST_F(Ending, MessageBoxOfAWindow_EndsWithIt) {
  Open();

  EXPECT_TRUE(EndsItsMessageBox([this] { (void)mWindow.Close(); }));

  EXPECT_FALSE(mWindow.IsOpen());
}

TEST_F(Ending, AnotherArrayWhileClosed_ClearsTheChangedFlag) {
  Open();
  mWindow.GetGrid().SetChanged(true);
  ASSERT_TRUE(mWindow.Close().IsOK());

  mWindow.SetGenParameterArray(nullptr);

  EXPECT_FALSE(mWindow.HasChanged());
}

TEST_F(Ending, DeletionOfAnOpenWindow_LetsTheArrayGo) {
  auto window = std::make_unique<TestBrowserWnd>();
  window->SetGenParameterArray(mCamera.array.get());
  ASSERT_TRUE(window->ShowModeless(0).IsOK());

  window.reset();
  mCamera.array.reset();
  DeleteWhatIsLeft();
}

TEST_F(Ending, ParentThatDies_TakesTheWindowAlongAndLetsTheArrayGo) {
  Host host;
  mWindow.SetGenParameterArray(mCamera.array.get());
  host.Take(mWindow);
  ASSERT_TRUE(AwaitValue("Gain", "1.5"));

  host.widget.reset();
  mCamera.array.reset();

  EXPECT_FALSE(mWindow.IsOpen());
}

TEST_F(Ending, EmbeddedWindow_StaysOpenOnEnterAndEscape) {
  Host host;
  mWindow.SetGenParameterArray(mCamera.array.get());
  host.Take(mWindow);

  QTest::keyClick(mWindow.GetWidget(), Qt::Key_Return);
  QTest::keyClick(mWindow.GetWidget(), Qt::Key_Escape);

  EXPECT_TRUE(mWindow.IsOpen());
  EXPECT_EQ(mWindow.GetRows(), kBeginnerRows);
}

TEST_F(Ending, EmbeddedWindow_HasItsSearchRowByCtrlFAndClosesItByEscape) {
  Host host;
  mWindow.SetGenParameterArray(mCamera.array.get());
  host.Take(mWindow);
  mWindow.GetGrid().setFocus();

  Press(Qt::Key_F, Qt::ControlModifier);
  EXPECT_TRUE(mWindow.GetSearchBar().isVisible());
  Press(Qt::Key_Escape);

  EXPECT_FALSE(mWindow.GetSearchBar().isVisible());
  EXPECT_TRUE(mWindow.IsOpen());
}

TEST_F(Ending, OpeningAgainInEachWay_ShowsTheRows) {
  Host host;
  mWindow.SetGenParameterArray(mCamera.array.get());
  for (int round = 0; round < 3; ++round) {
    ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());
    EXPECT_EQ(mWindow.GetRows(), kBeginnerRows);
    ASSERT_TRUE(mWindow.Close().IsOK());
    ASSERT_TRUE(mWindow.CreateIn(host.widget.get()).IsOK());
    EXPECT_EQ(mWindow.GetRows(), kBeginnerRows);
    ASSERT_TRUE(mWindow.Close().IsOK());
    QTimer::singleShot(0, qApp, [this] {
      EXPECT_EQ(mWindow.GetRows(), kBeginnerRows);
      (void)mWindow.Close();
    });
    EXPECT_TRUE(mWindow.ShowModal(0).IsOK());
  }
}

TEST_F(Ending, ClosedAtEveryStep_LeavesNothingBehind) {
  const std::vector<std::function<void()>> steps = {
      [] {},
      [this] { mWindow.GetGrid().Select(mWindow.FindRow("Width")); },
      [this] { Press(Qt::Key_F, Qt::ControlModifier); },
      [this] { mWindow.GetVisibilityList().setCurrentIndex(2); },
      [this] { mWindow.SetRefreshMode(KrGenRefresh::Polling); },
      [this] { mWindow.SetRefreshMode(KrGenRefresh::Manual); },
      [this] { mWindow.Click("Refresh"); },
      [this] { mWindow.Click("Collapse"); },
      [this] { (void)mWindow.DoEvents(); },
  };
  for (std::size_t last = 0; last < steps.size(); ++last) {
    Open();
    for (std::size_t step = 0; step <= last; ++step)
      steps[step]();
    ASSERT_TRUE(mWindow.Close().IsOK()) << last;
    EXPECT_EQ(mWindow.GetRows(), "closed");
  }
  mCamera.array.reset();
  DeleteWhatIsLeft();
}

TEST_F(Ending, HostWithoutLoop_SeesValuesByDoEvents) {
  mWindow.SetGenParameterArray(mCamera.array.get());
  ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());

  while (mWindow.GetValue("Gain") != "1.5")
    ASSERT_NE(mWindow.DoEvents().GetCode(), KrResult::Code::WrongState);

  EXPECT_TRUE(mWindow.IsOpen());
}

} // namespace krgui
