#pragma once
// What the user sees of an end that takes a while: what is still under way, and how to give it up. What that is, and
// how it is told, is left to whoever ends.

#include <QString>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <vector>

class QLabel;
class QPushButton;

namespace krviewer {

/// Something that has to come to its end first.
struct EndingWork {
  std::function<bool()> isOver;      ///< Asked often.
  std::function<QString()> describe; ///< Says in a sentence what is under way.
  std::function<bool()> isRecording; ///< Whether it may be given up.
  std::function<void()> abandon;     ///< Gives it up; it is over a moment later.
};

/// Thread: user interface. Closing it changes nothing: data is given up by its button alone.
class EndingWindow : public QWidget {
  Q_OBJECT

public:
  explicit EndingWindow(std::vector<EndingWork> aWorks);

  /// Runs a loop until everything is over, or the application's loop is ended. The window is shown when that takes a
  /// moment.
  void Await();
  /// Shows what has gone wrong, and runs a loop until the user has read it.
  void Tell(const QString& aTrouble);

signals:
  /// Nothing is left to be awaited, or to be read.
  void Over();

protected:
  void closeEvent(QCloseEvent* aEvent) override;

private:
  void RunUntilOver();
  void LookAgain();
  void OnButton();
  bool IsAnyRecording() const;

  std::vector<EndingWork> mWorks; ///< Those that are not over.
  QLabel* const mText;
  QPushButton* const mButton;
  QTimer mTimer;
  bool mIsTold = false; ///< It is trouble that is shown.
};

} // namespace krviewer
