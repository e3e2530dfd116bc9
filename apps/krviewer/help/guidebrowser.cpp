#include "help/guidebrowser.h"

#include <QAbstractTextDocumentLayout>
#include <QDesktopServices>
#include <QFileInfo>
#include <QImage>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>

#include <cmath>

namespace krviewer {

namespace {

const QString kDocumentEnding = QStringLiteral("md");

bool IsForTheSystem(const QUrl& aLink) {
  return aLink.scheme() == QStringLiteral("https") || aLink.scheme() == QStringLiteral("http");
}

} // namespace

GuideBrowser::GuideBrowser(QWidget* aParent) : QTextBrowser(aParent) {
  setAccessibleName(QStringLiteral("Guide"));
  setOpenLinks(false);
  connect(this, &QTextBrowser::anchorClicked, this, &GuideBrowser::Follow);
}

void GuideBrowser::Follow(const QUrl& aLink) {
  const QUrl link = source().resolved(aLink);
  const QFileInfo file(link.toLocalFile());
  QString trouble;
  if (IsForTheSystem(link)) {
    if (!QDesktopServices::openUrl(link))
      trouble = QStringLiteral("No program of this computer opens %1.").arg(link.toDisplayString());
  } else if (file.suffix() == kDocumentEnding && file.isFile()) {
    setSource(link);
  } else {
    trouble = QStringLiteral("%1 comes with the sources alone: it is not installed.").arg(file.fileName());
  }
  emit Told(trouble);
}

void GuideBrowser::doSetSource(const QUrl& aName, QTextDocument::ResourceType aType) {
  QTextBrowser::doSetSource(aName, aType);
  if (aName.hasFragment())
    GoToHeading(aName.fragment());
}

void GuideBrowser::GoToHeading(const QString& aFragment) {
  for (QTextBlock block = document()->begin(); block.isValid(); block = block.next())
    if (block.blockFormat().headingLevel() > 0 && MakeHeadingName(block.text()) == aFragment) {
      const QRectF place = document()->documentLayout()->blockBoundingRect(block);
      setTextCursor(QTextCursor(block));
      verticalScrollBar()->setValue(static_cast<int>(std::floor(place.top())));
      return;
    }
}

QVariant GuideBrowser::loadResource(int aType, const QUrl& aName) {
  if (aType != QTextDocument::ImageResource)
    return QTextBrowser::loadResource(aType, aName);
  const QImage picture(source().resolved(aName).toLocalFile());
  const int room = viewport()->width() - 2 * static_cast<int>(std::ceil(document()->documentMargin()));
  return picture.width() > room && room > 0 ? picture.scaledToWidth(room, Qt::SmoothTransformation) : picture;
}

QString MakeHeadingName(const QString& aHeading) {
  QString name;
  for (const QChar letter : aHeading.trimmed().toLower())
    if (letter.isLetterOrNumber() || letter == QLatin1Char('-') || letter == QLatin1Char('_'))
      name += letter;
    else if (letter.isSpace())
      name += QLatin1Char('-');
  return name;
}

} // namespace krviewer
