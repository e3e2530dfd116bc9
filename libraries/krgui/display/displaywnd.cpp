#include "display/displaywnd.h"

#include "display/displayview.h"

namespace krgui {

namespace {

constexpr std::uint32_t kInvalidateMessage = 0x0401;

} // namespace

DisplayWnd::DisplayWnd() : Wnd(kDisplayTraits.modalTemplate), mContent(std::make_shared<DisplayContent>()) {}

DisplayWnd::~DisplayWnd() {
  Dispose();
}

KrResult DisplayWnd::Display(const IKrImage* aImage) {
  KrResult result = mContent->Display(aImage);
  if (result.IsOK())
    PostInvalidate();
  return result;
}

void DisplayWnd::Clear() {
  mContent->Clear();
  PostInvalidate();
}

void DisplayWnd::PostInvalidate() {
  // A closed window needs no drawing: its next opening paints what the content then holds.
  GetQueue()->PostOnce({kInvalidateMessage, 0, 0});
}

bool DisplayWnd::OnInitDialog() {
  Wnd::OnInitDialog();
  mView = new DisplayView(mContent, GetWidget());
  mView->setGeometry(GetWidget()->rect());
  // The template's scroll bars lie above the picture.
  mView->lower();
  mView->show();
  // A child takes the focus when it is clicked, not from what surrounds it.
  if (GetShowMode() != Mode::Child)
    mView->setFocus();
  return false;
}

void DisplayWnd::OnSize(const QSize& aSize) {
  Wnd::OnSize(aSize);
  if (mView)
    mView->setGeometry(QRect(QPoint(0, 0), aSize));
}

bool DisplayWnd::OnMessage(const Message& aMessage) {
  if (aMessage.number != kInvalidateMessage)
    return Wnd::OnMessage(aMessage);
  if (mView)
    mView->update();
  return true;
}

void DisplayWnd::OnDestroy() {
  mView = nullptr;
  Wnd::OnDestroy();
}

} // namespace krgui
