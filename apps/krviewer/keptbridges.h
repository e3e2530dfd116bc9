#pragma once
// How a device's serial bridges are set up while the device is away, so that they can be taken up when it is back; also
// those that could not be taken up the last time. Starting them is left to the bridge manager.

#include "krpersistence/krpropertylist.h"
#include "krserial/krdeviceserial.h"

#include <set>

namespace krviewer {

/// Lists of bridges as the bridge manager saves and loads them. Thread: one.
class KeptBridges {
public:
  /// What is to be taken up when the device comes; empty when nothing is. Of a link for which no port of the host was
  /// chosen there is nothing to take up.
  KrPropertyList GetWanted() const;
  /// Wants these and no others.
  void Want(const KrPropertyList& aBridges);
  /// Wants what is set up now, and the ports that have failed.
  void Keep(const KrPropertyList& aNow);
  /// The wanted ones were started, which has led to what is set up now: the ports without a bridge have failed.
  void NoteStart(const KrPropertyList& aNow);
  /// A port that has failed and is set up now is the user's again, whatever becomes of it.
  void NoteChange(const KrPropertyList& aNow);

private:
  KrPropertyList mWanted;
  std::set<KrDeviceSerial> mFailed; ///< Of mWanted.
};

} // namespace krviewer
