#include "lines.h"

#include "checked.h"
#include "krserial/krhostserialports.h"
#include "krserial/krserialbridge.h"
#include "pseudoterminal.h"
#include "terminaldevice.h"

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>

namespace benchmarks {

namespace {

class BareLine : public Line {
public:
  explicit BareLine(PseudoTerminal aTerminal) : Line(std::move(aTerminal.master), std::move(aTerminal.other)) {}
};

class SocatLine : public Line {
public:
  SocatLine(PseudoTerminal aHost, PseudoTerminal aDevice)
      : Line(std::move(aHost.master), std::move(aDevice.master)), mHost(std::move(aHost.other)),
        mDevice(std::move(aDevice.other)) {
    std::string program = "socat";
    std::string host = aHost.path + ",rawer";
    std::string device = aDevice.path + ",rawer";
    std::array<char*, 4> arguments = {program.data(), host.data(), device.data(), nullptr};
    const int failure = posix_spawnp(&mProcess, program.c_str(), nullptr, nullptr, arguments.data(), environ);
    CheckSystem(failure == 0, "socat");
  }
  ~SocatLine() override {
    kill(mProcess, SIGTERM);
    waitpid(mProcess, nullptr, 0);
  }

private:
  pid_t mProcess = -1;
  const krbase::FileDescriptor mHost;
  const krbase::FileDescriptor mDevice;
};

/// A folder of links that ends with the program.
class Links {
public:
  Links() {
    std::string name = (std::filesystem::temp_directory_path() / "bench-XXXXXX").string();
    CheckSystem(mkdtemp(name.data()) != nullptr, "mkdtemp");
    mFolder = name;
    KrHostSerialPorts::SetFolders(
        {.links = name, .sysfs = name, .devices = name, .numbers = name + "/numbers", .locks = name});
  }
  ~Links() {
    std::error_code ignored; // Nobody can do anything about it.
    std::filesystem::remove_all(mFolder, ignored);
  }
  Links(const Links&) = delete;
  Links& operator=(const Links&) = delete;

  static std::filesystem::path Get(const char* aName) {
    static const Links links;
    return links.mFolder / aName;
  }

private:
  std::filesystem::path mFolder;
};

class BridgeLine : public Line {
public:
  /// Between a port of the host and a terminal that is the device's.
  BridgeLine(const char* aPort, krbase::FileDescriptor aHostEnd, PseudoTerminal aDevice)
      : Line(std::move(aHostEnd), std::move(aDevice.master)), mAdapter(aDevice.path),
        mDevice(std::move(aDevice.other)) {
    mBridge.SetCreatingPort(true);
    Check(mBridge.Start(aPort, {}, &mAdapter, KrDeviceSerial::Serial0));
    if (GetHostEnd() < 0) {
      KrHostSerialPort port;
      Check(KrHostSerialPorts::Find(aPort, port));
      SetHostEnd(OpenRaw(port.path.CStr()));
    }
  }

private:
  TerminalDevice mAdapter;
  KrSerialBridge mBridge; // Ends before the adapter.
  const krbase::FileDescriptor mDevice;
};

} // namespace

std::unique_ptr<Line> MakeBareLine() {
  return std::make_unique<BareLine>(MakePseudoTerminal());
}

std::unique_ptr<Line> MakeSocatLine() {
  return std::make_unique<SocatLine>(MakePseudoTerminal(), MakePseudoTerminal());
}

std::unique_ptr<Line> MakeBridgeLine() {
  PseudoTerminal host = MakePseudoTerminal();
  std::filesystem::create_symlink(host.path, Links::Get("com1"));
  return std::make_unique<BridgeLine>("COM1", std::move(host.master), MakePseudoTerminal());
}

std::unique_ptr<Line> MakeBridgeLineOfMadePort() {
  Links::Get(""); // Before the bridge looks there.
  return std::make_unique<BridgeLine>("COM2", krbase::FileDescriptor(), MakePseudoTerminal());
}

} // namespace benchmarks
