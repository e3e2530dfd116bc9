#pragma once
// A frame on its way to a recording: a copy of its own and what is known of how it came.

#include "krbuffer/krbuffer.h"

#include <cstddef>
#include <cstdint>

namespace krviewer {

struct RecordedFrame {
  KrBuffer frame;
  std::size_t room = 0;               ///< Bytes of memory that it was given.
  std::uint64_t arrivalNs = 0;        ///< Of a steady clock.
  std::uint64_t run = 0;              ///< Which acquisition it is of, counted from 1.
  std::uint64_t incompleteBefore = 0; ///< Left out since the frame recorded before it.
  std::uint64_t queueFullBefore = 0;  ///< The same.
};

/// The bytes of a frame's image; 0 for a frame that is no image, or holds nothing.
std::size_t GetRecordedSize(const KrBuffer& aFrame);

/// Copies image, numbers and times of a frame into one that has room for exactly its bytes.
KrResult CopyFrame(const KrBuffer& aFrom, KrBuffer& aTo);

} // namespace krviewer
