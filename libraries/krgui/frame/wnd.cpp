#include "frame/wnd.h"

#include "frame/wndbody.h"
#include "platform/application.h"

#include <string>
#include <utility>

namespace krgui {

namespace {

constexpr int kOKResult = 1;
constexpr int kCancelResult = 2;

/// A Qt widget by its own id, any other native window as a foreign one.
KrResult FindParent(HWND aID, OpeningParent& aParent) {
  aParent.widget = QWidget::find(aID);
  return aParent.widget != nullptr ? KrResult() : ForeignWindow::Find(aID, aParent.foreign);
}

KrResult ReportOpen(const char* aAttempt) {
  return {KrResult::Code::WrongState,
          std::string("The window could not be ") + aAttempt + ": it is open already. Close it first."};
}

} // namespace

Wnd::Wnd(int aConstructionTemplateID) : mBody(std::make_unique<Body>(*this, aConstructionTemplateID)) {}

Wnd::~Wnd() = default;

void Wnd::Dispose() {
  mBody->End();
}

KrResult Wnd::Create(HWND aParent, UINT) {
  if (IsOpen()) {
    return KrResult::Code::WrongState;
  }
  mBody->mode = Mode::Child;
  KrResult result = EnsureApplication();
  OpeningParent parent;
  if (result.IsOK()) {
    result = FindParent(aParent, parent);
  }
  return result.IsOK() ? mBody->Open(GetChildTemplateID(), std::move(parent)) : result;
}

KrResult Wnd::CreateIn(QWidget* aParent) {
  if (IsOpen()) {
    return ReportOpen("created");
  }
  mBody->mode = Mode::Child;
  if (aParent == nullptr) {
    return {KrResult::Code::Failed, "The window could not be created: it needs a parent widget, and none was given."};
  }
  KrResult result = EnsureApplication();
  return result.IsOK() ? mBody->Open(GetChildTemplateID(), {aParent, nullptr, true}) : result;
}

KrResult Wnd::ShowModeless(HWND aParent) {
  if (IsOpen()) {
    return ReportOpen("shown");
  }
  mBody->mode = Mode::Modeless;
  KrResult result = EnsureApplication();
  OpeningParent owner;
  if (result.IsOK() && aParent != 0) {
    result = FindParent(aParent, owner);
  }
  return result.IsOK() ? mBody->Open(GetPopupTemplateID(), std::move(owner)) : result;
}

KrResult Wnd::ShowModal(HWND) {
  if (IsOpen()) {
    return ReportOpen("shown");
  }
  mBody->mode = Mode::Modal;
  KrResult result = EnsureApplication();
  if (!result.IsOK()) {
    return result;
  }
  return mBody->RunModal() == kCancelResult ? KrResult(KrResult::Code::Cancelled) : KrResult();
}

KrResult Wnd::Close() {
  if (!IsOpen()) {
    return KrResult::Code::WrongState;
  }
  EndDialog(kOKResult);
  return {};
}

HWND Wnd::GetHandle() const {
  return IsOpen() ? mBody->opening->dialog->winId() : 0;
}

QWidget* Wnd::GetWidget() const {
  return IsOpen() ? mBody->opening->dialog.data() : nullptr;
}

void Wnd::GetPosition(int& aX, int& aY, int& aWidth, int& aHeight) {
  mBody->CapturePosition();
  const WindowRect& position = mBody->position;
  aX = position.left;
  aY = position.top;
  aWidth = krgui::GetWidth(position);
  aHeight = krgui::GetHeight(position);
}

void Wnd::SetPosition(int aX, int aY, int aWidth, int aHeight) {
  mBody->ApplyPosition(MakeWindowRect(aX, aY, aWidth, aHeight));
}

KrString Wnd::GetTitle() const {
  return mBody->title;
}

void Wnd::SetTitle(const KrString& aTitle) {
  mBody->title = aTitle;
  mBody->ApplyTitle();
}

bool Wnd::IsOpen() const {
  return mBody->opening != nullptr;
}

Wnd::Mode Wnd::GetShowMode() const {
  return mBody->mode;
}

const std::shared_ptr<MessageQueue>& Wnd::GetQueue() const {
  return mBody->queue;
}

bool Wnd::OnInitDialog() {
  if (mBody->hasPosition) {
    mBody->ApplyPosition(mBody->position);
  }
  mBody->ApplyTitle();
  return true;
}

void Wnd::OnSize(const QSize&) {}

bool Wnd::OnMessage(const Message&) {
  return false;
}

void Wnd::OnOK() {
  if (GetShowMode() != Mode::Child) {
    EndDialog(kOKResult);
  }
}

void Wnd::OnCancel() {
  if (GetShowMode() != Mode::Child) {
    EndDialog(kCancelResult);
  }
}

void Wnd::OnClose() {
  OnCancel();
}

void Wnd::OnDestroy() {}

void Wnd::CallHandler(const std::function<void()>& aHandler) {
  const DeferredDeletions::Hold hold(mBody->deletions);
  aHandler();
}

QWidget* Wnd::GetControl(int aID) const {
  return IsOpen() && mBody->opening->controls ? mBody->opening->controls->Get(aID) : nullptr;
}

void Wnd::EndDialog(int aResult) {
  if (IsOpen()) {
    if (mBody->modalResult) {
      *mBody->modalResult = aResult;
    }
    mBody->End();
  }
}

void Wnd::DestroyWindow() {
  EndDialog(kCancelResult);
}

} // namespace krgui
