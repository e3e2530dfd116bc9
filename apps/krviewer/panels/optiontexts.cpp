#include "panels/optiontexts.h"

namespace krviewer {

namespace {

// Not by UTF-8, of which the toolkit leaves out a mark at the beginning.
QString ToUnits(const KrString& aText) {
  return QString::fromStdU16String(aText.ToWide());
}

KrString FromUnits(const QString& aText) {
  return KrString(aText.toStdU16String());
}

} // namespace

QStringList ToTexts(const KrPropertyList& aOptions) {
  QStringList texts;
  for (const KrProperty& option : aOptions)
    texts << ToUnits(option.GetName()) << ToUnits(option.GetValue());
  return texts;
}

KrPropertyList ToOptions(const QStringList& aTexts) {
  KrPropertyList options;
  for (qsizetype index = 0; index + 1 < aTexts.size(); index += 2)
    options.Add({FromUnits(aTexts[index]), FromUnits(aTexts[index + 1])});
  return options;
}

} // namespace krviewer
