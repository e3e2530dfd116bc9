#pragma once
// Words for the error numbers of the CL Protocol standard, for drivers that have none.

#include <cstdint>
#include <string_view>

namespace krcamerabridge {

/// Empty for a number that the standard does not know. Thread: any.
std::string_view GetCLErrorWords(std::int32_t aCode);

} // namespace krcamerabridge
