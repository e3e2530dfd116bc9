#include "window/showntext.h"

#include <QStringList>

#include <algorithm>

namespace krviewer {

namespace {

/// No message is to grow beyond the screen.
constexpr qsizetype kMostLines = 5;
constexpr int kMostLettersOfALine = 300;

} // namespace

QString ToLine(const QString& aText, int aMostLetters) {
  QString text = aText.simplified();
  for (QChar& letter : text)
    if (!letter.isPrint() && !letter.isSurrogate())
      letter = QChar::ReplacementCharacter;
  if (text.size() > aMostLetters) {
    text.truncate(aMostLetters);
    // No character is cut in two.
    if (!text.isEmpty() && text.back().isHighSurrogate())
      text.chop(1);
    text += QStringLiteral("…");
  }
  return text;
}

QString ToMessage(const QString& aText) {
  const QStringList all = aText.split(QLatin1Char('\n'));
  QStringList lines;
  for (const QString& line : all.first(std::min(all.size(), kMostLines)))
    lines += ToLine(line, kMostLettersOfALine);
  if (all.size() > kMostLines)
    lines += QStringLiteral("And %1 more.").arg(all.size() - kMostLines);
  return lines.join(QLatin1Char('\n'));
}

QString ToTitle(const QString& aText) {
  return QString(aText).replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
}

QString ToEntry(const QString& aText) {
  return QString(aText).replace(QLatin1Char('&'), QStringLiteral("&&"));
}

QString ToToolTip(const QString& aText) {
  return QStringLiteral("<p style='white-space:pre-wrap'>%1</p>").arg(aText.toHtmlEscaped());
}

} // namespace krviewer
