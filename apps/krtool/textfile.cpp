#include "textfile.h"

#include "krbase/kratomicfile.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>

namespace krtool {

namespace {

KrResult Open(KrAtomicFile& aFile, const std::string& aPath, bool aReplaces) {
  return aFile.Open(aPath, aReplaces ? KrAtomicFile::Existing::Replaced : KrAtomicFile::Existing::Kept);
}

KrResult MakeReadError(const std::string& aPath, const std::error_code& aError) {
  const bool isMissing = aError == std::errc::no_such_file_or_directory || aError == std::errc::not_a_directory;
  const bool isDenied = aError == std::errc::permission_denied;
  return {isMissing  ? KrResult::Code::NotFound
          : isDenied ? KrResult::Code::AccessDenied
                     : KrResult::Code::SystemError,
          "The file \"" + aPath + "\" cannot be read: " + aError.message() + "."};
}

} // namespace

KrResult CheckTextFile(const std::string& aPath, bool aReplaces) {
  KrAtomicFile file;
  return Open(file, aPath, aReplaces);
}

KrResult WriteTextFile(const std::string& aPath, bool aReplaces, std::string_view aText) {
  KrAtomicFile file;
  KrResult result = Open(file, aPath, aReplaces);
  if (result.IsOK())
    result = file.Write(aText.data(), aText.size());
  return result.IsOK() ? file.Commit() : result;
}

KrResult ReadTextFile(const std::string& aPath, std::size_t aMostBytes, std::string& aText) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(aPath, error);
  if (error)
    return MakeReadError(aPath, error);
  // A pipe that nobody writes to would keep us waiting.
  if (!std::filesystem::is_regular_file(status))
    return {KrResult::Code::InvalidInput, "\"" + aPath + "\" is no file."};
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(aPath.c_str(), "rbe"), std::fclose);
  if (!file)
    return MakeReadError(aPath, {errno, std::generic_category()});
  std::string text(aMostBytes + 1, '\0');
  text.resize(std::fread(text.data(), 1, text.size(), file.get()));
  if (std::ferror(file.get()) != 0)
    return MakeReadError(aPath, {errno, std::generic_category()});
  if (text.size() > aMostBytes)
    return {KrResult::Code::BadData,
            "The file \"" + aPath + "\" is longer than the limit of " + std::to_string(aMostBytes) + " bytes."};
  aText = std::move(text);
  return {};
}

} // namespace krtool
