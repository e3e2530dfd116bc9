#pragma once
// How a feature browser keeps its values fresh. What a mode does is left to the browser.

/// The numbers never change.
enum class KrGenRefresh {
  Polling = 0,   ///< Reads everything once, then polls the device for what says that it changes by itself.
  Automatic = 1, ///< Reads what is on the screen again and again.
  Manual = 2,    ///< Reads everything when it is asked to.
};
