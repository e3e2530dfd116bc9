#pragma once
// A lab file of one simulated camera with serial ports.

#include <string>
#include <vector>

namespace krtest {

/// Each port as in a lab file, without its braces.
inline std::string MakeSerialLabFile(const std::string& aMAC, const std::vector<std::string>& aPorts) {
  std::string ports;
  for (const std::string& port : aPorts)
    ports += (ports.empty() ? "{" : ", {") + port + "}";
  return "adapters:\n"
         "- name: a\n"
         "  addresses: [{address: 192.168.77.1, mask: 255.255.255.0}]\n"
         "  devices:\n"
         "  - {kind: gigeVision, model: Terminal Camera, serial: S1, address: 192.168.77.10,\n"
         "     mask: 255.255.255.0, mac: \"" +
         aMAC + "\",\n     serialPorts: [" + ports + "]}\n";
}

} // namespace krtest
