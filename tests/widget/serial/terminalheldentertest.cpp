// Enter held down in the serial terminal: it sends once, and its repeats do nothing, wherever the focus is, whatever
// surrounds the terminal, and whether or not the toolkit marks them.

#include "terminalfixture.h"
#include "windowwait.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QVBoxLayout>

namespace krgui {

namespace {

class HeldEnter : public TerminalTest {
protected:
  /// A key as a control gets it from the window system; 0 where that counts no time.
  static void GiveKey(QWidget& aControl, QEvent::Type aType, bool aIsMarked, quint64 aTimeMs = 0,
                      Qt::Key aKey = Qt::Key_Return) {
    QKeyEvent event(aType, aKey, Qt::NoModifier, QStringLiteral("\r"), aIsMarked);
    event.setTimestamp(aTimeMs);
    QCoreApplication::sendEvent(&aControl, &event);
  }
  /// Five times the release and press that a key is reported as while it is held.
  static void Repeat(QWidget& aControl, bool aIsMarked, quint64 aTimeMs, Qt::Key aKey = Qt::Key_Return) {
    for (quint64 time = aTimeMs; time < aTimeMs + 200; time += 40) {
      GiveKey(aControl, QEvent::KeyRelease, aIsMarked, time, aKey);
      GiveKey(aControl, QEvent::KeyPress, aIsMarked, time, aKey);
    }
  }
  /// From the press to the release.
  static void Hold(QWidget& aControl, bool aIsMarked, quint64 aTimeMs, Qt::Key aKey = Qt::Key_Return) {
    GiveKey(aControl, QEvent::KeyPress, false, aTimeMs, aKey);
    Repeat(aControl, aIsMarked, aTimeMs + 500, aKey);
    GiveKey(aControl, QEvent::KeyRelease, false, aTimeMs + 800, aKey);
  }
  std::size_t CountWritesAfterAll() {
    // What was sent before it is written before it.
    const std::string end = "end " + std::to_string(++mEnds);
    Type(id::kData, QString::fromStdString(end));
    Click(id::kSend);
    EXPECT_TRUE(WaitFor([&] { return mLine->GetSent().ends_with(end + "\r"); }));
    return mLine->GetWrites().size() - 1;
  }
  /// Answers every box from now on to the last one, each after the key was repeated in it, and counts them.
  void RepeatOverBoxes(bool aIsMarked) {
    DuringNextModalLoop([this, aIsMarked](QWidget& aBox) {
      ++mBoxCount;
      Repeat(aBox, aIsMarked, 1500);
      EXPECT_EQ(QApplication::activeModalWidget(), &aBox) << "the repeats answer no question";
      if (!mIsLastBox)
        RepeatOverBoxes(aIsMarked);
      QTest::keyClick(&aBox, Qt::Key_Escape);
    });
  }

  int mEnds = 0;
  int mBoxCount = 0;
  bool mIsLastBox = false;
};

/// A dialog of the application's with a default button, in which the terminal is.
class HostDialog : public QDialog {
public:
  explicit HostDialog(KrSerialTerminalWnd& aTerminal) {
    EXPECT_TRUE(aTerminal.CreateIn(this).IsOK());
    auto* layout = new QVBoxLayout(this);
    auto* box = new QDialogButtonBox(QDialogButtonBox::Ok);
    layout->addWidget(aTerminal.GetWidget());
    layout->addWidget(box);
    box->button(QDialogButtonBox::Ok)->setDefault(true);
    QObject::connect(box, &QDialogButtonBox::accepted, this, [this] { ++presses; });
    show();
    EXPECT_TRUE(krtest::AwaitActive(this));
  }

  int presses = 0; ///< Of the default button.
};

} // namespace

TEST_F(HeldEnter, InTheDataField_SendsOnceAndAgainWhenPressedAnew) {
  for (const bool isMarked : {true, false}) {
    mWindow = std::make_unique<KrSerialTerminalWnd>();
    Open();
    Type(id::kData, "A");
    const std::size_t before = mLine->GetWrites().size();

    Hold(Get(id::kData), isMarked, 1000, Qt::Key_Return);
    Hold(Get(id::kData), isMarked, 2000, Qt::Key_Enter);

    EXPECT_EQ(CountWritesAfterAll(), before + 2) << (isMarked ? "marked" : "not marked");
    EXPECT_TRUE(mWindow->GetWidget() != nullptr) << "the repeated keys close nothing";
  }
}

TEST_F(HeldEnter, OnAButton_SendsOnceAndDoesNotPressIt) {
  Open();
  mLine->Receive("text");
  ASSERT_TRUE(AwaitText(u"text"));
  Check(id::kEcho, false);
  Type(id::kData, "A");
  std::size_t holds = 0;
  for (const bool isMarked : {true, false}) {
    for (const int button : {id::kSend, id::kClear, id::kBrowse}) {
      Get(button).setFocus();
      ++holds;
      Hold(Get(button), isMarked, 1000 * holds);
    }
  }

  EXPECT_EQ(GetText(), u"text") << "the button Clear was not pressed";
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "no file is asked for";
  EXPECT_EQ(CountWritesAfterAll(), holds);
}

TEST_F(HeldEnter, SecondKeyDownWithoutARelease_DoesNothing) {
  Open();
  Type(id::kData, "A");
  Get(id::kSend).setFocus();

  GiveKey(Get(id::kSend), QEvent::KeyPress, false);
  GiveKey(Get(id::kSend), QEvent::KeyPress, false);

  EXPECT_EQ(CountWritesAfterAll(), 1U);
}

TEST_F(HeldEnter, ThatOpensAnErrorBox_ShowsItOnce) {
  for (const bool isMarked : {true, false}) {
    mWindow = std::make_unique<KrSerialTerminalWnd>();
    Open();
    Check(id::kSendHexadecimal, true);
    Type(id::kData, "G");
    mBoxCount = 0;
    mIsLastBox = false;
    RepeatOverBoxes(isMarked);

    GiveKey(Get(id::kData), QEvent::KeyPress, false, 1000);
    Repeat(Get(id::kData), isMarked, 2500);
    GiveKey(Get(id::kData), QEvent::KeyRelease, false, 3000);

    EXPECT_EQ(mBoxCount, 1) << (isMarked ? "marked" : "not marked");
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    mIsLastBox = true;
    GiveKey(Get(id::kData), QEvent::KeyPress, false, 4000);
    EXPECT_EQ(mBoxCount, 2) << "pressed anew";
  }
}

TEST_F(HeldEnter, ReleasedOverABox_IsTakenAgainAfterwards) {
  Open();
  Check(id::kSendHexadecimal, true);
  Type(id::kData, "G");
  DuringNextModalLoop([](QWidget& aBox) {
    QTest::keyRelease(&aBox, Qt::Key_Return);
    QTest::keyClick(&aBox, Qt::Key_Escape);
  });
  QTest::keyPress(&Get(id::kData), Qt::Key_Return);

  Type(id::kData, "41");
  QTest::keyClick(&Get(id::kData), Qt::Key_Return);

  EXPECT_TRUE(AwaitSent("A\r"));
}

TEST_F(HeldEnter, InATerminalWithinADialog_DoesNotPressTheButtonOfThat) {
  ASSERT_TRUE(mWindow->SetDevice(&mDevice).IsOK());
  HostDialog host(*mWindow);
  Type(id::kData, "A");

  Get(id::kData).setFocus();
  Hold(Get(id::kData), true, 1000);
  Hold(Get(id::kData), false, 2000);

  EXPECT_EQ(host.presses, 0);
  EXPECT_EQ(CountWritesAfterAll(), 2U);
}

TEST_F(HeldEnter, ThatOpensAnErrorBoxOfATerminalWithinADialog_DoesNotPressTheButtonOfThat) {
  ASSERT_TRUE(mWindow->SetDevice(&mDevice).IsOK());
  HostDialog host(*mWindow);
  Check(id::kSendHexadecimal, true);
  Type(id::kData, "G");
  Get(id::kData).setFocus();
  AnswerBoxes(1);

  Hold(Get(id::kData), true, 1000);

  EXPECT_EQ(mBoxes.size(), 1U);
  EXPECT_EQ(host.presses, 0);
}

TEST_F(HeldEnter, PressedOutsideOfATerminalWithinADialog_StaysTheOthers) {
  ASSERT_TRUE(mWindow->SetDevice(&mDevice).IsOK());
  HostDialog host(*mWindow);
  Type(id::kData, "A");
  Get(id::kData).setFocus();
  Hold(Get(id::kData), true, 1000);

  // The focus comes to the terminal while the key is down.
  GiveKey(host, QEvent::KeyPress, false, 3000);
  const int before = host.presses;
  Repeat(Get(id::kData), true, 3500);

  EXPECT_GT(host.presses, before) << "as if the terminal were not there";
  EXPECT_EQ(CountWritesAfterAll(), 1U);
}

} // namespace krgui
