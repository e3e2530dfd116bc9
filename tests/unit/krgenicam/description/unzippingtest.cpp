#include "description/unzipping.h"
#include "ziparchive.h"

#include <gmock/gmock.h>

namespace krgenicam {
namespace {

using testing::HasSubstr;

constexpr std::size_t kMost = std::size_t{1} << 20;

TEST(Unzipping_, FirstXmlFile_IsTaken) {
  const struct {
    const char* name;
    std::vector<std::pair<std::string, std::string>> files;
    zip_int32_t method;
  } rows[] = {
      {"alone", {{"camera.xml", "<xml/>"}}, ZIP_CM_DEFLATE},
      {"stored", {{"camera.xml", "<xml/>"}}, ZIP_CM_STORE},
      {"of any name", {{"camera", "<xml/>"}}, ZIP_CM_DEFLATE},
      {"in capitals, behind others", {{"readme.txt", "no"}, {"CAMERA.XML", "<xml/>"}, {"b.xml", "no"}}, ZIP_CM_DEFLATE},
      {"in a folder", {{"folder/", ""}, {"folder/camera.xml", "<xml/>"}}, ZIP_CM_DEFLATE},
  };

  for (const auto& row : rows) {
    const std::string archive = MakeZip(row.files, row.method);
    std::string file;
    EXPECT_TRUE(IsZip(archive)) << row.name;
    EXPECT_TRUE(Unzip(archive, kMost, file).IsOK()) << row.name;
    EXPECT_EQ(file, "<xml/>") << row.name;
  }
}

TEST(Unzipping_, Archive_ThatCannotBeUsed_IsRefusedWithTheReason) {
  std::string encrypted = MakeZip({{"camera.xml", "<xml/>"}});
  PatchHeaders(encrypted, 6, 8, std::string("\1\0", 2));
  std::string damaged = MakeZip({{"camera.xml", "<xml version='1.0'/>"}}, ZIP_CM_STORE);
  damaged[damaged.find("version")] = 'X';
  std::string understated = MakeZip({{"camera.xml", std::string(kMost * 2, ' ')}});
  PatchHeaders(understated, 22, 24, std::string("\1\0\0\0", 4));
  std::string unknownMethod = MakeZip({{"camera.xml", "<xml/>"}});
  PatchHeaders(unknownMethod, 8, 10, std::string("\x62\0", 2));
  const std::string whole = MakeZip({{"camera.xml", std::string(1000, 'x') + "<xml/>"}}, ZIP_CM_STORE);
  const struct {
    const char* name;
    std::string archive;
    const char* expected;
  } rows[] = {
      {"nothing", "", "no file in its ZIP archive"},
      {"only its beginning", "PK\x03\x04", "damaged"},
      {"cut off", whole.substr(0, 500), "damaged"},
      {"no files", std::string("PK\x05\x06", 4) + std::string(18, '\0'), "no file in its ZIP archive"},
      {"only a folder", MakeZip({{"folder/", ""}}), "no file in its ZIP archive"},
      {"encrypted", encrypted, "is encrypted"},
      {"damaged content", damaged, "damaged (CRC error"},
      {"a method that nobody knows", unknownMethod, "damaged (Compression method not supported"},
      {"a byte too many", MakeZip({{"camera.xml", std::string(kMost + 1, ' ')}}), "more than 1 MiB"},
      {"more than its header says", understated, ""},
  };

  for (const auto& row : rows) {
    std::string file = "as before";
    const KrResult result = Unzip(row.archive, kMost, file);
    EXPECT_EQ(result, KrResult::Code::BadData) << row.name;
    EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr(row.expected)) << row.name;
    EXPECT_EQ(file, "as before") << row.name;
  }
}

TEST(Unzipping_, Archive_OfAsManyFilesAsItMayHave_IsTakenAndOfOneMoreRefused) {
  std::vector<std::pair<std::string, std::string>> files = {{"camera.xml", "<xml/>"}};
  for (int number = 1; number < 4096; ++number)
    files.emplace_back(std::to_string(number) + ".txt", "");
  std::string file;
  EXPECT_TRUE(Unzip(MakeZip(files), kMost, file).IsOK());
  files.emplace_back("4096.txt", "");

  const KrResult result = Unzip(MakeZip(files), kMost, file);

  EXPECT_EQ(result, KrResult::Code::BadData);
  EXPECT_EQ(result.GetDescription(), KrString("its ZIP archive has more than 4096 files."));
}

TEST(Unzipping_, EveryByteOfAnArchive_Changed_NeverHarms) {
  const std::string archive = MakeZip({{"camera.xml", "<RegisterDescription/>"}});

  for (std::size_t index = 0; index < archive.size(); ++index) {
    for (const char change : {'\x01', '\x80', '\xFF'}) {
      std::string changed = archive;
      changed[index] = static_cast<char>(changed[index] ^ change);
      std::string file;
      const KrResult result = Unzip(changed, kMost, file);
      EXPECT_TRUE(result.IsOK() || result == KrResult::Code::BadData) << index;
      EXPECT_LE(file.size(), kMost) << index;
    }
  }
}

} // namespace
} // namespace krgenicam
