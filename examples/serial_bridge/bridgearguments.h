#pragma once
// What the user wants to be bridged, as the command line says it. What is done with it is left to the program.

#include "krserial/krserialportconfiguration.h"

#include <optional>
#include <string>

struct BridgeArguments {
  bool isSimulating = false;
  bool isCreating = false;
  std::string camera;
  std::string port;    ///< Of the camera.
  std::string comPort; ///< Of this computer.
  KrSerialPortConfiguration configuration;
};

/// Reads the command line. Where there is nothing to be bridged, as help was asked for or something was not understood,
/// it has said so, and gives the program's exit code.
std::optional<int> ParseArguments(int aCount, char** aWords, BridgeArguments& aArguments);
