#pragma once
// Sees when a camera's frames outgrow the buffers that a stream was started with: a camera that lets its size be set
// while it streams sends nothing any more that has room in them. What is done then is left to the acquisition.

#include "krgenicam/krgeneventsink.h"
#include "krgenicam/krgenparameterarray.h"

#include <atomic>
#include <cstdint>
#include <optional>
#include <vector>

namespace krviewer {

/// Thread: one, but for what it hears of changes. Ownership: borrows the parameters from Follow to Leave.
class PayloadWatch : private KrGenEventSink {
public:
  PayloadWatch() = default;
  ~PayloadWatch() override { Leave(); }
  PayloadWatch(const PayloadWatch&) = delete;
  PayloadWatch& operator=(const PayloadWatch&) = delete;

  /// Hears of changes of what the size stands on from now on. A camera that does not say its size is never seen to
  /// grow.
  void Follow(KrGenParameterArray& aParameters);
  void Leave();
  /// A stream has been started, with buffers of the size that the camera says now.
  void NoteStart();
  /// Whether frames have become larger since. Asks the camera, when something has changed alone.
  bool HasGrown();

private:
  void OnParameterUpdate(KrGenParameter* aParameter) override;
  std::optional<std::int64_t> ReadSize();

  KrGenParameterArray* mParameters = nullptr;
  std::vector<KrGenParameter*> mFollowed;
  std::optional<std::int64_t> mStartBytes;
  std::atomic<bool> mHasChange = false;
};

} // namespace krviewer
