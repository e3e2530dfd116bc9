#include "browser/descriptionctrl.h"

#include "logic/browser/markup.h"
#include "platform/toqstring.h"

#include <QEvent>
#include <QFontInfo>
#include <QTextBlock>
#include <QTextCharFormat>
#include <QTextCursor>
#include <QTextDocument>

namespace krgui {

namespace {

/// Marks a title's characters, which have a height of their own.
constexpr int kIsTitle = QTextFormat::UserProperty;

QTextCharFormat MakeBold() {
  QTextCharFormat format;
  format.setFontWeight(QFont::Bold);
  return format;
}

QTextCharFormat MakeTitle(const QFont& aDefault) {
  QTextCharFormat format = MakeBold();
  format.setProperty(QTextFormat::FontPixelSize, ScaleTitleHeight(QFontInfo(aDefault).pixelSize()));
  format.setProperty(kIsTitle, true);
  return format;
}

} // namespace

DescriptionCtrl::DescriptionCtrl(QWidget* aParent) : QTextEdit(aParent) {
  setReadOnly(true);
  setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  setAcceptRichText(false);
  setUndoRedoEnabled(false);
  setTabChangesFocus(true);
  setAccessibleName(QStringLiteral("Description"));
}

void DescriptionCtrl::Clear() {
  clear();
  mPosition = 0;
}

void DescriptionCtrl::AddTitle(const KrString& aText) {
  Append(ToQString(aText), MakeTitle(font()));
}

void DescriptionCtrl::AddBold(const KrString& aText) {
  Append(ToQString(aText), MakeBold());
}

void DescriptionCtrl::AddText(const KrString& aText) {
  Append(ToQString(aText), {});
}

void DescriptionCtrl::AddMarkup(const KrString& aText) {
  const std::vector<MarkupRun> runs = SplitMarkup(aText.ToUtf8());
  // One change of the document, so that a text of many runs is laid out once.
  QTextCursor whole(document());
  whole.beginEditBlock();
  for (const MarkupRun& run : runs) {
    const QString text = QString::fromUtf8(run.text.data(), static_cast<qsizetype>(run.text.size()));
    Append(text, run.isBold ? MakeBold() : QTextCharFormat());
  }
  whole.endEditBlock();
}

void DescriptionCtrl::Append(const QString& aText, const QTextCharFormat& aFormat) {
  const bool isFirst = mPosition == 0;
  QTextCursor cursor(document());
  cursor.movePosition(QTextCursor::End);
  cursor.insertText(aText, aFormat);
  mPosition = cursor.position();
  // Who reads by keyboard begins at the beginning.
  if (isFirst)
    moveCursor(QTextCursor::Start);
}

void DescriptionCtrl::ScaleTitles() {
  const QTextCharFormat format = MakeTitle(font());
  for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
    QTextCursor cursor(block);
    if (block.charFormat().boolProperty(kIsTitle))
      cursor.mergeBlockCharFormat(format);
    for (auto part = block.begin(); !part.atEnd(); ++part) {
      const QTextFragment fragment = part.fragment();
      if (!fragment.charFormat().boolProperty(kIsTitle))
        continue;
      cursor.setPosition(fragment.position());
      cursor.setPosition(fragment.position() + fragment.length(), QTextCursor::KeepAnchor);
      cursor.mergeCharFormat(format);
    }
  }
}

void DescriptionCtrl::changeEvent(QEvent* aEvent) {
  QTextEdit::changeEvent(aEvent);
  if (aEvent->type() == QEvent::FontChange)
    ScaleTitles();
}

} // namespace krgui
