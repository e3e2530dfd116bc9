#pragma once
// The root of a description: which schema it follows, and whose it is. The nodes are left to the reader.

#include "krbase/krresult.h"

#include <pugixml.hpp>

#include <string>
#include <string_view>

namespace krgenicam {

struct RootElement {
  pugi::xml_node element;
  std::string_view vendorName = {};
  std::string_view modelName = {};
  int schemaMinorVersion = 1;
  std::string_view standardNameSpace = {};
  std::string version = {}; ///< Of the description itself, "1.0.2".
};

/// Finds the root element. BadData, with a reason that is the end of a sentence, for another root than
/// RegisterDescription and for a schema above 1.1. What does not say its schema is taken as 1.1.
KrResult FindRootElement(const pugi::xml_document& aDocument, RootElement& aRoot);

} // namespace krgenicam
