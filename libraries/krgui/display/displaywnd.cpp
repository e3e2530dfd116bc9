#include "display/displaywnd.h"

#include "display/displaybars.h"
#include "display/displayview.h"
#include "frame/contextmenu.h"
#include "logic/display/viewcommand.h"
#include "platform/applicationend.h"
#include "res/menus.h"

#include <QMenu>
#include <QScrollBar>

#include <string>
#include <utility>

namespace krgui {

namespace {

constexpr std::uint32_t kInvalidateMessage = 0x0401;
constexpr std::uint32_t kPlaceBarsMessage = 0x0402;

constexpr int kHorizontalBarID = 1044;
constexpr int kVerticalBarID = 1046;

const char* GetName(ViewAxis aAxis) {
  return aAxis == ViewAxis::Horizontal ? "horizontal" : "vertical";
}

} // namespace

DisplayWnd::DisplayWnd() : TabledWnd(kDisplayTraits), mContent(std::make_shared<DisplayContent>()) {}

DisplayWnd::~DisplayWnd() {
  Dispose();
}

KrResult DisplayWnd::Display(const IKrImage* aImage) {
  auto paint = DisplayContent::Paint::NotNeeded;
  const KrResult result = mContent->Display(aImage, paint);
  return Finish(result, paint);
}

KrResult DisplayWnd::DisplayHeld(std::shared_ptr<const KrBuffer> aBuffer) {
  if (!aBuffer)
    return Display(nullptr);
  if (aBuffer->GetPayloadType() != KrPayloadType::Image)
    return RefusePayload();
  auto paint = DisplayContent::Paint::NotNeeded;
  const KrResult result = mContent->Display(std::move(aBuffer), paint);
  return Finish(result, paint);
}

KrResult DisplayWnd::RefusePayload() {
  auto paint = DisplayContent::Paint::NotNeeded;
  const KrResult result = mContent->Refuse(KrResult::Code::InvalidInput, {"KrDisplayWnd::Display", "krdisplaywnd", 85},
                                           "aBuffer payload type not image", paint);
  return Finish(result, paint);
}

KrResult DisplayWnd::Finish(const KrResult& aResult, DisplayContent::Paint aPaint) {
  if (aPaint == DisplayContent::Paint::Needed)
    PostInvalidate();
  return aResult;
}

void DisplayWnd::Clear() {
  mContent->Clear();
  PostInvalidate();
}

void DisplayWnd::PostInvalidate() {
  // A closed window needs no drawing: its next opening paints what the content then holds.
  GetQueue()->PostOnce({kInvalidateMessage, 0, 0});
}

void DisplayWnd::Invalidate() {
  if (mView)
    mView->update();
}

void DisplayWnd::Zoom1_1() {
  Perform(static_cast<int>(ViewCommand::ZoomOneToOne));
}

void DisplayWnd::ZoomFit() {
  Perform(static_cast<int>(ViewCommand::ZoomFit));
}

void DisplayWnd::ZoomIn() {
  Perform(static_cast<int>(ViewCommand::ZoomIn));
}

void DisplayWnd::ZoomOut() {
  Perform(static_cast<int>(ViewCommand::ZoomOut));
}

void DisplayWnd::Perform(int aCommandID) {
  mContent->ChangeView([&](ViewGeometry& aView) { return PerformViewCommand(aView, aCommandID, mContextPoint); });
  if (mBars)
    mBars->Refresh();
  Invalidate();
}

HWND DisplayWnd::GetScrollHandle(ViewAxis aAxis) const {
  return mBars ? mBars->GetHandle(aAxis) : 0;
}

int DisplayWnd::GetScrollPos(ViewAxis aAxis) const {
  return mContent->ChangeView([&](const ViewGeometry& aView) { return aView.GetBar(aAxis).GetPosition(); });
}

void DisplayWnd::GetScrollRange(ViewAxis aAxis, int& aMin, int& aMax) const {
  const ScrollBarModel bar = mContent->ChangeView([&](const ViewGeometry& aView) { return aView.GetBar(aAxis); });
  aMin = bar.GetMinimum();
  aMax = bar.GetMaximum();
}

KrResult DisplayWnd::SetScrollPos(ViewAxis aAxis, int aPosition) {
  if (mContent->ChangeView([&](ViewGeometry& aView) { return aView.SetBarPosition(aAxis, aPosition); })) {
    if (mBars)
      mBars->Refresh();
    return {};
  }
  int least = 0;
  int greatest = 0;
  GetScrollRange(aAxis, least, greatest);
  return {KrResult::Code::OutOfRange, std::string("The ") + GetName(aAxis) + " scroll bar cannot be set to " +
                                          std::to_string(aPosition) + ": its range is from " + std::to_string(least) +
                                          " to " + std::to_string(greatest) + "."};
}

void DisplayWnd::SetCursorLineEnabled(bool aEnabled) {
  mContent->SetCursorLineEnabled(aEnabled);
  Invalidate();
}

std::optional<KrDisplayMapping> DisplayWnd::GetMapping() const {
  if (!mView)
    return std::nullopt;
  const ViewArea area = mContent->ChangeView([](const ViewGeometry& aView) { return aView.GetArea(); });
  return ComputeMapping(area, mView->devicePixelRatioF());
}

bool DisplayWnd::OnInitDialog() {
  Wnd::OnInitDialog();
  auto* const horizontalBar = qobject_cast<QScrollBar*>(GetControl(kHorizontalBarID));
  auto* const verticalBar = qobject_cast<QScrollBar*>(GetControl(kVerticalBarID));
  mBars = std::make_unique<DisplayBars>(mContent, horizontalBar, verticalBar, [this] { Invalidate(); });
  mView = new DisplayView(mContent, GetWidget());
  for (QScrollBar* bar : {horizontalBar, verticalBar})
    if (bar)
      mView->TakeWheelOf(*bar);
  // The first size of an opening counts as another one even if it is the last one of the opening before.
  mContent->ChangeView([](ViewGeometry& aView) { aView.MarkDirty(); });
  mConnections = std::make_unique<QObject>();
  QObject::connect(mView, &DisplayView::BarsFound, mConnections.get(),
                   [this](const BarChanges& aChanges) { OnBarsFound(aChanges); });
  QObject::connect(mView, &DisplayView::ContextPointSet, mConnections.get(),
                   [this](const PixelPoint& aPoint) { mContextPoint = aPoint; });
  QObject::connect(mView, &DisplayView::MenuWanted, mConnections.get(),
                   [this](const QPoint& aPoint) { ShowMenu(aPoint); });
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
  if (!mView)
    return;
  mView->setGeometry(QRect(QPoint(0, 0), aSize));
  mView->UpdateClient();
  // The template's layout has moved the bars; the coming paint finds their new places.
  mBars->Restore();
}

bool DisplayWnd::OnMessage(const Message& aMessage) {
  switch (aMessage.number) {
  case kInvalidateMessage:
    Invalidate();
    return true;
  case kPlaceBarsMessage:
    PlaceBars();
    return true;
  case kHideScrollBarMessage:
    OnHideScrollBar(aMessage.first);
    return true;
  default:
    return Wnd::OnMessage(aMessage);
  }
}

void DisplayWnd::OnBarsFound(const BarChanges& aChanges) {
  if (!mBars)
    return;
  const auto isNews = [this](ViewAxis aAxis, const BarChange& aChange) {
    return mBars->GetKind(aAxis) != aChange.kind;
  };
  const bool isHorizontalNews = isNews(ViewAxis::Horizontal, aChanges.horizontal);
  const bool isVerticalNews = isNews(ViewAxis::Vertical, aChanges.vertical);
  mBars->Keep(aChanges);
  using Kind = BarChange::Kind;
  if (aChanges.horizontal.kind == Kind::Hide)
    PostBar({kHideScrollBarMessage, kHideHorizontal, 0}, isHorizontalNews);
  if (aChanges.vertical.kind == Kind::Hide)
    PostBar({kHideScrollBarMessage, kHideVertical, 0}, isVerticalNews);
  if (aChanges.horizontal.kind == Kind::Place || aChanges.vertical.kind == Kind::Place)
    PostBar({kPlaceBarsMessage, 0, 0}, isHorizontalNews || isVerticalNews);
}

/// What differs from what was posted last comes after it; else one message waiting is enough.
void DisplayWnd::PostBar(const Message& aMessage, bool aIsNews) {
  if (aIsNews)
    GetQueue()->Post(aMessage);
  else
    GetQueue()->PostOnce(aMessage);
}

void DisplayWnd::OnHideScrollBar(std::uint64_t aBits) {
  constexpr std::uint64_t kHorizontalBit = 1;
  constexpr std::uint64_t kVerticalBit = 2;
  const bool isShown = (aBits & kShowInstead) != 0;
  if (!mBars)
    return;
  if ((aBits & kHorizontalBit) != 0)
    mBars->SetVisible(ViewAxis::Horizontal, isShown);
  else if ((aBits & kVerticalBit) != 0)
    mBars->SetVisible(ViewAxis::Vertical, isShown);
}

void DisplayWnd::PlaceBars() {
  if (mBars && mView)
    mBars->Place(mView->devicePixelRatioF());
}

void DisplayWnd::ShowMenu(const QPoint& aScreenPoint) {
  const MenuTemplate* menuTemplate = FindMenu(kDisplayMenuID);
  if (!menuTemplate)
    return;
  QMenu* menu =
      MakeContextMenu(*menuTemplate, GetWidget(), *mConnections, [this](int aCommandID) { Perform(aCommandID); });
  // Nobody may tell the view that a menu came between it and the cursor, or went. Later, when that is so on the screen.
  QObject::connect(menu, &QMenu::aboutToShow, mView, &DisplayView::TakeCursor, Qt::QueuedConnection);
  QObject::connect(menu, &QMenu::aboutToHide, mView, &DisplayView::TakeCursor, Qt::QueuedConnection);
  mMenu = menu;
  menu->popup(aScreenPoint);
}

void DisplayWnd::OnClose() {
  if (GetShowMode() == Mode::Modal)
    Wnd::OnClose();
  else
    DestroyWindow();
}

void DisplayWnd::OnDestroy() {
  mConnections.reset();
  if (mMenu && !ApplicationEnd::IsProcessEnding())
    mMenu->close();
  mBars.reset();
  if (mView)
    mView->Withdraw();
  mView = nullptr;
  Wnd::OnDestroy();
}

} // namespace krgui
