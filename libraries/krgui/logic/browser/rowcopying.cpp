#include "logic/browser/rowcopying.h"

#include "logic/browser/shownvalue.h"

#include <string>

namespace krgui {

namespace {

/// Numbers end with a blank and their unit: with the blank alone where they have none.
bool IsNumber(const TreeItemData& aNode) {
  const KrGenType type = aNode.GetParameter()->GetType();
  return type == KrGenType::Integer || type == KrGenType::Float;
}

std::optional<KrString> GetValuePart(const TreeItemData& aNode) {
  if (aNode.GetParameter() == nullptr)
    return std::nullopt;
  const RowSnapshot row = aNode.GetSnapshot();
  if (!HasShownValue(row))
    return std::nullopt;
  std::string text = row.value.ToUtf8();
  if (IsNumber(aNode) && text.back() == ' ')
    text.pop_back();
  return KrString(std::move(text));
}

} // namespace

std::optional<KrString> GetRowPart(const TreeItemData& aNode, RowPart aPart) {
  if (aPart == RowPart::Name)
    return aNode.GetShownName();
  if (aPart == RowPart::Error)
    return aNode.HasError() ? std::optional(aNode.GetError()) : std::nullopt;
  std::optional<KrString> value = GetValuePart(aNode);
  if (!value || aPart == RowPart::Value)
    return value;
  return aNode.GetShownName() + " = " + *value;
}

} // namespace krgui
