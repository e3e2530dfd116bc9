// Modal dialogs inside a window: their keys and buttons, their place, and every way in which they end.

#include "frame/modaldialog.h"
#include "duringmodalloop.h"
#include "res/templates.h"
#include "testwnd.h"
#include "windowwait.h"

#include <QLabel>
#include <QPushButton>
#include <QScreen>

#include <gtest/gtest.h>

#include <memory>

namespace krgui {

namespace {

class TestDialog final : public ModalDialog {
public:
  explicit TestDialog(QWidget* aOwner) : ModalDialog(kSelectFromIPTemplateID, aOwner) {}
  ~TestDialog() override { ++destructions; }

  using ModalDialog::EndDialog;
  using ModalDialog::GetControl;
  using ModalDialog::GetDialog;

  bool OnInitDialog() override {
    ++inits;
    if (onInit) {
      onInit();
    }
    return true;
  }
  void OnOK() override {
    ++accepts;
    if (!keepsOpen) {
      ModalDialog::OnOK();
    }
  }
  void OnEnd() override {
    ++ends;
    hadControlsAtEnd = GetControl<QPushButton>(1) != nullptr;
  }

  std::function<void()> onInit;
  bool keepsOpen = false;
  bool hadControlsAtEnd = false;
  int inits = 0;
  int accepts = 0;
  int ends = 0;
  static inline int destructions = 0;
};

QWidget* FindButton(QWidget& aDialog, int aID) {
  return aDialog.findChild<QPushButton*>(QStringLiteral("control%1").arg(aID));
}

struct EndCase {
  const char* name;
  std::function<void(QWidget&)> act;
  ModalResult result;
};

class ModalDialogEnd : public testing::TestWithParam<EndCase> {};

TEST_P(ModalDialogEnd, UsersAction_GivesItsResult) {
  QWidget owner;
  owner.show();
  TestDialog dialog(&owner);
  DuringNextModalLoop(GetParam().act);

  const ModalResult result = dialog.Run();

  EXPECT_EQ(result, GetParam().result);
  EXPECT_EQ(dialog.inits, 1);
  EXPECT_EQ(dialog.ends, 1);
  EXPECT_TRUE(dialog.hadControlsAtEnd);
  EXPECT_EQ(dialog.GetDialog(), nullptr) << "nothing is left on the screen";
}

INSTANTIATE_TEST_SUITE_P(
    Actions, ModalDialogEnd,
    testing::Values(
        EndCase{"Enter", [](QWidget& aDialog) { QTest::keyClick(&aDialog, Qt::Key_Return); }, ModalResult::OK},
        EndCase{"EnterOnTheKeypad", [](QWidget& aDialog) { QTest::keyClick(&aDialog, Qt::Key_Enter); },
                ModalResult::OK},
        EndCase{"OK", [](QWidget& aDialog) { QTest::mouseClick(FindButton(aDialog, 1), Qt::LeftButton); },
                ModalResult::OK},
        EndCase{"Escape", [](QWidget& aDialog) { QTest::keyClick(&aDialog, Qt::Key_Escape); }, ModalResult::Cancel},
        EndCase{"Cancel", [](QWidget& aDialog) { QTest::mouseClick(FindButton(aDialog, 2), Qt::LeftButton); },
                ModalResult::Cancel},
        EndCase{"CloseBox", [](QWidget& aDialog) { aDialog.close(); }, ModalResult::Cancel}),
    [](const auto& aInfo) { return aInfo.param.name; });

TEST(ModalDialog, EnterOnTheCancelButton_Cancels) {
  QWidget owner;
  owner.show();
  TestDialog dialog(&owner);
  DuringNextModalLoop([](QWidget& aDialog) {
    FindButton(aDialog, 2)->setFocus();
    QTest::keyClick(FindButton(aDialog, 2), Qt::Key_Return);
  });

  EXPECT_EQ(dialog.Run(), ModalResult::Cancel);
}

TEST(ModalDialog, OKThatIsRefused_LeavesTheDialogOpen) {
  QWidget owner;
  owner.show();
  TestDialog dialog(&owner);
  dialog.keepsOpen = true;
  DuringNextModalLoop([&](QWidget& aDialog) {
    QTest::keyClick(&aDialog, Qt::Key_Return);
    EXPECT_TRUE(aDialog.isVisible());
    QTest::keyClick(&aDialog, Qt::Key_Escape);
  });

  EXPECT_EQ(dialog.Run(), ModalResult::Cancel);

  EXPECT_EQ(dialog.accepts, 1);
}

TEST(ModalDialog, Shown_BlocksItsOwnerAndHasItsCaption) {
  QWidget owner;
  owner.show();
  TestDialog dialog(&owner);
  bool isModal = false;
  QString caption;
  DuringNextModalLoop([&](QWidget& aDialog) {
    isModal = aDialog.isModal();
    caption = aDialog.windowTitle();
    QTest::keyClick(&aDialog, Qt::Key_Escape);
  });

  (void)dialog.Run();

  EXPECT_TRUE(isModal);
  EXPECT_EQ(caption, QStringLiteral("Select From IP Address"));
}

TEST(ModalDialog, Shown_IsCentredOnItsOwner) {
  QWidget owner;
  owner.setGeometry(150, 120, 500, 400);
  owner.show();
  ASSERT_TRUE(krtest::AwaitExposed(&owner));
  TestDialog dialog(&owner);
  QRect place;
  DuringNextModalLoop([&](QWidget& aDialog) {
    place = aDialog.geometry();
    QTest::keyClick(&aDialog, Qt::Key_Escape);
  });

  (void)dialog.Run();

  EXPECT_NEAR(place.center().x(), owner.geometry().center().x(), 2);
  EXPECT_NEAR(place.center().y(), owner.geometry().center().y(), 2);
}

TEST(ModalDialog, OwnerAtTheScreensEdge_StaysOnTheScreen) {
  const QRect screen = QApplication::primaryScreen()->availableGeometry();
  QWidget owner;
  owner.setGeometry(screen.right() - 40, screen.bottom() - 40, 200, 200);
  owner.show();
  TestDialog dialog(&owner);
  QRect place;
  DuringNextModalLoop([&](QWidget& aDialog) {
    place = aDialog.geometry();
    QTest::keyClick(&aDialog, Qt::Key_Escape);
  });

  (void)dialog.Run();

  EXPECT_TRUE(screen.contains(place));
}

TEST(ModalDialog, WithoutOwner_RunsAlone) {
  TestDialog dialog(nullptr);
  DuringNextModalLoop([](QWidget& aDialog) { QTest::keyClick(&aDialog, Qt::Key_Return); });

  EXPECT_EQ(dialog.Run(), ModalResult::OK);
}

TEST(ModalDialog, EndedWhileItIsInitialised_IsNeverShown) {
  QWidget owner;
  TestDialog dialog(&owner);
  dialog.onInit = [&] { dialog.EndDialog(ModalResult::Cancel); };

  EXPECT_EQ(dialog.Run(), ModalResult::Cancel);

  EXPECT_EQ(dialog.ends, 1);
}

// Ends that nobody chose.

TEST(ModalDialog, OwnerDies_TheLoopEndsAndSaysSo) {
  auto owner = std::make_unique<QWidget>();
  owner->show();
  TestDialog dialog(owner.get());
  DuringNextModalLoop([&](QWidget&) { owner.reset(); });

  const ModalResult result = dialog.Run();

  EXPECT_EQ(result, ModalResult::Gone);
  EXPECT_EQ(dialog.ends, 1);
  EXPECT_TRUE(dialog.hadControlsAtEnd);
  EXPECT_EQ(dialog.GetControl<QPushButton>(1), nullptr);
}

TEST(ModalDialog, OwnerWindowCloses_TheLoopEndsAndSaysSo) {
  TestWnd window;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  TestDialog dialog(window.GetWidget());
  DuringNextModalLoop([&](QWidget&) { EXPECT_TRUE(window.Close().IsOK()); });

  const ModalResult result = dialog.Run();

  EXPECT_EQ(result, ModalResult::Gone);
  EXPECT_EQ(dialog.ends, 1);
  DeleteWhatIsLeft();
}

TEST(ModalDialog, OwnerWindowClosesUnderADialogInADialog_BothLoopsEndInnerFirst) {
  TestWnd window;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  TestDialog outer(window.GetWidget());
  std::vector<ModalResult> results;
  DuringNextModalLoop([&](QWidget& aOuter) {
    TestDialog inner(&aOuter);
    DuringNextModalLoop([&](QWidget&) { EXPECT_TRUE(window.Close().IsOK()); });
    results.push_back(inner.Run());
  });

  results.push_back(outer.Run());

  EXPECT_EQ(results, (std::vector{ModalResult::Gone, ModalResult::Gone}));
  DeleteWhatIsLeft();
}

TEST(ModalDialog, ApplicationsLoopEnds_TheLoopEndsAndSaysSo) {
  QWidget owner;
  owner.show();
  TestDialog dialog(&owner);
  ModalResult result = ModalResult::OK;
  DuringNextModalLoop([](QWidget&) { QCoreApplication::exit(0); });
  QTimer::singleShot(0, &owner, [&] { result = dialog.Run(); });

  QApplication::exec();

  EXPECT_EQ(result, ModalResult::Gone);
  EXPECT_EQ(dialog.ends, 1);
}

TEST(ModalDialog, ObjectDeletedInItsOwnLoop_IsNotTouchedAgain) {
  QWidget owner;
  owner.show();
  auto dialog = std::make_unique<TestDialog>(&owner);
  const int destructions = TestDialog::destructions;
  DuringNextModalLoop([&](QWidget&) { dialog.reset(); });

  TestDialog& running = *dialog;
  const ModalResult result = running.Run();

  EXPECT_EQ(result, ModalResult::Gone);
  EXPECT_EQ(TestDialog::destructions, destructions + 1);
  DeleteWhatIsLeft();
  EXPECT_TRUE(owner.findChildren<QDialog*>().isEmpty());
}

TEST(ModalDialog, OwnerDiedBeforeItRuns_RunsNothing) {
  auto owner = std::make_unique<QWidget>();
  TestDialog dialog(owner.get());

  owner.reset();

  EXPECT_EQ(dialog.Run(), ModalResult::Gone);
  EXPECT_EQ(dialog.inits, 0);
}

} // namespace

} // namespace krgui
