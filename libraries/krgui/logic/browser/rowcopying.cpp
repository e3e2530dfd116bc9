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

/// What stands for the value: the row's, unless the device was asked for more.
using WholeText = std::optional<KrString>;

std::optional<KrString> GetValuePart(const TreeItemData& aNode, const WholeText& aWhole) {
  if (aNode.GetParameter() == nullptr)
    return std::nullopt;
  const RowSnapshot row = aNode.GetSnapshot();
  if (!HasShownValue(row))
    return std::nullopt;
  std::string text = aWhole.value_or(row.value).ToUtf8();
  if (IsNumber(aNode) && text.back() == ' ')
    text.pop_back();
  return KrString(std::move(text));
}

std::optional<KrString> GetError(const TreeItemData& aNode) {
  return aNode.HasError() ? std::optional(aNode.GetError()) : std::nullopt;
}

std::optional<KrString> GetNameAndValue(const TreeItemData& aNode, const WholeText& aWhole) {
  const std::optional<KrString> value = GetValuePart(aNode, aWhole);
  return value ? std::optional(aNode.GetShownName() + " = " + *value) : std::nullopt;
}

KrString GetRow(const TreeItemData& aNode, const WholeText& aWhole) {
  KrString text = GetNameAndValue(aNode, aWhole).value_or(aNode.GetShownName());
  if (const std::optional<KrString> error = GetError(aNode))
    text += "\n" + *error;
  return text;
}

std::optional<KrString> MakePart(const TreeItemData& aNode, RowPart aPart, const WholeText& aWhole) {
  switch (aPart) {
  case RowPart::Row:
    return GetRow(aNode, aWhole);
  case RowPart::Name:
    return aNode.GetShownName();
  case RowPart::Value:
    return GetValuePart(aNode, aWhole);
  case RowPart::NameAndValue:
    return GetNameAndValue(aNode, aWhole);
  case RowPart::Error:
    return GetError(aNode);
  }
  return std::nullopt;
}

} // namespace

std::optional<KrString> GetRowPart(const TreeItemData& aNode, RowPart aPart) {
  return MakePart(aNode, aPart, std::nullopt);
}

std::optional<KrString> ReadRowPart(const TreeItemData& aNode, RowPart aPart) {
  const bool hasValue = aPart != RowPart::Name && aPart != RowPart::Error;
  return MakePart(aNode, aPart, hasValue ? ReadCutText(aNode) : std::nullopt);
}

} // namespace krgui
