#pragma once
// Deletes what has ended but may still be on the stack. The toolkit's loop does that by itself; a host that runs no
// loop has only the next call to do it in.

#include <QObject>
#include <QPointer>

#include <memory>
#include <vector>

namespace krgui {

/// Objects of ended openings that wait for their deletion.
///
/// Thread: user interface. Ownership: what is added belongs to the toolkit, which deletes it at the latest in its next
/// loop.
class DeferredDeletions {
public:
  /// Nothing is flushed while one lives: around code of windows that the toolkit does not call.
  class Hold {
  public:
    explicit Hold(std::shared_ptr<DeferredDeletions> aDeletions);
    ~Hold();
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

  private:
    /// Shared, as that code may end the window that it belongs to.
    const std::shared_ptr<DeferredDeletions> mDeletions;
  };

  void Add(QObject& aObject);
  /// Deletes what was added outside of every event's delivery, or in one that has returned.
  void Flush();
  /// Deletes everything: the application object ends, no handler is on the stack.
  void DeleteAll();

private:
  std::vector<QPointer<QObject>> mWaiting;
  int mHolds = 0;
};

} // namespace krgui
