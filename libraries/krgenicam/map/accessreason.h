#pragma once
// Why a parameter is not to be had as one would like at the moment, in words for people. Who stands in the way is found
// by the nodes.

#include "nodes/node.h"

#include <string>

namespace krgenicam {

/// As KrGenParameter::GetAccessReason.
std::string DescribeAccessReason(Evaluation& aEvaluation, Node& aNode);

} // namespace krgenicam
