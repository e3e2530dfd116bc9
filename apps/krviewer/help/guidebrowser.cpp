#include "help/guidebrowser.h"

#include <QAbstractTextDocumentLayout>
#include <QDesktopServices>
#include <QEvent>
#include <QFileInfo>
#include <QImage>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>
#include <cmath>
#include <vector>

namespace krviewer {

namespace {

const QString kDocumentEnding = QStringLiteral("md");

// A link's lightness is at least so large a part of the text's away from the ground's.
constexpr int kLeastPart = 3;

// Dark desktops do not always have a colour for links: the toolkit's own is next to invisible on a dark ground.
QColor FindLinkColour(const QPalette& aPalette) {
  const int ground = qGray(aPalette.color(QPalette::Base).rgb());
  const auto getDistance = [ground](const QColor& aColour) { return std::abs(qGray(aColour.rgb()) - ground); };
  const QColor link = aPalette.color(QPalette::Link);
  const QColor text = aPalette.color(QPalette::Text);
  return kLeastPart * getDistance(link) < getDistance(text) ? text : link;
}

std::vector<QTextCursor> FindLinks(QTextDocument& aDocument) {
  std::vector<QTextCursor> links;
  for (QTextBlock block = aDocument.begin(); block.isValid(); block = block.next())
    for (QTextBlock::Iterator part = block.begin(); !part.atEnd(); ++part)
      if (const QTextFragment fragment = part.fragment(); fragment.charFormat().isAnchor()) {
        QTextCursor& link = links.emplace_back(&aDocument);
        link.setPosition(fragment.position());
        link.setPosition(fragment.position() + fragment.length(), QTextCursor::KeepAnchor);
      }
  return links;
}

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
  ColourLinks();
  if (aName.hasFragment())
    GoToHeading(aName.fragment());
}

void GuideBrowser::changeEvent(QEvent* aEvent) {
  QTextBrowser::changeEvent(aEvent);
  if (aEvent->type() == QEvent::PaletteChange)
    ColourLinks();
}

void GuideBrowser::ColourLinks() {
  QTextCharFormat format;
  format.setForeground(FindLinkColour(palette()));
  format.setFontUnderline(true);
  for (QTextCursor& link : FindLinks(*document()))
    link.mergeCharFormat(format);
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
  QImage picture(source().resolved(aName).toLocalFile());
  const int room = viewport()->width() - 2 * static_cast<int>(std::ceil(document()->documentMargin()));
  if (picture.width() <= room || room <= 0)
    return picture;
  // As many pixels as the screen has for it, or the picture itself.
  const int pixels = std::min(picture.width(), static_cast<int>(room * devicePixelRatioF()));
  picture = picture.scaledToWidth(pixels, Qt::SmoothTransformation);
  picture.setDevicePixelRatio(static_cast<double>(pixels) / room);
  return picture;
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
