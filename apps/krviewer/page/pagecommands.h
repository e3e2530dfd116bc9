#pragma once
// What a user can do with a camera's page: words, keys, when it makes sense. The entries themselves are PageActions'.

#include "page/pageactions.h"
#include "window/toolglyphs.h"

#include <QString>

#include <span>

namespace krviewer {

class CameraPage;

struct PageCommand {
  CommandMenu menu;
  const char* name; ///< Of the entry as an object, for tests and styles.
  const char* text; ///< With its mnemonic.
  int key = 0;      ///< 0 for none.
  ToolGlyph glyph = ToolGlyph::None;
  bool isInToolBar = false;
  bool beginsGroup = false;
  bool (*isOffered)(CameraPage&) = nullptr;
  void (*run)(CameraPage&) = nullptr;
  bool (*isChecked)(CameraPage&) = nullptr;       ///< Null for what is not switched on and off.
  QString (*getHindrance)(CameraPage&) = nullptr; ///< Says why it is not offered; null where that goes without saying.
};

/// All, in the order of the menus.
std::span<const PageCommand> GetPageCommands();

} // namespace krviewer
