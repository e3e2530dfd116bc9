#pragma once
// String: a text of its own, or another node's.

#include "nodes/node.h"

#include <string>

namespace krgenicam {

/// Thread, ownership: as Node.
class StringNode final : public Node {
public:
  /// How many bytes a text of its own may have, if the description does not begin with a longer one.
  static constexpr std::size_t kMaxLength = 4096;

  using Node::Node;

  void Link(INodeIndex& aIndex) override;
  KrGenType GetType() const override { return KrGenType::String; }

  KrResult ReadText(Evaluation& aEvaluation, std::string& aText) override;
  KrResult CheckWriteText(Evaluation& aEvaluation, std::string_view aText) override;
  KrResult WriteText(Evaluation& aEvaluation, std::string_view aText) override;
  KrResult GetMaxTextLength(Evaluation& aEvaluation, std::int64_t& aLength) override;

protected:
  KrGenAccessMode ComputeAccess(Evaluation& aEvaluation, Facet aFacet) override;
  KrResult ComputeImplementation(Evaluation& aEvaluation, Number& aImplemented) override;
  KrResult ExplainOwnAccess(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt) override;

private:
  /// Goes on to pValue.
  template <typename Step>
  KrResult WithTarget(Evaluation& aEvaluation, Step aStep);

  NodeLink mTarget;
  std::string mText;
  std::size_t mMaxLength = kMaxLength;
};

} // namespace krgenicam
