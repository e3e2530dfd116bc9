#pragma once
// A serial port of a device, reached from the host in another way: on a serial port of the host, or by the Camera Link
// serial functions. Which ports are bridged, and how, is left to who starts it.

#include "krbase/krresult.h"
#include "krbase/krstring.h"
#include "krserial/krdeviceserial.h"
#include "krserial/krserialportconfiguration.h"

#include <cstddef>
#include <cstdint>
#include <memory>

class IKrDeviceAdapter;

/// The port that stands for no particular one: a bridge that is started with it is published, and no port of the device
/// is opened.
inline constexpr KrDeviceSerial kNoDeviceSerial = static_cast<KrDeviceSerial>(0xFFFFFFFFU);

/// What a bridge does at the moment.
enum class KrSerialBridgeState : std::int32_t {
  Stopped,         ///< Not started.
  Running,         ///< Bytes go both ways.
  WaitingForPort,  ///< The host's port has gone; it is taken again when it is back.
  WaitingForDevice ///< The device's port failed; a port that can be opened again is, a device that was lost cannot.
};

/// A bridge between a serial port of a device and the host.
///
/// On a host's port, what a program at the other end sends goes to the device, and the other way round. When that
/// program changes its speed (the other end of a pseudo-terminal), the device's port follows if it has that speed. Each
/// direction holds a bounded number of bytes, a few times 64 KiB: one that stalls does not stop the other.
///
/// Thread: any; bytes are moved on threads of the bridge's own. Destruction and Stop end at once what waits; an access
/// to the device that runs (of a register, or to open its port) cannot be ended, and is waited for: of a device that
/// does not answer, as long as its time limit. No other begins, but to close the port and to put back a selector.
/// Ownership: the holder's. The adapter is borrowed until the bridge is stopped, and must outlive that.
///
///     KrSerialBridge bridge;
///     KrSerialPortConfiguration configuration;
///     configuration.baudRate = 115200;
///     KrResult result = bridge.Start("COM3", configuration, &adapter, KrDeviceSerial::Serial0);
class KR_EXPORT KrSerialBridge {
public:
  KrSerialBridge();
  /// Stops it.
  ~KrSerialBridge();
  KrSerialBridge(const KrSerialBridge&) = delete;
  KrSerialBridge& operator=(const KrSerialBridge&) = delete;

  /// Links a port of the host (KrHostSerialPorts) with one of the device. InvalidInput for a name that is no port's,
  /// for a configuration that is not valid and without an adapter; NotFound for a port that the host lacks; Busy for
  /// one that another program holds or another bridge makes; AccessDenied, SystemError as the system says; NotSupported
  /// for a port that the device lacks and for a configuration that the host's port cannot take; WrongState when it is
  /// started already. The device's port is set to the configuration's speed if it has it, which is not a failure if it
  /// does not.
  KrResult Start(const KrString& aCOMPort, KrSerialPortConfiguration aConfiguration, IKrDeviceAdapter* aAdapter,
                 KrDeviceSerial aPort);
  /// Publishes a port of the device under a name for programs of the same user that use the Camera Link serial
  /// functions; kNoDeviceSerial publishes the name alone, and a program that opens it is told that the port is in use.
  /// InvalidInput for a name without a letter and without an adapter, NotSupported for a port that the device lacks,
  /// AccessDenied when others could enter the directory of sockets, SystemError as the system says, WrongState when it
  /// is started already. A name that is published already gets " (2)" and so on behind it (GetName).
  KrResult Start(const KrString& aName, IKrDeviceAdapter* aAdapter, KrDeviceSerial aPort);
  /// Ends the threads and gives both ports free. Stopping what is stopped does nothing. A start on another thread that
  /// asks the device gives Aborted.
  void Stop();

  /// The port of the host that it was started with, for example "COM3"; empty without one.
  KrString GetSerialPort() const;
  /// The configuration of the host's port; a default one without a port.
  KrSerialPortConfiguration GetSerialPortConfiguration() const;
  /// Changes it while the link runs. InvalidInput for one that is not valid, NotSupported for one that the port cannot
  /// take, WrongState without a port; nothing changes then.
  KrResult SetSerialPortConfiguration(const KrSerialPortConfiguration& aConfiguration);
  /// Whether the next start on a port's name that the host lacks makes a pseudo-terminal, linked in the folder of links
  /// under that name for as long as the link runs. Off at first.
  void SetCreatingPort(bool aIsOn);

  /// The name under which the bridge is published; empty where it is not.
  KrString GetName() const;
  /// The speed of the device's port: what the device says where it can say it, looked at every second; else the
  /// hard-coded one. 0 when stopped and nothing is known. Does not wait for the device.
  std::uint32_t GetBaudRate() const;
  /// How many speeds the device's port can have, as it said at the start; 0 where it cannot say.
  std::size_t GetSupportedBaudRateCount() const;
  /// One of them, in the device's order; 0 at GetSupportedBaudRateCount() and beyond.
  std::uint32_t GetSupportedBaudRate(std::size_t aIndex) const;
  /// The speed that is taken for the device's port where the device cannot say it; 0 at first.
  std::uint32_t GetHardCodedBaudRate() const;
  /// 0 for none, so that what GetHardCodedBaudRate gives is always taken. OutOfRange for more than 4,000,000.
  KrResult SetHardCodedBaudRate(std::uint32_t aBaudRate);

  /// Bytes that the device's port has taken, and has given, since the start or the last reset. Do not wait.
  std::uint64_t GetBytesSentToDevice() const;
  /// Bytes that the device's port has given, counted in the same way. Does not wait.
  std::uint64_t GetBytesReceivedFromDevice() const;
  /// Counts bytes from 0 on again. Does not wait.
  void ResetStatistics();

  /// What it does at the moment. Does not wait.
  KrSerialBridgeState GetState() const;
  /// What state it is in, and why, for people; empty while all is well.
  KrString GetStateText() const;

private:
  struct Body;
  std::unique_ptr<Body> mBody;
};
