#pragma once
// Which parameters belong to the settings, in the order in which they are best set: each behind what its range or
// access depends on, as far as the description tells. Reading and setting them is left to others.

#include "krgenicam/krgenparameter.h"

#include <vector>

namespace krgenicam {

class NodeMap;

/// All streamable parameters of a map, whether or not the root category reaches them. Those that depend on one another
/// in a circle, as Width and OffsetX do, come in the order of the description. Any thread: nothing is read.
std::vector<KrGenParameter*> ListSettingsOrder(const NodeMap& aMap);

} // namespace krgenicam
