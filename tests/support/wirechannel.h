#pragma once
// The host's end of the line to a GenCPCamera.

#include "gencpcamera.h"
#include "krsystem/ibytechannel.h"

#include <memory>

namespace krtest {

/// Ownership: takes the socket.
std::shared_ptr<krsystem::IByteChannel> MakeWireChannel(int aSocket, std::shared_ptr<WireEnds> aWire);

} // namespace krtest
