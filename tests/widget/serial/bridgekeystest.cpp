// The serial bridge manager by keyboard and for assistive technology, and its three ways of being shown.

#include "bridgefixture.h"
#include "windowwait.h"

#include <QAccessible>

#include <set>

namespace krgui {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

using Keys = BridgeTest;

} // namespace

TEST_F(Keys, Tab_ReachesEveryControl) {
  SetRates({"9600"});
  OpenOnSerial1();
  Link(COM3);
  Get(id::kDevicePort).setFocus();

  std::vector<int> visited;
  for (int step = 0; step < 5; ++step) {
    visited.push_back(QApplication::focusWidget()->property("controlID").toInt());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  }

  EXPECT_THAT(visited, ElementsAre(id::kDevicePort, id::kCOMPortLink, id::kCOMPort, id::kConfigure, id::kReset));
  EXPECT_EQ(QApplication::focusWidget(), &Get(id::kDevicePort)) << "and round again";
}

TEST_F(Keys, Arrows_ReachTheKinds) {
  OpenOnSerial1();
  Get(id::kNone).setFocus();

  QTest::keyClick(&Get(id::kNone), Qt::Key_Down);

  EXPECT_EQ(GetKind(), "Serial COM Port Link");
  EXPECT_THAT(Save(), ElementsAre(Pair("Serial1", "COMPort")));
}

TEST_F(Keys, Mnemonics_AreThereAndDoNotClash) {
  Open();
  std::multiset<QString> letters;
  const auto add = [&](const QString& aText) {
    const QKeySequence key = QKeySequence::mnemonic(aText);
    if (!key.isEmpty())
      letters.insert(key.toString());
  };
  for (const int button : {id::kNone, id::kCOMPortLink, id::kCameraLink, id::kConfigure, id::kReset}) {
    EXPECT_FALSE(QKeySequence::mnemonic(Get<QAbstractButton>(button).text()).isEmpty()) << button;
    add(Get<QAbstractButton>(button).text());
  }
  EXPECT_EQ(Get<QLabel>(id::kCOMPortLabel).buddy(), &Get(id::kCOMPort));
  add(Get<QLabel>(id::kCOMPortLabel).text());

  EXPECT_EQ(letters.size(), 6U);
  EXPECT_EQ(std::set<QString>(letters.begin(), letters.end()).size(), 6U);
}

TEST_F(Keys, EnterOnAListOrAKind_DoesNothing) {
  SetRates({"9600"});
  OpenOnSerial1();
  Link(COM3);
  const auto before = Save();

  for (const int control : {id::kDevicePort, id::kNone, id::kCOMPortLink, id::kCOMPort}) {
    Get(control).setFocus();
    QTest::keyClick(&Get(control), Qt::Key_Return);
    QTest::keyClick(&Get(control), Qt::Key_Enter);
  }

  EXPECT_NE(mWindow->GetWidget(), nullptr);
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  EXPECT_EQ(Save(), before);
}

TEST_F(Keys, EnterOnAButton_PressesThatButtonAlone) {
  SetRates({"9600"});
  OpenOnSerial1();
  Link(COM3);
  Get(id::kConfigure).setFocus();
  std::string title;
  DuringNextModalLoop([&](QWidget& aDialog) {
    title = aDialog.windowTitle().toStdString();
    QTest::keyClick(&aDialog, Qt::Key_Escape);
  });

  QTest::keyClick(&Get(id::kConfigure), Qt::Key_Return);

  EXPECT_EQ(title, "Serial COM Port Configuration");
  EXPECT_NE(mWindow->GetWidget(), nullptr);
}

TEST_F(Keys, Escape_ClosesTheWindowAndTheBridgesGoOn) {
  SetRates({"9600"});
  OpenOnSerial1();
  Link(COM3);

  QTest::keyClick(mWindow->GetWidget(), Qt::Key_Escape);

  EXPECT_EQ(mWindow->GetWidget(), nullptr);
  EXPECT_TRUE(mLines[1]->IsOpen());
}

TEST_F(Keys, EscapeInAModalWindow_IsCancelled) {
  ASSERT_TRUE(mWindow->SetDevice(&mDevice).IsOK());
  DuringNextModalLoop([](QWidget& aDialog) { QTest::keyClick(&aDialog, Qt::Key_Escape); });

  EXPECT_EQ(mWindow->ShowModal(0).GetCode(), KrResult::Code::Cancelled);
}

TEST_F(Keys, ModalWindow_WorksAndIsClosedWithOK) {
  SetRates({"9600"});
  ASSERT_TRUE(mWindow->SetDevice(&mDevice).IsOK());
  DuringNextModalLoop([this](QWidget&) {
    PickPort(Serial1);
    Link(COM3);
    ASSERT_TRUE(mWindow->Close().IsOK());
  });

  EXPECT_TRUE(mWindow->ShowModal(0).IsOK());

  EXPECT_TRUE(mLines[1]->IsOpen());
}

TEST_F(Keys, EscapeInAChild_DoesNothing) {
  QWidget parent;
  parent.resize(600, 500);
  ASSERT_TRUE(mWindow->SetDevice(&mDevice).IsOK());
  ASSERT_TRUE(mWindow->CreateIn(&parent).IsOK());
  parent.show();
  ASSERT_TRUE(krtest::AwaitActive(&parent));

  QTest::keyClick(mWindow->GetWidget(), Qt::Key_Escape);

  EXPECT_NE(mWindow->GetWidget(), nullptr);
  mWindow.reset();
}

TEST_F(Keys, AssistiveTechnology_FindsEveryControlByAName) {
  Open();
  const std::pair<int, const char*> rows[] = {{id::kDevicePort, "Device port"},
                                              {id::kCOMPort, "COM port"},
                                              {id::kNone, "None"},
                                              {id::kCOMPortLink, "Serial COM Port Link"},
                                              {id::kCameraLink, "Camera Link DLL"},
                                              {id::kConfigure, "Configure the COM port"},
                                              {id::kReset, "Reset the statistics"}};
  for (const auto& [control, name] : rows) {
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&Get(control));

    ASSERT_NE(accessible, nullptr) << control;
    EXPECT_EQ(accessible->text(QAccessible::Name).toStdString(), name);
  }
}

} // namespace krgui
