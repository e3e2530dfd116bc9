#pragma once
// What the serial windows ask of a device: a few parameters by their names, its serial lines, and a text to call it by.
// How a device comes to its parameters does not show here.

#include "krbase/krresult.h"
#include "krbase/krstringlist.h"
#include "krsystem/ibytechannel.h"

#include <cstdint>
#include <memory>

class KrDevice;

/// A device as windows see it that need not know its kind.
///
/// Results of the operations that have one: NotFound for a name that the device does not have, InvalidInput for a
/// parameter of another type or a value that it does not accept, AccessDenied for one that cannot be read or written
/// at the moment, NotSupported for a device without parameters, TimeLimitExceeded or ConnectionLost for one that does
/// not answer. What is asked for is set on success only.
///
/// Thread: any; a call may wait as long as a few register accesses take.
/// Ownership: the application's; must outlive the windows that it is given to.
class KR_EXPORT IKrDeviceAdapter {
public:
  virtual ~IKrDeviceAdapter() = default;

  /// Whether the device's description names the parameter, usable at the moment or not.
  virtual bool HasParameter(const KrString& aName) = 0;
  /// Whether the parameter is implemented and available at the moment.
  virtual bool IsParameterAvailable(const KrString& aName) = 0;
  /// The names of the entries of an enumeration that can be chosen at the moment, in the description's order.
  virtual KrResult GetEnumEntries(const KrString& aName, KrStringList& aEntries) = 0;
  /// The name of the entry that is set.
  virtual KrResult GetEnumValue(const KrString& aName, KrString& aValue) = 0;
  /// Sets the entry of a name; NotFound and the like as the device's parameter gives them.
  virtual KrResult SetEnumValue(const KrString& aName, const KrString& aValue) = 0;
  /// Reads a boolean; on failure aValue stays as it is.
  virtual KrResult GetBooleanValue(const KrString& aName, bool& aValue) = 0;
  /// Sets a boolean; results as of the device's parameter.
  virtual KrResult SetBooleanValue(const KrString& aName, bool aValue) = 0;

  /// A text for people that no other device has, the same each time the device is opened: the model's name and what
  /// tells one device of that model from another, for example "Model X 00:11:22:33:44:55".
  virtual KrString GetDeviceText() const = 0;
  /// The serial line of a number (0 and 1 for the UARTs, 2 to 9 for the bulk ports) that the device's transport
  /// carries, or null where it has none of that number. The end of the device ends what is done with it.
  virtual std::shared_ptr<krsystem::IByteChannel> GetByteChannel(std::uint32_t aNumber) = 0;
  /// The open device behind the adapter, or null for an adapter of another make: what serial lines behind features
  /// stand on.
  virtual KrDevice* GetDevice() { return nullptr; }
};
