#pragma once
// Why a parameter is not to be had as one would like at the moment, in words for people. Who stands in the way is found
// by the nodes.

#include "nodes/node.h"

#include <string>

namespace krgenicam {

struct AccessReason {
  std::string text;      ///< As KrGenParameter::GetAccessReason has it.
  bool isLocked = false; ///< What stands in the way is a lock (pIsLocked), of the node or of one that it stands on.
};

/// Empty where nothing stands in the way.
AccessReason FindAccessReason(Evaluation& aEvaluation, Node& aNode);

} // namespace krgenicam
