#include "panels/optiontexts.h"

#include <string>

namespace krviewer {

namespace {

// As it is: where the toolkit converts, it takes a mark at the beginning for one of the order of bytes, and leaves it
// out.
QString ToUnits(const KrString& aText) {
  const std::u16string units = aText.ToWide();
  return QStringView(units).toString();
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
