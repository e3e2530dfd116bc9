#pragma once
// Reads a source tree and holds every file against the rules. What is allowed is decided by the tables of the rules.

#include <filesystem>
#include <string>
#include <vector>

namespace archcheck {

/// A broken rule and where it is broken.
struct Violation {
  std::string file; ///< From the project's root, with '/'.
  int line;         ///< Counted from 1; 1 for what concerns the whole file.
  std::string rule; ///< What is wrong, as a sentence.
};

/// "file:line: rule", as compilers write it.
std::string Format(const Violation& aViolation);

/// What one look at a tree came to.
struct TreeReport {
  int filesRead = 0;
  int limitsRead = 0;                ///< Rows of the tables of limits.
  std::vector<Violation> violations; ///< In the order of files and lines.
};

/// Checks all sources and CMake lists below a project's root.
TreeReport CheckTree(const std::filesystem::path& aRoot);

} // namespace archcheck
