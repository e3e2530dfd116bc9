#pragma once
// A directory with the CL Protocol drivers of a test, which is the only one in which they are looked for.

#include "clprotocol/cldriverlist.h"
#include "temporaryfolder.h"

#include <cstdlib>
#include <filesystem>
#include <string>

namespace krtest {

class DriverFolder {
public:
  DriverFolder() {
    std::filesystem::create_directory(GetDirectory());
    setenv("KRGUI_CLPROTOCOL_HOST", KR_TEST_HOST, 1);
    unsetenv("GENICAM_CLPROTOCOL");
    krcamerabridge::SetCLDriverDirectories({GetRoot()});
  }
  ~DriverFolder() { krcamerabridge::SetCLDriverDirectories({}); }

  std::string GetRoot() const { return mFolder.GetPath().string(); }
  std::string GetDirectory() const { return mFolder.GetFile(KR_CLPROTOCOL_SYSTEM); }
  /// The test's driver, which behaves as its name says.
  void Install(const std::string& aName) { Link(KR_TEST_DRIVER, aName); }
  void InstallOldDriver(const std::string& aName) { Link(KR_TEST_DRIVER_1_0, aName); }
  void InstallNoDriver(const std::string& aName) { Link(KR_TEST_NO_DRIVER, aName); }
  void InstallDocumentedDriver(const std::string& aName) { Link(KR_TEST_DOCUMENTED_DRIVER, aName); }
  void Write(const std::string& aName, const std::string& aBytes) {
    TemporaryFolder::WriteFile(mFolder.GetFile(aName), aBytes);
  }
  std::string GetTemplate(const std::string& aName, const std::string& aShortID = "Maker#Family") const {
    return GetDirectory() + '#' + aName + '#' + aShortID;
  }

private:
  void Link(const char* aLibrary, const std::string& aName) {
    std::filesystem::create_symlink(aLibrary, GetDirectory() + '/' + aName);
  }

  TemporaryFolder mFolder;
};

} // namespace krtest
