#pragma once
// Owners for what Aravis hands out: an object with a reference, an error to be freed.

#include <arv.h>

#include <memory>
#include <string>

struct AravisRelease {
  void operator()(gpointer aObject) const { g_object_unref(aObject); }
};
template <typename Object>
using AravisPointer = std::unique_ptr<Object, AravisRelease>;

/// What one of Aravis' operations came to.
class AravisError {
public:
  ~AravisError() { g_clear_error(&mError); }
  AravisError() = default;
  AravisError(const AravisError&) = delete;
  AravisError& operator=(const AravisError&) = delete;

  GError** Take() {
    g_clear_error(&mError);
    return &mError;
  }
  bool IsSet() const { return mError != nullptr; }
  std::string GetText() const { return mError ? mError->message : ""; }

private:
  GError* mError = nullptr;
};
