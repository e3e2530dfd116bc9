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

std::optional<KrString> GetError(const TreeItemData& aNode) {
  return aNode.HasError() ? std::optional(aNode.GetError()) : std::nullopt;
}

std::optional<KrString> GetNameAndValue(const TreeItemData& aNode) {
  const std::optional<KrString> value = GetValuePart(aNode);
  return value ? std::optional(aNode.GetShownName() + " = " + *value) : std::nullopt;
}

KrString GetRow(const TreeItemData& aNode) {
  KrString text = GetNameAndValue(aNode).value_or(aNode.GetShownName());
  if (const std::optional<KrString> error = GetError(aNode))
    text += "\n" + *error;
  return text;
}

} // namespace

std::optional<KrString> GetRowPart(const TreeItemData& aNode, RowPart aPart) {
  switch (aPart) {
  case RowPart::Row:
    return GetRow(aNode);
  case RowPart::Name:
    return aNode.GetShownName();
  case RowPart::Value:
    return GetValuePart(aNode);
  case RowPart::NameAndValue:
    return GetNameAndValue(aNode);
  case RowPart::Error:
    return GetError(aNode);
  }
  return std::nullopt;
}

} // namespace krgui
