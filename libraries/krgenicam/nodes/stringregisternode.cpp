#include "nodes/stringregisternode.h"

#include <algorithm>

namespace krgenicam {

StringRegisterNode::StringRegisterNode(const Description& aDescription, const NodeDescription& aNode)
    : RegisterNode(aDescription, aNode) {}

KrResult StringRegisterNode::ReadText(Evaluation& aEvaluation, std::string& aText) {
  std::vector<std::uint8_t> bytes;
  KrResult result = ReadBytes(aEvaluation, bytes);
  if (result.IsOK())
    aText.assign(bytes.begin(), std::ranges::find(bytes, std::uint8_t{0}));
  return result;
}

KrResult StringRegisterNode::CheckWriteText(Evaluation& aEvaluation, std::string_view aText) {
  KrResult result = CheckWritableRegister(aEvaluation);
  std::int64_t length = 0;
  if (result.IsOK())
    result = GetLength(aEvaluation, length);
  if (!result.IsOK())
    return result;
  const auto refuse = [this](const std::string& aReason) {
    return KrResult(KrResult::Code::InvalidInput, "\"" + std::string(GetName()) + "\" cannot be set: " + aReason);
  };
  if (aText.size() > static_cast<std::size_t>(length))
    return refuse("the text has " + std::to_string(aText.size()) + " bytes; it takes at most " +
                  std::to_string(length) + ".");
  if (aText.find('\0') != std::string_view::npos)
    return refuse("the text has a zero byte in it, which would end it.");
  return {};
}

KrResult StringRegisterNode::WriteText(Evaluation& aEvaluation, std::string_view aText) {
  std::int64_t length = 0;
  if (KrResult result = GetLength(aEvaluation, length); !result.IsOK())
    return result;
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(length));
  std::copy_n(aText.begin(), std::min(aText.size(), bytes.size()), bytes.begin());
  return WriteBytes(aEvaluation, bytes);
}

KrResult StringRegisterNode::GetMaxTextLength(Evaluation& aEvaluation, std::int64_t& aLength) {
  return GetLength(aEvaluation, aLength);
}

} // namespace krgenicam
