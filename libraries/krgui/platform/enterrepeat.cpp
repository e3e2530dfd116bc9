#include "platform/enterrepeat.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QPointer>

#include <cstdint>

namespace krgui {

namespace {

/// The window system reports a key that is held as releases and presses in turn. The toolkit marks a repeat by looking
/// for the press behind a release, which may not have come yet; the window system gives both the same time.
class EnterReleases final : public QObject {
public:
  explicit EnterReleases(QCoreApplication& aApplication) : QObject(&aApplication) {
    aApplication.installEventFilter(this);
  }

  std::uint64_t GetLastMs() const { return mLastMs; }

protected:
  bool eventFilter(QObject*, QEvent* aEvent) override {
    if (aEvent->type() == QEvent::KeyRelease && IsEnter(static_cast<const QKeyEvent&>(*aEvent)))
      mLastMs = static_cast<const QKeyEvent&>(*aEvent).timestamp();
    return false;
  }

private:
  std::uint64_t mLastMs = 0; ///< As the window system counts; 0 where it does not.
};

/// The application's, with which it ends.
QPointer<EnterReleases>& GetReleases() {
  static QPointer<EnterReleases>& releases = *new QPointer<EnterReleases>; // Never destroyed.
  return releases;
}

} // namespace

bool IsEnter(const QKeyEvent& aEvent) {
  return aEvent.key() == Qt::Key_Return || aEvent.key() == Qt::Key_Enter;
}

void WatchEnter() {
  if (!GetReleases())
    GetReleases() = new EnterReleases(*QCoreApplication::instance());
}

bool IsRepeatedEnter(const QKeyEvent& aEvent) {
  if (!IsEnter(aEvent))
    return false;
  const bool isOfLastRelease =
      GetReleases() && aEvent.timestamp() != 0 && aEvent.timestamp() == GetReleases()->GetLastMs();
  return aEvent.isAutoRepeat() || isOfLastRelease;
}

} // namespace krgui
