#pragma once
// Shows documents that are installed with the program, and follows their links. The one place where texts are taken for
// markup: no text of a device, of a user or of the network comes here.

#include <QTextBrowser>

namespace krviewer {

/// Thread: user interface.
class GuideBrowser : public QTextBrowser {
  Q_OBJECT

public:
  explicit GuideBrowser(QWidget* aParent = nullptr);

  /// Follows a link of the document: to another one, to a heading, or to a page for the system's browser.
  void Follow(const QUrl& aLink);

signals:
  /// What there is to be said of the link that was followed last; empty when it led somewhere.
  void Told(const QString& aText);

protected:
  void changeEvent(QEvent* aEvent) override;
  void doSetSource(const QUrl& aName, QTextDocument::ResourceType aType) override;
  /// Pictures that are wider than the window are made smaller.
  QVariant loadResource(int aType, const QUrl& aName) override;

private:
  void ColourLinks();
  void GoToHeading(const QString& aFragment);
};

/// How links name a heading: "6 Frames are incomplete?" is 6-frames-are-incomplete.
QString MakeHeadingName(const QString& aHeading);

} // namespace krviewer
