#pragma once
// Which tty has which COM number, kept in a file for ever: what a number stands for in a program's settings must never
// become another tty. What identifies a tty is left to SystemTty.

#include "krbase/krresult.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace krserial {

/// Numbers by identity.
using PortNumbers = std::map<std::string, std::uint32_t>;

/// The longest file of numbers.
constexpr std::size_t kMostNumbersBytes = 1U << 20U;

/// Reads the text of a file of numbers. BadData, with the line, for anything that FormatPortNumbers does not write: a
/// number out of range or given twice, an identity twice or of more than one line. aNumbers is set on success only.
KrResult ParsePortNumbers(std::string_view aText, PortNumbers& aNumbers);
std::string FormatPortNumbers(const PortNumbers& aNumbers);

/// The numbers of the identities, of which new ones get the lowest that were never given and are not in aTaken. The
/// file is read, and written where there are new ones, so that processes that do so at once agree; one that is damaged
/// is put aside as ".damaged". What keeps the file from being kept is logged as a warning, and the numbers are given
/// nevertheless. An identity for which no number is left gets none. Thread: any.
PortNumbers AssignPortNumbers(const std::string& aFile, const std::vector<std::string>& aIdentities,
                              const std::set<std::uint32_t>& aTaken);

} // namespace krserial
