// An application that is connected with a camera through a driver, says the number of the driver's process, and then
// waits until it is killed, in a call of the driver where that hangs. Arguments: the directory of drivers, the
// template, the XML identifier.

#include "await.h"
#include "clprotocol/cldriverlist.h"
#include "clprotocol/clprotocolport.h"
#include "testcamera.h"

#include <unistd.h>

#include <cstdint>
#include <cstdio>

int main(int aCount, char** aArguments) {
  if (aCount != 4)
    return 2;
  krcamerabridge::SetCLDriverDirectories({aArguments[1]});
  krtest::CameraEnd camera{krtest::TestCamera("<RegisterDescription/>")};
  krcamerabridge::CLProtocolPort port(camera.GetLine());
  KrGenDescription description;
  const KrResult result = port.Connect(aArguments[2], aArguments[3], description, {});
  if (!result.IsOK()) {
    std::fprintf(stderr, "%s\n", result.GetDescription().CStr());
    return 1;
  }
  std::uint32_t process = 0;
  if (!port.Read(0xFFFF0000, &process, sizeof process, krtest::GetGenerousMs()).IsOK())
    return 1;
  std::printf("%u\n", process);
  std::fflush(stdout);
  const std::uint8_t byte = 1;
  static_cast<void>(port.Write(0x100, &byte, 1, 600000)); // A driver that hangs is in this when the end comes.
  for (;;)
    pause();
}
