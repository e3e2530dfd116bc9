#include "logic/serial/rollingtext.h"

#include <algorithm>

namespace krgui {

namespace {

/// Where the last line begins: behind the last line feed, or at the front.
std::size_t FindLastLine(std::u16string_view aText) {
  const std::size_t lineFeed = aText.rfind(u'\n');
  return lineFeed == std::u16string_view::npos ? 0 : lineFeed + 1;
}

} // namespace

RollingText::RollingText(IRollingView& aView) : mView(aView) {}

void RollingText::Append(std::u16string_view aText) {
  mPending += aText;
  if (mAppendCount < mUpdateInterval)
    ++mAppendCount;
  else
    Flush();
}

void RollingText::Flush() {
  mAppendCount = 1;
  if (mPending.empty())
    return;
  const std::size_t appended = mPending.size();
  const std::size_t before = GetText().size();
  const std::size_t erased = before + appended > mLimit ? std::min(appended, before) : 0;
  EraseFront(erased);
  mText += mPending;
  mPending.clear();
  mView.OnTextChanged(GetText(), erased, GetText().substr(before - erased));
}

void RollingText::RemoveLastLine() {
  const std::size_t pendingLine = FindLastLine(mPending);
  mPending.resize(pendingLine);
  if (pendingLine > 0)
    return;
  mText.resize(mErased + FindLastLine(GetText()));
  mView.OnTextCut(GetText());
}

void RollingText::ClearPending() {
  mPending.clear();
}

void RollingText::SetEmpty() {
  mText.clear();
  mErased = 0;
  mView.OnTextCut(GetText());
}

// Moving the whole text for every few units at its front would cost more than all the rest: the room of what has gone
// is given back when it is as much as what is left, so that each unit is moved about once.
void RollingText::EraseFront(std::size_t aUnits) {
  mErased += aUnits;
  if (mErased < mText.size() - mErased)
    return;
  mText.erase(0, mErased);
  mErased = 0;
}

} // namespace krgui
