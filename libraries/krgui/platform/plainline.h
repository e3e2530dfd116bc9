#pragma once
// Texts from devices as controls show them: one line, nothing in it is markup or moves what stands around it.

#include "krbase/krstring.h"

#include <QString>

namespace krgui {

/// The text with a blank in the place of every control character, line or paragraph separator, and every embedding,
/// override and isolate of a writing direction. Letters keep their own direction, and so do the marks (LRM, RLM).
QString ToPlainLine(const KrString& aText);

/// The same of a text's beginning, in no more than so many UTF-16 units: nothing behind them is looked at, and no
/// character is cut in two.
QString ToPlainLine(const KrString& aText, int aMostUnits);

/// Of an item in a list of choices; as many as its tooltip has.
inline constexpr int kMostLettersOfAChoice = 1023;

/// The text as a tooltip shows it letter by letter, blank by blank, line by line; tooltips take what looks like markup
/// for it. Each line is as ToPlainLine gives it; "\r\n" and "\n" begin a new one.
QString ToPlainToolTip(const QString& aText);

} // namespace krgui
