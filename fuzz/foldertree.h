#pragma once
// A folder as a kernel or another program may have filled it: files, folders and links, made of an input, and removed
// again. What is read of it is left to the targets.

#include "require.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

/// Ownership: the folder and what is in it.
class FolderTree {
public:
  /// Entries stand between bytes of 0x1E: a letter (d for a folder, l for a link, any other for a file), the path, and
  /// behind a byte of 0x1F the content, or the path that a link leads to. No path leaves the folder.
  explicit FolderTree(std::string_view aEntries) {
    std::string name = (std::filesystem::temp_directory_path() / "krfuzz-XXXXXX").string();
    Require(::mkdtemp(name.data()) != nullptr);
    mRoot = name;
    for (std::size_t count = 0; count < kMostEntries && !aEntries.empty(); ++count) {
      const std::size_t end = std::min(aEntries.find('\x1E'), aEntries.size());
      Add(aEntries.substr(0, end));
      aEntries.remove_prefix(std::min(end + 1, aEntries.size()));
    }
  }
  ~FolderTree() {
    std::error_code error;
    std::filesystem::remove_all(mRoot, error);
  }
  FolderTree(const FolderTree&) = delete;
  FolderTree& operator=(const FolderTree&) = delete;

  const std::filesystem::path& GetRoot() const { return mRoot; }

private:
  static constexpr std::size_t kMostEntries = 200;
  static constexpr std::size_t kMostParts = 8;
  static constexpr std::size_t kMostLetters = 60;

  // Below the root, whatever the text says.
  std::filesystem::path MakePath(std::string_view aText) const {
    std::filesystem::path path = mRoot;
    for (std::size_t parts = 0; parts < kMostParts && !aText.empty(); ++parts) {
      const std::size_t end = std::min(aText.find('/'), aText.size());
      const std::string_view part = aText.substr(0, std::min(end, kMostLetters));
      if (!part.empty() && part != "." && part != ".." && part.find('\0') == part.npos)
        path /= part;
      aText.remove_prefix(std::min(end + 1, aText.size()));
    }
    return path;
  }

  // What cannot be made, as something else is in its place, is left out.
  void Add(std::string_view aEntry) {
    if (aEntry.empty())
      return;
    const std::size_t end = std::min(aEntry.find('\x1F'), aEntry.size());
    const std::filesystem::path path = MakePath(aEntry.substr(1, end - 1));
    const std::string_view content = aEntry.substr(std::min(end + 1, aEntry.size()));
    std::error_code error;
    std::filesystem::create_directories(aEntry[0] == 'd' ? path : path.parent_path(), error);
    if (path == mRoot || aEntry[0] == 'd')
      return;
    if (aEntry[0] == 'l')
      std::filesystem::create_symlink(MakePath(content), path, error);
    else
      std::ofstream(path, std::ios::binary).write(content.data(), static_cast<std::streamsize>(content.size()));
  }

  std::filesystem::path mRoot;
};
