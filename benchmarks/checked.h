#pragma once
// For what a benchmark cannot go on without.

#include "failing.h"
#include "krbase/krresult.h"

namespace benchmarks {

/// Ends the program, with its reason, unless a result is OK.
inline void Check(const KrResult& aResult) {
  if (!aResult.IsOK())
    Fail(aResult.GetDescription().CStr());
}

} // namespace benchmarks
