#pragma once
// What a display is measured with: a pixel format, the size of the image and that of the window, and a ring of frames
// that tell by a grey block in their middle which one they are.

#include "krbuffer/krbuffer.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace benchmarks {

struct FrameSize {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  friend constexpr bool operator==(const FrameSize&, const FrameSize&) = default;
};

struct DisplayCase {
  KrPixelType format = KrPixel::BGRa8;
  FrameSize source;
  FrameSize window;

  /// What the image measures in the window: as large as fits, its shape kept.
  FrameSize GetShownSize() const;
};

/// The case of a command line "FORMAT SOURCE WINDOW", such as "Mono8 640x480 1280x960"; nothing when it names none.
std::optional<DisplayCase> ParseDisplayCase(const std::vector<std::string>& aWords);

/// Frames of noise, each with the grey of its own number in the middle.
class FrameRing {
public:
  static constexpr std::size_t kCount = 16;

  explicit FrameRing(const DisplayCase& aCase);

  const KrBuffer& Get(std::size_t aFrame) const { return *mFrames[aFrame % kCount]; }
  const std::shared_ptr<const KrBuffer>& Share(std::size_t aFrame) const { return mFrames[aFrame % kCount]; }

  /// The grey, 0 to 255, that a frame shows in its middle.
  static constexpr std::uint8_t GetShade(std::size_t aFrame) {
    return static_cast<std::uint8_t>(8 + aFrame % kCount * 15);
  }

private:
  std::vector<std::shared_ptr<const KrBuffer>> mFrames;
};

} // namespace benchmarks
