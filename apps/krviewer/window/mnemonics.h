#pragma once
// The letters by which Alt reaches the controls of a window: who has which, and one that is still free. Two that share
// a letter are reached by neither at once. Which texts there are is left to their owners.

#include <QSet>
#include <QString>

class QWidget;

namespace krviewer {

/// The letter that is marked in a control's text, as a capital; null without one.
QChar GetMnemonic(const QString& aText);
/// The text as it is where its letter is free, else with another one marked: rather the first of a word, and none where
/// all are taken.
QString MarkFreeLetter(const QString& aText, const QSet<QChar>& aTaken);
/// The letters of what is visible in a window, menu bar and tabs among it, but for a part of it. Thread: user
/// interface.
QSet<QChar> FindMnemonics(const QWidget& aWindow, const QWidget* aExcept = nullptr);

} // namespace krviewer
