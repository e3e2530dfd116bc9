#pragma once
// How a device's bridges are set up while the device is away, so that they can be taken up when it is back; also those
// that could not be taken up the last time. Starting them is left to the bridge manager.

#include "krpersistence/krpropertylist.h"
#include "krserial/krdeviceserial.h"

#include <map>
#include <set>

namespace krviewer {

/// What a kind of bridges needs; the questions are about the bridge that a list has for a port.
struct KeptBridgeRules {
  /// Whether there is enough of it to start it.
  bool (*canStart)(const KrPropertyList& aBridges, KrDeviceSerial aPort);
  /// Whether the user has begun to set it up, and nothing can be taken up of that.
  bool (*isBegun)(const KrPropertyList& aBridges, KrDeviceSerial aPort);
};

/// A link to a port of the host needs one.
extern const KeptBridgeRules kSerialBridgeRules;
/// A camera is connected, or is not.
extern const KeptBridgeRules kCameraBridgeRules;

/// Lists of bridges: a property of its port's name for each, and others whose names begin with that. Thread: one.
class KeptBridges {
public:
  using Ports = std::set<KrDeviceSerial>;

  explicit KeptBridges(const KeptBridgeRules& aRules) : mRules(aRules) {}

  /// What is to be taken up when the device comes; empty when nothing is.
  KrPropertyList GetWanted() const { return mWanted; }
  /// Wants these and no others, whatever is wrong with them.
  void Want(const KrPropertyList& aBridges);
  /// What is set up now, and of the ports that have failed, what is wanted.
  KrPropertyList GetSetup(const KrPropertyList& aNow) const;
  /// Wants the setup of now, but for what has only been begun.
  void Keep(const KrPropertyList& aNow);
  /// The wanted ones were started on a device with these ports, which has led to what is set up now: the ports without
  /// a bridge have failed. Those that can never start, as the device lacks the port or the bridge is none, are wanted
  /// no longer. A device without any port is one that did not answer.
  void NoteStart(const KrPropertyList& aNow, const Ports& aPorts);
  /// A port that has failed and is set up now is the user's again, whatever becomes of it. One that he has begun to set
  /// up, and gives up, is not wanted any more.
  void NoteChange(const KrPropertyList& aNow);
  /// Whether there is any change to note.
  bool HasFailed() const { return !mFailed.empty(); }

private:
  enum class Trial { None, Begun }; ///< Whether the user is about to set the port up.

  const KeptBridgeRules& mRules;
  KrPropertyList mWanted;
  std::map<KrDeviceSerial, Trial> mFailed; ///< Of mWanted.
};

} // namespace krviewer
