#pragma once
// Owners for what GLib hands out: an object with a reference, an error to be freed.

#include <arv.h>

#include <memory>
#include <string>

namespace krtransport {

struct GObjectRelease {
  void operator()(gpointer aObject) const { g_object_unref(aObject); }
};

/// Owns one reference.
template <typename T>
using GObjectPointer = std::unique_ptr<T, GObjectRelease>;

/// Ends a stream's receiving thread before the reference is given up: were that thread to hold the last one, as it does
/// for the time of a signal, the stream would wait for it on itself.
struct StreamRelease {
  void operator()(ArvStream* aStream) const {
    g_object_set(aStream, "emit-signals", FALSE, nullptr);
    arv_stream_stop_thread(aStream, FALSE);
    g_object_unref(aStream);
  }
};

using StreamPointer = std::unique_ptr<ArvStream, StreamRelease>;

/// Takes the error that a GLib call may set, and frees it. One call each.
class GErrorHolder {
public:
  GErrorHolder() = default;
  ~GErrorHolder() { g_clear_error(&mError); }
  GErrorHolder(const GErrorHolder&) = delete;
  GErrorHolder& operator=(const GErrorHolder&) = delete;

  GError** Out() { return &mError; }
  bool IsSet() const { return mError != nullptr; }
  /// The error's text; empty where none is set.
  std::string GetText() const { return mError != nullptr ? mError->message : std::string(); }
  bool IsDeviceError(ArvDeviceError aCode) const { return g_error_matches(mError, ARV_DEVICE_ERROR, aCode); }

private:
  GError* mError = nullptr;
};

} // namespace krtransport
