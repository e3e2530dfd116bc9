#pragma once
// For what a benchmark cannot go on without.

#include "krbase/krresult.h"

#include <cstdio>
#include <cstdlib>

namespace benchmarks {

/// Ends the program, with its reason, unless a result is OK.
inline void Check(const KrResult& aResult) {
  if (aResult.IsOK())
    return;
  std::fprintf(stderr, "It cannot be measured: %s\n", aResult.GetDescription().CStr());
  std::exit(1);
}

} // namespace benchmarks
