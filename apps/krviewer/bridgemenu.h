#pragma once
// The entries of the viewer's menu for serial bridges, with their file dialogs and messages. What they do is left to
// SerialBridges.

#include "mainwindow.h"
#include "serialbridges.h"

#include <QObject>
#include <QPointer>

class QMessageBox;

namespace krviewer {

/// Thread: user interface. Ownership: borrows the window and the bridges. No entry waits for the user.
class BridgeMenu : public QObject {
  Q_OBJECT

public:
  BridgeMenu(MainWindow& aWindow, SerialBridges& aBridges);
  ~BridgeMenu() override;

  /// Enables the entries that make sense at the moment; to be called often.
  void LookAgain();

private:
  void ShowManager();
  void AskForFile(bool aIsToSave);
  void Load(const QString& aFileName);
  void Save(const QString& aFileName);
  void Tell(const QString& aWhat, const KrStringList& aLines);

  MainWindow& mWindow;
  SerialBridges& mBridges;
  QAction* const mShow;
  QPointer<QMessageBox> mMessage; ///< The last one; ends when the user closes it.
};

} // namespace krviewer
