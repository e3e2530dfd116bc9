#pragma once
// Every window of the library while its threads are at something that takes long: what closing is tried and measured
// on.

#include "krbase/krresult.h"

#include <functional>
#include <memory>
#include <span>

namespace krtest {

/// A window on the built-in lab that is about to be busy. What fails throws std::runtime_error.
///
/// Thread: the user interface's. Ownership: owns window and device.
class BusyWindow {
public:
  virtual ~BusyWindow() = default;
  /// Opens the window, has its threads begin, and calls back while they are busy: the callback closes the window.
  /// Returns when nothing of what was begun is under way on the user-interface thread any more.
  virtual void Run(const std::function<void()>& aWhileBusy) = 0;
  virtual KrResult Close() = 0;
  /// Whether it is on the screen.
  virtual bool IsOpen() const = 0;
};

struct BusyWindowCase {
  const char* name;
  std::unique_ptr<BusyWindow> (*make)();
};

/// KrInstallTransports has installed the simulated lab before one is made.
std::span<const BusyWindowCase> GetBusyWindows();

} // namespace krtest
