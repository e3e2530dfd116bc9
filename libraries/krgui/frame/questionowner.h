#pragma once
// The window on whose behalf questions are asked, one after the other: everything that is shown meanwhile belongs to
// it, and goes with it, or when what is asked about is taken away. What is asked is left to the actions.

#include "platform/dialogwindow.h"

#include <QPointer>

#include <functional>
#include <stop_token>

namespace krgui {

/// Thread: user interface, on which aEnd is requested, too. Ownership: a local object of the action.
class QuestionOwner final : private DialogOwner {
public:
  QuestionOwner(QWidget* aOwner, const std::stop_token& aEnd);
  ~QuestionOwner();
  QuestionOwner(const QuestionOwner&) = delete;
  QuestionOwner& operator=(const QuestionOwner&) = delete;

  bool IsAlive() const { return !mWidget.isNull(); }
  /// An invisible child of the owner, as large, to which dialogs are to belong; null once it is over.
  QWidget* GetWidget() const { return mWidget; }

private:
  void End();

  void OnDialogAccept() override {}
  void OnDialogCancel() override {}
  void OnDialogClose() override {}
  void OnDialogResize(const QSize&) override {}
  void OnDialogExpose() override {}
  void OnDialogDying() override {}
  void OnDialogParentEnd() override;

  QPointer<DialogWindow> mWidget;
  std::stop_callback<std::function<void()>> mEnd;
};

} // namespace krgui
