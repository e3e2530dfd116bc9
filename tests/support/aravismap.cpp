#include "aravismap.h"

#include "await.h"

#include <cstring>

namespace {

const std::uint32_t kTimeoutMs = krtest::GetGenerousMs();

// The device's instance as GLib wants it.
struct PortDevice {
  ArvDevice parent;
  IKrRegisterPort* port;
};

struct PortDeviceClass {
  ArvDeviceClass parent;
};

gboolean Report(const KrResult& aResult, GError** aError) {
  if (aResult.IsOK())
    return TRUE;
  g_set_error_literal(aError, ARV_DEVICE_ERROR, ARV_DEVICE_ERROR_PROTOCOL_ERROR, aResult.GetDescription().CStr());
  return FALSE;
}

IKrRegisterPort& GetPort(ArvDevice* aDevice) {
  return *reinterpret_cast<PortDevice*>(aDevice)->port;
}

gboolean ReadMemory(ArvDevice* aDevice, guint64 aAddress, guint32 aSize, void* aBuffer, GError** aError) {
  return Report(GetPort(aDevice).Read(aAddress, aBuffer, aSize, kTimeoutMs), aError);
}

gboolean WriteMemory(ArvDevice* aDevice, guint64 aAddress, guint32 aSize, void* aBuffer, GError** aError) {
  return Report(GetPort(aDevice).Write(aAddress, aBuffer, aSize, kTimeoutMs), aError);
}

gboolean ReadRegister(ArvDevice* aDevice, guint64 aAddress, guint32* aValue, GError** aError) {
  const gboolean isRead = ReadMemory(aDevice, aAddress, sizeof *aValue, aValue, aError);
  *aValue = GUINT32_FROM_BE(*aValue);
  return isRead;
}

gboolean WriteRegister(ArvDevice* aDevice, guint64 aAddress, guint32 aValue, GError** aError) {
  guint32 value = GUINT32_TO_BE(aValue);
  return WriteMemory(aDevice, aAddress, sizeof value, &value, aError);
}

void InitClass(gpointer aClass, gpointer) {
  auto* const device = static_cast<ArvDeviceClass*>(aClass);
  device->read_memory = ReadMemory;
  device->write_memory = WriteMemory;
  device->read_register = ReadRegister;
  device->write_register = WriteRegister;
}

GType GetPortDeviceType() {
  static const GType type =
      g_type_register_static_simple(ARV_TYPE_DEVICE, "KrTestPortDevice", sizeof(PortDeviceClass), InitClass,
                                    sizeof(PortDevice), nullptr, static_cast<GTypeFlags>(0));
  return type;
}

} // namespace

AravisMap::AravisMap(std::string_view aXml, IKrRegisterPort& aPort)
    : mDevice(static_cast<ArvDevice*>(g_object_new(GetPortDeviceType(), nullptr))) {
  reinterpret_cast<PortDevice*>(mDevice.get())->port = &aPort;
  mGc.reset(arv_gc_new(mDevice.get(), aXml.data(), aXml.size()));
}
