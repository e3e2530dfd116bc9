#pragma once
// The text of the transcript: bounded, with CR LF as two units, and appended to in batches. Showing it is left to the
// control.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace krgui {

/// Shows the text of a RollingText.
class IRollingView {
public:
  virtual ~IRollingView() = default;
  /// aErased units have gone from the front, aAppended came at the end; the whole text is given too.
  virtual void OnTextChanged(std::u16string_view aText, std::size_t aErased, std::u16string_view aAppended) = 0;
  /// The end of the text has gone; aText is what is left.
  virtual void OnTextCut(std::u16string_view aText) = 0;
};

/// Thread: one, the user interface's.
/// Ownership: borrows the view, which must outlive it.
class RollingText {
public:
  explicit RollingText(IRollingView& aView);

  /// UTF-16 units of text at most, so long as no single batch is longer.
  void SetLimit(std::size_t aUnits) { mLimit = aUnits; }
  /// The text is shown on every aInterval-th Append; 1 shows every one at once.
  void SetUpdateInterval(std::int32_t aInterval) { mUpdateInterval = aInterval; }

  void Append(std::u16string_view aText);
  /// Shows what is pending. Where text and pending together exceed the limit, as many units as pending has go from the
  /// front, whatever line they belong to.
  void Flush();
  /// Takes away what follows the last line feed: of what is pending if that has one, else all that is pending and the
  /// last line of the text.
  void RemoveLastLine();
  void ClearPending();
  /// Empties the shown text; what is pending stays.
  void SetEmpty();

  std::u16string_view GetText() const { return std::u16string_view(mText).substr(mErased); }

private:
  void EraseFront(std::size_t aUnits);

  IRollingView& mView;
  std::u16string mText;    // The text, behind units that have gone from the front but were not given back yet.
  std::size_t mErased = 0; // How many those are.
  std::u16string mPending;
  std::size_t mLimit = 32'767;
  std::int32_t mUpdateInterval = 1;
  std::int32_t mAppendCount = 1;
};

} // namespace krgui
