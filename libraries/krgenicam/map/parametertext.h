#pragma once
// Values of every type as text, the way settings are stored, and back. What a value may be is left to the nodes.

#include "nodes/node.h"

#include <string>
#include <string_view>

namespace krgenicam {

/// As KrGenParameter::ToString.
KrResult ReadAsText(Evaluation& aEvaluation, Node& aNode, std::string& aText);
/// As KrGenParameter::FromString.
KrResult WriteFromText(Evaluation& aEvaluation, Node& aNode, std::string_view aText);
/// The text of a node, unless it cannot be read at the moment: AccessDenied then, with the reason.
KrResult GetText(Evaluation& aEvaluation, Node& aNode, std::string& aText);

} // namespace krgenicam
