#pragma once
// A folder of a test's own, gone with everything in it when the test ends.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <stdlib.h>

class TemporaryFolder {
public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "krtest-XXXXXX").string();
    if (::mkdtemp(name.data()))
      mPath = name;
    else
      ADD_FAILURE() << "No folder can be made as " << name;
  }
  ~TemporaryFolder() {
    std::error_code ignored; // What cannot be removed is not what the test is about.
    std::filesystem::remove_all(mPath, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& GetPath() const { return mPath; }
  /// The path of a name in the folder.
  std::string GetFile(const std::string& aName) const { return (mPath / aName).string(); }
  /// The names in the folder, hidden ones too.
  std::vector<std::string> GetNames() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(mPath))
      names.push_back(entry.path().filename().string());
    return names;
  }

  static void WriteFile(const std::string& aPath, const std::string& aBytes) {
    std::ofstream(aPath, std::ios::binary) << aBytes;
  }
  static std::string ReadFile(const std::string& aPath) {
    std::ifstream stream(aPath, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  }

private:
  std::filesystem::path mPath;
};
