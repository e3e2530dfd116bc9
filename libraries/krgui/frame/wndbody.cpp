#include "frame/wndbody.h"

#include "platform/buttonids.h"
#include "res/templates.h"

#include <QGuiApplication>
#include <QScreen>
#include <QSocketNotifier>
#include <QWindow>

#include <algorithm>
#include <string>
#include <utility>

namespace krgui {

namespace {

WindowRect ToRect(const QPoint& aPosition, const QSize& aSize) {
  return MakeWindowRect(aPosition.x(), aPosition.y(), aSize.width(), aSize.height());
}

QPoint GetTopLeft(const WindowRect& aRect) {
  return {aRect.left, aRect.top};
}

QSize GetSize(const WindowRect& aRect) {
  return {GetWidth(aRect), GetHeight(aRect)};
}

/// There clients neither know nor set where their windows are.
bool HidesPositions() {
  return QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

/// Some of it can be seen.
bool IsOnAScreen(const QRect& aRect) {
  const QList<QScreen*> screens = QGuiApplication::screens();
  return std::any_of(screens.begin(), screens.end(),
                     [&aRect](const QScreen* aScreen) { return aScreen->geometry().intersects(aRect); });
}

} // namespace

Wnd::Body::Body(Wnd& aWnd, int aConstructionTemplateID) : wnd(aWnd), constructionTemplateID(aConstructionTemplateID) {}

Wnd::Body::~Body() {
  queue->Close();
  if (opening) {
    Release(std::move(opening), deletions);
  }
  if (!ApplicationEnd::IsProcessEnding()) {
    deletions->Flush();
  }
}

KrResult Wnd::Body::Open(int aTemplateID, OpeningParent aParent) {
  const DialogTemplate* dialogTemplate = FindTemplate(aTemplateID);
  if (dialogTemplate == nullptr) {
    return {KrResult::Code::Failed, KrString("The window could not be created: there is no dialog template " +
                                             std::to_string(aTemplateID) + ".")};
  }
  modalResult.reset();
  deletions->Flush();
  if (!Prepare(*dialogTemplate, std::move(aParent))) {
    return {KrResult::Code::Failed,
            "The window could not be created: it, or its parent, was closed while it was made."};
  }
  // Handlers that run in there may close the window.
  opening->dialog->show();
  return {};
}

int Wnd::Body::RunModal() {
  const auto result = std::make_shared<int>(-1);
  const DialogTemplate* dialogTemplate = FindTemplate(constructionTemplateID);
  if (dialogTemplate == nullptr) {
    return *result;
  }
  const std::weak_ptr<const bool> living = alive;
  modalResult = result;
  deletions->Flush();
  if (!Prepare(*dialogTemplate, {})) {
    return *result;
  }
  const std::uint64_t generation = queue->GetGeneration();
  opening->dialog->exec();
  if (!living.expired() && queue->GetGeneration() == generation) {
    // The loop ended without the dialog: the application quits.
    End();
  }
  return *result;
}

/// Everything up to the moment before the dialog is shown. False when the window could not be made, was closed or
/// deleted meanwhile; then nothing of this may be touched.
bool Wnd::Body::Prepare(const DialogTemplate& aTemplate, OpeningParent aParent) {
  const DeferredDeletions::Hold hold(deletions);
  applicationEnd.Watch();
  opening = std::make_unique<Opening>();
  opening->dialogTemplate = &aTemplate;
  opening->isPopup = mode != Mode::Child || (!aParent.embedsPopups && aTemplate.kind != DialogKind::Child);
  opening->dialog = MakeDialog(aParent);
  opening->foreign = std::move(aParent.foreign);
  MakeControls(aTemplate);
  if (opening->foreign && !Embed()) {
    Release(std::move(opening), deletions);
    return false;
  }
  ApplyTitle();
  queue->Open();
  WatchQueue();
  return InitDialog();
}

void Wnd::Body::MakeControls(const DialogTemplate& aTemplate) {
  DialogWindow& dialog = *opening->dialog;
  const WindowLimits limits = GetLimits();
  opening->controls = std::make_unique<DialogControls>(aTemplate, dialog, QSize(limits.maxWidth, limits.maxHeight));
  dialog.SetButtons(opening->controls->Get(kOKID), opening->controls->Get(kCancelID));
  dialog.SetPreferredSize(opening->controls->GetTemplateSize());
  dialog.resize(opening->controls->GetTemplateSize());
  LimitSize();
  if (!opening->isPopup) {
    // Else the toolkit centres it as it is shown.
    dialog.move(0, 0);
  }
}

bool Wnd::Body::InitDialog() {
  const std::weak_ptr<const bool> living = alive;
  const std::shared_ptr<MessageQueue> ownQueue = queue;
  const std::uint64_t generation = ownQueue->GetGeneration();
  const auto hasEnded = [&] { return living.expired() || ownQueue->GetGeneration() != generation; };

  const bool focusesDefault = wnd.OnInitDialog();
  if (hasEnded()) {
    return false;
  }
  opening->isReady = true;
  opening->dialog->KeepDefaultButton();
  OnDialogResize(opening->dialog->size());
  if (hasEnded()) {
    return false;
  }
  if (focusesDefault) {
    opening->dialog->FocusDefaultControl();
  }
  if (opening->isPopup || opening->foreign) {
    opening->dialog->MakeNative();
  }
  return true;
}

/// Popups have the frame of a dialog, unless they were created as a child.
DialogWindow* Wnd::Body::MakeDialog(const OpeningParent& aParent) {
  using Style = DialogWindow::Style;
  const Style popupStyle = mode == Mode::Child ? Style::PlainPopup : Style::Popup;
  const Style childStyle = aParent.foreign ? Style::FramelessWindow : Style::Child;
  return new DialogWindow(*this, opening->isPopup ? popupStyle : childStyle, aParent.widget);
}

bool Wnd::Body::Embed() {
  ForeignWindow& foreign = *opening->foreign;
  foreign.SetOnEnd([this] { End(); });
  DialogWindow& dialog = *opening->dialog;
  return (opening->isPopup ? foreign.Own(dialog) : foreign.Embed(dialog)).IsOK();
}

/// The user cannot resize a popup with a fixed frame; the application can.
void Wnd::Body::LimitSize() {
  const WindowLimits limits = GetLimits();
  DialogWindow& dialog = *opening->dialog;
  dialog.setMinimumSize(limits.minWidth, limits.minHeight);
  dialog.setMaximumSize(limits.maxWidth, limits.maxHeight);
  if (opening->isPopup && opening->dialogTemplate->kind == DialogKind::FixedPopup) {
    dialog.setFixedSize(dialog.size());
  }
}

/// One message a pass, so that a flood of them starves neither painting nor timers.
void Wnd::Body::WatchQueue() {
  if (queue->GetWakeDescriptor() < 0) {
    return;
  }
  opening->notifier = new QSocketNotifier(queue->GetWakeDescriptor(), QSocketNotifier::Read, opening->dialog);
  QObject::connect(opening->notifier, &QSocketNotifier::activated, opening->dialog, [this] {
    if (std::optional<MessageQueue::Taken> message = queue->Take()) {
      Dispatch(*message);
    }
  });
}

void Wnd::Body::End() {
  if (!opening || opening->isEnding) {
    return;
  }
  const DeferredDeletions::Hold hold(deletions);
  opening->isEnding = true;
  if (!ApplicationEnd::IsProcessEnding()) {
    CapturePosition();
    position = ClampToLimits(position, GetLimits());
    hasPosition = true;
    if (opening->notifier != nullptr) {
      opening->notifier->setEnabled(false);
    }
  }
  // Before the workers are joined: whoever waits in a send must not be waited for.
  queue->Close();
  const std::weak_ptr<const bool> living = alive;
  wnd.OnDestroy();
  if (!living.expired()) {
    Release(std::move(opening), deletions);
  }
}

/// The window object may outlive the application object, its windows may not.
void Wnd::Body::OnApplicationEnd() {
  const std::shared_ptr<DeferredDeletions> ownDeletions = deletions;
  End();
  ownDeletions->DeleteAll();
}

/// Without touching anything else of the window, which a handler may delete meanwhile.
void Wnd::Body::Release(std::unique_ptr<Opening> aOpening, std::shared_ptr<DeferredDeletions> aDeletions) {
  const DeferredDeletions::Hold hold(aDeletions);
  if (DialogWindow* dialog = aOpening->dialog) {
    dialog->Detach();
    aOpening->controls.reset();
    if (ApplicationEnd::IsProcessEnding()) {
      // Nothing of the toolkit may be called any more; the window goes with the process.
      (void)aOpening->foreign.release();
      return;
    }
    // Without an application object the toolkit's windows are gone already.
    if (!aOpening->isDying && QCoreApplication::instance() != nullptr) {
      aDeletions->Add(*dialog);
      dialog->Vanish();
    }
  }
  if (aOpening->foreign) {
    aOpening->foreign->Leave();
    if (QCoreApplication::instance() != nullptr) {
      // It may be on the stack: its window's end may be what ended the opening.
      aDeletions->Add(*aOpening->foreign.release());
    }
  }
}

void Wnd::Body::Dispatch(MessageQueue::Taken& aMessage) {
  const DeferredDeletions::Hold hold(deletions);
  aMessage.Answer(wnd.OnMessage(aMessage.Get()) ? 1 : 0);
}

/// Letters that are larger than the limits were made for may need a wider window.
WindowLimits Wnd::Body::GetLimits() const {
  WindowLimits limits = {wnd.GetMinWidth(), wnd.GetMaxWidth(), wnd.GetMinHeight(), wnd.GetMaxHeight()};
  if (opening && opening->controls) {
    limits.minWidth = opening->controls->FindLeastWidth(limits.minWidth, limits.maxWidth);
  }
  return limits;
}

void Wnd::Body::ApplyPosition(const WindowRect& aRect) {
  position = ClampToLimits(aRect, GetLimits());
  hasPosition = true;
  if (opening && !opening->isEnding) {
    Move(position);
  }
}

void Wnd::Body::Move(const WindowRect& aRect) {
  DialogWindow& dialog = *opening->dialog;
  if (!opening->isPopup) {
    dialog.setGeometry(QRect(GetTopLeft(aRect), GetSize(aRect)));
    return;
  }
  if (opening->dialogTemplate->kind == DialogKind::FixedPopup) {
    dialog.setFixedSize(GetSize(aRect));
  }
  const QPoint corner = FindOrigin() + GetTopLeft(aRect);
  if (!opening->isExposed) {
    opening->wanted = aRect;
    dialog.move(corner);
    dialog.resize(GetSize(aRect));
  } else {
    // By the window's margins: what the widget knows of its frame may be from before there was one.
    const QMargins frame = dialog.windowHandle()->frameMargins();
    dialog.setGeometry(QRect(corner + QPoint(frame.left(), frame.top()), GetSize(aRect)));
  }
}

/// Where on the screen positions are counted from: the parent's client area for a child.
QPoint Wnd::Body::FindOrigin() const {
  if (mode != Mode::Child) {
    return {};
  }
  if (opening->foreign) {
    return opening->foreign->FindOrigin();
  }
  const QWidget* parent = opening->dialog->parentWidget();
  return parent == nullptr ? FindCorner() : parent->mapToGlobal(QPoint());
}

/// The corner of a popup's frame on the screen.
QPoint Wnd::Body::FindCorner() const {
  const DialogWindow& dialog = *opening->dialog;
  // Not the widget's: what it knows of its frame may be from before there was one.
  const QWindow* window = dialog.windowHandle();
  return window != nullptr && window->handle() != nullptr ? window->framePosition() : dialog.pos();
}

void Wnd::Body::CapturePosition() {
  if (!opening) {
    return;
  }
  const DialogWindow& dialog = *opening->dialog;
  if (opening->wanted) {
    position = *opening->wanted;
  } else if (!opening->isPopup) {
    // A child that lost its parent is converted relative to itself.
    const bool hasParent = opening->foreign || dialog.parentWidget() != nullptr;
    position = ToRect(hasParent ? dialog.geometry().topLeft() : QPoint(), dialog.size());
  } else {
    position = ToRect(HidesPositions() ? GetTopLeft(position) : FindCorner() - FindOrigin(), dialog.size());
  }
}

void Wnd::Body::ApplyTitle() {
  if (opening) {
    opening->dialog->SetCaption(QString::fromStdU16String(title.ToWide()));
  }
}

void Wnd::Body::OnDialogAccept() {
  const DeferredDeletions::Hold hold(deletions);
  wnd.OnOK();
}

void Wnd::Body::OnDialogCancel() {
  const DeferredDeletions::Hold hold(deletions);
  wnd.OnCancel();
}

void Wnd::Body::OnDialogClose() {
  const DeferredDeletions::Hold hold(deletions);
  wnd.OnClose();
}

void Wnd::Body::OnDialogResize(const QSize& aSize) {
  if (opening && opening->isReady && opening->laidOutSize != aSize) {
    opening->laidOutSize = aSize;
    opening->controls->Layout(aSize);
    wnd.OnSize(aSize);
  }
}

void Wnd::Body::OnDialogExpose() {
  opening->isExposed = true;
  if (opening->foreign && !opening->isPopup) {
    opening->foreign->TakeKeys();
  }
  // The first placing did not know the frame yet. A window off every screen is the window manager's to correct.
  if (const auto wanted = std::exchange(opening->wanted, std::nullopt)) {
    if (IsOnAScreen(QRect(FindOrigin() + GetTopLeft(*wanted), GetSize(*wanted)))) {
      Move(*wanted);
    }
  }
}

void Wnd::Body::OnDialogParentEnd() {
  End();
}

void Wnd::Body::OnDialogDying() {
  if (opening) {
    opening->isDying = true;
    End();
  }
}

} // namespace krgui
