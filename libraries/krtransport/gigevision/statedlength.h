#pragma once
// How long a device says that its description is, looked at before Aravis opens the device: it takes memory for what is
// stated before a byte has come, and where that is not to be had it ends the process. What a description's URL means
// besides, and reading it, is left to krgenicam.

#include "gigevision/gvcpclient.h"
#include "krbase/krresult.h"

#include <cstdint>
#include <string_view>

namespace krtransport {

/// The largest length that a description's URL states, wherever in it Aravis may look for that; 0 for a URL that states
/// none, UINT64_MAX for what is beyond all numbers.
std::uint64_t GetStatedLength(std::string_view aURL);

/// BadData when one of the device's two URLs states more than a description may have. A URL that cannot be read is left
/// to whoever reads the description. Thread: that of the client.
KrResult CheckStatedLengths(GvcpClient& aClient);

} // namespace krtransport
