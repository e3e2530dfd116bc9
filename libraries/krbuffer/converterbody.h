#pragma once
// What a converter owns: its threads and its settings, for all that convert by them.

#include "imagelayout.h"
#include "krbuffer/ikrimage.h"
#include "krbuffer/krbufferconverter.h"
#include "lineconverter.h"
#include "tonestore.h"
#include "workerpool.h"

#include <memory>
#include <mutex>

/// Thread: any.
struct KrBufferConverter::Body {
  int threadCount = 1;
  std::mutex poolMutex; // Guards the making of the pool, which is used without it.
  std::unique_ptr<krbuffer::WorkerPool> pool;
  krbuffer::ToneStore tones;

  /// The pool where the image is worth it, or null; made when it is first needed.
  krbuffer::WorkerPool* FindPool(const krbuffer::ImageShape& aShape);
  /// Converts all lines into an image of the right size and format, with the pool or, where it is null, without.
  void ConvertLines(const krbuffer::LineConverter& aConverter, IKrImage& aDestination, bool aBottomUp,
                    krbuffer::WorkerPool* aPool) const;
  KrResult Convert(const IKrImage& aSource, KrBuffer& aDestination, bool aAllocate, bool aBottomUp);
};
