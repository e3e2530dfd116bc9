#include "frame/questionowner.h"

namespace krgui {

QuestionOwner::QuestionOwner(QWidget* aOwner, const std::stop_token& aEnd)
    : mWidget(new DialogWindow(*this, DialogWindow::Style::Child, aOwner)), mEnd(aEnd, [this] { End(); }) {
  if (mWidget && aOwner)
    mWidget->setGeometry(aOwner->rect());
}

QuestionOwner::~QuestionOwner() {
  End();
}

/// What is shown belongs to the widget, and its loops end with it.
void QuestionOwner::End() {
  if (DialogWindow* const widget = mWidget) {
    widget->Detach();
    delete widget;
  }
}

void QuestionOwner::OnDialogParentEnd() {
  End();
}

} // namespace krgui
