#pragma once
// Tells the repeats of an Enter key that is held down from presses, for all windows: what the key pressed may have
// opened a question, which its repeats are not to answer. What is done with a repeat is left to the window.

class QKeyEvent;

namespace krgui {

bool IsEnter(const QKeyEvent& aEvent);
/// Begins to note when Enter is released, in any window of the application; until its end.
///
/// Thread: user interface, as of all here.
void WatchEnter();
/// Whether an Enter key-down is a repeat of one before it.
bool IsRepeatedEnter(const QKeyEvent& aEvent);

} // namespace krgui
