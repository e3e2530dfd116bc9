#pragma once
// Asks for the file that settings are saved to or restored from. The folder is remembered within the process.

#include <QString>

class QWidget;

namespace krgui {

/// The file to write, which the user lets be replaced where it is there already; empty when the user does not want to,
/// or aOwner ended. aName is what is proposed, whatever it holds.
QString AskForFileToSave(QWidget* aOwner, const QString& aName);
/// The file to read; empty as above.
QString AskForFileToRestore(QWidget* aOwner);

} // namespace krgui
