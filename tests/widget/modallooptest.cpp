// A dialog that is shown only when what it waits for is slow: whether it appears, what it returns, and who ends it.

#include "platform/modalloop.h"
#include "duringmodalloop.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace krgui {

namespace {

constexpr int kNever = 3'600'000;

class PatientDialog final : public ModalLoop {
public:
  explicit PatientDialog(QWidget* aOwner) : ModalLoop(aOwner) { GetDialog()->setObjectName("patient"); }

  using ModalLoop::EndLoop;
  using ModalLoop::RunLoopWhenSlow;

private:
  void OnAccept() override { EndLoop(ModalResult::OK); }
  void OnCancel() override { EndLoop(ModalResult::Cancel); }
};

/// Counts how often the dialog came on the screen.
class Appearances final : public QObject {
public:
  Appearances() { qApp->installEventFilter(this); }
  int Count() const { return mCount; }

private:
  bool eventFilter(QObject* aObject, QEvent* aEvent) override {
    mCount += aEvent->type() == QEvent::Show && aObject->objectName() == "patient" ? 1 : 0;
    return false;
  }

  int mCount = 0;
};

/// In the loop that runs next, whatever is shown then.
void Soon(std::function<void()> aAction) {
  QMetaObject::invokeMethod(qApp, std::move(aAction), Qt::QueuedConnection);
}

class PatientLoop : public testing::Test {
protected:
  PatientLoop() {
    mOwner->show();
    mDialog = std::make_unique<PatientDialog>(mOwner.get());
  }

  std::unique_ptr<QWidget> mOwner = std::make_unique<QWidget>();
  Appearances mAppearances;
  std::unique_ptr<PatientDialog> mDialog;
};

} // namespace

TEST_F(PatientLoop, EndedInTime_ShowsNothing) {
  Soon([&] { mDialog->EndLoop(ModalResult::OK); });

  EXPECT_EQ(mDialog->RunLoopWhenSlow(kNever), ModalResult::OK);

  EXPECT_EQ(mAppearances.Count(), 0);
}

TEST_F(PatientLoop, EndedBefore_ShowsNothing) {
  mDialog->EndLoop(ModalResult::Cancel);

  EXPECT_EQ(mDialog->RunLoopWhenSlow(kNever), ModalResult::Cancel);

  EXPECT_EQ(mAppearances.Count(), 0);
}

TEST_F(PatientLoop, NotEndedInTime_ShowsTheDialog) {
  DuringNextModalLoop([](QWidget& aDialog) { QTest::keyClick(&aDialog, Qt::Key_Escape); });

  EXPECT_EQ(mDialog->RunLoopWhenSlow(0), ModalResult::Cancel);

  EXPECT_EQ(mAppearances.Count(), 1);
}

TEST_F(PatientLoop, OwnerGoneBeforeItIsShown_IsGone) {
  Soon([&] { mOwner.reset(); });

  EXPECT_EQ(mDialog->RunLoopWhenSlow(kNever), ModalResult::Gone);

  EXPECT_EQ(mAppearances.Count(), 0);
}

TEST_F(PatientLoop, DeletedBeforeItIsShown_IsGone) {
  Soon([&] { mDialog.reset(); });

  EXPECT_EQ(mDialog->RunLoopWhenSlow(kNever), ModalResult::Gone);

  EXPECT_EQ(mAppearances.Count(), 0);
}

} // namespace krgui
