#pragma once
// An interface and a device of kinds that nobody knows yet.

#include "krsystem/krdeviceinfo.h"
#include "krsystem/krinterface.h"

class UnknownInterface : public KrInterface {
public:
  UnknownInterface() : KrInterface("unknown", "Unknown") {}
  KrInterfaceType GetType() const override { return static_cast<KrInterfaceType>(7); }
};

class UnknownDevice : public KrDeviceInfo {
public:
  KrDeviceInfoType GetType() const override { return static_cast<KrDeviceInfoType>(7); }

protected:
  const krsystem::DeviceFields& GetCommon() const override { return mFields; }

private:
  krsystem::DeviceFields mFields;
};
