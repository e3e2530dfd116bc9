#pragma once
// The files of the terminal: the one to be sent, asked for, and the one that the transcript is saved to.

#include <QString>

#include <string_view>

class QWidget;

namespace krgui {

/// The path of a file as the terminal sends it has no more UTF-16 units.
inline constexpr int kMostPathLetters = 512;

/// The file to send; empty when the user does not want to, or aOwner ended.
QString AskForFileToSend(QWidget* aOwner);
/// Asks for a file and writes a text into it, in UTF-8; tells what went wrong. A file that is replaced stays as it was
/// where that fails. aOwner may have ended afterwards.
void SaveTranscript(QWidget* aOwner, std::u16string_view aText);

} // namespace krgui
