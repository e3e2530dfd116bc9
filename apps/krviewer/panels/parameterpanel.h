#pragma once
// A panel with a feature browser of one kind of the camera's parameters: its own, those of its stream, those of the
// connection. The browser comes with the panel's first showing; a panel that was never shown reads nothing.

#include "panels/featurebrowser.h"

#include <QStringList>
#include <QWidget>

namespace krviewer {

/// Thread: user interface. Ownership: a child of its dock; borrows parameters, which are given back before it ends.
class ParameterPanel : public QWidget {
  Q_OBJECT

public:
  ParameterPanel();

  /// Shows what is lent while the panel is wanted, and gives back what is wanted back; to be called often.
  void Follow(Loan<KrGenParameterArray>& aParameters, bool aIsWanted);
  void GiveBack(Loan<KrGenParameterArray>& aParameters) { mBrowser.GiveBack(aParameters); }
  /// What the user has chosen of how features are shown: names and values in turn, as the library has them.
  QStringList SaveOptions();
  void RestoreOptions(const QStringList& aOptions);
  KrGenBrowserWnd& GetWindow() { return mBrowser.GetWindow(); }

private:
  bool Open();

  FeatureBrowser mBrowser;
  bool mHasFailed = false;
};

} // namespace krviewer
