#pragma once
// The CL Protocol drivers that are installed, and the descriptions that lie beside them. Whether they work is left to
// CLDriver.

#include <string>
#include <vector>

namespace krcamerabridge {

/// A driver's library.
struct CLDriverFile {
  std::string root;      ///< The directory that was listed.
  std::string directory; ///< Its sub-directory for this system, where the library is.
  std::string fileName;

  std::string GetPath() const { return directory + '/' + fileName; }
};

/// A description beside a driver.
struct CLXMLFile {
  std::string xmlID;
  std::string path;
};

/// Directories in which to look beside those of the environment variable GENICAM_CLPROTOCOL; none for the one in which
/// drivers are installed, as at first. Thread: any.
void SetCLDriverDirectories(const std::vector<std::string>& aDirectories);

/// The drivers of the directories that GENICAM_CLPROTOCOL names, parted by ':' or ';', and then of those that were set:
/// the files lib*.so in the sub-directory for this system, in the order of their names. Of a driver and its debug twin
/// the former alone. At most 64 directories, and 256 drivers of each. Thread: any.
std::vector<CLDriverFile> ListCLDrivers();
/// The descriptions in a driver's directories; at most a thousand of each. Thread: any.
std::vector<CLXMLFile> ListCLXMLFiles(const CLDriverFile& aDriver);

} // namespace krcamerabridge
