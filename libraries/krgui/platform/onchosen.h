#pragma once
// Radio buttons whose choice has consequences.

#include <functional>

class QObject;
class QRadioButton;

namespace krgui {

/// Has the handler called when the button is clicked, also where it is checked already, and when assistive technology
/// checks it, which does not click; for as long as the context lives. Thread: user interface.
void OnChosen(const QRadioButton& aButton, const QObject& aContext, const std::function<void()>& aHandler);

} // namespace krgui
