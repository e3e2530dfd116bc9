#pragma once
// The rate that a line had before a camera needed another one.

#include "line/icameraline.h"

#include <cstdint>

namespace krcamerabridge {

/// Thread: one. Ownership: borrows the line.
class FormerRate {
public:
  explicit FormerRate(ICameraLine& aLine) : mLine(aLine) {}

  /// That which is set now is the one to go back to.
  void Note() { mRate = mLine.GetBaudRate(); }
  /// Sets it again; nothing where it is set, not known, or none was noted. Results as of ICameraLine::SetBaudRate.
  KrResult Restore() {
    return mRate == 0 || mLine.GetBaudRate() == mRate ? KrResult() : mLine.SetBaudRate(mRate);
  }

private:
  ICameraLine& mLine;
  std::uint32_t mRate = 0; ///< 0 where it is not known.
};

} // namespace krcamerabridge
