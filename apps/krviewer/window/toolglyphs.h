#pragma once
// The pictures of entries and buttons, drawn in the colours of the text beside them: sharp at any scale, on light and
// on dark windows.

#include <QIcon>

namespace krviewer {

enum class ToolGlyph {
  None,
  Find,
  Start,
  Stop,
  Single,
  Trigger,
  SaveFrame,
  Record,
  Region,
  ActualSize,
  Fit,
  ZoomIn,
  ZoomOut,
  Close,
};

/// Null for None. Thread: user interface.
QIcon MakeToolIcon(ToolGlyph aGlyph);

} // namespace krviewer
