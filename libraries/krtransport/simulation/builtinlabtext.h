#pragma once
// The text of builtinlab.yaml, put into the library when that is built.

#include <string_view>

namespace krtransport {

extern const std::string_view kBuiltInLabText;

} // namespace krtransport
