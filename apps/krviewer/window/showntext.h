#pragma once
// Texts of devices, files and users as windows show them: as they are, whatever they look like.

#include "krbase/krstring.h"

#include <QString>

namespace krviewer {

inline QString ToText(const KrString& aText) {
  return QString::fromUtf8(aText.CStr());
}

/// One line that can be read, cut behind so many letters: a text from outside may hold anything.
QString ToLine(const QString& aText, int aMostLetters);
/// A few lines, each as ToLine gives it: what is left out is said.
QString ToMessage(const QString& aText);
/// For a window's title, in which [*] is none of the toolkit's marks.
QString ToTitle(const QString& aText);
/// For an entry of a menu, a button or a tab, whose & are none of a mnemonic.
QString ToEntry(const QString& aText);
/// For a tooltip, which would take a text for markup.
QString ToToolTip(const QString& aText);

} // namespace krviewer
