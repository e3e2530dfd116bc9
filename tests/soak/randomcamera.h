#pragma once
// A camera of a soak: does at random, from a thread of its own, all that a camera's thread may do with a display.

#include "krbuffer/krbuffer.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <vector>

class KrDisplayWnd;

/// Thread: its own; the window's operations for any thread are all that it uses.
class RandomCamera {
public:
  static constexpr std::uint32_t kMostWidth = 1600;
  static constexpr std::uint32_t kMostHeight = 1200;

  /// The size of images that cameras of one window give until one of them changes it, as an image of another size waits
  /// for the window's paint. Width times 65536 plus height.
  using SharedSize = std::atomic<std::uint32_t>;

  RandomCamera(KrDisplayWnd& aWindow, SharedSize& aSize, std::uint32_t aSeed);

  /// Gives the largest image in every format, so that what is kept for reuse has grown to its full size.
  void GiveLargest();
  void Step();

  /// Frames that were refused although they are good, or taken although they are not.
  int GetFailures() const { return mFailures; }
  /// Frames given that must be refused.
  std::uint64_t GetRefusals() const { return mRefusals; }

private:
  void GiveFrames();
  void ChangeSize();
  void GiveBadFrame();
  void ChangeText();
  void Ask();
  std::shared_ptr<KrBuffer> MakeFrame(std::uint32_t aWidth, std::uint32_t aHeight, KrPixelType aType);
  std::uint32_t Draw(std::uint32_t aFirst, std::uint32_t aLast);

  KrDisplayWnd& mWindow;
  SharedSize& mSize;
  std::mt19937 mRandom;
  std::vector<std::uint8_t> mNoise;
  int mFailures = 0;
  std::uint64_t mRefusals = 0;
};
