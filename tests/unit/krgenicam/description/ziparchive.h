#pragma once
// ZIP archives in memory, for tests of unpacking.

#include <gtest/gtest.h>
#include <zip.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// An archive of files (name, content) as bytes; a name that ends with "/" makes a folder.
inline std::string MakeZip(const std::vector<std::pair<std::string, std::string>>& aFiles,
                           zip_int32_t aMethod = ZIP_CM_DEFLATE) {
  zip_source_t* const target = zip_source_buffer_create(nullptr, 0, 0, nullptr);
  zip_t* const archive = zip_open_from_source(target, ZIP_TRUNCATE, nullptr);
  zip_source_keep(target);
  for (const auto& [name, content] : aFiles) {
    if (name.back() == '/') {
      EXPECT_GE(zip_dir_add(archive, name.c_str(), 0), 0);
      continue;
    }
    zip_source_t* const source = zip_source_buffer(archive, content.data(), content.size(), 0);
    const zip_int64_t index = zip_file_add(archive, name.c_str(), source, 0);
    EXPECT_GE(index, 0);
    EXPECT_EQ(zip_set_file_compression(archive, static_cast<zip_uint64_t>(index), aMethod, 0), 0);
  }
  EXPECT_EQ(zip_close(archive), 0);
  zip_stat_t status;
  EXPECT_EQ(zip_source_stat(target, &status), 0);
  std::string bytes(status.size, '\0');
  EXPECT_EQ(zip_source_open(target), 0);
  EXPECT_EQ(zip_source_read(target, bytes.data(), bytes.size()), static_cast<zip_int64_t>(bytes.size()));
  zip_source_close(target);
  zip_source_free(target);
  return bytes;
}

/// Overwrites bytes of an archive's only entry, in its local header and in the central directory: offsets of one field
/// in both.
inline void PatchHeaders(std::string& aArchive, std::size_t aLocalOffset, std::size_t aCentralOffset,
                         const std::string& aBytes) {
  const std::size_t central = aArchive.find("PK\x01\x02");
  ASSERT_NE(central, std::string::npos);
  aArchive.replace(aLocalOffset, aBytes.size(), aBytes);
  aArchive.replace(central + aCentralOffset, aBytes.size(), aBytes);
}
