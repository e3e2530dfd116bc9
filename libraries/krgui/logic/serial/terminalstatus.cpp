#include "logic/serial/terminalstatus.h"

namespace krgui {

void TerminalStatus::SetPort(std::u16string_view aWords, bool aIsOpen) {
  mPortWords = aWords;
  mIsOpen = aIsOpen;
  mIsBusy = false;
}

std::u16string_view TerminalStatus::GetWords() const {
  return mIsOpen && mIsBusy ? u"Line busy, not sent" : std::u16string_view(mPortWords);
}

} // namespace krgui
