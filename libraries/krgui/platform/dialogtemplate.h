#pragma once
// What a dialog template says: caption, kind, size and controls in dialog units. The templates themselves are in res/,
// their pixels are the dialog builder's business.

#include "logic/frame/dialoglayout.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace krgui {

enum class ControlClass {
  Label,
  GroupBox,
  Button,
  DefaultButton, ///< The one that Enter presses; only the control with id 1 may be it.
  CheckBox,
  RadioButton, ///< Radio buttons inside one group box, or outside all, exclude each other.
  Edit,
  ReadOnlyEdit,
  List, ///< Rows with columns; a list box is one with a single column and no header.
  Tree,
  ComboBox,
  HorizontalScrollBar,
  VerticalScrollBar,
  Frame,
  WrappedLabel,   ///< A label of several lines.
  IPAddress,      ///< Four fields for an IPv4 address.
  ErrorIndicator, ///< A place for the mark of a doubtful value; its window draws it.
  Place,          ///< An empty place; its window puts a control of its own there.
  ElidedLabel,    ///< A label of one line whose end gives way to an ellipsis where it has no room.
};

struct ControlTemplate {
  ControlClass controlClass;
  int id; ///< -1 for a control that nobody looks up.
  std::string_view text;
  UnitRect rect;
  std::uint8_t follow = kStay; ///< Flags of Follow.
  bool startsHidden = false;
  bool startsDisabled = false;
};

enum class DialogKind {
  Child,       ///< Inside a parent, without frame.
  SizingPopup, ///< Caption, system menu and sizing frame.
  FixedPopup,  ///< Caption, system menu and modal frame; not sizable.
};

struct DialogTemplate {
  int id;
  std::string_view caption;
  DialogKind kind;
  int width;  ///< Dialog units.
  int height; ///< Dialog units.
  std::span<const ControlTemplate> controls;
  /// Its window lays the controls out anew, by the sizes that they want: where they are here does not say how wide it
  /// has to be.
  bool isLaidOutByWindow = false;
};

} // namespace krgui
