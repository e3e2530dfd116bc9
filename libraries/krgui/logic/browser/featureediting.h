#pragma once
// Editing a feature without the editors: which editor it gets, what that shows at first, and writing what the user made
// of it. What may wait for the device says so.

#include "krbase/krresult.h"
#include "krgenicam/krgentypes.h"
#include "logic/browser/valuestepping.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace krgui {

class TreeItemData;

enum class EditorKind {
  None,
  Choice,  ///< A combo box: booleans and enumerations.
  Text,    ///< An edit box: strings and IP addresses.
  Number,  ///< An edit box: floats, and integers with an up-down control beside it.
  Command, ///< A button.
};

/// Which editor a node gets: refreshes it and looks at its type, access, whether its value is too long for one and, for
/// a command, whether it still runs. May wait for the device.
EditorKind ChooseEditor(TreeItemData& aNode);
/// Whether the node's type has an editor at all. The device is not asked.
bool CanHaveEditor(const TreeItemData& aNode);
/// Whether the number editor has an up-down control.
bool HasUpDown(const TreeItemData& aNode);

struct Choice {
  KrString text;
  std::int64_t value = 0;
  KrString toolTip;
};
struct Choices {
  std::vector<Choice> items;
  int selected = -1; ///< The item of the current value.
};
/// The items of the combo box: False and True, or the entries that are available and visible. May wait for the device.
Choices ListChoices(const TreeItemData& aNode, KrGenVisibility aVisibility);
/// Whether an integer is edited in hexadecimal digits. May wait for the device.
bool IsEditedInHexadecimal(const TreeItemData& aNode);
/// What an editor shows of the value that was read last: an edit box's text, of at most kMostEditedBytes, and the combo
/// box's item, -1 for none. Both are made from the node's snapshot; the device is asked for a text alone of which that
/// has the beginning.
KrString GetEditText(const TreeItemData& aNode, bool aIsHexadecimal);
int FindChoice(const TreeItemData& aNode, const Choices& aChoices);

/// What an editor held when it was closed.
struct EditInput {
  EditorKind kind = EditorKind::None;
  KrString text;           ///< Of an edit box; of a choice the item's.
  bool isDirty = false;    ///< The user changed or chose it. What a combo box shows is written all the same.
  std::int64_t choice = 0; ///< The chosen item's value.
  bool hasChoice = false;  ///< An item is chosen.
};

enum class EditOutcome {
  NothingWritten, ///< The device has it, or a text is not dirty, not writable or no integer. No float at all is 0.
  Written,
  InvalidIPAddress,
  Failed,
};
/// Writes what an editor held. aFailure says why for Failed. After a write, whether or not it succeeded, the node is
/// refreshed; after one that succeeded it shows the editor's text. May wait for the device, as may what follows.
EditOutcome WriteEdit(TreeItemData& aNode, const EditInput& aInput, KrResult& aFailure);
/// Executes a command. The node is refreshed by the caller, after the user has heard of a failure.
KrResult ExecuteCommand(TreeItemData& aNode);

/// The text one step up or down from what the edit box holds; nothing where it holds no number or the node is no
/// integer.
std::optional<KrString> StepText(TreeItemData& aNode, const KrString& aText, StepAcceleration& aAcceleration,
                                 bool aIsUp);

/// The number that an integer's edit box holds; nothing where it holds none or the node is no integer.
std::optional<std::int64_t> ParseEdited(const TreeItemData& aNode, const KrString& aText);
/// A number as an integer's edit box shows it; nothing where the node is no integer.
std::optional<KrString> FormatEdited(const TreeItemData& aNode, std::int64_t aValue);
/// What an integer is stepped within; nothing where that cannot be read or the node is no integer.
std::optional<IntegerRange> ReadStepRange(const TreeItemData& aNode);

} // namespace krgui
