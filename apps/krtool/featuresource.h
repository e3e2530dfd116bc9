#pragma once
// What a command finds features in: a device, or a description in a file over registers that are all zero.

#include "commandline.h"
#include "krdevice/krdevice.h"
#include "krdevice/krstream.h"
#include "krgenicam/krgenmemoryport.h"
#include "krgenicam/krgenparameterarray.h"
#include "krsystem/krsystem.h"
#include "portwatch.h"

#include <memory>
#include <optional>
#include <string>

namespace krtool {

/// Finds what the command line names and reads its description. A file's path and a device are looked at only.
KrResult ReadDescription(KrSystem& aSystem, const CommandLine& aCommandLine, KrGenDescription& aDescription);

/// Thread: one. Ownership: owns the device and the array.
class FeatureSource {
public:
  /// For reading: a file, or a device that whoever controls it keeps; the module that the command line says.
  /// InvalidInput for a file where another module than the device's is wanted.
  KrResult OpenToRead(KrSystem& aSystem, const CommandLine& aCommandLine);
  /// For writing: a device, taken under control. InvalidInput for a file.
  KrResult OpenToWrite(KrSystem& aSystem, const CommandLine& aCommandLine);
  /// For taking settings, which moves selectors: a device under control, and whether it answered all along is known.
  KrResult OpenToStore(KrSystem& aSystem, const CommandLine& aCommandLine);

  KrGenParameterArray& GetArray() { return *mArray; }
  /// The device or file for messages, in one line.
  const std::string& GetName() const { return mName; }
  /// The first access that the device left without an answer (PortWatch); OK where there was none. Not known after
  /// OpenToWrite.
  KrResult GetLoss() const { return mWatch ? mWatch->GetLoss() : KrResult(); }

private:
  KrResult OpenDeviceToWrite(KrSystem& aSystem, const CommandLine& aCommandLine);
  KrResult OpenDevice(KrSystem& aSystem, const CommandLine& aCommandLine, KrDeviceAccess aAccess);
  KrResult OpenHostSide(KrSystem& aSystem, const CommandLine& aCommandLine);
  KrResult OpenArrayOfDevice();
  KrResult OpenOwnArray(const KrGenDescription& aDescription, IKrRegisterPort& aPort);

  // In the order in which one stands on the other.
  KrGenMemoryPort mMemory;
  std::unique_ptr<KrDevice> mDevice;
  std::optional<KrStream> mStream; // Not started.
  std::optional<PortWatch> mWatch;
  std::unique_ptr<KrGenParameterArray> mOwnArray;
  KrGenParameterArray* mArray = nullptr; // The own one, the device's, or that of this host's side.
  std::string mName;
};

} // namespace krtool
