#pragma once
// Where the lines of a text begin, so that the line of every node is found without counting again.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace krgenicam {

/// Lines end with "\n", also as a part of "\r\n".
///
/// Thread: constant once made. Ownership: does not need the text any more once it is made.
class LineTable {
public:
  explicit LineTable(std::string_view aText);

  /// The line of the byte at an offset, from 1 on; the last one for an offset beyond the end.
  std::uint32_t GetLine(std::size_t aOffset) const;
  /// "line L, column C", both from 1; columns count bytes.
  std::string Describe(std::size_t aOffset) const;

private:
  std::vector<std::uint32_t> mBegins;
};

} // namespace krgenicam
