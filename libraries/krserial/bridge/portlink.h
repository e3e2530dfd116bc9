#pragma once
// The link "comN" in the folder of links under which a port that we made is found, with a lock beside it that tells a
// link of a living process from one that a killed process left behind.

#include "krbase/filedescriptor.h"
#include "krbase/krresult.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace krserial {

/// Thread: one at a time. Ownership: the link and the lock, which are removed at the end.
class PortLink {
public:
  /// Whose a link is.
  enum class Maker {
    Nobody, ///< A link that no bridge made.
    Bridge, ///< Of a bridge that runs, in whatever process.
    Killed, ///< Of a bridge whose process was killed: where it leads to may be anybody's now.
  };

  /// Makes the folder where it is missing, and the link. Results as of ClientEnd::Open.
  static KrResult Make(const std::string& aFolder, std::uint32_t aNumber, const std::string& aTarget,
                       std::unique_ptr<PortLink>& aLink);
  /// Whose the link is, by its path. Nothing is changed, nor is a bridge kept from making it meanwhile. Thread: any.
  static Maker FindMaker(const std::filesystem::path& aLink);
  ~PortLink();
  PortLink(const PortLink&) = delete;
  PortLink& operator=(const PortLink&) = delete;

private:
  PortLink(std::filesystem::path aPath, std::filesystem::path aLockPath, std::string aTarget,
           krbase::FileDescriptor aLock);

  const std::filesystem::path mPath;
  const std::filesystem::path mLockPath;
  const std::string mTarget;
  krbase::FileDescriptor mLock;
  bool mIsLinked = false; // A link with the same target may be somebody else's.
};

} // namespace krserial
