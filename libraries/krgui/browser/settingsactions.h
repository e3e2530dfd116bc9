#pragma once
// Saving the streamable features of a device to a file and restoring them from one, as the browser's context menu
// offers it: file dialogs, progress, a comparison before anything is written, and a list of what failed. What is
// compared is left to logic/browser/settingsdifference.h, reading and writing to the parameter array.

#include "krgenicam/krgenparameterarray.h"

#include <stop_token>

class QWidget;

namespace krgui {

// Both run modal loops and return whether aOwner still lives and aEnd was not requested: false says that nothing of the
// window or the array may be touched. aEnd, requested on the user-interface thread, closes whatever is open as the end
// of aOwner does: before the array is taken away. What is done in the background has ended then; that may take as long
// as one access to a register.

/// "Save Features...": asks for a file and stores the streamable features in it.
bool SaveSettings(QWidget* aOwner, KrGenParameterArray& aArray, const std::stop_token& aEnd = {});
/// "Restore Features...": asks for a file, shows what would change, and on OK restores it. aHasWritten tells, also
/// where false is returned, whether anything may have been written.
bool RestoreSettings(QWidget* aOwner, KrGenParameterArray& aArray, bool& aHasWritten, const std::stop_token& aEnd = {});

} // namespace krgui
