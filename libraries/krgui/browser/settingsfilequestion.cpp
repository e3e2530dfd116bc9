#include "browser/settingsfilequestion.h"

#include "frame/filequestion.h"

#include <QChar>

namespace krgui {

namespace {

constexpr int kMostLettersOfName = 80;

QString& GetFolder() {
  static QString& folder = *new QString; // Never destroyed.
  return folder;
}

/// A device's name as the name of a file.
QString MakeFileName(const QString& aName) {
  QString name;
  for (const QChar letter : aName.left(kMostLettersOfName))
    name += letter.isLetterOrNumber() || letter == QLatin1Char('-') ? letter : QLatin1Char('_');
  return (name.isEmpty() ? QStringLiteral("settings") : name) + QStringLiteral(".txt");
}

FileQuestion MakeQuestion(const QString& aCaption, const QString& aName) {
  return {.objectName = QStringLiteral("settingsfile"),
          .caption = aCaption,
          .filters = {QStringLiteral("Settings (*.txt)"), QStringLiteral("All files (*)")},
          .suffix = QStringLiteral("txt"),
          .name = aName};
}

} // namespace

QString AskForFileToSave(QWidget* aOwner, const QString& aName) {
  return AskForFileToWrite(aOwner, MakeQuestion(QStringLiteral("Save Features"), MakeFileName(aName)), GetFolder());
}

QString AskForFileToRestore(QWidget* aOwner) {
  return AskForFileToRead(aOwner, MakeQuestion(QStringLiteral("Restore Features"), {}), GetFolder());
}

} // namespace krgui
