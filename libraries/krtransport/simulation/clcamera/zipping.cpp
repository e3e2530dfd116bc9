#include "simulation/clcamera/zipping.h"

#include <zip.h>

#include <memory>
#include <stdexcept>

namespace krtransport {

namespace {

struct SourceDeleter {
  void operator()(zip_source_t* aSource) const { zip_source_free(aSource); }
};
struct ArchiveDeleter {
  void operator()(zip_t* aArchive) const { zip_discard(aArchive); }
};
using Source = std::unique_ptr<zip_source_t, SourceDeleter>;
using Archive = std::unique_ptr<zip_t, ArchiveDeleter>;

constexpr zip_uint16_t kFirstDosDate = 1 << 5 | 1; // 1980-01-01.

[[noreturn]] void Fail() {
  throw std::runtime_error("a ZIP archive could not be made in memory");
}

void AddFile(zip_t& aArchive, const std::string& aName, const std::string& aContent) {
  zip_source_t* const file = zip_source_buffer(&aArchive, aContent.data(), aContent.size(), 0);
  if (!file)
    Fail();
  const zip_int64_t index = zip_file_add(&aArchive, aName.c_str(), file, 0);
  if (index < 0) {
    zip_source_free(file);
    Fail();
  }
  const auto place = static_cast<zip_uint64_t>(index);
  if (zip_set_file_compression(&aArchive, place, ZIP_CM_DEFLATE, 0) != 0 ||
      zip_file_set_dostime(&aArchive, place, 0, kFirstDosDate, 0) != 0)
    Fail();
}

std::string ReadAll(zip_source_t& aSource) {
  zip_stat_t status;
  if (zip_source_stat(&aSource, &status) != 0 || (status.valid & ZIP_STAT_SIZE) == 0 || zip_source_open(&aSource) != 0)
    Fail();
  std::string bytes(status.size, '\0');
  const zip_int64_t read = zip_source_read(&aSource, bytes.data(), bytes.size());
  (void)zip_source_close(&aSource); // Nothing was written that closing could lose.
  if (read != static_cast<zip_int64_t>(bytes.size()))
    Fail();
  return bytes;
}

} // namespace

std::string MakeZip(const std::string& aName, const std::string& aContent) {
  zip_error_t error;
  zip_error_init(&error);
  const Source target(zip_source_buffer_create(nullptr, 0, 0, &error));
  if (!target)
    Fail();
  Archive archive(zip_open_from_source(target.get(), ZIP_TRUNCATE, &error));
  if (!archive)
    Fail();
  zip_source_keep(target.get()); // The archive takes one of the two holds.
  AddFile(*archive, aName, aContent);
  if (zip_close(archive.get()) != 0)
    Fail();
  (void)archive.release(); // Closing has freed it.
  return ReadAll(*target);
}

} // namespace krtransport
