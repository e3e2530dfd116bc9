#pragma once
// What a dialog template says: caption, kind, size and controls in dialog units. The templates themselves are in res/,
// their pixels are the dialog builder's business.

#include <cstdint>
#include <span>
#include <string_view>

namespace krgui {

enum class ControlClass { Label, GroupBox, Button, DefaultButton, CheckBox, RadioButton, Edit, ReadOnlyEdit, List, Tree, ComboBox, HorizontalScrollBar, VerticalScrollBar, Frame };

/// How a control follows a resize of its dialog; the flags add up. Without any it stays at the top left.
enum Follow : std::uint8_t {
  kStay = 0,
  kMoveRight = 1, ///< Keeps its distance from the right edge.
  kMoveDown = 2,
  kGrowRight = 4, ///< Its right edge keeps its distance from the dialog's.
  kGrowDown = 8,
};

/// A rectangle in dialog units.
struct UnitRect {
  int x, y, width, height;
};

struct ControlTemplate {
  ControlClass controlClass;
  int id; ///< -1 for a control that nobody looks up.
  std::string_view text;
  UnitRect rect;
  std::uint8_t follow = kStay;
  bool startsHidden = false;
  bool startsDisabled = false;
};

enum class DialogKind {
  Child,        ///< Inside a parent, without frame.
  SizingPopup,  ///< Caption, system menu and sizing frame.
  FixedPopup,   ///< Caption, system menu and modal frame; not sizable.
};

struct DialogTemplate {
  int id;
  std::string_view caption;
  DialogKind kind;
  int width;  ///< Dialog units.
  int height; ///< Dialog units.
  std::span<const ControlTemplate> controls;
};

} // namespace krgui
