#include "platform/inputhold.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QPointingDevice>
#include <QThread>
#include <QTouchEvent>
#include <QWheelEvent>
#include <QWindow>

#include <algorithm>
#include <utility>

QT_BEGIN_NAMESPACE
// What the toolkit's own test library uses to type: it looks for shortcuts first, as a real key does.
Q_GUI_EXPORT void qt_handleKeyEvent(QWindow* aWindow, QEvent::Type aType, int aKey, Qt::KeyboardModifiers aModifiers,
                                    const QString& aText, bool aIsAutoRepeat, ushort aCount);
QT_END_NAMESPACE

namespace krgui {

namespace {

using Send = std::function<void(QWindow&)>;

using Device = QPointer<const QPointingDevice>;

/// One that is gone meanwhile is taken for the mouse that there always is.
const QPointingDevice* FindDevice(const Device& aDevice) {
  return aDevice ? aDevice.data() : QPointingDevice::primaryPointingDevice();
}

Send KeepMouse(const QEvent& aEvent) {
  const auto& event = static_cast<const QMouseEvent&>(aEvent);
  return [type = event.type(), local = event.position(), scene = event.scenePosition(), global = event.globalPosition(),
          button = event.button(), buttons = event.buttons(), modifiers = event.modifiers(),
          device = Device(event.pointingDevice()), timestamp = event.timestamp()](QWindow& aWindow) {
    QMouseEvent again(type, local, scene, global, button, buttons, modifiers, FindDevice(device));
    again.setTimestamp(timestamp);
    QCoreApplication::sendEvent(&aWindow, &again);
  };
}

Send KeepWheel(const QEvent& aEvent) {
  const auto& event = static_cast<const QWheelEvent&>(aEvent);
  return [local = event.position(), global = event.globalPosition(), pixels = event.pixelDelta(),
          angle = event.angleDelta(), buttons = event.buttons(), modifiers = event.modifiers(), phase = event.phase(),
          isInverted = event.inverted(), source = event.source(), device = Device(event.pointingDevice()),
          timestamp = event.timestamp()](QWindow& aWindow) {
    QWheelEvent again(local, global, pixels, angle, buttons, modifiers, phase, isInverted, source, FindDevice(device));
    again.setTimestamp(timestamp);
    QCoreApplication::sendEvent(&aWindow, &again);
  };
}

Send KeepKey(const QEvent& aEvent) {
  const auto& event = static_cast<const QKeyEvent&>(aEvent);
  return [type = event.type(), key = event.key(), modifiers = event.modifiers(), text = event.text(),
          isAutoRepeat = event.isAutoRepeat(), count = static_cast<ushort>(event.count())](QWindow& aWindow) {
    qt_handleKeyEvent(&aWindow, type, key, modifiers, text, isAutoRepeat, count);
  };
}

Send KeepTouch(const QEvent& aEvent) {
  const auto& event = static_cast<const QTouchEvent&>(aEvent);
  return [type = event.type(), device = Device(event.pointingDevice()), modifiers = event.modifiers(),
          points = event.points()](QWindow& aWindow) {
    if (device) {
      QTouchEvent again(type, device, modifiers, points);
      QCoreApplication::sendEvent(&aWindow, &again);
    }
  };
}

struct InputEntry {
  QEvent::Type type;
  Send (*keep)(const QEvent& aEvent);
};

constexpr InputEntry kInputs[] = {
    {QEvent::MouseButtonPress, KeepMouse},
    {QEvent::MouseButtonRelease, KeepMouse},
    {QEvent::MouseButtonDblClick, KeepMouse},
    {QEvent::MouseMove, KeepMouse},
    {QEvent::Wheel, KeepWheel},
    {QEvent::KeyPress, KeepKey},
    {QEvent::KeyRelease, KeepKey},
    {QEvent::TouchBegin, KeepTouch},
    {QEvent::TouchUpdate, KeepTouch},
    {QEvent::TouchEnd, KeepTouch},
    {QEvent::TouchCancel, KeepTouch},
};

const InputEntry* FindInput(QEvent::Type aType) {
  const auto* found = std::find_if(std::begin(kInputs), std::end(kInputs),
                                   [aType](const InputEntry& aEntry) { return aEntry.type == aType; });
  return found == std::end(kInputs) ? nullptr : found;
}

int GetLoopLevel() {
  return QThread::currentThread()->loopLevel();
}

/// The widget that a native window belongs to; null for a window without one.
const QWidget* FindWidget(const QWindow& aWindow) {
  return aWindow.handle() == nullptr ? nullptr : QWidget::find(aWindow.winId());
}

/// A window that a modal dialog blocks gets no input; what was done in it before is dropped with it.
bool IsBlocked(const QWindow& aWindow) {
  const QWidget* modal = QApplication::activeModalWidget();
  const QWidget* widget = FindWidget(aWindow);
  if (modal == nullptr || widget == nullptr) {
    return false;
  }
  const QObject* object = widget;
  while (object != nullptr && object != modal) {
    object = object->parent();
  }
  return object == nullptr;
}

} // namespace

InputHold::Pump::Pump(QWidget& aRoot, std::function<void(std::uint32_t)> aOnOwn)
    : mHold(InputHold::Get()), mRoot(&aRoot), mLoopLevel(GetLoopLevel()), mOnOwn(std::move(aOnOwn)) {
  mHold.mPumps.push_back(this);
}

InputHold::Pump::~Pump() {
  std::erase(mHold.mPumps, this);
  mHold.PostGive();
}

bool InputHold::Pump::Pass() {
  mHadOwn = false;
  mHold.Give();
  QCoreApplication::processEvents();
  return mHadOwn;
}

/// Along the parents across windows, so that menus and the lists of combo boxes count as their owner's.
bool InputHold::Pump::Covers(const QObject& aReceiver) const {
  const QObject* object = &aReceiver;
  if (aReceiver.isWindowType()) {
    object = FindWidget(static_cast<const QWindow&>(aReceiver));
  }
  while (object != nullptr && object != mRoot) {
    object = object->parent();
  }
  return object != nullptr;
}

InputHold::InputHold(QObject* aApplication) : QObject(aApplication) {
  aApplication->installEventFilter(this);
}

InputHold& InputHold::Get() {
  static QPointer<InputHold>& hold = *new QPointer<InputHold>; // Never destroyed.
  if (hold.isNull()) {
    hold = new InputHold(qApp);
  }
  return *hold;
}

/// The innermost pump, while events come from the loop in which it works. Those of a loop inside, such as a message
/// box's, are none of its business.
InputHold::Pump* InputHold::GetActivePump() const {
  return !mPumps.empty() && mPumps.back()->mLoopLevel == GetLoopLevel() ? mPumps.back() : nullptr;
}

bool InputHold::eventFilter(QObject* aWatched, QEvent* aEvent) {
  if (mPumps.empty() && mHeld.empty()) {
    return false;
  }
  Pump* pump = GetActivePump();
  if (pump != nullptr && pump->Covers(*aWatched)) {
    pump->mHadOwn = true;
    pump->mOnOwn(static_cast<std::uint32_t>(aEvent->type()));
    return false;
  }
  return aWatched->isWindowType() && HoldInput(static_cast<QWindow&>(*aWatched), *aEvent);
}

bool InputHold::HoldInput(QWindow& aWindow, QEvent& aEvent) {
  const bool isHeld = GetActivePump() != nullptr;
  if (aEvent.type() == QEvent::ShortcutOverride && isHeld) {
    // Claimed, so that it comes as a plain key press, which is held; shortcuts are looked for when that is given.
    aEvent.accept();
    return true;
  }
  if (FindInput(aEvent.type()) == nullptr) {
    return false;
  }
  if (isHeld) {
    Append(aWindow, aEvent);
  } else if (!std::exchange(mIsGiving, false)) {
    // What was held came first.
    Give();
  }
  return isHeld;
}

void InputHold::Append(QWindow& aWindow, const QEvent& aEvent) {
  const QEvent::Type type = aEvent.type();
  if (type == QEvent::MouseMove && !mHeld.empty() && mHeld.back().type == type && mHeld.back().window == &aWindow) {
    // Of moves in a row the last one tells where the mouse is.
    mHeld.pop_back();
  }
  mHeld.push_back({&aWindow, type, FindInput(type)->keep(aEvent)});
}

void InputHold::PostGive() {
  if (!mHeld.empty() && !mIsGivePosted) {
    mIsGivePosted = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
          mIsGivePosted = false;
          Give();
        },
        Qt::QueuedConnection);
  }
}

/// Everything; while a pump works, what is for that pump's window alone.
void InputHold::Give() {
  const QPointer<InputHold> self(this);
  while (std::optional<HeldInput> input = TakeNext()) {
    if (!IsBlocked(*input->window)) {
      mIsGiving = true;
      input->send(*input->window);
      if (self.isNull()) {
        return;
      }
      mIsGiving = false;
    }
  }
}

std::optional<InputHold::HeldInput> InputHold::TakeNext() {
  std::erase_if(mHeld, [](const HeldInput& aInput) { return aInput.window.isNull(); });
  const Pump* pump = GetActivePump();
  const auto next = std::find_if(mHeld.begin(), mHeld.end(), [pump](const HeldInput& aInput) {
    return pump == nullptr || pump->Covers(*aInput.window);
  });
  if (next == mHeld.end()) {
    return std::nullopt;
  }
  std::optional<HeldInput> input = std::move(*next);
  mHeld.erase(next);
  return input;
}

} // namespace krgui
