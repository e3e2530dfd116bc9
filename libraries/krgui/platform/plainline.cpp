#include "platform/plainline.h"

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

} // namespace

QString ToPlainLine(const KrString& aText) {
  QString text = QString::fromStdU16String(aText.ToWide());
  std::replace_if(text.begin(), text.end(), BreaksTheLine, QLatin1Char(' '));
  return text;
}

QString ToPlainToolTip(const QString& aText) {
  return QStringLiteral("<qt>") + aText.toHtmlEscaped() + QStringLiteral("</qt>");
}

} // namespace krgui
