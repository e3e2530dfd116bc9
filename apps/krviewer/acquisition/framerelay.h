#pragma once
// Hands the frames of whichever connection is the current one to those who watch a page, which outlives connections.

#include "acquisition/framesink.h"

namespace krviewer {

/// Thread: as FrameSink.
class FrameRelay : public FrameSink {
public:
  /// Who hears of the frames.
  FrameSinks& GetSinks() { return mSinks; }

  void OnFrame(const KrBuffer& aFrame, std::uint64_t aArrivalNs) override {
    mSinks.Notify([&](FrameSink& aSink) { aSink.OnFrame(aFrame, aArrivalNs); });
  }
  void OnAcquisitionStarted() override {
    mSinks.Notify([](FrameSink& aSink) { aSink.OnAcquisitionStarted(); });
  }
  void OnAcquisitionEnded(const KrResult& aReason) override {
    mSinks.Notify([&](FrameSink& aSink) { aSink.OnAcquisitionEnded(aReason); });
  }

private:
  FrameSinks mSinks{"a watcher of a page's frames", "krviewer", {"FrameRelay::GetSinks", "framerelay"}};
};

} // namespace krviewer
