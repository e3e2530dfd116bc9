#pragma once
// A user of a soak: does at random what a hand and an application do with a display's window.

#include <cstdint>
#include <random>

class KrDisplayWnd;

/// Thread: the user interface's.
class RandomUser {
public:
  static constexpr int kMostWidth = 1600;
  static constexpr int kMostHeight = 1000;

  RandomUser(KrDisplayWnd& aWindow, std::uint32_t aSeed);

  void Step();

  /// Operations that failed.
  int GetFailures() const { return mFailures; }

private:
  void Zoom();
  void Scroll();
  void PressKeysAndTurnWheel();
  void ChangeLooks();
  void Reopen();
  int Draw(int aFirst, int aLast);

  KrDisplayWnd& mWindow;
  std::mt19937 mRandom;
  int mFailures = 0;
};
