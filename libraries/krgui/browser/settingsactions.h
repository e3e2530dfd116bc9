#pragma once
// Saving the streamable features of a device to a file and restoring them from one, as the browser's context menu
// offers it: file dialogs, progress, a comparison before anything is written, and a list of what failed. What is
// compared is left to logic/browser/settingsdifference.h, reading and writing to the parameter array.

#include "krgenicam/krgenparameterarray.h"

class QWidget;

namespace krgui {

/// Asks for a file and stores the streamable features in it. Runs modal loops; returns whether aOwner still lives.
bool SaveSettings(QWidget* aOwner, KrGenParameterArray& aArray);
/// Asks for a file, shows what would change, and on OK restores it. aHasWritten tells whether anything was written.
bool RestoreSettings(QWidget* aOwner, KrGenParameterArray& aArray, bool& aHasWritten);

} // namespace krgui
