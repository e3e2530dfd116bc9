#pragma once
// Why a file cannot be written, for libraries that say no more than that it failed. What is written is left to them.

#include <QString>

namespace krviewer {

/// Tries to write in the file's place, without touching the file, and gives the reason in the system's words; empty
/// where the try succeeds. Folders that are missing are made.
QString FindWriteReason(const QString& aFile);

} // namespace krviewer
