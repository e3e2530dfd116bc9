#pragma once
// The rules of the IP configuration dialog: which values are doubtful, and which are refused.

#include "krbase/krstring.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace krgui {

/// Parses "a.b.c.d" after the manner of the C library's pattern "%i.%i.%i.%i": a parsed prefix suffices, 010 is octal,
/// 0x10 is hexadecimal. Each field counts by its low byte. The first field is the most significant. Of texts that no
/// address control and no adapter gives, such as "0x.1.1.1", some are read more or less strictly.
std::optional<std::uint32_t> ParseDotted(const KrString& aText);

/// The texts of the three indicators; empty where a value is not doubtful.
struct IPIndicators {
  KrString address;
  KrString mask;
  KrString gateway;
  bool IsAnySet() const { return !address.IsEmpty() || !mask.IsEmpty() || !gateway.IsEmpty(); }
  friend bool operator==(const IPIndicators&, const IPIndicators&) = default;
};

/// What the dialog holds: the device's values as numbers, the adapter's as texts; and what it knows of other devices.
struct IPValues {
  std::uint32_t deviceAddress = 0;
  std::uint32_t deviceMask = 0;
  std::uint32_t deviceGateway = 0;
  KrString adapterAddress;
  KrString adapterMask;
  std::vector<std::uint32_t> takenAddresses = {}; ///< Those of other devices.
};

/// The live check. An adapter's text that does not parse counts as the device's gateway.
IPIndicators CheckIPValues(const IPValues& aValues);

/// Why OK is refused, or an empty text. The address is compared with the adapter's as text.
KrString FindHardIPError(const IPValues& aValues);

/// The first fields of the device's address as the dialog proposes them: the adapter's network, and how many of the
/// last fields are left empty for the user (those whose octet of the mask is 0, from the last on).
struct IPProposal {
  std::uint32_t network = 0;
  int emptyFields = 0;
};
IPProposal ProposeIPAddress(const KrString& aAdapterAddress, const KrString& aAdapterMask);

} // namespace krgui
