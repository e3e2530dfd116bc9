#pragma once
// Which of the host's ports the serial bridge offers, by their numbers. How the host's ports are found is left to
// KrHostSerialPorts.

#include "krbase/krstring.h"
#include "krbase/krstringlist.h"

#include <cstdint>
#include <set>
#include <vector>

namespace krgui {

/// The numbers of those names that begin with "COM", whatever their case, and have four or five characters; in rising
/// order. Thread: any.
std::vector<std::uint32_t> GetCOMPortNumbers(const KrStringList& aNames);
/// The lowest number that is not taken, among those that are offered; 0 when all of them are. Thread: any.
std::uint32_t FindFreeCOMPortNumber(const std::set<std::uint32_t>& aTaken);
/// For example "COM3". Thread: any.
KrString FormatCOMPort(std::uint32_t aNumber);

} // namespace krgui
