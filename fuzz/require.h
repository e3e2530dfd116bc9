#pragma once
// How a target says that what holds for any input does not hold: by the end of the program, which the search and the
// replay take for a finding. What holds stands in the targets.

#include "krbase/krresult.h"

#include <cstdio>
#include <cstdlib>

/// Ends the program, with the place where it was asked, unless it holds.
inline void Require(bool aHolds, const char* aFile = __builtin_FILE(), int aLine = __builtin_LINE()) {
  if (aHolds)
    return;
  std::fprintf(stderr, "%s:%d: what holds for any input does not.\n", aFile, aLine);
  std::abort();
}

/// Whether it went well; what did not has to have a reason.
inline bool RequireReason(const KrResult& aResult, const char* aFile = __builtin_FILE(), int aLine = __builtin_LINE()) {
  Require(aResult.IsOK() || !aResult.GetDescription().IsEmpty(), aFile, aLine);
  return aResult.IsOK();
}
