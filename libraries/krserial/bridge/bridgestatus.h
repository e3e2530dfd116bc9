#pragma once
// What is wrong with a bridge at the moment, as its threads say it and people read it.

#include "krbase/krstring.h"

#include <initializer_list>
#include <mutex>

namespace krserial {

/// Thread: any. Empty texts stand for "nothing is wrong".
class BridgeStatus {
public:
  /// The device's port has failed.
  void SetDevice(const KrString& aText) { Set(mDevice, aText); }
  /// The host's port has gone.
  void SetPort(const KrString& aText) { Set(mPort, aText); }
  /// Bytes go both ways, but somebody has asked for what cannot be had.
  void SetNote(const KrString& aText) { Set(mNote, aText); }

  bool HasDeviceFailed() const { return !Get(mDevice).IsEmpty(); }
  bool IsPortLost() const { return !Get(mPort).IsEmpty(); }
  /// All of it, a line each.
  KrString GetText() const {
    const std::lock_guard lock(mMutex);
    KrString text;
    for (const KrString* part : {&mDevice, &mPort, &mNote})
      if (!part->IsEmpty())
        text += (text.IsEmpty() ? KrString() : KrString("\n")) + *part;
    return text;
  }

private:
  void Set(KrString& aPart, const KrString& aText) {
    const std::lock_guard lock(mMutex);
    aPart = aText;
  }
  KrString Get(const KrString& aPart) const {
    const std::lock_guard lock(mMutex);
    return aPart;
  }

  mutable std::mutex mMutex; // Guards the texts.
  KrString mDevice;
  KrString mPort;
  KrString mNote;
};

} // namespace krserial
