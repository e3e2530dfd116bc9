#pragma once
// The few words beside the terminal's port: of the port, or of a message that the open port's line did not take. When
// which of them changes is left to the window.

#include <string>
#include <string_view>

namespace krgui {

/// Thread: one at a time.
class TerminalStatus {
public:
  /// What is to be said of the port; what was said of its line is over. Only of an open one's line anything is said.
  void SetPort(std::u16string_view aWords, bool aIsOpen);
  /// Whether the line did not take the last message.
  void SetBusy(bool aIsBusy) { mIsBusy = aIsBusy; }

  std::u16string_view GetWords() const;

private:
  std::u16string mPortWords;
  bool mIsOpen = false;
  bool mIsBusy = false;
};

} // namespace krgui
