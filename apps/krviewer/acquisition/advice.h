#pragma once
// What a camera's page tells its user about trouble, in sentences, and what can be done about it from there. When there
// is such trouble is found out by Adviser.

#include "krbase/krstring.h"

#include <vector>

namespace krviewer {

/// What can be done by a button.
enum class Remedy {
  TryAgain,    ///< Connect once more.
  ConfigureIP, ///< Give the camera an address of the adapter's subnet.
  OpenFinder,  ///< Look for cameras.
  Start,       ///< Start acquisition.
  Restart,     ///< Stop acquisition, and start it again.
  Trigger,     ///< Have the camera take a frame.
  Disconnect,  ///< Give the camera back.
};

/// Empty text for no trouble.
struct Advice {
  KrString text = {}; ///< What is the matter, and what to do. With words of the device: plain text.
  std::vector<Remedy> remedies = {};

  friend bool operator==(const Advice&, const Advice&) = default;
};

} // namespace krviewer
