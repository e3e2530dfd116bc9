#pragma once
// How long a lost camera is left alone before it is tried unasked. Waiting, and what may end it, is left to the
// acquisition.

#include "krbase/krresult.h"

#include <chrono>
#include <optional>

namespace krviewer {

// Who was cut off keeps a camera until it has heard nothing for three seconds, mostly. There are cameras to which the
// question who has them is as good as a word from that one: asked more often they would stay his for ever.
inline constexpr std::chrono::seconds kHeldPause{5};
inline constexpr std::chrono::seconds kRetryPause{1};

/// Whether somebody else has it still, so that it is not tried as soon as it is heard of.
inline bool IsHeld(const KrResult& aLoss) {
  return aLoss == KrResult::Code::AccessDenied;
}

/// Nothing for a camera that is not tried before it is heard of: it is gone. One that is held is tried in any case, as
/// what is heard of it does not end the wait.
inline std::optional<std::chrono::seconds> GetReturnPause(const KrResult& aLoss, bool aIsGone) {
  if (IsHeld(aLoss))
    return kHeldPause;
  return aIsGone ? std::nullopt : std::optional(kRetryPause);
}

} // namespace krviewer
