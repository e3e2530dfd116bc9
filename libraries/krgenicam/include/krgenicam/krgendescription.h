#pragma once
// The XML text that describes a device's parameters, and where it comes from: the device, a file, memory; zipped or
// not. What the text says is left to the parameter array.

#include "krbase/krresult.h"
#include "krgenicam/ikrregisterport.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stop_token>
#include <string>
#include <string_view>

/// Which registers of a device say where its description is.
enum class KrGenBootstrap {
  GigEVision, ///< First and second URL at 0x0200 and 0x0400 (GigE Vision 2.x, 28.x), or the manifest table where there
              ///< is one.
  GenCP,      ///< The manifest table that the register at 0x01D0 names (GenCP 1.x, USB3 Vision).
};

/// A description's text.
///
/// Thread: a value; different objects may be used from different threads.
/// Ownership: shares its text, which never changes.
class KR_EXPORT KrGenDescription {
public:
  /// The largest text that is taken, unpacked.
  static constexpr std::size_t kMaxBytes = std::size_t{64} << 20;

  KrGenDescription() = default;

  /// Reads the description that a device names. Tries all places that the device names, one after the other; on failure
  /// the result says of each why it did not do. A device that does not answer the first question is not asked another.
  /// Blocks as long as the registers need; Aborted at once when aCancel is
  /// stopped.
  static KrResult ReadFromDevice(IKrRegisterPort& aPort, KrGenBootstrap aBootstrap, KrGenDescription& aDescription,
                                 std::uint32_t aTimeoutMs = 1000, const std::stop_token& aCancel = {});
  /// Reads a file: XML, or a ZIP archive of which the first XML is taken. NotFound, AccessDenied, SystemError for a
  /// file that cannot be read, BadData for one that is neither or too large.
  static KrResult ReadFromFile(const KrString& aPath, KrGenDescription& aDescription);
  /// Takes XML or a ZIP archive from memory; aOrigin is named in errors.
  static KrResult ReadFromMemory(std::string_view aBytes, const KrString& aOrigin, KrGenDescription& aDescription);

  /// The XML text; empty where nothing was read.
  std::string_view GetText() const;
  /// Where it came from, for people: a file's path or a device's URL.
  const KrString& GetOrigin() const { return mOrigin; }

private:
  std::shared_ptr<const std::string> mText;
  KrString mOrigin;
};
