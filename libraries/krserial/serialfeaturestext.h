#pragma once
// The text of serialfeatures.yaml, put into the library when that is built.

#include <string_view>

namespace krserial {

extern const std::string_view kSerialFeaturesText;

} // namespace krserial
