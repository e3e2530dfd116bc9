// A wait that ends as its dialog comes to the screen: the keyboard is back at the window that waited.

#include "frame/progressdialog.h"

#include "windowwait.h"

#include <QApplication>
#include <QDialog>
#include <QLineEdit>

#include <gtest/gtest.h>

#include <future>

namespace krgui {

namespace {

/// Ends the work when an event comes to the dialog.
class EndingWork final : public QObject {
public:
  explicit EndingWork(QEvent::Type aEnd) : mEnd(aEnd) { qApp->installEventFilter(this); }

  ProgressDialog::Work Get() {
    return [this](const KrGenProgress&) { mHasEnded.get_future().wait(); };
  }
  bool WasShown() const { return mWasShown; }

private:
  bool eventFilter(QObject* aObject, QEvent* aEvent) override {
    if (aEvent->type() == mEnd && aObject->objectName() == QLatin1String("progress") && !mWasShown) {
      mWasShown = true;
      mHasEnded.set_value();
    }
    return false;
  }

  const QEvent::Type mEnd;
  std::promise<void> mHasEnded;
  bool mWasShown = false;
};

class WaitThatEndsWith : public testing::TestWithParam<QEvent::Type> {};

} // namespace

TEST_P(WaitThatEndsWith, ItsDialog_GivesTheKeyboardBack) {
  QDialog owner;
  QLineEdit edit(&owner);
  owner.resize(300, 200);
  owner.show();
  edit.setFocus();
  ASSERT_TRUE(krtest::AwaitActive(&owner));

  constexpr int kRounds = 20;
  for (int round = 0; round < kRounds; ++round) {
    EndingWork work(GetParam());
    {
      ProgressDialog dialog(&owner, QStringLiteral("Wait"), QStringLiteral("Waiting..."));
      ASSERT_EQ(dialog.Run(work.Get()), ModalResult::OK);
    }

    EXPECT_TRUE(work.WasShown());
    ASSERT_TRUE(krtest::AwaitCondition([&] { return owner.isActiveWindow() && edit.hasFocus(); })) << round;
  }
}

INSTANTIATE_TEST_SUITE_P(Events, WaitThatEndsWith, testing::Values(QEvent::Show, QEvent::Paint, QEvent::WindowActivate),
                         [](const auto& aInfo) {
                           return aInfo.param == QEvent::Show    ? "Showing"
                                  : aInfo.param == QEvent::Paint ? "Painting"
                                                                 : "TheKeyboard";
                         });

} // namespace krgui
