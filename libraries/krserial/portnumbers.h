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

/// What a tty is known by.
struct TtyIdentity {
  std::string text;
  /// For one that may be plugged in elsewhere, which others may have the same text as: "@" and where it is now.
  std::string place = {};
};

/// Numbers by identity, which says where a tty was last, or where alone it has the number.
using PortNumbers = std::map<std::string, std::uint32_t>;

/// The longest file of numbers.
constexpr std::size_t kMostNumbersBytes = 1U << 20U;

/// Reads the text of a file of numbers. BadData, with the line, for anything that FormatPortNumbers does not write: a
/// number out of range or given twice, an identity twice or of more than one line. aNumbers is set on success only.
KrResult ParsePortNumbers(std::string_view aText, PortNumbers& aNumbers);
/// The numbers in a file, none where there is no file. BadData and OutOfRange for one that is damaged; a file that
/// cannot be read as KrReadWholeFile says. aNumbers is set on success only. Thread: any.
KrResult ReadPortNumbers(const std::string& aFile, PortNumbers& aNumbers);
std::string FormatPortNumbers(const PortNumbers& aNumbers);

/// The numbers of the ttys, in their order, of which new ones get the lowest that were never given and are not in
/// aTaken. A tty keeps its number in another place unless another with the same text was there at the same time, now or
/// before: then it is another tty. The file is read, and written where there are new ones, so that processes that do so
/// at once agree; one that is damaged is put aside as ".damaged", or ".damaged.2" and so on. What keeps the file from
/// being kept is logged as a warning, and the numbers are given nevertheless. A tty for which no number is left gets 0.
/// Thread: any.
std::vector<std::uint32_t> AssignPortNumbers(const std::string& aFile, const std::vector<TtyIdentity>& aTtys,
                                             const std::set<std::uint32_t>& aTaken);

} // namespace krserial
