// Holds a source tree against the rules of the rooms: prints what is broken, and fails the build that runs it.

#include "treecheck.h"

#include <filesystem>
#include <iostream>

int main(int aCount, char** aArguments) {
  if (aCount != 2 || !std::filesystem::is_directory(std::filesystem::path(aArguments[1]) / "libraries")) {
    std::cerr << "archcheck: give the project's root, the folder that holds libraries/.\n";
    return 2;
  }

  const std::filesystem::path root = aArguments[1];
  try {
    const archcheck::TreeReport report = archcheck::CheckTree(root);
    for (const archcheck::Violation& violation : report.violations)
      std::cerr << (root / "").string() << archcheck::Format(violation) << '\n';
    return report.violations.empty() ? 0 : 1;
  } catch (const std::exception& error) {
    std::cerr << "archcheck: reading " << root.string() << " failed: " << error.what() << '\n';
    return 2;
  }
}
