#include "window/showntext.h"

namespace krviewer {

QString ToLine(const QString& aText, int aMostLetters) {
  QString text = aText.simplified();
  for (QChar& letter : text)
    if (!letter.isPrint() && !letter.isSurrogate())
      letter = QChar::ReplacementCharacter;
  if (text.size() > aMostLetters)
    text = text.first(aMostLetters) + QStringLiteral("…");
  return text;
}

QString ToEntry(const QString& aText) {
  return QString(aText).replace(QLatin1Char('&'), QStringLiteral("&&"));
}

QString ToToolTip(const QString& aText) {
  return QStringLiteral("<p style='white-space:pre-wrap'>%1</p>").arg(aText.toHtmlEscaped());
}

} // namespace krviewer
