#pragma once
// A system with the interfaces and devices that a test states, as discovery finds them.

#include "faketransport.h"
#include "krsystem/krsystem.h"

#include <gtest/gtest.h>
#include <vector>

/// An adapter "eth<n>" with a MAC address of its own.
inline krsystem::NetworkAdapterFields MakeNumberedAdapter(int aNumber, const KrString& aAddress = "10.0.0.1") {
  const KrString number(std::to_string(aNumber));
  krsystem::NetworkAdapterFields fields = MakeAdapter("eth" + number, aAddress);
  fields.macAddress = "02:00:00:00:00:0" + number;
  return fields;
}

inline krsystem::USBHostControllerFields MakeController(const KrString& aID) {
  krsystem::USBHostControllerFields fields;
  fields.uniqueID = aID;
  fields.displayID = "Controller " + aID;
  fields.speed = 4;
  return fields;
}

inline krsystem::U3VFields MakeU3VCamera(const KrString& aGUID) {
  krsystem::U3VFields fields;
  fields.uniqueID = "usb camera " + aGUID;
  fields.displayID = "Camera " + aGUID;
  fields.deviceGUID = aGUID;
  fields.speed = 4;
  return fields;
}

/// Change the transport's interfaces and answers, then call Find.
class FoundSystem {
public:
  explicit FoundSystem(std::vector<krsystem::InterfaceFields> aInterfaces) {
    mTransport->interfaces = std::move(aInterfaces);
    mSystem = std::make_unique<KrSystem>();
  }

  void Answer(std::size_t aInterfaceIndex, const krsystem::AnyDeviceFields& aDevice) {
    mTransport->answers.emplace_back(aInterfaceIndex, aDevice);
  }
  void Find() { ASSERT_TRUE(mSystem->Find().IsOK()); }

  FakeTransport& GetTransport() const { return *mTransport.Get(); }
  KrSystem& Get() const { return *mSystem; }
  const KrInterface* GetInterface(std::size_t aIndex) const { return mSystem->GetInterface(aIndex); }
  const KrDeviceInfo* GetDevice(std::size_t aIndex) const { return mSystem->GetDeviceInfo(aIndex); }

private:
  RegisteredTransport mTransport;
  std::unique_ptr<KrSystem> mSystem; // Lists the interfaces when it is made.
};
