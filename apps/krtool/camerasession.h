#pragma once
// What commands have in common: the device that is meant, opened, failures told in one line, and frames awaited so that
// Ctrl-C is seen soon.

#include "commandline.h"
#include "krdevice/krdevice.h"
#include "krdevice/krstream.h"
#include "krsystem/krsystem.h"
#include "stopsignal.h"

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>

namespace krtool {

/// How long one frame is awaited unless the command line says otherwise: longer than it takes to find out that a camera
/// is gone, which is then the reason given.
inline constexpr std::uint32_t kDefaultFrameTimeoutMs = 10000;

/// The result with a description that says what was attempted, too; success stays as it is.
KrResult Explain(const std::string& aAttempt, const KrResult& aResult);
/// Writes the result's description, or its code where it has none, in one line, with nothing of a device's texts that a
/// terminal would obey, and gives the exit code of a command that failed.
int Fail(std::ostream& aErrors, const KrResult& aResult);
/// The same, where aLoss is the first access that a device left without an answer while it was read; 0 where it is OK.
int FailForLoss(std::ostream& aErrors, const std::string& aDevice, const KrResult& aLoss);
/// The same where a file could not be made; adds how one that is in the way can be replaced.
int FailToWrite(std::ostream& aErrors, const KrResult& aResult);

/// Finds and opens the device of a name. On failure aDevice stays null.
KrResult OpenNamedDevice(KrSystem& aSystem, const KrString& aName, KrDeviceAccess aAccess,
                         std::unique_ptr<KrDevice>& aDevice);

/// Waits for a frame in slices: Aborted when a stop was raised, TimeLimitExceeded when none came, otherwise as
/// KrStream::Retrieve.
KrResult AwaitFrame(KrStream& aStream, const krapps::StopSignal& aStop, std::uint32_t aTimeoutMs, KrBuffer*& aBuffer);

} // namespace krtool
