#pragma once
// Keeps input for other windows waiting while one window pumps its messages, as a message queue per window would.
// Whether a pump goes on is left to it.

#include <QEvent>
#include <QObject>
#include <QPointer>
#include <QWidget>

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <vector>

class QWindow;

namespace krgui {

/// The input that waits, and the pumps that make it wait; one for the application.
///
/// Thread: user interface. Ownership: belongs to the application object.
class InputHold : public QObject {
  Q_OBJECT

public:
  /// One pump at work: while it lives, input that reaches other windows in the loop it was made in is held.
  class Pump {
  public:
    /// aRoot: the widget whose events, with those of all below it, are the pump's own. aOnOwn hears of each of them,
    /// by the number of its type, before it is delivered.
    Pump(QWidget& aRoot, std::function<void(std::uint32_t)> aOnOwn);
    ~Pump();
    Pump(const Pump&) = delete;
    Pump& operator=(const Pump&) = delete;

    /// One pass of the toolkit's dispatcher: whether any event was for this pump's own widgets.
    bool Pass();

  private:
    friend class InputHold;
    bool Covers(const QObject& aReceiver) const;

    InputHold& mHold;
    QPointer<QWidget> mRoot;
    int mLoopLevel;
    std::function<void(std::uint32_t)> mOnOwn;
    bool mHadOwn = false;
  };

protected:
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;

private:
  struct HeldInput {
    QPointer<QWindow> window;
    QEvent::Type type;
    std::function<void(QWindow&)> send; ///< Makes the event anew; an event that is kept is used up.
  };

  explicit InputHold(QObject* aApplication);
  static InputHold& Get();
  Pump* GetActivePump() const;
  bool HoldInput(QWindow& aWindow, QEvent& aEvent);
  void Append(QWindow& aWindow, const QEvent& aEvent);
  void PostGive();
  void Give();
  std::optional<HeldInput> TakeNext();

  std::vector<Pump*> mPumps;
  std::deque<HeldInput> mHeld;
  bool mIsGivePosted = false;
  bool mIsGiving = false; ///< The next input that comes is the one being given.
};

} // namespace krgui
