#pragma once
// The one status object that every operation returns that can fail.

#include "krbase/krstring.h"

#include <cstdint>

/// What an operation came to: a numeric code, the code's name and a description for the user.
///
/// Thread: a value; different objects may be used from different threads.
/// Ownership: owns its description.
///
///     KrResult result = KrDevice::Open(info, KrDeviceAccess::Control, device);
///     if (!result.IsOK())
///       std::cerr << result.GetCodeString().CStr() << ": " << result.GetDescription().CStr() << '\n';
class [[nodiscard]] KR_EXPORT KrResult {
public:
  /// The codes; the numbers are part of the interface and never change.
  enum class Code : std::uint32_t {
    OK = 0,
    NotFound = 2,           ///< Nothing answers to the name, address or index given.
    AccessDenied = 3,       ///< Another application holds it, or this one lacks the right.
    ConnectionLost = 4,     ///< The device was open and does not answer any more.
    Aborted = 5,            ///< Another thread cancelled or stopped the operation.
    Busy = 6,               ///< In use for the moment; a later try may succeed.
    ProtocolError = 7,      ///< The other side answered, but not as its protocol says.
    SystemError = 8,        ///< The operating system refused; the description holds its text.
    BadData = 9,            ///< A file, description or image is damaged or contradicts itself.
    NotSupported = 26,      ///< The device or format lacks what was asked for.
    WrongState = 28,        ///< Already open, or not open.
    TimeLimitExceeded = 30, ///< The time limit passed first.
    InvalidInput = 1281,    ///< An argument that can never be accepted.
    NotOffered = 1540,      ///< An operation that this class does not offer.
    Failed = 16384,         ///< A window could not be created, or an image not converted.
    OutOfRange = 16385,     ///< A value outside its range.
    Cancelled = 16386,      ///< The user cancelled.
  };

  /// Success.
  KrResult() = default;
  /// A result without a description.
  KrResult(Code aCode);
  /// A result with a description that says what was attempted, on what, and what can be done; success takes none.
  KrResult(Code aCode, const KrString& aDescription);

  /// True for success alone.
  bool IsOK() const { return mCode == Code::OK; }
  /// What kind of success or failure it is.
  Code GetCode() const { return mCode; }
  /// The code as a number, for example 1281.
  std::uint32_t GetCodeNumber() const { return static_cast<std::uint32_t>(mCode); }
  /// The code's name, for example "InvalidInput"; never empty for a code of this enumeration, "Unknown" for any other.
  KrString GetCodeString() const;
  /// The description; empty for success and where there is no more to say than the code.
  const KrString& GetDescription() const { return mDescription; }

  /// Compares the codes; descriptions are for people.
  friend bool operator==(const KrResult& aResult, Code aCode) { return aResult.mCode == aCode; }

private:
  Code mCode = Code::OK;
  KrString mDescription;
};
