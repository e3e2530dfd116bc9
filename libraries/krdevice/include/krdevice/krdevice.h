#pragma once
// A device that is open: its registers, parameters, serial lines, its streams' source, and word of its loss. What its
// registers mean, and streaming itself, are left to the parameter array and to KrStream.

#include "krbase/krresult.h"
#include "krgenicam/ikrregisterport.h"
#include "krgenicam/krgenparameterarray.h"
#include "krsystem/idevicelink.h"
#include "krsystem/krdeviceinfo.h"

#include <cstdint>
#include <memory>

class KrDevice;
class KrDeviceLifetime;

namespace krdevice {
class ParameterLock;
} // namespace krdevice

/// How a device is opened.
enum class KrDeviceAccess {
  Monitor,   ///< Registers may be read.
  Control,   ///< Full control; other applications may read.
  Exclusive, ///< Full control; other applications may do nothing.
};

/// Hears of a device's loss and return.
///
/// Thread: called on a thread of the device; a sink may call anything but the device's destruction.
class KR_EXPORT KrDeviceEventSink {
public:
  virtual ~KrDeviceEventSink() = default;
  /// The device does not answer any more; its streams give no more frames, and are still to be stopped. aReason says
  /// how that showed.
  virtual void OnDeviceLost(KrDevice* aDevice, const KrResult& aReason) = 0;
  /// The device answers again; open it anew to use it.
  virtual void OnDeviceBack(KrDevice* aDevice) = 0;
};

/// An open device.
///
/// Thread: any, but for construction and destruction.
/// Ownership: the application's. Streams must be closed before their device is destroyed; destruction gives control
/// back, having waited for the uses of its lifetime. In a forked child destruction leaves the device, which is the
/// parent's, as it is.
///
///     std::unique_ptr<KrDevice> device;
///     KrResult result = KrDevice::Open(*info, KrDeviceAccess::Control, device);
class KR_EXPORT KrDevice {
public:
  /// Opens a device of any kind. NotSupported for a kind that cannot be opened, AccessDenied when another application
  /// controls it, NotFound or TimeLimitExceeded when it does not answer where it was found, or another device does.
  /// Blocks for up to a few seconds on a device that does not answer. aDevice is set on success only.
  static KrResult Open(const KrDeviceInfo& aInfo, KrDeviceAccess aAccess, std::unique_ptr<KrDevice>& aDevice);

  virtual ~KrDevice();
  KrDevice(const KrDevice&) = delete;
  KrDevice& operator=(const KrDevice&) = delete;

  /// The kind of device.
  KrDeviceInfoType GetType() const;
  /// The text for a list or a title.
  const KrString& GetDisplayID() const;
  /// Names the device among all; the same each time it is found.
  const KrString& GetUniqueID() const;
  /// Who made it, as it was found; empty where the device does not say.
  const KrString& GetVendorName() const;
  /// What model it is, as it was found; empty where the device does not say.
  const KrString& GetModelName() const;
  /// Its serial number, as it was found; empty where the device does not say.
  const KrString& GetSerialNumber() const;
  /// The name that a user gave the device, as it was when the device was found.
  const KrString& GetUserDefinedName() const;
  /// Registers by address; lives as long as the device.
  IKrRegisterPort& GetRegisterPort();
  /// The source of a stream channel for KrStream, or null where the device has none of that number.
  krsystem::IBufferSource* GetBufferSource(std::uint32_t aChannel);
  /// Gives the device's parameters. The first call reads the device's description, which takes up to a second for a
  /// large one; further ones give the same array. BadData for a description that is no good, which is then remembered;
  /// any other failure to read it, for example TimeLimitExceeded, is tried again by the next call. Of a device that is
  /// open as Monitor nothing can be written. After the loss of the device the array is still there, and its accesses
  /// fail with ConnectionLost.
  /// The array belongs to the device: its accesses end, and then the array, before the device is destroyed.
  KrResult GetParameters(KrGenParameterArray*& aParameters);
  /// The same, null on failure.
  KrGenParameterArray* GetParameters();
  /// Gives what this host knows and decides of the connection to the device, as parameters: addresses, speed, time
  /// limits, the size of stream packets, counts of register accesses. Which there are depends on the kind of link; what
  /// is set holds until the device is closed. Asks the device for nothing; reading some of them does. Counters have
  /// polling times and a command to begin anew; what streams depend on is locked while one runs.
  /// The first call makes the array, further ones give the same. It belongs to the device and ends as that of
  /// GetParameters; after the loss of the device it is still there, and tells of it.
  KrResult GetTransportParameters(KrGenParameterArray*& aParameters);
  /// Has GetParameters use a description of the application's, for a device whose own is missing or no good.
  /// InvalidInput for an empty one, WrongState once GetParameters has succeeded or a stream was started with
  /// parameters.
  KrResult SetDescription(const KrGenDescription& aDescription);
  /// Reads the device's own description from wherever a device of its kind keeps it, each time anew and whatever
  /// SetDescription gave: for an array of the application's own, or to keep the text. Takes up to a second for a large
  /// one; fails as KrGenDescription::ReadFromDevice. aDescription is set on success only.
  KrResult ReadDescription(KrGenDescription& aDescription);
  /// The serial line of a number (0 and 1 for the UARTs, 2 to 9 for the bulk ports), or null where the device has none
  /// of that number.
  std::shared_ptr<krsystem::IByteChannel> GetByteChannel(std::uint32_t aNumber);
  /// False once the device is lost.
  bool IsConnected() const;
  /// Says when the device ends, and keeps it from ending while it is used: for what may outlive it.
  std::shared_ptr<KrDeviceLifetime> GetLifetime() const;

  /// Registers a sink; null or one that is registered already is InvalidInput. A loss before that is not told again:
  /// IsConnected() says it.
  KrResult RegisterEventSink(KrDeviceEventSink* aSink);
  /// Takes a sink out; returns when no call of it is running on another thread. InvalidInput when it is not registered.
  KrResult UnregisterEventSink(KrDeviceEventSink* aSink);

protected:
  /// A device on an open link, which it takes over.
  KrDevice(KrDeviceInfoType aType, std::unique_ptr<krsystem::IDeviceLink> aLink, krsystem::DeviceFields aFields,
           KrDeviceAccess aAccess);

private:
  friend class KrStream;
  krdevice::ParameterLock& GetParameterLock();
  /// Streams were started or stopped: what is locked is another.
  void OnStreamsChanged();

  struct Body;
  std::unique_ptr<Body> mBody;
};
