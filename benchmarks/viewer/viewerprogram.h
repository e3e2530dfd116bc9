#pragma once
// A viewer of cameras as a user runs it: a process with a window that is clicked at and typed into. Which viewer it is,
// and what is measured, is left to the benchmark.

#include "picturearea.h"

#include <chrono>
#include <string>
#include <sys/types.h>
#include <vector>

namespace benchmarks {

/// Where something is in a window, in pixels.
struct WindowPoint {
  int x = 0;
  int y = 0;
};

/// Runs a program from construction to destruction, as one that is started for the first time: with settings of its
/// own, which are thrown away, as what it prints is. The kernel ends it should the benchmark die first. Failures end
/// the benchmark with a text.
class ViewerProgram {
public:
  explicit ViewerProgram(std::vector<std::string> aCommandLine);
  ~ViewerProgram();
  ViewerProgram(const ViewerProgram&) = delete;
  ViewerProgram& operator=(const ViewerProgram&) = delete;

  std::chrono::steady_clock::time_point GetStart() const { return mStart; }
  /// Processor time of all its threads so far, in milliseconds.
  double GetProcessorMs() const;

  /// Waits for the window of the program to be on the screen.
  void AwaitWindow();
  int GetWindowHeight() const;
  /// Where its window is on the screen.
  ScreenArea GetWindowArea() const;
  /// Moves the window into the screen's corner and makes it so large; waits until it is.
  void PlaceWindow(int aWidth, int aHeight) const;
  void Click(WindowPoint aPoint) const;
  void PressKey(const std::string& aKey) const;
  /// Where a point of the window is on the screen.
  WindowPoint ToScreen(WindowPoint aPoint) const;

private:
  const std::chrono::steady_clock::time_point mStart = std::chrono::steady_clock::now();
  const std::string mSettingsFolder;
  const pid_t mProcess;
  std::string mWindow; // The number, as xdotool has it.
};

} // namespace benchmarks
