#pragma once
// Loses a little of everything that a soak watches with each step, so that it can be seen that the soak tells.

/// Loses 2 MB, a descriptor, a mapped and a System V segment, a thread, and a widget, and logs a warning.
void LeakALittle();
