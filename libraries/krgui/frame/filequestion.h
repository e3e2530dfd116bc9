#pragma once
// Asks for a file, one to be read or one to be written. What is done with it, and what may be in it, is left to whoever
// asks.

#include <QString>
#include <QStringList>

class QWidget;

namespace krgui {

/// What is asked for.
struct FileQuestion {
  QString objectName;      ///< The dialog's, to be found by.
  QString caption;         ///< Plain text.
  QStringList filters = {};///< As the toolkit writes them; none for all files.
  bool hidesPatterns = false; ///< Filters are shown without the patterns in the last brackets of each.
  QString suffix = {};     ///< Appended to a name without one, of a file to be written.
  QString name = {};       ///< What is proposed.
};

/// The file to read; empty when the user does not want to, or aOwner ended. It need not exist.
QString AskForFileToRead(QWidget* aOwner, const FileQuestion& aQuestion, QString& aFolder);
/// The same of an existing file on an existing path: others are refused.
QString AskForExistingFile(QWidget* aOwner, const FileQuestion& aQuestion, QString& aFolder);
/// The file to write, which the user lets be replaced where it is there already; empty as above.
QString AskForFileToWrite(QWidget* aOwner, const FileQuestion& aQuestion, QString& aFolder);

} // namespace krgui
