#pragma once
// Reads a camera file as a whole, and tells all that is wrong with it.

#include "camerafile/filemodel.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace krcamerabridge {

/// The model of a text; nothing where there is a mistake. aErrors gets a line for each, "line:column: reason", in the
/// order in which they stand in the text. Any thread.
std::optional<FileModel> ReadCameraFileText(std::string_view aText, std::vector<std::string>& aErrors);

} // namespace krcamerabridge
