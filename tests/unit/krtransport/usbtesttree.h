#pragma once
// A tree of USB devices in a temporary folder, unpacked from a file under usbtrees/, for whatever reads sysfs.

#include "temporaryfolder.h"
#include "usb3vision/usbtree.h"

#include <filesystem>
#include <string>

namespace krtransport {

/// Thread: one at a time. Ownership: owns the folder.
class UsbTestTree {
public:
  /// Unpacks the file of a name, for example "superspeed"; throws std::runtime_error for one that is not there or has a
  /// line that means nothing. The empty name is a host without USB.
  explicit UsbTestTree(const std::string& aName);
  UsbTestTree(const UsbTestTree&) = delete;
  UsbTestTree& operator=(const UsbTestTree&) = delete;

  UsbRoots GetRoots() const {
    return {.devices = mFolder.GetPath() / "sys/bus/usb/devices",
            .deviceFiles = mFolder.GetPath() / "dev/bus/usb",
            .coreParameters = mFolder.GetPath() / "sys/module/usbcore/parameters"};
  }
  /// Takes a device out, with its interfaces.
  void Unplug(const std::string& aPort);
  /// Puts a device back that was taken out; it gets another address.
  void PlugIn(const std::string& aPort, std::uint32_t aAddress);
  /// Sets a parameter of the kernel's USB core.
  void SetCoreParameter(const std::string& aName, const std::string& aText);
  /// Replaces an attribute of a device.
  void SetAttribute(const std::string& aPort, const std::string& aName, const std::string& aText);

private:
  void Unpack(const std::string& aLine);
  static void Move(const std::string& aPort, const std::filesystem::path& aFrom, const std::filesystem::path& aTo);

  TemporaryFolder mFolder;
  std::filesystem::path mUnpacked; // The folder that the following lines belong to.
};

} // namespace krtransport
