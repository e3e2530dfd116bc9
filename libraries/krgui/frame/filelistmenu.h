#pragma once
// The menu of the lists in a file dialog. It does not wait for the user.

class QFileDialog;

namespace krgui {

/// Gives the lists of the toolkit's file dialog a menu in place of its own, which lives on the stack of a loop that
/// ends later than a dialog that goes with its window. Without the entry that deletes: its question is such a one, too,
/// and takes a file's name for mark-up. Thread: user interface.
void ReplaceListMenus(QFileDialog& aDialog);

} // namespace krgui
