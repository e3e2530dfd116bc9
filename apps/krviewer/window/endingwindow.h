#pragma once
// What the user sees of an end that takes a while: what is still under way, and how to give it up. What that is, and
// how it is told, is left to whoever ends.

#include "window/stallwatch.h"

#include <QDialog>
#include <QString>
#include <QTimer>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

class QLabel;
class QProgressBar;
class QPushButton;

namespace krviewer {

/// Of what is awaited however long it takes.
inline constexpr std::chrono::milliseconds kNoLimit = std::chrono::milliseconds::max();

/// Something that has to come to its end first.
struct EndingWork {
  std::function<bool()> isOver;      ///< Asked often.
  std::function<QString()> describe; ///< Says in a sentence what is under way.
  std::function<bool()> isRecording; ///< Whether it may be given up.
  std::function<void()> abandon;     ///< Gives it up; it is over as soon as the disk has what it is being given.
  /// Changes as files get on; nothing where none is being written.
  std::function<std::optional<std::uint64_t>()> getWritten;
  std::function<void()> leave;        ///< Does not wait for the files any longer.
  std::function<bool()> awaitsCamera; ///< Whether it is the camera alone that keeps it.
  std::function<void()> leaveCamera;  ///< Does not wait for the camera any longer.
  /// So long the camera is awaited at most; kNoLimit for one that nobody is offered to leave.
  std::chrono::milliseconds cameraLimit = kNoLimit;
};

/// What an end has come to.
enum class EndingResult {
  Over,
  Interrupted, ///< The application's loop was ended.
  TooLate      ///< The limit has passed.
};

/// Thread: user interface. Closing it changes nothing: data is given up by its buttons alone.
class EndingWindow : public QDialog {
  Q_OBJECT

public:
  /// A steady clock in milliseconds.
  using Clock = std::function<std::uint64_t()>;

  /// What is over before is no reason for a window.
  static constexpr std::chrono::milliseconds kPatience{500};

  explicit EndingWindow(std::vector<EndingWork> aWorks, Clock aClock = {});

  /// Runs a loop until everything is over, the limit has passed or the application's loop is ended. The window is shown
  /// when that takes a moment. Files that do not get on for a while, and cameras, need not be waited for: it offers
  /// that, and leaves a camera by itself when its limit has passed.
  EndingResult Await(std::chrono::milliseconds aLimit = kNoLimit);
  /// What it says of what is still under way.
  QString GetText() const;
  /// Shows what has gone wrong, and runs a loop until the user has read it.
  void Tell(const QString& aTrouble);

signals:
  /// Nothing is left to be awaited, or to be read.
  void Over();

private:
  struct Watched {
    EndingWork work;
    StallWatch watch = {};
    bool isAbandoned = false;
    std::optional<std::uint64_t> cameraSinceMs = {}; ///< When its camera alone was left to be awaited.
  };

  /// What closes it: its frame, Escape and, of trouble that was read, its button.
  void reject() override;
  void RunUntilOver();
  void LookAgain();
  void LookAtCamera(Watched& aWatched, std::uint64_t aNowMs);
  QString DescribeOne(const Watched& aWatched, std::uint64_t aNowMs) const;
  void Describe(std::uint64_t aNowMs);
  void SetText(const QString& aText);
  void Abandon();
  void LeaveStalled();
  void LeaveCameras();

  const Clock mClock;
  std::vector<Watched> mWorks; ///< Those that are not over.
  QLabel* const mSign;         ///< Of trouble.
  QLabel* const mText;
  QProgressBar* const mBar; ///< Moves while something is awaited; nobody knows for how long.
  QPushButton* const mLeave;
  QPushButton* const mLeaveCamera;
  QPushButton* const mAbandon;
  QPushButton* const mClose;
  QTimer mTimer;
  QTimer mPatience;     ///< Until the window is shown.
  bool mIsTold = false; ///< It is trouble that is shown.
};

} // namespace krviewer
