#include "krgui/krwnd.h"

#include "frame/wnd.h"

namespace {

KrResult ReportNoImplementation() {
  return {KrResult::Code::Failed, "The window could not be shown: it has no implementation. Use a class derived by the "
                                  "library."};
}

} // namespace

KrWnd::KrWnd() = default;

KrWnd::~KrWnd() {
  DeleteWnd();
}

void KrWnd::DeleteWnd() {
  if (mWnd) {
    mWnd->Dispose();
    mWnd.reset();
  }
}

KrResult KrWnd::Create(HWND aParent, UINT aID) {
  return mWnd ? mWnd->Create(aParent, aID) : ReportNoImplementation();
}

KrResult KrWnd::CreateIn(QWidget* aParent) {
  return mWnd ? mWnd->CreateIn(aParent) : ReportNoImplementation();
}

KrResult KrWnd::ShowModal(HWND aParent) {
  return mWnd ? mWnd->ShowModal(aParent) : ReportNoImplementation();
}

KrResult KrWnd::ShowModeless(HWND aParent) {
  return mWnd ? mWnd->ShowModeless(aParent) : ReportNoImplementation();
}

KrResult KrWnd::Close() {
  return mWnd ? mWnd->Close() : KrResult(KrResult::Code::WrongState);
}

KrResult KrWnd::DoEvents() {
  return mWnd ? mWnd->DoEvents() : krgui::Wnd::ReportNotOpen();
}

HWND KrWnd::GetHandle() const {
  return mWnd ? mWnd->GetHandle() : 0;
}

QWidget* KrWnd::GetWidget() const {
  return mWnd ? mWnd->GetWidget() : nullptr;
}

void KrWnd::GetPosition(int& aX, int& aY, int& aWidth, int& aHeight) const {
  aX = aY = aWidth = aHeight = 0;
  if (mWnd) {
    mWnd->GetPosition(aX, aY, aWidth, aHeight);
  }
}

void KrWnd::SetPosition(int aX, int aY, int aWidth, int aHeight) {
  if (mWnd) {
    mWnd->SetPosition(aX, aY, aWidth, aHeight);
  }
}

KrString KrWnd::GetTitle() const {
  return mWnd ? mWnd->GetTitle() : KrString();
}

void KrWnd::SetTitle(const KrString& aTitle) {
  if (mWnd) {
    mWnd->SetTitle(aTitle);
  }
}
