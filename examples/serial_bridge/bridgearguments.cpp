#include "bridgearguments.h"

#include <charconv>
#include <iostream>
#include <vector>

namespace {

constexpr const char* kUsage = R"(usage: serial_bridge [--simulate] [--create] CAMERA PORT COMPORT [BAUD=115200]
  --simulate  simulated cameras can be used as well
  --create    makes COMPORT, for programs of this computer, as long as this program runs
  CAMERA      the camera's MAC address, or the name that it was given
  PORT        the camera's serial port: Serial0, Serial1, Bulk0 to Bulk7, in just these letters
  COMPORT     the serial port of this computer, COM1 and up: where ~/.config/krgui/com-ports/com1 leads, or else its own

To try it without a camera and without a cable, and in another terminal to talk to the simulated instrument (try HELP):
  serial_bridge --simulate --create sim-mono Serial0 COM9
  socat - ~/.config/krgui/com-ports/com9,rawer
)";

int FailUsage(const std::string& aWhat) {
  std::cerr << aWhat << "\n\n" << kUsage;
  return 64;
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
  const std::string speed = words.size() == 4 ? words[3] : "115200";
  if (*std::from_chars(speed.data(), speed.data() + speed.size(), aArguments.configuration.baudRate).ptr != '\0')
    return FailUsage("The speed " + speed + " is no number.");
  aArguments.camera = words[0];
  aArguments.port = words[1];
  aArguments.comPort = words[2];
  return std::nullopt;
}
