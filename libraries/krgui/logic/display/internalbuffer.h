#pragma once
// The buffer with the whole converted image that a display lends to the application. Which image that is, and when it
// is wanted, is left to the display's content.

#include "krbuffer/krbuffer.h"
#include "krbuffer/krbufferconverter.h"
#include "krbuffer/krlineconversion.h"

#include <cstdint>

namespace krgui {

/// Thread: one at a time.
class InternalBuffer {
public:
  /// Makes it hold the image of this number, which is above 0. Nothing is done when that is so; an application that
  /// has given the buffer another memory or description since is put right. Empty where memory cannot be had.
  void Convert(const KrLineConversion& aImage, std::uint64_t aNumber, const KrBufferConverter& aConverter);
  void Clear();

  KrBuffer& Get() { return mBuffer; }

private:
  bool Holds(const KrLineConversion& aImage, std::uint64_t aNumber);

  KrBuffer mBuffer;
  std::uint64_t mNumber = 0;           ///< Of the image in the buffer; 0 without one.
  const std::uint8_t* mData = nullptr; ///< The buffer's memory as it was left here.
};

} // namespace krgui
