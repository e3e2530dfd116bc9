#pragma once
// A serial bridge as a program has it: a device of the test's, and ports of the host that are real pseudo-terminals.

#include "bridgeends.h"
#include "hostfolders.h"
#include "krserial/krserialbridge.h"
#include "portclient.h"
#include "pseudoterminal.h"

#include <memory>
#include <string>
#include <vector>

namespace krtest {

class BridgeTest : public testing::Test {
protected:
  /// A link named comN to a pseudo-terminal whose far end is the test's.
  void LinkPort(const std::string& aLink = "com3") { host.Link(aLink, terminal.GetPath()); }
  /// Ends a terminal behind com3. The link leads nowhere first: the system may give the terminal's number to another
  /// program's at once.
  void EndPort(std::unique_ptr<PseudoTerminal>& aTerminal) {
    host.Link("com3", host.GetFile("gone"));
    aTerminal.reset();
  }
  KrResult Start(const KrSerialPortConfiguration& aConfiguration = {}) {
    return bridge.Start("COM3", aConfiguration, &adapter, KrDeviceSerial::Serial0);
  }
  /// Where no port is, with one that the bridge makes.
  KrResult StartCreating(const KrSerialPortConfiguration& aConfiguration = {}) {
    bridge.SetCreatingPort(true);
    return Start(aConfiguration);
  }
  std::string GetPath() const { return host.GetLink("com3"); }
  std::vector<std::uint32_t> ListSupported() const {
    std::vector<std::uint32_t> supported;
    for (std::size_t index = 0; index < bridge.GetSupportedBaudRateCount(); ++index)
      supported.push_back(bridge.GetSupportedBaudRate(index));
    return supported;
  }

  HostFolders host;
  PseudoTerminal terminal;
  LockedAdapter adapter;
  std::shared_ptr<SerialLine> line = adapter.AddLine(0);
  KrSerialBridge bridge; // Last, so that it ends before the device.
};

} // namespace krtest
