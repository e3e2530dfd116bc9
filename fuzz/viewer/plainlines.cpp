// Whatever a device, a file or a user may say: as a line of a control, a message, a title, a menu's entry or a tooltip
// it is one line, or a few, without what ends or turns them, cut between characters, and no markup.

#include "platform/plainline.h"
#include "require.h"
#include "window/showntext.h"

#include "krbase/krstring.h"

#include <QString>
#include <QStringList>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace {

constexpr std::size_t kMostBytes = 4096; // Longer ones show the same.

bool IsWellFormed(const QString& aText) {
  return aText.isValidUtf16();
}

bool HasBreak(const QString& aText) {
  return std::any_of(aText.begin(), aText.end(), [](QChar aUnit) {
    return aUnit.category() == QChar::Other_Control || aUnit == QChar::LineSeparator ||
           aUnit == QChar::ParagraphSeparator || (aUnit >= QChar(0x202A) && aUnit <= QChar(0x202E)) ||
           (aUnit >= QChar(0x2066) && aUnit <= QChar(0x2069));
  });
}

// Each character keeps its place.
void CheckPlainLine(const KrString& aText, int aMost) {
  const QString line = krgui::ToPlainLine(aText);
  const QString whole = QString::fromStdU16String(aText.ToWide());
  Require(!HasBreak(line) && IsWellFormed(line) && line.size() == whole.size());
  for (qsizetype at = 0; at < line.size(); ++at)
    Require(line[at] == whole[at] || (line[at] == QLatin1Char(' ') && HasBreak(QString(whole[at]))));
  const QString cut = krgui::ToPlainLine(aText, aMost);
  Require(cut.size() <= aMost && IsWellFormed(cut) && line.startsWith(cut));
  Require(cut.size() >= std::min<qsizetype>(line.size(), aMost) - 1);
}

// Between our own tags is nothing that would begin another.
void CheckToolTip(QString aToolTip, const QString& aBegin, const QString& aEnd) {
  Require(aToolTip.startsWith(aBegin) && aToolTip.endsWith(aEnd) && aToolTip.size() >= aBegin.size() + aEnd.size());
  aToolTip = aToolTip.mid(aBegin.size(), aToolTip.size() - aBegin.size() - aEnd.size());
  aToolTip.remove(QStringLiteral("<br>"));
  Require(!aToolTip.contains(QLatin1Char('<')) && !aToolTip.contains(QLatin1Char('>')));
}

void CheckShown(const QString& aText, int aMost) {
  const QString line = krviewer::ToLine(aText, aMost);
  Require(!HasBreak(line) && line.size() <= aMost + 1 && IsWellFormed(line));
  Require(krviewer::ToLine(line, aMost + 1) == line);
  const QString message = krviewer::ToMessage(aText);
  Require(message.count(QLatin1Char('\n')) <= 5 && message.size() <= 2000);
  for (const QString& each : message.split(QLatin1Char('\n')))
    Require(!HasBreak(each) && IsWellFormed(each));
  // What the toolkit makes of them is the text again.
  Require(krviewer::ToTitle(aText).replace(QStringLiteral("[*][*]"), QStringLiteral("[*]")) == aText);
  Require(krviewer::ToEntry(aText).replace(QStringLiteral("&&"), QStringLiteral("&")) == aText);
}

} // namespace

// The first byte says where the text is cut.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  if (aSize == 0 || aSize > kMostBytes)
    return 0;
  const int most = aData[0];
  const KrString text(std::string_view(reinterpret_cast<const char*>(aData) + 1, aSize - 1));
  const QString shown = krviewer::ToText(text);
  CheckPlainLine(text, most);
  CheckShown(shown, most);
  CheckToolTip(krgui::ToPlainToolTip(shown), QStringLiteral("<qt><div style=\"white-space:pre-wrap\">"),
               QStringLiteral("</div></qt>"));
  CheckToolTip(krviewer::ToToolTip(shown), QStringLiteral("<p style='white-space:pre-wrap'>"), QStringLiteral("</p>"));
  return 0;
}
