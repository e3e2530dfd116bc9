#include "logic/browser/featureediting.h"

#include "krgenicam/krgenboolean.h"
#include "krgenicam/krgencommand.h"
#include "krgenicam/krgenenum.h"
#include "krgenicam/krgenfloat.h"
#include "krgenicam/krgeninteger.h"
#include "krgenicam/krgenstring.h"
#include "logic/browser/shownvalue.h"
#include "logic/browser/treeitemdata.h"
#include "logic/browser/valueparsing.h"
#include "logic/browser/valuetext.h"

#include <algorithm>
#include <charconv>
#include <string>

namespace krgui {

namespace {

constexpr const char* kFalse = "False";
constexpr const char* kTrue = "True";

/// As many digits as values are shown with, and as many as any value needs.
constexpr int kShownDigits = 6;
constexpr int kMostDigits = 17;
constexpr std::size_t kFloatRoom = 32;

/// The typed view of a node's feature; null where it is of another type.
template <typename View>
View* GetView(const TreeItemData& aNode) {
  return dynamic_cast<View*>(aNode.GetParameter());
}

bool IsHexadecimal(KrGenInteger& aInteger) {
  KrGenRepresentation representation = KrGenRepresentation::PureNumber;
  return aInteger.GetRepresentation(representation).IsOK() && representation == KrGenRepresentation::HexNumber;
}

/// The fewest digits, from those that are shown on, that read back as the same number.
KrString FormatExactly(double aValue) {
  char text[kFloatRoom];
  std::to_chars_result end = {};
  double readBack = 0;
  for (int digits = kShownDigits; digits <= kMostDigits; ++digits) {
    end = std::to_chars(text, text + sizeof text, aValue, std::chars_format::general, digits);
    std::from_chars(text, end.ptr, readBack);
    if (readBack == aValue) {
      break;
    }
  }
  return KrString(std::string_view(text, static_cast<std::size_t>(end.ptr - text)));
}

struct KindOfType {
  KrGenType type;
  EditorKind kind;
};
constexpr KindOfType kKindsOfTypes[] = {
    {KrGenType::Boolean, EditorKind::Choice}, {KrGenType::Enumeration, EditorKind::Choice},
    {KrGenType::String, EditorKind::Text},    {KrGenType::Integer, EditorKind::Number},
    {KrGenType::Float, EditorKind::Number},   {KrGenType::Command, EditorKind::Command},
};

EditorKind FindKind(KrGenType aType) {
  for (const KindOfType& row : kKindsOfTypes) {
    if (row.type == aType) {
      return row.kind;
    }
  }
  return EditorKind::None;
}

/// One that cannot say whether it still runs does not.
bool IsExecuting(KrGenCommand& aCommand) {
  bool isDone = true;
  return aCommand.IsDone(isDone).IsOK() && !isDone;
}

/// What cannot be read of an entry stays empty; only one without a value cannot be chosen.
std::optional<Choice> MakeChoice(KrGenEnumEntry& aEntry, bool aShowsDisplayNames) {
  Choice choice;
  if (!aEntry.GetValue(choice.value).IsOK()) {
    return std::nullopt;
  }
  (void)(aShowsDisplayNames ? aEntry.GetDisplayName(choice.text) : aEntry.GetName(choice.text));
  (void)aEntry.GetToolTip(choice.toolTip);
  return choice;
}

Choices ListEntries(KrGenEnum& aEnumeration, bool aShowsDisplayNames, KrGenVisibility aVisibility) {
  Choices choices;
  const std::size_t count = aEnumeration.GetEntriesCount();
  for (std::size_t i = 0; i < count; ++i) {
    KrGenEnumEntry* entry = nullptr;
    if (!aEnumeration.GetEntryByIndex(i, entry).IsOK() || !entry->IsAvailable() || !entry->IsVisible(aVisibility)) {
      continue;
    }
    if (std::optional<Choice> choice = MakeChoice(*entry, aShowsDisplayNames)) {
      choices.items.push_back(*std::move(choice));
    }
  }
  return choices;
}

/// What a write came to, whatever the type.
struct Writing {
  EditOutcome outcome = EditOutcome::NothingWritten;
  KrResult result = {};
};

/// Writes a value, but not the one that the device has already.
template <typename View, typename Value>
Writing WriteIfDifferent(const TreeItemData& aNode, View& aView, const Value& aValue) {
  Value current = {};
  if (aNode.GetAccess().isReadable && aView.GetValue(current).IsOK() && current == aValue) {
    return {};
  }
  KrResult result = aView.SetValue(aValue);
  const EditOutcome outcome = result.IsOK() ? EditOutcome::Written : EditOutcome::Failed;
  return {outcome, std::move(result)};
}

Writing WriteChoice(const TreeItemData& aNode, const EditInput& aInput) {
  if (!aInput.hasChoice) {
    return {};
  }
  if (auto* enumeration = GetView<KrGenEnum>(aNode)) {
    return WriteIfDifferent(aNode, *enumeration, aInput.choice);
  }
  auto* boolean = GetView<KrGenBoolean>(aNode);
  return boolean ? WriteIfDifferent(aNode, *boolean, aInput.choice != 0) : Writing();
}

Writing WriteNumber(const TreeItemData& aNode, const EditInput& aInput) {
  if (!aInput.isDirty || !aNode.GetAccess().isWritable) {
    return {};
  }
  if (auto* integer = GetView<KrGenInteger>(aNode)) {
    const std::optional<std::int64_t> value = ParseInteger(aInput.text, IsHexadecimal(*integer));
    return value ? WriteIfDifferent(aNode, *integer, *value) : Writing();
  }
  auto* number = GetView<KrGenFloat>(aNode);
  return number ? WriteIfDifferent(aNode, *number, ParseFloat(aInput.text)) : Writing();
}

Writing WriteText(const TreeItemData& aNode, const EditInput& aInput) {
  if (!aInput.isDirty) {
    return {};
  }
  if (auto* string = GetView<KrGenString>(aNode)) {
    return WriteIfDifferent(aNode, *string, aInput.text);
  }
  auto* integer = GetView<KrGenInteger>(aNode);
  if (!integer || !aNode.IsIPAddress()) {
    return {};
  }
  const std::optional<std::uint32_t> address = ParseIPAddress(aInput.text);
  return address ? WriteIfDifferent(aNode, *integer, std::int64_t{*address}) : Writing{EditOutcome::InvalidIPAddress};
}

struct WriteOfKind {
  EditorKind kind;
  Writing (*write)(const TreeItemData& aNode, const EditInput& aInput);
};
constexpr WriteOfKind kWritesOfKinds[] = {
    {EditorKind::Choice, WriteChoice},
    {EditorKind::Number, WriteNumber},
    {EditorKind::Text, WriteText},
};

Writing Write(const TreeItemData& aNode, const EditInput& aInput) {
  for (const WriteOfKind& row : kWritesOfKinds) {
    if (row.kind == aInput.kind) {
      return row.write(aNode, aInput);
    }
  }
  return {};
}

bool ReadRange(KrGenInteger& aInteger, IntegerRange& aRange) {
  return aInteger.GetMin(aRange.min).IsOK() && aInteger.GetMax(aRange.max).IsOK() &&
         aInteger.GetIncrement(aRange.increment).IsOK();
}

} // namespace

EditorKind ChooseEditor(TreeItemData& aNode) {
  KrGenParameter* const parameter = aNode.GetParameter();
  if (!parameter) {
    return EditorKind::None;
  }
  aNode.Refresh();
  auto* command = GetView<KrGenCommand>(aNode);
  if (command && IsExecuting(*command)) {
    return EditorKind::None;
  }
  const RowSnapshot row = aNode.GetSnapshot();
  if (!row.access.isWritable || row.isTooLongToEdit || (command && !row.access.isAvailable)) {
    return EditorKind::None;
  }
  const EditorKind kind = FindKind(parameter->GetType());
  return kind == EditorKind::Number && GetView<KrGenInteger>(aNode) && aNode.IsIPAddress() ? EditorKind::Text : kind;
}

bool CanHaveEditor(const TreeItemData& aNode) {
  const KrGenParameter* const parameter = aNode.GetParameter();
  return parameter && FindKind(parameter->GetType()) != EditorKind::None;
}

bool HasUpDown(const TreeItemData& aNode) {
  return GetView<KrGenInteger>(aNode) && !aNode.IsIPAddress();
}

Choices ListChoices(const TreeItemData& aNode, KrGenVisibility aVisibility) {
  Choices choices;
  if (auto* enumeration = GetView<KrGenEnum>(aNode)) {
    choices = ListEntries(*enumeration, aNode.ShowsDisplayNames(), aVisibility);
  } else if (GetView<KrGenBoolean>(aNode)) {
    choices.items = {{kFalse, 0, {}}, {kTrue, 1, {}}};
  }
  choices.selected = FindChoice(aNode, choices);
  return choices;
}

bool IsEditedInHexadecimal(const TreeItemData& aNode) {
  auto* integer = GetView<KrGenInteger>(aNode);
  return integer && !aNode.IsIPAddress() && IsHexadecimal(*integer);
}

KrString GetEditText(const TreeItemData& aNode, bool aIsHexadecimal) {
  const RowSnapshot row = aNode.GetSnapshot();
  if (!row.access.isReadable) {
    return {};
  }
  if (const auto* integer = std::get_if<std::int64_t>(&row.number)) {
    return aNode.IsIPAddress() ? FormatIPAddress(*integer) : FormatInteger(*integer, aIsHexadecimal);
  }
  if (const auto* number = std::get_if<double>(&row.number)) {
    return FormatExactly(*number);
  }
  if (!GetView<KrGenString>(aNode)) {
    return {};
  }
  // What is cut is nothing to be written back, nor is what has become too long meanwhile.
  const KrString text = row.isCut ? ReadCutText(aNode).value_or(KrString()) : row.value;
  return IsTooLongToEdit(text) ? KrString() : text;
}

int FindChoice(const TreeItemData& aNode, const Choices& aChoices) {
  const RowSnapshot row = aNode.GetSnapshot();
  const auto* current = row.access.isReadable ? std::get_if<std::int64_t>(&row.number) : nullptr;
  const bool isBoolean = GetView<KrGenBoolean>(aNode) != nullptr;
  const auto found = std::find_if(aChoices.items.begin(), aChoices.items.end(), [&](const Choice& aChoice) {
    return isBoolean ? aChoice.text == row.value : current && aChoice.value == *current;
  });
  return found == aChoices.items.end() ? -1 : static_cast<int>(found - aChoices.items.begin());
}

EditOutcome WriteEdit(TreeItemData& aNode, const EditInput& aInput, KrResult& aFailure) {
  const Writing writing = Write(aNode, aInput);
  if (writing.outcome != EditOutcome::Written && writing.outcome != EditOutcome::Failed) {
    return writing.outcome;
  }
  aNode.Refresh();
  if (writing.outcome == EditOutcome::Written) {
    aNode.SetValueText(aInput.text);
  } else {
    aFailure = writing.result;
  }
  return writing.outcome;
}

KrResult ExecuteCommand(TreeItemData& aNode) {
  auto* command = GetView<KrGenCommand>(aNode);
  if (!command) {
    return {KrResult::Code::InvalidInput, "\"" + aNode.GetName() + "\" cannot be executed: it is no command."};
  }
  return command->Execute();
}

std::optional<KrString> StepText(TreeItemData& aNode, const KrString& aText, StepAcceleration& aAcceleration,
                                 bool aIsUp) {
  auto* integer = GetView<KrGenInteger>(aNode);
  IntegerRange range;
  if (!integer || !ReadRange(*integer, range)) {
    return std::nullopt;
  }
  const bool isHexadecimal = IsHexadecimal(*integer);
  const std::optional<std::int64_t> value = ParseInteger(aText, isHexadecimal);
  if (!value) {
    return std::nullopt;
  }
  return FormatInteger(StepInteger(*value, range, aAcceleration.TakeStep(), aIsUp), isHexadecimal);
}

std::optional<std::int64_t> ParseEdited(const TreeItemData& aNode, const KrString& aText) {
  auto* integer = GetView<KrGenInteger>(aNode);
  return integer ? ParseInteger(aText, IsHexadecimal(*integer)) : std::nullopt;
}

std::optional<KrString> FormatEdited(const TreeItemData& aNode, std::int64_t aValue) {
  auto* integer = GetView<KrGenInteger>(aNode);
  return integer ? std::optional(FormatInteger(aValue, IsHexadecimal(*integer))) : std::nullopt;
}

std::optional<IntegerRange> ReadStepRange(const TreeItemData& aNode) {
  auto* integer = GetView<KrGenInteger>(aNode);
  IntegerRange range;
  return integer && ReadRange(*integer, range) ? std::optional(range) : std::nullopt;
}

} // namespace krgui
