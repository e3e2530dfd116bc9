#include "nodes/descent.h"

#include "nodes/node.h"

#include <string>

namespace krgenicam {

Descent::Descent(Evaluation& aEvaluation, Node& aFrom) : mEvaluation(aEvaluation) {
  if (mEvaluation.path.empty())
    mEvaluation.visitCount = 0;
  ++mEvaluation.visitCount;
  mEvaluation.path.push_back(&aFrom);
}

Descent::~Descent() {
  mEvaluation.path.pop_back();
}

KrResult Descent::Check() const {
  if (mEvaluation.path.size() <= Evaluation::kMaxDepth && mEvaluation.visitCount <= kMaxVisits)
    return {};
  const Node& node = *mEvaluation.path.back();
  return {KrResult::Code::BadData, "The camera's description, node \"" + std::string(node.GetName()) + "\", line " +
                                       std::to_string(node.GetLine()) + ": too many nodes stand on one another here."};
}

} // namespace krgenicam
