#pragma once
// How network adapters are told from each other, for every transport alike. What else they are is left to those who
// list them.

#include "krsystem/krinterface.h"

#include <vector>

namespace krsystem {

/// Gives every adapter its unique ID: the MAC, or MAC and "/name" where several share one or there is none. Any thread.
KR_EXPORT void AssignUniqueIDs(std::vector<NetworkAdapterFields>& aAdapters);

} // namespace krsystem
