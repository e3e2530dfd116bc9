// The keys of a control in a cell: which are handed over, and that none goes on to what is around.

#include "browser/dyncontrol.h"
#include "windowwait.h"

#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace krgui {

namespace {

class Receiver final : public EditorKeyReceiver {
public:
  void OnEditorKey(const EditorKey& aKey) override { keys.push_back(aKey); }
  std::vector<EditorKey> keys;
};

class Around final : public QWidget {
public:
  int keys = 0;

protected:
  void keyPressEvent(QKeyEvent*) override { ++keys; }
  void keyReleaseEvent(QKeyEvent*) override { ++keys; }
};

class DynControlTest : public testing::Test {
protected:
  DynControlTest() {
    around.resize(200, 60);
    around.show();
    around.activateWindow();
    EXPECT_TRUE(krtest::AwaitActive(&around));
    editBox->setFocus();
  }

  Around around;
  std::unique_ptr<Receiver> receiver = std::make_unique<Receiver>();
  DynControl<QLineEdit>* editBox = new DynControl<QLineEdit>(&around, *receiver);
};

TEST_F(DynControlTest, EndingKeys_AreHandedOverDownAndUp) {
  constexpr struct {
    Qt::Key key;
    Qt::Key meaning;
  } kRows[] = {{Qt::Key_Return, Qt::Key_Return},
               {Qt::Key_Enter, Qt::Key_Return},
               {Qt::Key_Escape, Qt::Key_Escape},
               {Qt::Key_Tab, Qt::Key_Tab},
               {Qt::Key_Backtab, Qt::Key_Tab}};
  for (const auto& row : kRows) {
    receiver->keys.clear();
    QTest::keyClick(editBox, row.key);

    ASSERT_EQ(receiver->keys.size(), 2U) << row.key;
    EXPECT_EQ(receiver->keys[0].key, row.meaning);
    EXPECT_TRUE(receiver->keys[0].isDown);
    EXPECT_FALSE(receiver->keys[1].isDown);
  }
  EXPECT_EQ(around.keys, 0);
}

TEST_F(DynControlTest, HeldKey_IsToldAsRepetition) {
  QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QString(), true);
  QApplication::sendEvent(editBox, &repeated);

  ASSERT_EQ(receiver->keys.size(), 1U);
  EXPECT_TRUE(receiver->keys[0].isRepeat);
}

TEST_F(DynControlTest, OtherKeys_AreTheControlsAndReachNobodyAround) {
  QTest::keyClicks(editBox, "ab");
  for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_PageDown, Qt::Key_F5}) {
    QTest::keyClick(editBox, key);
  }

  EXPECT_EQ(editBox->text(), "ab");
  EXPECT_EQ(around.keys, 0);
  EXPECT_TRUE(receiver->keys.empty());
}

TEST_F(DynControlTest, EscapeAsShortcutOfTheWindow_IsHandedOverAllTheSame) {
  QShortcut shortcut(QKeySequence(Qt::Key_Escape), &around);
  bool wasActivated = false;
  QObject::connect(&shortcut, &QShortcut::activated, [&] { wasActivated = true; });
  QTest::keyClick(editBox, Qt::Key_Escape);

  EXPECT_FALSE(wasActivated);
  EXPECT_EQ(receiver->keys.size(), 2U);
}

TEST_F(DynControlTest, ReceiverThatHasGone_IsToldNothing) {
  receiver.reset();
  QTest::keyClick(editBox, Qt::Key_Return);

  EXPECT_EQ(around.keys, 0);
}

} // namespace

} // namespace krgui
