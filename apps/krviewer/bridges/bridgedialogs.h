#pragma once
// What a camera's user is asked and told about one kind of its bridges: files, messages, the window itself. What they
// do is left to the bridges' window, the entries that ask for them to the viewer's.

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

class KrStringList;
class QMessageBox;
class QWidget;

namespace krviewer {

class BridgeWindow;
enum class BridgeNews;

/// The words for one kind of bridges.
struct BridgeWords {
  QString load; ///< The title of the dialog that asks for a file, as the next.
  QString save;
  QString name;       ///< Of the kind, as a title.
  QString notTakenUp; ///< Before the lines of what did not start when the device came.
};

BridgeWords GetSerialBridgeWords();
BridgeWords GetCameraBridgeWords();

/// Thread: user interface. Ownership: borrows the page over which it asks, and the bridges. Nothing waits for the user.
class BridgeDialogs : public QObject {
  Q_OBJECT

public:
  BridgeDialogs(QWidget& aPage, BridgeWindow& aBridges, const BridgeWords& aWords);
  ~BridgeDialogs() override;

  /// To be called often.
  void LookAgain();
  bool CanShow() const;
  /// Opens the bridges' window.
  void Show();
  /// Whether a setup can be loaded or saved at the moment.
  bool CanUseFiles() const { return GetHindrance().isEmpty(); }
  /// Why it cannot; empty where it can.
  QString GetHindrance() const;
  void AskForLoading();
  void AskForSaving();

  /// Whether a setup is being written. It is in any case, unless it is left.
  bool IsWriting() const;
  /// Nobody looks any more: what goes wrong is kept, and told on the error stream alone.
  void End() { mHasEnded = true; }
  void FollowFile();
  void AwaitWritten();
  /// As BridgeWindow::LeaveFile.
  void LeaveFile();
  /// What went wrong after the end.
  const QStringList& GetFailures() const { return mFailures; }

private:
  void Load(const QString& aFileName);
  void Save(const QString& aFileName);
  void TellNews(BridgeNews aNews, const KrStringList& aLines);
  void Tell(const QString& aWhat, const KrStringList& aLines);

  QWidget& mPage;
  BridgeWindow& mBridges;
  const BridgeWords mWords;
  QPointer<QMessageBox> mMessage; ///< The last one; ends when the user closes it.
  bool mHasEnded = false;
  QStringList mFailures;
};

} // namespace krviewer
