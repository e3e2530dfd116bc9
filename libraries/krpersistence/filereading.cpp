#include "filereading.h"

#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace krpersistence {

namespace fs = std::filesystem;

KrResult ReadWholeFile(const KrString& aFileName, std::size_t aMostBytes, std::string& aBytes) {
  const fs::path path = aFileName.ToUtf8();
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (!fs::exists(status))
    return {error == std::errc::permission_denied ? KrResult::Code::AccessDenied : KrResult::Code::NotFound,
            error.message() + "."};
  // A pipe would keep us waiting for bytes, a device could give them without end.
  if (!fs::is_regular_file(status))
    return {KrResult::Code::InvalidInput, "it is no file."};

  errno = 0;
  std::ifstream stream(path, std::ios::binary);
  if (!stream)
    return {errno == EACCES ? KrResult::Code::AccessDenied : KrResult::Code::SystemError,
            std::generic_category().message(errno) + "."};
  std::string bytes;
  std::array<char, 65536> block;
  while (stream.read(block.data(), block.size()) || stream.gcount() > 0) {
    bytes.append(block.data(), static_cast<std::size_t>(stream.gcount()));
    if (bytes.size() > aMostBytes)
      return {KrResult::Code::OutOfRange, "it is longer than the limit of " + std::to_string(aMostBytes) + " bytes."};
  }
  if (!stream.eof())
    return {KrResult::Code::SystemError, std::generic_category().message(errno) + "."};
  aBytes = std::move(bytes);
  return {};
}

} // namespace krpersistence
