#pragma once
// The entries of the viewer's menu for one kind of bridges, with their file dialogs and messages. What they do is left
// to the bridges' window.

#include "mainwindow.h"

#include <QKeySequence>
#include <QObject>
#include <QPointer>
#include <QString>

class KrStringList;
class QMessageBox;

namespace krviewer {

class BridgeWindow;
enum class BridgeNews;

/// The words for one kind of bridges.
struct BridgeWords {
  QString show; ///< The entry of the menu, as the next two.
  QKeySequence showKey;
  QString load;
  QString save;
  QString name;       ///< Of the kind, as a title.
  QString notTakenUp; ///< Before the lines of what did not start when the device came.
};

BridgeWords GetSerialBridgeWords();
BridgeWords GetCameraBridgeWords();

/// Thread: user interface. Ownership: borrows the window and the bridges. No entry waits for the user.
class BridgeMenu : public QObject {
  Q_OBJECT

public:
  BridgeMenu(MainWindow& aWindow, BridgeWindow& aBridges, const BridgeWords& aWords);
  ~BridgeMenu() override;

  /// Enables the entries that make sense at the moment; to be called often.
  void LookAgain();

private:
  void ShowManager();
  void AskForFile(bool aIsToSave);
  void Load(const QString& aFileName);
  void Save(const QString& aFileName);
  void TellNews(BridgeNews aNews, const KrStringList& aLines);
  void Tell(const QString& aWhat, const KrStringList& aLines);

  MainWindow& mWindow;
  BridgeWindow& mBridges;
  const BridgeWords mWords;
  QAction* const mShow;
  QAction* const mLoad;
  QAction* const mSave;
  QPointer<QMessageBox> mMessage; ///< The last one; ends when the user closes it.
};

} // namespace krviewer
