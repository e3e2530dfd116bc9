#pragma once
// Aravis' node map over a register port: what the engine is compared with.

#include "aravispointer.h"
#include "krgenicam/ikrregisterport.h"

#include <string>
#include <string_view>

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
