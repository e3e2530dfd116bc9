#pragma once
// A register that is a text: up to its first zero byte, or all of it.

#include "nodes/registernode.h"

namespace krgenicam {

/// A text of bytes, which are kept as they are, whatever their encoding; zeros fill up what is written.
///
/// Thread, ownership: as Node.
class StringRegisterNode final : public RegisterNode {
public:
  StringRegisterNode(const Description& aDescription, const NodeDescription& aNode);

  KrGenType GetType() const override { return KrGenType::String; }
  KrResult ReadText(Evaluation& aEvaluation, std::string& aText) override;
  KrResult CheckWriteText(Evaluation& aEvaluation, std::string_view aText) override;
  KrResult WriteText(Evaluation& aEvaluation, std::string_view aText) override;
  KrResult GetMaxTextLength(Evaluation& aEvaluation, std::int64_t& aLength) override;
};

} // namespace krgenicam
