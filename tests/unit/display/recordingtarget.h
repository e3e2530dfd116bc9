#pragma once
// A frame target that remembers what it was given to draw, and answers as a test wants it to.

#include "logic/display/frametarget.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

class RecordingTarget : public krgui::FrameTarget {
public:
  struct Drawing {
    bool hasImage = false;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::vector<std::uint8_t> pixels; ///< The whole image as BGRa8.
    std::uint64_t number = 0;
    krgui::ViewArea view;
    KrString overlayText;
    KrString refusalText;
    KrString cursorText;
    std::chrono::steady_clock::time_point callBegin;
    bool isPaint = false;
  };

  Outcome Draw(const krgui::Frame& aFrame, Times& aTimes) override {
    Drawing drawing{aFrame.image != nullptr,
                    0,
                    0,
                    {},
                    aFrame.number,
                    aFrame.view,
                    aFrame.overlayText,
                    aFrame.refusalText,
                    aFrame.cursorText,
                    aFrame.callBegin};
    if (aFrame.image) {
      drawing.width = aFrame.image->GetWidth();
      drawing.height = aFrame.image->GetHeight();
      const std::size_t lineBytes = std::size_t{4} * drawing.width;
      drawing.pixels.resize(lineBytes * drawing.height);
      for (std::uint32_t y = 0; y < drawing.height; ++y)
        aFrame.image->ConvertLine(y, drawing.pixels.data() + lineBytes * y);
    }
    drawings.push_back(std::move(drawing));
    if (onDraw)
      onDraw();
    aTimes.conversion += times.conversion;
    aTimes.drawing += times.drawing;
    return outcome;
  }

  Outcome Paint(const krgui::Frame& aFrame, Times& aTimes) override {
    const Outcome painted = Draw(aFrame, aTimes);
    drawings.back().isPaint = true;
    return painted;
  }

  const Drawing& GetLast() const { return drawings.back(); }

  std::vector<Drawing> drawings;
  Outcome outcome = Outcome::Shown;
  Times times;
  std::function<void()> onDraw;
};
