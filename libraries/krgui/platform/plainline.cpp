#include "platform/plainline.h"

#include <QStringList>

#include <algorithm>

namespace krgui {

namespace {

bool BreaksTheLine(QChar aCharacter) {
  switch (aCharacter.category()) {
  case QChar::Other_Control:
  case QChar::Separator_Line:
  case QChar::Separator_Paragraph:
    return true;
  default:
    break;
  }
  switch (aCharacter.direction()) {
  case QChar::DirLRE:
  case QChar::DirLRO:
  case QChar::DirRLE:
  case QChar::DirRLO:
  case QChar::DirPDF:
  case QChar::DirLRI:
  case QChar::DirRLI:
  case QChar::DirFSI:
  case QChar::DirPDI:
    return true;
  default:
    return false;
  }
}

QString MakePlain(QString aLine) {
  std::replace_if(aLine.begin(), aLine.end(), BreaksTheLine, QLatin1Char(' '));
  return aLine;
}

} // namespace

QString ToPlainLine(const KrString& aText) {
  return MakePlain(QString::fromStdU16String(aText.ToWide()));
}

QString ToPlainLine(const KrString& aText, int aMostUnits) {
  constexpr std::size_t kMostBytesOfAUnit = 4;
  const std::size_t bytes = kMostBytesOfAUnit * static_cast<std::size_t>(std::max(aMostUnits, 0));
  QString line = ToPlainLine(aText.GetLength() <= bytes ? aText : KrString(aText.ToUtf8().substr(0, bytes)));
  if (line.size() > aMostUnits) {
    line.truncate(std::max(aMostUnits, 0));
    if (!line.isEmpty() && line.back().isHighSurrogate()) {
      line.chop(1);
    }
  }
  return line;
}

QString ToPlainToolTip(const QString& aText) {
  QStringList lines = QString(aText).replace(QLatin1String("\r\n"), QLatin1String("\n")).split(QLatin1Char('\n'));
  for (QString& line : lines)
    line = MakePlain(line).toHtmlEscaped();
  // Markup takes blanks in a row for one.
  return QStringLiteral("<qt><div style=\"white-space:pre-wrap\">") + lines.join(QStringLiteral("<br>")) +
         QStringLiteral("</div></qt>");
}

} // namespace krgui
