#pragma once
// Fills in what the URL of a node's documentation leaves open: $(NAME), $(Sys::ModelName) and the like. Whether the URL
// leads anywhere is left to whoever follows it.

#include "description/description.h"

#include <string>
#include <string_view>

namespace krgenicam {

/// Characters beyond which a URL stays as the description has it.
inline constexpr std::size_t kMaxDocumentationURL = 1u << 16;

/// The URL with what is known of the node and the description put in; placeholders of anything else are left as they
/// are.
///
/// Thread: any.
std::string CompleteDocumentationURL(std::string_view aURL, std::string_view aNodeName,
                                     const Description& aDescription);

} // namespace krgenicam
