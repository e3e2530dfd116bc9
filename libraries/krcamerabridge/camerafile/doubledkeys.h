#pragma once
// The further values of keys that are there more than once, so that their mistakes are told, too. That the key is there
// again is told by whoever parses the text.

#include "krpersistence/yamltext.h"

#include <cstddef>
#include <functional>
#include <set>

namespace krcamerabridge {

/// More of these values are not looked at: for each of them the file is read once more.
inline constexpr std::size_t kMostDoubledValues = 16;

/// Makes one list of the lists that a key has, as what one names may be in the other. Any thread, as the other.
void JoinDoubledLists(krpersistence::YamlNode& aRoot);

/// Calls aCheck once for each of the other values, which takes the place of the key's first one meanwhile; aPlaces are
/// all places that are the value's own.
void ForEachDoubledValue(krpersistence::YamlNode& aRoot,
                         const std::function<void(const std::set<krpersistence::TextPlace>& aPlaces)>& aCheck);

} // namespace krcamerabridge
