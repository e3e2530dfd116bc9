#pragma once
// The word in the finder's tree while it shows no device: what goes on, or what stands in the way.

#include "krbase/krstring.h"

#include <cstddef>
#include <cstdint>

namespace krgui {

struct FinderHintFacts {
  bool hasTransports = true;        ///< The program can find anything at all.
  KrString failure = {};            ///< Why devices are not looked for at all, in words; empty when they are.
  bool showsDevices = false;        ///< The tree has an item for a device.
  std::uint32_t roundCount = 0;     ///< How many rounds of discovery have ended.
  std::size_t unreachableCount = 0; ///< The devices that are left out because this host cannot reach them.
};

/// The sentences to show; empty when there is nothing to say.
KrString FindFinderHint(const FinderHintFacts& aFacts);

} // namespace krgui
