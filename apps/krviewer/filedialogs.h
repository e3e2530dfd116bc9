#pragma once
// Asks for the name of a file without waiting for the answer. What becomes of the file is left to whoever asks.

#include <QString>

class QFileDialog;
class QWidget;

namespace krviewer {

/// What is asked for.
struct FileQuestion {
  QString title;
  QString filter;    ///< The kind of files with its pattern; all files can be chosen besides.
  QString suffix;    ///< Without a point; appended to a name without one, of a file to be saved.
  QString name = {}; ///< What is proposed, of a file to be saved.
};

/// Opens a dialog for a file that is there; its signal fileSelected brings the answer.
///
/// Thread: user interface. Ownership: the dialog ends when it is closed, or with its parent.
QFileDialog& OpenLoadDialog(QWidget& aParent, const FileQuestion& aQuestion);
/// The same for a file to be saved, which the user lets be replaced where it is there already.
QFileDialog& OpenSaveDialog(QWidget& aParent, const FileQuestion& aQuestion);

} // namespace krviewer
