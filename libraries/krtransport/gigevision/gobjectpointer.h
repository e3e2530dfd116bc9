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
