#pragma once
// How well colours can be told from what is behind them, and what to do where a theme's cannot. Which colours lie on
// which is left to whoever paints.

#include <QColor>

class QPalette;

namespace krgui {

/// The least contrast between a text and what is behind it.
inline constexpr double kLeastContrast = 4.5;

// Any thread.

/// From 1 to 21, by the relative luminance of both (WCAG 2.1).
double GetContrast(const QColor& aFirst, const QColor& aSecond);
/// The colour itself where it has the least contrast to the ground, else what of it goes towards black or white until
/// it has.
QColor MakeReadable(const QColor& aColour, const QColor& aGround);
/// The same, but for a colour that need not be like itself: else black or white, whichever has more.
QColor ChooseReadable(const QColor& aColour, const QColor& aGround);
/// Gives a palette texts of selections that can be read on them, where the theme's cannot.
void MakeSelectionsReadable(QPalette& aPalette);

} // namespace krgui
