#pragma once
// Folders in which a test's serial ports are: real files and links, as the system's are, and nothing of the machine's.

#include "krserial/krhostserialports.h"
#include "temporaryfolder.h"

#include <filesystem>
#include <string>

/// Makes the folders those of the process while it lives.
class HostFolders {
public:
  struct Usb {
    std::string serial = "A1";
    std::string place = "1-1";
    std::string interface = "00";
    std::string vendor = "0403";
    std::string product = "6001";
  };

  HostFolders() {
    for (const char* folder : {"links", "class", "dev", "devices", "locks"})
      std::filesystem::create_directory(mFolder.GetPath() / folder);
    KrHostSerialPorts::SetFolders({.links = GetFile("links"),
                                   .sysfs = GetFile("class"),
                                   .devices = GetFile("dev"),
                                   .numbers = GetFile("own/numbers"),
                                   .locks = GetFile("locks")});
  }
  ~HostFolders() { KrHostSerialPorts::SetFolders({}); }
  HostFolders(const HostFolders&) = delete;
  HostFolders& operator=(const HostFolders&) = delete;

  std::string GetFile(const std::string& aName) const { return mFolder.GetFile(aName); }
  std::string GetLink(const std::string& aName) const { return GetFile("links/" + aName); }

  /// A link, also over one that is there.
  void Link(const std::string& aName, const std::string& aTarget) const {
    std::filesystem::remove(GetLink(aName));
    std::filesystem::create_symlink(aTarget, GetLink(aName));
  }
  /// A tty whose device is at a place below "devices"; an empty type is none, an empty place no device.
  void AddTty(const std::string& aName, const std::string& aType, const std::string& aPlace,
              const std::string& aTarget = "/dev/null") const {
    const std::filesystem::path entry = GetFile("class/" + aName);
    std::filesystem::create_directories(entry);
    if (!aType.empty())
      TemporaryFolder::WriteFile(entry / "type", aType + "\n");
    if (!aPlace.empty()) {
      std::filesystem::create_directories(GetFile("devices/" + aPlace));
      std::filesystem::create_symlink(GetFile("devices/" + aPlace), entry / "device");
    }
    std::filesystem::create_symlink(aTarget, GetFile("dev/" + aName));
  }
  void AddUsb(const std::string& aName, const Usb& aUsb, const std::string& aTarget = "/dev/null") const {
    const std::string interface = aUsb.place + "/" + aUsb.place + ":1." + aUsb.interface;
    std::filesystem::create_directories(GetFile("devices/" + interface));
    const auto write = [this](const std::string& aFile, const std::string& aText) {
      TemporaryFolder::WriteFile(GetFile("devices/" + aFile), aText + "\n");
    };
    write(aUsb.place + "/idVendor", aUsb.vendor);
    write(aUsb.place + "/idProduct", aUsb.product);
    if (!aUsb.serial.empty())
      write(aUsb.place + "/serial", aUsb.serial);
    write(interface + "/bInterfaceNumber", aUsb.interface);
    AddTty(aName, "", interface + "/" + aName, aTarget);
  }
  /// As when an adapter is pulled.
  void Remove(const std::string& aName) const {
    std::filesystem::remove(GetFile("dev/" + aName));
    std::filesystem::remove_all(GetFile("class/" + aName));
  }
  void RemoveUsb(const std::string& aName, const std::string& aPlace) const {
    Remove(aName);
    std::filesystem::remove_all(GetFile("devices/" + aPlace));
  }

private:
  TemporaryFolder mFolder;
};
