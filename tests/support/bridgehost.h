#pragma once
// A host for serial bridges: COM ports that are pseudo-terminals of the test's, and a place of its own for the sockets
// of the Camera Link functions. Nothing of the machine's is touched.

#include "krserial/krgenparameterarraycl.h"
#include "krserial/krhostserialports.h"
#include "temporaryfolder.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include <unistd.h>

namespace krtest {

/// Thread: one at a time, while no bridge is started or ended on another.
class BridgeHost {
public:
  BridgeHost() {
    for (const char* folder : {"links", "sysfs", "devices", "sockets"})
      std::filesystem::create_directory(mFolder.GetFile(folder));
    std::filesystem::permissions(GetSocketFolder(), std::filesystem::perms::owner_all);
    KrHostSerialPorts::SetFolders({.links = GetLinkFolder(),
                                   .sysfs = mFolder.GetFile("sysfs"),
                                   .devices = mFolder.GetFile("devices"),
                                   .numbers = mFolder.GetFile("numbers"),
                                   .locks = mFolder.GetFile("locks")});
    ::setenv(kSocketVariable, GetSocketFolder().c_str(), 1);
  }
  ~BridgeHost() {
    KrHostSerialPorts::SetFolders({});
    ::unsetenv(kSocketVariable);
    for (const auto& [number, descriptor] : mOthers)
      ::close(descriptor);
  }
  BridgeHost(const BridgeHost&) = delete;
  BridgeHost& operator=(const BridgeHost&) = delete;

  /// Adds COM port aNumber, whose other end is the test's.
  void AddPort(int aNumber) {
    const int other = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (other < 0 || ::grantpt(other) != 0 || ::unlockpt(other) != 0)
      throw std::runtime_error("no pseudo-terminal");
    mOthers[aNumber] = other;
    AddLink("com" + std::to_string(aNumber), ::ptsname(other));
  }
  /// A link in the folder of links, whatever it leads to.
  void AddLink(const std::string& aName, const std::string& aTarget) const {
    std::filesystem::create_symlink(aTarget, GetLinkFolder() + "/" + aName);
  }
  void RemovePort(int aNumber) {
    std::filesystem::remove(GetLinkFolder() + "/com" + std::to_string(aNumber));
    ::close(mOthers.at(aNumber));
    mOthers.erase(aNumber);
  }
  /// From now on others could enter the place of the sockets, so that nothing can be published there.
  void OpenSocketFolder() const { std::filesystem::permissions(GetSocketFolder(), std::filesystem::perms::all); }

  /// What a process leaves that dies while a name of its is published. Whoever asks for what is published removes it.
  void LeaveDeadPublication() const { TemporaryFolder::WriteFile(GetDeadFile(), "a dead one"); }
  bool HasDeadPublication() const { return std::filesystem::exists(GetDeadFile()); }

  /// The other end of a COM port sends.
  void Send(int aNumber, const std::string& aBytes) const {
    if (::write(mOthers.at(aNumber), aBytes.data(), aBytes.size()) != static_cast<ssize_t>(aBytes.size()))
      throw std::runtime_error("the pseudo-terminal takes nothing");
  }
  /// What has come at the other end since the last call; nothing while nobody has the port open.
  std::string Receive(int aNumber) const {
    char bytes[256];
    const ssize_t size = ::read(mOthers.at(aNumber), bytes, sizeof bytes);
    return size > 0 ? std::string(bytes, static_cast<std::size_t>(size)) : std::string();
  }

  /// The names that are published for the Camera Link functions.
  static std::vector<std::string> GetPublished() {
    KrStringList names;
    if (!KrGenParameterArrayCL::GetPortIDs(names).IsOK())
      return {"cannot be asked for"};
    std::vector<std::string> published;
    for (const KrString& name : names)
      published.push_back(name.ToUtf8());
    return published;
  }

private:
  static constexpr const char* kSocketVariable = "KRGUI_CAMERA_LINK_DIR";

  std::string GetLinkFolder() const { return mFolder.GetFile("links"); }
  std::string GetSocketFolder() const { return mFolder.GetFile("sockets"); }
  std::string GetDeadFile() const { return GetSocketFolder() + "/77.lock"; }

  TemporaryFolder mFolder;
  std::map<int, int> mOthers; ///< The other ends, by the numbers of the ports.
};

} // namespace krtest
