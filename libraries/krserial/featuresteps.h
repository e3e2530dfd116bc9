#pragma once
// The steps that lines behind features are made of. Their order is left to the lines.

#include "krgenicam/krgenparameterarray.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

namespace krserial {

/// A selector that a line needs at a position of its own for a while. Put back, so that whoever looks at the same
/// features finds them under the position that was chosen there: by a user in the meantime, too.
///
/// Thread: one at a time. Ownership: borrows the selector, null for none.
class SelectorHold {
public:
  explicit SelectorHold(KrGenEnum* aSelector) : mSelector(aSelector) {}

  /// Chooses an entry; nothing is written where it is chosen already.
  KrResult Set(const KrString& aEntry);
  /// Chooses what was chosen before, unless somebody else has chosen meanwhile.
  void PutBack();

private:
  KrGenEnum* const mSelector;
  std::optional<std::int64_t> mFormer; // Where it was changed.
  std::int64_t mWanted = 0;
};

/// Executes a command and waits until it is over, for aLimit at most; aIsDone says whether it was. A failure is an
/// access's.
KrResult Execute(KrGenCommand& aCommand, std::chrono::milliseconds aLimit, bool& aIsDone);
/// The same for a second at most, TimeLimitExceeded where it is not over by then.
KrResult ExecuteAndWait(KrGenCommand& aCommand);
/// Reads a number around all caches, as the device changes it by itself. ProtocolError unless it is from 0 to aMost.
KrResult ReadCount(KrGenParameterArray& aArray, KrGenInteger& aCount, std::int64_t aMost, std::size_t& aValue);
/// Reads the first bytes of a register around all caches. ProtocolError where it has less than those.
KrResult ReadBytes(KrGenParameterArray& aArray, KrGenRegister& aRegister, std::size_t aCount,
                   std::vector<std::uint8_t>& aBytes);
/// Writes bytes to the beginning of a register, zeros behind them.
KrResult WriteBytes(KrGenRegister& aRegister, const std::uint8_t* aBytes, std::size_t aSize);
/// How many bytes a register takes at once, as far as a length can be set for them (null where none is set).
KrResult FindRoom(KrGenRegister& aRegister, KrGenInteger* aLength, std::size_t& aRoom);

} // namespace krserial
