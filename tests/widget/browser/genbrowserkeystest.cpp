// The keys of the feature browser's window where the program around it has a meaning for the same ones.

#include "browser/browsersplitter.h"
#include "browserfixture.h"
#include "windowwait.h"

#include <QLineEdit>
#include <QShortcut>
#include <QVBoxLayout>

#include <map>
#include <memory>

namespace krgui {

namespace {

/// The browser in a window that has shortcuts of the same keys, beside a field of its own.
class Keys : public GenBrowserTest {
protected:
  Keys() {
    mHost.resize(500, 600);
    for (const QKeyCombination key :
         {QKeyCombination(Qt::CTRL | Qt::Key_F), QKeyCombination(Qt::Key_F5), QKeyCombination(Qt::Key_F6),
          QKeyCombination(Qt::Key_F8), QKeyCombination(Qt::Key_Escape)}) {
      const auto* shortcut = new QShortcut(QKeySequence(key), &mHost);
      QObject::connect(shortcut, &QShortcut::activated, &mHost, [this, key] { ++mHostCalls[key.toCombined()]; });
      QObject::connect(shortcut, &QShortcut::activatedAmbiguously, &mHost,
                       [this, key] { ++mHostCalls[key.toCombined()]; });
    }
  }
  void Embed() {
    auto* layout = new QVBoxLayout(&mHost);
    mField = new QLineEdit;
    layout->addWidget(mField);
    mWindow.SetGenParameterArray(mCamera.array.get());
    ASSERT_TRUE(mWindow.CreateIn(&mHost).IsOK());
    layout->addWidget(mWindow.GetWidget());
    mHost.show();
    mHost.activateWindow();
    ASSERT_TRUE(krtest::AwaitActive(&mHost));
    mWindow.GetGrid().setFocus();
  }
  /// As the window system does: shortcuts of whatever window are looked for first.
  void PressInWindow(Qt::Key aKey, Qt::KeyboardModifiers aModifiers = Qt::NoModifier) {
    QTest::keyClick(mHost.windowHandle(), aKey, aModifiers);
  }
  bool IsSearchShown() const { return mWindow.GetSearchBar().isVisible(); }

  QWidget mHost;
  QLineEdit* mField = nullptr;
  std::map<int, int> mHostCalls; ///< By key.
};

} // namespace

TEST_F(Keys, CtrlFInsideTheBrowser_TurnsTheSearchRowAtEachPressAndIsNoneOfTheHosts) {
  Embed();
  for (const bool isShown : {true, false, true, false, true}) {
    PressInWindow(Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(IsSearchShown(), isShown);
  }

  EXPECT_TRUE(mHostCalls.empty());
}

TEST_F(Keys, F6InsideTheBrowser_GoesToTheOtherPaneAtEachPress) {
  Embed();
  for (int round = 0; round < 3; ++round) {
    PressInWindow(Qt::Key_F6);
    EXPECT_TRUE(mWindow.GetDescription().hasFocus());
    PressInWindow(Qt::Key_F6);
    EXPECT_TRUE(mWindow.GetGrid().hasFocus());
  }

  EXPECT_TRUE(mHostCalls.empty());
}

TEST_F(Keys, F8InsideTheBrowser_GivesTheBoundaryTheFocusAtEachPress) {
  Embed();
  for (int round = 0; round < 3; ++round) {
    mWindow.GetGrid().setFocus();
    PressInWindow(Qt::Key_F8);
    EXPECT_TRUE(mWindow.Find<BrowserSplitter>().hasFocus());
  }

  EXPECT_TRUE(mHostCalls.empty());
}

TEST_F(Keys, F5InManualMode_ReadsAtEachPress) {
  mWindow.SetRefreshMode(KrGenRefresh::Manual);
  Embed();
  for (std::uint8_t round = 1; round <= 3; ++round) {
    mCamera.Poke(kWidthAddress, {round});
    PressInWindow(Qt::Key_F5);
    EXPECT_EQ(mWindow.GetValue("Width"), std::to_string(round));
  }

  EXPECT_TRUE(mHostCalls.empty());
}

TEST_F(Keys, F5WhereThereIsNothingToRefresh_IsTheHosts) {
  Embed();

  PressInWindow(Qt::Key_F5);

  EXPECT_EQ(mHostCalls[Qt::Key_F5], 1);
}

TEST_F(Keys, EscapeInTheSearchRow_HidesItAndIsTheHostsOutsideOfIt) {
  Embed();
  for (const char* control : {"", "Move to previous occurence", "Move to next occurence", "Close search"}) {
    PressInWindow(Qt::Key_F, Qt::ControlModifier);
    ASSERT_TRUE(IsSearchShown());
    if (*control)
      mWindow.GetButton(control).setFocus();

    PressInWindow(Qt::Key_Escape);
    EXPECT_FALSE(IsSearchShown()) << control;
  }
  EXPECT_TRUE(mHostCalls.empty());

  PressInWindow(Qt::Key_Escape);
  EXPECT_EQ(mHostCalls[Qt::Key_Escape], 1);
}

TEST_F(Keys, KeysOutsideTheBrowser_AreTheHosts) {
  Embed();
  for (const auto& [key, modifiers] : {std::pair(Qt::Key_F, Qt::ControlModifier), std::pair(Qt::Key_F5, Qt::NoModifier),
                                       std::pair(Qt::Key_F6, Qt::NoModifier), std::pair(Qt::Key_F8, Qt::NoModifier)}) {
    for (int press = 1; press <= 2; ++press) {
      mField->setFocus();
      PressInWindow(key, modifiers);
      EXPECT_EQ(mHostCalls[QKeyCombination(modifiers, key).toCombined()], press);
      EXPECT_TRUE(mField->hasFocus());
    }
  }

  EXPECT_FALSE(IsSearchShown());
}

TEST_F(Keys, KeyThatIsHeldDown_ActsOnce) {
  Embed();
  QWidget* focus = mHost.focusWidget();

  for (const bool isRepeated : {false, true, true}) {
    QKeyEvent press(QEvent::KeyPress, Qt::Key_F, Qt::ControlModifier, {}, isRepeated);
    QApplication::sendEvent(focus, &press);
    EXPECT_TRUE(press.isAccepted());
  }

  EXPECT_TRUE(IsSearchShown());
}

} // namespace krgui
