#pragma once
// The bridges of a device, one for each of its serial ports: made for a device, loaded and saved together. What is
// shown of them is left to the window.

#include "krbase/krstringlist.h"
#include "krpersistence/krpropertylist.h"
#include "krserial/krdeviceserial.h"
#include "logic/serial/serialbridge.h"

#include <cstdint>
#include <memory>
#include <vector>

class IKrDeviceAdapter;

namespace krgui {

/// Bridges are had by their port, and not kept: SetDevice and Load make all of them anew.
///
/// Thread: one at a time. Ownership: owns the bridges; borrows the adapter until another one is set.
class SerialBridgeList {
public:
  using Bridges = std::vector<std::unique_ptr<SerialBridge>>;

  SerialBridgeList();
  ~SerialBridgeList();
  SerialBridgeList(const SerialBridgeList&) = delete;
  SerialBridgeList& operator=(const SerialBridgeList&) = delete;

  /// Ends all bridges and makes those of a device, or none for null. aDeviceText is what the device is called by. Each
  /// name is published for a moment, and the names that are published then asked for.
  void SetDevice(IKrDeviceAdapter* aAdapter, const KrString& aDeviceText);
  bool HasDevice() const { return mAdapter != nullptr; }
  const KrString& GetDeviceText() const { return mDeviceText; }
  /// Whether COM ports that the host lacks are made, of all bridges from their next start on.
  void SetCreatingPorts(bool aIsOn);
  bool IsCreatingPorts() const { return mIsCreatingPorts; }

  /// In the order of their ports.
  const Bridges& GetBridges() const { return mBridges; }
  /// Null for a port that the device does not have.
  SerialBridge* Find(KrDeviceSerial aPort) const;
  /// Changes when the bridges are made anew.
  std::uint64_t GetGeneration() const { return mGeneration; }

  /// The name under which a bridge is published for the Camera Link functions.
  KrString MakeCLDLLName(const SerialBridge& aBridge) const;

  /// Makes the bridges anew and sets them up; a line for each port that could not be, which has no bridge then.
  void Load(const KrPropertyList& aProperties, KrStringList& aErrors);
  void Save(KrPropertyList& aProperties) const;

private:
  void Build();
  void LoadPort(KrDeviceSerial aPort, const KrString& aType, const KrPropertyList& aProperties, KrStringList& aErrors);
  void SetType(SerialBridge& aBridge, const KrString& aType, KrStringList& aErrors) const;

  IKrDeviceAdapter* mAdapter = nullptr;
  KrString mDeviceText;
  bool mIsCreatingPorts = false;
  Bridges mBridges;
  std::uint64_t mGeneration = 0;
};

} // namespace krgui
