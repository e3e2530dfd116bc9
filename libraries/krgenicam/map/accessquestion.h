#pragma once
// The yes-or-no questions about what can be done with a parameter, of which each fails by what it stands on itself
// alone. What is computed and remembered of the answers is left to the nodes.

#include "map/failurecountingport.h"
#include "nodes/node.h"

#include <cstdint>

namespace krgenicam {

enum class AccessQuestion : std::uint8_t { IsImplemented, IsAvailable, IsReadable, IsWritable };

/// Answers a question. Where the port failed and left the answer open its failure is the result, with aAnswer as it
/// was.
///
/// Thread: under the map's lock.
KrResult AnswerAccessQuestion(Evaluation& aEvaluation, Node& aNode, AccessQuestion aQuestion,
                              FailureCountingPort& aPort, bool& aAnswer);

/// A failure of the port that leaves open what can be done with a node, as it is told: by the node's own reason where
/// that is the same failure.
KrResult DescribeOpenAccess(Evaluation& aEvaluation, Node& aNode, bool aForWriting, const KrResult& aFailure);

} // namespace krgenicam
