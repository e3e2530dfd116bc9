#pragma once
// What a user could not read of a window: texts that are cut off, and those that hardly differ from what is behind
// them. Which windows are looked at, in which colours, is left to the scenes.

#include <QImage>
#include <QStringList>

class QWidget;

/// One line for each text of a window's controls that has less room than it needs, or of an enabled control whose
/// contrast in the picture of the window is below the 4.5 to 1 that texts of web pages are to have. Texts that a user
/// has typed, and labels that shorten theirs, may be longer than they are shown. Thread: user interface.
QStringList FindIllegibleTexts(QWidget& aWindow, const QImage& aPicture);
