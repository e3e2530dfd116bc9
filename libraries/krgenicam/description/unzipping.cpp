#include "description/unzipping.h"

#include "description/lexical.h"

#include <zip.h>

#include <array>
#include <memory>
#include <optional>
#include <utility>

namespace krgenicam {

namespace {

struct ArchiveCloser {
  void operator()(zip_t* aArchive) const { zip_discard(aArchive); }
};
struct FileCloser {
  // What closing could complain about, reading has said already.
  void operator()(zip_file_t* aFile) const { static_cast<void>(zip_fclose(aFile)); }
};
using Archive = std::unique_ptr<zip_t, ArchiveCloser>;
using File = std::unique_ptr<zip_file_t, FileCloser>;

KrResult Refuse(const std::string& aReason) {
  return {KrResult::Code::BadData, aReason};
}

KrResult RefuseDamaged(zip_error_t* aError) {
  return Refuse("its ZIP archive is damaged (" + std::string(zip_error_strerror(aError)) + ").");
}

KrResult OpenArchive(std::string_view aBytes, Archive& aArchive) {
  zip_error_t error;
  zip_error_init(&error);
  KrResult result;
  zip_source_t* const source = zip_source_buffer_create(aBytes.data(), aBytes.size(), 0, &error);
  aArchive.reset(source ? zip_open_from_source(source, ZIP_RDONLY, &error) : nullptr);
  if (!aArchive) {
    result = RefuseDamaged(&error);
    zip_source_free(source);
  }
  zip_error_fini(&error);
  return result;
}

// Whether an archive lists more files than could be meant. Each costs memory before the first is asked for, and what
// the archive says of their number may be a lie: what begins an entry is counted.
bool HasTooManyFiles(std::string_view aBytes) {
  constexpr std::string_view kEntryStart("PK\x01\x02", 4);
  constexpr std::size_t kMostFiles = 4096;
  std::size_t count = 0;
  for (std::size_t at = aBytes.find(kEntryStart); at != aBytes.npos && count <= kMostFiles; ++count)
    at = aBytes.find(kEntryStart, at + kEntryStart.size());
  return count > kMostFiles;
}

std::optional<zip_uint64_t> FindXml(zip_t* aArchive) {
  std::optional<zip_uint64_t> first;
  const zip_int64_t count = zip_get_num_entries(aArchive, 0);
  for (zip_int64_t index = 0; index < count; ++index) {
    constexpr std::string_view kEnding = ".xml";
    const char* const text = zip_get_name(aArchive, static_cast<zip_uint64_t>(index), 0);
    const std::string_view name = text ? text : "";
    if (name.empty() || name.back() == '/')
      continue;
    if (name.size() >= kEnding.size() && EqualsIgnoringCase(name.substr(name.size() - kEnding.size()), kEnding))
      return static_cast<zip_uint64_t>(index);
    if (!first)
      first = static_cast<zip_uint64_t>(index);
  }
  return first;
}

} // namespace

bool IsZip(std::string_view aBytes) {
  return aBytes.starts_with(std::string_view("PK\x03\x04", 4));
}

KrResult Unzip(std::string_view aArchive, std::size_t aMostBytes, std::string& aFile) {
  if (HasTooManyFiles(aArchive))
    return Refuse("its ZIP archive has more than 4096 files.");
  Archive archive;
  if (KrResult result = OpenArchive(aArchive, archive); !result.IsOK())
    return result;
  const std::optional<zip_uint64_t> index = FindXml(archive.get());
  if (!index)
    return Refuse("there is no file in its ZIP archive.");
  zip_stat_t status;
  if (zip_stat_index(archive.get(), *index, 0, &status) == 0 && (status.valid & ZIP_STAT_ENCRYPTION_METHOD) != 0 &&
      status.encryption_method != ZIP_EM_NONE)
    return Refuse("its ZIP archive is encrypted.");
  const File file(zip_fopen_index(archive.get(), *index, 0));
  if (!file)
    return RefuseDamaged(zip_get_error(archive.get()));

  std::string bytes;
  std::array<char, 65536> block;
  for (;;) {
    const zip_int64_t count = zip_fread(file.get(), block.data(), block.size());
    if (count < 0)
      return RefuseDamaged(zip_file_get_error(file.get()));
    if (count == 0)
      break;
    bytes.append(block.data(), static_cast<std::size_t>(count));
    // What the archive says of the size may be a lie.
    if (bytes.size() > aMostBytes)
      return Refuse("unpacked it has more than " + std::to_string(aMostBytes >> 20) + " MiB.");
  }
  aFile = std::move(bytes);
  return {};
}

} // namespace krgenicam
