#include "region/regioneditor.h"

#include "region/regionaccess.h"
#include "window/failurebox.h"

#include <QKeyEvent>
#include <QMouseEvent>

#include <chrono>
#include <memory>
#include <utility>

namespace krviewer {

namespace {

constexpr std::chrono::milliseconds kLookInterval{50};
constexpr int kLargeSteps = 10;

bool IsPictureOf(const KrDisplayMapping& aMapping, const RegionLimits& aLimits) {
  return aMapping.imageWidth == aLimits.x.present.length && aMapping.imageHeight == aLimits.y.present.length;
}

QString GetTitle() {
  return RegionEditor::tr("Region of Interest");
}

Qt::CursorShape FindCursor(const RegionGrip& aGrip) {
  if (aGrip.kind == RegionGrip::Kind::Outside)
    return Qt::CrossCursor;
  if (aGrip.kind == RegionGrip::Kind::Inside)
    return Qt::SizeAllCursor;
  if (aGrip.edgeY == 0)
    return Qt::SizeHorCursor;
  if (aGrip.edgeX == 0)
    return Qt::SizeVerCursor;
  return aGrip.edgeX == aGrip.edgeY ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor;
}

} // namespace

RegionEditor::RegionEditor(KrDisplayWnd& aWindow, WorkDoer aDo)
    : mWindow(aWindow), mDo(std::move(aDo)), mBar(new RegionBar) {
  mBar->hide();
  connect(mBar, &RegionBar::ApplyWanted, this, &RegionEditor::Apply);
  connect(mBar, &RegionBar::CancelWanted, this, &RegionEditor::Cancel);
  connect(mBar, &RegionBar::FullFrameWanted, this, &RegionEditor::SetFullFrame);
  connect(mBar, &RegionBar::RegionTyped, this, [this](const Region& aWanted) {
    if (mGesture)
      mGesture->SetRegion(aWanted);
    ShowRegion();
  });
  connect(&mTimer, &QTimer::timeout, this, &RegionEditor::Follow);
}

RegionEditor::~RegionEditor() {
  End();
  if (mBar && !mBar->parent())
    delete mBar;
}

// The toolkit's events go to the widget that covers the window.
QWidget* RegionEditor::FindPicture() const {
  QWidget* const widget = mWindow.GetWidget();
  return widget ? widget->findChild<QWidget*>(QStringLiteral("display")) : nullptr;
}

void RegionEditor::Begin() {
  if (mIsBusy || mGesture) {
    if (mPicture)
      mPicture->setFocus();
    return;
  }
  if (!mWindow.GetMapping())
    return Fail({KrResult::Code::WrongState,
                 "There is no picture on which a region could be drawn. Start the camera, or trigger it, first."});
  const auto limits = std::make_shared<RegionLimits>();
  const QPointer<RegionEditor> self(this);
  mDo({.run = [limits](KrGenParameterArray& aParameters) { return ReadRegion(aParameters, *limits); },
       .isSetting = false,
       .then =
           [self, limits, request = BeginRequest()](const KrResult& aResult) {
             if (!self || !self->EndRequest(request))
               return;
             if (aResult.IsOK())
               self->Start(*limits);
             else
               self->Fail(aResult);
           }});
}

int RegionEditor::BeginRequest() {
  mIsBusy = true;
  if (mBar)
    mBar->SetBusy(true);
  return ++mRequest;
}

/// False for one that was given up.
bool RegionEditor::EndRequest(int aRequest) {
  if (aRequest != mRequest)
    return false;
  mIsBusy = false;
  if (mBar)
    mBar->SetBusy(false);
  return true;
}

void RegionEditor::Start(const RegionLimits& aLimits) {
  const std::optional<KrDisplayMapping> mapping = mWindow.GetMapping();
  QWidget* const picture = FindPicture();
  if (!mapping || !picture)
    return; // The window was closed meanwhile.
  if (aLimits.IsFixed())
    return Fail({KrResult::Code::NotSupported, "The camera lets neither the size nor the place of its region be set."});
  if (!IsPictureOf(*mapping, aLimits))
    return Fail({KrResult::Code::WrongState, "The picture shown has " + std::to_string(mapping->imageWidth) + " x " +
                                                 std::to_string(mapping->imageHeight) +
                                                 " pixels, and the camera's region is " +
                                                 FormatRegion(aLimits.GetPresent()) +
                                                 ". Start the camera, so that its picture is shown, and try again."});
  mGesture.emplace(aLimits, *mapping);
  mPicture = picture;
  mOutline = new RegionOutline(*picture);
  for (QWidget* widget : {picture, static_cast<QWidget*>(mOutline)})
    widget->installEventFilter(this);
  ShowRegion();
  if (mBar)
    mBar->show();
  picture->setFocus();
  mTimer.start(kLookInterval);
  Q_EMIT EditingChanged(true);
}

void RegionEditor::End() {
  if (!mGesture)
    return;
  mTimer.stop();
  mGesture.reset();
  // The outline first: as long as the mouse is over it, its pointer counts.
  if (mOutline)
    mOutline->unsetCursor();
  delete mOutline;
  if (mPicture) {
    mPicture->removeEventFilter(this);
    mPicture->unsetCursor();
  }
  if (mBar)
    mBar->hide();
  Q_EMIT EditingChanged(false);
}

void RegionEditor::Cancel() {
  EndRequest(mRequest);
  ++mRequest;
  End();
}

void RegionEditor::Apply() {
  if (!mGesture || mIsBusy)
    return;
  const Region region = mGesture->GetRegion();
  Write([region](KrGenParameterArray& aParameters) { return WriteRegion(aParameters, region); },
        tr("Region of interest: %1").arg(QString::fromStdString(FormatRegion(region))));
}

void RegionEditor::SetFullFrame() {
  if (!mIsBusy)
    Write(&WriteFullRegion, tr("Region of interest: full frame"));
}

void RegionEditor::Write(std::function<KrResult(KrGenParameterArray&)> aWrite, const QString& aText) {
  const QPointer<RegionEditor> self(this);
  mDo({.run = std::move(aWrite),
       .isStreamStopped = true,
       .then = [self, aText, request = BeginRequest()](const KrResult& aResult) {
         if (!self || !self->EndRequest(request))
           return;
         if (!aResult.IsOK())
           return self->Fail(aResult);
         self->End();
         if (self)
           Q_EMIT self->Applied(aText);
       }});
}

void RegionEditor::Fail(const KrResult& aReason) {
  ShowFailure(mWindow.GetWidget(), GetTitle(), aReason);
}

// The user zooms, scrolls and resizes, and pictures of another size may come.
void RegionEditor::Follow() {
  const std::optional<KrDisplayMapping> mapping = mWindow.GetMapping();
  if (!mPicture || !mapping || !IsPictureOf(*mapping, mGesture->GetLimits()))
    return mIsBusy ? void() : End();
  if (*mapping == mGesture->GetMapping())
    return;
  mGesture->SetMapping(*mapping);
  ShowRegion();
}

void RegionEditor::ShowRegion() {
  if (!mGesture || !mOutline)
    return;
  const KrDisplayMapping& mapping = mGesture->GetMapping();
  const QSize view(static_cast<int>(mapping.viewWidth), static_cast<int>(mapping.viewHeight));
  mOutline->Show(mGesture->GetFrame(), view, QString::fromStdString(FormatRegion(mGesture->GetRegion())));
  if (mBar)
    mBar->Show(mGesture->GetRegion(), mGesture->GetLimits());
}

bool RegionEditor::eventFilter(QObject*, QEvent* aEvent) {
  if (!mGesture || !mOutline)
    return false;
  switch (aEvent->type()) {
  case QEvent::MouseButtonPress:
  case QEvent::MouseButtonDblClick:
  case QEvent::MouseMove:
  case QEvent::MouseButtonRelease:
    return OnMouse(*static_cast<QMouseEvent*>(aEvent));
  case QEvent::ShortcutOverride: {
    // Keys that are drawn with are no shortcuts meanwhile.
    const auto& key = *static_cast<QKeyEvent*>(aEvent);
    const bool isOurs = key.key() == Qt::Key_Escape || key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter ||
                        (key.key() >= Qt::Key_Left && key.key() <= Qt::Key_Down);
    if (isOurs)
      aEvent->accept();
    return isOurs;
  }
  case QEvent::KeyPress:
    return OnKey(*static_cast<QKeyEvent*>(aEvent));
  default:
    return false;
  }
}

bool RegionEditor::OnMouse(const QMouseEvent& aEvent) {
  const QPointF place = aEvent.position(); // The outline begins where the picture does.
  const int reach = mOutline->GetReach();
  const bool isPress = aEvent.type() == QEvent::MouseButtonPress || aEvent.type() == QEvent::MouseButtonDblClick;
  if (isPress && aEvent.button() == Qt::LeftButton && !mIsBusy) {
    mPicture->setFocus(Qt::MouseFocusReason);
    mGesture->Press(place.x(), place.y(), reach);
    return true;
  }
  if (aEvent.type() == QEvent::MouseButtonRelease && aEvent.button() == Qt::LeftButton) {
    mGesture->Release();
    return true;
  }
  if (aEvent.type() != QEvent::MouseMove)
    return false;
  if (!mGesture->IsDragging()) {
    ShowCursorOf(mGesture->FindGrip(place.x(), place.y(), reach));
    return false; // The display tells the pixel under the cursor all the same.
  }
  mGesture->Drag(place.x(), place.y());
  ShowRegion();
  return true;
}

void RegionEditor::ShowCursorOf(const RegionGrip& aGrip) {
  const QCursor cursor(FindCursor(aGrip));
  mPicture->setCursor(cursor);
  mOutline->setCursor(cursor);
}

bool RegionEditor::OnKey(const QKeyEvent& aEvent) {
  switch (aEvent.key()) {
  case Qt::Key_Escape:
    if (mGesture->IsDragging())
      mGesture->CancelDrag();
    else if (!mIsBusy) // What the camera is being set to it will tell in a moment.
      Cancel();
    ShowRegion();
    return true;
  case Qt::Key_Return:
  case Qt::Key_Enter:
    Apply();
    return true;
  default:
    return OnArrow(aEvent);
  }
}

bool RegionEditor::OnArrow(const QKeyEvent& aEvent) {
  const int key = aEvent.key();
  const int stepsX = key == Qt::Key_Right ? 1 : key == Qt::Key_Left ? -1 : 0;
  const int stepsY = key == Qt::Key_Down ? 1 : key == Qt::Key_Up ? -1 : 0;
  if (stepsX == 0 && stepsY == 0)
    return false;
  if (mIsBusy)
    return true;
  const int factor = aEvent.modifiers().testFlag(Qt::ControlModifier) ? kLargeSteps : 1;
  if (aEvent.modifiers().testFlag(Qt::ShiftModifier))
    mGesture->Stretch(stepsX * factor, stepsY * factor);
  else
    mGesture->Move(stepsX * factor, stepsY * factor);
  ShowRegion();
  return true;
}

} // namespace krviewer
