#include "bridgearguments.h"

#include <charconv>
#include <cstdint>
#include <iostream>
#include <system_error>
#include <vector>

namespace {

constexpr const char* kUsage = R"(usage: serial_bridge [--simulate] [--create] CAMERA PORT COMPORT [BAUD]
  --simulate  simulated cameras can be used as well
  --create    makes COMPORT, for programs of this computer, as long as this program runs
  CAMERA      the camera's MAC address, or the name that it was given
  PORT        the camera's serial port: Serial0, Serial1, Bulk0 to Bulk7, in just these letters
  COMPORT     the serial port of this computer, COM1 and up: what the link com1 and so on leads to in
              ~/.config/krgui/com-ports, or else one of the serial ports that the computer has
  BAUD        the speed of COMPORT, 115200 without it

To try it without a camera and without a cable:
  serial_bridge --simulate --create sim-mono Serial0 COM9
and in another terminal, to talk to the instrument that is simulated there (try HELP):
  socat - ~/.config/krgui/com-ports/com9,rawer
Ctrl-C ends the bridge.
)";

int FailUsage(const std::string& aWhat) {
  std::cerr << aWhat << "\n\n" << kUsage;
  return 64;
}

// Whether it is a number and nothing else.
bool ParseSpeed(const std::string& aText, std::uint32_t& aSpeed) {
  const char* const end = aText.data() + aText.size();
  const auto [rest, error] = std::from_chars(aText.data(), end, aSpeed);
  return error == std::errc() && rest == end;
}

} // namespace

std::optional<int> ParseArguments(int aCount, char** aWords, BridgeArguments& aArguments) {
  std::vector<std::string> words(aWords + 1, aWords + aCount);
  aArguments.isSimulating = std::erase(words, "--simulate") > 0;
  aArguments.isCreating = std::erase(words, "--create") > 0;
  if (std::erase(words, "--help") + std::erase(words, "-h") > 0) {
    std::cout << kUsage;
    return 0;
  }
  for (const std::string& word : words)
    if (word.starts_with('-'))
      return FailUsage("There is no option " + word + ".");
  if (words.size() < 3 || words.size() > 4)
    return FailUsage("It takes CAMERA, PORT, COMPORT and perhaps BAUD.");
  aArguments.configuration.baudRate = 115200;
  if (words.size() == 4 && !ParseSpeed(words[3], aArguments.configuration.baudRate))
    return FailUsage("The speed " + words[3] + " is no number.");
  aArguments.camera = words[0];
  aArguments.port = words[1];
  aArguments.comPort = words[2];
  return std::nullopt;
}
