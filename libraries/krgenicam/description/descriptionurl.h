#pragma once
// The URLs by which GigE Vision devices name their description. Fetching it is left to the locator.

#include "krbase/krresult.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace krgenicam {

/// Registers of a device.
struct RegisterRange {
  std::uint64_t address = 0;
  std::uint64_t length = 0;
};

/// Takes the registers that a URL names: "Local:<file>;<address>;<length>", the numbers hexadecimal with or without 0x,
/// with slashes before the file and a query ("?SchemaVersion=1.1.0") behind. BadData, with a reason that is the end of
/// a sentence, for what is no such URL and a range that cannot be; NotSupported for the other two forms:
///
/// - "File:…" names a file of the host. Which files are read is not for a device to say, so it is never followed.
/// - "http:…" would have the library ask a server that a device chose, which is no better.
///
/// The texts tell the user to get that file and to read it by KrGenDescription::ReadFromFile.
KrResult ParseDescriptionUrl(std::string_view aUrl, RegisterRange& aRange);

/// Refuses registers that no description can lie in: none, more than KrGenDescription::kMaxBytes, beyond the last
/// address.
KrResult CheckRange(const RegisterRange& aRange);

/// What a device said, fit for a message: cut to a length, without control characters.
std::string QuoteDeviceText(std::string_view aText);

} // namespace krgenicam
