#pragma once
// Aravis' node map over a register port: what the engine is compared with.

#include <arv.h>

#include "krgenicam/ikrregisterport.h"

#include <memory>
#include <string>
#include <string_view>

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

/// Thread: one at a time. Ownership: borrows the port.
class AravisMap {
public:
  AravisMap(std::string_view aXml, IKrRegisterPort& aPort);

  /// Null where there is none, or no description was understood.
  ArvGcNode* Find(const std::string& aName) const { return mGc ? arv_gc_get_node(mGc.get(), aName.c_str()) : nullptr; }
  ArvGc* Get() const { return mGc.get(); }

private:
  AravisPointer<ArvDevice> mDevice;
  AravisPointer<ArvGc> mGc;
};
