#include "platform/deferreddeletions.h"

#include <QCoreApplication>
#include <QEvent>

#include <utility>

namespace krgui {

namespace {

using Objects = std::vector<QPointer<QObject>>;

/// Flushes from inside an event's delivery: asked there, the toolkit deletes what was given up outside of all
/// deliveries, or in one at the same depth or deeper, which has then returned. Handlers further out keep their objects.
class Delivery : public QObject {
public:
  explicit Delivery(const Objects& aObjects) : mObjects(aObjects) {}

  bool event(QEvent*) override {
    for (const QPointer<QObject>& object : mObjects) {
      if (object) {
        QCoreApplication::sendPostedEvents(object, QEvent::DeferredDelete);
      }
    }
    return true;
  }

private:
  const Objects& mObjects;
};

} // namespace

DeferredDeletions::Hold::Hold(std::shared_ptr<DeferredDeletions> aDeletions) : mDeletions(std::move(aDeletions)) {
  ++mDeletions->mHolds;
}

DeferredDeletions::Hold::~Hold() {
  --mDeletions->mHolds;
}

void DeferredDeletions::Add(QObject& aObject) {
  aObject.deleteLater();
  mWaiting.emplace_back(&aObject);
}

void DeferredDeletions::Flush() {
  std::erase_if(mWaiting, [](const QPointer<QObject>& aObject) { return aObject.isNull(); });
  if (mHolds > 0 || mWaiting.empty() || QCoreApplication::instance() == nullptr) {
    return;
  }
  const Objects objects = mWaiting;
  Delivery delivery(objects);
  QEvent event(QEvent::User);
  QCoreApplication::sendEvent(&delivery, &event);
}

void DeferredDeletions::DeleteAll() {
  for (const QPointer<QObject>& object : std::exchange(mWaiting, {})) {
    delete object.data();
  }
}

} // namespace krgui
