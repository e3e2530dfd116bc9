#pragma once
// When a failure says that nothing more is to be heard of a device, so that asking it for the rest only takes time.

#include "krbase/krresult.h"

namespace krcamerabridge {

/// The device has gone or kept silent, or the call was ended. Any thread.
inline bool IsUnanswered(const KrResult& aResult) {
  return aResult == KrResult::Code::Aborted || aResult == KrResult::Code::ConnectionLost ||
         aResult == KrResult::Code::TimeLimitExceeded;
}

} // namespace krcamerabridge
