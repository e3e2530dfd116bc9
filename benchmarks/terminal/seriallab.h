#pragma once
// A simulated camera with pseudo-terminals behind its serial ports, for the benchmarks of the terminal.

#include "krdevice/krdevice.h"
#include "krdevice/krdeviceadapter.h"
#include "krserial/krdeviceserial.h"
#include "krsystem/krsystem.h"
#include "krtransport/krsimulatedfaults.h"

#include <QTemporaryDir>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace benchmarks {

/// The fastest that the port goes by its own speed, in bytes a second: 3 Mbaud, ten bits a byte.
constexpr double kPacedBytesPerSecond = 300'000;

/// One at a time in a process. What does not work ends the program with its reason.
class SerialLab {
public:
  static constexpr KrDeviceSerial kPaced = KrDeviceSerial::Serial0;   ///< At 3 Mbaud.
  static constexpr KrDeviceSerial kUnpaced = KrDeviceSerial::Serial1; ///< As fast as it goes.

  SerialLab();

  IKrDeviceAdapter& GetAdapter() { return *mAdapter; }
  /// Where the pseudo-terminal behind a port is to be.
  std::string GetPath(KrDeviceSerial aPort) const;
  std::string GetFile(const char* aName) const;
  /// Bytes that came to be read at a port until now.
  std::uint64_t CountReceived(KrDeviceSerial aPort) const;

private:
  std::string WriteLabFile() const;

  QTemporaryDir mFolder;
  KrSystem mSystem;
  std::unique_ptr<KrDevice> mDevice;
  std::optional<KrDeviceAdapter> mAdapter;
  std::shared_ptr<KrSimulatedFaults> mFaults;
};

} // namespace benchmarks
